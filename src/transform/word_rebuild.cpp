#include "transform/word_rebuild.h"

namespace norvik {

void Word_Rebuild::Note_Modes(const GCode_Words& words) {
  const auto note = [&](std::string_view text) {
    bool is_number = true;
    const double code = Clean_Number(text, is_number);
    if (!is_number) return;
    Seen.Inch |= code == 20;
    Seen.Millimetre |= code == 21;
    Seen.Absolute |= code == 90;
    Seen.Incremental |= code == 91;
  };
  bool is_number = true;
  const double last = Clean_Number(words.Text('G'), is_number);
  Seen.Kept |= last == 90 || last == 91;
  note(words.Text('G'));
  for (const GCode_Word& word : words.Taken_Over) {
    if (word.Letter == 'G') note(word.Text);
  }
}

void Word_Rebuild::Make_Room(std::size_t line_length) {
  constexpr std::size_t line_end = 2, letter_and_blank = 2;
  const std::size_t number =
      Formatted_Number_Limit + Pattern.Front.size() + Pattern.Back.size() + letter_and_blank;
  // Words that keep their text grow by one blank each.
  const std::size_t room =
      line_length + 26 * letter_and_blank + Number_Letters.size() * number + line_end;
  if (Line_Buffer.size() < room) Line_Buffer.resize(room + room / 2);
}

double Word_Rebuild::Checked_Number(std::string_view text, std::int32_t line) {
  bool is_number = true;
  const double value = Clean_Number(text, is_number);
  if (!is_number) Losses.No_Number.Add(line);
  return value;
}

}  // namespace norvik
