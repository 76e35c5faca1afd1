// exports.h: the compiled path as a drawing: DXF (R12, LINE entities only) and HPGL.
//
// Both read a wire table, not the program's text. Numbers have a point in every region. A drawing
// that cannot be written whole leaves the file of before.
//
// The records that are read: as many as the program has moves. Records of the spindle, of coolant
// and of pauses stand among them and are read too, so that as many moves at the end stay out; what
// that costs is reported, and the correction `Export_All_Records` reads all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

enum class Export_Kind : std::uint8_t { DXF, HPGL };

struct Export_Report {
  bool Written = false;
  std::string Failure;           // why not, with what to do; empty when ended by ESC
  std::size_t Elements = 0;      // lines of the DXF, "PA" commands of the HPGL
  std::size_t Missing_Cuts = 0;  // cutting moves behind the last record that was read
  std::int32_t First_Missing_Line = 0;
  // HPGL: how the pen went. `Cuts` counts those that change Z, too.
  std::size_t Cuts = 0, Cuts_Pen_Down = 0, Travels_Pen_Down = 0;
};

// Writes the drawing to `path`. A fault is logged under "Save_DXF_File_Error" or
// "Save_HPGL_File_Error". The HPGL export ends with its message box. ESC ends an export.
Export_Report Save_DXF_File(const std::string& path, const std::string& wire_table);
Export_Report Save_HPGL_File(const std::string& path, const std::string& wire_table);
// The same to any place that takes bytes; `name` stands for it in the status text.
Export_Report Export_Drawing(Export_Kind kind, const std::string& name,
                             const std::string& wire_table,
                             const std::function<void(std::string_view bytes)>& write);

// What an operator should know about the drawing, a sentence each; empty: nothing.
std::vector<std::string> Texts_Of(const Export_Report& report);

}  // namespace norvik
