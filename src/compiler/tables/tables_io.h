// tables_io.h: the two tables as files.
//
// One record a line, fields separated by commas, a line ended by CR LF:
//
//   7,"1",1,0,0,#NULL#,#NULL#,#NULL#,#NULL#,1.5,0,...,#TRUE#,0,0,10,10,10,10,"G1 X1.5",...
//
//   numbers   shortest text that reads back equal, a point in every region, no exponent
//   texts     between double quotes; a quote inside is doubled
//   booleans  #TRUE# and #FALSE#
//   absent    #NULL#
//
// One list of fields for each record (fields.h) drives both directions, so that a field stands
// in one place.
//
// The readers take what other systems write: LF or CR alone as line end, ".5", "1E-05", a blank
// around a value, a number between quotes, "True" for #TRUE#, an empty field for #NULL#. A quote
// inside a text that was not doubled belongs to the text unless a comma or a line end follows it.
// Values are counted, not lines: a record may run over several lines, as the motion file's do.
#pragma once

#include "compiler/state/tables.h"

#include <memory>
#include <string>

namespace norvik {

// Writes a table record by record through one buffer, into a temporary neighbour that takes the
// place of `path` in `Finish`: until then, and when anything fails, the file of before stands.
//
//   Table_Writer<Wire> file(path);
//   for (const Wire& wire : wires) file.Add(wire);
//   file.Finish();
//
// Constructor, `Add` and `Finish` raise a file fault whose text says what is wrong and what to do
// (no such folder, no right, disk full), `Add` also a type fault for a number that is none. Texts
// need not outlive `Add`. A writer that goes without `Finish` leaves nothing behind.
template <class Record>
class Table_Writer {
 public:
  explicit Table_Writer(const std::string& path);
  ~Table_Writer();
  Table_Writer(const Table_Writer&) = delete;
  Table_Writer& operator=(const Table_Writer&) = delete;

  void Add(const Record& record);
  void Finish();

 private:
  struct Work;
  std::unique_ptr<Work> Inner;
};
extern template class Table_Writer<LineArc>;
extern template class Table_Writer<Wire>;

// A whole table at once; faults as above.
void Write_LineArc_Table(const std::string& path, const Table<LineArc>& table);
void Write_Wire_Table(const std::string& path, const Table<Wire>& table);

// A whole table; no more than `limit` records are read, the rest of the file is not looked at.
// Raises a file fault for a file that cannot be read, and one with file, line and field for a value
// that cannot stand there or a record that the file's end cuts off.
inline constexpr std::size_t No_Record_Limit = static_cast<std::size_t>(-1);
Table<LineArc> Read_LineArc_Table(const std::string& path, std::size_t limit = No_Record_Limit);
Table<Wire> Read_Wire_Table(const std::string& path, std::size_t limit = No_Record_Limit);
// The same from bytes at hand; `name` stands for the file in fault texts.
Table<LineArc> Parse_LineArc_Table(std::string_view bytes, std::string_view name,
                                   std::size_t limit = No_Record_Limit);
Table<Wire> Parse_Wire_Table(std::string_view bytes, std::string_view name,
                             std::size_t limit = No_Record_Limit);

}  // namespace norvik
