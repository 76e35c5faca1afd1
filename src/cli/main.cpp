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

#include <cstdlib>
#ifdef NORVIK_PICTURES
#include "plot/picture/picture_files.h"

#include <QGuiApplication>
#include <sys/stat.h>
#include <unistd.h>
#endif

int main(int argument_count, char** arguments) {
  using namespace norvik;
  Install_Headless_Platform();
  Headless.On_End = [] {  // the second Ctrl-C
    End_Drive_Session();
    Stop_Port_Recorder();
    Platform.Set_Priority(0);  // of the session's group, which outlives the process
    std::_Exit(130);
  };
  Install_Linux_Clock();
  Install_Linux_Priority();

  Companion_Environment environment;
  environment.Use_Simulated_Machine = Use_Simulated_Machine;
  environment.Use_Port = [] {
    const std::string words = Choose_Port();
    Guard_Driven_Machine();
    return words;
  };
  environment.Port_Refusal = Port_Refusal;
  environment.Use_Virtual_Clock = Install_Virtual_Clock;
  environment.Findings = [] {
    return Port_Is_Simulated() ? Findings_Text() : std::vector<std::string>();
  };
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
