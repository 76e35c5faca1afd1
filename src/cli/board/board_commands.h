// board_commands.h: the commands `board` and `frames` of norvik-cli.
#pragma once

#include "cli/companion.h"

#include <CLI/CLI.hpp>

namespace norvik {

void Add_Board_Commands(CLI::App& app, Companion& companion);

}  // namespace norvik
