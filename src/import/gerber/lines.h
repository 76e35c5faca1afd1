// lines.h: the line file of the artwork import: X1, Y1, X2, Y2 in each record, CR LF.
#pragma once

#include "import/gerber/geometry.h"
#include "import/pipeline/line.h"
#include "import/pipeline/pipeline.h"

#include <optional>
#include <string>
#include <string_view>

namespace norvik {

inline constexpr std::string_view Gerber_Fault_Name = "Get_Gerber_DataFile_Error";

// A straight cut.
struct Gerber_Cut {
  Plane_Point From, To;
};

// A record that cannot be read is logged under `fault_name` and left out.
class Gerber_Line_Reader {
 public:
  // No file reads as an empty one.
  Gerber_Line_Reader(const std::string& path, std::string_view fault_name);
  // False at the end of the file.
  bool Read(Gerber_Cut& cut);

 private:
  Import_Faults Faults;
  std::optional<Line_File_Reader> File;
  ImportLine Line;
};

// Appends cuts whose points are singles. Failures raise a file fault; `Close` must be called.
class Gerber_Line_Appender {
 public:
  explicit Gerber_Line_Appender(const std::string& path);
  void Write(const Gerber_Cut& cut);
  void Close() { File.Close(); }

 private:
  Line_File_Writer File;
  ImportLine Line;
};

// Writes a line file anew, in place of the old one once it is whole. Failures raise a file fault
// and leave the old one.
class Gerber_Line_Replacement {
 public:
  explicit Gerber_Line_Replacement(const std::string& path);
  void Write(const Gerber_Cut& cut);
  void Commit();

 private:
  std::string Target;
  Scratch_File Neighbour;
  Line_File_Writer File;
  ImportLine Line;
};

}  // namespace norvik
