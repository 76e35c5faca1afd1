#include "transform/drawing_text.h"

#include "core/general_text.h"
#include "core/setup.h"

#include <array>

namespace norvik {

namespace {

constexpr int Commands_A_Line = 20;

// Coordinates are read in this scale; 0 stays exactly 0.
double Plotter_Scale(double value) {
  return value * 1.016;
}
constexpr double Plotter_Units = 1000;

}  // namespace

void Byte_Buffer::Number(const Nullable& value) {
  std::array<char, General_Text_Limit> text;
  char* const end = Write_General(text.data(), value ? *value : 0.0);
  Bytes.append(text.data(), static_cast<std::size_t>(end - text.data()));
}

void Byte_Buffer::Bare_Number(double value) {
  std::array<char, General_Text_Limit> text;
  char* const end = Write_General(text.data(), value);
  char* begin = text.data();
  const bool negative = *begin == '-';
  if (negative) ++begin;
  if (end - begin > 1 && begin[0] == '0' && begin[1] == '.') ++begin;
  if (negative) Bytes += '-';
  Bytes.append(begin, static_cast<std::size_t>(end - begin));
}

void Byte_Buffer::Flush() {
  if (Bytes.empty()) return;
  Sink(Bytes);
  Bytes.clear();
}

// --- DXF -----------------------------------------------------------------------------------------

DXF_Writer::DXF_Writer(Byte_Buffer& out, Export_Report& report) : Out(out), Report(report) {
  Out.Text(" 0 \r\nSECTION\r\n 2 \r\nENTITIES\r\n");
}

void DXF_Writer::Element(const Wire& wire, bool skipped) {
  if (!wire.FeedMove || skipped) return;
  Out.Text(" 0 \r\nLINE\r\n 8 \r\n0\r\n 10 \r\n");
  Out.Number(wire.Start[1]);
  Out.Text("\r\n 20 \r\n");
  Out.Number(wire.Start[2]);
  Out.Text("\r\n 30 \r\n");
  Out.Number(wire.Start[3]);
  Out.Text("\r\n 11 \r\n");
  Out.Number(wire.End[1]);
  Out.Text("\r\n 21 \r\n");
  Out.Number(wire.End[2]);
  Out.Text("\r\n 31 \r\n");
  Out.Number(wire.End[3]);
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
