// Documents that hold what the program writes itself are compared with what it writes now.
#pragma once

#include "core/paths.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace norvik {

// Fails where docs/NAME does not hold `text`. With NORVIK_RENEW_DOCUMENTS set in the environment
// the document is renewed instead: all of it where `text` is a whole page ("# ..."), otherwise the
// table whose first line is that of `text`.
inline void Expect_In_Document(const std::string& name, const std::string& text) {
  const std::string path = std::string(NORVIK_TEST_FOLDER) + "/../../docs/" + name;
  std::string document = Read_Whole_File(path);
  const bool is_page = text.starts_with("# ");
  const bool is_current = is_page ? document == text : document.find(text) != std::string::npos;
  if (!is_current && std::getenv("NORVIK_RENEW_DOCUMENTS") != nullptr) {
    const auto begin = is_page ? 0 : document.find(text.substr(0, text.find('\n') + 1));
    ASSERT_NE(begin, std::string::npos) << name << " has no table with this head:\n" << text;
    const auto blank = document.find("\n\n", begin);
    const bool to_end = is_page || blank == std::string::npos;
    document.replace(begin, to_end ? std::string::npos : blank + 1 - begin, text);
    Replace_File(path, document);
    return;
  }
  EXPECT_TRUE(is_current) << "docs/" << name
                          << " is not what the program says now. Renew it: run this test with "
                             "NORVIK_RENEW_DOCUMENTS=1 in the environment.";
}

}  // namespace norvik
