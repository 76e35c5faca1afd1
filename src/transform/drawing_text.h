// drawing_text.h: the two formats of the exports, record by record.
#pragma once

#include "compiler/state/tables.h"
#include "transform/exports.h"

#include <functional>
#include <string>
#include <string_view>

namespace norvik {

using Byte_Sink = std::function<void(std::string_view bytes)>;

// Collects bytes, so that a sink is not called for every word.
class Byte_Buffer {
 public:
  explicit Byte_Buffer(const Byte_Sink& sink) : Sink(sink) { Bytes.reserve(Limit + Room); }

  void Text(std::string_view text) { Bytes.append(text); }
  // In general form (core/general_text.h), absent as 0.
  void Number(const Nullable& value);
  // As `Number`, without the zero in front of a point.
  void Bare_Number(double value);
  // At the end of a record.
  void Flush_When_Full() {
    if (Bytes.size() >= Limit) Flush();
  }
  void Flush();

 private:
  static constexpr std::size_t Limit = 1U << 16, Room = 1U << 12;

  const Byte_Sink& Sink;
  std::string Bytes;
};

// Group code and value on a line each; nothing but the section of the entities.
class DXF_Writer {
 public:
  DXF_Writer(Byte_Buffer& out, Export_Report& report);
  void Element(const Wire& wire, bool skipped);
  void End();

 private:
  Byte_Buffer& Out;
  Export_Report& Report;
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
