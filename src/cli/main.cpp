// norvik-cli: chooses the back ends and hands over to the commands.
#include "app/drive_session.h"
#include "cli/board/board_commands.h"
#include "cli/companion.h"
#include "core/application.h"
#include "core/paths.h"
#include "core/setup.h"
#include "parallel/ports.h"
#include "platform/headless/headless_platform.h"
#include "platform/linux/granted_ports.h"
#include "platform/linux/linux_platform.h"
#include "platform/linux/program_path.h"
#include "platform/platform.h"
#include "plot/plot_picture.h"
#include "simulate/board_port.h"
#include "simulate/findings.h"
#include "simulate/simulated_machine.h"
#include "simulate/virtual_clock.h"
#include "wiring/port_choice.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef NORVIK_PICTURES
#include "plot/picture/picture_files.h"

#include <QGuiApplication>
#endif

namespace {

// A standard stream that the caller has closed must not become the first file that is opened: what
// is printed would stand in it.
void Keep_Standard_Streams() {
  int file = 0;
  do {
    file = ::open("/dev/null", O_RDONLY);
  } while (file >= 0 && file <= STDERR_FILENO);
  ::close(file);
}

#ifdef NORVIK_PICTURE_PROGRAM
// The same call in the program that has the toolkit. Comes back with the reason when it is not
// there.
std::string Go_On_With_Pictures(char** arguments) {
  const std::string program =
      norvik::Join_Path(norvik::PathDirectory(norvik::Program_Path()), NORVIK_PICTURE_PROGRAM);
  ::execv(program.c_str(), arguments);
  return norvik::File_Fault(program, "Pictures need the program", errno).Description +
         ". Install it beside norvik-cli.";
}
#endif

// By the small program beside this one: the sound library takes longer to load than most commands
// need to run.
std::string Play_To_End(const std::string& path) {
  std::string player =
      norvik::Join_Path(norvik::PathDirectory(norvik::Program_Path()), "norvik-sound");
  std::string file = path;
  char* words[] = {player.data(), file.data(), nullptr};
  pid_t child = 0;
  if (::posix_spawn(&child, player.c_str(), nullptr, nullptr, words, environ) != 0)
    return "the program norvik-sound is not beside norvik-cli, so nothing can be played";
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? "" : "nothing was heard";
}

}  // namespace

int main(int argument_count, char** arguments) {
  using namespace norvik;
  Keep_Standard_Streams();
  if (const std::string words = Words_About_Own_Rights(); !words.empty()) {
    Complain(words);
    return 1;
  }
  Install_Headless_Platform();
  Headless.On_End = [] {  // the second Ctrl-C
    End_Drive_Session();
    Stop_Port_Recorder();
    Platform.Set_Priority(0);  // of the session's group, which outlives the process
    std::_Exit(130);
  };
  std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a failed write
  Install_Linux_Clock();
  Install_Linux_Priority();
  Install_Serial_Ports();
  Install_Simulated_Boards();

  Companion_Environment environment;
  environment.Add_Commands = Add_Board_Commands;
  environment.Asked_To_Stop = [] { return Interrupts_Seen() > 0; };
  environment.Find_Cards = Find_Cards;
  environment.Use_Simulated_Machine = Use_Simulated_Machine;
  environment.Use_Port = [] {
    const std::string words = Choose_Port();
    Guard_Driven_Machine();
    return words;
  };
  environment.Port_Refusal = Port_Refusal;
  environment.Use_Virtual_Clock = Install_Virtual_Clock;
  environment.Machine_Is_Real = [] { return !Port_Is_Simulated() && Port_Refusal().empty(); };
  Drive_Session_Host.Machine_Is_Real = environment.Machine_Is_Real;
  environment.Travel_Of = [](int axis) {
    const Simulated_Axis_Settings& settings = Simulated_Machine.Axes[axis].Settings;
    return Axis_Travel{settings.Travel_Low, settings.Travel_High};
  };
  environment.Open_Table_Ends = Open_Table_Ends;
  environment.Findings = [] {
    return Port_Is_Simulated() ? Findings_Text() : std::vector<std::string>();
  };
  environment.Play_Sound = Play_To_End;
#ifdef NORVIK_PICTURES
  Install_Picture_Reader();
  environment.Write_Picture = [&](const std::string& path, const Plot_Image& picture) {
    Write_Picture_File(path, picture);
  };
  environment.Start_Fonts = [&argument_count, arguments] {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const std::string folder = Runtime_Folder();
    if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR") && !folder.empty()) {
      qputenv("XDG_RUNTIME_DIR", folder.c_str());
    }
    static QGuiApplication fonts(argument_count, arguments);
  };
#else
  environment.Write_Picture = Write_Pixmap_File;
#endif
#ifdef NORVIK_PICTURE_PROGRAM
  environment.Take_Pictures = [arguments] { return Go_On_With_Pictures(arguments); };
#endif
  return Run_Companion(argument_count, arguments, std::move(environment));
}
