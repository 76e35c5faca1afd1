#include "compiler/text/block_reader.h"

#include "compiler/text/line_cutter.h"
#include "compiler/text/line_scan.h"
#include "compiler/text/plain_number.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/rounding.h"

#include <bit>

namespace norvik {

namespace {

// Working storage that is used again for each line, so that reading a line allocates nothing.
struct Block_Reader_State {
  Scanned_Line Scanned;
  Line_Cutter Cutter;
};
Block_Reader_State Block_Reader;

// The reader's loops over M and G words end after so many.
constexpr int Most_Code_Words = 999;

// --- A clean line --------------------------------------------------------------------------------

std::int16_t Code_Number(const Plain_Number& number) {
  return To_Int16(number.Value());
}

void Store_Word(Block& block, int name, double value) {
  block.Words[name] = value;
  Last_Word(static_cast<word::Name>(name)) = value;
}

void Take_Codes(const Scanned_Line& line, Block& block) {
  // All M words come before the first G word, as a fault in one keeps the later ones unread.
  for (const bool is_m : {true, false}) {
    for (int i = 0; i < line.Code_Count; ++i) {
      const Scanned_Line::Code_Word& code = line.Codes[static_cast<std::size_t>(i)];
      if (code.Is_M != is_m) continue;
      const std::int16_t number = Code_Number(code.Number);
      is_m ? block.Set_M(number) : block.Set_G(number);
    }
  }
}

void Take_Scanned(const Scanned_Line& line, Block& block) {
  Take_Codes(line, block);
  const Axis_Word_Rounding& rounding = Current_Axis_Rounding();
  for (std::uint32_t rest = line.Seen; rest != 0; rest &= rest - 1) {
    const int name = std::countr_zero(rest);
    const Plain_Number& number = line.Numbers[static_cast<std::size_t>(name)];
    Store_Word(block, name, name == word::L ? Rounded_Away(number) : rounding.Value(number));
  }
}

// --- Any other line ------------------------------------------------------------------------------

void Cut_Repeats(Line_Cutter& line, Block& block) {
  if (line.Cut_Keyword("ENDREPEAT")) block.WordRepeat = Repeat_End_Mark;
  if (line.Done()) return;
  const auto count = line.Cut_Keyword("REPEAT");
  const auto digits = count ? NumbersOnly(*count) : std::nullopt;
  // The program takes its count from the scan for repeats; here a faulty one is no matter.
  if (digits) block.WordRepeat = NullToZero(*digits);
}

template <class Set>
void Cut_Codes(Line_Cutter& line, char letter, Set&& set) {
  line.Cut_All_To_Blank(letter, Most_Code_Words,
                        [&](std::string_view text) { set(To_Int16(Number_Value(text))); });
}

double Whole_Word(std::string_view text) {
  Plain_Number number;
  const char* end = text.data() + text.size();
  if (Scan_Plain_Number(text.data(), end, number) == end && number.Is_Plain()) {
    return Rounded_Away(number);
  }
  return To_Double(Format_Number(Number_Value(text), "0"));
}

void Cut_Word(Line_Cutter& line, int name, const Axis_Word_Rounding& rounding, Block& block) {
  const char letter = word::Letters[name];
  const auto text = name == word::L ? line.Cut_To_Blank(letter) : line.Cut_Real(letter);
  if (!text) return;
  Store_Word(block, name, name == word::L ? Whole_Word(*text) : rounding.Value(*text));
}

void Cut_All(Line_Cutter& line, Block& block) {
  if (!line.Done()) Cut_Repeats(line, block);
  if (!line.Done()) line.Cut_To_Blank('N');
  if (!line.Done()) Cut_Codes(line, 'M', [&](std::int16_t number) { block.Set_M(number); });
  if (!line.Done()) Cut_Codes(line, 'G', [&](std::int16_t number) { block.Set_G(number); });
  const Axis_Word_Rounding& rounding = Current_Axis_Rounding();
  for (int name = 0; name < word::Count && !line.Done(); ++name) {
    Cut_Word(line, name, rounding, block);
  }
}

}  // namespace

void Read_Words_By_Cutting(std::string_view text, Block& block, std::string* left) {
  block.Clear();
  Line_Cutter& line = Block_Reader.Cutter;
  line.Take(text);
  block.Comment = line.Comment();
  Cut_All(line, block);
  if (left) left->assign(line.Left());
}

void Read_Words(std::string_view text, Block& block) {
  Scanned_Line& scanned = Block_Reader.Scanned;
  if (!Scan_Clean_Line(text, scanned)) {
    Read_Words_By_Cutting(text, block);
    return;
  }
  block.Clear();
  Take_Scanned(scanned, block);
}

}  // namespace norvik
