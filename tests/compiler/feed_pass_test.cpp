// The three speeds of a wire: values worked out by hand, then any program against the reference.
#include "compiler/wires/feed_pass.h"

#include "compiler/feed_reference.h"
#include "compiler/state/compile_host.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/tables_io.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/paths.h"
#include "platform/scripted/scripted_platform.h"

#include <cmath>
#include <filesystem>
#include <random>

#include <gmock/gmock.h>
#include <unistd.h>

namespace norvik {
namespace {

using testing::ElementsAre;
using testing::FloatEq;
using testing::HasSubstr;

struct Feed_Setup {
  float SPI = 1000, Max_Feed = 100, Ramp_Start = 2, CV_Angle = 15;
  int Ramp_Rate = 1, Secondary = 0;
};

void Use(const Feed_Setup& setup) {
  MachineSetup.Axis_SPI.Fill(setup.SPI);
  MachineSetup.Axis_Max_Feed_Rate.Fill(setup.Max_Feed);
  MachineSetup.Axis_Ramp_Start = setup.Ramp_Start;
  MachineSetup.Axis_Ramp_Rate = static_cast<std::int16_t>(setup.Ramp_Rate);
  MachineSetup.Axis_CV_MotionAngle = setup.CV_Angle;
  MachineSetup.Axis_Limit_Secondary_Velocity = static_cast<std::int16_t>(setup.Secondary);
  MachineSetup.Motion_Analyzer_Enable = 0;
}

using Place = Indexed<Nullable, 1, 6>;

struct Program {
  Record_List<Wire> Wires;
  Program& Move(const Place& to, float feed = 10) {
    Wire wire = Standing(feed);
    wire.Motion = 1;
    wire.End = to;
    Wires.push_back(wire);
    return *this;
  }
  Program& Command() {
    Wires.push_back(Standing(10));
    return *this;
  }

 private:
  Wire Standing(float feed) const {
    Wire wire;
    wire.Step = static_cast<std::int32_t>(Wires.size()) + 1;
    wire.Start = wire.End = Wires.empty() ? Place{{0, 0, 0, 0}} : Wires.back().End;
    wire.IPM_D = wire.IPM_S = wire.IPM_R = wire.IPM_E = feed;
    return wire;
  }
};

struct Feed_Pass : testing::Test {
  Feed_Pass() {
    Use({});
    Application.EscFlag = false;
    Corner_Angle_Memory = {};
  }
  Scripted_Platform Scripted;
};

auto Speeds(float s, float r, float e) {
  return testing::AllOf(testing::Field("IPM_S", &Wire::IPM_S, FloatEq(s)),
                        testing::Field("IPM_R", &Wire::IPM_R, FloatEq(r)),
                        testing::Field("IPM_E", &Wire::IPM_E, FloatEq(e)));
}

// 1000 steps a unit: f(v) = 1000 v / 60. From 2 to 10 takes 133 of a wire's 1000 steps.
TEST_F(Feed_Pass, Worked_By_Hand) {
  struct Row {
    const char* Why;
    Feed_Setup Setup;
    Program Moves;
    std::vector<testing::Matcher<const Wire&>> Speeds;
  };
  const double half = 7.5 * 3.14159265358979 / 180;
  const Row rows[] = {
      // The last-but-one move cruises at ramp start, the last one turns back to the origin.
      {"straight chain",
       {},
       Program().Move({{1}}).Move({{2}}).Move({{3}}),
       {Speeds(2, 10, 10), Speeds(10, 2, 10), Speeds(10, 10, 2)}},
      {"a command at the end leaves the last-but-one move alone",
       {},
       Program().Move({{1}}).Move({{2}}).Command(),
       {Speeds(2, 10, 10), Speeds(10, 10, 2), Speeds(10, 10, 10)}},
      {"a command between two moves carries the speed across",
       {},
       Program().Move({{1}}).Command().Move({{2}}).Command(),
       {Speeds(2, 10, 10), Speeds(10, 10, 10), Speeds(10, 10, 2), Speeds(10, 10, 10)}},
      {"90 degrees: ramp start",
       {},
       Program().Move({{1}}).Move({{1, 1}}).Move({{1, 2}}).Command(),
       {Speeds(2, 10, 2), Speeds(2, 10, 10), Speeds(10, 10, 2), Speeds(10, 10, 10)}},
      {"7.5 of 15 degrees: half of the way from 2 to 10",
       {},
       Program().Move({{1}}).Move({{1 + std::cos(half), std::sin(half)}}).Command(),
       {Speeds(2, 10, 6), Speeds(6, 10, 2), Speeds(10, 10, 10)}},
      {"an axis at its limit of 8",
       {.Max_Feed = 8},
       Program().Move({{1}}).Move({{2}}).Command(),
       {Speeds(2, 8, 8), Speeds(8, 8, 2), Speeds(10, 10, 10)}},
      // X makes 1000 steps, Y 500: at 16 of X, Y runs at its limit of 8 only beyond X's own.
      {"the slower axis may go at its share",
       {.Max_Feed = 8},
       Program().Move({{1, 0.5}}).Move({{2, 1}}).Command(),
       {Speeds(2, 8, 8), Speeds(8, 8, 2), Speeds(10, 10, 10)}},
      // 20 steps a unit: 60 x 10 / 20 = 30 is above the limit of 25, so that F becomes 25, upwards.
      // 100 units are 2000 steps; the ramp from 2 to 10 takes 2 of them.
      {"the second guard assigns, even upwards",
       {.SPI = 20, .Max_Feed = 25},
       Program().Move({{100}}, 9).Move({{200}}, 9).Command(),
       {Speeds(2, 9, 9), Speeds(9, 9, 2), Speeds(10, 10, 10)}},
      // 10 steps reach 60 (33.33 + 10) / 1000 = 2.6, the next 10 steps 3.2. They cannot cruise at
      // 10:
      // 56 of 100 shares of 7.5 steps are 4, which reach 2.24.
      {"a short wire ends no faster than its steps allow",
       {},
       Program().Move({{0.01}}).Move({{0.02}}).Move({{2}}).Command(),
       {Speeds(2, 2.24F, 2.6F), Speeds(2.6F, 2.84F, 3.2F), Speeds(3.2F, 10, 2),
        Speeds(10, 10, 10)}},
      // The middle wire's 10 steps cannot brake from 10 to 2: it may start at 2.6, and the wire
      // before must end there.
      {"backward pass",
       {},
       Program().Move({{1}}).Move({{1.01}}).Move({{1.01, 1}}).Move({{1.01, 2}}).Command(),
       {Speeds(2, 10, 2.6F), Speeds(2.6F, 2.6F, 2), Speeds(2, 10, 10), Speeds(10, 10, 2),
        Speeds(10, 10, 10)}},
      {"a command ends a backward pass and takes its speed",
       {},
       Program().Move({{1}}).Command().Move({{1.01}}).Move({{1.01, 1}}).Command(),
       {Speeds(2, 10, 10), Speeds(10, 10, 2.6F), Speeds(2.6F, 2.6F, 2), Speeds(2, 10, 2),
        Speeds(10, 10, 10)}},
      {"no length: no steps, the corner still counts",
       {},
       Program().Move({{1}}).Move({{1}}).Move({{2}}).Command(),
       {Speeds(2, 10, 10), Speeds(10, 10, 10), Speeds(10, 10, 2), Speeds(10, 10, 10)}},
      // X 1000, Y 100 steps, then Y none: Y would stop at once from 10 x 0.1 = 1; that is below
      // ramp start, so nothing happens. With Y 400 steps it comes in at 4: 2 / 4 x 10 = 5.
      {"a second axis below ramp start may stop at once",
       {.CV_Angle = 90, .Secondary = 1},
       Program().Move({{1, 0.1}}).Move({{2, 0.2}}).Move({{3, 0.3}}).Command(),
       {Speeds(2, 10, 10), Speeds(10, 10, 10), Speeds(10, 10, 2), Speeds(10, 10, 10)}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Why);
    Use(row.Setup);
    Corner_Angle_Memory.Cosine = -1;
    Record_List<Wire> wires = row.Moves.Wires;
    Plan_Rates(wires);
    ASSERT_EQ(wires.size(), row.Speeds.size());
    for (std::size_t i = 0; i < wires.size(); ++i) {
      EXPECT_THAT(wires[i], row.Speeds[i]) << "wire " << i;
    }
  }
}

// A joint of atan(0.4) = 21.801 degrees at a CV angle of 90 allows 10 - 8 x 21.801 / 90 = 8.062; Y
// comes in with 8.062 x 0.4 = 3.225 and goes on with nothing, so that it is held to 2 / 3.225 of
// that: 5.
TEST_F(Feed_Pass, The_Secondary_Axis_Slows_A_Joint) {
  const Program moves = Program().Move({{1, 0.4}}).Move({{2, 0.4}}).Move({{3, 0.4}}).Command();
  for (const int secondary : {0, 1}) {
    Use({.CV_Angle = 90, .Secondary = secondary});
    Record_List<Wire> wires = moves.Wires;
    Plan_Rates(wires);
    EXPECT_NEAR(wires[0].IPM_E, secondary == 1 ? 5 : 8.0621, 0.0001);
    EXPECT_EQ(wires[1].IPM_S, wires[0].IPM_E);
  }
}

TEST(Feed_Formulas, Worked_By_Hand) {
  const Ramp ramp{600, 5};  // f(v) = 10 v
  EXPECT_DOUBLE_EQ(RampSteps(ramp, 2, 9), 14);
  EXPECT_DOUBLE_EQ(RampSteps(ramp, 9, 2), 14);
  EXPECT_DOUBLE_EQ(RampVelocity(ramp, 4.9, 2), 4);  // 60 (20 + 4 x 5) / 600
  EXPECT_TRUE(RampFits(ramp, 0, 0, 100, 0));
  EXPECT_TRUE(RampFits(ramp, 28, 2, 9, 2));
  EXPECT_FALSE(RampFits(ramp, 27, 2, 9, 2));  // one step short
  EXPECT_DOUBLE_EQ(SplitCruise(ramp, 100, 2, 4), 2 + 0.75 * 100 * 0.66 / 2 - 0.25);  // 49 steps
  EXPECT_THROW(RampSteps({600, 0}, 1, 2), Fault);
  EXPECT_THROW(RampVelocity({0, 1}, 1, 2), Fault);
  EXPECT_THROW(SplitCruise(ramp, 1, 0, 0), Fault);
}

// --- Any program ---------------------------------------------------------------------------------

// Chains of every kind: long and short, straight and bent, with commands, standing wires and axes
// never given.
Record_List<Wire> Generated(std::mt19937& random, int count) {
  const auto chance = [&](unsigned one_in) { return random() % one_in == 0; };
  std::uniform_real_distribution<double> unit(0, 1);
  Record_List<Wire> wires;
  Place at;
  double heading = 0;
  float feed = 10;
  for (int i = 0; i < count; ++i) {
    Wire wire;
    wire.Step = i + 1;
    wire.Start = at;
    if (chance(30)) feed = static_cast<float>(0.5 + 60 * unit(random));
    if (!chance(12)) {
      wire.Motion = 1;
      heading += chance(4) ? 6.3 * unit(random) : 0.15 * (unit(random) - 0.5);
      const double length = std::pow(10, -3.5 + 4 * unit(random));
      if (!chance(15)) {
        at[1] = at[1].value_or(0) + length * std::cos(heading);
        at[2] = at[2].value_or(0) + length * std::sin(heading);
      }
      if (chance(5)) at[3] = at[3].value_or(0) + 0.3 * (unit(random) - 0.5);
      if (chance(9)) at[4] = 90 * unit(random);
    }
    wire.End = at;
    wire.IPM_D = wire.IPM_S = wire.IPM_R = wire.IPM_E = feed;
    wires.push_back(wire);
  }
  return wires;
}

const Feed_Setup Setups[] = {
    {},
    {.SPI = 4000, .Max_Feed = 15, .Secondary = 1},
    {.SPI = 80, .Max_Feed = 40, .Ramp_Rate = 15, .Secondary = 1},
    {.SPI = 20, .Max_Feed = 25, .Ramp_Start = 0.5F, .CV_Angle = 45, .Ramp_Rate = 3, .Secondary = 1},
    {.CV_Angle = 0},
};

void Mix_Scales(std::mt19937& random) {
  if (random() % 2 == 0) return;
  MachineSetup.Axis_SPI[2] *= 0.5F;
  MachineSetup.Axis_SPI[4] = 10;
  MachineSetup.Axis_Max_Feed_Rate[4] = 400;
}

TEST_F(Feed_Pass, Gives_The_Bits_Of_The_Reference) {
  std::mt19937 random(23);
  for (int round = 0; round < 400; ++round) {
    Use(Setups[static_cast<std::size_t>(round) % std::size(Setups)]);
    Mix_Scales(random);
    const Record_List<Wire> made = Generated(random, static_cast<int>(random() % 300));
    reference::Feed_Columns expected(made);
    Corner_Angle_Memory = {};
    expected.Run();
    Corner_Angle_Memory = {};
    Record_List<Wire> wires = made;
    const int passes = Feed_Pass_Memory.Backward_Pass_Count;
    Plan_Rates(wires);
    SCOPED_TRACE(round);
    EXPECT_EQ(Feed_Pass_Memory.Backward_Pass_Count - passes, expected.Backward_Passes);
    for (std::size_t i = 0; i < wires.size(); ++i) {
      ASSERT_THAT((std::vector{wires[i].IPM_D, wires[i].IPM_S, wires[i].IPM_R, wires[i].IPM_E}),
                  ElementsAre(expected.D[i], expected.S[i], expected.R[i], expected.E[i]))
          << "wire " << i << " of " << wires.size();
    }
  }
}

// The speeds join up, and no axis runs above its limit. What bends these rules is stated with the
// pass: a backward pass that a command ends before it is done, the second guard (switched off here
// by the scale), and a wire so short that its cruise is the larger of its ends.
TEST_F(Feed_Pass, Speeds_Join_And_Keep_The_Limits) {
  std::mt19937 random(31);
  for (int round = 0; round < 200; ++round) {
    Use(Setups[round % 2]);
    Record_List<Wire> wires = Generated(random, 200);
    Plan_Rates(wires);
    std::size_t before = wires.size();
    for (std::size_t i = 0; i < wires.size(); ++i) {
      if (wires[i].Motion != 1) continue;
      const Wire& wire = wires[i];
      SCOPED_TRACE(testing::Message() << "round " << round << " wire " << i);
      if (before == i - 1) {
        EXPECT_EQ(wire.IPM_S, wires[before].IPM_E);
      } else if (before == wires.size()) {
        EXPECT_LE(wire.IPM_S, MachineSetup.Axis_Ramp_Start);
      }
      before = i;
      double steps[4], major = 0;
      for (int k = 1; k <= 4; ++k) {
        steps[k - 1] = std::trunc(double{MachineSetup.Axis_SPI[k]} *
                                  std::abs(wire.End[k].value_or(0) - wire.Start[k].value_or(0)));
        major = std::max(major, steps[k - 1]);
      }
      for (int k = 1; k <= 4 && major > 0; ++k) {
        const double limit = MachineSetup.Axis_Max_Feed_Rate[k] * (1 + 1e-6);
        EXPECT_LE(wire.IPM_R * steps[k - 1] / major, limit) << k;
        EXPECT_LE(wire.IPM_E * steps[k - 1] / major, limit) << k;
      }
    }
  }
}

// --- The pass around it --------------------------------------------------------------------------

struct Feed_Pass_Run : Feed_Pass {
  Feed_Pass_Run() : Path(testing::TempDir() + std::to_string(::getpid()) + "norvik_feed_pass.csv") {
    std::filesystem::remove(Path);
  }
  ~Feed_Pass_Run() override {
    std::filesystem::remove(Path);
    Compile_Host = {};
  }
  static Table<Wire> Chain(int count) {
    Program program;
    for (int i = 1; i <= count; ++i) program.Move({{i}});
    return {program.Wires, nullptr};
  }
  std::string Path;
};

TEST_F(Feed_Pass_Run, Shows_Progress_And_Yields) {
  std::vector<std::string> captions;
  Compile_Host.Show_Progress = [&](const std::string& caption) { captions.push_back(caption); };
  Compile_Status.CompileDone = false;
  std::vector<std::string> texts;
  Scripted.On_Yield = [&] { texts.push_back(Messages.Panel[1]); };
  Table<Wire> wires = Chain(55);
  EXPECT_TRUE(NIST_Optimus_Rates(wires, Path));
  const std::string text = "GCode Compile: Generating Contour Feed Rates";
  const auto percent = [&](const char* value) {
    return text + " " + value + "% completed, press ESC to cancel";
  };
  // Every 11th move: 75 x 10 / 55 = 13.6; every 26th record: 75 + 25 x 25 / 55.
  EXPECT_THAT(texts,
              ElementsAre(text + "...", text + "...", text + "...", text + "...", percent("13.00"),
                          percent("28.00"), percent("43.00"), percent("58.00"), percent("73.00"),
                          percent("86.00"), percent("98.00")));
  EXPECT_THAT(captions, ElementsAre("GCode Optimize Feed Rates"));
  EXPECT_TRUE(Compile_Status.CompileDone);
  EXPECT_TRUE(Read_Wire_Table(Path).Rows == wires.Rows);
}

TEST_F(Feed_Pass_Run, Plans_A_File_In_Place) {
  Table<Wire> wires = Chain(40);
  Write_Wire_Table(Path, wires);
  EXPECT_TRUE(NIST_Optimus_Rates(Path));
  Plan_Rates(wires.Rows);
  EXPECT_TRUE(Read_Wire_Table(Path).Rows == wires.Rows);
}

// Pressed at the given yield: before the records are taken, in the forward pass (which does not
// look at it) or while the file is written.
TEST_F(Feed_Pass_Run, Escape_Cuts_The_Table) {
  struct Row {
    int Yield;
    std::size_t Records;
  };
  for (const Row& row : {Row{2, 1}, Row{6, 26}, Row{14, 26}, Row{15, 52}, Row{99, 100}}) {
    SCOPED_TRACE(row.Yield);
    int yields = 0;
    Scripted.On_Yield = [&] { Application.EscFlag = Application.EscFlag || ++yields == row.Yield; };
    Table<Wire> wires = Chain(100);
    EXPECT_TRUE(NIST_Optimus_Rates(wires, Path));
    EXPECT_FALSE(Application.EscFlag);
    EXPECT_EQ(wires.Rows.size(), row.Records);
    EXPECT_TRUE(Read_Wire_Table(Path).Rows == wires.Rows);
  }
}

TEST_F(Feed_Pass_Run, Faults_Are_Logged_And_Leave_What_Was_There) {
  // Each wire fails; a hundred are named, the rest is counted.
  Use({.CV_Angle = 0});
  Table<Wire> wires = Chain(150);
  int named = 0;
  Messages_Host.Panel_Changed = [&](int) {
    if (Messages.Panel[1].find("GetMotionAngleVelocity_Error # 11 Division by zero") !=
        std::string::npos) {
      ++named;
    }
  };
  Plan_Rates(wires.Rows);
  Messages_Host = {};
  EXPECT_EQ(named, 200);  // two panels for each entry
  EXPECT_THAT(Messages.Panel[1], HasSubstr("GetMotionAngleVelocity_Error # 50 more of them"));
  EXPECT_THAT(wires.Rows[5], Speeds(10, 10, 10));  // the first: its start alone was set
  EXPECT_THAT(wires.Rows[0], Speeds(2, 10, 10));

  Use({});
  wires = Chain(3);
  EXPECT_FALSE(NIST_Optimus_Rates(wires, Path + "/none.csv"));
  EXPECT_THAT(Messages.Panel[1], HasSubstr("Nist Optimus Rates Error # 53 Cannot write"));
  EXPECT_FALSE(NIST_Optimus_Rates(Path));
  EXPECT_THAT(Messages.Panel[1], HasSubstr("Nist Optimus Rates Error # 53 Cannot read"));
}

TEST_F(Feed_Pass_Run, No_Program_Is_No_Problem) {
  Table<Wire> none;
  EXPECT_TRUE(NIST_Optimus_Rates(none, Path));
  EXPECT_EQ(Read_Whole_File(Path), "");
  Program commands;
  commands.Command().Command();
  Plan_Rates(commands.Wires);
  EXPECT_THAT(commands.Wires[1], Speeds(10, 10, 10));
}

}  // namespace
}  // namespace norvik
