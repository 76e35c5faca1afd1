#include "transform/drawing_text.h"

#include "core/general_text.h"
#include "core/number_text.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace norvik {

namespace {

constexpr int Commands_A_Line = 20;

// Coordinates are read in this scale; 0 stays exactly 0.
double Plotter_Scale(double value) {
  return value * 1.016;
}
constexpr double Plotter_Units = 1000;

}  // namespace

char* Write_Coordinate(char* out, double value) {
  // A double within this part of a value with few digits is that value in 15 digits: half a unit
  // of the 15th digit is 5e-16 of the value or more.
  constexpr double noise = 3e-16, unit = 10'000, largest = 1e10;
  const double magnitude = std::abs(value);
  if (magnitude < largest) {
    const double few =
        static_cast<double>(static_cast<std::int64_t>(magnitude * unit + 0.5)) / unit;
    if (std::abs(magnitude - few) <= magnitude * noise) {
      return Print_Number(out, std::copysign(few, value));
    }
  }
  return Write_General(out, value);
}

void Byte_Buffer::Number(double value) {
  At = Write_Coordinate(At, value);
}

void Byte_Buffer::Bare_Number(double value) {
  char* const begin = At;
  char* const end = Write_Coordinate(At, value);
  char* const digits = *begin == '-' ? begin + 1 : begin;
  At = end;
  if (end - digits < 2 || digits[0] != '0' || digits[1] != '.') return;
  std::memmove(digits, digits + 1, static_cast<std::size_t>(end - digits - 1));
  --At;
}

void Byte_Buffer::Flush() {
  const auto length = static_cast<std::size_t>(At - Bytes.data());
  if (length == 0) return;
  Sink({Bytes.data(), length});
  At = Bytes.data();
}

// --- DXF -----------------------------------------------------------------------------------------

DXF_Writer::DXF_Writer(Byte_Buffer& out, Export_Report& report) : Out(out), Report(report) {
  Out.Text(" 0 \r\nSECTION\r\n 2 \r\nENTITIES\r\n");
}

void DXF_Writer::Number(const Nullable& value, int axis) {
  Last_Text& last = Last[axis];
  if (last.Length > 0 && last.Value == value) return Out.Text({last.Text.data(), last.Length});
  const char* const begin = Out.Place();
  Out.Number(value ? *value : 0.0);
  const auto length = static_cast<std::size_t>(Out.Place() - begin);
  last.Length = length <= last.Text.size() ? length : 0;
  last.Value = value;
  std::copy_n(begin, last.Length, last.Text.data());
}

void DXF_Writer::Element(const Wire& wire, bool skipped) {
  if (!wire.FeedMove || skipped) return;
  Out.Text(" 0 \r\nLINE\r\n 8 \r\n0\r\n 10 \r\n");
  Number(wire.Start[1], 1);
  Out.Text("\r\n 20 \r\n");
  Number(wire.Start[2], 2);
  Out.Text("\r\n 30 \r\n");
  Number(wire.Start[3], 3);
  Out.Text("\r\n 11 \r\n");
  Number(wire.End[1], 1);
  Out.Text("\r\n 21 \r\n");
  Number(wire.End[2], 2);
  Out.Text("\r\n 31 \r\n");
  Number(wire.End[3], 3);
  Out.Text("\r\n");
  Out.Flush_When_Full();
  ++Report.Elements;
}

void DXF_Writer::End() {
  Out.Text(" 0 \r\nENDSEC\r\n 0 \r\nEOF\r\n");
  Out.Flush();
}

// --- HPGL ----------------------------------------------------------------------------------------

HPGL_Writer::HPGL_Writer(Byte_Buffer& out, Export_Report& report)
    : Out(out),
      Report(report),
      Cut_Height(MachineSetup.Axis_Tool_Height[1]),
      Compare_Unscaled(MachineSetup.HPGL_Export_Raw_Z) {
  Out.Text("IN;PU;\r\n");
}

bool HPGL_Writer::Is_Up(const Wire& wire) const {
  const Nullable& z = wire.End[3];  // that of the start, too
  if (!z) return false;
  if (Compare_Unscaled) return static_cast<float>(*z) == Cut_Height;
  return Plotter_Scale(*z) == static_cast<double>(Cut_Height);
}

void HPGL_Writer::Element(const Wire& wire, bool skipped) {
  if (wire.FeedMove && !skipped) ++Report.Cuts;
  if (skipped || wire.Start[3] != wire.End[3]) return;
  const bool up = Is_Up(wire);
  if (!up) ++(wire.FeedMove ? Report.Cuts_Pen_Down : Report.Travels_Pen_Down);
  if (up != PenUp) {
    PenUp = up;
    Out.Text(up ? "PU" : "PD");
    Line_Begun = true;
  }
  if (!wire.End[1] || !wire.End[2]) return;
  Out.Text("PA");
  Out.Bare_Number(Plotter_Scale(*wire.End[1]) * Plotter_Units);
  Out.Text(",");
  Out.Bare_Number(Plotter_Scale(*wire.End[2]) * Plotter_Units);
  Out.Text(";");
  Line_Begun = true;
  ++Report.Elements;
  if (++Commands_In_Line > Commands_A_Line) {
    Out.Text("\r\n");
    Commands_In_Line = 0;
    Line_Begun = false;
  }
  Out.Flush_When_Full();
}

void HPGL_Writer::End() {
  if (Line_Begun) Out.Text("\r\n");
  Out.Text("PSP\r\n");
  Out.Flush();
}

}  // namespace norvik
