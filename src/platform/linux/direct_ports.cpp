#include "platform/linux/granted_ports.h"
#include "platform/linux/linux_platform.h"
#include "platform/linux/port_instructions.h"
#include "platform/platform.h"

#include <array>
#include <bitset>
#include <cerrno>
#include <cstring>
#include <optional>
#include <stdexcept>

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace norvik {

namespace {

constexpr std::uint16_t Usual_Port = 888;

// Why a way of access failed last. The words are made once for an error: a step loop on a dead port
// asks some ten thousand times in a second.
struct Failure {
  int Error = 0;
  std::string Words;
};

struct Direct_Port_State {
  const std::int16_t* Way = nullptr;
  Port_Permission Permission;
  std::bitset<65536> Allowed = Granted_Ports();  // way 1: addresses that ioperm has given
  std::string Device = "/dev/port";
  int File = -1;  // way 2; -1 not open
  int Open_Error = 0;
  std::array<Failure, 3> Failed;  // by way
};
Direct_Port_State Ports;

// --- Words for the operator ----------------------------------------------------------------------

const std::string Simulated_Hint =
    " Or set Port_Access to Simulated to work on the simulated machine.";

std::string Raw_IO_Words() {
  return "Choose the first port access library (Parallel_IODLL 1) and " + Helper_Words() +
         " If that does not help, Secure Boot has locked the kernel down: switch it off in the "
         "firmware.";
}

std::string Instruction_Words(int error) {
  const std::string refused =
      "Direct port access was refused (" + std::string(std::strerror(error)) + "). ";
  if (error == EPERM) return refused + Raw_IO_Words() + Simulated_Hint;
  return refused +
         "This processor or kernel has no port instructions for programs: choose the second port "
         "access library (Parallel_IODLL 2)." +
         Simulated_Hint;
}

// The group whose members may read and write the device; absent when there is none.
std::optional<std::string> Device_Group() {
  struct stat device {};
  constexpr mode_t both = S_IRGRP | S_IWGRP;
  if (::stat(Ports.Device.c_str(), &device) != 0 || (device.st_mode & both) != both) {
    return std::nullopt;
  }
  const struct group* owner = ::getgrgid(device.st_gid);
  return owner != nullptr ? owner->gr_name : std::to_string(device.st_gid);
}

// Systems usually let the group read the device and not write it, so that joining would not help.
std::string Device_Owner_Words() {
  const auto group = Device_Group();
  if (!group) {
    return "Choose the first port access library (Parallel_IODLL 1), which needs no device. ";
  }
  return "Join the group \"" + *group + "\" with the command \"sudo usermod -aG " + *group +
         " $USER\" and log in again. ";
}

std::string Device_Words(int error) {
  const std::string refused = "Access to the port device " + Ports.Device + " was refused (" +
                              std::string(std::strerror(error)) + "). ";
  if (error == EACCES) return refused + Device_Owner_Words() + Raw_IO_Words() + Simulated_Hint;
  if (error == EPERM) return refused + Raw_IO_Words() + Simulated_Hint;
  return refused + "Choose the first port access library (Parallel_IODLL 1)." + Simulated_Hint;
}

// The device was open and failed afterwards.
std::string Device_Lost_Words(int error) {
  return "The port device " + Ports.Device + " does not answer any more (" + std::strerror(error) +
         "). Start the program again. If it happens again, choose the first port access library "
         "(Parallel_IODLL 1).";
}

[[noreturn]] void Fail(int way, int error, std::string (*words)(int)) {
  Failure& failure = Ports.Failed[static_cast<std::size_t>(way)];
  if (failure.Error != error) failure = {error, words(error)};
  throw std::runtime_error(failure.Words);
}

void Need_Permission(std::uint16_t address) {
  if (Ports.Permission.Permitted(address)) return;
  throw std::runtime_error(Ports.Permission.Refused_Words(address));
}

// --- Way 1 ---------------------------------------------------------------------------------------

// 0, or the error number. Also after an earlier refusal: the right may have been given meanwhile.
int Allow(std::uint16_t address) {
  if (Ports.Allowed[address]) return 0;
  Need_Permission(address);
  const int error = Allow_Port(address);
  if (error == 0) Ports.Allowed[address] = true;
  return error;
}

std::uint8_t Read_By_Instruction(std::uint16_t address) {
  if (const int error = Allow(address)) Fail(1, error, Instruction_Words);
  return In_Byte(address);
}

void Write_By_Instruction(std::uint16_t address, std::uint8_t value) {
  if (const int error = Allow(address)) Fail(1, error, Instruction_Words);
  Out_Byte(address, value);
}

// --- Way 2 ---------------------------------------------------------------------------------------

// True when the device is open; otherwise `Open_Error` says why. Tried once.
bool Device_Open() {
  if (Ports.File >= 0) return true;
  if (Ports.Open_Error != 0) return false;
  Ports.File = ::open(Ports.Device.c_str(), O_RDWR | O_CLOEXEC);
  if (Ports.File < 0) Ports.Open_Error = errno;
  return Ports.File >= 0;
}

// Raises the words of an access that did not move one byte.
void Expect_One(ssize_t moved) {
  if (moved != 1) Fail(2, moved < 0 ? errno : EIO, Device_Lost_Words);
}

std::uint8_t Read_By_Device(std::uint16_t address) {
  Need_Permission(address);
  if (!Device_Open()) Fail(2, Ports.Open_Error, Device_Words);
  std::uint8_t value = 0;
  Expect_One(::pread(Ports.File, &value, 1, address));
  return value;
}

void Write_By_Device(std::uint16_t address, std::uint8_t value) {
  Need_Permission(address);
  if (!Device_Open()) Fail(2, Ports.Open_Error, Device_Words);
  Expect_One(::pwrite(Ports.File, &value, 1, address));
}

}  // namespace

Port_Right Direct_Port_Right(int way) {
  if (way == 1) {
    const int error = Allow(Usual_Port);
    return {error == 0, error == 0 ? "" : Instruction_Words(error)};
  }
  if (way == 2) {
    const bool open = Device_Open();
    return {open, open ? "" : Device_Words(Ports.Open_Error)};
  }
  return {false, "No port access library is chosen: set Parallel_IODLL to 1 or 2."};
}

void Install_Direct_Ports(const std::int16_t* way, const Port_Permission& permission) {
  Ports.Way = way;
  Ports.Permission = permission;
  Platform.Port_Read = [](std::uint16_t address) {
    return *Ports.Way == 1 ? Read_By_Instruction(address) : Read_By_Device(address);
  };
  Platform.Port_Write = [](std::uint16_t address, std::uint8_t value) {
    return *Ports.Way == 1 ? Write_By_Instruction(address, value) : Write_By_Device(address, value);
  };
}

void Write_Port_In_Handler(std::uint16_t address, std::uint8_t value) noexcept {
  if (Ports.Way == nullptr) return;
  if (*Ports.Way == 1 && Ports.Allowed[address]) Out_Byte(address, value);
  if (*Ports.Way == 2 && Ports.File >= 0 && Ports.Permission.Permitted(address)) {
    // A failure has nowhere to go: the process is about to end.
    [[maybe_unused]] const ssize_t written = ::pwrite(Ports.File, &value, 1, address);
  }
}

void Set_Port_Device(const std::string& path) {
  if (Ports.File >= 0) ::close(Ports.File);
  Ports.File = -1;
  Ports.Open_Error = 0;
  Ports.Failed[2] = {};
  Ports.Device = path;
}

}  // namespace norvik
