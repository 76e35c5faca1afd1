// import_fixture.h: a working folder, a scripted environment and a known setup for each test.
#pragma once

#include "core/application.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

namespace norvik {

struct Import_Test : ::testing::Test {
  Import_Test() {
    Folder = std::filesystem::temp_directory_path() /
             ("norvik_import_" + std::to_string(::getpid()) + "_" + std::to_string(++Count()));
    std::filesystem::create_directories(Folder);
    const auto path = [&](const char* name) { return (Folder / name).string(); };
    Reset_Import();
    Application.AppDirectory = Folder.string();
    Application.ErrorFile = path("NorvikErr.txt");
    Application.Temporary_GCode = path("TEMP_NORVIK999.GC");
    Application.DXF_Scratch = path("DXFtmp.txt");
    Application.HPGL_Scratch = path("HPGLtmp.txt");
    Application.Bitmap_Scratch = path("Bitmaptmp.txt");
    Application.Gerber_Scratch = path("Graftmp.txt");
    Import_Host.Open_GCode = [this](const std::string& opened) {
      ++Opened;
      Program = Read_Whole_File(opened);
    };
    MachineSetup.Axis_Format = "000.000";
    MachineSetup.Axis_Depth.Fill(10);
    MachineSetup.Axis_Feed_Rate_Cut = 5;
    MachineSetup.Axis_Tool_Height.Items = {0.25F, 0.125F, 0.0625F};
    MachineSetup.Gcode_DwellTime_Default = 2;
    MachineSetup.DXF_Line_Tolerance = 0.001F;
    MachineSetup.DXF_Passes_to_Depth = 1;
    MachineSetup.DXF_MultiDepth_Layer.Fill("None");
    MachineSetup.DXF_MultiDepth_Passes.Fill(1);
    MachineSetup.DXF_MultiDepth_StartingDepth.Fill(0.25F);
    MachineSetup.DXF_MultiDepth_EndingDepth.Fill(0.125F);
    MachineSetup.HPGL_PenSize = 0.03F;
    MachineSetup.HPGL_Passes_to_Depth = 1;
    MachineSetup.Excellon_Default_Drill_Size = 0.028F;
    MachineSetup.Excellon_Integer_Format = 2;
    MachineSetup.Excellon_Decimal_Format = 3;
    MachineSetup.Excellon_Zero_Format = 2;
  }
  ~Import_Test() override { std::filesystem::remove_all(Folder); }

  std::string Store(const std::string& name, std::string_view text) {
    const std::string path = (Folder / name).string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  // What has been logged so far, empty when nothing.
  std::string Log() const {
    return FileExists(Application.ErrorFile) ? Read_Whole_File(Application.ErrorFile) : "";
  }
  // Lines of the opened program without their numbers.
  std::vector<std::string> Statements() const {
    std::vector<std::string> lines = Split_Lines(Program);
    for (std::string& line : lines) line.erase(0, line.find(' ') + 1);
    return lines;
  }
  // Statements behind header and M03, up to the footer's lift.
  std::vector<std::string> Body(std::size_t footer_lines) const {
    std::vector<std::string> lines = Statements();
    constexpr std::size_t header_lines = 5;
    if (lines.size() < header_lines + footer_lines) return {};
    return {lines.begin() + header_lines, lines.end() - static_cast<std::ptrdiff_t>(footer_lines)};
  }
  bool Scratch_Is_Gone() const {
    for (const auto& path : {Application.DXF_Scratch, Application.HPGL_Scratch,
                             Application.Bitmap_Scratch, Application.Gerber_Scratch}) {
      if (FileExists(path)) return false;
    }
    return true;
  }

  std::filesystem::path Folder;
  Scripted_Platform Scripted;
  int Opened = 0;
  std::string Program;

 private:
  static int& Count() {
    static int count = 0;
    return count;
  }
};

}  // namespace norvik
