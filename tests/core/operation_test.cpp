#include "core/operation.h"

#include "core/application.h"
#include "platform/scripted/scripted_platform.h"
#include "support/reset.h"

#include <gtest/gtest.h>

namespace norvik {
namespace {

class Operation_Test : public ::testing::Test {
 protected:
  Operation_Test() { Reset_Core(); }
  ~Operation_Test() override { Reset_Core(); }
  Scripted_Platform Scripted;
};

TEST_F(Operation_Test, Parts_Nest_Inside_What_The_Operator_Began) {
  EXPECT_EQ(Present_Operation(), nullptr);
  {
    const Operation_Scope line(Operation::Goto);
    Scripted.Advance(1);
    {
      const Operation_Scope compile(Operation::Compile_Line);
      EXPECT_TRUE(Compiler_Works());
      EXPECT_FALSE(Program_Is_Held());
    }
    EXPECT_FALSE(Compiler_Works());
    const Operation_Scope move(Operation::Move);
    Tell_Detail("to X 1");
    ASSERT_NE(Present_Operation(), nullptr);
    EXPECT_EQ(Present_Operation()->What, Operation::Goto);
    EXPECT_EQ(Present_Operation()->Since, 0);
    EXPECT_EQ(Present_Operation()->Detail, "to X 1");
    EXPECT_TRUE(Anything_Moves());
  }
  EXPECT_FALSE(Anything_Moves());
}

// An ESC that lies before an operation must not end it; one that comes in its course ends it whole,
// so that a part never forgets.
TEST_F(Operation_Test, Only_The_Outermost_Operation_Forgets_An_Earlier_ESC) {
  Application.EscFlag = true;
  Scripted.Press(key::Escape);
  {
    const Operation_Scope line(Operation::Goto);
    EXPECT_FALSE(Application.EscFlag);
    EXPECT_FALSE(Platform.Key_Down(key::Escape));
    Application.EscFlag = true;
    const Operation_Scope compile(Operation::Compile_Line);
    EXPECT_TRUE(Application.EscFlag);
  }
  {
    const Operation_Scope move(Operation::Move);  // of a caller that has looked before
    EXPECT_TRUE(Application.EscFlag);
  }
}

struct Obstacle_Row {
  const char* Name;
  void (*Arrange)();
  std::optional<Operation> Running;
  Obstacle To_Jog, To_Goto, To_Open;
};

class Obstacle_Test : public Operation_Test, public ::testing::WithParamInterface<Obstacle_Row> {};

TEST_P(Obstacle_Test, Says_What_Stands_Against_It) {
  GetParam().Arrange();
  std::optional<Operation_Scope> running;
  if (GetParam().Running) running.emplace(*GetParam().Running);
  EXPECT_EQ(Obstacle_To(Operation::Jog), GetParam().To_Jog);
  EXPECT_EQ(Obstacle_To(Operation::Goto), GetParam().To_Goto);
  EXPECT_EQ(Obstacle_To(Operation::Open), GetParam().To_Open);
  for (const Operation wanted : {Operation::Jog, Operation::Goto, Operation::Open})
    EXPECT_EQ(Why_Not_Begin(wanted).empty(), Obstacle_To(wanted) == Obstacle::None);
}

using enum Obstacle;
INSTANTIATE_TEST_SUITE_P(
    All, Obstacle_Test,
    ::testing::Values(
        Obstacle_Row{"Rest", [] {}, {}, None, None, None},
        Obstacle_Row{
            "Paused", [] { Machine.CNCMode = CNC_Paused; }, {}, None, Run_Is_Paused, Run_Is_Paused},
        Obstacle_Row{"EStop_Set",
                     [] { Machine.EStop_Flag = true; },
                     {},
                     Obstacle::EStop,
                     Obstacle::EStop,
                     None},
        Obstacle_Row{"No_Drive_There",
                     [] { Operation_Host.Drive_Missing = [] { return "No drive."; }; },
                     {},
                     No_Drive,
                     No_Drive,
                     None},
        Obstacle_Row{"Compile", [] {}, Operation::Compile, Obstacle::Program_Is_Held,
                     Obstacle::Program_Is_Held, Obstacle::Program_Is_Held},
        Obstacle_Row{"Home", [] { Machine.EStop_Flag = true; }, Operation::Home, Something_Moves,
                     Something_Moves, Something_Moves}),
    [](const auto& row) { return row.param.Name; });

TEST_F(Operation_Test, A_Refusal_Names_What_Runs_And_The_Way_Out) {
  const Operation_Scope home(Operation::Home);
  EXPECT_EQ(Why_Not_Begin(Operation::Goto),
            "Not now: homing is under way. Stop ends it behind the running move, ESC or the E-stop "
            "at once.");
}

TEST_F(Operation_Test, A_Text_Tool_Is_Not_Called_A_Compile) {
  {
    const Operation_Scope edit(Operation::Edit);
    EXPECT_EQ(Why_Not_Begin(Operation::Run),
              "Not now: a change of the program or an export is under way. ESC ends it.");
  }
  const Operation_Scope compile(Operation::Compile);
  EXPECT_EQ(Why_Not_Begin(Operation::Run), operation_text::Compile_Runs);
}

}  // namespace
}  // namespace norvik
