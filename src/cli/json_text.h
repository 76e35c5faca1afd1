// json_text.h: values of results as JSON.
#pragma once

#include <string>
#include <string_view>

namespace norvik {

// The text between quotes. Bytes that are no UTF-8 become U+FFFD, so that every reader takes it.
std::string Json_Text(std::string_view text);
// A number that a pattern has printed (".5", "-3.", "7.0") as JSON spells it; `null` for what is no
// number.
std::string Json_Number(std::string_view text);

}  // namespace norvik
