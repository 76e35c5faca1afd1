// What the tests of the line pass share: a clean machine, a scripted platform, a folder of its own.
#pragma once

#include "compiler/interpreter/line_pass.h"
#include "compiler/state/compiler_state.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace norvik {

class Line_Pass_Test : public ::testing::Test {
 protected:
  Line_Pass_Test() {
    Folder = std::filesystem::path(::testing::TempDir()) /
             ("line_" + std::to_string(::getpid()) + "_" +
              std::to_string(reinterpret_cast<std::uintptr_t>(this)));
    std::filesystem::create_directories(Folder);
    Reset_Compiler();
    Application.ErrorFile = (Folder / "errors.txt").string();
    Application.Table_Folder = Folder.string();
    MachineSetup.Axis_Format = "000.000";
    MachineSetup.Axis_Feed_Rate_Travel = 50;
    MachineSetup.Axis_Feed_Rate_Cut = 20;
  }
  ~Line_Pass_Test() override {
    Reset_Compiler();
    std::error_code ignored;
    std::filesystem::remove_all(Folder, ignored);
  }

  // The records of a program, which stand until the next compile.
  const Record_List<LineArc>& Compile(const std::string& text) {
    Run_Line_Pass(std::make_shared<const GCode_Text>(text), Compile_Operations());
    return Compile_Tables.Program_LineArc.Rows;
  }

  // A file in the test's folder; returns its path.
  std::string Write_File(const std::string& name, const std::string& text) const {
    const std::string path = (Folder / name).string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

  // The texts of the error log, without their dates.
  std::vector<std::string> Logged() const {
    std::vector<std::string> texts;
    std::ifstream file(Application.ErrorFile);
    const std::string mark = " Error Description: ";
    for (std::string line; std::getline(file, line);) {
      if (line.ends_with('\r')) line.pop_back();
      const auto place = line.find(mark);
      texts.push_back(place == std::string::npos ? line : line.substr(place + mark.size()));
    }
    return texts;
  }

  std::filesystem::path Folder;
  Scripted_Platform Scripted;
};

}  // namespace norvik
