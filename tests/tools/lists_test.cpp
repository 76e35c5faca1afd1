// Tools, macros and sounds: their lists, their files and what is wrong with them.
#include "compiler/state/compiler_state.h"
#include "compiler/tables/program_wire.h"
#include "core/application.h"
#include "core/event_sounds.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/remembered_files.h"
#include "core/setup.h"
#include "core/tool_file.h"
#include "platform/scripted/scripted_platform.h"
#include "support/temporary_folder.h"
#include "tools/macro_list.h"
#include "tools/sound_list.h"
#include "tools/tool_list.h"

#include <filesystem>

#include <gmock/gmock.h>

namespace norvik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Lists_Test : testing::Test {
  Lists_Test() {
    Forget();
    Application.AppDirectory = Folder.Path;
    Application.MachineFile = Folder.File("mill.ini");
    Application.ErrorFile = Folder.File("errors.txt");
    MachineSetup.Tool_File_Name = Folder.File("Default.tol");
    MachineSetup.Tool_Directory = Folder.Path;
  }
  ~Lists_Test() override {
    Forget();
    Tool_Host = {};
    Macro_Host = {};
  }
  static void Forget() {
    Application = {};
    Messages = {};
    MachineSetup = {};
    Program_Wire = {};
    Tools = {};
    Tool_Form = {};
    MacroFiles = {};
    Event_Sounds = {};
    Remembered = {};
  }
  std::string Write_File(const std::string& name, const std::string& bytes) {
    Replace_File(Folder.File(name), bytes);
    return Folder.File(name);
  }

  Temporary_Folder Folder;
  Scripted_Platform scripted;
};

// --- Tools ---------------------------------------------------------------------------------------

TEST_F(Lists_Test, Tools_Saved_And_Loaded_Are_The_Same_200_Rows) {
  for (int tool = 1; tool <= 200; ++tool) {
    Tools.Diameter[tool] = tool / 7.0;
    Tools.Length[tool] = -tool * 1e-7;
  }
  const Tool_Table before = Tools;
  Save_Tools(Folder.File("a.tol"));
  Tools = {};
  const Tool_Findings findings = Load_Tools(Folder.File("a.tol"));
  EXPECT_THAT(findings.Lines, IsEmpty());
  EXPECT_EQ(findings.Rows, "");
  EXPECT_TRUE(Tools.Diameter == before.Diameter && Tools.Length == before.Length);
  EXPECT_EQ(ReadSetup("Tools", "Tool_File_Name"), Folder.File("a.tol"));
}

TEST_F(Lists_Test, A_Tool_File_Of_Another_Length_Is_Taken_And_Told) {
  const auto rows = [](int count) {
    std::string text;
    for (int n = 0; n < count; ++n) text += "2,3\r\n";
    return text;
  };
  struct Row {
    int Count;
    const char* Text;
    double Last;
  };
  for (const Row& row : {Row{0, "has 0 rows", 0}, Row{199, "has 199 rows", 0}, Row{200, "", 2},
                         Row{201, "those behind 200 are not used", 2}}) {
    SCOPED_TRACE(row.Count);
    Tools.Diameter[200] = 9;
    const Tool_Findings findings = Take_Tool_Text(rows(row.Count));
    EXPECT_THAT(findings.Rows, HasSubstr(row.Text));
    EXPECT_EQ(findings.Rows.empty(), row.Count == 200);
    EXPECT_EQ(Tools.Diameter[200], row.Last);
  }
}

TEST_F(Lists_Test, Decimal_Commas_Are_Read_Where_They_Can_Be_Told_From_The_One_Between) {
  const Tool_Findings findings =
      Take_Tool_Text("0,125,-0,5\n0,25;1\n3.175,0\n6,0,5\n6\n;2\n-1,0\nabc\n");
  EXPECT_EQ(Tools.Diameter[1], 0.125);
  EXPECT_EQ(Tools.Length[1], -0.5);
  EXPECT_EQ(Tools.Diameter[2], 0.25);
  EXPECT_EQ(Tools.Length[2], 1);
  EXPECT_EQ(Tools.Diameter[3], 3.175);
  EXPECT_EQ(Tools.Diameter[4], 0);
  EXPECT_EQ(Tools.Length[4], 0);
  EXPECT_EQ(Tools.Diameter[5], 6);
  EXPECT_EQ(Tools.Length[6], 2);
  EXPECT_THAT(findings.Lines, ElementsAre(HasSubstr("line 4: \"6,0,5\" cannot be told apart"),
                                          HasSubstr("line 7: \"-1,0\" has a diameter below 0"),
                                          HasSubstr("line 8: \"abc\" is not diameter,offset")));
}

TEST_F(Lists_Test, A_Value_Is_Edited_By_Box_Or_Cell_And_Refused_Words_Leave_It) {
  int changes = 0;
  Tool_Host.Tools_Changed = [&] { ++changes; };
  Tool_Form_Load();
  EXPECT_EQ(Tool_Form.Label_Tool, "Tool List: Default.tol");
  scripted.Input_Answers = {"0,25", "-1.5", "x", std::nullopt};
  List_Tools_DblClick(7, tool_column::Diameter);
  List_Tools_DblClick(7, tool_column::Offset);
  List_Tools_DblClick(7, tool_column::Offset);
  List_Tools_DblClick(7, tool_column::Diameter);
  List_Tools_DblClick(7, tool_column::Number);
  EXPECT_FALSE(Take_Tool_Value(7, tool_column::Diameter, "-1"));
  EXPECT_EQ(Tools.Diameter[7], 0.25);
  EXPECT_EQ(Tools.Length[7], -1.5);
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(scripted.Inputs[0].Title, "Tool Diameter");
  EXPECT_EQ(scripted.Inputs[1].Prompt, "Enter new tool offset");
  EXPECT_EQ(Tool_Number_Text(7) + Tool_Value_Text(0.25), "007    0.25");
  EXPECT_EQ(Tool_Value_Text(0), "0.0");
  EXPECT_EQ(Nearest_Tool(0.3), 7);
}

TEST_F(Lists_Test, Closing_Clearing_And_Replacing_Ask_First) {
  Tools.Diameter[1] = 1;
  scripted.Answer_Box(Box_Answer::No);
  Tool_Command_Clear_Click();
  EXPECT_EQ(Tools.Diameter[1], 1);
  scripted.Answer_Box(Box_Answer::Yes);
  Tool_Command_Clear_Click();
  EXPECT_EQ(Tools.Diameter[1], 0);
  scripted.Answer_Box(Box_Answer::Cancel);
  EXPECT_FALSE(Tool_Command_OK_Click());
  EXPECT_EQ(scripted.Boxes.back().Text,
            "The tool list has been modified.  Do you want to save Default.tol?");
  scripted.Answer_Box(Box_Answer::Yes);
  EXPECT_TRUE(Tool_Command_OK_Click());
  EXPECT_TRUE(Tool_Command_OK_Click());  // saved: asks nothing
  EXPECT_EQ(Split_Lines(Read_Whole_File(Folder.File("Default.tol"))).size(), 200U);

  const std::string old = Write_File("old.tol", "1,1\r\n");
  scripted.Save_Answers = {old};
  scripted.Answer_Box(Box_Answer::Cancel);
  Tool_Command_Save_Click();
  EXPECT_EQ(scripted.Boxes.back().Title, "File Exists");
  EXPECT_EQ(Read_Whole_File(old), "1,1\r\n");
  // A folder that is not there: told, and the name in the setup stays.
  scripted.Save_Answers = {Folder.File("none/a.tol")};
  Tool_Command_Save_Click();
  EXPECT_EQ(PathFileName(MachineSetup.Tool_File_Name), "Default.tol");
  EXPECT_EQ(scripted.Boxes.back().Title, "Tool List");
}

TEST_F(Lists_Test, The_Program_Marks_The_Tools_That_It_Uses) {
  Table<Wire> wires;
  for (const int tool : {3, 3, 12, 500}) {
    Wire wire;
    wire.Tool = tool;
    wire.Cutter_Comp = tool == 12 ? 2 : 0;
    wires.Rows.push_back(wire);
  }
  Install_Table(std::move(wires));
  EXPECT_EQ(Use_Text(Tools_Used(), 3), "used");
  EXPECT_EQ(Use_Text(Tools_Used(), 4), "");
  EXPECT_EQ(Use_Text(Tools_Used(), 12), "G41/G42 with diameter 0");
  Tools.Diameter[12] = 0.25;
  EXPECT_EQ(Use_Text(Tools_Used(), 12), "used");
}

// --- Macros --------------------------------------------------------------------------------------

TEST_F(Lists_Test, Macros_Get_Files_Move_And_Are_Kept_When_The_Window_Closes) {
  const std::string file = Write_File("drill.gc", "G0 X1\nG0 X2\n");
  MacroFiles.Selected = 12;
  scripted.Open_Answers = {file};
  MacroFiles_Command_Add_Click();
  EXPECT_EQ(MacroFiles.List_Macros.size(), 151U);
  EXPECT_EQ(MacroFiles.List_Macros[12], "012            " + Shortened_Path(file, 60));
  EXPECT_EQ(First_Lines(12), "G0 X1\nG0 X2\n");
  scripted.Input_Answers = {"151", "1e300", "150"};
  for (int n = 0; n < 3; ++n) MacroFiles_Command_Index_Click();
  EXPECT_EQ(MachineSetup.MacroFile[12], "");
  EXPECT_EQ(MachineSetup.MacroFile[150], file);
  MacroFiles_Command_Close_Click();
  EXPECT_EQ(ReadSetup("Macros", "MacroFile150"), file);
  MacroFiles_Command_Remove_Click();
  EXPECT_EQ(MachineSetup.MacroFile[150], "");
}

TEST_F(Lists_Test, Macros_That_The_Program_Calls_Are_Marked) {
  MachineSetup.MacroFile[1] = Write_File("one.gc", "");
  MachineSetup.MacroFile[2] = MachineSetup.MacroFile[3] = Folder.File("gone.gc");
  auto sources = std::make_shared<Compile_Sources>();
  for (const std::int16_t number : {std::int16_t{1}, std::int16_t{3}, std::int16_t{4}}) {
    sources->Macros.push_back({.Number = number, .Path = {}});
  }
  Table_Origin origin;
  origin.Sources = sources;
  Install_Table({}, origin);
  EXPECT_EQ(Macro_Mark(0), "");
  EXPECT_EQ(Macro_Mark(1), "called");
  EXPECT_EQ(Macro_Mark(2), "file missing");
  EXPECT_EQ(Macro_Mark(3), "called, file missing");
  EXPECT_EQ(Macro_Mark(4), "called, no file");
  EXPECT_EQ(First_Lines(1), "The file is empty.");
  EXPECT_THAT(First_Lines(2), HasSubstr("cannot be read"));
}

TEST_F(Lists_Test, A_Long_Path_Keeps_Its_Name) {
  EXPECT_EQ(Shortened_Path("/short/a.gc", 20), "/short/a.gc");
  const std::string cut = Shortened_Path("/a/very/long/folder/with/many/parts/name.gc", 20);
  EXPECT_EQ(cut, "/a/very...ts/name.gc");
  EXPECT_EQ(Shortened_Path("/\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4/a.gc", 12),
            "/\xC3\xA4.../a.gc");
}

// --- Sounds --------------------------------------------------------------------------------------

TEST_F(Lists_Test, Sounds_Are_Chosen_Played_Marked_And_Silenced) {
  MachineSetup.Sound_Files.Fill("Disabled");
  const std::string text = Write_File("no.wav", "RIFFxxxxAVI ");
  const std::string wave = Write_File("a.wav", "RIFFxxxxWAVEfmt ");
  scripted.Open_Answers = {wave, text, Folder.File("gone.wav")};
  List_Sounds_DblClick(0);
  List_Sounds_DblClick(1);
  List_Sounds_DblClick(2);
  EXPECT_THAT(Event_Sounds.List_Sounds,
              ElementsAre("CNC Play           = " + wave,
                          "CNC Step           = " + text + "   [no wave file]",
                          "CNC Pause          = " + Folder.File("gone.wav") + "   [missing]",
                          "CNC ReTooling      = Disabled", "CNC Stopped        = Disabled",
                          "E-Stop Pressed     = Disabled", "Compile Finished   = Disabled",
                          "Motion Finished    = Disabled", "Future             = Disabled"));
  EXPECT_EQ(ReadSetup("Sounds", "Sound_Files_0"), wave);
  EXPECT_EQ(Last_File(File_Kind::Sound).Directory, Folder.Path + "/");
  List_Sounds_MouseDown(0, false);
  EXPECT_THAT(scripted.Sounds, IsEmpty());
  List_Sounds_MouseDown(0, true);
  Event_Sounds.Selected = 3;
  Event_Sounds_Command_Play_Click();  // silent
  EXPECT_THAT(scripted.Sounds, ElementsAre(wave));
  Event_Sounds.Selected = 0;
  Event_Sounds_Command_Delete_Click();
  EXPECT_EQ(ReadSetup("Sounds", "Sound_Files_0"), "Disabled");
  // 2 GB without a byte on the disk.
  std::filesystem::resize_file(wave, std::uintmax_t{1} << 31);
  EXPECT_EQ(Sound_File_Fault(wave), "longer than 16 MB");
}

TEST_F(Lists_Test, The_Nine_Own_Sounds_Are_Waves_And_Taken_At_Once) {
  EXPECT_TRUE(Take_Own_Sounds());
  for (int slot = 0; slot < Sound_Slots; ++slot) {
    EXPECT_EQ(Sound_Mark(slot), "");
    EXPECT_LT(std::filesystem::file_size(MachineSetup.Sound_Files[slot]), 10'000U);
    EXPECT_EQ(ReadSetup("Sounds", "Sound_Files_" + std::to_string(slot)),
              MachineSetup.Sound_Files[slot]);
  }
  EXPECT_EQ(MachineSetup.Sound_Files[5], Folder.File("Sounds/estop.wav"));
  std::filesystem::remove_all(Folder.File("Sounds"));
  Write_File("Sounds", "in the way");
  EXPECT_FALSE(Take_Own_Sounds());
  EXPECT_EQ(scripted.Boxes.size(), 1U);
}

}  // namespace
}  // namespace norvik
