#include "transform/exports.h"

#include "compiler/tables/tables_io.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/replacement_file.h"
#include "core/setup.h"
#include "platform/platform.h"
#include "transform/drawing_text.h"
#include "transform/wire_walk.h"

#include <string>

namespace norvik {

namespace {

constexpr std::size_t Records_Per_Yield = 20'000;

struct Busy_Pointer {
  Busy_Pointer() { Platform.Set_Mouse_Pointer(Mouse_Pointer::Busy); }
  ~Busy_Pointer() { Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal); }
  Busy_Pointer(const Busy_Pointer&) = delete;
  Busy_Pointer& operator=(const Busy_Pointer&) = delete;
};

// How many records are read: the count of the moves, unless all are wanted.
std::size_t Records_To_Read(const Table<Wire>& table) {
  if (MachineSetup.Export_All_Records) return table.Rows.size();
  std::size_t moves = 0;
  for (const Wire& wire : table.Rows) moves += wire.Motion == 1 ? 1 : 0;
  return moves;
}

// False: ended by ESC.
template <class Writer>
bool Write_All(const Table<Wire>& table, const Byte_Sink& sink, Export_Report& report) {
  Byte_Buffer buffer(sink);
  Writer writer(buffer, report);
  const std::size_t limit = Records_To_Read(table);
  std::size_t since_yield = 0;
  bool escaped = false;
  Walk_Wires(table, 0, limit, [&](const Wire& wire, bool skipped) {
    writer.Element(wire, skipped);
    if (++since_yield < Records_Per_Yield) return true;
    since_yield = 0;
    DoEvents();
    escaped = Application.EscFlag;
    return !escaped;
  });
  if (escaped) {
    Application.EscFlag = false;
    return false;
  }
  writer.End();
  Walk_Wires(table, limit, table.Rows.size(), [&](const Wire& wire, bool skipped) {
    if (!wire.FeedMove || skipped) return true;
    if (report.Missing_Cuts++ == 0) report.First_Missing_Line = wire.Step;
    return true;
  });
  return true;
}

// Raises a file fault.
Export_Report Draw(Export_Kind kind, const std::string& name, const std::string& wire_table,
                   const Byte_Sink& sink) {
  Export_Report report;
  const Busy_Pointer pointer;
  SetStatus(1, (kind == Export_Kind::DXF ? "Exporting DXF File " : "Exporting HPGL File ") + name,
            5);
  DoEvents();
  const Table<Wire> table = Read_Wire_Table(wire_table);
  report.Written = kind == Export_Kind::DXF ? Write_All<DXF_Writer>(table, sink, report)
                                            : Write_All<HPGL_Writer>(table, sink, report);
  return report;
}

Export_Report Save(Export_Kind kind, std::string_view fault_word, const std::string& path,
                   const std::string& wire_table) {
  Export_Report report;
  Trap_With(
      [&](const Fault& fault) {
        Log_Fault(fault_word, fault);
        report = {};
        report.Failure = fault.Description;
      },
      [&] {
        Replacement_File file(path);
        report = Draw(kind, path, wire_table, [&](std::string_view bytes) { file.Write(bytes); });
        if (report.Written) file.Commit(Flush_To_Disk::No);
      });
  return report;
}

}  // namespace

Export_Report Save_DXF_File(const std::string& path, const std::string& wire_table) {
  return Save(Export_Kind::DXF, "Save_DXF_File_Error", path, wire_table);
}

Export_Report Save_HPGL_File(const std::string& path, const std::string& wire_table) {
  Export_Report report = Save(Export_Kind::HPGL, "Save_HPGL_File_Error", path, wire_table);
  if (!report.Written) return report;
  std::string text = "HPGL Export complete.";
  for (const std::string& more : Texts_Of(report)) text += "\n\n" + more;
  Platform.Message_Box("Norvik", text, Box_Buttons::Ok);
  return report;
}

Export_Report Export_Drawing(Export_Kind kind, const std::string& name,
                             const std::string& wire_table,
                             const std::function<void(std::string_view bytes)>& write) {
  return Draw(kind, name, wire_table, write);
}

std::vector<std::string> Texts_Of(const Export_Report& report) {
  std::vector<std::string> texts;
  const auto moves = [](std::size_t count) {
    return std::to_string(count) + (count == 1 ? " move" : " moves");
  };
  if (report.Missing_Cuts > 0) {
    texts.push_back("The drawing lacks " + moves(report.Missing_Cuts) + " that cut, from line " +
                    std::to_string(report.First_Missing_Line) +
                    " on: the export reads as many records as the program has moves. "
                    "Export_All_Records (section Corrections) exports them all.");
  }
  if (report.Cuts > 0 && report.Cuts_Pen_Down == 0) {
    texts.push_back("The pen is never down on the " + moves(report.Cuts) +
                    " that cut: they lie at the normal cut depth or change Z. HPGL_Export_Raw_Z "
                    "(section Corrections) chooses which Z is compared with that depth.");
  }
  if (report.Travels_Pen_Down > 0) {
    texts.push_back("The pen is down on " + moves(report.Travels_Pen_Down) +
                    " that travel: the drawing shows them like cuts.");
  }
  return texts;
}

}  // namespace norvik
