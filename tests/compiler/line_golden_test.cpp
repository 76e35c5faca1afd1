// Programs and the records that they must make, worked out by hand. A case is a folder under
// line_golden/:
//
//   why.txt       one sentence: what the case holds
//   program.gc    the program
//   setup.txt     lines of KEY=VALUE over the fixture's setup (where needed)
//   macro_N.gc    file of macro N (where needed)
//   expected.txt  one record a line, then what was shown and logged
//
// A record is its line, its kind and where it ends (X Y Z A, "-" absent), then what differs from a
// record that does nothing else. Each record starts where the one before ended; the runner checks
// that, so the start is not written.
#include "compiler/text/program_text.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/rounding.h"
#include "line_fixture.h"

#include <functional>
#include <map>
#include <sstream>

namespace norvik {
namespace {

namespace fs = std::filesystem;

std::string Shown(Nullable value) {
  return value ? Shortest_Text(*value) : "-";
}

std::string Shown_Kind(const LineArc& record) {
  if (record.RecordType == Record_Type::Control) return "control";
  if (record.RecordType == Record_Type::Line) return "line";
  return record.ArcDirection == 0 ? "arc-cw" : "arc-ccw";
}

std::string Shown_Record(const LineArc& record) {
  std::ostringstream out;
  out << record.LineNumber << ' ' << Shown_Kind(record);
  for (int axis = 1; axis <= 6; ++axis) {
    if (axis <= 4 || record.End[axis]) out << ' ' << Shown(record.End[axis]);
  }
  if (record.CenterI) out << " centre " << Shown(record.CenterI) << ' ' << Shown(record.CenterJ);
  out << (record.FeedMove ? " cut " : " travel ") << Shortest_Text(record.Feed[1]);
  if (record.Out != Indexed<std::int16_t, 0, 4>{{1, 1, 1, 1, 1}}) {
    out << " out";
    for (const std::int16_t output : record.Out) out << ' ' << output;
  }
  if (record.PauseTime != 0) out << " pause " << Shortest_Text(record.PauseTime);
  if (record.CompMode != 0) out << " comp " << record.CompMode;
  if (record.ToolNumber != Nullable(1)) out << " tool " << Shown(record.ToolNumber);
  if (record.SpindleSpeed) out << " S " << Shown(record.SpindleSpeed);
  if (record.WaitInput) out << " wait " << *record.WaitInput;
  return out.str();
}

// What never varies between records of one kind, and what must fit from one record to the next.
void Expect_Whole(const Record_List<LineArc>& records, const GCode_Text& program) {
  Indexed<Nullable, 1, 6> last;
  for (const LineArc& record : records) {
    EXPECT_TRUE(record.Start == last) << Shown_Record(record);
    last = record.End;
    EXPECT_EQ(record.RecordFlag, record.RecordType == Record_Type::Control ? 0 : 1);
    EXPECT_EQ(record.ArcDirection.has_value(), record.RecordType == Record_Type::Arc);
    for (int n = 2; n <= 4; ++n) EXPECT_EQ(record.Feed[n], record.Feed[1]);
    EXPECT_EQ(record.SpareFlag, 0);
    EXPECT_FALSE(record.SpareWord);
    EXPECT_NE(program.Whole().find(record.SourceText) == std::string::npos,
              record.LineNumber >= 1 && record.LineNumber <= program.Line_Count() &&
                  program.Line(record.LineNumber) == record.SourceText);
  }
}

std::string Text_Of(const fs::path& file) {
  return fs::exists(file) ? Read_Whole_File(file.string()) : std::string();
}

class Golden_Test : public Line_Pass_Test {
 protected:
  void Apply_Setup(const fs::path& folder) {
    const std::map<std::string, std::function<void(const std::string&)>> keys = {
        {"Axis_Format", [](const std::string& v) { MachineSetup.Axis_Format = v; }},
        {"DecimalSeparator", [](const std::string& v) { Application.DecimalSeparator = v.at(0); }},
        {"Parallel_Port_Type",
         [](const std::string& v) { MachineSetup.Parallel_Port_Type = To_Int16(To_Double(v)); }},
        {"Parallel_MCode_High_0",
         [](const std::string& v) { MachineSetup.Parallel_MCode_High[0] = v; }},
        {"Parallel_MCode_Low_0",
         [](const std::string& v) { MachineSetup.Parallel_MCode_Low[0] = v; }},
        {"Dravon_MCode_High_0",
         [](const std::string& v) { MachineSetup.Dravon_MCode_High[0] = v; }},
        {"Missing_Macro",
         [&](const std::string& v) {
           MachineSetup.MacroFile[To_Int16(To_Double(v))] = "/nowhere/gone.gc";
         }},
    };
    for (const std::string& line : Split_Lines(Text_Of(folder / "setup.txt"))) {
      const auto mark = line.find('=');
      keys.at(line.substr(0, mark))(line.substr(mark + 1));
    }
    for (const auto& entry : fs::directory_iterator(folder)) {
      const std::string stem = entry.path().stem().string();
      if (!stem.starts_with("macro_")) continue;
      MachineSetup.MacroFile[To_Int16(To_Double(stem.substr(6)))] = entry.path().string();
    }
  }

  // The lines that the case makes.
  std::vector<std::string> Made(const fs::path& folder) {
    Apply_Setup(folder);
    const auto program = std::make_shared<const GCode_Text>(Text_Of(folder / "program.gc"));
    Run_Line_Pass(program, Compile_Operations());
    const auto& records = Compile_Tables.Program_LineArc.Rows;
    std::vector<std::string> lines;
    for (const LineArc& record : records) lines.push_back(Shown_Record(record));
    for (const auto& box : Scripted.Boxes) lines.push_back("shown: " + box.Text);
    for (const std::string& text : Logged()) lines.push_back("logged: " + text);
    if (!fs::exists(folder / "macro_3.gc")) Expect_Whole(records, *program);
    return lines;
  }

  static std::vector<std::string> Expected(const fs::path& folder) {
    std::vector<std::string> lines;
    for (const std::string& line : Split_Lines(Text_Of(folder / "expected.txt"))) {
      if (!line.starts_with("#") && !line.empty()) lines.push_back(line);
    }
    return lines;
  }
};

// The first difference in words, empty when there is none.
std::string First_Difference(const std::vector<std::string>& made,
                             const std::vector<std::string>& expected) {
  for (std::size_t n = 0; n < std::max(made.size(), expected.size()); ++n) {
    const std::string is = n < made.size() ? made[n] : "(nothing)";
    const std::string should = n < expected.size() ? expected[n] : "(nothing)";
    if (is != should) {
      return "record " + std::to_string(n + 1) + "\n  made:     " + is + "\n  expected: " + should;
    }
  }
  return "";
}

std::vector<std::string> Cases(const std::string& tree) {
  std::vector<std::string> folders;
  for (const auto& entry : fs::directory_iterator(fs::path(NORVIK_TEST_FOLDER) / tree)) {
    folders.push_back(entry.path().string());
  }
  std::ranges::sort(folders);
  return folders;
}

class Golden_Cases : public Golden_Test, public ::testing::WithParamInterface<std::string> {};

TEST_P(Golden_Cases, Make_the_expected_records) {
  const fs::path folder = GetParam();
  EXPECT_EQ(First_Difference(Made(folder), Expected(folder)), "") << Text_Of(folder / "why.txt");
}

INSTANTIATE_TEST_SUITE_P(Line_Pass, Golden_Cases, ::testing::ValuesIn(Cases("line_golden")),
                         [](const auto& row) { return fs::path(row.param).filename().string(); });

// Proves that the comparison sees: the expectation of this case is wrong on purpose.
TEST_F(Golden_Test, A_wrong_expectation_is_seen) {
  const fs::path folder = fs::path(NORVIK_TEST_FOLDER) / "line_golden_wrong/one_feed_off";
  EXPECT_EQ(First_Difference(Made(folder), Expected(folder)),
            "record 2\n  made:     2 line 2 - - - cut 20\n  expected: 2 line 2 - - - cut 21");
}

}  // namespace
}  // namespace norvik
