// The support packet: what goes in, what is blanked, and that others can open it.
#include "app/support_packet.h"

#include "app/app_fixture.h"
#include "core/fault.h"

#include <cstdlib>

namespace norvik {
namespace {

using testing::HasSubstr;
using testing::Not;

struct Support_Packet_Test : App_Test {
  Support_Packet_Test() {
    Application.MachineFile = Folder.File("work/mill.ini");
    Restore_Factory_Setup();
    MachineSetup.MacroFile[3] = "/srv/jobs of anna/macro.gc";
    SaveMachineSetup();
    WritePointer("FileList", "RecentFile_1", "/media/big disk/customer/part.gc");
    WritePointer("Platform", "Serial_Device_1", "/dev/ttyUSB0");
  }
  static const std::string& Bytes(const std::vector<Packet_File>& files, std::string_view name) {
    for (const Packet_File& file : files) {
      if (file.Entry.Name == name) return file.Entry.Bytes;
    }
    throw std::runtime_error("No file " + std::string(name));
  }
};

TEST_F(Support_Packet_Test, Folders_Of_The_Operator_Are_Blanked_And_Devices_Stay) {
  const auto files = Support_Packet("Toolkit: none\n");
  EXPECT_EQ(files.size(), 8U);
  for (const Packet_File& file : files) {
    EXPECT_THAT(file.Entry.Bytes, Not(HasSubstr("anna"))) << file.Entry.Name;
    EXPECT_THAT(file.Entry.Bytes, Not(HasSubstr("big disk"))) << file.Entry.Name;
    EXPECT_THAT(file.Entry.Bytes, Not(HasSubstr(Folder.Path))) << file.Entry.Name;
    EXPECT_FALSE(file.Entry.Bytes.empty()) << file.Entry.Name;
  }
  EXPECT_THAT(Bytes(files, "machine.ini"), HasSubstr("MacroFile3=[folder]/macro.gc"));
  EXPECT_THAT(Bytes(files, "computer.ini"), HasSubstr("RecentFile_1=[folder]/part.gc"));
  EXPECT_THAT(Bytes(files, "computer.ini"), HasSubstr("Serial_Device_1=/dev/ttyUSB0"));
  EXPECT_THAT(Bytes(files, "versions.txt"), HasSubstr("[working folder]"));
  EXPECT_THAT(Bytes(files, "versions.txt"), HasSubstr("Toolkit: none"));
}

TEST_F(Support_Packet_Test, Texts_Without_Folders_Stay_As_They_Are) {
  for (const char* text :
       {"N10 G01 X1/2", "1/2 inch, and/or", "12:30:05 Error Description: 1/0", "a / b", "//"}) {
    EXPECT_EQ(Blank_Folders(text), text);
  }
  EXPECT_EQ(Blank_Folders("File \"/opt/jobs/part.gc\" is missing"),
            "File \"[folder]/part.gc\" is missing");
  EXPECT_EQ(Blank_Folders("Path=C:\\Users\\bob\\cut.nc"), "Path=[folder]\\cut.nc");
}

TEST_F(Support_Packet_Test, The_Archive_Opens_Elsewhere_And_A_Failure_Leaves_The_Old_One) {
  const std::string path = Folder.File("packet.zip");
  Write_Support_Packet(path, Support_Packet(""));
  const std::string call =
      "python3 -c \"import sys, zipfile; z = zipfile.ZipFile(sys.argv[1]); "
      "sys.exit(0 if z.testzip() is None and len(z.namelist()) == 8 else 1)\" '" +
      path + "'";
  EXPECT_EQ(std::system(call.c_str()), 0);
  EXPECT_THROW(Write_Support_Packet(Folder.File("no/such/packet.zip"), {}), Fault);
  EXPECT_FALSE(Read_Whole_File(path).empty());
}

}  // namespace
}  // namespace norvik
