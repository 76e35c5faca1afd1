// norvik-cli: chooses the back ends and hands over to the commands.
#include "app/drive_session.h"
#include "cli/companion.h"
#include "core/application.h"
#include "core/setup.h"
#include "parallel/ports.h"
#include "platform/headless/headless_platform.h"
#include "platform/linux/linux_platform.h"
#include "platform/platform.h"
#include "plot/plot_picture.h"
#include "simulate/findings.h"
#include "simulate/simulated_machine.h"
#include "simulate/virtual_clock.h"
#include "wiring/port_choice.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef NORVIK_PICTURES
#include "plot/picture/picture_files.h"

#include <QGuiApplication>
#include <sys/stat.h>
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

// By the small program beside this one: the sound library takes longer to load than most commands
// need to run.
std::string Play_To_End(const std::string& path) {
  std::error_code unknown;
  const auto own = std::filesystem::read_symlink("/proc/self/exe", unknown);
  std::string player = (own.parent_path() / "norvik-sound").string();
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

  Companion_Environment environment;
  environment.Asked_To_Stop = [] { return Interrupts_Seen() > 0; };
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
    if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR")) {
      const std::string folder = "/tmp/norvik-" + std::to_string(getuid());
      mkdir(folder.c_str(), 0700);
      qputenv("XDG_RUNTIME_DIR", folder.c_str());
    }
    static QGuiApplication fonts(argument_count, arguments);
  };
#else
  environment.Write_Picture = Write_Pixmap_File;
#endif
  return Run_Companion(argument_count, arguments, std::move(environment));
}
