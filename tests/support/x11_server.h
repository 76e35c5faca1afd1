// x11_server.h: an X server without a screen, and a finger on its keyboard.
#pragma once

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

namespace norvik {

// Starts Xvfb on a free display until the end of the scope; `Display` stays empty where there is
// none. Presses keys by the server's extension for tests.
class X11_Server {
 public:
  // Presses keys over a connection of its own.
  class Finger {
   public:
    explicit Finger(const std::string& display)
        : Connection(xcb_connect(display.c_str(), nullptr)) {}
    ~Finger() { xcb_disconnect(Connection); }
    Finger(const Finger&) = delete;
    Finger& operator=(const Finger&) = delete;

    // By the key's place on the keyboard; returns when the server has taken it.
    void Key(std::uint8_t code, bool down) {
      static xcb_extension_t test_extension = {"XTEST", 0};
      struct {
        std::uint8_t Major = 0, Minor = 2;
        std::uint16_t Length = 9;
        std::uint8_t Type = 0, Detail = 0;
        std::array<std::uint8_t, 30> Rest{};
      } request;
      request.Type = down ? XCB_KEY_PRESS : XCB_KEY_RELEASE;
      request.Detail = code;
      const xcb_protocol_request_t what = {1, &test_extension, 2, 1};
      std::array<iovec, 3> parts{};  // two before the request belong to the library
      parts[2] = {&request, sizeof request};
      xcb_send_request(Connection, 0, &parts[2], &what);
      std::free(xcb_get_input_focus_reply(Connection, xcb_get_input_focus(Connection), nullptr));
    }

   private:
    xcb_connection_t* Connection;
  };

  X11_Server() {
    int ends[2];
    if (::pipe(ends) != 0) return;
    Process = ::fork();
    if (Process == 0) {
      ::close(ends[0]);
      const std::string number = std::to_string(ends[1]);
      ::execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-noreset", "-nolisten", "tcp",
               "-screen", "0", "64x64x24", static_cast<char*>(nullptr));
      std::_Exit(127);
    }
    ::close(ends[1]);
    std::string text;
    for (char c = 0; ::read(ends[0], &c, 1) == 1 && c != '\n';) text += c;
    ::close(ends[0]);
    if (text.empty()) return;
    Display = ":" + text;
    Wait_Until_It_Answers();
    Hand.emplace(Display);
  }
  ~X11_Server() {
    Hand.reset();
    if (Process <= 0) return;
    ::kill(Process, SIGTERM);
    ::waitpid(Process, nullptr, 0);
  }
  X11_Server(const X11_Server&) = delete;
  X11_Server& operator=(const X11_Server&) = delete;

  void Key(std::uint8_t code, bool down) { Hand->Key(code, down); }

  static constexpr std::uint8_t Escape_Code = 9;
  std::string Display;

 private:
  void Wait_Until_It_Answers() const {
    for (int attempt = 0; attempt < 500; ++attempt) {
      xcb_connection_t* connection = xcb_connect(Display.c_str(), nullptr);
      const bool answers = xcb_connection_has_error(connection) == 0;
      xcb_disconnect(connection);
      if (answers) return;
      ::usleep(10'000);
    }
  }

  pid_t Process = -1;
  std::optional<Finger> Hand;
};

}  // namespace norvik
