#include "simulate/process/board_process.h"

#include "core/fault.h"
#include "core/json_text.h"
#include "platform/platform.h"
#include "simulate/board/board.h"
#include "simulate/board/board_json.h"
#include "simulate/board/board_options.h"
#include "simulate/process/board_control.h"
#include "simulate/process/board_text_panel.h"
#include "simulate/process/control_socket.h"
#include "simulate/process/panel_terminal.h"
#include "simulate/process/pseudo_terminal.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <memory>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace norvik {

namespace {

constexpr std::int64_t Longest_Sleep = 100'000'000;  // ns of real time
constexpr std::int64_t Second = 1'000'000'000;

// Lines in a file; nothing where no file is wanted.
class Log_File {
 public:
  explicit Log_File(const std::string& path) : Path(path) {
    if (path.empty()) return;
    File.open(path, std::ios::trunc);
    if (!File) {
      throw Fault(Fault_Number::Path_Access, "The log " + path +
                                                 " cannot be written: " + std::strerror(errno) +
                                                 ". Choose a folder that you may write to.");
    }
  }
  bool Is_Open() const { return File.is_open(); }
  void Line(const std::string& text) {
    if (Is_Open()) File << text << '\n';
  }
  // Empty, or that it is not whole.
  std::string Close() {
    if (!Is_Open()) return {};
    File.close();
    return File ? "" : "The log " + Path + " is not whole: its disk is full.";
  }

 private:
  std::string Path;
  std::ofstream File;
};

class Board_Process {
 public:
  Board_Process(const Board_Process_Options& options, const Board_Process_Host& host);
  void Run();

 private:
  struct Idle_Wait {
    int Caller = 0;
    std::int64_t Until = 0;  // ns of real time
  };

  void Connect_Logs();
  void Tell_Event(std::int64_t time, const std::string& text);
  std::int64_t Clock() const;
  void Set_Scale(double scale);
  void Follow() { Follow_Line(Line, Clock()); }
  std::int64_t Sleep_Time() const;
  void Sleep();
  void Take_From_Terminal();
  void Give_To_Terminal();
  void Follow_Cable();
  void Look_At_Settings();
  std::string Answer(int caller, const std::string& command);
  void Answer_Idle_Waits();
  void Serve_Panel();
  void Tell_End();

  Board_Process_Options Options;
  const Board_Process_Host& Host;
  Board_Line Line;
  Log_File Frames, Motions, Events;
  std::unique_ptr<Pseudo_Terminal> Terminal;
  std::unique_ptr<Control_Socket> Control;
  // Board time at a real time; stepped: board time alone.
  std::int64_t Board_Start = 0, Real_Start = 0;
  std::vector<std::uint8_t> Received;
  std::vector<int> Watchers;
  std::vector<Idle_Wait> Idle_Waits;
  std::unique_ptr<Panel_Terminal> Screen;  // null: no panel
  Board_Panel_State Panel;
  std::string Settings_Told;
  bool Over = false;
};

Board_Process::Board_Process(const Board_Process_Options& options, const Board_Process_Host& host)
    : Options(options),
      Host(host),
      Frames(options.Frame_Log),
      Motions(options.Motion_Log),
      Events(options.Event_Log) {
  Line.Board = Make_Board(Options.Generation);
  if (!Take_Board_Preset(Line, Options.Preset)) {
    throw Fault(Fault_Number::Invalid_Call,
                "There is no machine " + Options.Preset + ": bench, router, plasma.");
  }
  // A frame lets time pass as a whole.
  if (Options.Time == Board_Time::Frame) Line.Byte_Time = 0;
  for (const std::string& option : Options.Options) {
    const std::string wrong = Set_Board_Option(Line, option);
    if (!wrong.empty()) throw Fault(Fault_Number::Invalid_Call, wrong);
  }
  for (const std::string& fault : Options.Faults) {
    const std::string wrong = Add_Board_Fault(Line.Board, fault);
    if (!wrong.empty()) throw Fault(Fault_Number::Invalid_Call, wrong);
  }
  Terminal = std::make_unique<Pseudo_Terminal>(Options.Link);
  if (!Options.Control_Socket.empty()) {
    Control = std::make_unique<Control_Socket>(Options.Control_Socket);
  }
  if (Options.Panel) Screen = std::make_unique<Panel_Terminal>();
  Panel.Steps_Per_Unit = Options.Steps_Per_Unit;
  Panel.Port = Terminal->Path();
  Real_Start = Platform.Monotonic_Clock();
  Connect_Logs();
}

void Board_Process::Connect_Logs() {
  auto& board = Line.Board;
  board.Host.Event = [this](std::int64_t time, const std::string& text) { Tell_Event(time, text); };
  if (Frames.Is_Open()) {
    board.Host.Frame = [this](const Board_Frame_Event& event) {
      Frames.Line(Frame_Log_Line(Line.Board, event));
    };
  }
  if (Motions.Is_Open()) {
    board.Host.Motion = [this](const Board_Motion_Event& event) {
      Motions.Line(Motion_Log_Line(Line.Board, event));
    };
  }
}

void Board_Process::Tell_Event(std::int64_t time, const std::string& text) {
  char seconds[40];
  std::snprintf(seconds, sizeof seconds, "%.6f", static_cast<double>(time) / Second);
  const std::string line = std::string("{\"t\":") + seconds + ",\"event\":" + Json_Text(text) + "}";
  Events.Line(line);
  if (Control == nullptr) return;
  for (const int watcher : Watchers) Control->Send(watcher, line);
}

// --- Time
// --------------------------------------------------------------------------------------

std::int64_t Board_Process::Clock() const {
  if (Options.Time != Board_Time::Real || Panel.Time_Stands) return Board_Start;
  const auto passed = static_cast<double>(Platform.Monotonic_Clock() - Real_Start);
  return Board_Start + std::llround(passed * Options.Scale);
}

void Board_Process::Set_Scale(double scale) {
  Board_Start = Clock();
  Real_Start = Platform.Monotonic_Clock();
  Options.Scale = scale;
}

// Real ns until the line has something to do: not for each byte, but for what
// is on its way as a whole, or for the adapter's next packet.
std::int64_t Board_Process::Sleep_Time() const {
  std::int64_t sleep = Longest_Sleep;
  if (Options.Time == Board_Time::Real && !Panel.Time_Stands) {
    std::optional<std::int64_t> due;
    if (!Line.To_Board.Is_Empty()) {
      due = Line.To_Board.At(Line.To_Board.Size() - 1).Time;
    } else if (!Line.To_Host.Is_Empty()) {
      due = Line.Usb_Latency > 0 ? Line.To_Host.Front().Time
                                 : Line.To_Host.At(Line.To_Host.Size() - 1).Time;
    }
    if (!Idle_Waits.empty() && !due) due = Next_Board_Event(Line.Board);
    if (due) {
      const double wait = static_cast<double>(*due - Clock()) / Options.Scale;
      sleep = static_cast<std::int64_t>(std::clamp(wait, 0.0, static_cast<double>(sleep)));
    }
  }
  const std::int64_t now = Platform.Monotonic_Clock();
  for (const Idle_Wait& wait : Idle_Waits) {
    sleep = std::clamp(wait.Until - now, std::int64_t{0}, sleep);
  }
  return sleep;
}

void Board_Process::Sleep() {
  std::vector<pollfd> files;
  if (Terminal->Is_Open()) files.push_back({Terminal->Master(), POLLIN, 0});
  if (Control != nullptr) Control->Add_Files(files);
  if (Screen != nullptr) files.push_back({STDIN_FILENO, POLLIN, 0});
  const std::int64_t sleep = Sleep_Time();
  const timespec time{sleep / Second, sleep % Second};
  ::ppoll(files.data(), files.size(), &time, nullptr);
}

// --- The terminal
// ------------------------------------------------------------------------------

void Board_Process::Look_At_Settings() {
  const std::string wrong = Terminal->Wrong_Settings();
  if (wrong != Settings_Told && !wrong.empty()) {
    Note_Finding(Line.Board, Board_Finding_Kind::Wrong_Speed, 0, [&] { return wrong; });
    Tell_Event(Line.Board.Now, wrong);
  }
  Settings_Told = wrong;
}

void Board_Process::Take_From_Terminal() {
  Received.clear();
  Terminal->Read(Received);
  if (Received.empty()) return;
  Look_At_Settings();
  if (Options.Strict_Speed && !Settings_Told.empty()) {
    constexpr std::uint8_t garbage = 0xA5;
    for (std::uint8_t& byte : Received) byte = static_cast<std::uint8_t>(byte * 2 ^ garbage);
  }
  const std::int64_t frames = Line.Board.Counts.Frames;
  Write_To_Board(Line, Received, Clock());
  if (Options.Time == Board_Time::Frame) {
    Board_Start += (Line.Board.Counts.Frames - frames) * Options.Frame_Time;
    Follow();
  }
}

void Board_Process::Give_To_Terminal() {
  if (Line.To_Host.Is_Empty()) return;
  // Without an adapter that cuts it a reply goes out in one piece.
  const bool whole =
      Line.Usb_Latency > 0 || Line.To_Host.At(Line.To_Host.Size() - 1).Time <= Line.Board.Now;
  if (!whole) return;
  Received.clear();
  Take_For_Host(Line, Received);
  Terminal->Write(Received);
}

void Board_Process::Follow_Cable() {
  if (Line.Plugged == Terminal->Is_Open()) return;
  if (Line.Plugged) {
    Terminal->Open();
  } else {
    Terminal->Close();
  }
}

// --- The socket
// --------------------------------------------------------------------------------

std::string Board_Process::Answer(int caller, const std::string& command) {
  Board_Control_Host host;
  host.Advance = [this](std::int64_t ns) {
    if (Options.Time != Board_Time::Stepped) return false;
    Board_Start += ns;
    Follow();
    return true;
  };
  host.Set_Scale = [this](double scale) {
    if (Options.Time != Board_Time::Real) return false;
    Set_Scale(scale);
    return true;
  };
  host.Mark = [this](const std::string& text) { Tell_Event(Line.Board.Now, "mark: " + text); };
  host.Save = [](const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::trunc);
    file << text;
    file.close();
    return file ? std::string() : "The file " + path + " cannot be written.";
  };
  host.Quit = [this] { Over = true; };
  host.Watch = [this, caller] { Watchers.push_back(caller); };
  host.Expect_Idle = [this, caller](double seconds) {
    const auto wait = std::llround(std::min(seconds, 1e6) * Second);
    Idle_Waits.push_back({caller, Platform.Monotonic_Clock() + wait});
  };
  Follow();
  return Answer_Control_Line(Line, command, host);
}

void Board_Process::Answer_Idle_Waits() {
  const std::int64_t now = Platform.Monotonic_Clock();
  std::erase_if(Idle_Waits, [&](const Idle_Wait& wait) {
    const bool idle = !In_Motion(Line.Board);
    if (idle) {
      Control->Send(wait.Caller, Control_Done());
    } else if (now >= wait.Until) {
      Control->Send(wait.Caller, Control_Error("the board still moves"));
    }
    return idle || now >= wait.Until || !Control->Is_There(wait.Caller);
  });
  std::erase_if(Watchers, [&](int watcher) { return !Control->Is_There(watcher); });
}

void Board_Process::Serve_Panel() {
  for (const char key : Panel_Terminal::Keys()) {
    Follow();
    const std::int64_t now = Clock();
    Take_Board_Key(Line, Panel, key);
    Board_Start = now;
    Real_Start = Platform.Monotonic_Clock();
  }
  Screen->Show(Board_Panel_Text(Line, Panel));
}

void Board_Process::Tell_End() {
  const Simulated_Board& board = Line.Board;
  Host.Tell(std::to_string(board.Counts.Frames) + " frames, " +
            std::to_string(board.Counts.Finished) + " moves, " +
            std::to_string(board.Receiver.Discarded_Bytes) + " bytes thrown away");
  if (board.Counts.Smallest_Queue) {
    Host.Tell("Smallest queue within a stream: " + std::to_string(*board.Counts.Smallest_Queue));
  }
  for (const std::string& finding : Board_Findings_Text(board.Findings)) {
    Host.Tell("Noticed  " + finding);
  }
  for (Log_File* log : {&Frames, &Motions, &Events}) {
    const std::string wrong = log->Close();
    if (!wrong.empty()) throw Fault(Fault_Number::Disk_Full, wrong);
  }
}

void Board_Process::Run() {
  Host.Tell("SIMULATED BOARD " + Name_Of(Options.Generation) + " at " + Terminal->Path());
  while (!Over && !Panel.Quit && !Host.Asked_To_Stop()) {
    Sleep();
    Take_From_Terminal();
    Follow();
    Give_To_Terminal();
    if (Screen != nullptr) Serve_Panel();
    Follow_Cable();
    if (Control == nullptr) continue;
    Control->Serve([this](int caller, const std::string& line) { return Answer(caller, line); });
    Follow_Cable();
    Give_To_Terminal();
    Answer_Idle_Waits();
  }
  Screen.reset();
  Tell_End();
}

}  // namespace

void Run_Board_Process(const Board_Process_Options& options, const Board_Process_Host& host) {
  Board_Process process(options, host);
  process.Run();
}

}  // namespace norvik
