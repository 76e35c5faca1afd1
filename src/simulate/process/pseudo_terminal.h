// pseudo_terminal.h: a terminal pair whose slave a program opens as its serial port.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace norvik {

class Pseudo_Terminal {
 public:
  // Opens the pair, raw and without echo, and points the symbolic link `link` to the slave where
  // one is given. Raises a file fault that says what to do.
  explicit Pseudo_Terminal(std::string link);
  ~Pseudo_Terminal();
  Pseudo_Terminal(const Pseudo_Terminal&) = delete;
  Pseudo_Terminal& operator=(const Pseudo_Terminal&) = delete;

  // The path that a program opens: the link, or the slave itself.
  const std::string& Path() const { return Link.empty() ? Slave_Path : Link; }
  // -1 while the cable is out.
  int Master() const { return Master_File; }
  // What has come from the program, appended. False: nobody will ever read or write here again.
  bool Read(std::vector<std::uint8_t>& bytes);
  void Write(std::span<const std::uint8_t> bytes);

  // The cable is pulled: whoever has the port open loses it, and the link is gone. Plugging in
  // makes a new pair under the same link.
  void Close();
  void Open();
  bool Is_Open() const { return Master_File >= 0; }

  // What the program has set the port to, in words, when it is neither raw nor 115200 baud, 8 bits,
  // no parity, 1 stop bit; empty: as the boards need it.
  std::string Wrong_Settings() const;

 private:
  std::string Link, Slave_Path;
  int Master_File = -1;
  // Held open: otherwise the master fails whenever the program closes the port.
  int Slave_File = -1;
};

}  // namespace norvik
