#include "parallel/ports.h"

#include "core/error_log.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "parallel/port_dump.h"
#include "platform/platform.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

namespace norvik {

Port_Recorder_State Port_Recorder;
Port_Failure_State Port_Failures;

namespace {

constexpr std::int32_t Highest_Port = 65535;

// The byte written last to each address, with the mark; 0: none.
constexpr std::uint16_t Is_Written = 0x100;
std::array<std::uint16_t, Highest_Port + 1> Written{};

bool Accessible(std::int32_t port) {
  const std::int16_t way = MachineSetup.Parallel_IODLL;
  return port >= Lowest_Port && port <= Highest_Port && (way == 1 || way == 2);
}

constexpr std::string_view Failed_Panel = "Port: access failed, motors do not move";
constexpr std::string_view Failed_Message =
    "Access to the port fails: motors do not move, outputs stay as they are, steps that were not "
    "made are not counted. Switch a turning spindle off at the machine. When the cause named below "
    "is put right, home the axes before the next run.";

void Note_Failure(Port_Failure& failure, std::string_view name, const Fault& fault) {
  ++failure.Count;
  if (fault.Description == failure.Said) return;
  failure.Said = fault.Description;
  Log_Fault(name, fault);
  Add_New_Message(fault.Description);
  Add_New_Message(Failed_Message);
  SetStatus(3, Failed_Panel, -1);
}

void Record(std::int32_t port, std::uint8_t value, bool real) {
  auto& block = Port_Recorder.Block;
  block.push_back({Platform.Monotonic_Clock(), static_cast<std::uint16_t>(port), value, real});
  if (block.size() < Port_Recorder_State::Block_Size) return;
  Port_Recorder.Take_Block(block);
  block.clear();
}

}  // namespace

std::uint8_t PPGetPort(std::int32_t port) noexcept {
  if (!Accessible(port)) return 0;
  std::uint8_t value = 0;
  Trap_With([](const Fault& fault) { Note_Failure(Port_Failures.Reads, "PPGetPort_Error", fault); },
            [&] { value = Platform.Port_Read(static_cast<std::uint16_t>(port)); });
  return value;
}

bool PPSetPort(std::int32_t port, std::uint8_t value, bool real) noexcept {
  const std::int32_t target = real ? port : port + Dummy_Port_Offset;
  if (!Accessible(port) || !Accessible(target)) return true;
  const bool written = Trap_With(
      [](const Fault& fault) { Note_Failure(Port_Failures.Writes, "PPSetPort_Error", fault); },
      [&] { Platform.Port_Write(static_cast<std::uint16_t>(target), value); });
  if (written && real) Written[static_cast<std::size_t>(port)] = Is_Written | value;
  if (written && Port_Recorder.Active) {
    Trap("Port_Recorder_Error", [&] { Record(port, value, real); });
  }
  return written;
}

std::uint8_t Output_Byte(std::int32_t port) noexcept {
  const std::uint8_t read = PPGetPort(port);
  return MachineSetup.Port_Shadow ? Written_Byte(port).value_or(read) : read;
}

void Forget_Written_Bytes() {
  Written.fill(0);
}

std::optional<std::uint8_t> Written_Byte(std::int32_t port) {
  if (!Accessible(port)) return std::nullopt;
  const std::uint16_t entry = Written[static_cast<std::size_t>(port)];
  return entry == 0 ? std::nullopt : std::optional(static_cast<std::uint8_t>(entry & 0xFF));
}

void Start_Port_Recorder(std::function<void(const std::vector<Port_Write_Record>&)> take_block) {
  Stop_Port_Recorder();
  Port_Recorder.Take_Block = std::move(take_block);
  Port_Recorder.Block.reserve(Port_Recorder_State::Block_Size);
  Port_Recorder.Active = true;
}

bool Stop_Port_Recorder() {
  // Off first: what fails below must not come back at the next write.
  const bool active = std::exchange(Port_Recorder.Active, false);
  const Port_Recorder_State last = std::exchange(Port_Recorder, {});
  if (!active) return !last.Failed;
  const bool taken = Trap("Port_Recorder_Error", [&] { last.Take_Block(last.Block); });
  return taken && !std::exchange(Port_Recorder.Failed, false);
}

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

// Appends what a block of writes gives to a text.
using Block_Words = std::function<void(const std::vector<Port_Write_Record>&, std::string&)>;

// A file that grows block by block.
class Port_File {
 public:
  Port_File(const std::string& path, const std::string& header, Block_Words words)
      : Path(path), Words(std::move(words)), Out(std::fopen(path.c_str(), "w"), &std::fclose) {
    if (!Out) {
      throw Fault(Fault_Number::Path_Access, "The port record \"" + path +
                                                 "\" cannot be written: " + std::strerror(errno) +
                                                 ". Choose a folder that you may write to.");
    }
    std::fputs(header.c_str(), Out.get());
    // Lines of about 40 characters: nothing is allocated while the machine moves.
    Text.reserve(Port_Recorder_State::Block_Size * 40);
  }

  void Write(const std::vector<Port_Write_Record>& block) {
    Text.clear();
    Words(block, Text);
    const bool written = std::fwrite(Text.data(), 1, Text.size(), Out.get()) == Text.size();
    if (written && std::fflush(Out.get()) == 0) return;
    Port_Recorder.Active = false;
    Port_Recorder.Failed = true;
    ErrorLogWrite("The port record \"" + Path + "\" ends here: " + std::strerror(errno));
  }

 private:
  std::string Path;
  Block_Words Words;
  File Out;
  std::string Text;
};

void Append_Number(std::string& text, std::int64_t number) {
  std::array<char, 24> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.append(digits.data(), end);
}

// "microseconds,port,value,real"
void Append_Line(std::string& text, const Port_Write_Record& record, std::int64_t start) {
  const std::int64_t time = record.Time - start;
  Append_Number(text, time / 1000);
  const auto thousandths = static_cast<int>(time % 1000);
  text += '.';
  for (const int place : {100, 10, 1}) text += static_cast<char>('0' + thousandths / place % 10);
  for (const int field : {int{record.Port}, int{record.Value}, record.Real ? 1 : 0}) {
    text += ',';
    Append_Number(text, field);
  }
  text += '\n';
}

std::shared_ptr<Port_File> Line_File(const std::string& path, std::int64_t start) {
  return std::make_shared<Port_File>(path, "microseconds,port,value,real\n",
                                     [start](const auto& block, std::string& text) {
                                       for (const Port_Write_Record& record : block) {
                                         Append_Line(text, record, start);
                                       }
                                     });
}

std::shared_ptr<Port_File> Dump_File(const std::string& path, std::int64_t start) {
  const auto dump = std::make_shared<Port_Dump>(start);
  return std::make_shared<Port_File>(
      path, dump->Header(),
      [dump](const auto& block, std::string& text) { dump->Append(block, text); });
}

}  // namespace

void Record_Ports_To_File(const std::string& path) {
  const std::int64_t start = Platform.Monotonic_Clock();
  const auto file = Upper(path).ends_with(".VCD") ? Dump_File(path, start) : Line_File(path, start);
  Start_Port_Recorder([file](const std::vector<Port_Write_Record>& block) { file->Write(block); });
}

}  // namespace norvik
