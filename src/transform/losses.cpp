#include "transform/losses.h"

#include "core/paths.h"

#include <numeric>

namespace norvik {

void Transform_Losses::Count_Line(std::int32_t line, std::string_view text,
                                  const GCode_Words& words, std::uint32_t kept) {
  if (words.Lost_Digits) Lost_Digits.Add(line);
  if (words.Passed_Over) Passed_Over.Add(line);
  if (!words.Comment.empty() && Has_Words_Behind_Comment(words.Comment)) Behind_Comment.Add(line);
  const std::uint32_t gone = words.Seen & ~kept;
  if (gone == 0 && words.Taken_Over.empty()) return;

  Dropped_Lines.Add(line);
  for (std::size_t slot = 0; slot < Dropped.size(); ++slot) {
    if ((gone >> slot & 1U) != 0) ++Dropped[slot];
  }
  for (const GCode_Word& word : words.Taken_Over) {
    ++Dropped[static_cast<std::size_t>(word.Letter - 'A')];
    Taken_Over.Add(line);
  }
  const std::string_view code = text.substr(0, text.size() - words.Comment.size());
  if (words.Has('E') && Upper(code).find("REPEAT") != std::string::npos) Repeats.Add(line);
}

bool Transform_Losses::Any() const {
  return Dropped_Lines.Count > 0 || Lost_Digits.Count > 0 || Passed_Over.Count > 0 ||
         Behind_Comment.Count > 0 || No_Number.Count > 0 || Already_There || Both_Units ||
         Both_Modes || No_Mode;
}

namespace {

std::string Counted(std::int32_t count, std::string_view one, std::string_view many) {
  return std::to_string(count) + " " + std::string(count == 1 ? one : many);
}

std::string First_At(const Line_Tally& tally) {
  return ", first at line " + std::to_string(tally.First_Line) + ".";
}

std::string Dropped_Text(const Transform_Losses& losses) {
  std::string letters;
  for (std::size_t slot = 0; slot < losses.Dropped.size(); ++slot) {
    if (losses.Dropped[slot] == 0) continue;
    letters += letters.empty() ? ": " : ", ";
    letters += static_cast<char>('A' + slot);
    letters += " (" + std::to_string(losses.Dropped[slot]) + ")";
  }
  const auto words = std::accumulate(losses.Dropped.begin(), losses.Dropped.end(), 0);
  return "This drops " + Counted(words, "word", "words") + " of " +
         Counted(losses.Dropped_Lines.Count, "line", "lines") + letters +
         First_At(losses.Dropped_Lines);
}

}  // namespace

std::vector<std::string> Texts_Of(const Transform_Losses& losses) {
  std::vector<std::string> texts;
  const auto tell = [&](const Line_Tally& tally, std::string_view one, std::string_view many) {
    if (tally.Count > 0) texts.push_back(Counted(tally.Count, one, many) + First_At(tally));
  };
  if (losses.Dropped_Lines.Count > 0) texts.push_back(Dropped_Text(losses));
  tell(losses.Taken_Over, "of them stands with a later word of the same letter, which stays",
       "of them stand with a later word of the same letter, which stays");
  tell(losses.Repeats, "line with REPEAT or ENDREPEAT does not survive",
       "lines with REPEAT or ENDREPEAT do not survive");
  tell(losses.Lost_Digits, "line has digits without a letter, which go",
       "lines have digits without a letter, which go");
  tell(losses.Passed_Over,
       "line has a semicolon or one of : < = > ? @; the text behind it is taken as words",
       "lines have a semicolon or one of : < = > ? @; the text behind them is taken as words");
  tell(losses.Behind_Comment,
       "line has words behind a comment or a tab, which stay as they are, not converted",
       "lines have words behind a comment or a tab, which stay as they are, not converted");
  tell(losses.No_Number, "value is no number and counts as 0",
       "values are no numbers and count as 0");
  if (losses.Already_There) {
    texts.push_back("The program looks as if it were converted already: " +
                    std::string(losses.Why_Already) + ". Converting twice spoils it.");
  }
  if (losses.Both_Units) {
    texts.emplace_back(
        "The program holds both G20 and G21: all lines are converted by the same factors.");
  }
  if (losses.Both_Modes) {
    texts.emplace_back(
        "The program holds both G90 and G91: the lines of both are converted alike, and those that "
        "were already as wanted come out wrong.");
  }
  if (losses.No_Mode) {
    texts.emplace_back(
        "The new text holds no G91, so its moves would be read as positions: write G91 on a line "
        "of "
        "its own in front of them before it is compiled.");
  }
  return texts;
}

}  // namespace norvik
