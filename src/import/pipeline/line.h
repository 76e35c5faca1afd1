// line.h: the record between the foreign file and the G-code, and its file.
//
//   foreign file --reader--> line file --sort, passes--> line file --writer--> G-code
//
// A line file is plain text, one record a line with CR LF, fields separated by commas, numbers with
// a point in every region, text fields in double quotes (a quote inside is doubled), a missing
// value as #NULL#. A missing Z stays distinct from 0 all the way: the writer then prints no Z word.
//
// | form     | fields                                                            | importers    |
// |----------|-------------------------------------------------------------------|--------------|
// | Four     | X1, Y1, X2, Y2                                                    | Gerber       |
// | Ten      | X1, Y1, Z1, X2, Y2, Z2, I, J, Type, Layer                         | DXF          |
// | Thirteen | the ten, then Cut_Feed, Plunge_Feed, Pen                          | HPGL, bitmap |
//
// Line files exist on disk from the reading to the end of the import and are gone after it,
// whatever happens. Both ends run through one buffer, so that a file of any length takes constant
// memory.
#pragma once

#include "core/nullable.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace norvik {

inline constexpr std::int16_t Arc_Clockwise = 2, Arc_Counter_Clockwise = 3;

// Lengths in units of the setup once the reader is done.
struct ImportLine {
  Nullable X1, Y1, Z1;                // start; Z1 may be missing
  Nullable X2, Y2, Z2;                // end; Z2 may be missing
  Nullable I, J;                      // arc centre, absolute; missing for a straight line
  std::optional<std::int16_t> Type;   // missing: straight; 2 G02, 3 G03
  std::string Layer;                  // HPGL: the pen number
  std::string Cut_Feed, Plunge_Feed;  // IPM; empty: the start-up cut feed rate
  std::int16_t Pen = -9999;           // -9999: before the first pen selection
};

// Clockwise for counter-clockwise and back; a straight line stays one.
std::optional<std::int16_t> Reversed_Type(std::optional<std::int16_t> type);
// Swaps the ends and turns a clockwise arc counter-clockwise and back; the centre stays.
void Reverse_Line(ImportLine& line);

enum class Line_Form { Four, Ten, Thirteen };

// How the numbers of X and Y are written: as doubles, or as the singles that they were held in.
enum class Line_Precision { Double, Single };

struct File_Closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File_Handle = std::unique_ptr<std::FILE, File_Closer>;

// Appends records to a line file. A write that fails raises a file fault that names the file.
class Line_File_Writer {
 public:
  enum class Mode { Replace, Append };
  Line_File_Writer(std::string path, Line_Form form, Mode mode = Mode::Replace,
                   Line_Precision precision = Line_Precision::Double);
  // Depth passes: the Z levels are computed as doubles and written as singles.
  void Write_Z_As_Singles() { Z_Precision = Line_Precision::Single; }
  void Write(const ImportLine& line);
  // Must be called; a file that is left unclosed may lack its last records.
  void Close();

 private:
  void Flush();

  std::string Path;
  Line_Form Form;
  Line_Precision XY_Precision, Z_Precision;
  File_Handle File;
  std::string Buffer;
};

// Reads a line file from its start. Fields that a record lacks read as missing.
class Line_File_Reader {
 public:
  Line_File_Reader(const std::string& path, Line_Form form);
  // The next record; false at the end of the file. A field that is no number raises a fault, after
  // which the next call goes on with the next record.
  bool Read(ImportLine& line);
  // Part of the file read so far, 0..1.
  double Share() const;

 private:
  bool Next_Text_Line(std::string_view& text);

  Line_Form Form;
  File_Handle File;
  std::string Buffer;
  std::size_t At = 0;
  bool At_End = false;
  std::size_t Next_Read = 4096;  // grows with the file, as most are small
  std::uint64_t Bytes_Taken = 0, Bytes_Total = 0;
};

// Deletes a scratch file when the import ends, however it ends.
struct Scratch_File {
  explicit Scratch_File(std::string path) : Path(std::move(path)) {}
  ~Scratch_File() { std::remove(Path.c_str()); }
  Scratch_File(const Scratch_File&) = delete;
  Scratch_File& operator=(const Scratch_File&) = delete;
  std::string Path;
};

}  // namespace norvik
