// The command `board`.
#include "cli/board/board_commands.h"

#include "cli/board/frames_command.h"
#include "core/fault.h"
#include "simulate/process/board_process.h"

#include <cmath>
#include <iostream>
#include <map>
#include <memory>
#include <string>

namespace norvik {

namespace {

struct Board_Command_Options {
  Board_Process_Options Process;
  std::string Generation, Time = "real";
  double Frame_Microseconds = 1000;
};

int Run_Board(const Companion& companion, const Board_Command_Options& options) {
  Board_Process_Options process = options.Process;
  const std::map<std::string, Board_Time> times{
      {"real", Board_Time::Real}, {"stepped", Board_Time::Stepped}, {"frame", Board_Time::Frame}};
  process.Time = times.at(options.Time);
  constexpr double ns_of_microsecond = 1e3;
  process.Frame_Time = std::llround(options.Frame_Microseconds * ns_of_microsecond);
  process.Generation = Generation_Named(options.Generation).value();
  Board_Process_Host host;
  host.Asked_To_Stop = companion.Environment.Asked_To_Stop;
  host.Tell = [](const std::string& line) { std::cout << line << std::endl; };
  try {
    Run_Board_Process(process, host);
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return fault.Number == Fault_Number::Invalid_Call ? Wrong_Usage : Failed;
  }
  return Done;
}

}  // namespace

void Add_Board_Commands(CLI::App& app, Companion& companion) {
  const auto board = std::make_shared<Board_Command_Options>();
  Board_Process_Options& process = board->Process;
  CLI::App* command =
      app.add_subcommand("board", "A simulated controller board on a pseudo-terminal");
  command->add_option("generation", board->Generation, "dravon or pelmar")
      ->required()
      ->check(CLI::IsMember({"dravon", "pelmar"}));
  command->add_option("--link", process.Link, "Symbolic link that leads to the port")
      ->type_name("PATH");
  command->add_option("--control", process.Control_Socket, "Local socket for line commands")
      ->type_name("PATH");
  command->add_option("--preset", process.Preset, "The machine behind it: bench, router or plasma");
  command
      ->add_option("--option", process.Options,
                   "What board, line and machine are like, such as usb_latency=16")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  command->add_option("--fault", process.Faults, "What goes wrong, such as \"frame=20 no-reply\"")
      ->type_name("LINE")
      ->allow_extra_args(false);
  command->add_option("--time", board->Time, "real, stepped by the control socket, or by frame")
      ->check(CLI::IsMember({"real", "stepped", "frame"}));
  command->add_option("--scale", process.Scale, "Board seconds in a real second")
      ->check(CLI::Range(0.1, 1000.0));
  command
      ->add_option("--frame-time", board->Frame_Microseconds, "Microseconds a frame (--time frame)")
      ->check(CLI::Range(0.0, 1e9));
  command->add_option("--frame-log", process.Frame_Log, "File for each frame")->type_name("FILE");
  command->add_option("--motion-log", process.Motion_Log, "File for each entry of the queue")
      ->type_name("FILE");
  command->add_option("--event-log", process.Event_Log, "File for faults and marks")
      ->type_name("FILE");
  command->add_flag("--panel", process.Panel,
                    "Shows the board on this terminal; keys press switches and pull the cable");
  command->add_option("--steps-per-unit", process.Steps_Per_Unit, "For the speeds of the panel")
      ->check(CLI::Range(0.001, 1e6));
  command->add_flag("--strict-speed", process.Strict_Speed,
                    "Another speed or form than 115200,N,8,1 gives garbage");
  command->callback([&companion, board] {
    companion.Command = [&companion, board] { return Run_Board(companion, *board); };
  });
  Add_Frames_Command(app, companion);
}

}  // namespace norvik
