// What must never happen, whatever the file holds: a crash, a program without its end, a number
// that no machine takes, a scratch file left behind, a loss that nobody is told of.
#include "import/dxf/import.h"
#include "import/excellon/import.h"
#include "import/hpgl/import.h"
#include "import_fixture.h"

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace norvik {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;

struct Importer {
  const char* Name;
  const char* File;
  bool (*Import)(const std::string& path);
  std::vector<std::string> Footer;
};
const Importer Importers[] = {
    {"dxf", "part.dxf", Import_DXF_File, {"G00 Z0.25", "M05", "M09", "G00 X0 Y0", "M30"}},
    {"hpgl", "part.plt", Import_HPGL_File, {"G00 Z0.25", "G00 X0 Y0", "M05", "M09", "M30"}},
    {"excellon",
     "part.nc",
     Import_Excellon_File,
     {"G00 X000.000 Y000.000", "M05", "M09", "[END OF PROGRAM]"}},
};

// --- Samples: every kind of entity or command, again and again -----------------------------------

std::string Pairs(std::initializer_list<const char*> values) {
  std::string text;
  for (const char* value : values) text += std::string(value) + "\r\n";
  return text;
}

std::string DXF_Sample(int rounds) {
  std::string text = Pairs({"0", "SECTION", "2", "ENTITIES"});
  for (int n = 0; n < rounds; ++n) {
    const std::string at = std::to_string(n % 97) + ".5";
    const char* x = at.c_str();
    text += Pairs({"0", "LINE", "8", "CUT", "10", x, "20", "1", "30", "0", "11", "5", "21", x});
    text += Pairs({"0", "ARC", "8", "cut", "10", x, "20", "3", "40", "1.5", "50", "15", "51", x});
    text += Pairs({"0", "CIRCLE", "8", "RIM", "10", x, "20", x, "30", "-0.1", "40", "0.75"});
    text += Pairs({"0",  "LWPOLYLINE", "8",  "RIM", "70", "1",   "10", x,   "20", "0",
                   "10", "2",          "20", x,     "42", "0.5", "10", "3", "20", "4"});
    text += Pairs({"0", "POLYLINE", "8", "P", "66", "1", "10", "0", "20", "0", "70", "1"});
    text += Pairs({"0", "VERTEX", "10", x, "20", "1", "0", "VERTEX", "10", "2", "20", x});
    text += Pairs({"0", "SEQEND", "0", "POINT", "10", x, "20", x, "0", "SPLINE", "10", x});
    text += Pairs({"0", "3DFACE", "10", x, "20", "0", "11", "1", "21", x, "12", "3", "22", "3",
                   "13", "0", "23", x});
  }
  return text + Pairs({"0", "ENDSEC", "0", "EOF"});
}

std::string HPGL_Sample(int rounds) {
  std::string text = "IN;SP1;";
  for (int n = 0; n < rounds; ++n) {
    const std::string at = std::to_string(100 * (n % 89));
    text += "PU" + at + ",508;PD2032," + at + ";PR-100," + at + ";PA0,0;SP" +
            std::to_string(n % 12) + ";AA" + at + ",300,-75.5;AR100,200;LBText 1,2\x03\nPD" + at +
            ",1,2," + at + "pu" + at + ",3;CI50;\r\n";
  }
  return text;
}

std::string Excellon_Sample(int rounds) {
  std::string text = "M48\r\nINCH,TZ\r\nT01C0.028\r\nT02C0.042F200S65\r\nT03C.125\r\n%\r\n";
  for (int tool = 1; tool <= 3; ++tool) {
    text += "T0" + std::to_string(tool) + "\r\n";
    for (int n = 0; n < rounds; ++n) {
      const std::string at = std::to_string(1000 + 37 * (n % 83));
      text += "X" + at + "Y0" + at + "\r\nX" + at + "\r\nY-1.5\r\nG85X1Y" + at + "\r\nR5X100\r\n";
    }
  }
  return text + "T00\r\nM30\r\n";
}

std::string Sample_Of(const Importer& importer, int rounds) {
  const std::string name = importer.Name;
  return name == "dxf"    ? DXF_Sample(rounds)
         : name == "hpgl" ? HPGL_Sample(rounds)
                          : Excellon_Sample(rounds);
}

// --- Programs ------------------------------------------------------------------------------------

class Wrong_Input : public Import_Test, public ::testing::WithParamInterface<Importer> {
 protected:
  const Importer& By = GetParam();

  static void Switch_On_Sorts_And_Passes() {
    MachineSetup.DXF_Sort_Layers = MachineSetup.DXF_Sort_Lines = true;
    MachineSetup.DXF_Ingore_Depth = true;
    MachineSetup.DXF_MultiDepth_Passes.Fill(2);
    MachineSetup.HPGL_Sort_Lines = MachineSetup.HPGL_Ingore_Depth = true;
    MachineSetup.HPGL_Multiple_Pen_Enable = true;
    MachineSetup.HPGL_Passes_to_Depth = 2;
    MachineSetup.Excellon_Sort_Location = true;
  }

  // Imports the bytes and expects a whole program.
  void Import(std::string_view bytes, const std::string& what) {
    Program.clear();
    Opened = 0;
    const std::string path = Store(By.File, bytes);
    ASSERT_TRUE(By.Import(path)) << what;
    ASSERT_EQ(Opened, 1) << what;
    EXPECT_TRUE(Scratch_Is_Gone()) << what;
    EXPECT_FALSE(Application.EscFlag) << what;
    Expect_Whole_Program(what);
  }

  void Expect_Whole_Program(const std::string& what) const {
    static const std::regex move(R"(G0[0-3]( [XYZIJF]-?\d+(\.\d+)?)+)");
    static const std::regex other(R"(\[[^\]]*\]|%|G90|G04|M0[135679]|M30|T\d+ \[[^\]]*\])");
    const std::vector<std::string> lines = Split_Lines(Program);
    const std::vector<std::string> statements = Statements();
    ASSERT_GE(lines.size(), By.Footer.size() + 4) << what;
    const std::vector<std::string> end(
        statements.end() - static_cast<std::ptrdiff_t>(By.Footer.size()), statements.end());
    EXPECT_EQ(end, By.Footer) << what;
    EXPECT_EQ(statements.front(), "[Norvik Conversion]") << what;
    for (std::size_t n = 0; n < lines.size(); ++n) {
      const std::string& text = statements[n];
      const bool known = std::regex_match(text, move) || std::regex_match(text, other);
      const bool numbered =
          lines[n] == "N" + Import_Sequence_Text(static_cast<std::int64_t>(n) + 1) + text;
      ASSERT_TRUE(known && numbered) << what << ": " << lines[n].substr(0, 200);
    }
  }

  static std::string Report() {
    std::string text;
    for (const std::string& line : Import_Report_Lines()) text += line + "\n";
    return text;
  }
};

INSTANTIATE_TEST_SUITE_P(Importers, Wrong_Input, ::testing::ValuesIn(Importers),
                         [](const auto& row) { return row.param.Name; });

TEST_P(Wrong_Input, A_missing_file_only_beeps) {
  EXPECT_FALSE(By.Import((Folder / "gone" / By.File).string()));
  EXPECT_EQ(Scripted.Beeps, 1);
  EXPECT_EQ(Opened, 0);
  EXPECT_FALSE(FileExists(Application.Temporary_GCode));
  EXPECT_EQ(Messages.MessageLog[0], "");
}

TEST_P(Wrong_Input, What_is_no_drawing_gives_header_and_footer) {
  Switch_On_Sorts_And_Passes();
  std::string noise(200'000, '\0');
  std::mt19937 random(1);
  for (char& c : noise) c = static_cast<char>(random());
  Import("", "empty");
  EXPECT_THAT(Report(), HasSubstr("nothing is cut"));
  Import(noise, "noise");
  Import(std::string(100'000, '\0'), "zeros");
  for (const Importer& other : Importers) Import(Sample_Of(other, 5), other.Name);
  EXPECT_EQ(Scripted.Beeps, 0);
}

TEST_P(Wrong_Input, A_file_cut_anywhere_gives_a_whole_program) {
  const std::string sample = Sample_Of(By, 12);
  for (const bool everything : {false, true}) {
    if (everything) Switch_On_Sorts_And_Passes();
    for (std::size_t length = 0; length < sample.size(); length += 97) {
      Import(std::string_view(sample).substr(0, length), "cut at " + std::to_string(length));
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(Wrong_Input, Numbers_that_are_none_never_reach_the_program) {
  const std::string digits(400, '9');
  const std::string odd[] = {"nan",         "-nan(1)", "inf",   "1e5",    "1e400", "-1E-400",
                             "1-2",         "..",      "-",     "+-3",    digits,  "-" + digits,
                             "0." + digits, "0x1F",    "1_000", "#NULL#", "1,5",   "\xC2\xBD"};
  for (const std::string& number : odd) {
    // In the place of every number of the sample in turn.
    std::string sample = Sample_Of(By, 1);
    for (const char* good : {"0.5", "100", "1000"}) {
      for (std::size_t at = sample.find(good); at != std::string::npos;
           at = sample.find(good, at + number.size())) {
        sample.replace(at, std::string_view(good).size(), number);
      }
    }
    Import(sample, number.substr(0, 20));
    if (HasFatalFailure()) return;
  }
}

TEST_P(Wrong_Input, A_line_of_ten_million_characters_is_bounded) {
  const std::string sample = Sample_Of(By, 1);
  for (const char* piece : {"9", "X1,", " "}) {
    std::string line;
    while (line.size() < 10'000'000) line += piece;
    Import(sample.substr(0, sample.size() / 2) + line + sample.substr(sample.size() / 2), piece);
  }
}

// ESC at every yield of the import: each phase is met by some.
TEST_P(Wrong_Input, ESC_anywhere_leaves_a_whole_program) {
  Switch_On_Sorts_And_Passes();
  const std::string sample = Sample_Of(By, 130);
  std::string statuses;
  bool line_file_seen = false;
  Scripted.On_Yield = [&] {
    if (statuses.find(Messages.Panel[1].substr(0, 14)) == std::string::npos) {
      statuses += Messages.Panel[1].substr(0, 14) + "|";
    }
    line_file_seen = line_file_seen || FileExists(Application.DXF_Scratch) ||
                     FileExists(Application.HPGL_Scratch);
  };
  Scripted.Yields = 0;
  Import(sample, "whole");
  const std::string whole = Program;
  const std::int64_t yields = Scripted.Yields;
  EXPECT_EQ(line_file_seen, std::string_view(By.Name) != "excellon");
  EXPECT_GT(yields, 20);

  const std::int64_t step = std::max<std::int64_t>(1, yields / 60);
  for (std::int64_t stop = 1; stop <= yields; stop += step) {
    std::int64_t seen = 0;
    Scripted.On_Yield = [&] {
      if (++seen == stop) Application.EscFlag = true;
    };
    Import(sample, "ESC at yield " + std::to_string(stop) + " of " + std::to_string(yields));
    if (HasFatalFailure()) return;
    EXPECT_LE(Program.size(), stop == 1 ? whole.size() / 2 : whole.size());
    EXPECT_THAT(Report(), HasSubstr("Cancelled by ESC"));
  }
}

TEST_P(Wrong_Input, What_cannot_be_read_or_written_is_told) {
  const std::string sample = Sample_Of(By, 2);
  // A folder with the name of the file.
  std::filesystem::create_directory(Folder / "folder.any");
  if (By.Import((Folder / "folder.any").string())) {
    EXPECT_THAT(Report(), HasSubstr("could not be read to its end"));
  }
  // No place for the program.
  const std::string place = Application.Temporary_GCode;
  Application.Temporary_GCode = (Folder / "gone" / "TEMP.GC").string();
  Opened = 0;
  EXPECT_TRUE(By.Import(Store(By.File, sample)));
  EXPECT_EQ(Opened, 0);
  EXPECT_THAT(Report(), HasSubstr("nothing was opened"));
  Application.Temporary_GCode = place;
  // No place for the line file: no part of a program is passed off as the whole.
  Application.DXF_Scratch = Application.HPGL_Scratch = (Folder / "gone" / "tmp.txt").string();
  EXPECT_TRUE(By.Import(Store(By.File, sample)));
  EXPECT_EQ(Opened, std::string_view(By.Name) == "excellon" ? 1 : 0);
  EXPECT_EQ(Report().find("nothing was opened") == std::string::npos, Opened == 1);
}

// --- Several at once ---

// As several programs of one user import at once: each gets its own drawing whole.
TEST_F(Import_Test, Imports_at_once_never_mix_their_programs) {
  constexpr int programs = 3, rounds = 20, entities = 60;
  std::vector<pid_t> children;
  for (int n = 0; n < programs; ++n) {
    children.push_back(::fork());
    if (children.back() != 0) continue;
    const std::string x = std::to_string(n + 1);
    std::string text = "0\nSECTION\n2\nENTITIES\n";
    for (int line = 0; line < entities; ++line) {
      const std::string y = std::to_string(line);
      text += "0\nLINE\n8\n0\n10\n" + x + "\n20\n" + y + "\n11\n" + x + ".5\n21\n" + y + "\n";
    }
    const std::string path = Store("at_once_" + x + ".dxf", text + "0\nENDSEC\n0\nEOF\n");
    std::string first;
    bool same = true;
    for (int round = 0; round < rounds && same; ++round) {
      Program.clear();
      Import_DXF_File(path);
      if (first.empty()) first = Program;
      same =
          !Program.empty() && Program == first && Program.find("at_once_" + x) != std::string::npos;
    }
    ::_exit(same ? 0 : 1);
  }
  for (const pid_t child : children) {
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  for (const auto& entry : std::filesystem::directory_iterator(Folder)) {
    EXPECT_FALSE(entry.is_directory()) << entry.path();
  }
}

// --- Sizes ---------------------------------------------------------------------------------------

TEST_F(Import_Test, Half_a_million_entities_are_read) {
  constexpr int entities = 500'000;
  std::string text = "0\nSECTION\n2\nENTITIES\n";
  for (int n = 0; n < entities; ++n) {
    const std::string x = std::to_string(n % 1000), y = std::to_string(n / 1000);
    text += "0\nLINE\n8\n0\n10\n" + x + "\n20\n" + y + "\n11\n" + x + ".5\n21\n" + y + "\n";
  }
  ASSERT_TRUE(Import_DXF_File(Store("large.dxf", text + "0\nENDSEC\n0\nEOF\n")));
  // The first begins at the origin and needs no travel; each other is lift, travel, plunge and cut.
  const auto lines = std::count(Program.begin(), Program.end(), '\n');
  EXPECT_EQ(lines, 5 + 1 + 4 * (entities - 1) + 5);
}

TEST_F(Import_Test, Six_hundred_tools_stop_the_load_at_the_first_that_is_too_high) {
  std::string text = "%\n";
  for (int tool = 1; tool <= 600; ++tool) {
    text += "T" + std::to_string(tool) + "\nX1000Y1000\n";
  }
  ASSERT_TRUE(Import_Excellon_File(Store("tools.nc", text)));
  const std::string why = "Line 1002: Tool 501 is not between 1 and 500. The load stopped there.";
  EXPECT_THAT(Import_Report.Notes, Contains(why));
  EXPECT_THAT(Log(), HasSubstr(why));
  EXPECT_THAT(Statements(), Contains("T500 [TOOL DIAMETER 0.028 ]"));

  for (const std::string number : {"201", "40000", "9999999999"}) {
    ASSERT_TRUE(Import_Excellon_File(
        Store("header.nc", "T1C0.1\nT" + number + "C0.2\nT2C0.3\n%\nT1\nX1000Y1000\n")));
    EXPECT_THAT(Import_Report.Notes,
                Contains("Line 2: Tool " + number +
                         " is above 200, the last of the tool list. The load stopped there."));
    EXPECT_EQ(Tools.Diameter[2], 0.028) << "the third line must not be read";
  }
}

TEST_F(Import_Test, Holes_beyond_the_table_stop_the_load) {
  std::string text = "%\nT01\n";
  for (int n = 0; n < 20'000; ++n) text += "X" + std::to_string(1000 + n % 9000) + "Y1000\n";
  ASSERT_TRUE(Import_Excellon_File(Store("holes.nc", text)));
  EXPECT_THAT(Import_Report.Notes,
              Contains("Line 10003: Tool 1 has more than 10,000 holes. The load stopped there."));
  const std::vector<std::string> lines = Statements();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "G01 Z000.125"), 10'000);
}

TEST_F(Import_Test, Unreadable_holes_are_counted) {
  ASSERT_TRUE(
      Import_Excellon_File(Store("holes.nc", "%\nT01\nX1000Y1000\nX-5\nX1+2\nX3Y\nY2000\n")));
  EXPECT_EQ(Import_Report.Kinds["lines with unreadable numbers"].Skipped, 3);
  EXPECT_EQ(Import_Report.Kinds["holes"].Read, 2);
  EXPECT_THAT(Log(), HasSubstr("NC File Load Error"));
}

}  // namespace
}  // namespace norvik
