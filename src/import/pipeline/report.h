// report.h: what an import read, what it left out, and what the machine will do with it.
//
// A drawing that comes in short of its splines, or a drill file read with the wrong number format,
// looks fine until material is spoiled. So each import ends with a report in the message list:
//
//   Import report: PART.DXF (DXF)
//   Units: inches, coordinates rounded by 00.0000
//   Read: LINE 12, ARC 3
//   Not read: INSERT 2, SPLINE 1
//   Layers: 2 (CUT, ENGRAVE)
//   Cutting extents: X 0 to 4.5, Y -1 to 3, Z -0.1 to 0
//   Cut length 37.5, travel length 12.25, lifts 6
//   Outside the table: Y from -1 (table 0 to 10)
//
// Readers count as they go; `GCode_File` feeds the motion tally with every line that it prints, so
// the figures are those of the program and not of the drawing. Lengths in units of the setup.
#pragma once

#include "core/nullable.h"
#include "import/pipeline/pipeline.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

// From..To of one axis; absent until something was seen.
struct Axis_Range {
  std::optional<double> From, To;
  void Take(double value) {
    if (!From || value < *From) From = value;
    if (!To || value > *To) To = value;
  }
};

// Follows the tool along the printed moves.
struct Motion_Tally {
  double X = 0, Y = 0;
  Nullable Z;            // absent until the first Z word
  Axis_Range Cut[3];     // X, Y, Z of all cutting moves
  Axis_Range Travel[2];  // X, Y of all rapid moves
  double Cut_Length = 0, Travel_Length = 0;
  std::int64_t Lifts = 0;  // rapid moves upwards in Z
  std::int64_t Arcs = 0;
  bool Cuts_Before_Z = false;  // a cutting move in X or Y stands before the first Z word

  // An absent axis does not move.
  void Rapid(Nullable x, Nullable y, Nullable z);
  void Cut_To(Nullable x, Nullable y, Nullable z);
  // `i`, `j` as printed: the absolute centre, or an offset where only that makes a circle.
  void Arc_To(bool clockwise, double x, double y, double i, double j);
};

struct Import_Report_State {
  Import_Kind Kind = Import_Kind::DXF;
  std::string Source;  // full path
  std::string Format;  // units and number format assumed; empty: those of the setup
  struct Kind_Count {
    std::int64_t Read = 0, Skipped = 0;
  };
  std::map<std::string, Kind_Count, std::less<>> Kinds;
  std::vector<std::string> Layers, Tools;
  std::vector<std::string> Notes;    // each one line; what the operator should look at
  std::vector<std::string> Answers;  // keys of the corrections that notes offer
  Motion_Tally Motion;
  bool Unit_Unknown = false;  // the file names no unit, and nobody has said which
  bool Cancelled = false;     // by ESC, or in a window that the import opened
  bool Written = true;        // false: there is no new program
};
extern Import_Report_State Import_Report;

// Begins a new report.
void Start_Import_Report(Import_Kind kind, const std::string& path);
// `stopped`: ESC ended a phase; `written`: there is a program to open.
void Finish_Import_Report(bool stopped, bool written);

// How large what is cut is with the numbers of the file taken in either unit.
std::string Words_About_Both_Sizes();

// True when the program that was made cuts nothing: of the drawing nothing has arrived.
bool Nothing_Arrived();

// Counts entities or commands by kind. Names come from the file: they are cut to a short printable
// text, and after the first hundred kinds the rest counts as "other".
void Count_Read(std::string_view kind, std::int64_t count = 1);
void Count_Skipped(std::string_view kind, std::int64_t count = 1);
void Report_Note(std::string_view text);
// A note on something that a correction answers, which is named behind it.
void Report_Answer(std::string_view correction, std::string_view text);
// The file to import exists and could not be read to its end.
void Report_Unreadable();
// Text lines were longer than `Text_Source` takes.
void Report_Cut_Lines();
// The line file could not be written to its end.
void Report_Incomplete_Passes();

std::vector<std::string> Import_Report_Lines();
// Adds the lines to the message list, the last one first, so that they read from the top down, and
// hands them to `Import_Host.Show_Report`.
void Show_Import_Report();

}  // namespace norvik
