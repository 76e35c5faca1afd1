#include "compiler/check/words.h"

#include "compiler/interpreter/interpreter.h"
#include "compiler/text/line_cutter.h"
#include "compiler/text/plain_number.h"
#include "core/application.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

constexpr std::string_view Blanks = " \t";
constexpr std::string_view Number_Characters = "0123456789.,+-";
constexpr std::string_view Read_Letters = "NMGABCXYZIJKDFHLPQRST";

bool Is_Letter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
char Upper_Case(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
bool Is_Read(char letter) {
  return Read_Letters.find(letter) != std::string_view::npos;
}

// Texts of programs may hold anything; what is shown of them is short and printable.
std::string Quoted(std::string_view text) {
  constexpr std::size_t most = 40;
  std::string shown = "\"";
  for (const char c : text.substr(0, most)) {
    shown += static_cast<unsigned char>(c) < ' ' ? '?' : c;
  }
  return shown + (text.size() > most ? "...\"" : "\"");
}

std::string Shown(const Meant_Word& word) {
  return word.Letter + std::string(word.Number.substr(0, 40));
}

// --- The programmer's reading --------------------------------------------------------------------

char Closer_Of(char opener) {
  return opener == '(' ? ')' : opener == '[' ? ']' : '}';
}

std::size_t Take_Comment(std::string_view text, std::size_t at, Meant_Line& line) {
  const char opener = text[at];
  const bool to_end = opener == ';' || opener == '\'';
  std::size_t end = to_end ? std::string_view::npos : text.find(Closer_Of(opener), at);
  const bool closed = to_end || end != std::string_view::npos;
  end = std::min(end, text.size());
  line.Comments.push_back({at + 1, text.substr(at + 1, end - at - 1), opener, closed});
  return end + 1;
}

std::size_t Take_Word(std::string_view text, std::size_t at, Meant_Line& line) {
  const std::size_t number = std::min(text.find_first_not_of(Blanks, at + 1), text.size());
  const std::size_t end = std::min(text.find_first_not_of(Number_Characters, number), text.size());
  const bool has_number = end > number;
  line.Words.push_back({Upper_Case(text[at]), text.substr(number, end - number), at + 1,
                        has_number ? number - at - 1 : 0});
  return has_number ? end : at + 1;
}

std::size_t Take_Other(std::string_view text, std::size_t at, Meant_Line& line) {
  std::size_t end = at + 1;
  while (end < text.size() && !Is_Letter(text[end]) &&
         std::string_view(" \t([{;'").find(text[end]) == std::string_view::npos) {
    ++end;
  }
  line.Unread.push_back({0, text.substr(at, end - at), at + 1, 0});
  return end;
}

// "ENDREPEAT" and "REPEAT 3" are read by the line pass.
std::size_t Keyword_Length(std::string_view text, std::size_t at) {
  for (const std::string_view keyword : {"ENDREPEAT", "REPEAT"}) {
    const auto same = std::ranges::equal(text.substr(at, keyword.size()), keyword, {}, Upper_Case);
    if (!same) continue;
    const std::size_t number = text.find_first_not_of(Blanks, at + keyword.size());
    if (number == std::string_view::npos || keyword == "ENDREPEAT") return keyword.size();
    return std::min(text.find_first_not_of("0123456789", number), text.size()) - at;
  }
  return 0;
}

}  // namespace

std::string Finding_Number(double value) {
  std::string text = Format_Number_Point(value, "0.######");
  if (text.ends_with('.')) text.pop_back();
  return text;
}

Meant_Line Read_As_Meant(std::string_view text) {
  Meant_Line line;
  std::size_t at = 0;
  while (at < text.size()) {
    if (line.Words.size() + line.Comments.size() + line.Unread.size() >= Most_Meant_Words) {
      line.Whole = false;
      break;
    }
    const char c = text[at];
    if (Blanks.find(c) != std::string_view::npos) {
      ++at;
    } else if (std::string_view("([{;'").find(c) != std::string_view::npos) {
      at = Take_Comment(text, at, line);
    } else if (!Is_Letter(c)) {
      at = Take_Other(text, at, line);
    } else if (const std::size_t keyword = Keyword_Length(text, at)) {
      at += keyword;
    } else {
      at = Take_Word(text, at, line);
    }
  }
  return line;
}

std::optional<double> Meant_Value(const Meant_Word& word) {
  if (!Try_Number(word.Number)) return std::nullopt;
  if (word.Letter == 'L') return std::round(*Try_Number(word.Number));
  std::optional<double> value;
  Trap_With([](const Fault&) {}, [&] { value = Current_Axis_Rounding().Value(word.Number); });
  return value;
}

namespace {

struct Line_Check {
  std::string_view Text;
  const Meant_Line& Meant;  // without what a line number swallows
  const Reader_Outcome& Outcome;
  const Report_Finding& Report;

  void Tell(Check_Kind kind, std::size_t column, std::string what,
            std::string_view instead = {}) const {
    Report(kind, column, std::move(what), instead);
  }
};

bool Is_Code(const Meant_Word& word) {
  return word.Letter == 'G' || word.Letter == 'M';
}

// The text that the reader takes for a word that runs to the next blank.
std::string_view Text_To_Blank(std::string_view text, const Meant_Word& word) {
  const std::size_t from = word.Column;
  return text.substr(from, std::min(text.find(' ', from), text.size()) - from);
}

bool Is_Number(std::string_view text) {
  return Try_Number(text).has_value();
}

// --- Blocks that are lost ------------------------------------------------------------------------

// A G or M word that is no number up to the next blank loses the block.
bool Tell_Codes_Run_Together(const Line_Check& check) {
  for (const Meant_Word& word : check.Meant.Words) {
    const std::string_view text = Text_To_Blank(check.Text, word);
    if (!Is_Code(word) || word.Number.empty() || Is_Number(text)) continue;
    check.Tell(Check_Kind::Code_Runs_Together, word.Column,
               std::string(1, word.Letter) + Quoted(text) + " is no number: the block is lost");
    return true;
  }
  return false;
}

const Meant_Comment* Second_Comment(const Line_Check& check) {
  const auto first = Find_Comment(check.Text);
  for (const Meant_Comment& comment : check.Meant.Comments) {
    const std::size_t place = comment.Column - 1;
    if (first && place >= first->Opener && place <= first->Closer) continue;
    const auto letter =
        std::ranges::find_if(comment.Inside, [](char c) { return Is_Read(Upper_Case(c)); });
    if (letter != comment.Inside.end()) return &comment;
  }
  return nullptr;
}

std::string Comment_Words(const Meant_Comment& comment) {
  return comment.Opener == ';' ? "a comment by \";\" is read as words: "
                               : "only one comment is taken out, this one is read as words: ";
}

std::string Lost_Because(const Fault& fault) {
  return fault.Description + ": the block is lost";
}

void Tell_Lost_Block(const Line_Check& check) {
  if (Tell_Codes_Run_Together(check)) return;
  if (const Meant_Comment* comment = Second_Comment(check)) {
    check.Tell(Check_Kind::Second_Comment, comment->Column,
               Comment_Words(*comment) + "the block is lost",
               comment->Opener == ';' ? "write the comment between ( and )" : "");
    return;
  }
  for (const Meant_Word& word : check.Meant.Words) {
    if (!Is_Read(word.Letter) || (!word.Number.empty() && word.Gap == 0)) continue;
    check.Tell(
        Check_Kind::Block_Fails, word.Column,
        std::string(1, word.Letter) +
            (word.Number.empty() ? " has no number" : " and its number stand apart") +
            ": the block is lost",
        word.Number.empty() ? "write the number" : "write the number right behind its letter");
    return;
  }
  check.Tell(Check_Kind::Block_Fails, 0, Lost_Because(*check.Outcome.Failure));
}

// --- Words that arrive otherwise -----------------------------------------------------------------

int Word_Place(char letter) {
  const auto place = std::string_view(word::Letters).find(letter);
  return place == std::string_view::npos ? -1 : static_cast<int>(place);
}

bool Code_Was_Read(const Block& block, const Meant_Word& word) {
  const auto number = Try_Number(word.Number);
  const int last = word.Letter == 'G' ? Last_G_Code : Last_M_Code;
  if (!number || *number < 0 || std::nearbyint(*number) > last) return false;
  const auto place = static_cast<std::size_t>(std::nearbyint(*number));
  return word.Letter == 'G' ? block.GFlags[place] : block.MFlags[place];
}

// True when the word arrived as it was meant.
bool Arrived(const Line_Check& check, const Meant_Word& word) {
  if (Is_Code(word)) return Code_Was_Read(check.Outcome.Read, word);
  const Nullable read = check.Outcome.Read.Words[Word_Place(word.Letter)];
  const auto meant = Meant_Value(word);
  return meant && read && *read == *meant;
}

std::string Reading_Of(const Block& block, char letter) {
  const Nullable read = block.Words[Word_Place(letter)];
  return read ? letter + Finding_Number(*read) : "nothing";
}

void Tell_Words_Cut_Wrongly(const Line_Check& check) {
  std::string seen;
  for (const Meant_Word& word : check.Meant.Words) {
    if (!Is_Read(word.Letter) || word.Letter == 'N') continue;
    const bool again = !Is_Code(word) && seen.find(word.Letter) != std::string::npos;
    seen += word.Letter;
    if (again) {
      check.Tell(Check_Kind::Doubled_Word, word.Column, Shown(word) + " is not read");
    } else if (!Arrived(check, word)) {
      check.Tell(Check_Kind::Cut_Wrongly, word.Column,
                 Shown(word) + " is read as " +
                     (Is_Code(word) ? "nothing" : Reading_Of(check.Outcome.Read, word.Letter)));
    }
  }
  for (int name = 0; name < word::Count; ++name) {
    const char letter = word::Letters[name];
    if (!check.Outcome.Read.Words[name] || seen.find(letter) != std::string::npos) continue;
    const Meant_Comment* comment = Second_Comment(check);
    check.Tell(comment ? Check_Kind::Second_Comment : Check_Kind::Cut_Wrongly,
               comment ? comment->Column : 0,
               (comment ? Comment_Words(*comment) : std::string("the reader finds ")) +
                   Reading_Of(check.Outcome.Read, letter));
  }
}

// A line number takes all up to the next blank. What it takes beside its own number is one
// finding and leaves the line.
void Take_Out_Swallowed(std::string_view text, Meant_Line& meant, const Report_Finding& report) {
  const auto number = std::ranges::find(meant.Words, 'N', &Meant_Word::Letter);
  if (number == meant.Words.end() || number->Number.empty() || number->Gap != 0) return;
  const std::string_view taken = Text_To_Blank(text, *number);
  if (taken.size() == number->Number.size()) return;
  const std::size_t first = number->Column, end = first + taken.size();
  report(Check_Kind::Sequence_Swallows, first, "N takes " + Quoted(taken) + " and drops it", "");
  const auto swallowed = [&](const Meant_Word& each) {
    return each.Column > first && each.Column <= end;
  };
  std::erase_if(meant.Words, swallowed);
  std::erase_if(meant.Unread, swallowed);
}

// --- What is never read --------------------------------------------------------------------------

bool Moves_No_Axis_Here(char letter) {
  return std::string_view("BCUVW").find(letter) != std::string_view::npos;
}

void Tell_Unread_Words(const Line_Check& check) {
  for (const Meant_Word& word : check.Meant.Words) {
    if (Moves_No_Axis_Here(word.Letter)) {
      check.Tell(Check_Kind::Axis_Not_Moved, word.Column, Shown(word) + " moves nothing");
    } else if (!Is_Read(word.Letter)) {
      check.Tell(Check_Kind::Letter_Not_Read, word.Column, Shown(word) + " is not read");
    }
  }
}

// A slash in front, also behind a line number, asks other machines to pass the line over.
bool Is_Block_Delete(const Line_Check& check, const Meant_Word& other) {
  if (!other.Number.starts_with('/')) return false;
  const auto before = [&](const Meant_Word& word) {
    return word.Column < other.Column && word.Letter != 'N';
  };
  return std::ranges::none_of(check.Meant.Words, before);
}

void Tell_Unread(const Line_Check& check) {
  Tell_Unread_Words(check);
  for (const Meant_Word& other : check.Meant.Unread) {
    if (other.Number == "%") continue;
    if (Is_Block_Delete(check, other)) {
      if (!check.Meant.Words.empty()) {
        check.Tell(Check_Kind::Block_Delete, other.Column,
                   "the slash is not read: the line always runs");
      }
    } else {
      check.Tell(Check_Kind::Text_Not_Read, other.Column, Quoted(other.Number) + " is not read");
    }
  }
  for (const Meant_Comment& comment : check.Meant.Comments) {
    if (comment.Closed) continue;
    check.Tell(Check_Kind::Comment_Not_Closed, comment.Column,
               "the comment runs to the line's end");
  }
  if (!check.Meant.Whole) {
    check.Tell(Check_Kind::Line_Too_Long, 0,
               "the line has " + std::to_string(check.Text.size()) +
                   " characters; only its first " + std::to_string(Most_Meant_Words) +
                   " words are compared with what runs");
  }
}

// --- Codes ---------------------------------------------------------------------------------------

bool Is_User_Output(std::int16_t number) {
  const User_Output_Codes& codes = Current_User_Output_Codes();
  return codes.High == number || codes.Low == number;
}

void Tell_Units(const Line_Check& check, const Meant_Word& word, std::int16_t number) {
  const bool millimetres = number == 21 || number == 71;
  const bool machine_in_millimetres = MachineSetup.UnitsofMeasurement == 1;
  if (millimetres == machine_in_millimetres) {
    check.Tell(Check_Kind::Code_Not_Needed, word.Column,
               Shown(word) + " has no effect; the machine works in these units");
  } else {
    check.Tell(Check_Kind::Other_Units, word.Column,
               Shown(word) + " has no effect: the numbers are taken as " +
                   (machine_in_millimetres ? "millimetres" : "inches"));
  }
}

// G91.1 and the like: the reader rounds them to a code that acts.
void Tell_Rounded_Code(const Line_Check& check, const Meant_Word& word, std::int16_t number) {
  const std::string read = word.Letter + std::to_string(number);
  const std::int8_t place = Find_Code(word.Letter, number);
  if (place == No_Code || place >= Acting_Code_Count) {
    check.Tell(Check_Kind::Code_Rounded, word.Column, Shown(word) + " is read as " + read);
  } else if (word.Letter == 'G' && number == 91) {
    check.Tell(Check_Kind::Code_Read_As_Other, word.Column,
               Shown(word) + " is read as G91: from here on the program runs incrementally",
               "write G90 instead, with the centres as points where GC_IJ_Incremental is off");
  } else if (word.Letter == 'G' && number == 90) {
    check.Tell(Check_Kind::Code_Read_As_Other, word.Column, Shown(word) + " is read as G90",
               "leave it out; GC_IJ_Incremental in the machine file says how I and J count");
  } else {
    check.Tell(Check_Kind::Code_Read_As_Other, word.Column, Shown(word) + " is read as " + read);
  }
}

void Tell_Code(const Line_Check& check, const Meant_Word& word) {
  const auto value = Try_Number(word.Number);
  if (!value || *value < 0 || *value > Last_M_Code) return;
  const auto number = static_cast<std::int16_t>(std::nearbyint(*value));
  if (number != *value) Tell_Rounded_Code(check, word, number);
  if (word.Letter == 'M' && Is_User_Output(number)) return;
  if (word.Letter == 'G' && (number == 20 || number == 21 || number == 70 || number == 71)) {
    Tell_Units(check, word, number);
    return;
  }
  const std::int8_t place = Find_Code(word.Letter, number);
  if (place == No_Code) {
    check.Tell(Check_Kind::Code_Missing, word.Column,
               Shown(word) + " is not known" +
                   (word.Letter == 'G' ? "; axis words of this line do not move" : ""),
               "leave it out where the job does not need it");
    return;
  }
  const Code& code = Code_Table()[static_cast<std::size_t>(place)];
  const std::string what = Shown(word) + " (" + std::string(code.Title) + ") has no effect";
  switch (code.Loss) {
    case Code_Loss::Nothing:
      break;
    case Code_Loss::Harmless:
      check.Tell(Check_Kind::Code_Not_Needed, word.Column, what, code.Instead);
      break;
    case Code_Loss::Ignored:
      check.Tell(Check_Kind::Code_Without_Effect, word.Column, what, code.Instead);
      break;
    case Code_Loss::Missing:
      check.Tell(Check_Kind::Code_Missing, word.Column, what, code.Instead);
      break;
  }
}

// Codes of one modal group exclude each other; the block acts on all of them, in its own order.
void Tell_Excluding_Codes(const Line_Check& check) {
  const Code_Set& codes = check.Outcome.Read.Codes;
  const auto table = Code_Table();
  for (int place = codes.Next(0, Acting_Code_Count); place != No_Code;
       place = codes.Next(place + 1, Acting_Code_Count)) {
    const Code& code = table[static_cast<std::size_t>(place)];
    const int next = codes.Next(place + 1, Acting_Code_Count);
    if (next == No_Code || code.Group == 0 || code.Group == modal_group::Motion) continue;
    const Code& other = table[static_cast<std::size_t>(next)];
    // Mist and flood go together.
    const bool together = code.Letter == 'M' && code.Number == 7 && other.Number == 8;
    if (other.Letter != code.Letter || other.Group != code.Group || together) continue;
    const std::string last = other.Letter + std::to_string(other.Number);
    check.Tell(Check_Kind::Codes_Exclude_Each_Other, 0,
               code.Letter + std::to_string(code.Number) + " and " + last +
                   " exclude each other; " + last + " acts last, wherever it stands");
  }
}

// --- Numbers and words ---------------------------------------------------------------------------

void Tell_Rounding(const Line_Check& check, const Meant_Word& word) {
  const auto written = Try_Number(word.Number);
  const auto meant = Meant_Value(word);
  if (!written || !meant || *written == *meant) return;
  check.Tell(Check_Kind::Word_Rounded, word.Column,
             Shown(word) + " is read as " + word.Letter + Finding_Number(*meant));
}

// A comma is read as a point: "S10,000" is 10.
void Tell_Comma(const Line_Check& check, const Meant_Word& word) {
  const std::size_t comma = word.Number.find(',');
  if (Application.DecimalSeparator == ',' || comma == std::string_view::npos) return;
  if (word.Number.size() - comma != 4) return;  // three digits behind it
  const auto read = Meant_Value(word);
  if (!read) return;
  check.Tell(Check_Kind::Comma_In_Number, word.Column,
             Shown(word) + " is read as " + word.Letter + Finding_Number(*read));
}

void Tell_Unused(const Line_Check& check, const Meant_Word& word) {
  const auto tool = Compiler.ToolNow;
  if (word.Letter == 'D' && Meant_Value(word) != tool && Meant_Value(word) != Nullable(0)) {
    check.Tell(Check_Kind::Comp_Other_Tool, word.Column,
               Shown(word) + " is not used: compensation takes the diameter of tool T" +
                   (tool ? Finding_Number(*tool) : ""));
  } else if (word.Letter == 'D') {
    check.Tell(Check_Kind::Word_Not_Used, word.Column,
               "D is not used: compensation takes the diameter of tool T",
               "set the tool's diameter in the tool list");
  } else if (word.Letter == 'H') {
    check.Tell(Check_Kind::Word_Not_Used, word.Column, "H is not used");
  }
}

}  // namespace

void Check_Words(std::string_view text, Meant_Line meant, const Reader_Outcome& outcome,
                 const Report_Finding& report) {
  if (outcome.Was_Read) Take_Out_Swallowed(text, meant, report);
  const Line_Check check{text, meant, outcome, report};
  Tell_Unread(check);
  if (!outcome.Was_Read) {
    Tell_Lost_Block(check);
    return;
  }
  if (outcome.Failure) check.Tell(Check_Kind::Block_Fails, 0, Lost_Because(*outcome.Failure));
  Tell_Words_Cut_Wrongly(check);
  Tell_Excluding_Codes(check);
  for (const Meant_Word& word : meant.Words) {
    if (Is_Code(word)) {
      Tell_Code(check, word);
    } else if (Is_Read(word.Letter) && word.Letter != 'N' && word.Letter != 'L') {
      Tell_Rounding(check, word);
      Tell_Comma(check, word);
      Tell_Unused(check, word);
    }
  }
}

}  // namespace norvik
