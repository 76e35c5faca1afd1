#include "import/pipeline/text_store.h"

namespace norvik {

std::int32_t Text_Store::Number_Of(std::string_view text) {
  // Neighbouring records mostly share their texts.
  if (Last < Texts.size() && Texts[Last] == text) return static_cast<std::int32_t>(Last);
  const auto [place, is_new] =
      Numbers.try_emplace(std::string(text), static_cast<std::int32_t>(Texts.size()));
  if (is_new) Texts.push_back(place->first);
  Last = static_cast<std::size_t>(place->second);
  return place->second;
}

}  // namespace norvik
