#include "control/state/drive.h"

#include "control/state/control_texts.h"
#include "core/setup.h"
#include "parallel/pin_map.h"

namespace norvik {

namespace {

void Nothing() {}
bool Never() {
  return false;
}

constexpr Drive_Operations Missing_Drive(std::string_view text) {
  return {text,
          [](const Step_Request&, Nullable, std::int32_t) { return Move_End::Failed; },
          Nothing,
          Nothing,
          Never,
          Never,
          [](int, bool) {}};
}

constexpr Drive_Operations Parallel_Drive = {
    "",
    [](const Step_Request& request, Nullable, std::int32_t) { return Step_Engine_Move(request); },
    Nothing,
    Read_Limits,
    [] { return Read_Input(EStop_Input); },
    [] { return Read_Input(Auxiliary_Input); },
    [](int n, bool on) { on ? Output_On(n) : Output_Off(n); }};

constexpr Drive_Operations Serial_Drive = Missing_Drive(control_text::No_Serial_Board);
constexpr Drive_Operations No_Drive = Missing_Drive(control_text::Unknown_Drive);

}  // namespace

const Drive_Operations& Drive() {
  if (MachineSetup.Parallel_Port_Type == 1) return Parallel_Drive;
  return MachineSetup.Parallel_Port_Type > 1 ? Serial_Drive : No_Drive;
}

}  // namespace norvik
