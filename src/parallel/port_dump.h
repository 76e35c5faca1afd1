// port_dump.h: port writes as a value change dump, the text format of IEEE 1364 that wave viewers
// read.
//
//   $timescale 1 ns $end
//   $scope module norvik $end
//   $var wire 1 a X_step $end          a wire for each output pin that the setup uses
//   ...
//   #1234567                           ns since the start of the recording
//   1a                                 X_step rises
//
// A level is x until its port is written for the first time. Writes that move no pin (those to the
// dummy address, and those that repeat a level) leave no trace; two writes at one time stand in
// their order below one time mark.
#pragma once

#include "parallel/ports.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

class Port_Dump {
 public:
  // Takes the pins of `MachineSetup` as they are now; `start` in ns of Platform.Monotonic_Clock.
  explicit Port_Dump(std::int64_t start);
  std::string Header() const;
  // Appends the changes of a block of writes to `text`.
  void Append(const std::vector<Port_Write_Record>& block, std::string& text);

 private:
  struct Wire {
    std::string Name;
    std::int32_t Port = 0;
    std::uint8_t Mask = 0;
    char Code = 'a';
    std::optional<bool> High;
  };
  void Append_Write(const Port_Write_Record& record, std::string& text);

  std::int64_t Start = 0;
  std::optional<std::int64_t> Marked;  // time of the last mark
  std::vector<Wire> Wires;
};

}  // namespace norvik
