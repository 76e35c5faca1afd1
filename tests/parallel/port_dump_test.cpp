// Port writes as a value change dump, compared with dumps worked out by hand.
#include "parallel/port_dump.h"

#include "core/paths.h"
#include "drive_test.h"
#include "support/temporary_folder.h"

namespace norvik {
namespace {

struct Port_Dump_Test : Drive_Test {
  Port_Dump_Test() {
    Stop_Port_Recorder();
    for (int slot = 1; slot <= 17; ++slot) MachineSetup.Parallel_Output_Bit[slot] = "99";
    Use(1, 888, "0");
    Use(2, 888, "1");
    Use(13, 632, "7");
  }
  static void Use(int slot, int port, const char* bit) {
    MachineSetup.Output_Port[slot] = port;
    MachineSetup.Parallel_Output_Bit[slot] = bit;
  }
  static std::string Dump_Of(const std::vector<Port_Write_Record>& block) {
    Port_Dump dump(0);
    std::string text;
    dump.Append(block, text);
    return text;
  }
};

TEST_F(Port_Dump_Test, A_Recording_Of_Three_Pins) {
  Temporary_Folder folder;
  scripted.Now += 1'000'000;
  Record_Ports_To_File(folder.File("edges.VCD"));
  PPSetPort(888, 0b10, true);  // direction first
  scripted.Now += 5'250;
  PPSetPort(888, 0b11, true);
  scripted.Now += 50'000;
  PPSetPort(888, 0b10, false);  // a blocked axis: no pin moves
  scripted.Now += 1;
  PPSetPort(888, 0b10, true);
  PPSetPort(632, 0x80, true);
  PPSetPort(700, 0xFF, true);  // no pin lies there
  scripted.Now += 1;
  PPSetPort(632, 0xFF, true);  // nor on the other bits
  Stop_Port_Recorder();
  EXPECT_EQ(Read_Whole_File(folder.File("edges.VCD")),
            "$version Norvik $end\n"
            "$timescale 1 ns $end\n"
            "$scope module norvik $end\n"
            "$var wire 1 a X_step $end\n"
            "$var wire 1 b X_direction $end\n"
            "$var wire 1 c Spindle_CW $end\n"
            "$upscope $end\n"
            "$enddefinitions $end\n"
            "#0\n$dumpvars\nxa\nxb\nxc\n$end\n"
            "#0\n0a\n1b\n"
            "#5250\n1a\n"
            "#55251\n0a\n1c\n");
}

TEST_F(Port_Dump_Test, Levels_Are_Kept_From_Block_To_Block) {
  Port_Dump dump(0);
  std::string first, second;
  dump.Append({{10, 888, 1, true}}, first);
  dump.Append({{10, 888, 3, true}, {20, 888, 3, true}}, second);
  EXPECT_EQ(first, "#10\n1a\n0b\n");
  EXPECT_EQ(second, "1b\n") << "one mark for one time";
}

TEST_F(Port_Dump_Test, Wires_That_Share_A_Pin_Or_A_Name) {
  MachineSetup.Output_Names[2] = "Spindle CW";
  MachineSetup.Output_Names[3] = " 24 V\n$end ";
  MachineSetup.Output_Names[4] = "";
  Use(14, 632, "7");
  Use(15, 632, "6");
  Use(16, 632, "5");
  Use(3, 1, "0");  // below the first address: never written
  const std::string header = Port_Dump(0).Header();
  for (const char* line : {"c Spindle_CW $end\n", "d Spindle_CW_14 $end\n", "e _24_V__end_ $end\n",
                           "f output_4 $end\n$upscope"}) {
    EXPECT_THAT(header, testing::HasSubstr(line));
  }
  EXPECT_EQ(Dump_Of({{7, 632, 0x80, true}}), "#7\n1c\n1d\n0e\n0f\n");
}

TEST_F(Port_Dump_Test, A_File_That_Cannot_Be_Written_Is_Refused) {
  Temporary_Folder folder;
  EXPECT_THROW(Record_Ports_To_File(folder.File("missing/edges.vcd")), Fault);
  EXPECT_FALSE(Port_Recorder.Active);
}

}  // namespace
}  // namespace norvik
