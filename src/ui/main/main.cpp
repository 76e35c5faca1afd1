// norvik: the desktop program. Chooses the back ends, builds the main window and runs the start.
#include "app/connect.h"
#include "app/drive_session.h"
#include "app/folders.h"
#include "app/guide/guide.h"
#include "app/guide/welcome.h"
#include "app/main_form.h"
#include "app/openers.h"
#include "app/shutdown.h"
#include "app/startup.h"
#include "control/manual/jog_guard.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/setup.h"
#include "core/version.h"
#include "drive/drive_host.h"
#include "platform/desktop/desktop_platform.h"
#include "platform/linux/granted_ports.h"
#include "platform/linux/linux_platform.h"
#include "platform/sdl/sdl_platform.h"
#include "platform/x11/escape_key.h"
#include "plot/picture/picture_files.h"
#include "simulate/board_port.h"
#include "simulate/virtual_clock.h"
#include "ui/main/main_window.h"
#include "ui/main/second_start.h"
#include "ui/simulated/simulated_window.h"
#include "ui/widgets/theme.h"
#include "wiring/port_choice.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QApplication>
#include <QFileInfo>
#include <QSocketNotifier>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A failure in a handler must not take the program down while it drives a machine: it is logged
// like any other, and the operator goes on with what exists.
class Norvik_Application : public QApplication {
 public:
  using QApplication::QApplication;
  bool notify(QObject* receiver, QEvent* event) override {
    bool handled = false;
    norvik::Trap("Window_Event_Error", [&] { handled = QApplication::notify(receiver, event); });
    return handled;
  }
};

int Signal_Pipe[2];

extern "C" void Note_Signal(int) {
  const char byte = 1;
  [[maybe_unused]] const auto written = write(Signal_Pipe[0], &byte, 1);
}

// A request to terminate takes the orderly way out: outputs and motors off first. So does the end
// of the terminal or session that the program was started from; a pipe that nobody reads any more
// is no reason to end.
void End_On_Signals(QApplication& application) {
  if (socketpair(AF_UNIX, SOCK_STREAM, 0, Signal_Pipe) != 0) return;
  auto* notifier = new QSocketNotifier(Signal_Pipe[1], QSocketNotifier::Read, &application);
  QObject::connect(notifier, &QSocketNotifier::activated, notifier, [] { norvik::bye(); });
  std::signal(SIGINT, Note_Signal);
  std::signal(SIGTERM, Note_Signal);
  if (std::signal(SIGHUP, Note_Signal) == SIG_IGN) std::signal(SIGHUP, SIG_IGN);  // nohup
  std::signal(SIGPIPE, SIG_IGN);
  // The toolkit leaves by exit() when the display goes away.
  std::atexit(norvik::End_Drive_Session);
}

// Files named in the call, by full paths: the program enters its own folder later.
QStringList Files_Of_Call() {
  QStringList files;
  for (const QString& name : QApplication::arguments().mid(1)) {
    files << QFileInfo(name).absoluteFilePath();
  }
  return files;
}

// ESC from the key itself where the window system tells, so that it stops the machine while another
// program has the focus too. Where it does not tell, the operator has to know.
void Hear_Escape(norvik::Main_Frame& window) {
  const bool wayland =
      QGuiApplication::platformName() != "xcb" || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
  const std::string why_not = wayland ? "the window system tells no program of the keys of another"
                                      : norvik::Install_Escape_Key();
  norvik::Drive_Host.Escape_Held = norvik::Escape_Key_Held;
  if (why_not.empty()) return;
  const std::string said =
      "ESC stops the machine only while a window of Norvik has the focus, and up to a quarter of a "
      "second late: " +
      why_not + ". Log in to an X11 session to have it heard at once.";
  norvik::AddMessage(said);
  window.Add_Notice("ESC: heard with the focus only", QString::fromStdString(said));
}

constexpr const char* Usage =
    "Usage: norvik [FILE]\n"
    "CNC control with windows. FILE, a program, drawing or picture, is opened in the window; a "
    "window\n"
    "that is open already takes it.\n\n"
    "  --help      this text\n"
    "  --version   the version\n\n"
    "norvik-cli does the same work without windows.\n";

// What is answered on the terminal, without a display; absent when a window is wanted.
std::optional<int> Answer_Without_Window(const std::vector<std::string_view>& words) {
  for (const std::string_view word : words) {
    if (word == "--help" || word == "-h") return std::fputs(Usage, stdout) < 0 ? 1 : 0;
    if (word == "--version")
      return std::printf("%s\n", std::string(norvik::Program_Version()).c_str()) < 0 ? 1 : 0;
  }
  return std::nullopt;
}

}  // namespace

int main(int argument_count, char** arguments) {
  using namespace norvik;
  if (const auto status = Answer_Without_Window({arguments + 1, arguments + argument_count})) {
    return *status;
  }
  // Before the toolkit loads the plugins that the user's environment names.
  if (const std::string words = Words_About_Own_Rights(); !words.empty()) {
    std::fprintf(stderr, "norvik: %s\n", words.c_str());
    return 1;
  }
  Norvik_Application application(argument_count, arguments);
  QApplication::setApplicationName("Norvik");
  QApplication::setQuitOnLastWindowClosed(false);
  Apply_Theme(application);

  Install_Desktop_Platform(Jog_Guard_Window_Lost);
  Operation_Host.Escape_Taken = Escape_Went_To_A_Box;
  Install_Linux_Clock();
  Install_Linux_Priority();
  Install_Serial_Ports();
  Install_Simulated_Boards();
  Install_Instance_Lock();
  Install_Sdl_Platform();
  Install_Picture_Reader();
  const QStringList files = Files_Of_Call();
  const bool folders_stand = Trap_With(
      [](const Fault& refused) {
        Platform.Message_Box("Norvik 4", refused.Description, Box_Buttons::Ok);
      },
      Enter_Desktop_Folders);
  if (!folders_stand) return 1;

  if (!files.isEmpty() && Platform.Other_Instance_Runs() &&
      Hand_To_First_Start(files.front().toStdString())) {
    return 0;
  }

  Main_Frame window;
  Connect_App();
  Drive_Session_Host.Machine_Is_Real = [] {
    return !Port_Is_Simulated() && Port_Refusal().empty();
  };
  Guide_Host.Port_Right = [] { return Direct_Port_Right(MachineSetup.Parallel_IODLL).Words; };
  Main_Host.Open_Port = [] { Main_Form.Port_Text = Choose_Port(); };
  End_On_Signals(application);
  Load_Main();
  // An end that was asked for before the event loop runs would not be heard in it.
  if (Application.ShutdownFlag) return 0;
  Hear_Escape(window);
  if (Port_Is_Simulated()) {
    Offer_Time_Factors();
    window.Add_Tool_Window("Simulated_Machine", "&Simulated machine",
                           [] { return new Simulated_Window; });
    window.Set_Banner("SIMULATED MACHINE - no motion takes place");
  }
  window.Start_Is_Over();
  Listen_For_Second_Starts(window, [&window](const std::string& file) {
    window.raise();
    window.activateWindow();
    LoadRecentFile(file);
  });
  if (Application.ShutdownFlag) return 0;
  if (files.isEmpty() && Shows_Welcome()) window.Show_Tool_Window("Welcome");
  if (!files.isEmpty()) LoadRecentFile(files.front().toStdString());
  if (Application.ShutdownFlag) return 0;
  return QApplication::exec();
}
