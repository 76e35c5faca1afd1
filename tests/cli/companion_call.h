// companion_call.h: calls of the companion within a test program, and what they print.
#pragma once

#include "cli/companion.h"
#include "core/paths.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"
#include "support/temporary_folder.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace norvik {

inline const std::string Samples = NORVIK_SAMPLES_FOLDER;

struct Companion_Call_Test : testing::Test {
  ~Companion_Call_Test() override { Reset_App(); }

  // The exit status of "norvik-cli --home FOLDER/home WORDS", begun as a new process would begin.
  // What it printed is in `Printed` and `Said`.
  int Call_Companion(std::vector<std::string> words, Companion_Environment environment = {}) {
    Reset_App();
    words.insert(words.begin(), {"norvik-cli", "--home", Folder.File("home")});
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    const int status =
        Run_Companion(static_cast<int>(arguments.size()), arguments.data(), std::move(environment));
    Printed = testing::internal::GetCapturedStdout();
    Said = testing::internal::GetCapturedStderr();
    return status;
  }
  std::string Write_File(const std::string& name, const std::string& bytes) {
    Replace_File(Folder.File(name), bytes);
    return Folder.File(name);
  }

  Temporary_Folder Folder;
  Scripted_Platform scripted;
  std::string Said, Printed;  // standard error, standard output
};

}  // namespace norvik
