// text_store.h: texts that many records share, each held once and known by its number.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace norvik {

class Text_Store {
 public:
  // Numbers run from 0 in the order of the first appearance.
  std::int32_t Number_Of(std::string_view text);
  const std::string& Name(std::int32_t number) const {
    return Texts[static_cast<std::size_t>(number)];
  }
  const std::vector<std::string>& All() const { return Texts; }

 private:
  std::vector<std::string> Texts;
  std::unordered_map<std::string, std::int32_t> Numbers;
  std::size_t Last = 0;
};

}  // namespace norvik
