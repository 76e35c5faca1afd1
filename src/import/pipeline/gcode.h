// gcode.h: the working G-code file as every importer prints it.
//
// The header counts too, so a file begins "N001 [Norvik Conversion]". Every move is printed by a
// member here, which also feeds the motion tally of the import report.
#pragma once

#include "core/format.h"
#include "core/gcode_lines.h"
#include "core/nullable.h"
#include "import/pipeline/line.h"
#include "import/pipeline/pipeline.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace norvik {

class GCode_File : public GCode_Lines {
 public:
  // Replaces `path`. Raises a file fault.
  explicit GCode_File(const std::string& path);

  // A move that fails (a coordinate that is no number or too large) is not printed at all and does
  // not count.
  //
  // Moves with numbers in general form. An absent Z prints no Z word. `suffix` follows the words
  // (" F12").
  void Rapid_Z(double z);
  void Rapid_XY(double x, double y);
  void Cut_Z(double z);
  void Cut_XYZ(double x, double y, Nullable z, std::string_view suffix = {});
  void Arc_XY(std::int16_t type, double x, double y, double i, double j);

  // Moves with fixed decimals, by `Format_Axis_Number`.
  void Rapid_Z_Formatted(double z);
  void Cut_Z_Formatted(double z);
  void Rapid_XY_Formatted(double x, double y);
  void Cut_XY_Formatted(double x, double y);

 private:
  void Formatted_Word(std::string_view letter, double value);

  Number_Pattern Axis_Pattern;  // of `Axis_Format` when the file was begun
  std::string Axis_Text;        // room for one number, used again for each
};

// "[Norvik Conversion]", the file name, "%", G90 with the default dwell where dwells are inserted,
// and for all but Excellon the M codes that start spindle and coolant.
void Write_Header(GCode_File& file, Import_Kind kind, std::string_view source_path);

// Ends the contour and the program. `travel` is the Z to lift to; Excellon has lifted already.
void Write_Footer(GCode_File& file, Import_Kind kind, double travel);

// The writer phase of an importer: header, `body`, footer, all into the working file. A failure is
// logged under `fault_name` and leaves no file: a program without its end never reaches the editor.
// True when the program is complete.
bool Write_Program(Import_Kind kind, std::string_view fault_name, double travel,
                   const std::function<void(GCode_File&)>& body);

// Where the record before ended, for the contour start of DXF, HPGL and bitmap.
struct Last_End {
  double X = 0, Y = 0;
  Nullable Z = 0.0;  // missing after a record without Z2
};

// True when `line` starts a new contour: X, Y or Z differs from the last end by more than
// `DXF_Line_Tolerance`; a missing Z counts as equal.
bool Starts_Contour(const ImportLine& line, const Last_End& last);
// Puts the start of `line` on the last end: X and Y always, Z where both have one.
void Snap_Start(ImportLine& line, const Last_End& last);

// Lift, travel to the start of `line`, `plunge` prints the importer's plunge line; spindle and
// dwell lines around it as the setup inserts them.
template <class Plunge>
void Write_Contour_Start(GCode_File& file, const ImportLine& line, double travel, Plunge&& plunge);

// The move that connects an arc with the end of the record before it, if it does not start there.
// `suffix` follows the words of the form with Z.
void Write_Arc_Start(GCode_File& file, const ImportLine& line, const Last_End& last,
                     std::string_view suffix = {});
void Write_Arc(GCode_File& file, const ImportLine& line);

// Coordinates of a record from a line file, rounded to 12 decimals.
void Round_Line(ImportLine& line);
// The end of `line`, for the next record.
Last_End End_Of(const ImportLine& line);

// --- Inside --------------------------------------------------------------------------------------

void Write_Contour_Travel(GCode_File& file, const ImportLine& line, double travel);
void Write_Contour_Dwell(GCode_File& file);

template <class Plunge>
void Write_Contour_Start(GCode_File& file, const ImportLine& line, double travel, Plunge&& plunge) {
  Write_Contour_Travel(file, line, travel);
  plunge();
  Write_Contour_Dwell(file);
}

}  // namespace norvik
