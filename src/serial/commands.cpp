#include "serial/commands.h"

#include "serial/serial_link.h"

#include <algorithm>
#include <cmath>

namespace norvik {

Serial_Session_State Serial_Session;

namespace {

const Reply_Bytes& Reply() {
  return Serial_Link.Reply;
}

std::string Two_Digits(int value) {
  return (value < 10 ? "0" : "") + std::to_string(value);
}

// Free places as the replies of moves and of `ReadBuffer` give them.
std::int32_t Free_Places() {
  if (Serial_Link.ControllerGeneration > 0) return Reply()[3] + 256 * Reply()[4];
  return Serial_Session.BufferCapacity - Reply()[3];
}

Move_Answer Send_Motion(const Serial_Frame& frame) {
  constexpr std::uint8_t taken = 10;
  if (!Transmit(frame,
                Row_Of(Serial_Code::MoveSteps).Reply[Serial_Link.ControllerGeneration > 0 ? 1 : 0]))
    return {};
  if (Reply()[2] != taken) return {.Refused = true, .Free = {}};
  return {.Refused = false, .Free = Free_Places()};
}

Payload Counts_Payload(const Indexed<std::int32_t, 1, 4>& counts) {
  Payload payload;
  for (const std::int32_t count : counts) payload.Add(count, 3);
  return payload;
}

Payload Byte_Payload(int value) {
  return Payload().Add(value, 1);
}

}  // namespace

Firmware_Reply ReadFirmware() {
  if (!Transmit(Serial_Code::ReadFirmware)) return {};
  const Reply_Bytes& r = Reply();
  const auto number = [&r](int place) { return std::to_string(r[place]); };
  return {number(3) + "." + number(4) + "." + number(5),
          Two_Digits(r[7]) + "/" + Two_Digits(r[6]) + "/" + Two_Digits(r[8]) + Two_Digits(r[9])};
}

std::string ReadPresence() {
  constexpr std::uint8_t first = 42, second = 219;
  if (!Transmit(Serial_Code::ReadPresence)) return "NA";
  if (Reply()[3] != first || Reply()[4] != second) return "NA";
  return std::to_string(Reply()[5]);
}

Move_Answer MoveSteps(const Move_Entry& entry) {
  return Send_Motion(Move_Frame(entry, Serial_Link.ControllerGeneration));
}

Move_Answer Send_Dwell(const Move_Entry& entry) {
  return Send_Motion(Dwell_Frame(entry, Serial_Link.ControllerGeneration));
}

std::optional<Status_Reply> ReadStatus() {
  if (!Transmit(Serial_Code::ReadStatus)) return std::nullopt;
  return Status_Of(Reply(), Serial_Link.ControllerGeneration);
}

std::optional<std::int32_t> ReadBuffer() {
  if (!Transmit(Serial_Code::ReadBuffer)) return std::nullopt;
  return Free_Places();
}

std::optional<std::uint8_t> ReadMemory(std::uint16_t address) {
  if (!Transmit(Serial_Code::ReadMemory, Payload().Add_Low_First(address, 2))) return std::nullopt;
  return Reply()[3];
}

bool StopMotion() {
  return Transmit(Serial_Code::StopMotion);
}
bool OutputOn(int number) {
  return Transmit(Serial_Code::OutputOn, Byte_Payload(number));
}
bool OutputOff(int number) {
  return Transmit(Serial_Code::OutputOff, Byte_Payload(number));
}
bool AxisPrepare(int axis) {
  return Transmit(Serial_Code::AxisPrepare, Byte_Payload(axis));
}
bool LoadStepCounters(const Indexed<std::int32_t, 1, 4>& counts) {
  return Transmit(Serial_Code::LoadStepCounters, Counts_Payload(counts));
}
bool LoadEncoderCounters(const Indexed<std::int32_t, 1, 4>& counts) {
  return Transmit(Serial_Code::LoadEncoderCounters, Counts_Payload(counts));
}
bool LimitsDisable() {
  return Transmit(Serial_Code::LimitsDisable);
}
bool LimitsEnable() {
  return Transmit(Serial_Code::LimitsEnable);
}
bool ResetController() {
  return Transmit(Serial_Code::ResetController);
}
bool ClearFaults() {
  return Transmit(Serial_Code::ClearFaults);
}
bool MotorEnableOn() {
  return Transmit(Serial_Code::MotorEnableOn);
}
bool MotorEnableOff() {
  return Transmit(Serial_Code::MotorEnableOff);
}
bool SetCByte1(int value) {
  return Transmit(Serial_Code::SetCByte1, Byte_Payload(value));
}
bool SetCByte2(int value) {
  return Transmit(Serial_Code::SetCByte2, Byte_Payload(value));
}
bool JogStop(double hz) {
  constexpr double highest = 65'535;
  const double held = std::isnan(hz) ? 0 : std::clamp(hz, 0.0, highest);
  return Transmit(Serial_Code::JogStop,
                  Payload().Add_Low_First(static_cast<std::uint32_t>(held), 2));
}
bool SetRampRate(int rate) {
  Serial_Session.LastRampRate = std::clamp(rate, 1, 255);
  return Transmit(Serial_Code::SetRampRate, Byte_Payload(Serial_Session.LastRampRate));
}
bool SetThrottle(std::int32_t of_1024) {
  const auto held = static_cast<std::uint32_t>(std::clamp(of_1024, 0, 32'767));
  return Transmit(Serial_Code::SetThrottle, Payload().Add_Low_First(held, 2));
}
bool WriteEncoderConfig(const Encoder_Config& config) {
  return Transmit(Serial_Code::WriteEncoderConfig, Encoder_Payload(config));
}
std::optional<Encoder_Reply> ReadEncoderConfig() {
  if (!Transmit(Serial_Code::ReadEncoderConfig)) return std::nullopt;
  return Encoder_Of(Reply());
}
std::optional<Config_Reply> ReadConfig() {
  if (!Transmit(Serial_Code::ReadConfig)) return std::nullopt;
  return Config_Of(Reply());
}

}  // namespace norvik
