// pipeline.h: the road that every importer takes, and what its readers and loops share.
//
//   Import_DXF_File(path) ... -> Run_Import: beep if missing, clear EscFlag, message, report
//     reader    Text_Source -> table or line file
//     sort      reorders
//     passes    line file, once for each depth
//     writer    GCode_File -> Application.Temporary_GCode
//   -> line file deleted -> Import_Host.Open_GCode -> EscFlag cleared, report shown
//
// ESC at any place stops the phase in progress at once; the phases behind it find the flag set and
// stop as well, so that what exists is written with header and footer: a valid program.
//
// A failure inside a phase goes to the error log under the phase's name and the import goes on with
// the next statement (`Import_Faults`).
#pragma once

#include "import/pipeline/line.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik {

enum class Import_Kind : std::uint8_t { DXF, HPGL, Excellon, Gerber, Bitmap };

// What differs from importer to importer in menus, messages and reports.
struct Import_Kind_Row {
  Import_Kind Kind;
  std::string_view Name;           // "DXF"
  std::string_view Message;        // "Importing DXF File "
  std::string_view Dialog_Filter;  // of the menu's file dialog; the second entry is selected
  std::string_view Directory_Key;  // pointer file, section General
  std::string_view Name_Key;
  std::string_view Caption;  // main caption in front of the file name
};
const Import_Kind_Row& Import_Row(Import_Kind kind);

// What the importers ask of the rooms above. Each does nothing by default.
struct Import_Host_Operations {
  // Opens the finished working file as the user would open it; refuses while the machine runs.
  std::function<void(const std::string& path)> Open_GCode = [](const std::string&) {};
  // Shows the window `DXF_Import_Layers` without blocking; the record is filled.
  std::function<void()> Show_DXF_Layers = [] {};
  // Shows the window `GerberLayerSelection` and returns when it is closed; the record is filled.
  // Absent: all layers are taken.
  std::function<void()> Select_Gerber_Layers;
  // The report lines of a finished import, from the first to the last, after they have been added
  // to the message list.
  std::function<void(const std::vector<std::string>& lines)> Show_Report =
      [](const std::vector<std::string>&) {};
};
extern Import_Host_Operations Import_Host;

// Runs one import: a missing file only beeps and gives false. Otherwise EscFlag is cleared, the
// message logged, `steps` run, the line file `scratch` deleted (empty: none), the G-code opened,
// EscFlag cleared and the report shown. `steps` gives false when there is nothing to open: it was
// cancelled in a window, or the G-code could not be written.
bool Run_Import(Import_Kind kind, const std::string& path, const std::string& scratch,
                const std::function<bool()>& steps);

// --- Texts -------------------------------------------------------------------------------------

// "001 ": at least three digits and a blank.
std::string Import_Sequence_Text(std::int64_t n);
// Behind the last separator.
std::string File_Name_Part(std::string_view path);
// Without blanks and tabs at both ends.
std::string_view Without_Blanks(std::string_view text);
// Equal after upper-casing both.
bool Is_Same_Layer(std::string_view a, std::string_view b);

// --- Loops -------------------------------------------------------------------------------------

// Status panel 1 with the phase text; stays five seconds unless refreshed.
void Import_Status(std::string_view text);
void Clear_Import_Status();

// "before 12.50after" in panel 1, `share` of 0..1 as percent by `pattern`. Refreshes at once.
void Import_Progress(std::string_view before, double share, std::string_view after,
                     std::string_view pattern = "###.00");

// Counts rounds and yields to the event queue at every `Every`-th.
struct Yield_Counter {
  explicit Yield_Counter(std::int32_t every) : Every(every) {}
  void Round() {
    if (++Count < Every) return;
    Count = 0;
    Yield();
  }
  std::int32_t Every, Count = 0;

 private:
  static void Yield();
};

// The rounds of an add-passes step: progress at every third record, a yield at every 500th.
struct Pass_Rounds {
  // False on ESC. `share` is the part of the pass that is done.
  bool Next(double share);

 private:
  Yield_Counter Yields{500};
  int Until_Progress = 0;
};

// Failures inside one phase. The first few are logged one by one under the phase's name; a broken
// file of a million lines does not make a million log lines: the rest is counted and the sum logged
// when the phase ends.
class Import_Faults {
 public:
  explicit Import_Faults(std::string_view name) : Name(name) {}
  ~Import_Faults();
  Import_Faults(const Import_Faults&) = delete;
  Import_Faults& operator=(const Import_Faults&) = delete;

  // Runs `statement`; false when it failed.
  template <class Statement>
  bool Try(Statement&& statement) noexcept {
    try {
      statement();
      return true;
    } catch (...) {
      Take_Current();
      return false;
    }
  }
  std::int64_t Count() const { return Seen; }

 private:
  void Take_Current() noexcept;

  std::string_view Name;
  std::int64_t Seen = 0;
};

// --- Reading foreign files ---------------------------------------------------------------------

// A foreign file as text lines or as single characters, read in pieces so that a file of any size
// takes constant memory. Lines end with CR LF, LF or CR; a last line without an end counts. A line
// longer than Line_Limit is cut there (no value of any format is that long); the report counts it.
class Text_Source {
 public:
  static constexpr std::size_t Line_Limit = 1 << 16;

  // Raises a file fault when the path is no regular file or cannot be read.
  explicit Text_Source(const std::string& path);

  // The view lasts until the next call. False at the end of the file.
  bool Next_Line(std::string_view& line);
  // The next byte, -1 at the end of the file.
  int Next_Char() {
    if (At == Held && !Fill()) return -1;
    return static_cast<unsigned char>(Buffer[At++]);
  }

  std::uint64_t Size() const { return Bytes_Total; }
  std::uint64_t Taken() const { return Bytes_Before + At; }
  double Share() const;
  std::int64_t Line_Number() const { return Lines; }
  std::int64_t Lines_Cut() const { return Cut; }
  // False when the last line read was ended by the end of the file.
  bool Last_Line_Ended() const { return Line_Ended; }

 private:
  bool Fill();

  File_Handle File;
  std::string Buffer, Long_Line;
  std::size_t At = 0, Held = 0;
  std::uint64_t Bytes_Before = 0, Bytes_Total = 0;
  std::int64_t Lines = 0, Cut = 0;
  bool Line_Ended = true;
};

}  // namespace norvik
