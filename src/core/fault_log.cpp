#include "core/error_log.h"
#include "core/fault.h"

#include <new>

namespace norvik {

namespace {

// The exception in flight as a Fault.
Fault Current_Fault() {
  try {
    throw;
  } catch (const Fault& fault) {
    return fault;
  } catch (const std::bad_alloc&) {
    return {Fault_Number::Out_Of_Memory, "Out of memory"};
  } catch (const std::exception& other) {
    return {Fault_Number::Internal, other.what()};
  } catch (...) {
    return {Fault_Number::Internal, "Unknown failure"};
  }
}

}  // namespace

void Log_Fault(std::string_view name, const Fault& fault) noexcept {
  try {
    std::string text(name);
    if (!name.ends_with("# ") && !name.ends_with(": ")) text += " # ";
    text += std::to_string(static_cast<int>(fault.Number)) + " " + fault.Description;
    ErrorLogWrite(text);
  } catch (...) {  // Out of memory while reporting: there is nothing left to report with.
  }
}

void Log_Current_Fault(std::string_view name) noexcept {
  Report_Current_Fault([&](const Fault& fault) { Log_Fault(name, fault); });
}

void Report_Current_Fault(const std::function<void(const Fault&)>& report) noexcept {
  try {
    report(Current_Fault());
  } catch (...) {  // As above.
  }
}

}  // namespace norvik
