#include "core/application.h"
#include "core/axes.h"
#include "core/axis_memory.h"
#include "core/error_log.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/setup.h"
#include "drive/drive_status.h"
#include "platform/platform.h"
#include "platform/rest.h"
#include "serial/commands.h"
#include "serial/monitor.h"
#include "serial/serial_link.h"
#include "serial/stream.h"
#include "serial/stream_queue.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

constexpr int Repeats = 51;
constexpr const char* Use_Own_EStop = " Use the machine's own E-stop.";

void Say(const std::string& text) {
  ErrorLogWrite(text);
  AddMessage(text);
  SetStatus(1, text, 10);
}

// The program's positions become those of the board.
void Take_Over_Positions() {
  Take_Over_Place();
  for (int axis = 1; axis <= Axis_Count; ++axis)
    Machine.Theoretical_Pos[axis] = Machine.Position[axis];
}

// After a stop: waits a moment for the axes to rest. False: no answer.
bool Read_Where_It_Stands() {
  constexpr std::int64_t longest = 500'000'000;  // ns
  constexpr int looks = 100;
  const std::int64_t start = Platform.Monotonic_Clock();
  bool answered = false;
  for (int i = 0; i < looks; ++i) {
    answered = Read_Status_Now();
    if (!answered || !Dravon.InMotion) break;
    if (Platform.Monotonic_Clock() - start >= longest) break;
    Rest_Microseconds(1'000);
  }
  if (answered) Take_Over_Positions();
  return answered;
}

std::string Position_Text() {
  std::string text;
  for (int axis = 1; axis <= Axis_Count; ++axis)
    text += std::string(text.empty() ? "" : " ") + Axis_Letter(axis) +
            Format_Axis_Number(Machine.Position[axis]);
  return text;
}

double Jog_Stop_Rate() {
  return std::floor(double{MachineSetup.Axis_Ramp_Start} * MachineSetup.Axis_SPI[1] / 60);
}

bool Send_Jog_Stop() {
  const double rate = Jog_Stop_Rate();
  if (JogStop(rate)) return true;
  constexpr double highest = 65'535;
  const auto held = static_cast<std::uint32_t>(std::fmin(std::fmax(rate, 0), highest));
  const Serial_Frame frame = Command_Frame(Serial_Code::JogStop, Serial_Link.ControllerGeneration,
                                           Payload().Add_Low_First(held, 2));
  const auto answered = Transmit_Repeated(frame, Repeats);
  return answered && *answered > 0;
}

}  // namespace

void Serial_Stop() {
  ++Dravon_Stream.Stops;
  // The emergency stop goes out by itself.
  if (Machine.EStop_Flag || !(Dravon_Stream.Unsettled || Dravon.InMotion)) return;
  if (Dravon_Stream.Link_Died) return;
  if (StopMotion() || DravonEStop()) {
    if (Read_Where_It_Stands()) return;
    return Link_Has_Died("The board took the stop but does not tell where it stands.");
  }
  Link_Has_Died(std::string("The stop could not be delivered.") + Use_Own_EStop);
}

bool Settle_At_Rest() {
  if (!Dravon_Stream.Unsettled) return true;
  const auto flags = ReadMemory(board_memory::Flags);
  if (!flags || (*flags & board_memory::Queue_Runs) != 0) return false;
  if (!Read_Status_Now() || Dravon.InMotion) return false;
  Take_Over_Place();
  return true;
}

bool DravonEStop() {
  const auto answered = Transmit_Repeated(
      Command_Frame(Serial_Code::StopMotion, Serial_Link.ControllerGeneration), Repeats);
  return answered && *answered > 0;
}

void Serial_EStop(bool engaged) {
  if (engaged) {
    ++Dravon_Stream.Stops;
    const bool answered = DravonEStop();
    if (MachineSetup.E_Stop_Output_Disable) MotorEnableOff();
    if (answered && Read_Where_It_Stands())
      return AddMessage("E-stop: the board has answered and stands still.");
    Say(std::string("E-stop: the board does not answer, so the stop may not have arrived.") +
        Use_Own_EStop);
    Dravon.ControllerPresent = false;
    if (Dravon_Stream.Unsettled) Link_Has_Died("It did not answer the E-stop.");
    return;
  }
  if (!Serial_Is_Open()) return;
  const bool enabled = MotorEnableOn() && StopMotion() && MotorEnableOn();
  const bool answered = Read_Status_Now();
  const bool cleared = ClearFaults();
  if (answered) Take_Over_Positions();
  if (!enabled || !answered || !cleared)
    Say("The board did not confirm that its motors are enabled (" + Serial_Link.Last_Error +
        "). Look at its cable and press the E-stop button twice.");
}

void Serial_Release_Jog() {
  Machine.Jog_Stop_Request = false;
  if (Dravon_Stream.In_Pieces) return;
  if (!Dravon_Stream.Jogging && !Dravon.InMotion) return;
  if (Send_Jog_Stop()) return;
  Say(std::string("The end of the jog could not be delivered.") + Use_Own_EStop);
  Link_Has_Died("It did not answer the end of a jog.");
}

std::vector<std::uint8_t> Last_Frames_For_Board() {
  std::vector<std::uint8_t> bytes;
  const auto add = [&bytes](Serial_Code code, const Payload& payload = {}) {
    const Serial_Frame frame = Command_Frame(code, 0, payload);  // the same for both boards
    bytes.insert(bytes.end(), frame.View().begin(), frame.View().end());
  };
  for (int i = 0; i < Repeats; ++i) add(Serial_Code::StopMotion);
  for (int output = 1; output <= 5; ++output) add(Serial_Code::OutputOff, Payload().Add(output, 1));
  return bytes;
}

void Link_Has_Died(const std::string& why) {
  Dravon_Stream_State& stream = Dravon_Stream;
  if (stream.Link_Died) return;
  stream.Link_Died = true;
  Serial_Link.LinkGood = false;
  Dravon.ControllerPresent = false;
  std::string text = "Stopped at step " + std::to_string(stream.CommandIndex) +
                     ": the link to the board failed. " + why +
                     " Last known position: " + Position_Text() + ".";
  if (!stream.Queue.empty())
    text += " The board may still make up to " + std::to_string(stream.Queue.size()) + " moves (" +
            Format_Number(stream.Queued_Seconds, "0.0") + " s) that it had taken.";
  stream.Failure = text;
  Position_Memory.Doubt = "The link to the board failed while it moved, at step " +
                          std::to_string(stream.CommandIndex) +
                          ". Compare the positions shown with the machine, or home the axes.";
  Say(text);
}

bool DravonLoadPosition(const Indexed<double, 1, 4>& position) {
  constexpr int yields = 10;
  for (int i = 0; Dravon.DravonBusy && i < 10'000; ++i) Rest();
  if (!Serial_Is_Open() || !Settle_At_Rest()) return false;
  Dravon.DravonBusy = true;
  for (int i = 0; i < yields; ++i) DoEvents();
  Copy_Steps_Per_Unit();
  Dravon.ReferenceSPI = Dravon.SPI[1];
  const auto counts = Counts_Of(position);
  if (!counts) {
    Dravon.DravonBusy = false;
    Say("The position does not fit the counters of the board (8388607 steps from 0): nothing was "
        "sent. Set a smaller one, or home.");
    return false;
  }
  const bool loaded = LoadStepCounters(*counts) && Read_Status_Now();
  if (loaded) Take_Over_Place();
  Dravon.DravonBusy = false;
  if (Serial_Link.ControllerGeneration > 0) {
    Indexed<std::int32_t, 1, 4> encoders;
    for (int axis = 1; axis <= Axis_Count; ++axis) {
      const double factor = MachineSetup.Dravon_Enc_CFactor[axis];
      if (factor > 0)
        encoders[axis] = static_cast<std::int32_t>(std::floor((*counts)[axis] / factor));
    }
    if (LoadEncoderCounters(encoders)) ClearFaults();
  }
  if (!loaded)
    Say("The board did not confirm the position (" + Serial_Link.Last_Error +
        "). Look at the link, then set the position again.");
  return loaded;
}

std::optional<Indexed<std::int32_t, 1, 4>> Counts_Of(const Indexed<double, 1, 4>& position) {
  constexpr double least = -8'388'608, most = 8'388'607, fine = 1e6;
  Indexed<std::int32_t, 1, 4> counts;
  for (int axis = 1; axis <= Axis_Count; ++axis) {
    const double spi = MachineSetup.Axis_SPI[axis];
    double place = position[axis];
    if (MachineSetup.Axis_Backlash_Enable && spi > 0)
      place += double{Dravon_Stream.BacklashSteps[axis]} / spi;
    const double count = std::floor(std::round(place * Board_Sign(axis) * spi * fine) / fine);
    if (!(count >= least && count <= most)) return std::nullopt;
    counts[axis] = static_cast<std::int32_t>(count);
  }
  return counts;
}

bool DravonSetPWM(std::int32_t value) {
  constexpr std::int32_t full = 1'023;
  constexpr double slow = 1;  // IPM
  if (!Serial_Is_Open() || Machine.EStop_Flag || Dravon.DravonBusy) return false;
  value = std::clamp(value, 0, full);
  if (MachineSetup.Dravon_PWM_Inv) value = full - value;
  Move_Entry entry;
  Entry_Speeds speeds{slow, slow, slow};
  Plan_Entry(Rules_Of_Board(), {}, speeds, entry);
  entry.PWM = value;
  entry.Index = Dravon_Stream.CommandIndex;
  const Move_Answer answer = MoveSteps(entry);
  if (!answer.Free) return false;
  Entry_Was_Taken({.Seconds = 0, .Way = {}, .Index = entry.Index}, {}, *answer.Free);
  Dravon_Stream.Switched_By_Hand = true;
  Drive_Status.Spindle_Level = MachineSetup.Dravon_PWM_Inv ? full - value : value;
  if (const std::size_t before = Dravon_Stream.Queue.size() - 1; before > 0)
    SetStatus(1, "Spindle: after " + std::to_string(before) + " moves", 5);
  return true;
}

}  // namespace norvik
