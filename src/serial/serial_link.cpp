#include "serial/serial_link.h"

#include "core/fault.h"
#include "core/format.h"
#include "platform/platform.h"
#include "platform/rest.h"

#include <algorithm>
#include <cmath>

namespace norvik {

Serial_Link_State Serial_Link;
Serial_Link_Host_Operations Serial_Link_Host;

namespace {

constexpr std::int64_t Microsecond = 1'000;
constexpr std::int32_t Poll_us = 20;
// On a clock that stands still a wait ends after so many looks.
constexpr int Standing_Looks = 20'000;

// Frame and reply cannot have crossed the line earlier, unless the port is none of this speed: so
// looks are rare until shortly before.
std::int64_t Line_Time_ns(std::size_t bytes) {
  constexpr double bits = 10;  // of a byte on the line
  return static_cast<std::int64_t>(static_cast<double>(bytes) * bits / Default_Baud * 1e9);
}

// True when the bytes are in. False after the time, or when the port is gone.
bool Await_Bytes(std::size_t bytes, std::int64_t line_time) {
  const std::int64_t start = Platform.Monotonic_Clock();
  constexpr std::int64_t parts = 16;
  const auto rare = static_cast<std::int32_t>(line_time / parts / Microsecond);
  for (int standing = 0; standing < Standing_Looks;) {
    const std::int32_t available = Platform.Serial_Available(Serial_Link.Handle);
    if (available < 0) return false;
    if (available >= static_cast<std::int32_t>(bytes)) return true;
    const std::int64_t passed = Platform.Monotonic_Clock() - start;
    if (passed >= Reply_Time_ns) return false;
    if (passed == 0) ++standing;
    const bool early = passed < line_time - line_time / parts;
    Rest_Microseconds(early ? std::max(rare, Poll_us) : Poll_us);
  }
  return false;
}

bool Refuse_Busy() {
  if (Serial_Link.BeepOnCommError) Platform.Beep();
  Serial_Link.LastTxError = "Transmit Busy";
  return false;
}

std::string Command_Name(const Serial_Frame& frame) {
  const Serial_Command* row = Find_Serial_Command(frame.Bytes[1]);
  return row ? std::string(row->Name) : "an unknown command";
}

void Note_Round_Trip(std::int64_t start, std::int64_t end) {
  Round_Trips& trips = Serial_Link.Trips;
  const auto held = static_cast<std::int32_t>(std::min<std::int64_t>(end - start, 2'000'000'000));
  const std::size_t place = trips.Count++ % Round_Trips::Kept;
  trips.Last[place] = held;
  trips.Ended[place] = end;
  trips.Worst = std::max(trips.Worst, held);
}

// Answered exchanges a second, over the last ones up to now: on a dead link it falls.
double Exchanges_A_Second() {
  const Round_Trips& trips = Serial_Link.Trips;
  const std::size_t kept = std::min(trips.Count, Round_Trips::Kept);
  if (kept < 2) return 0;
  const std::int64_t oldest = trips.Ended[(trips.Count - kept) % Round_Trips::Kept];
  const std::int64_t ns = Platform.Monotonic_Clock() - oldest;
  return ns > 0 ? static_cast<double>(kept - 1) * 1e9 / static_cast<double>(ns) : 0;
}

void Note_Failure(const Serial_Frame& frame) {
  Serial_Link.LastTxError = "Transmit TX Error";
  Serial_Link.TxRetries = "1";
  const std::size_t length = Serial_Link.LastRxFrame.size();
  const std::string what = length == 0 ? "no reply"
                           : length > Longest_Reply
                               ? "a reply of " + std::to_string(length) + " bytes"
                               : "a bad reply: " + Hex_Text(Serial_Link.LastRxFrame);
  Serial_Link.Last_Error = Command_Name(frame) + ": " + what;
  if (Serial_Link.BeepOnCommError) Platform.Beep();
}

void Tell_Host(const Serial_Frame& frame) {
  if (Serial_Link_Host.Exchanged) Serial_Link_Host.Exchanged(frame.View(), Serial_Link.LastRxFrame);
}

void Discard_Received() {
  Serial_Link.LastRxFrame.clear();
  if (Platform.Serial_Available(Serial_Link.Handle) > 0)
    Platform.Serial_Read(Serial_Link.Handle, Serial_Link.LastRxFrame);
  Serial_Link.LastRxFrame.clear();
}

// One send. What came back stands in `LastRxFrame`.
bool Exchange(const Serial_Frame& frame, std::size_t reply_length) {
  Discard_Received();
  const std::int64_t start = Platform.Monotonic_Clock();
  const bool written = Platform.Serial_Write(Serial_Link.Handle, Serial_Link.LastTxFrame);
  ++Serial_Link.CommsCount;
  ++Serial_Link.Exchanges;
  if (written) {
    Await_Bytes(reply_length, Line_Time_ns(frame.Length + reply_length));
    Platform.Serial_Read(Serial_Link.Handle, Serial_Link.LastRxFrame);
  }
  Tell_Host(frame);
  if (!CheckReply(Serial_Link.LastRxFrame, reply_length)) return false;
  Serial_Link.Last_Good = Platform.Monotonic_Clock();
  Note_Round_Trip(start, Serial_Link.Last_Good);
  return true;
}

}  // namespace

bool OpenSerial(const std::string& device, std::int32_t baud) {
  CloseSerial();
  Serial_Link.Device = device;
  Serial_Link.SerialBaud = baud == 0 ? Default_Baud : baud;
  const Serial_Opened opened = Platform.Serial_Open(device, Serial_Link.SerialBaud);
  Serial_Link.Handle = opened.Handle;
  Serial_Link.Problem = opened.Handle > 0 ? std::string() : opened.Problem;
  if (Serial_Is_Open()) Serial_Link.Last_Good = Platform.Monotonic_Clock();
  return Serial_Is_Open();
}

void CloseSerial() {
  if (Serial_Is_Open()) Platform.Serial_Close(Serial_Link.Handle);
  Serial_Link.Handle = 0;
}

bool Serial_Is_Open() {
  return Serial_Link.Handle > 0;
}

bool Transmit(const Serial_Frame& frame, std::size_t reply_length) {
  if (!Serial_Is_Open() || Serial_Link.TxBusy) return Refuse_Busy();
  Serial_Link.TxBusy = true;
  Serial_Link.TxRetries = "0";
  Serial_Link.LastTxFrame.assign(frame.View().begin(), frame.View().end());
  bool good = false;
  if (!Trap("Transmit Error", [&] { good = Exchange(frame, reply_length); })) good = false;
  if (good)
    Serial_Link.LastTxError.clear();
  else
    Note_Failure(frame);
  Serial_Link.TxBusy = false;
  return good;
}

bool Transmit(Serial_Code code, const Payload& payload) {
  const auto generation = Serial_Link.ControllerGeneration;
  return Transmit(Command_Frame(code, generation, payload),
                  Row_Of(code).Reply[generation > 0 ? 1 : 0]);
}

bool CheckReply(std::span<const std::uint8_t> reply, std::size_t reply_length) {
  const Reply_Fault fault = Look_At_Reply(reply, reply_length);
  if (fault != Reply_Fault::Length) {
    for (std::size_t i = 0; i < reply.size(); ++i)
      Serial_Link.Reply[static_cast<long long>(i) + 1] = reply[i];
  }
  if (fault == Reply_Fault::None) return true;
  ++(fault == Reply_Fault::Length ? Serial_Link.LengthErrorCount : Serial_Link.ChecksumErrorCount);
  ++Serial_Link.ErrorCount;
  Serial_Link.LinkGood = false;
  return false;
}

std::optional<int> Transmit_Repeated(const Serial_Frame& frame, int times) {
  constexpr std::int64_t longest = 500'000'000;  // ns
  constexpr std::size_t reply_length = 4;
  if (!Serial_Is_Open()) return std::nullopt;
  Discard_Received();
  const std::vector<std::uint8_t> bytes(frame.View().begin(), frame.View().end());
  std::vector<std::uint8_t> received;
  bool written = false;
  for (int i = 0; i < times; ++i) {
    written = Platform.Serial_Write(Serial_Link.Handle, bytes) || written;
    ++Serial_Link.CommsCount;
    ++Serial_Link.Exchanges;
    Platform.Serial_Read(Serial_Link.Handle, received);
  }
  const std::int64_t start = Platform.Monotonic_Clock();
  const std::size_t wanted = reply_length * static_cast<std::size_t>(times);
  for (int looks = 0; written && received.size() < wanted && looks < Standing_Looks; ++looks) {
    if (Platform.Monotonic_Clock() - start >= longest) break;
    Rest_Microseconds(Poll_us);
    if (!Platform.Serial_Read(Serial_Link.Handle, received)) break;
  }
  Serial_Link.LastTxFrame = bytes;
  Serial_Link.LastRxFrame = received;
  Tell_Host(frame);
  if (!written) return std::nullopt;
  int good = 0;
  const std::span<const std::uint8_t> all(received);
  for (std::size_t at = 0; at + reply_length <= all.size();) {
    if (Look_At_Reply(all.subspan(at, reply_length), reply_length) == Reply_Fault::None) {
      ++good;
      at += reply_length;
    } else {
      ++at;
    }
  }
  if (good > 0) Serial_Link.Last_Good = Platform.Monotonic_Clock();
  return good;
}

void Reset_Serial_Counters() {
  Serial_Link.CommsCount = Serial_Link.ErrorCount = 0;
  Serial_Link.ChecksumErrorCount = Serial_Link.LengthErrorCount = 0;
  Serial_Link.Trips = {};
}

std::string Link_Health_Text() {
  const auto count = [](double value) { return Format_Number(value, "0"); };
  const auto ms = [](double ns) { return Format_Number(ns / 1e6, "0.0") + " ms"; };
  std::string text;
  const Round_Trips& trips = Serial_Link.Trips;
  if (const std::size_t kept = std::min(trips.Count, Round_Trips::Kept); kept > 0) {
    auto sorted = trips.Last;
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(kept / 2);
    std::nth_element(sorted.begin(), middle, sorted.begin() + static_cast<std::ptrdiff_t>(kept));
    text += "round trip " + ms(*middle) + ", worst " + ms(trips.Worst) + "; ";
  }
  text += count(Serial_Link.CommsCount) + " frames";
  if (const double rate = Exchanges_A_Second(); rate > 0)
    text += " (" + Format_Number(rate, "0.0") + " answered a second)";
  text += ", " + count(Serial_Link.ErrorCount) + " errors";
  if (Serial_Link.ErrorCount > 0)
    text += " (" + count(Serial_Link.LengthErrorCount) + " length, " +
            count(Serial_Link.ChecksumErrorCount) + " checksum; last: " + Serial_Link.Last_Error +
            ")";
  return text;
}

}  // namespace norvik
