#include "adapt/plain_line.h"

#include "compiler/text/plain_number.h"

#include <cmath>
#include <cstring>

namespace norvik::adapting {

namespace {

struct Plain_Line {
  std::string_view Sequence;
  int Code = -1;                        // 0 or 1; -1: none
  std::array<Plain_Number, 5> Numbers;  // X, Y, Z, A, F
  unsigned Seen = 0;
};

int Place_Of(char letter) {
  switch (letter) {
    case 'X':
      return 0;
    case 'Y':
      return 1;
    case 'Z':
      return 2;
    case 'A':
      return 3;
    case 'F':
      return 4;
    default:
      return -1;
  }
}

bool Is_Digit(char c) {
  return c >= '0' && c <= '9';
}

bool Scan_Code(const char*& at, const char* end, Plain_Line& line) {
  if (line.Code >= 0 || at == end) return false;
  if (*at == '0' && end - at > 1 && Is_Digit(at[1])) ++at;
  if (*at != '0' && *at != '1') return false;
  line.Code = *at++ - '0';
  return at == end || !(Is_Digit(*at) || *at == '.' || *at == ',');
}

bool Scan(std::string_view text, Plain_Line& line) {
  const char *at = text.data(), *const end = at + text.size();
  while (at != end) {
    const char c = static_cast<char>(*at & ~0x20);  // upper case; a blank becomes 0
    if (c == 0 && *at == ' ') {
      ++at;
      continue;
    }
    ++at;
    if (c == 'N' && line.Seen == 0 && line.Code < 0 && line.Sequence.empty()) {
      const char* const first = at;
      while (at != end && Is_Digit(*at)) ++at;
      line.Sequence = {first, at};
      if (at == first || at - first > 9) return false;
    } else if (c == 'G') {
      if (!Scan_Code(at, end, line)) return false;
    } else {
      const int place = Place_Of(c);
      if (place < 0 || (line.Seen & 1U << place) != 0) return false;
      auto& number = line.Numbers[static_cast<std::size_t>(place)];
      at = Scan_Plain_Number(at, end, number);
      if (!number.Is_Plain() || number.Digits > 14) return false;
      line.Seen |= 1U << place;
    }
  }
  return (line.Seen & 15U) != 0;
}

// A number as the new program has it, in units of the last digit; `value` is where the axis comes
// to.
bool Whole_Of(Context& context, int axis, const Plain_Number& number, double& value,
              std::int64_t& whole) {
  const Numerals& numbers = context.Out.Numbers();
  value = number.Value();
  if (context.Place.Plain() && !context.Mode.Incremental && number.Decimals <= numbers.Decimals()) {
    const auto more = static_cast<std::size_t>(numbers.Decimals() - number.Decimals);
    whole = static_cast<std::int64_t>(number.Whole * Whole_Powers_Of_Ten[more]);
    if (number.Negative) whole = -whole;
    return whole < 1'000'000'000'000 && whole > -1'000'000'000'000;
  }
  if (context.Mode.Incremental && !context.Place.At[static_cast<std::size_t>(axis)]) return false;
  value = context.Place.Target(axis, value);
  if (numbers.Too_Large(value)) return false;
  whole = numbers.Whole(value);
  context.Out.Count_Rounding(value, whole);
  return true;
}

}  // namespace

bool Take_Plain_Line(Context& context, std::string_view text) {
  constexpr std::size_t longest = 120;
  Modes& mode = context.Mode;
  if (context.Options.Simplify || mode.Feed_Mode != 94 || text.size() > longest) return false;
  Plain_Line line;
  if (!Scan(text, line)) return false;
  const int code = line.Code >= 0 ? line.Code : mode.Motion == 0 ? 0 : mode.Motion == 10 ? 1 : -1;
  if (code < 0) return false;

  char buffer[400];
  char* out = buffer;
  if (!line.Sequence.empty()) {
    *out++ = 'N';
    std::memcpy(out, line.Sequence.data(), line.Sequence.size());
    out += line.Sequence.size();
    *out++ = ' ';
  }
  *out++ = 'G';
  *out++ = static_cast<char>('0' + code);
  std::array<double, Axis_Count> value{};
  for (int axis = 0; axis < Axis_Count; ++axis) {
    if ((line.Seen & 1U << axis) == 0) continue;
    const auto place = static_cast<std::size_t>(axis);
    std::int64_t whole = 0;
    if (!Whole_Of(context, axis, line.Numbers[place], value[place], whole)) return false;
    *out++ = ' ';
    *out++ = Axis_Letters[axis];
    out = context.Out.Numbers().Write(out, whole);
  }
  if ((line.Seen & 16U) != 0) {
    const double feed = line.Numbers[4].Value() * context.Place.Factor();
    if (context.Out.Numbers().Too_Large(feed)) return false;
    const std::int64_t whole = context.Out.Numbers().Whole(feed);
    context.Out.Count_Rounding(feed, whole);
    mode.Feed = line.Numbers[4].Value();
    *out++ = ' ';
    *out++ = 'F';
    out = context.Out.Numbers().Write(out, whole, true);
  }
  mode.Motion = code * 10;
  context.Place.Begin_Motion();
  for (int axis = 0; axis < Axis_Count; ++axis) {
    const auto place = static_cast<std::size_t>(axis);
    if ((line.Seen & 1U << axis) != 0) context.Place.At[place] = value[place];
  }
  context.Out.Copied_Line(buffer, out);
  return true;
}

}  // namespace norvik::adapting
