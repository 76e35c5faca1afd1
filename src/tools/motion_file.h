// motion_file.h: a compiled program as a file, to be run again without its text.
//
//   wire table   v1,v2,...,v32 CR LF v33,...          32 values a line
//   motion file  RecordCount CR LF v1,...,v29 CR LF v30,...
//
// A motion file (.mcd) holds the values of the wire table as one stream, spelled as they are, 29 a
// line whether or not a wire begins there, behind a first line with the count of those lines. The
// loader puts the stream back the same way; the reader of the table counts values and not lines, so
// the loaded table has the wires of before.
//
//   correction Motion_File_Any_Length   off: a stream that does not fill its last line is not saved
//                                       on:  #NULL# fills it up
//
// No wire table ends within a wire. So what stands behind the last whole wire, all of it #NULL#, is
// such a filling, and a load takes it off whatever the setup says.
#pragma once

#include "compiler/tables/value_stream.h"

#include <cstdint>
#include <functional>
#include <string>

namespace norvik {

inline constexpr std::size_t Motion_Line_Values = 29;

struct Motion_Content {
  std::int32_t Lines = 0;        // of 29 values
  std::int32_t RecordCount = 0;  // what the first line says
  std::size_t Filling = 0;       // values put on or taken off at the end, or that would have to be
};

// Called behind every hundredth line.
using Motion_Step = std::function<void()>;

// The bytes of a motion file from the values of a wire table. Raises a fault that says what to do
// where the last line is not full and the correction is off, and what the stream raises.
std::string Packed_Motion(
    Value_Stream& wires, Motion_Content& content, const Motion_Step& step = [] {});
// The bytes of a wire table from the values of a motion file: in lines of 29 values still, without
// the count and the filling. A count that is not that of the lines is left to the caller. Raises a
// fault for a first line that is no count, for a last line that is cut off, and what the stream
// raises.
std::string Unpacked_Motion(
    Value_Stream& motion, Motion_Content& content, const Motion_Step& step = [] {});

// What an operator is told of a motion file whose count is not that of its lines; empty: it is.
std::string Count_Finding(const Motion_Content& content);

// The commands of the window, with progress in panels 1 and 2. `title` is the file's name for
// messages. A failure is logged as "Save_Motion_File Error" or "Load_Motion_File Error" and told in
// a box; files and executing table then are as they were. True when it was done.
//
// Saving takes the wire table of the program from its file. Where only the correction stands
// between the operator and the file, it is offered.
bool Save_Motion_File(const std::string& title, const std::string& path);
// Loading replaces the wire table of the program and installs it as the executing table, with the
// step range over all of it. Lines that are missing by the count of the file leave a table that is
// to be looked at and not run.
bool Load_Motion_File(const std::string& title, const std::string& path);

// The window `MotionFile` only shows text: that of the motion file that was saved or loaded last.
struct MotionFile_Record {
  std::string Path;          // empty: there was none
  std::string RichTextBox1;  // its first lines
};
extern MotionFile_Record MotionFile;
// Reads the first lines into the record; why they cannot be read stands in place of them.
void MotionFile_Form_Load();

// Where the wire table of the program lies.
std::string Program_Wire_File();

}  // namespace norvik
