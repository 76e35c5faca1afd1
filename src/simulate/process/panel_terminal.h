// panel_terminal.h: the terminal of the person who started a process, as keys and a page of text.
#pragma once

#include <string>

#include <termios.h>

namespace norvik {

class Panel_Terminal {
 public:
  // Raises a fault where standard input or output is no terminal.
  Panel_Terminal();
  ~Panel_Terminal();
  Panel_Terminal(const Panel_Terminal&) = delete;
  Panel_Terminal& operator=(const Panel_Terminal&) = delete;

  // Keys that were pressed since the last call.
  static std::string Keys();
  // Puts the page in place of the one before; one that is the same is not written again.
  void Show(const std::string& page);

 private:
  termios Before{};
  std::string Shown;
};

}  // namespace norvik
