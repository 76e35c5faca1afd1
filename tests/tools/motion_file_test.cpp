// Motion files: the stream of values, its lines of 29, and files that are wrong.
#include "tools/motion_file.h"

#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/setup.h"
#include "platform/scripted/scripted_platform.h"
#include "support/full_disk.h"
#include "support/reset.h"
#include "support/temporary_folder.h"

#include <filesystem>
#include <vector>

#include <gmock/gmock.h>

namespace norvik {
namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

std::string Pack(std::string_view wires, Motion_Content& content) {
  Memory_Source source(wires);
  Value_Stream values(source, "wires");
  return Packed_Motion(values, content);
}
std::string Unpack(std::string_view motion, Motion_Content& content) {
  Memory_Source source(motion);
  Value_Stream values(source, "motion");
  return Unpacked_Motion(values, content);
}
std::vector<std::string> Values_Of(std::string_view bytes) {
  Memory_Source source(bytes);
  Value_Stream values(source, "bytes");
  std::vector<std::string> all;
  for (auto value = values.Next(); value; value = values.Next()) {
    all.emplace_back();
    Append_Spelled(all.back(), *value);
  }
  return all;
}
std::string Fault_Of(const std::function<void()>& work) {
  try {
    work();
  } catch (const Fault& fault) {
    return fault.Description;
  }
  return "no fault";
}

// Wires with everything that a value can be; the last field of each is absent.
Table<Wire> Wires(int count) {
  Table<Wire> table;
  for (int k = 1; k <= count; ++k) {
    Wire wire;
    wire.Step = k;
    wire.Motion = k % 4 == 0 ? 0 : 1;
    wire.FeedMove = k % 2 == 0;
    wire.Start = {{0.1 * k, -k, 0}};
    wire.End = {{0.1 * (k + 1), -k - 1, 1e-4}};
    wire.Block_Text = k % 3 == 0 ? "G1 X1,5 (say \"hi\")" : "G0 X1";
    wire.IPM_D = wire.IPM_R = 30;
    wire.Dwell = k % 4 == 0 ? 1.5F : 0;
    table.Rows.push_back(wire);
  }
  return table;
}

struct Motion_File_Test : testing::Test {
  Motion_File_Test() {
    Forget();
    Application.Table_Folder = Application.AppDirectory = Folder.Path;
    Application.ErrorFile = Folder.File("errors.txt");
    Application.MachineFile = Folder.File("mill.ini");
    Program_Wire_Host.Installed = [this] { ++Installed; };
  }
  ~Motion_File_Test() override {
    Forget();
    Program_Wire_Host = {};
  }
  static void Forget() { Reset_Tools(); }
  // The wire table of the program on disk.
  std::string Write_Wires(int count) {
    Write_Wire_Table(Program_Wire_File(), Wires(count));
    return Read_Whole_File(Program_Wire_File());
  }
  std::string Write_File(const std::string& name, const std::string& bytes) {
    Replace_File(Folder.File(name), bytes);
    return Folder.File(name);
  }

  Temporary_Folder Folder;
  Scripted_Platform scripted;
  int Installed = 0;
};

// 29 wires of 32 values are 32 lines of 29: the first number that fits both.
TEST_F(Motion_File_Test, Holds_The_Stream_Of_The_Table_29_A_Line_Behind_Their_Count) {
  const std::string wires = Write_Wires(29);
  const std::string path = Folder.File("part.mcd");
  ASSERT_TRUE(Save_Motion_File("part.mcd", path));
  const std::string motion = Read_Whole_File(path);
  const auto lines = Split_Lines(motion);
  ASSERT_EQ(lines.size(), 33U);
  EXPECT_EQ(lines[0], "32");
  EXPECT_EQ(lines[1].substr(0, 6), "1,1,0.");
  for (std::size_t n = 1; n < lines.size(); ++n) EXPECT_EQ(Values_Of(lines[n]).size(), 29U);
  EXPECT_THAT(motion, HasSubstr("\"G1 X1,5 (say \"\"hi\"\")\""));
  EXPECT_TRUE(motion.ends_with("\r\n"));

  std::filesystem::remove(Program_Wire_File());
  ASSERT_TRUE(Load_Motion_File("part.mcd", path));
  EXPECT_THAT(Values_Of(Read_Whole_File(Program_Wire_File())), ElementsAreArray(Values_Of(wires)));
  EXPECT_TRUE(scripted.Boxes.empty());
  EXPECT_EQ(Messages.Panel[1], "");
  EXPECT_EQ(Installed, 1);
}

TEST_F(Motion_File_Test, A_Loaded_File_Is_The_Executing_Table_Over_All_Of_Its_Steps) {
  Write_Wires(29);
  ASSERT_TRUE(Save_Motion_File("part.mcd", Folder.File("part.mcd")));
  SaveChanges("G0 X1\nG0 X2");
  ASSERT_TRUE(Load_Motion_File("part.mcd", Folder.File("part.mcd")));
  EXPECT_EQ(Program_Wire.Origin().Kind, Table_Kind::Motion_File);
  ASSERT_EQ(Program_Wire.Count(), 29U);
  EXPECT_EQ(Program_Wire.Rows()[2].Block_Text, "G1 X1,5 (say \"hi\")");
  EXPECT_EQ(Program_Wire.Rows()[28].End[2], -30.0);
  EXPECT_EQ(Machine.StartingStep, 1);
  EXPECT_EQ(Machine.EndingStep, 29);
  EXPECT_EQ(Judge_Table().Standing, Table_Standing::Ready);
  // Another text has been opened or typed since: Play must not run the file for it.
  GCode_Program.Typed_Waits = true;
  EXPECT_EQ(Judge_Table().Standing, Table_Standing::Other_Text);
  GCode_Program.Typed_Waits = false;
  SaveChanges("G0 X3");
  EXPECT_EQ(Judge_Table().Standing, Table_Standing::Other_Text);
}

TEST_F(Motion_File_Test, A_Line_That_Is_Not_Full_Is_Not_Saved_Unless_The_Correction_Fills_It) {
  const std::string wires = Write_Wires(5);  // 160 values: five lines and 15
  const std::string path = Write_File("part.mcd", "what was there");
  scripted.Answer_Box(Box_Answer::No);
  EXPECT_FALSE(Save_Motion_File("part.mcd", path));
  EXPECT_EQ(Read_Whole_File(path), "what was there");
  ASSERT_EQ(scripted.Boxes.size(), 1U);
  EXPECT_THAT(scripted.Boxes[0].Text, HasSubstr("160 values"));
  EXPECT_THAT(scripted.Boxes[0].Text, HasSubstr("Motion_File_Any_Length"));
  EXPECT_FALSE(MachineSetup.Motion_File_Any_Length);
  EXPECT_THAT(Read_Whole_File(Application.ErrorFile), HasSubstr("Save_Motion_File Error"));

  scripted.Answer_Box(Box_Answer::Yes);
  EXPECT_TRUE(Save_Motion_File("part.mcd", path));
  EXPECT_TRUE(MachineSetup.Motion_File_Any_Length);
  EXPECT_EQ(ReadSetup("Corrections", "Motion_File_Any_Length"), "True");
  const auto lines = Split_Lines(Read_Whole_File(path));
  ASSERT_EQ(lines.size(), 7U);
  EXPECT_EQ(lines[0], "6");
  EXPECT_TRUE(lines[6].ends_with("#NULL#,#NULL#,#NULL#"));
  EXPECT_EQ(Values_Of(lines[6]).size(), 29U);

  // A load takes the filling off whatever the setup says, also where the last wire ends absent.
  MachineSetup.Motion_File_Any_Length = false;
  ASSERT_TRUE(Load_Motion_File("part.mcd", path));
  EXPECT_THAT(Values_Of(Read_Whole_File(Program_Wire_File())), ElementsAreArray(Values_Of(wires)));
  EXPECT_EQ(Program_Wire.Count(), 5U);
}

TEST(Motion_Stream, Every_Count_Of_Wires_Comes_Back) {
  for (int count = 0; count <= 64; ++count) {
    SCOPED_TRACE(count);
    Temporary_Folder folder;
    Write_Wire_Table(folder.File("wires.csv"), Wires(count));
    const std::string wires = Read_Whole_File(folder.File("wires.csv"));
    MachineSetup.Motion_File_Any_Length = true;
    Motion_Content saved, loaded;
    const std::string motion = Pack(wires, saved);
    EXPECT_EQ(Values_Of(Unpack(motion, loaded)), Values_Of(wires));
    EXPECT_EQ(saved.RecordCount, (32 * count + 28) / 29);
    EXPECT_EQ(loaded.Lines, saved.Lines);
    EXPECT_EQ(loaded.Filling, saved.Filling);
    MachineSetup = {};
  }
}

TEST(Motion_Stream, Values_Pass_As_They_Are_Spelled) {
  MachineSetup.Motion_File_Any_Length = true;
  Motion_Content content;
  const std::string motion =
      Pack("\n.5, 1E-05 ,True,\"a,b\",\"a \"loose\" quote\",,\"\"\r\n\r\n#NULL#,-0\r7\n", content);
  MachineSetup = {};
  EXPECT_EQ(motion.substr(0, 65),
            "1\r\n.5,1E-05,True,\"a,b\",\"a \"loose\" quote\",,\"\",#NULL#,-0,7,#NULL#,#");
}

TEST(Motion_Stream, Cut_At_Every_97th_Byte_It_Is_Refused_Or_Known_To_Lack_Lines) {
  Temporary_Folder folder;
  Write_Wire_Table(folder.File("wires.csv"), Wires(58));
  Motion_Content content;
  const std::string motion = Pack(Read_Whole_File(folder.File("wires.csv")), content);
  for (std::size_t cut = 0; cut < motion.size() - 2; cut += 97) {
    SCOPED_TRACE(cut);
    std::string wires;
    const std::string fault = Fault_Of([&] {
      wires = Unpack(motion.substr(0, cut), content);
      Parse_Wire_Table(wires, "motion");
    });
    if (fault == "no fault") {
      EXPECT_LT(content.Lines, content.RecordCount);
    }
  }
}

TEST_F(Motion_File_Test, What_Is_Wrong_Is_Told_And_Leaves_Table_And_File_As_They_Were) {
  const std::string before = Write_Wires(3);
  Install_Table(Wires(3));
  const std::string good = [] {
    Motion_Content content;
    Temporary_Folder folder;
    Write_Wire_Table(folder.File("wires.csv"), Wires(29));
    return Pack(Read_Whole_File(folder.File("wires.csv")), content);
  }();
  std::string no_number = good;
  no_number.replace(no_number.find("30"), 2, "3x");
  struct Row {
    const char* What;
    std::string Bytes, Text;
  };
  const Row rows[] = {
      {"empty", "", "no count of records"},
      {"10 GB claimed", "10737418240\r\n" + good.substr(4), "no count of records"},
      {"no count", "G0 X1\r\n", "no count of records"},
      {"a drawing", "0\nSECTION\n2\nENTITIES\n", "cut off"},
      {"a value that is none", no_number, "is no number"},
      {"cut in a line", good.substr(0, good.size() - 40), "motion"},
      {"a quote that is not closed", good.substr(0, good.find("G0 X1") + 5), "no closing quote"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.What);
    scripted.Boxes.clear();
    EXPECT_FALSE(Load_Motion_File("part.mcd", Write_File("part.mcd", row.Bytes)));
    ASSERT_EQ(scripted.Boxes.size(), 1U);
    EXPECT_THAT(scripted.Boxes[0].Text, HasSubstr(row.Text));
  }
  EXPECT_FALSE(Load_Motion_File("gone.mcd", Folder.File("gone.mcd")));
  EXPECT_EQ(Read_Whole_File(Program_Wire_File()), before);
  EXPECT_EQ(Program_Wire.Count(), 3U);
  EXPECT_THAT(Read_Whole_File(Application.ErrorFile), HasSubstr("Load_Motion_File Error"));
  EXPECT_THAT(Operations.Entries, IsEmpty());

  std::filesystem::remove(Program_Wire_File());
  EXPECT_FALSE(Save_Motion_File("new.mcd", Folder.File("new.mcd")));
  EXPECT_FALSE(FileExists(Folder.File("new.mcd")));
}

TEST_F(Motion_File_Test, A_Disk_That_Fills_Leaves_Table_And_File_As_They_Were) {
  const std::string before = Write_Wires(29 * 4);
  ASSERT_TRUE(Save_Motion_File("long.mcd", Folder.File("long.mcd")));
  const std::string old = Write_File("old.mcd", "old");
  const std::string table = Write_Wires(3);
  Install_Table(Wires(3));
  {
    const Full_Disk disk;
    EXPECT_FALSE(Load_Motion_File("long.mcd", Folder.File("long.mcd")));
  }
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("the disk is full"));
  EXPECT_EQ(Read_Whole_File(Program_Wire_File()), table);
  EXPECT_EQ(Program_Wire.Count(), 3U);

  Replace_File(Program_Wire_File(), before);
  {
    const Full_Disk disk;
    EXPECT_FALSE(Save_Motion_File("old.mcd", old));
  }
  EXPECT_EQ(scripted.Boxes.size(), 2U);
  EXPECT_EQ(Read_Whole_File(old), "old");
}

TEST_F(Motion_File_Test, A_Count_That_Lies_Is_Told_And_Missing_Lines_Are_Not_Run) {
  Write_Wires(29);
  ASSERT_TRUE(Save_Motion_File("part.mcd", Folder.File("part.mcd")));
  const std::string lines = Read_Whole_File(Folder.File("part.mcd")).substr(2);
  ASSERT_TRUE(Load_Motion_File("more.mcd", Write_File("more.mcd", "40" + lines)));
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("says 40 lines, and there are 32"));
  EXPECT_EQ(Judge_Table().Standing, Table_Standing::Cut_Short);
  ASSERT_TRUE(Load_Motion_File("less.mcd", Write_File("less.mcd", "7" + lines)));
  EXPECT_THAT(scripted.Boxes.back().Text, HasSubstr("All of them were taken"));
  EXPECT_EQ(Judge_Table().Standing, Table_Standing::Ready);
  EXPECT_EQ(Program_Wire.Count(), 29U);
}

TEST_F(Motion_File_Test, ESC_Ends_Neither_Save_Nor_Load) {
  Write_Wires(29 * 8);
  int yields = 0;
  std::string seen;
  scripted.On_Yield = [&] {
    Application.EscFlag = true;
    if (++yields == 1) seen = Messages.Panel[1];
  };
  EXPECT_TRUE(Save_Motion_File("part.mcd", Folder.File("part.mcd")));
  EXPECT_GE(yields, 3);
  EXPECT_THAT(seen, testing::MatchesRegex("GCode Motion File: Saving File [0-9]+% completed, press "
                                          "ESC to cancel"));
  EXPECT_TRUE(Load_Motion_File("part.mcd", Folder.File("part.mcd")));
  EXPECT_EQ(Program_Wire.Count(), 29U * 8);
}

}  // namespace
}  // namespace norvik
