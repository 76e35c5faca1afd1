#include "simulate/process/panel_terminal.h"

#include "core/fault.h"

#include <poll.h>
#include <unistd.h>

namespace norvik {

namespace {

void Write_Terminal(const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = ::write(STDOUT_FILENO, text.data() + written, text.size() - written);
    if (count <= 0) return;  // nobody looks any more
    written += static_cast<std::size_t>(count);
  }
}

}  // namespace

Panel_Terminal::Panel_Terminal() {
  if (::isatty(STDIN_FILENO) == 0 || ::isatty(STDOUT_FILENO) == 0 ||
      ::tcgetattr(STDIN_FILENO, &Before) != 0)
    throw Fault(Fault_Number::Invalid_Call,
                "The panel needs a terminal: start it without a pipe, or leave --panel out.");
  termios keys = Before;
  keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);  // Ctrl-C still ends the program
  keys.c_cc[VMIN] = keys.c_cc[VTIME] = 0;
  ::tcsetattr(STDIN_FILENO, TCSANOW, &keys);
}

Panel_Terminal::~Panel_Terminal() {
  ::tcsetattr(STDIN_FILENO, TCSANOW, &Before);
}

std::string Panel_Terminal::Keys() {
  std::string keys;
  pollfd file{STDIN_FILENO, POLLIN, 0};
  char letter = 0;
  while (::poll(&file, 1, 0) > 0 && ::read(STDIN_FILENO, &letter, 1) == 1) keys += letter;
  return keys;
}

void Panel_Terminal::Show(const std::string& page) {
  if (page == Shown) return;
  Shown = page;
  std::string text = "\x1b[H";  // home; each line clears what is left of the one before
  for (const char letter : page)
    text += letter == '\r' ? std::string("\x1b[K\r") : std::string(1, letter);
  Write_Terminal(text + "\x1b[J");
}

}  // namespace norvik
