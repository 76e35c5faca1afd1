// The command `run` as its operator starts it: a process at a terminal, in real time, on the
// simulated machine. However it ends, the machine is left switched off and its place is kept.
#include "cli/companion.h"
#include "core/paths.h"
#include "support/temporary_folder.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace norvik {
namespace {

using testing::HasSubstr;
using testing::Not;

using Seconds = std::chrono::duration<double>;
using Clock = std::chrono::steady_clock;

// A process of norvik-cli, at a terminal of its own or with its input from a file.
class Companion_Process {
 public:
  Companion_Process(std::vector<std::string> words, bool at_terminal) {
    words.insert(words.begin(), NORVIK_CLI);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    Id = ::forkpty(&Terminal, nullptr, nullptr, nullptr);
    if (Id != 0) return;
    if (!at_terminal) ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
    ::execv(arguments[0], arguments.data());
    std::_Exit(127);
  }
  ~Companion_Process() {
    if (!Ended) ::kill(Id, SIGKILL), ::waitpid(Id, nullptr, 0);
    ::close(Terminal);
  }
  Companion_Process(const Companion_Process&) = delete;
  Companion_Process& operator=(const Companion_Process&) = delete;

  // True when `text` came on the terminal, behind what an earlier call has found.
  bool Says(const std::string& text, double seconds = 20) {
    const auto end = Clock::now() + Seconds(seconds);
    while (Output.find(text, Seen) == std::string::npos) {
      if (Clock::now() > end || !Read_Some()) return false;
    }
    Seen = Output.find(text, Seen) + text.size();
    return true;
  }
  void Type(const std::string& keys) {
    [[maybe_unused]] const auto typed = ::write(Terminal, keys.data(), keys.size());
  }
  void Send(int signal) { ::kill(Id, signal); }
  // The operator closes the window of the terminal.
  void Hang_Up() {
    ::close(Terminal);
    Terminal = -1;
  }

  // Exit status; absent when a signal ended it or it did not end in time.
  std::optional<int> Status(double seconds = 10) {
    const auto end = Clock::now() + Seconds(seconds);
    int status = 0;
    while (::waitpid(Id, &status, WNOHANG) == 0) {
      if (Clock::now() > end) return std::nullopt;
      Read_Some();
    }
    Ended = true;
    while (Read_Some()) continue;
    if (!WIFEXITED(status)) return std::nullopt;
    return WEXITSTATUS(status);
  }

  std::string Output;

 private:
  // False once nothing can come any more.
  bool Read_Some() {
    if (Terminal < 0) return std::this_thread::sleep_for(Seconds(0.01)), false;
    pollfd input{Terminal, POLLIN, 0};
    if (::poll(&input, 1, 20) <= 0) return !Ended;
    std::array<char, 4096> bytes{};
    const auto count = ::read(Terminal, bytes.data(), bytes.size());
    if (count <= 0) return false;
    Output.append(bytes.data(), static_cast<std::size_t>(count));
    return true;
  }

  pid_t Id = -1;
  int Terminal = -1;
  std::size_t Seen = 0;
  bool Ended = false;
};

struct Run_Command_Test : testing::Test {
  // The sample machine with an inverted step pin (X), an inverted enable (Y) and an inverted
  // spindle; motors stay on between moves. It stands at X 1.5.
  Run_Command_Test() {
    std::string setup = Read_Whole_File(std::string(NORVIK_SAMPLES_FOLDER) + "/inch.ini");
    const std::string section = "[Parallel Setup]\n";
    setup.insert(setup.find(section) + section.size(),
                 "Parallel_Output_Bit_Invert_1=True\nParallel_Output_Bit_Invert_6=True\n"
                 "Parallel_Output_Bit_Invert_13=True\nParallel_MotorEnable_Option=1\n");
    // In front of the corrections, which end the file.
    setup.insert(setup.find("[Corrections]"), "[Axis Position]\nAxis_Cur_Pos_1=1.5\n");
    std::filesystem::create_directory(Folder.File("home"));
    Replace_File(Machine_File, setup);
    Replace_File(Folder.File("home/Norvik.Ini"), Pointer);
    Replace_File(Program,
                 "G0 X1.45\nM3\nM0\n"  // step 3: a pause
                 "G1 X15 F3\n"         // step 4: minutes of a move
                 "G4 P60\n");          // step 5: a minute of waiting
    Replace_File(Dwelling, "G0 X1.45\nM3\nG4 P60\nG1 X2\n");
  }

  std::vector<std::string> Words(const std::string& program, std::vector<std::string> more = {}) {
    std::vector<std::string> words{"--home", Folder.File("home"), "run", "--ports", Ports, program};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

  // By the writes that really reached a pin.
  void Expect_Switched_Off() {
    std::map<int, int> last;
    for (const std::string& line : Split_Lines(Read_Whole_File(Ports))) {
      int port = 0, value = 0, real = 0;
      double time = 0;
      if (std::sscanf(line.c_str(), "%lf,%d,%d,%d", &time, &port, &value, &real) != 4) continue;
      if (real == 1) last[port] = value;
    }
    EXPECT_EQ(last[888] & 0x55, 0x01);  // step pins idle
    EXPECT_EQ(last[632], 0x12);         // enables of X, Y, Z, A and outputs 1 to 4 off
    EXPECT_EQ(last[634] & 0x04, 0);     // output 5 off
  }
  double Kept_X() {
    const std::string text = Read_Whole_File(Machine_File);
    const std::string key = "Axis_Cur_Pos_1=";
    return std::stod(text.substr(text.find(key) + key.size()));
  }
  void Expect_Ended_Early(Companion_Process& process, const std::string& why) {
    const bool by_signal = why == "Stopped by ESC.";
    EXPECT_EQ(process.Status(), by_signal ? Interrupted_By_Operator : Failed) << process.Output;
    EXPECT_THAT(process.Output, HasSubstr("Ended early: " + why));
    Expect_Switched_Off();
  }

  Temporary_Folder Folder;
  std::string Machine_File = Folder.File("home/mill.ini"), Program = Folder.File("part.gc"),
              Dwelling = Folder.File("dwell.gc"), Ports = Folder.File("ports.csv"),
              Pointer = "[Machine]\nName=" + Machine_File + "\n[Platform]\nPort_Access=Simulated\n";
};

// --- The ways to end -----------------------------------------------------------------------------

TEST_F(Run_Command_Test, Signals_In_A_Move_End_It_At_Once) {
  struct {
    int Signal, Times;
  } const rows[] = {{SIGINT, 1}, {SIGTERM, 1}, {SIGTERM, 4}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.Signal) + " x " + std::to_string(row.Times));
    Companion_Process process(Words(Program, {"--no-pause"}), true);
    ASSERT_TRUE(process.Says("Step 4 of 5")) << process.Output;
    for (int i = 0; i < row.Times; ++i) process.Send(row.Signal);
    // The second of several asks for an end without a summary, if it comes before the first has
    // ended the run. None of them may cut the end short.
    const auto status = process.Status(3);
    ASSERT_TRUE(status) << process.Output;
    EXPECT_EQ(*status, Interrupted_By_Operator);
    if (row.Times == 1) {
      EXPECT_THAT(process.Output, HasSubstr("Ended early: Stopped by ESC."));
    }
    Expect_Switched_Off();
    const double x = Kept_X();
    EXPECT_GT(x, 1.45);
    EXPECT_LT(x, 2.0);
  }
}

TEST_F(Run_Command_Test, Signals_End_A_Wait_And_A_Pause) {
  {
    Companion_Process process(Words(Dwelling), true);
    ASSERT_TRUE(process.Says("Step 3 of 4")) << process.Output;
    process.Type("\x1a");  // Ctrl-Z must not halt it with the spindle on
    process.Type("\x03");
    Expect_Ended_Early(process, "Stopped by ESC.");
    EXPECT_NEAR(Kept_X(), 1.45, 1e-6);
  }
  for (const std::string& keys : {std::string("\x03"), std::string("q\n"), std::string("\x04")}) {
    Companion_Process process(Words(Program), true);
    ASSERT_TRUE(process.Says("Paused behind step 3 (M0). Enter goes on, q ends the run: "))
        << process.Output;
    process.Type(keys);
    Expect_Ended_Early(process, keys == "\x03" ? "Stopped by ESC." : "Stopped by the operator.");
  }
}

TEST_F(Run_Command_Test, A_Terminal_That_Goes_Away_Ends_The_Run) {
  Companion_Process process(Words(Program), true);
  ASSERT_TRUE(process.Says("Paused behind step 3"));
  process.Hang_Up();
  EXPECT_TRUE(process.Status());
  Expect_Switched_Off();
}

// What was typed while the machine moved is no answer; the pause waits for a new one.
TEST_F(Run_Command_Test, Enter_Goes_On_After_A_Pause) {
  Companion_Process process(Words(Program), true);
  ASSERT_TRUE(process.Says("Port: simulated machine"));
  process.Type("\n\n");
  ASSERT_TRUE(process.Says("Paused behind step 3"));
  EXPECT_FALSE(process.Says("Step 4 of 5", 0.7));
  process.Type("\n");
  EXPECT_TRUE(process.Says("Step 4 of 5"));
  process.Type("\x03");
  Expect_Ended_Early(process, "Stopped by ESC.");
}

// Nobody is there to change the tool.
TEST_F(Run_Command_Test, Without_A_Terminal_A_Pause_Ends_The_Run) {
  Replace_File(Program, "G0 X1.45\nT2 M6\nG0 X1.55\n");
  {
    Companion_Process process(Words(Program), false);
    Expect_Ended_Early(process, "the program pauses behind step 2 (T2 M6): change to tool 2, and");
    EXPECT_THAT(process.Output, HasSubstr("--no-pause"));
    EXPECT_NEAR(Kept_X(), 1.45, 1e-6);
  }
  Companion_Process process(Words(Program, {"--no-pause"}), false);
  EXPECT_EQ(process.Status(10), Done) << process.Output;
  EXPECT_NEAR(Kept_X(), 1.55, 1e-6);
  Expect_Switched_Off();
}

// The simulated axis stands on its switch; the run goes on as the desktop's would.
TEST_F(Run_Command_Test, A_Closed_Switch_At_The_Start_Is_Told) {
  Replace_File(Folder.File("home/Norvik.Ini"),
               Pointer + "[Simulated Machine]\nSwitch_Low_From_1=1\nSwitch_Low_To_1=2\n");
  Replace_File(Dwelling, "M3\nM5\n");
  Companion_Process process(Words(Dwelling), true);
  EXPECT_EQ(process.Status(10), Done);
  EXPECT_THAT(process.Output,
              HasSubstr("Caution: During initialization, one or more home switches"));
}

// --- What must not change ------------------------------------------------------------------------

TEST_F(Run_Command_Test, A_Simulation_Leaves_The_Machine_File_As_It_Is) {
  const std::string before = Read_Whole_File(Machine_File);
  Replace_File(Dwelling, "G0 X1\nG4 P1\nG1 X2 F10\n");
  Companion_Process run(Words(Dwelling, {"--clock", "virtual"}), true);
  EXPECT_EQ(run.Status(60), Done) << run.Output;
  EXPECT_THAT(run.Output, HasSubstr("Position: X2.000000"));
  Companion_Process estimate({"--home", Folder.File("home"), "--machine", Machine_File, "--set",
                              "General.Parallel_Time_Constant=9", "estimate", Dwelling},
                             true);
  EXPECT_EQ(estimate.Status(60), Done) << estimate.Output;
  EXPECT_EQ(Read_Whole_File(Machine_File), before);
}

// A setting for this call only is not kept either, although the run keeps the positions.
TEST_F(Run_Command_Test, A_Real_Run_Keeps_Positions_And_No_Setting_Of_The_Call) {
  Replace_File(Program, "G0 X1.6\n");
  std::vector<std::string> words = Words(Program);
  words.insert(words.begin(), {"--set", "General.Parallel_Time_Constant=9"});
  Companion_Process process(words, true);
  EXPECT_EQ(process.Status(20), Done) << process.Output;
  EXPECT_THAT(process.Output, HasSubstr("Position: X1.600000"));
  EXPECT_NEAR(Kept_X(), 1.6, 1e-6);
  EXPECT_THAT(Read_Whole_File(Machine_File), HasSubstr("Parallel_Time_Constant=1\n\n"));
  Expect_Switched_Off();
}

// A planner and an engine that speed up at different rates end moves at speeds nobody planned.
// Planner and engine accelerate by rules of their own; where they differ much, a move ends at
// another speed than planned and the log says so. From any folder, with the macros beside the
// setup.
TEST_F(Run_Command_Test, Samples_Move_As_Planned_On_Their_Own_Machine) {
  const std::string folder = std::string(NORVIK_SAMPLES_FOLDER) + "/";
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(Folder.Path);
  const std::string programs[][2] = {
      {"inch.ini", "pocket.gc"}, {"inch.ini", "contour.gc"}, {"metric.ini", "engraving.gc"}};
  for (const auto& [machine, program] : programs) {
    SCOPED_TRACE(program);
    Companion_Process process({"--home", Folder.File("home"), "--machine", folder + machine, "run",
                               folder + program, "--clock", "virtual"},
                              false);
    EXPECT_TRUE(process.Says("Finished")) << process.Output;
    EXPECT_EQ(process.Status(), Done) << process.Output;
    EXPECT_THAT(process.Output, Not(HasSubstr("Noticed")));
  }
  std::filesystem::current_path(before);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(Folder.File("home")))
    if (entry.path().filename() == "NorvikErr.txt") {
      EXPECT_THAT(Read_Whole_File(entry.path().string()), Not(HasSubstr("Step Rate Error")));
    }
}

TEST_F(Run_Command_Test, A_Port_That_Does_Not_Read_Back_Is_Told) {
  Replace_File(Folder.File("home/Norvik.Ini"),
               Pointer + "[Simulated Machine]\nOutput_Read_Back=1\n");
  Replace_File(Dwelling, "M3\nM5\n");
  for (const bool shadow : {false, true}) {
    if (shadow) Replace_File(Machine_File, Read_Whole_File(Machine_File) + "Port_Shadow=True\n");
    Companion_Process process(Words(Dwelling), true);
    EXPECT_EQ(process.Status(10), Done);
    const bool told = process.Output.find("not read back what is written") != std::string::npos;
    EXPECT_NE(told, shadow) << process.Output;
  }
}

// They go on in another program, which gets the whole call and its standard input.
TEST_F(Run_Command_Test, Commands_With_Pictures_Answer_As_All_Others) {
  const std::string picture = Folder.File("path.png"), relief = Folder.File("relief.gc");
  Companion_Process plot({"--home", Folder.File("home"), "plot", Dwelling, "-o", picture}, true);
  EXPECT_EQ(plot.Status(), Done) << plot.Output;
  EXPECT_THAT(Read_Whole_File(picture), testing::StartsWith("\x89PNG"));
  Companion_Process import({"--home", Folder.File("home"), "import",
                            std::string(NORVIK_SAMPLES_FOLDER) + "/relief.bmp", "-o", relief},
                           true);
  EXPECT_EQ(import.Status(), Done) << import.Output;
  EXPECT_THAT(Read_Whole_File(relief), HasSubstr("relief.bmp"));
  Companion_Process wrong({"plot", Dwelling}, true);
  EXPECT_EQ(wrong.Status(), Wrong_Usage) << wrong.Output;
}

TEST_F(Run_Command_Test, A_Machine_File_Of_The_Call_Is_Only_Read) {
  const std::string before = Read_Whole_File(Machine_File);
  Replace_File(Program, "G0 X1.6\n");
  for (const bool asked : {false, true}) {
    std::vector<std::string> words = Words(Program);
    words.insert(words.begin(), {"--machine", Machine_File});
    if (asked) words.push_back("--save-positions");
    Companion_Process process(words, true);
    EXPECT_EQ(process.Status(20), Done) << process.Output;
    EXPECT_EQ(process.Output.find("so its positions are not stored") != std::string::npos, asked);
    EXPECT_EQ(Read_Whole_File(Machine_File), before);  // the machine is simulated
  }
}

// --- What a program loses ------------------------------------------------------------------------

TEST_F(Run_Command_Test, Losses_Are_Summed_Up) {
  Replace_File(Program, "G0 X1.6\nM98 P77\nG1 X1.7 F10\n");
  for (const bool accepted : {false, true}) {
    std::vector<std::string> words = Words(Program, {"--clock", "virtual"});
    if (accepted) words.push_back("--accept-losses");
    Companion_Process process(words, true);
    EXPECT_EQ(process.Status(60), accepted ? Done : Failed) << process.Output;
    EXPECT_THAT(process.Output, HasSubstr("line 2: "));
    EXPECT_THAT(process.Output, HasSubstr("Left out: 1 macro missing"));
  }
}

TEST_F(Run_Command_Test, An_Estimate_Names_What_Leaves_The_Table) {
  Replace_File(Program, "G0 X1\nG1 Y2 F60\nG1 X3 Z-0.5\nG1 X30 F600\nG1 X0\n");
  Companion_Process process({"--home", Folder.File("home"), "estimate", Program}, true);
  EXPECT_EQ(process.Status(60), Done) << process.Output;
  EXPECT_THAT(process.Output, HasSubstr("00:02:"));
  EXPECT_THAT(process.Output,
              HasSubstr("X leaves the table at line 4: 30 is 6 inch beyond its end at 24"));
  EXPECT_EQ(process.Output.find("Y leaves"), std::string::npos);
}

// --- Ctrl-C --------------------------------------------------------------------------------------

// A large program, stopped in the middle of its compile: the tables of before stand.
TEST_F(Run_Command_Test, An_Interrupted_Compile_Leaves_The_Earlier_Tables) {
  const std::string table = Folder.File("home/NORVIK_Program_LineArc_Data.csv");
  Replace_File(table, "earlier");
  std::string lines;
  for (int i = 0; i < 400'000; ++i) lines += "G1 X" + std::to_string(i % 7) + " F10\n";
  Replace_File(Program, lines);
  Companion_Process process({"--home", Folder.File("home"), "compile", Program}, true);
  ASSERT_TRUE(process.Says("Compiling Program")) << process.Output;
  process.Send(SIGINT);
  EXPECT_EQ(process.Status(60), Interrupted_By_Operator) << process.Output;
  EXPECT_THAT(process.Output, HasSubstr("interrupted"));
  EXPECT_EQ(Read_Whole_File(table), "earlier");
  for (const auto& entry : std::filesystem::directory_iterator(Folder.File("home"))) {
    EXPECT_FALSE(entry.path().filename().string().starts_with(".norvik-")) << entry.path();
  }
}

}  // namespace
}  // namespace norvik
