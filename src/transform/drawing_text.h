// drawing_text.h: the two formats of the exports, record by record.
#pragma once

#include "compiler/state/tables.h"
#include "transform/exports.h"

#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>

namespace norvik {

using Byte_Sink = std::function<void(std::string_view bytes)>;

// Collects bytes, so that a sink is not called for every word. What is put between two calls of
// `Flush_When_Full` is at most `Room`.
class Byte_Buffer {
 public:
  explicit Byte_Buffer(const Byte_Sink& sink) : Sink(sink), Bytes(Limit + Room, '\0') {
    At = Bytes.data();
  }

  void Text(std::string_view text) {
    std::memcpy(At, text.data(), text.size());
    At += text.size();
  }
  // In general form (core/general_text.h).
  void Number(double value);
  // The same without the zero in front of a point.
  void Bare_Number(double value);
  // At the end of a record.
  void Flush_When_Full() {
    if (At >= Bytes.data() + Limit) Flush();
  }
  void Flush();

  // Where the next byte goes, for texts that are to be put again.
  const char* Place() const { return At; }

 private:
  static constexpr std::size_t Limit = 1U << 16, Room = 1U << 13;

  const Byte_Sink& Sink;
  std::string Bytes;
  char* At = nullptr;
};

// Writes the general form to `out` (room for General_Text_Limit) and returns one past its end. Most
// coordinates have at most four decimals, up to the noise of arithmetic that 15 digits do not show;
// for these whole-number arithmetic gives the same text.
char* Write_Coordinate(char* out, double value);

// Group code and value on a line each; nothing but the section of the entities.
class DXF_Writer {
 public:
  DXF_Writer(Byte_Buffer& out, Export_Report& report);
  void Element(const Wire& wire, bool skipped);
  void End();

 private:
  // The text of the value that an axis had last: most lines begin where the one before ended.
  struct Last_Text {
    Nullable Value;
    std::size_t Length = 0;  // 0: none
    std::array<char, 32> Text;
  };
  // Absent as 0.
  void Number(const Nullable& value, int axis);

  Byte_Buffer& Out;
  Export_Report& Report;
  Indexed<Last_Text, 1, 3> Last{};
};

// Plotter units are 1016 to the inch. Moves that change Z are left out; what the pen does follows
// from the height of the others.
class HPGL_Writer {
 public:
  HPGL_Writer(Byte_Buffer& out, Export_Report& report);
  void Element(const Wire& wire, bool skipped);
  void End();

 private:
  bool Is_Up(const Wire& wire) const;

  Byte_Buffer& Out;
  Export_Report& Report;
  float Cut_Height;
  bool Compare_Unscaled;
  bool PenUp = true;
  int Commands_In_Line = 0;
  bool Line_Begun = false;
};

}  // namespace norvik
