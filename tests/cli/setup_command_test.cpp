// The companion and the setup: what it reads, what it stores, and what it leaves alone.
#include "companion_call.h"
#include "core/application.h"
#include "core/axis_memory.h"
#include "core/setup.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace norvik {
namespace {

using testing::HasSubstr;
using testing::Not;

struct Setup_Command_Test : Companion_Call_Test {
  // A call of the program on `Machine`.
  int Call(std::vector<std::string> words, Companion_Environment environment = {}) {
    words.insert(words.begin(), {"--machine", Machine});
    return Call_Companion(std::move(words), std::move(environment));
  }
  std::string Value_Of(const std::string& key) {
    EXPECT_EQ(Call({"setup", "get", key}), Done) << Said;
    return Trim(Printed.substr(0, Printed.find('\n')));
  }

  std::string Machine = Folder.File("foreign.ini");
};

TEST_F(Setup_Command_Test, A_Foreign_File_Is_Read_And_Left_Alone) {
  const std::string foreign = "[Axis]\nAxis_SPI_1=2000\nAxis_SPI_2=many\n";
  Replace_File(Machine, foreign);
  Replace_File(Folder.File("part.gc"), "G0 X1\n");
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"check", Folder.File("part.gc")},
        {"compile", Folder.File("part.gc")},
        {"setup", "show"}}) {
    EXPECT_EQ(Call(words), Done) << Said;
    EXPECT_THAT(Said, HasSubstr("Axis_SPI_2=many cannot be used, the value is now 4000"));
    EXPECT_THAT(Said, HasSubstr("was never saved whole"));
  }
  EXPECT_EQ(Value_Of("Axis_SPI_1"), "2000");
  EXPECT_EQ(Value_Of("Axis_SPI_4"), "4000");
  EXPECT_EQ(Call({"setup", "check"}), Failed);
  EXPECT_THAT(Printed, HasSubstr("Axis_SPI_2=many"));
  EXPECT_EQ(Read_Whole_File(Machine), foreign);
  EXPECT_FALSE(FileExists(Folder.File("home/Norvik.Ini")));
}

TEST_F(Setup_Command_Test, Set_Stores_One_Key_And_Nothing_Of_The_Call) {
  Replace_File(Machine, "[General]\nINI_Save_Test=123\n[Axis]\nAxis_SPI_1=2000\n");
  EXPECT_EQ(Call({"--set", "Axis.Axis_SPI_2=500", "setup", "set", "Axis.Axis_SPI_1", "3000"}),
            Done);
  EXPECT_EQ(Read_Whole_File(Machine), "[General]\nINI_Save_Test=123\n[Axis]\nAxis_SPI_1=3000\n");
  // Those too that a save of the windows leaves out.
  for (const auto& [key, value] :
       {std::pair("Jog.CNC_Jog_Increment", "0.25"), std::pair("General.KeyJog_Device", "1"),
        std::pair("Tools.Tool_File_Name", "/t/mill.tol"), std::pair("General.Recent_Folder", "/p"),
        std::pair("Parallel Display.Parallel_Display_IO_Address", "888")}) {
    EXPECT_EQ(Call({"setup", "set", key, value}), Done) << Said;
    EXPECT_EQ(Value_Of(key), value);
  }
  EXPECT_EQ(Call({"setup", "set", "Tools.Tool_Directory", "/t"}), Failed);
  EXPECT_THAT(Said, HasSubstr("Tool_File_Name names the tool file"));
  EXPECT_EQ(Call({"setup", "reset", "Axis_SPI_1"}), Done);
  EXPECT_EQ(Value_Of("Axis_SPI_1"), "4000");
  EXPECT_EQ(Call({"setup", "reset"}), Done);
  EXPECT_NE(Value_Of("Jog.CNC_Jog_Increment"), "0.25");
  EXPECT_EQ(Value_Of("INI_Save_Test"), "123");
}

TEST_F(Setup_Command_Test, A_File_That_Cannot_Be_Stored_Or_Read_Ends_With_1) {
  const std::string before = "[General]\nINI_Save_Test=123\n";
  Replace_File(Machine, before);
  const int folder = ::open(Folder.Path.c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(::flock(folder, LOCK_EX), 0);  // another program writes
  EXPECT_EQ(Call({"setup", "set", "Axis_SPI_1", "3000"}), Failed);
  EXPECT_THAT(Said, HasSubstr("another Norvik program is writing"));
  EXPECT_THAT(Said, Not(HasSubstr("Saved")));
  EXPECT_EQ(Call({"setup", "reset"}), Failed);
  ::close(folder);
  EXPECT_EQ(Read_Whole_File(Machine), before);

  Machine = Folder.Path;  // a folder cannot be read
  EXPECT_EQ(Call({"setup", "show"}), Failed);
  EXPECT_EQ(Printed, "");
}

// Ctrl-C in the work: the result of an earlier call stands, and nothing is printed as if it were
// whole.
TEST_F(Setup_Command_Test, Interrupted_Commands_Leave_The_Earlier_Result) {
  Replace_File(Machine, "[General]\nINI_Save_Test=123\n");
  const std::string program = Folder.File("part.gc"), result = Folder.File("result");
  const std::string table = Folder.File("home/NORVIK_Program_LineArc_Data.csv");
  Replace_File(program, "G0 X1\nG4\n");
  const std::string drawing = std::string(NORVIK_SAMPLES_FOLDER) + "/rose.dxf";
  Companion_Environment environment;
  environment.Asked_To_Stop = [] { return true; };
  environment.Write_Picture = [](const std::string&, const Plot_Image&) { ADD_FAILURE(); };
  std::filesystem::create_directory(Folder.File("home"));
  for (const std::vector<std::string>& words : {std::vector<std::string>{"compile", program},
                                                {"check", program},
                                                {"plot", program, "-o", result},
                                                {"import", drawing, "-o", result},
                                                {"estimate", program},
                                                {"run", program, "--clock", "virtual"}}) {
    SCOPED_TRACE(words[0]);
    Replace_File(result, "earlier");
    Replace_File(table, "earlier");
    // The simulation of these is not linked here; ESC is heard in their compile.
    if (words[0] == "estimate" || words[0] == "run") scripted.Press(27);
    EXPECT_EQ(Call(words, environment), Interrupted_By_Operator);
    EXPECT_EQ(Read_Whole_File(result), "earlier");
    EXPECT_EQ(Read_Whole_File(table), "earlier");
    if (words[0] != "run") {
      EXPECT_EQ(Printed, "");
    }
  }
}

TEST_F(Setup_Command_Test, An_Import_Goes_To_Standard_Output) {
  Replace_File(Machine, "[General]\nINI_Save_Test=123\n");
  const std::string drawing = std::string(NORVIK_SAMPLES_FOLDER) + "/rose.dxf";
  ASSERT_EQ(Call({"import", drawing, "-o", Folder.File("rose.gc")}), Done);
  ASSERT_EQ(Call({"import", drawing, "-o", "-"}), Done);
  EXPECT_THAT(Printed, HasSubstr("\nN002 "));
  EXPECT_EQ(Split_Lines(Printed).size(),
            Split_Lines(Read_Whole_File(Folder.File("rose.gc"))).size());
}

TEST_F(Setup_Command_Test, Corrections_Are_Listed_Switched_And_Switched_Back) {
  const std::string fresh = "[General]\nINI_Save_Test=123\n[Axis]\nAxis_Backlash_Enable=True\n";
  Replace_File(Machine, fresh);
  EXPECT_EQ(Call({"setup", "check"}), Failed);
  EXPECT_THAT(Printed, HasSubstr("{corrections set Backlash_Even}"));
  ASSERT_EQ(Call({"corrections", "list"}), Done);
  EXPECT_THAT(Printed, HasSubstr("Backlash_Even=False *\n"));
  EXPECT_THAT(Printed, HasSubstr("0 on;"));
  ASSERT_EQ(Call({"--set", "Axis.Axis_SPI_2=500", "corrections", "recommended"}), Done);
  EXPECT_THAT(Printed, HasSubstr("Backlash_Even=True\n"));
  EXPECT_THAT(Printed, Not(HasSubstr("Port_Shadow")));
  EXPECT_EQ(Value_Of("Backlash_Even"), "True");
  EXPECT_EQ(Value_Of("Axis_SPI_2"), "4000") << "of the call alone";
  Call({"setup", "check"});
  EXPECT_THAT(Printed, Not(HasSubstr("one toggle too many")));
  ASSERT_EQ(Call({"corrections", "as-the-system-was"}), Done);
  EXPECT_EQ(Value_Of("Backlash_Even"), "False");
  ASSERT_EQ(Call({"corrections", "set", "port_shadow"}), Done);
  EXPECT_EQ(Value_Of("Port_Shadow"), "True");
  for (const std::vector<std::string>& wrong :
       {std::vector<std::string>{"corrections", "set", "Axis_SPI_1"},
        {"corrections", "set", "Limit_Filter_Steps"},
        {"corrections", "set", "Limit_Filter_Steps", "-4"},
        {"corrections", "set", "Port_Shadow", "maybe"}}) {
    EXPECT_EQ(Call(wrong), Wrong_Usage) << wrong[2];
  }
}

}  // namespace
}  // namespace norvik
