// adapt_command.h: foreign programs as other commands take them.
#pragma once

#include "adapt/adapt.h"

#include <string>

#include <CLI/CLI.hpp>

namespace norvik {

// Adds --adapt to a command.
void Add_Adapt_Flag(CLI::App& command, bool& adapt);

// Reads a program into the line table, adapted where asked for. False, with the reason printed,
// when it cannot be read, or when adapting leaves something to the operator and nobody accepts
// that: the program is then of no use to a run or a picture.
bool Load_Program(const std::string& path, bool adapt, bool accept_refused);

}  // namespace norvik
