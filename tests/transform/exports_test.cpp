// The two exports: their text worked out by hand, what stays out, and a drawing that comes back.
#include "transform/exports.h"

#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "core/general_text.h"
#include "core/paths.h"
#include "import/dxf/import.h"
#include "import/pipeline/pipeline.h"
#include "support/full_disk.h"
#include "support/temporary_folder.h"
#include "transform/drawing_text.h"
#include "transform_fixture.h"

#include <array>
#include <cmath>
#include <filesystem>
#include <random>

namespace norvik {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

struct Exports_Test : Transform_Test {
  Exports_Test() {
    Application.ErrorFile = Folder.File("NorvikErr.txt");
    Application.Table_Folder = Folder.Path;
  }

  using Point = std::array<Nullable, 3>;
  void Move(const Point& from, const Point& to, bool feed = true) {
    Wire wire;
    wire.Step = static_cast<std::int32_t>(Wires.Rows.size()) + 1;
    wire.Motion = 1;
    wire.FeedMove = feed;
    for (int axis = 1; axis <= 3; ++axis) {
      wire.Start[axis] = from[static_cast<std::size_t>(axis - 1)];
      wire.End[axis] = to[static_cast<std::size_t>(axis - 1)];
    }
    Wires.Rows.push_back(wire);
  }
  void Command() {
    Move({1.0, 1.0, 1.0}, {1.0, 1.0, 1.0});
    Wires.Rows.back().Motion = 0;
  }
  std::string Export(Export_Kind kind) {
    const std::string table = Folder.File("wires.csv"), drawing = Folder.File("drawing");
    Write_Wire_Table(table, Wires);
    Report =
        kind == Export_Kind::DXF ? Save_DXF_File(drawing, table) : Save_HPGL_File(drawing, table);
    return Report.Written ? Read_Whole_File(drawing) : "";
  }
  std::vector<std::string> Hpgl_Lines() { return Split_Lines(Export(Export_Kind::HPGL)); }
  // The words of a DXF, one blank between them.
  std::string Dxf_Words() {
    std::string words;
    for (const std::string& line : Split_Lines(Export(Export_Kind::DXF))) {
      words += (words.empty() ? "" : " ") + Trim(line);
    }
    return words;
  }

  Temporary_Folder Folder;
  Table<Wire> Wires;
  Export_Report Report;
};

TEST_F(Exports_Test, DxfIsWrittenToTheByte) {
  Move({0.5, -1.0, 0.0}, {2.25, 1.0 / 3, {}});
  EXPECT_EQ(Export(Export_Kind::DXF),
            " 0 \r\nSECTION\r\n 2 \r\nENTITIES\r\n"
            " 0 \r\nLINE\r\n 8 \r\n0\r\n 10 \r\n0.5\r\n 20 \r\n-1\r\n 30 \r\n0\r\n"
            " 11 \r\n2.25\r\n 21 \r\n0.333333333333333\r\n 31 \r\n0\r\n"
            " 0 \r\nENDSEC\r\n 0 \r\nEOF\r\n")
      << "codes with a blank on both sides, 15 digits at most, a missing Z as 0";
  EXPECT_EQ(Messages.Panel[1], "Exporting DXF File " + Folder.File("drawing"));
  Wires.Rows.clear();
  EXPECT_EQ(Dxf_Words(), "0 SECTION 2 ENTITIES 0 ENDSEC 0 EOF");
}

TEST_F(Exports_Test, TravelsRepeatsAndMovesWithoutLengthStayOut) {
  Move({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, false);
  Move({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0});  // the travel in front is the same line
  Move({1.0, 0.0, 0.0}, {1.0, 0.0, 0.0});
  Move({Nullable(), {}, 0.0}, {Nullable(), {}, 0.0});  // two absent coordinates are equal
  Move({1.0, 0.0, 0.0}, {7.0, 0.0, 0.0});
  Move({7.0, 0.0, 0.0}, {1.0, 0.0, 0.0});  // back is no repeat
  MachineSetup.Export_All_Records = true;
  EXPECT_EQ(Dxf_Words(),
            "0 SECTION 2 ENTITIES "
            "0 LINE 8 0 10 1 20 0 30 0 11 7 21 0 31 0 "
            "0 LINE 8 0 10 7 20 0 30 0 11 1 21 0 31 0 0 ENDSEC 0 EOF");
  EXPECT_EQ(Report.Elements, 2U);
}

TEST_F(Exports_Test, HpglIsWrittenToTheByte) {
  MachineSetup.Axis_Tool_Height.Items = {1, 0, -1};
  Move({0.0, 0.0, 0.0}, {1.0, 2.0, 0.0}, false);       // at the cut height: up
  Move({1.0, 2.0, 0.0}, {1.0, 2.0, -0.1});             // changes Z: stays out
  Move({1.0, 2.0, -0.1}, {0.0, 0.0001, -0.1});         // down
  Move({0.0, 0.0001, -0.1}, {Nullable(), 5.0, -0.1});  // no X: no command
  Move({0.0, 5.0, 0.0}, {-0.0001, 0.0, 0.0}, false);   // up again
  EXPECT_EQ(Export(Export_Kind::HPGL), "IN;PU;\r\nPA1016,2032;PDPA0,.1016;PUPA-.1016,0;\r\nPSP\r\n")
      << "1016 units to one, no zero in front of a point";
  EXPECT_EQ(Scripted.Boxes.back().Text, "HPGL Export complete.");
}

TEST_F(Exports_Test, TwentyOneCommandsStandInALineOfHpgl) {
  for (int i = 0; i < 43; ++i) Move({0.0 + i, 0.0, 5.0}, {1.0 + i, 0.0, 5.0});
  const auto lines = Hpgl_Lines();
  ASSERT_EQ(lines.size(), 5U);
  const auto commands = [](const std::string& line) {
    return std::count(line.begin(), line.end(), ';');
  };
  EXPECT_EQ(commands(lines[1]), 21);
  EXPECT_EQ(commands(lines[2]), 21);
  EXPECT_EQ(lines[3], "PA43688,0;");
  EXPECT_EQ(lines[4], "PSP");
}

TEST_F(Exports_Test, PenComparesTheScaledOrTheRawZ) {
  MachineSetup.Axis_Tool_Height[1] = 0.1F;
  Move({0.0, 0.0, 0.1}, {1.0, 0.0, 0.1});
  Move({1.0, 0.0, 1.0}, {2.0, 0.0, 1.0}, false);
  EXPECT_EQ(Hpgl_Lines()[1], "PDPA1016,0;PA2032,0;") << "0.1016 is not 0.1";
  EXPECT_THAT(Texts_Of(Report), ElementsAre("The pen is down on 1 move that travel: the drawing "
                                            "shows them like cuts."));
  MachineSetup.HPGL_Export_Raw_Z = true;
  EXPECT_EQ(Hpgl_Lines()[1], "PA1016,0;PDPA2032,0;");
  EXPECT_THAT(Scripted.Boxes.back().Text,
              HasSubstr("The pen is never down on the 1 move that cut"));
}

TEST_F(Exports_Test, CommandRecordsCostMovesAtTheEnd) {
  Command();
  Move({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0});
  Command();
  Move({1.0, 0.0, 0.0}, {2.0, 0.0, 0.0});
  Move({2.0, 0.0, 0.0}, {3.0, 0.0, 0.0});
  Export(Export_Kind::DXF);
  EXPECT_EQ(Report.Elements, 1U) << "three moves: three records are read";
  EXPECT_EQ(Report.Missing_Cuts, 2U);
  EXPECT_THAT(Texts_Of(Report),
              ElementsAre(StartsWith("The drawing lacks 2 moves that cut, from line 4 on")));
  MachineSetup.Export_All_Records = true;
  Export(Export_Kind::DXF);
  EXPECT_EQ(Report.Elements, 3U);
  EXPECT_THAT(Texts_Of(Report), IsEmpty());
}

TEST_F(Exports_Test, PointInEveryRegion) {
  Application.DecimalSeparator = ',';
  Move({0.5, 0.0, 0.0}, {1.5, 0.25, 0.0});
  EXPECT_THAT(Dxf_Words(), HasSubstr("10 0.5 20 0 30 0 11 1.5 21 0.25"));
  EXPECT_THAT(Hpgl_Lines()[1], HasSubstr("PA1524,254;"));
}

TEST_F(Exports_Test, AFailureIsLoggedAndLeavesTheDrawingOfBefore) {
  Replace_File(Folder.File("drawing"), "old");
  const std::string none = Folder.File("none.csv");
  EXPECT_FALSE(Save_DXF_File(Folder.File("drawing"), none).Written);
  const Export_Report report = Save_HPGL_File(Folder.File("drawing"), none);
  EXPECT_FALSE(report.Written);
  EXPECT_THAT(report.Failure, HasSubstr(none));
  const std::string log = Read_Whole_File(Application.ErrorFile);
  EXPECT_THAT(log, HasSubstr("Save_DXF_File_Error"));
  EXPECT_THAT(log, HasSubstr("Save_HPGL_File_Error"));
  EXPECT_EQ(Read_Whole_File(Folder.File("drawing")), "old");
  EXPECT_THAT(Scripted.Boxes, IsEmpty());

  for (int i = 0; i < 50'000; ++i) Move({0.0 + i, 0.0, 0.0}, {1.0 + i, 0.0, 0.0});
  Scripted.On_Yield = [] { Application.EscFlag = true; };
  Export(Export_Kind::DXF);
  EXPECT_FALSE(Report.Written) << "ended by ESC";
  EXPECT_EQ(Read_Whole_File(Folder.File("drawing")), "old");
  EXPECT_EQ(Scripted.Pointers.back(), Mouse_Pointer::Normal);
}

TEST_F(Exports_Test, ADiskThatFillsLeavesTheDrawingOfBefore) {
  for (int i = 0; i < 5'000; ++i) Move({0.0 + i, 0.0, 0.0}, {1.0 + i, 0.0, 0.0});
  const std::string table = Folder.File("wires.csv"), drawing = Folder.File("drawing");
  Write_Wire_Table(table, Wires);
  Replace_File(drawing, "old");
  for (const auto save : {Save_DXF_File, Save_HPGL_File}) {
    Export_Report report;
    {
      const Full_Disk disk(10'000);
      report = save(drawing, table);
    }
    EXPECT_FALSE(report.Written);
    EXPECT_THAT(report.Failure, HasSubstr("the disk is full"));
    EXPECT_EQ(Read_Whole_File(drawing), "old");
  }
  EXPECT_THAT(Scripted.Boxes, IsEmpty()) << "no export is called complete";
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Folder.Path), {}), 3)
      << "table, drawing and error log: no temporary neighbour";
}

TEST(Coordinate_Test, TheQuickTextIsTheGeneralForm) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> any(-1000, 1000);
  std::array<char, General_Text_Limit> text;
  const auto written = [&](double value) {
    return std::string(text.data(), Write_Coordinate(text.data(), value));
  };
  for (int i = 0; i < 100'000; ++i) {
    const double raw = any(random), few = std::round(raw * 1e4) / 1e4;
    for (const double value : {raw, few, few * 1.016 * 1000, few + few * 4e-16, few * 1e7,
                               std::nextafter(few, 1e9), raw * 1e-9}) {
      ASSERT_EQ(written(value), General_Text(value)) << i;
    }
  }
  for (const double value : {0.0, -0.0, 1e300, -1e-300, 99'999.99995, 9'999'999'999.99995}) {
    EXPECT_EQ(written(value), General_Text(value));
  }
}

// --- There and back ------------------------------------------------------------------------------

struct Cut {
  std::array<double, 6> At;
  bool operator==(const Cut&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Cut& cut) {
  for (const double at : cut.At) out << at << ' ';
  return out;
}

std::vector<Cut> Compiled_Cuts(const std::string& text) {
  SaveChanges(text);
  EXPECT_TRUE(CompileProgram());
  std::vector<Cut> cuts;
  for (const Wire& wire : Program_Wire.Rows()) {
    if (!wire.FeedMove || wire.Motion != 1) continue;
    Cut cut{};
    for (int axis = 1; axis <= 3; ++axis) {
      cut.At[static_cast<std::size_t>(axis - 1)] = wire.Start[axis].value_or(0);
      cut.At[static_cast<std::size_t>(axis + 2)] = wire.End[axis].value_or(0);
    }
    if (!std::equal(cut.At.begin(), cut.At.begin() + 3, cut.At.begin() + 3)) cuts.push_back(cut);
  }
  return cuts;
}

TEST_F(Exports_Test, ADrawingComesBackAsTheSameCuts) {
  MachineSetup.Axis_Feed_Rate_Travel = 50;
  MachineSetup.Axis_Feed_Rate_Cut = 20;
  MachineSetup.Axis_SPI.Fill(1000);
  MachineSetup.Axis_Tool_Height.Items = {1, -0.125F, -0.25F};
  MachineSetup.DXF_Passes_to_Depth = 1;
  MachineSetup.DXF_Line_Tolerance = 0.001F;
  MachineSetup.DXF_MultiDepth_Layer.Fill("None");
  MachineSetup.Export_All_Records = true;
  Application.DXF_Scratch = Folder.File("DXFtmp.txt");
  Application.Temporary_GCode = Folder.File("TEMP.GC");

  std::mt19937 random(5);
  const auto length = [&] {
    return std::to_string(std::uniform_int_distribution(0, 4000)(random) / 4 * 0.25).substr(0, 6);
  };
  std::string program = "G90\nM3\n";
  for (int contour = 0; contour < 20; ++contour) {
    program += "G0 Z1\nG0 X" + length() + " Y" + length() + "\nG1 Z-0.125 F5\n";
    for (int i = 0; i < 30; ++i) program += "G1 X" + length() + " Y" + length() + " F10\n";
  }
  const std::vector<Cut> cuts = Compiled_Cuts(program);
  const std::string drawing = Folder.File("part.dxf");
  ASSERT_TRUE(Save_DXF_File(drawing, Compile_Tables.Wire_Path).Written);

  std::string imported;
  Import_Host.Open_GCode = [&](const std::string& path) { imported = Read_Whole_File(path); };
  Import_DXF_File(drawing);
  EXPECT_EQ(Compiled_Cuts(imported), cuts);
  Import_Host = {};
}

}  // namespace
}  // namespace norvik
