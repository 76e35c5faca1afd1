// The line pass as a whole: progress and ESC, wrong input, and properties of generated programs.
#include "compiler/state/compile_losses.h"
#include "compiler/text/block_reader.h"
#include "line_allocations.h"
#include "line_fixture.h"

#include <random>
#include <sstream>

#include <sys/stat.h>

namespace norvik {
namespace {

std::string Repeated(const std::string& text, int count) {
  std::string all;
  for (int n = 0; n < count; ++n) all += text;
  return all;
}

// --- Program text --------------------------------------------------------------------------------

struct Text_Row {
  const char* Text;
  std::vector<std::string> Lines;
};

class Program_Text_Rows : public ::testing::TestWithParam<Text_Row> {};

TEST_P(Program_Text_Rows, Split) {
  const GCode_Text text{std::string(GetParam().Text)};
  std::vector<std::string> lines;
  for (int n = 1; n <= text.Line_Count(); ++n) lines.emplace_back(text.Line(n));
  EXPECT_EQ(lines, GetParam().Lines);
}

INSTANTIATE_TEST_SUITE_P(Line_Ends, Program_Text_Rows,
                         ::testing::Values(Text_Row{"", {}}, Text_Row{"\r\n\n\r", {}},
                                           Text_Row{"a\r\nb\nc\rd", {"a", "b", "c", "d"}},
                                           Text_Row{"a\n\n\nb\n", {"a", "b"}},
                                           Text_Row{" \r\r\nb", {" ", "b"}}));

TEST_F(Line_Pass_Test, Saved_changes_are_the_program) {
  Compile_Status.CurrentStep = 9;
  SaveChanges("G1 X1\n\nG1 X2\n");
  EXPECT_EQ(GCodeLineCount(), 2);
  EXPECT_EQ(GCode_Line(2), "G1 X2");
  EXPECT_THROW(GCode_Line(0), Fault);
  EXPECT_THROW(GCode_Line(3), Fault);
  EXPECT_EQ(Machine.EndingStep, 2);
  EXPECT_EQ(Compile_Status.CurrentStep, 2);
  EXPECT_EQ(Messages.Panel[1], "GCode Step Display: Updateing data...");
}

// --- Progress and ESC ----------------------------------------------------------------------------

TEST_F(Line_Pass_Test, Yields_once_more_than_a_hundred_lines_are_done) {
  Compile(Repeated("X1\n", 100));
  EXPECT_EQ(Scripted.Yields, 0);
  Compile(Repeated("X1\n", 202));
  EXPECT_EQ(Scripted.Yields, 2);
  EXPECT_EQ(Messages.Panel[1],
            "GCode Compile: Compiling Program 100.00% completed, press ESC to cancel");
  EXPECT_EQ(Compile_Status.CompileProgress, 100);
}

TEST_F(Line_Pass_Test, Escape_leaves_what_was_written) {
  Scripted.On_Yield = [&] { Application.EscFlag = Scripted.Yields == 2; };
  EXPECT_EQ(Compile(Repeated("X1\n", 1000)).size(), 202U);
  EXPECT_FALSE(Application.EscFlag);
}

// A program or macro that would work for hours or fill the disk ends, and its line is named.
TEST_F(Line_Pass_Test, Work_without_end_is_bounded) {
  const auto expect_told = [&](const std::string& program, const char* excess) {
    Compile_Losses = {};
    Compile(program);
    ASSERT_EQ(Compile_Losses.List.size(), 1U) << excess;
    EXPECT_THAT(Compile_Losses.List[0].Why, ::testing::HasSubstr(excess));
    EXPECT_EQ(Compile_Losses.List[0].Line, 2);
    EXPECT_THAT(Logged(), ::testing::Contains(::testing::HasSubstr("at line 2")));
  };
  for (int n = 0; n < 3; ++n) {
    const std::string inner = n == 2 ? "(nothing)" : "M98 " + std::to_string(n + 1);
    MachineSetup.MacroFile[n] =
        Write_File("macro" + std::to_string(n), "REPEAT 30000\n" + inner + "\nENDREPEAT\n");
  }
  Line_Pass_Limits.Lines = 5000;
  expect_told("G0 X0\nM98 2\n", "more than 5000 lines");
  Line_Pass_Limits = {};
  Line_Pass_Limits.Macro_Calls = 100;
  expect_told("G0 X0\nM98 1\n", "more than 100 calls");
  Line_Pass_Limits = {};
  Line_Pass_Limits.Text_Bytes = 1'000'000;
  expect_told("G0 X0\nG81 X1 Y1 Z-1 R0.1 L3000 (" + std::string(1000, 'x') + ")\nG0 X1\n",
              "more than 1 MB");
  Line_Pass_Limits = {};
}

// A machine file from elsewhere may name any file as a macro: its text stays out of the error log.
TEST_F(Line_Pass_Test, Unreadable_lines_of_a_macro_are_logged_by_their_place) {
  MachineSetup.MacroFile[3] = Write_File("secret",
                                         "G0 X1\nT:secret\nREPEAT secret\nX2\nENDREPEAT\n"
                                         "M98 9secret\n");
  Compile("M98 3\nT:own\n");
  for (const std::string& line : Logged())
    EXPECT_THAT(line, ::testing::Not(::testing::HasSubstr("secret")));
  EXPECT_THAT(Logged(), ::testing::Contains(
                            ::testing::HasSubstr("NIST_Block_Interpretor_Error: macro 3, line 2")));
  EXPECT_THAT(Logged(),
              ::testing::Contains(::testing::HasSubstr("NIST_Block_Interpretor_Error: T:own")));
}

// What a machine file names need not be what it says.
TEST_F(Line_Pass_Test, Macros_are_files_on_a_disk) {
  const std::string pipe = (Folder / "pipe").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& path :
       {std::string("/dev/zero"), std::string("/proc/self/environ"), pipe}) {
    MachineSetup.MacroFile[1] = path;
    EXPECT_TRUE(Compile("M98 1\n").empty()) << path;
    EXPECT_THAT(Logged(), ::testing::Contains(::testing::HasSubstr("choose a file on a disk")));
  }
}

TEST_F(Line_Pass_Test, Escape_is_heard_in_repeats_and_macros) {
  // Sixty macros, each calling the next three times: more lines than any machine could run.
  for (int n = 0; n < 60; ++n) {
    const std::string call = "M98 " + std::to_string(n + 1) + "\n";
    MachineSetup.MacroFile[n] =
        Write_File("macro" + std::to_string(n), "G1 X1\n" + call + call + call);
  }
  Scripted.On_Yield = [&] { Application.EscFlag = Scripted.Yields == 3; };
  EXPECT_LT(Compile("M98 0").size(), 400U);
  EXPECT_FALSE(Application.EscFlag);

  Scripted.Yields = 0;
  EXPECT_LT(Compile("REPEAT 32000\nX1\nX2\nENDREPEAT\nX3").size(), 400U);
  EXPECT_TRUE(Logged().empty());
}

TEST_F(Line_Pass_Test, Long_lines_and_large_cycles_yield_sooner) {
  Compile(Repeated("(" + std::string(600'000, 'x') + ")\n", 4));
  EXPECT_EQ(Scripted.Yields, 2);
  Scripted.Yields = 0;
  Compile(Repeated("G81 X1 Y1 Z-1 R1 L20000\n", 2));
  EXPECT_EQ(Scripted.Yields, 2);
}

TEST_F(Line_Pass_Test, A_compile_within_a_yield_does_nothing) {
  bool refused = false;
  Scripted.On_Yield = [&] {
    refused = !Run_Block_Pass("X5", Compile_Operations());
    refused = refused && !Run_Line_Pass(GCode_Program.Text, Compile_Operations());
  };
  EXPECT_EQ(Compile(Repeated("X1\n", 150)).size(), 150U);
  EXPECT_TRUE(refused);
}

// --- Wrong input ---------------------------------------------------------------------------------

TEST_F(Line_Pass_Test, Garbage_is_logged_and_passed_over) {
  std::mt19937 random(7);
  std::string garbage = "G1 X1\n";
  for (int n = 0; n < 200'000; ++n) garbage += static_cast<char>(random() % 256);
  garbage += "\nG1 X2\n";
  const auto& records = Compile(garbage);
  ASSERT_GE(records.size(), 2U);
  EXPECT_EQ(records.front().End[1], Nullable(1));
  EXPECT_EQ(records.back().End[1], Nullable(2));
  EXPECT_FALSE(Logged().empty());
}

TEST_F(Line_Pass_Test, One_enormous_line) {
  EXPECT_EQ(Compile(Repeated("M3 ", 1'000'000) + "\nG1 X1").size(), 2U);
  EXPECT_EQ(Compile(std::string(3'000'000, '\0') + "G1").size(), 1U);
  EXPECT_EQ(Compile("(" + std::string(3'000'000, 'G') + ")\nX1").size(), 1U);
}

TEST_F(Line_Pass_Test, Lines_of_nothing_cost_nothing) {
  const GCode_Text text(std::string(1'000'000, '\n'));
  EXPECT_EQ(text.Line_Count(), 0);
  EXPECT_TRUE(Compile(std::string(1'000'000, '\n')).empty());
}

TEST_F(Line_Pass_Test, Drill_cycles_that_fault_do_so_before_the_hole) {
  // Incomplete, it asks for no dwell yet, and keeps its words and its mode like the others.
  Compile("G0 Z5\nG82 X1 Z-1\nY2 R1");
  EXPECT_EQ(Compiler.ModalGroups[modal_group::Motion], std::int16_t{82});
  EXPECT_EQ(Compiler.CycleX, Nullable(1));
  EXPECT_EQ(Compiler_Memory.CycleZ, Nullable(-1));
  EXPECT_EQ(Compile_Tables.Program_LineArc.Rows.size(), 1U);
  EXPECT_THAT(Logged(), ::testing::ElementsAre(::testing::HasSubstr("Y2 R1")));
  for (const char* hole : {"G82 X1 Y1 Z-1 R1", "G82 X1 Y1 Z-1 R1 P1e39", "G83 X1 Y1 Z-1 R1",
                           "G83 X1 Y1 Z-1000 R1 Q.00001"}) {
    MachineSetup.Axis_Format = "0.######";
    Compile("G0 Z5\nG91\n" + std::string(hole));
    EXPECT_EQ(Compile_Tables.Program_LineArc.Rows.size(), 1U) << hole;
    EXPECT_EQ(Compiler.ModalGroups[modal_group::Distance], std::int16_t{91}) << hole;
  }
}

TEST_F(Line_Pass_Test, Macros_nested_to_the_last) {
  for (int n = 0; n < 150; ++n) {
    MachineSetup.MacroFile[n] =
        Write_File("nest" + std::to_string(n),
                   "X" + std::to_string(n) + "\nM98 " + std::to_string(n + 1) + "\n");
  }
  MachineSetup.MacroFile[150] = Write_File("nest150", "M98 0\nX150\n");
  const auto& records = Compile("M98 0\nX200");
  ASSERT_EQ(records.size(), 152U);
  EXPECT_EQ(records[150].End[1], Nullable(150));
  ASSERT_EQ(Scripted.Boxes.size(), 1U);
  EXPECT_EQ(Scripted.Boxes[0].Text, "Macro 0 already open");
}

TEST_F(Line_Pass_Test, A_macro_folder_that_is_gone_or_a_folder_instead_of_a_file) {
  MachineSetup.MacroFile[1] = (Folder / "gone/one.gc").string();
  MachineSetup.MacroFile[2] = Folder.string();
  EXPECT_EQ(Compile("M98 1\nM98 2\nX1").size(), 1U);
  EXPECT_TRUE(Scripted.Boxes.empty());
  EXPECT_TRUE(Logged().empty());
}

TEST_F(Line_Pass_Test, Trouble_with_a_macro_is_shown_once_a_compile) {
  Compile(Repeated("M98 7\n", 50));
  EXPECT_EQ(Scripted.Boxes.size(), 1U);
  Compile("M98 7");
  EXPECT_EQ(Scripted.Boxes.size(), 2U);
}

TEST_F(Line_Pass_Test, Reading_clean_lines_allocates_nothing) {
  const std::string lines[] = {"G1 X1.2345 Y-2.5 Z0.125", "n10 g2 x1 y1 i.5 j-.5 f100", "M3 S1000",
                               "X0.0005 Y99999.99999", "G1 E5 X1 X2"};
  Block block;
  for (const std::string& line : lines) Read_Words(line, block);
  const std::size_t before = Allocation_Count();
  for (int n = 0; n < 100; ++n) {
    for (const std::string& line : lines) Read_Words(line, block);
  }
  EXPECT_EQ(Allocation_Count(), before);
}

// --- Properties of generated programs ------------------------------------------------------------

// Lines of well-formed words, each a text of its own.
class Program_Maker {
 public:
  explicit Program_Maker(unsigned seed) : Random(seed) {}

  std::vector<std::string> Line_Words() {
    std::vector<std::string> words;
    if (Pick(2))
      words.push_back(One_Of({"G0", "G1", "G1", "G2", "G3", "G45", "G80", "G81", "G83", "G90",
                              "G91", "G90 G1", "G17", "G18", "G19", "G41", "G40"}));
    if (Pick(8) == 0) words.push_back(One_Of({"M3", "M4", "M5", "M7", "M9", "M6", "M66", "M0"}));
    for (const char* letter : {"X", "Y", "Z", "A", "I", "J", "K", "R", "Q", "F", "S", "P"}) {
      if (Pick(3) == 0) words.push_back(letter + Number(letter[0] == 'Q'));
    }
    if (Pick(20) == 0) words.push_back("T" + std::to_string(Pick(210)));
    return words;
  }
  static std::string Joined(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) line += (line.empty() ? "" : " ") + word;
    return line;
  }
  std::string Program(int lines) {
    std::string text = "G0 X0 Y0 Z0\n";
    for (int n = 0; n < lines; ++n) text += Joined(Line_Words()) + "\n";
    return text;
  }
  std::size_t Pick(std::size_t count) { return Random() % count; }
  std::mt19937 Random;

 private:
  std::string One_Of(std::initializer_list<const char*> texts) {
    return *(texts.begin() + Pick(texts.size()));
  }
  std::string Number(bool positive) {
    std::string digits = std::to_string(Pick(10'000));
    if (positive) digits = std::to_string(200 + Pick(2000));
    digits.insert(digits.size() > 2 ? digits.size() - 2 : 0, ".");
    return (!positive && Pick(2) ? "-" : "") + digits + std::to_string(Pick(1000));
  }
};

// Records without what depends on where the text came from.
std::vector<LineArc> Without_Lines(const Record_List<LineArc>& records) {
  std::vector<LineArc> plain(records.begin(), records.end());
  for (LineArc& record : plain) {
    record.LineNumber = 0;
    record.SourceText = {};
  }
  return plain;
}

class Generated_Programs : public Line_Pass_Test, public ::testing::WithParamInterface<unsigned> {
 protected:
  std::vector<LineArc> Plain(const std::string& program) {
    Compiler_Memory = {};
    return Without_Lines(Compile(program));
  }
  Program_Maker Maker{GetParam()};
};

TEST_P(Generated_Programs, Each_record_starts_where_the_one_before_ended) {
  const auto& records = Compile(Maker.Program(400));
  EXPECT_GT(records.size(), 300U);
  Indexed<Nullable, 1, 6> last;
  for (const LineArc& record : records) {
    ASSERT_TRUE(record.Start == last) << record.SourceText;
    last = record.End;
  }
}

TEST_P(Generated_Programs, Region_and_repetition_make_no_difference) {
  const std::string program = Maker.Program(400);
  const auto first = Plain(program);
  EXPECT_TRUE(Plain(program) == first);
  Application.DecimalSeparator = ',';
  EXPECT_TRUE(Plain(program) == first);
  std::string commas = program;
  std::ranges::replace(commas, '.', ',');
  EXPECT_TRUE(Plain(commas) == first);
  Application.DecimalSeparator = '.';
  EXPECT_TRUE(Plain(commas) == first);
}

TEST_P(Generated_Programs, Order_case_blanks_numbers_and_comments_make_no_difference) {
  std::string plain = "G0 X0 Y0 Z0\n", changed = plain;
  for (int n = 0; n < 300; ++n) {
    std::vector<std::string> words = Maker.Line_Words();
    plain += Program_Maker::Joined(words) + "\n";
    std::ranges::shuffle(words, Maker.Random);
    std::string line = "N" + std::to_string(n) + "  " + Program_Maker::Joined(words) + " ";
    if (n % 2)
      std::ranges::transform(line, line.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
      });
    changed += (n % 3 ? "" : "(G5 X--) ") + line + (n % 3 ? "{any G7}" : "") + "\n";
  }
  EXPECT_TRUE(Plain(changed) == Plain(plain));
}

TEST_P(Generated_Programs, A_macro_is_its_lines_and_a_repeat_is_its_passes) {
  const std::string body = Maker.Program(40), rest = Maker.Program(20);
  MachineSetup.MacroFile[9] = Write_File("nine.gc", body);
  EXPECT_TRUE(Plain(rest + "M98 9\n" + rest) == Plain(rest + body + rest));
  EXPECT_TRUE(Plain(rest + "REPEAT 2\n" + body + "ENDREPEAT\n" + rest) ==
              Plain(rest + body + body + body + rest));
  MachineSetup.MacroFile[9] = Write_File("nine.gc", "REPEAT 1\n" + body + "ENDREPEAT\n");
  EXPECT_TRUE(Plain("M98 9\n") == Plain(body + body));
}

INSTANTIATE_TEST_SUITE_P(Seeds, Generated_Programs, ::testing::Values(1U, 2U, 3U, 4U));

}  // namespace
}  // namespace norvik
