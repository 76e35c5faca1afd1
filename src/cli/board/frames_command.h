// frames_command.h: the command `frames`: frames of the boards in words and back.
#pragma once

#include "cli/companion.h"

#include <CLI/CLI.hpp>

namespace norvik {

void Add_Frames_Command(CLI::App& app, Companion& companion);

}  // namespace norvik
