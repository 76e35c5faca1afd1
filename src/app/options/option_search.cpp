#include "app/options/option_search.h"

#include "app/options/option_fields.h"
#include "app/options/option_pages.h"
#include "core/paths.h"

#include <algorithm>
#include <utility>

namespace norvik {

namespace {

std::vector<std::string> Words_Of(std::string_view text) {
  std::vector<std::string> words;
  std::string word;
  for (const char c : Upper(text) + " ") {
    if (c != ' ') {
      word += c;
    } else if (!word.empty()) {
      words.push_back(std::exchange(word, {}));
    }
  }
  return words;
}

// All that an operator may remember of a row.
std::string Row_Text(const Setting_Row& row) {
  std::string text(row.Help);
  for (const std::string_view part :
       {row.Unit, row.Group, row.Section, Page_Of_Group(row.Group).Name}) {
    text += " " + std::string(part);
  }
  for (const Setting_Choice& choice : row.Choices) text += " " + std::string(choice.Words);
  return text;
}

bool Holds_All(const std::string& text, const std::vector<std::string>& words) {
  const std::string upper = Upper(text);
  return std::ranges::all_of(
      words, [&](const std::string& word) { return upper.find(word) != std::string::npos; });
}

// A family's own words find it once; a word of an entry finds the entry.
void Find_In_Row(const Setting_Row& row, const std::vector<std::string>& words,
                 std::vector<Option_Found>& found) {
  const Index_Span entries = Offered_Entries(row);
  const std::string_view page = Page_Of_Group(row.Group).Name;
  const std::string text = Row_Text(row);
  const std::string family = Setting_Family_Label(row);
  if (Holds_All(text + " " + family + " " + std::string(row.Key), words)) {
    const std::string label = family.empty() ? std::string(page) : family;
    found.push_back({Setting_Key(row, entries.First), label, page});
    return;
  }
  for (int index = entries.First; index <= entries.Last; ++index) {
    const std::string key = Setting_Key(row, index), label = Setting_Label(row, index);
    std::string all = text;
    for (const std::string* part : {&label, &key}) all.append(1, ' ').append(*part);
    if (Holds_All(all, words)) found.push_back({key, label, page});
  }
}

}  // namespace

std::vector<Option_Found> Find_Options(std::string_view words) {
  std::vector<Option_Found> found;
  const std::vector<std::string> wanted = Words_Of(words);
  if (wanted.empty()) return found;
  for (const Setting_Row* row : Option_Rows()) Find_In_Row(*row, wanted, found);
  std::stable_partition(found.begin(), found.end(), [&](const Option_Found& one) {
    const std::string label = Upper(one.Label);
    return std::ranges::any_of(
        wanted, [&](const std::string& word) { return label.find(word) != std::string::npos; });
  });
  // Who types a key means that setting.
  const std::string key = Upper(Trim(words));
  std::stable_partition(found.begin(), found.end(),
                        [&](const Option_Found& one) { return Upper(one.Key) == key; });
  return found;
}

}  // namespace norvik
