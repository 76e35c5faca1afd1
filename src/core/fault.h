// fault.h: failures inside a routine, and the one place that catches them.
//
// A failure does not travel across rooms. A routine that traps does so in one line of structure:
//
//   Trap("NIST_ConvertLineArctoWire_Error", [&] { ... });
//
// `Trap` writes one line to the error log under the routine's own name and lets the caller go on
// with what exists. Nothing else catches.
#pragma once

#include <exception>
#include <functional>
#include <string>
#include <string_view>

namespace norvik {

// Numbers as they appear in the error log.
enum class Fault_Number : int {
  Invalid_Call = 5,
  Overflow = 6,
  Out_Of_Memory = 7,
  Out_Of_Range = 9,
  Division_By_Zero = 11,
  Type_Mismatch = 13,
  Internal = 51,
  File_Not_Found = 53,
  Disk_Full = 61,
  Bad_File_Data = 62,
  Permission_Denied = 70,
  Path_Access = 75,
};

// A failure with its number and a text that names the values at hand.
class Fault : public std::exception {
 public:
  Fault(Fault_Number number, std::string description)
      : Number(number), Description(std::move(description)) {}
  const char* what() const noexcept override { return Description.c_str(); }

  Fault_Number Number;
  std::string Description;
};

// Writes "name # number description" to the error log. A name that already ends in "# " or ": " is
// followed by number and description alone.
void Log_Fault(std::string_view name, const Fault& fault) noexcept;
// The same for the exception in flight; runs nothing else.
void Log_Current_Fault(std::string_view name) noexcept;
// Hands the exception in flight to `report`, whose own failures end here.
void Report_Current_Fault(const std::function<void(const Fault&)>& report) noexcept;

// Runs `body`. A fault or any standard exception is logged under `name`. True when nothing failed.
template <class Body>
bool Trap(std::string_view name, Body&& body) noexcept {
  try {
    std::forward<Body>(body)();
    return true;
  } catch (...) {
    Log_Current_Fault(name);
    return false;
  }
}

// Runs `body`; `report` gets the number and description of a failure and words the log line itself.
// For routines whose log line carries something else than the fault (the text of a block, a line
// number). True when nothing failed. Allocates nothing of its own.
template <class Report, class Body>
bool Trap_With(Report&& report, Body&& body) noexcept {
  try {
    std::forward<Body>(body)();
    return true;
  } catch (...) {
    Report_Current_Fault(std::ref(report));
    return false;
  }
}

}  // namespace norvik
