#include "import/gerber/lines.h"

#include "core/fault.h"
#include "core/paths.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace norvik {

namespace {

void Put(const Gerber_Cut& cut, ImportLine& line) {
  line.X1 = cut.From.X;
  line.Y1 = cut.From.Y;
  line.X2 = cut.To.X;
  line.Y2 = cut.To.Y;
}

}  // namespace

Gerber_Line_Reader::Gerber_Line_Reader(const std::string& path, std::string_view fault_name)
    : Faults(fault_name) {
  if (FileExists(path)) File.emplace(path, Line_Form::Four);
}

bool Gerber_Line_Reader::Read(Gerber_Cut& cut) {
  if (!File) return false;
  for (;;) {
    bool more = true;
    const bool whole = Faults.Try([&] {
      more = File->Read(Line);
      if (!more) return;
      cut = {{Line.X1.value(), Line.Y1.value()}, {Line.X2.value(), Line.Y2.value()}};
    });
    if (whole) return more;
  }
}

Gerber_Line_Appender::Gerber_Line_Appender(const std::string& path)
    : File(path, Line_Form::Four, Line_File_Writer::Mode::Append, Line_Precision::Single) {}

void Gerber_Line_Appender::Write(const Gerber_Cut& cut) {
  Put(cut, Line);
  File.Write(Line);
}

Gerber_Line_Replacement::Gerber_Line_Replacement(const std::string& path)
    : Target(path), Neighbour(path + ".new"), File(Neighbour.Path, Line_Form::Four) {}

void Gerber_Line_Replacement::Write(const Gerber_Cut& cut) {
  Put(cut, Line);
  File.Write(Line);
}

void Gerber_Line_Replacement::Commit() {
  File.Close();
  if (std::rename(Neighbour.Path.c_str(), Target.c_str()) == 0) return;
  throw Fault(Fault_Number::Path_Access, "Cannot replace the working file " + Target + " (" +
                                             std::strerror(errno) + "). Check the working folder.");
}

}  // namespace norvik
