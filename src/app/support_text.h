// support_text.h: what somebody who helps an operator asks first.
#pragma once

#include <string>

namespace norvik {

// Version, port, folders and files, and the longest wait of a button; one fact a line.
std::string Support_Text();

}  // namespace norvik
