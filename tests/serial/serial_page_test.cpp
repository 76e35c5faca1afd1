// The serial page of the port dialog: what it takes, what it shows, what its buttons do.
#include "serial/serial_page.h"

#include "core/application.h"
#include "core/axis_memory.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/setup.h"
#include "drive/drive.h"
#include "plain_board.h"
#include "platform/scripted/scripted_platform.h"
#include "serial/monitor.h"
#include "serial/serial_link.h"
#include "serial/serial_session.h"
#include "support/reset.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace norvik {
namespace {

using testing::HasSubstr;

const Drive_Operations& Of_Page_Board() {
  static constexpr Drive_Operations drive = {.Board = 1};
  return drive;
}

struct Serial_Page_Test : testing::Test {
  Scripted_Platform Scripted;
  Plain_Board Board{1};

  Serial_Page_Test() {
    Reset_Serial();
    Restore_Factory_Setup();
    Drive_Choice.Of_Setup = Of_Page_Board;
    Serial_Session_Host.Choose_Device = [](int, const std::string&, const std::string&) {
      return std::string("port");
    };
    Serial_Begin_Session();
    Serial_Page_Form_Load();
    Board.Port.Sent.clear();
  }
  ~Serial_Page_Test() override {
    Reset_Serial();
    Drive_Choice = {};
  }
};

TEST_F(Serial_Page_Test, Takes_what_is_typed_and_names_what_it_cannot_read) {
  Serial_Page_Form& page = Serial_Page;
  EXPECT_EQ(page.Combo_Dravon_Enc_Mode[1], "1X");
  EXPECT_EQ(page.Combo_DravonArcMinimumLength, "0.001");
  page.Check_Dravon_Enc_Enable[1] = page.Check_Dravon_Enc_StopOnFault[1] = true;
  page.Combo_Dravon_Enc_Mode = {{"4X", "2x", "0", "1X"}};
  page.Combo_Dravon_Enc_Error = {{"50", "255", "20", "75"}};
  page.Text_Dravon_Enc_CFactor = {{"0.5", "1", "16777.215", "1000"}};
  page.Combo_DravonArcMinimumLength = "0.05";
  page.Check_LimitSwitchDisable = true;
  Take_Serial_Page();
  EXPECT_EQ(page.Label_Hint, "");
  EXPECT_EQ(MachineSetup.DravonArcMinimumLength, 0.05F);
  EXPECT_EQ(MachineSetup.LimitSwitchDisable, 1);
  const Encoder_Config config = Encoders_Of_Setup();
  EXPECT_EQ(config.Axis_Byte, (Indexed<std::uint8_t, 1, 4>{{195, 2, 0, 1}}));
  EXPECT_EQ(config.Factor, (Indexed<std::uint32_t, 1, 4>{{500, 1'000, 16'777'215, 1'000'000}}));
  EXPECT_EQ(config.Max_Error, (Indexed<std::uint32_t, 1, 4>{{50, 255, 20, 75}}));
  // Each wrong one stays as it was, the others are taken.
  for (const char* wrong : {"", "fast", "-1", "1e9"}) {
    page.Text_Dravon_Enc_CFactor[2] = wrong;
    page.Combo_Dravon_Enc_Mode[2] = "8X";
    page.Text_Dravon_SASF = "4";
    Take_Serial_Page();
    EXPECT_THAT(page.Label_Hint, HasSubstr(" of Y: ")) << wrong;
    EXPECT_EQ(MachineSetup.Dravon_SASF, 4);
    EXPECT_EQ(Encoders_Of_Setup(), config);
  }
}

TEST_F(Serial_Page_Test, Shows_the_board_and_a_cable_that_is_pulled) {
  Board.Limits = 0x21;
  Board.Aux = 33;
  Board.Encoder_Faults = 2;
  Board.Counter = {-70, 5, 0, 0};
  DRAVON_Timer1_Tick();
  const Serial_Page_Form& page = Serial_Page;
  EXPECT_EQ(page.Label_ComOK, "Present");
  EXPECT_EQ(page.Label_Firmware_Revision, "5.1.2");
  EXPECT_EQ(page.Label_Firmware_Date, "04/03/2014");
  EXPECT_EQ(page.Label_Dravon_Buffer, "3250");
  EXPECT_EQ(page.Label_Dravon_Step_Count[1], "-70");
  EXPECT_TRUE(page.Limit_Low[1]);
  EXPECT_TRUE(page.Limit_High[2]);
  EXPECT_FALSE(page.Limit_High[1]);
  EXPECT_TRUE(page.Aux_Input);
  EXPECT_TRUE(page.Aux_Flag);
  EXPECT_TRUE(page.Command_Enc_Fault_Flag[2]);
  EXPECT_EQ(page.Label_Motion, "False");
  EXPECT_EQ(page.Label_WatchDog_Errors, "0");
  Board.Dead = true;
  const double before = Serial_Link.ErrorCount;
  DRAVON_Timer1_Tick();
  EXPECT_EQ(page.Label_ComOK, "Failure");
  EXPECT_EQ(page.Label_DravonErrorMsg, "Comm Error!!!");
  EXPECT_EQ(page.Label_Firmware_Revision, "NA");
  EXPECT_GT(Serial_Link.ErrorCount, before);
  Board.Dead = false;
  Scripted.Advance(2);
  Serial_Tick();
  DRAVON_Timer1_Tick();
  EXPECT_EQ(page.Label_ComOK, "Present");
}

TEST_F(Serial_Page_Test, A_memory_place_that_fails_shows_999) {
  const auto answer = Board.Port.Answer;
  Board.Port.Answer = [&](const Bytes& frame) { return frame[1] == 19 ? Bytes() : answer(frame); };
  DRAVON_Timer1_Tick();
  EXPECT_EQ(Serial_Page.Label_Dravon_CByte1, "999");
}

TEST_F(Serial_Page_Test, While_the_machine_moves_the_line_belongs_to_the_moves) {
  {
    const Operation_Scope moves(Operation::Move);
    DRAVON_Timer1_Tick();
    Command_DravonReset_Click();
    Command_Enc_Fault_Flag_Click();
    Command_Dravon_Aux_Output_Click(6);
    EXPECT_EQ(Board.Codes(), "");
    EXPECT_THAT(Messages.Panel[1], HasSubstr("while the machine moves"));
  }
  Command_Dravon_Aux_Output_Click(6);
  EXPECT_EQ(Board.Last_Of(13)[2], 6);
  Machine.EStop_Flag = true;
  Board.Port.Sent.clear();
  Command_Dravon_Aux_Output_Click(7);
  EXPECT_EQ(Board.Count_Of(13), 0);
}

TEST_F(Serial_Page_Test, Faults_are_cleared_and_a_restart_puts_the_positions_in_doubt) {
  Board.Encoder_Faults = 4;
  DravonPoll();
  Command_Enc_Fault_Flag_Click();
  EXPECT_EQ(Board.Count_Of(24), 1);
  EXPECT_THAT(Messages.Panel[1], HasSubstr("encoder of Z still"));
  Board.Encoder_Faults = 0;
  Command_Enc_Fault_Flag_Click();
  EXPECT_THAT(Messages.Panel[1], HasSubstr("Faults are cleared"));
  EXPECT_FALSE(Serial_Page.Command_Enc_Fault_Flag[3]);
  Board.Port.Sent.clear();
  Command_DravonReset_Click();
  EXPECT_EQ(Board.Codes().substr(0, 16), "23 22 28 29 31 1");
  EXPECT_NE(Position_Memory.Doubt, "");
  Serial_Link.ErrorCount = 3;
  Command_Dravon_ResetErrors_Click();
  EXPECT_EQ(Serial_Page.Label_Dravon_Errors[1], "0");
}

}  // namespace
}  // namespace norvik
