#include "simulate/board/frame_words.h"

#include "core/axes.h"
#include "core/paths.h"
#include "simulate/board/frame_receiver.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

namespace norvik {

namespace {

enum class Kind { Number, Signed, Low_First, Divider, Bits, Pad, Unchanged };

constexpr std::size_t Most_Bits = 8;
using Bit_Names = std::array<std::string_view, Most_Bits>;

struct Field {
  std::string_view Name;
  std::size_t Size = 1;
  Kind Form = Kind::Number;
  const Bit_Names* Names = nullptr;
};
using Fields = std::vector<Field>;

constexpr Bit_Names Axis_Names{"x", "y", "z", "a", "bit4", "bit5", "bit6", "bit7"};
constexpr Bit_Names Limit_Names{"first-x",  "first-y",  "first-z",  "first-a",
                                "second-x", "second-y", "second-z", "second-a"};
constexpr Bit_Names Flag_Names{"aux-latched", "moving", "home-x", "home-y",
                               "home-z",      "aux",    "home-a", "bit7"};
constexpr Bit_Names Output_Names{"1", "2", "3", "4", "5", "6", "7", "bit7"};
constexpr Bit_Names Fault_Names{"x", "y", "z", "a", "bit4", "bit5", "bit6", "any"};

constexpr std::size_t Number_Size = 3;
constexpr std::string_view Axis_Fields[] = {"x", "y", "z", "a"};

void Add_Axes(Fields& fields, std::string_view const (&names)[4], std::size_t size, Kind form) {
  for (const std::string_view name : names) fields.push_back({name, size, form});
}

Fields Move_Fields(Board_Generation generation) {
  Fields fields{{"counts", Number_Size}};
  Add_Axes(fields, Axis_Fields, sizeof(std::uint32_t), Kind::Divider);
  fields.insert(fields.end(), {{"start_rate", 2},
                               {"run_ramp", Number_Size},
                               {"down_ramp", Number_Size},
                               {"reverse", 1, Kind::Bits, &Axis_Names},
                               {"high", 1},
                               {"low", 1},
                               {"pwm_high", 1, Kind::Unchanged},
                               {"pwm_low", 1, Kind::Unchanged}});
  if (generation == Board_Generation::Pelmar_V5) fields.push_back({"index", Number_Size});
  return fields;
}

void Add_Encoders(Fields& fields) {
  static constexpr std::string_view modes[] = {"mode_x", "mode_y", "mode_z", "mode_a"};
  static constexpr std::string_view factors[] = {"factor_x", "factor_y", "factor_z", "factor_a"};
  static constexpr std::string_view errors[] = {"error_x", "error_y", "error_z", "error_a"};
  Add_Axes(fields, modes, 1, Kind::Number);
  Add_Axes(fields, factors, Number_Size, Kind::Number);
  Add_Axes(fields, errors, Number_Size, Kind::Number);
}

Fields Command_Fields(Board_Generation generation, std::uint8_t code) {
  const bool pads = generation == Board_Generation::Pelmar_V5;
  Fields fields;
  switch (code) {
    case board_code::Move_Steps:
      return Move_Fields(generation);
    case board_code::Output_On:
    case board_code::Output_Off:
      return {{"output", 1}};
    case board_code::Axis_Prepare:
      return {{"axis", 1}};
    case board_code::Read_Memory:
      return {{"address", 2, Kind::Low_First}};
    case board_code::Set_CByte1:
    case board_code::Set_CByte2:
      return {{"value", 1}};
    case board_code::Set_Ramp_Rate:
      return {{"rate", 1}};
    case board_code::Jog_Stop:
      return {{"rate", 2, Kind::Low_First}};
    case board_code::Set_Throttle:
      return {{"value", 2, Kind::Low_First}};
    case board_code::Load_Step_Counters:
    case board_code::Load_Encoder_Counters:
      Add_Axes(fields, Axis_Fields, Number_Size, Kind::Signed);
      break;
    case board_code::Write_Encoder_Config:
      Add_Encoders(fields);
      break;
    default:
      return {};
  }
  if (pads) fields.push_back({"pad", 1, Kind::Pad});
  return fields;
}

Fields Status_Fields(bool pelmar) {
  static constexpr std::string_view encoders[] = {"encoder_x", "encoder_y", "encoder_z",
                                                  "encoder_a"};
  Fields fields;
  Add_Axes(fields, Axis_Fields, Number_Size, Kind::Signed);
  if (pelmar) Add_Axes(fields, encoders, Number_Size, Kind::Signed);
  fields.insert(fields.end(), {{"limits", 1, Kind::Bits, &Limit_Names},
                               {"flags", 1, Kind::Bits, &Flag_Names},
                               {"outputs", 1, Kind::Bits, &Output_Names},
                               {"rate", 2},
                               {"spare", 2}});
  if (pelmar) fields.push_back({"index", Number_Size});
  return fields;
}

Fields Config_Fields() {
  Fields fields{{"hardware", 1}, {"revision_1", 1}, {"revision_2", 1}, {"revision_3", 1},
                {"day", 1},      {"month", 1},      {"century", 1},    {"year", 1},
                {"capacity", 2}, {"no_limits", 1},  {"ramp_rate", 1},  {"cbyte_1", 1},
                {"cbyte_2", 1},  {"reserved_1", 4}, {"reserved_2", 4}, {"reserved_3", 4}};
  Add_Encoders(fields);
  return fields;
}

Fields Reply_Fields(Board_Generation generation, std::uint8_t code) {
  const bool pelmar = generation == Board_Generation::Pelmar_V5;
  Fields fields;
  switch (code) {
    case board_code::Read_Firmware:
      return {{"revision_1", 1}, {"revision_2", 1}, {"revision_3", 1}, {"day", 1},
              {"month", 1},      {"century", 1},    {"year", 1}};
    case board_code::Read_Presence:
      return {{"mark_1", 1}, {"mark_2", 1}, {"version", 1}};
    case board_code::Move_Steps:
    case board_code::Read_Buffer:
      if (pelmar) return {{"free", 2, Kind::Low_First}};
      return {{"used", 1}};
    case board_code::Read_Status:
      return Status_Fields(pelmar);
    case board_code::Read_Memory:
      return {{"value", 1}};
    case board_code::Read_Encoder_Config:
      Add_Encoders(fields);
      fields.push_back({"faults", 1, Kind::Bits, &Fault_Names});
      return fields;
    case board_code::Read_Config:
      return Config_Fields();
    default:
      break;
  }
  const Board_Command& command = *Board_Command_Of(code);
  constexpr std::size_t plain = 4;
  if (command.Reply_Of(generation) == plain) return {};
  return {{"value", 1}};
}

// --- Values
// ------------------------------------------------------------------------------------

std::uint32_t Value_At(const Field& field, const std::uint8_t* bytes) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < field.Size; ++i) {
    const std::size_t place = field.Form == Kind::Low_First ? field.Size - 1 - i : i;
    value = value << 8U | bytes[place];
  }
  return value;
}

void Put_Value(const Field& field, std::uint32_t value, std::vector<std::uint8_t>& bytes) {
  for (std::size_t i = 0; i < field.Size; ++i) {
    const std::size_t place = field.Form == Kind::Low_First ? i : field.Size - 1 - i;
    bytes.push_back(static_cast<std::uint8_t>(value >> (8 * place) & 0xFF));
  }
}

std::uint32_t Largest(const Field& field) {
  return field.Size >= sizeof(std::uint32_t) ? 0xFFFFFFFF : (1U << (8 * field.Size)) - 1;
}

std::uint32_t Value_When_Missing(const Field& field) {
  if (field.Form == Kind::Divider) return No_Steps_Divider;
  return field.Form == Kind::Unchanged ? 255 : 0;
}

std::string Text_Of_Bits(const Bit_Names& names, std::uint32_t value) {
  std::string text;
  for (std::size_t bit = 0; bit < Most_Bits; ++bit) {
    if ((value >> bit & 1U) == 0) continue;
    if (!text.empty()) text += '+';
    text += names[bit];
  }
  return text.empty() ? "-" : text;
}

std::string Text_Of_Value(const Field& field, std::uint32_t value) {
  if (field.Form == Kind::Bits) return Text_Of_Bits(*field.Names, value);
  if (field.Form == Kind::Divider && value == No_Steps_Divider) return "none";
  if (field.Form == Kind::Signed) return std::to_string(Sign_Extended_24(value));
  return std::to_string(value);
}

std::optional<std::int64_t> Integer_Of(std::string_view text) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return {};
  return value;
}

std::optional<std::uint32_t> Bits_Of_Text(const Bit_Names& names, std::string_view text) {
  std::uint32_t value = 0;
  while (text != "-" && !text.empty()) {
    const auto end = std::min(text.find('+'), text.size());
    const auto* const found = std::find(names.begin(), names.end(), text.substr(0, end));
    if (found == names.end()) return {};
    value |= 1U << static_cast<unsigned>(found - names.begin());
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return value;
}

std::optional<std::uint32_t> Value_Of_Text(const Field& field, std::string_view text) {
  if (field.Form == Kind::Bits) return Bits_Of_Text(*field.Names, text);
  if (field.Form == Kind::Divider && text == "none") return No_Steps_Divider;
  const auto value = Integer_Of(text);
  if (!value) return {};
  if (field.Form == Kind::Signed) {
    constexpr std::int64_t half = 0x800000;
    if (*value < -half || *value >= half) return {};
    return static_cast<std::uint32_t>(*value) & 0xFFFFFF;
  }
  if (*value < 0 || *value > Largest(field)) return {};
  return static_cast<std::uint32_t>(*value);
}

// --- Dwells
// ------------------------------------------------------------------------------------

constexpr std::string_view Dwell_Name = "Dwell";

// A dwell is told by its time and what it shares with a move.
Fields Dwell_Fields() {
  return {{"milliseconds", Number_Size},
          {"reverse", 1, Kind::Bits, &Axis_Names},
          {"high", 1},
          {"low", 1},
          {"pwm_high", 1, Kind::Unchanged},
          {"pwm_low", 1, Kind::Unchanged},
          {"index", Number_Size}};
}

constexpr std::size_t Dwell_Tail = 29;  // place of the direction bits in the frame, from 0

// The payload of a dwell's own fields, without what is the same in all.
std::vector<std::uint8_t> Short_Dwell(std::span<const std::uint8_t> frame) {
  std::vector<std::uint8_t> bytes(frame.begin() + 2, frame.begin() + 2 + Number_Size);
  bytes.insert(bytes.end(), frame.begin() + Dwell_Tail, frame.end() - 2);
  return bytes;
}

std::vector<std::uint8_t> Whole_Dwell(std::span<const std::uint8_t> fields) {
  const auto time = fields.first(Number_Size);
  std::vector<std::uint8_t> bytes(time.begin(), time.end());
  bytes.insert(bytes.end(), Axis_Count * sizeof(std::uint32_t), 0xFF);
  bytes.push_back(Dwell_Rate >> 8);
  bytes.push_back(Dwell_Rate & 0xFF);
  bytes.insert(bytes.end(), time.begin(), time.end());
  bytes.insert(bytes.end(), Number_Size, 0);
  const auto tail = fields.subspan(Number_Size);
  bytes.insert(bytes.end(), tail.begin(), tail.end());
  return bytes;
}

// --- Whole frames
// ------------------------------------------------------------------------------

std::string Words_Of_Fields(std::string_view name, const Fields& fields,
                            std::span<const std::uint8_t> payload) {
  std::string words(name);
  std::size_t place = 0;
  for (const Field& field : fields) {
    const std::uint32_t value = Value_At(field, &payload[place]);
    place += field.Size;
    if (field.Form == Kind::Pad && value == 0) continue;
    words += " " + std::string(field.Name) + "=" + Text_Of_Value(field, value);
  }
  return words;
}

std::size_t Size_Of(const Fields& fields) {
  std::size_t size = 0;
  for (const Field& field : fields) size += field.Size;
  return size;
}

Frame_Words Wrong(std::string words) {
  return {"", std::move(words)};
}

Frame_Words Words_Of(Board_Generation generation, Frame_Side side, std::uint8_t code,
                     std::span<const std::uint8_t> frame) {
  constexpr std::size_t around = 4;
  if (frame.size() < around) return Wrong("a frame has 4 bytes at least");
  if (frame[0] != Board_Frame_Start) return Wrong("a frame begins with 1b");
  const Board_Command* command = Board_Command_Of(code);
  if (command == nullptr || !command->Known_To(generation)) {
    return Wrong("the board does not know a command " + std::to_string(code));
  }
  if (!Checksum_Is_Right(frame)) {
    return Wrong(std::string(command->Name) + " with a wrong checksum");
  }
  const auto payload = frame.subspan(2, frame.size() - around);
  if (side == Frame_Side::Command && payload.size() == Dwell_Payload && Has_Form_Of_Dwell(frame) &&
      (generation == Board_Generation::Dravon_V4 || Big_Endian_24(&frame[2]) > 0)) {
    return {Words_Of_Fields(Dwell_Name, Dwell_Fields(), Short_Dwell(frame)), ""};
  }
  const Fields fields = side == Frame_Side::Command ? Command_Fields(generation, code)
                                                    : Reply_Fields(generation, code);
  if (payload.size() != Size_Of(fields)) {
    return Wrong(std::string(command->Name) + " of " + std::to_string(frame.size()) +
                 " bytes instead of " + std::to_string(Size_Of(fields) + around));
  }
  std::string name = command->Name;
  if (frame[1] != code) name += " answer=" + std::to_string(frame[1]);
  return {Words_Of_Fields(name, fields, payload), ""};
}

std::vector<std::string_view> Words_In(std::string_view text) {
  constexpr std::string_view blanks = " \t\r,;";
  std::vector<std::string_view> words;
  for (auto begin = text.find_first_not_of(blanks); begin != std::string_view::npos;
       begin = text.find_first_not_of(blanks)) {
    text.remove_prefix(begin);
    const auto end = std::min(text.find_first_of(blanks), text.size());
    words.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return words;
}

std::string Names_Of(const Fields& fields) {
  std::string names;
  for (const Field& field : fields) names += " " + std::string(field.Name);
  return names;
}

std::vector<std::uint8_t> Closed_Frame(std::uint8_t second, std::span<const std::uint8_t> payload) {
  std::vector<std::uint8_t> frame;
  frame.reserve(payload.size() + 4);
  frame.push_back(Board_Frame_Start);
  frame.push_back(second);
  for (const std::uint8_t byte : payload) frame.push_back(byte);
  const std::uint32_t sum = Sum_Of(frame);
  frame.push_back(static_cast<std::uint8_t>(sum & 0xFF));
  frame.push_back(static_cast<std::uint8_t>(sum >> 8U & 0xFF));
  return frame;
}

// Fills `values` from words "name=value"; the empty text, or what is wrong.
std::string Take_Values(std::span<const std::string_view> words, const Fields& fields,
                        std::vector<std::uint32_t>& values) {
  for (const std::string_view word : words) {
    const auto mark = word.find('=');
    const auto name = word.substr(0, mark);
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const Field& field) { return field.Name == name; });
    if (mark == std::string_view::npos || found == fields.end()) {
      return "\"" + std::string(word) + "\" is no field of it. There are:" + Names_Of(fields);
    }
    const auto value = Value_Of_Text(*found, word.substr(mark + 1));
    if (!value) return "\"" + std::string(word) + "\" has no value that the field can hold";
    values[static_cast<std::size_t>(found - fields.begin())] = *value;
  }
  return {};
}

// A line of a log: "12 1B 0C 27 00 / 1B 0C 27 00", or "12 1b0c2700 1b0c2700" without blanks in
// frames.
struct Exchange {
  std::string_view Number, Sent, Received;
};

std::optional<Exchange> Exchange_In(std::string_view line) {
  const auto words = Words_In(line);
  const auto slash = line.find('/');
  if (slash == std::string_view::npos) {
    const bool three = words.size() == 3 && (words[1].size() > 2 || words[2] == "-");
    return three ? std::optional(Exchange{words[0], words[1], words[2]}) : std::nullopt;
  }
  const auto sent = Words_In(line.substr(0, slash)), received = Words_In(line.substr(slash + 1));
  if (sent.empty() || received.empty()) return std::nullopt;
  const std::string_view number = sent.front();
  const auto after = static_cast<std::size_t>(number.data() - line.data()) + number.size();
  const bool nothing = received.size() == 1 && received.front() == "-";
  return Exchange{number, line.substr(after, slash - after),
                  nothing ? received.front() : line.substr(slash + 1)};
}

}  // namespace

Frame_Words Words_Of_Frame(Board_Generation generation, Frame_Side side,
                           std::span<const std::uint8_t> frame) {
  return Words_Of(generation, side, frame.size() > 1 ? frame[1] : 0, frame);
}

Frame_Words Words_Of_Reply(Board_Generation generation, std::uint8_t command_code,
                           std::span<const std::uint8_t> frame) {
  return Words_Of(generation, Frame_Side::Reply, command_code, frame);
}

Frame_Bytes Frame_Of_Words(Board_Generation generation, Frame_Side side, std::string_view text) {
  auto words = Words_In(text);
  if (words.empty()) return {{}, "a command's name is missing"};
  const std::string_view name = words.front();
  const bool dwell = side == Frame_Side::Command && Upper(name) == Upper(Dwell_Name);
  const Board_Command* command =
      dwell ? Board_Command_Of(board_code::Move_Steps) : Board_Command_Named(name);
  if (command == nullptr || !command->Known_To(generation)) {
    std::string names =
        "\"" + std::string(name) + "\" is no command of the board. There are: Dwell";
    for (const Board_Command& known : Board_Commands()) {
      if (known.Known_To(generation)) names += " " + std::string(known.Name);
    }
    return {{}, names};
  }
  words.erase(words.begin());
  std::uint8_t second = command->Code;
  constexpr std::string_view answer = "answer=";
  if (side == Frame_Side::Reply && !words.empty() && words.front().starts_with(answer)) {
    const auto value = Integer_Of(words.front().substr(answer.size()));
    if (!value || *value < 0 || *value > 255) return {{}, "an answer is a byte, 0 to 255"};
    second = static_cast<std::uint8_t>(*value);
    words.erase(words.begin());
  }
  const Fields fields = dwell                         ? Dwell_Fields()
                        : side == Frame_Side::Command ? Command_Fields(generation, command->Code)
                                                      : Reply_Fields(generation, command->Code);
  std::vector<std::uint32_t> values;
  for (const Field& field : fields) values.push_back(Value_When_Missing(field));
  if (std::string fault = Take_Values(words, fields, values); !fault.empty()) {
    return {{}, std::string(name) + ": " + fault};
  }
  std::vector<std::uint8_t> payload;
  for (std::size_t i = 0; i < fields.size(); ++i) Put_Value(fields[i], values[i], payload);
  return {Closed_Frame(second, dwell ? Whole_Dwell(payload) : payload), ""};
}

std::string Hex_Of(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    text += digits[byte >> 4U];
    text += digits[byte & 15U];
  }
  return text;
}

Frame_Bytes Bytes_Of_Hex_Text(std::string_view text) {
  constexpr int base = 16;
  std::string digits;
  for (const char letter : text) {
    if (std::string_view(" \t\r,:").find(letter) == std::string_view::npos) digits += letter;
  }
  if (digits.size() % 2 != 0) return {{}, "an odd number of hexadecimal digits"};
  Frame_Bytes result;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    std::uint8_t byte = 0;
    const char* begin = digits.data() + i;
    if (std::from_chars(begin, begin + 2, byte, base).ptr != begin + 2) {
      return {{}, "\"" + digits.substr(i, 2) + "\" is no byte in hexadecimal digits"};
    }
    result.Bytes.push_back(byte);
  }
  return result;
}

Frame_Words Words_Of_Line(Board_Generation generation, Frame_Side side, std::string_view line) {
  const std::optional<Exchange> exchange = Exchange_In(line);
  if (!exchange) {
    const Frame_Bytes frame = Bytes_Of_Hex_Text(line);
    if (!frame.Fault.empty()) return Wrong(frame.Fault);
    return Words_Of_Frame(generation, side, frame.Bytes);
  }
  const Frame_Bytes sent = Bytes_Of_Hex_Text(exchange->Sent);
  if (!sent.Fault.empty()) return Wrong(sent.Fault);
  const Frame_Words command = Words_Of_Frame(generation, Frame_Side::Command, sent.Bytes);
  std::string text = std::string(exchange->Number) + "  > " +
                     (command.Fault.empty() ? command.Words : "(" + command.Fault + ")");
  if (exchange->Received == "-") return {text + "  < nothing", command.Fault};
  const Frame_Bytes received = Bytes_Of_Hex_Text(exchange->Received);
  if (!received.Fault.empty()) return Wrong(received.Fault);
  const std::uint8_t code = sent.Bytes.size() > 1 ? sent.Bytes[1] : 0;
  const Frame_Words reply = Words_Of_Reply(generation, code, received.Bytes);
  text += "  < " + (reply.Fault.empty() ? reply.Words : "(" + reply.Fault + ")");
  return {text, command.Fault.empty() ? reply.Fault : command.Fault};
}

}  // namespace norvik
