// The block reader: its rules by hand, and the shipped reader against plain string cutting.
#include "compiler/text/block_reader.h"
#include "compiler/text/line_cutter.h"
#include "compiler/text/line_scan.h"
#include "core/format.h"
#include "core/numbers.h"
#include "line_fixture.h"
#include "line_reference.h"

#include <random>
#include <sstream>

namespace norvik {
namespace {

// "G1 G90 M3 X1.5 Y-2": flags in order, then words in the reader's order; "fault" when it fails.
std::string Shown(const std::string& text) {
  Block block;
  std::ostringstream out;
  try {
    Read_Words(text, block);
  } catch (const Fault&) {
    return "fault";
  }
  for (std::size_t n = 0; n <= Last_G_Code; ++n) {
    if (block.GFlags[n]) out << " G" << n;
  }
  for (std::size_t n = 0; n <= Last_M_Code; ++n) {
    if (block.MFlags[n]) out << " M" << n;
  }
  for (int name = 0; name < word::Count; ++name) {
    if (block.Words[name]) out << ' ' << word::Letters[name] << *block.Words[name];
  }
  if (block.WordRepeat) out << " repeat " << *block.WordRepeat;
  const std::string shown = out.str();
  return shown.empty() ? "" : shown.substr(1);
}

struct Reader_Row {
  const char* Text;
  const char* Read;
};

class Reader_Rows : public Line_Pass_Test, public ::testing::WithParamInterface<Reader_Row> {};

TEST_P(Reader_Rows, Reads) {
  for (const char sign : {'.', ','}) {
    Application.DecimalSeparator = sign;
    EXPECT_EQ(Shown(GetParam().Text), GetParam().Read) << sign;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Words_Apart, Reader_Rows,
    ::testing::Values(Reader_Row{"g1 x1 y2", "G1 X1 Y2"},               //
                      Reader_Row{"Y2 X1 G1", "G1 X1 Y2"},               // order means nothing
                      Reader_Row{"G1 X1 X2", "G1 X1"},                  // the first of two
                      Reader_Row{"N0010 G1 X+1. Y-.5", "G1 X1 Y-0.5"},  //
                      Reader_Row{"G1 X1.2345 Y1.0005", "G1 X1.235 Y1.001"},
                      Reader_Row{"X-0.0004", "X0"},
                      Reader_Row{"X1,5", "X1.5"},                   // either sign, either region
                      Reader_Row{"G1 E5 O7 U1 V2 W3 X1", "G1 X1"},  // letters never looked for
                      Reader_Row{"G90 G1 M3 M8 S1000", "G1 G90 M3 M8 S1000"},
                      Reader_Row{"G38.2 X1", "G38 X1"},  // fractions round to whole
                      Reader_Row{"G2.5", "G2"}, Reader_Row{"G3.5", "G4"}, Reader_Row{"L0", "L0"},
                      Reader_Row{"L2.5", "L3"}, Reader_Row{"X123456789012345678", "X1.23457e+17"},
                      Reader_Row{"", ""}, Reader_Row{"G", ""}, Reader_Row{"5", ""}));

INSTANTIATE_TEST_SUITE_P(
    Comments, Reader_Rows,
    ::testing::Values(Reader_Row{"(note) G1 X1", "G1 X1"},
                      Reader_Row{"G1 X1 (a) (b)", "fault"},    // B of the second has no number
                      Reader_Row{"G1 (A1) X1 (b2)", "fault"},  // B runs into its bracket
                      Reader_Row{"[x] (y) G1", "fault"},       // "[" first; the Y is read
                      Reader_Row{"(y5 ) [x] G1", "G1 Y5"},
                      Reader_Row{"(a ] X1", "X1"},  // any closer closes
                      Reader_Row{"G1 X1 (never closed", "G1 X1"},
                      Reader_Row{"G1 X1 (", "fault"},  // closed by its own opener
                      Reader_Row{"G1 X1 'note", "fault"}, Reader_Row{"G1 X1 'note)", "G1 X1"},
                      Reader_Row{"(only a note)", ""}, Reader_Row{"(M3)", ""}));

INSTANTIATE_TEST_SUITE_P(
    Run_Together, Reader_Rows,
    ::testing::Values(Reader_Row{"X1.0Y2.0", "X1 Y2"},  // in the reader's order, from the front
                      Reader_Row{"X1Y2Z3F100", "X1 Y2 Z3 F100"},
                      Reader_Row{"Y2X1", "X1 Y2"},     // X at the end of the line has no stop
                      Reader_Row{"Y2X1Z3", "fault"},   // X at 3, its stop at 2
                      Reader_Row{"AX1.0Y2", "fault"},  // A has no value
                      Reader_Row{"EX12Y2", "X1 Y2"},   // one digit too few for X at 2
                      Reader_Row{"G1X1", "fault"},     // G runs to the next blank
                      Reader_Row{"M3S500", "fault"},
                      Reader_Row{"N10G1 X5", "X5"},  // N swallows what follows it
                      Reader_Row{"N10\tG1 X5", "X5"}, Reader_Row{"G1 X\t5", "fault"},
                      Reader_Row{"X1E3", "X1"}));

INSTANTIATE_TEST_SUITE_P(Faults, Reader_Rows,
                         ::testing::Values(Reader_Row{"X Y1", "fault"}, Reader_Row{"X 1", "fault"},
                                           Reader_Row{"G 1", "fault"}, Reader_Row{"G1 X.", "fault"},
                                           Reader_Row{"X--4", "fault"}, Reader_Row{"X1-2", "fault"},
                                           Reader_Row{"X1.2.3", "fault"},
                                           Reader_Row{"G200", "fault"}, Reader_Row{"G-1", "fault"},
                                           Reader_Row{"M1001", "fault"},
                                           Reader_Row{"G99999", "fault"},
                                           Reader_Row{"L2X", "fault"}, Reader_Row{"M3 M", "fault"},
                                           Reader_Row{"G1 X", "G1"}));

INSTANTIATE_TEST_SUITE_P(Repeats, Reader_Rows,
                         ::testing::Values(Reader_Row{"REPEAT3", "repeat 3"},
                                           Reader_Row{"repeat X5", "X5"},
                                           Reader_Row{"ENDREPEAT", "repeat -9999"},
                                           Reader_Row{"G1 X1 endrepeat", "G1 X1 repeat -9999"}));

TEST_F(Line_Pass_Test, Comment_keeps_its_case) {
  Block block;
  const std::string line = "g1 x1 (Rough Cut)";
  Read_Words(line, block);
  EXPECT_EQ(block.Comment, "Rough Cut");
}

TEST_F(Line_Pass_Test, Words_before_a_fault_stay_sticky) {
  Block block;
  EXPECT_THROW(Read_Words("G1 X5 Y Z2", block), Fault);
  EXPECT_EQ(Compiler.Last[word::X], Nullable(5));
  EXPECT_FALSE(Compiler.Last[word::Z]);
}

TEST_F(Line_Pass_Test, Cutting_leaves_what_no_word_used_up) {
  Block block;
  std::string left;
  Read_Words_By_Cutting("G1 E5 X1 X2 ;uv", block, &left);
  EXPECT_EQ(left, "E5 X2 ;UV");
}

// --- Against the reference -----------------------------------------------------------------------

class Line_Maker {
 public:
  explicit Line_Maker(unsigned seed) : Random(seed) {}

  std::string Line() {
    switch (Pick(8)) {
      case 0:
        return Garbage();
      case 1:
        return Words("", 0);  // run together
      case 2:
        return Words(" ", 3) + Comment() + Words(" ", 3) + (Pick(2) ? Comment() : "");
      default:
        return Words(" ", Pick(2) ? 0 : 12);
    }
  }

 private:
  std::size_t Pick(std::size_t count) { return Random() % count; }
  std::string One_Of(std::initializer_list<const char*> texts) {
    return *(texts.begin() + Pick(texts.size()));
  }
  std::string Digits(std::size_t most) {
    std::string digits;
    for (std::size_t n = Pick(most + 1); n > 0; --n) digits += static_cast<char>('0' + Pick(10));
    return digits;
  }
  std::string Number() {
    std::string text = One_Of({"", "", "", "-", "+"}) + Digits(4);
    if (Pick(3)) text += One_Of({".", ".", ","}) + Digits(6);
    if (Pick(40) == 0)
      text = One_Of({"--4", ".", "-", "1-2", "1.2.3", "1,2.3", "99999999999999999",
                     "0.00049999999999999999", "1E3", "000000000000000001"});
    return text.empty() ? "1" : text;
  }
  // `odd`: one word in so many is odd; 0 for none.
  std::string Words(const std::string& gap, std::size_t odd) {
    std::string line;
    for (std::size_t n = Pick(7); n > 0; --n) {
      line += One_Of({"X", "Y", "Z", "I", "J", "G", "M", "F", "S", "N", "x", "y", "g", "A", "B",
                      "C", "K", "D", "H", "L", "P", "Q", "R", "T", "E", "O", "U", "V", "W", "l"});
      line += Pick(3) ? Number() : std::to_string(Pick(120));
      line += gap;
      if (odd != 0 && Pick(odd) == 0) {
        line += One_Of({"\t", "  ", "X", "REPEAT 3 ", "endrepeat ", "G1X", "%", ";", "'", "M98"});
      }
    }
    return line;
  }
  std::string Comment() {
    return One_Of({"(", "[", "{", "'"}) + Words(" ", 5) + One_Of({")", "]", "}", "'", ""});
  }
  std::string Garbage() {
    std::string line;
    for (std::size_t n = Pick(30); n > 0; --n) line += static_cast<char>(Pick(256));
    return line;
  }

  std::mt19937 Random;
};

class Reader_Against_Reference : public Line_Pass_Test,
                                 public ::testing::WithParamInterface<const char*> {};

Word_Values Sticky() {
  Word_Values values;
  for (int name = 0; name < word::Count; ++name) {
    values[name] = Last_Word(static_cast<word::Name>(name));
  }
  return values;
}

TEST_P(Reader_Against_Reference, Blocks_sticky_values_and_faults_are_the_same) {
  MachineSetup.Axis_Format = GetParam();
  int faults = 0, clean = 0;
  for (const char sign : {'.', ','}) {
    Application.DecimalSeparator = sign;
    Line_Maker maker(sign == '.' ? 1U : 2U);
    Scanned_Line scanned;
    Block block;
    for (int n = 0; n < 2500; ++n) {
      const std::string line = maker.Line();
      const Reference_Reading expected = Read_By_Reference(line, Sticky());
      bool fault = false;
      try {
        Read_Words(line, block);
      } catch (const Fault&) {
        fault = true;
      }
      block.Comment = {};
      ASSERT_EQ(fault, expected.Fault) << n << ": " << line;
      ASSERT_TRUE(block == expected.Read) << n << ": " << line;
      ASSERT_TRUE(Sticky() == expected.Last) << n << ": " << line;
      faults += fault ? 1 : 0;
      clean += Scan_Clean_Line(line, scanned) ? 1 : 0;
    }
  }
  // Both ways through the reader, and its failures, must have been walked often.
  EXPECT_GT(clean, 1000);
  EXPECT_GT(faults, 500);
}

INSTANTIATE_TEST_SUITE_P(Axis_Formats, Reader_Against_Reference,
                         ::testing::Values("000.000", "000.0000", "0.0##", "#.#", "", "0",
                                           "0,000.00", "0.00 mm", "0.00000000000000000"));

TEST_F(Line_Pass_Test, Every_tie_rounds_as_its_text_says) {
  for (const char* pattern : {"000.000", "0.0", "000.0000"}) {
    MachineSetup.Axis_Format = pattern;
    for (int whole = -30; whole <= 30; ++whole) {
      for (int n = 0; n <= 99999; n += 37) {
        const std::string digits = std::to_string(100000 + n).substr(1);
        const std::string text = std::to_string(whole) + "." + digits;
        Block block;
        Read_Words("X" + text, block);
        ASSERT_EQ(block.Words[word::X], Nullable(To_Double(Format_Axis_Number(To_Double(text)))))
            << text;
      }
    }
  }
}

}  // namespace
}  // namespace norvik
