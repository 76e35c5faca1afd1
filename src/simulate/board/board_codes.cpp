#include "simulate/board/board_codes.h"

#include "core/paths.h"

#include <array>

namespace norvik {

namespace {

constexpr std::uint8_t No = Board_Command::Unknown;

constexpr Board_Command Commands[] = {
    {8, "ReadFirmware", {0, 0}, {11, 11}},
    {9, "ReadPresence", {0, 0}, {7, 7}},
    {10, "MoveSteps", {32, 35}, {5, 6}},
    {11, "ReadStatus", {0, 0}, {23, 38}},
    {12, "StopMotion", {0, 0}, {4, 4}},
    {13, "OutputOn", {1, 1}, {5, 5}},
    {14, "OutputOff", {1, 1}, {5, 5}},
    {15, "ReadBuffer", {0, 0}, {5, 6}},
    {17, "AxisPrepare", {1, 1}, {5, 5}},
    {18, "LoadStepCounters", {12, 13}, {4, 4}},
    {19, "ReadMemory", {2, 2}, {5, 5}},
    {21, "LimitsDisable", {0, 0}, {4, 4}},
    {22, "LimitsEnable", {0, 0}, {4, 4}},
    {23, "ResetController", {0, 0}, {4, 4}},
    {24, "ClearFaults", {0, 0}, {4, 4}},
    {25, "MotorEnableOn", {0, 0}, {4, 4}},
    {26, "MotorEnableOff", {0, 0}, {4, 4}},
    {28, "SetCByte1", {1, 1}, {5, 5}},
    {29, "SetCByte2", {1, 1}, {5, 5}},
    {30, "JogStop", {2, 2}, {4, 4}},
    {31, "SetRampRate", {1, 1}, {5, 5}},
    {32, "SetThrottle", {2, 2}, {4, 4}},
    {41, "LoadEncoderCounters", {12, 13}, {4, 4}},
    {44, "WriteEncoderConfig", {No, 29}, {4, 4}},
    {45, "ReadEncoderConfig", {0, 0}, {33, 33}},
    {46, "ReadConfig", {0, 0}, {58, 58}},
};

constexpr std::size_t Most_Codes = 256;

constexpr std::array<std::uint8_t, Most_Codes> Places_By_Code() {
  std::array<std::uint8_t, Most_Codes> places{};
  for (std::uint8_t& place : places) place = No;
  for (std::size_t i = 0; i < std::size(Commands); ++i) {
    places[Commands[i].Code] = static_cast<std::uint8_t>(i);
  }
  return places;
}
constexpr std::array<std::uint8_t, Most_Codes> Place_Of_Code = Places_By_Code();

}  // namespace

std::string Name_Of(Board_Generation generation) {
  return generation == Board_Generation::Dravon_V4 ? "Dravon" : "Pelmar";
}

std::optional<Board_Generation> Generation_Named(std::string_view name) {
  for (const auto generation : {Board_Generation::Dravon_V4, Board_Generation::Pelmar_V5}) {
    if (Upper(name) == Upper(Name_Of(generation))) return generation;
  }
  return std::nullopt;
}

std::span<const Board_Command> Board_Commands() {
  return Commands;
}

const Board_Command* Board_Command_Of(std::uint8_t code) {
  const std::uint8_t place = Place_Of_Code[code];
  return place == No ? nullptr : &Commands[place];
}

const Board_Command* Board_Command_Named(std::string_view name) {
  for (const Board_Command& command : Commands) {
    if (Upper(name) == Upper(command.Name)) return &command;
  }
  return nullptr;
}

}  // namespace norvik
