#include "import/pipeline/pipeline.h"

#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/working_name.h"
#include "import/pipeline/report.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>
#include <utility>

namespace norvik {

namespace {

constexpr int Status_Seconds = 5;
constexpr std::int64_t Faults_Logged_Singly = 10;
constexpr std::size_t Read_Chunk = 1 << 18;

constexpr std::array<Import_Kind_Row, 5> Rows{{
    {Import_Kind::DXF, "DXF", "Importing DXF File ", "All Files (*.*)|*.*|DXF Files (*.dxf)|*.dxf",
     "DXF_File_Source_Directory", "DXF_Source_File_Name", "NORVIK 4  "},
    {Import_Kind::HPGL, "HPGL", "Importing HPGL File ",
     "All Files (*.*)|*.*|PLT Files (*.plt)|*.plt", "HPGL_File_Source_Directory",
     "HPGL_Source_File_Name", "Norvik 4  "},
    {Import_Kind::Excellon, "Excellon", "Importing NC File ",
     "All Files (*.*)|*.*|Excellon Files (*.nc)|*.nc", "Excellon_File_Source_Directory",
     "Excellon_Source_File_Name", "NORVIK 4  "},
    {Import_Kind::Gerber, "Gerber", "Importing Gerber File ",
     "All Files (*.*)|*.*|Gerber Files (*.gb*)|*.gb*", "Gerber_File_Source_Directory",
     "Gerber_Source_File_Name", "NORVIK 4  "},
    {Import_Kind::Bitmap, "Bitmap", "Importing Bitmap File ", "*.jpg;*.bmp;*.gif",
     "BMap_File_Source_Directory", "BMap_Source_File_Name", "NORVIK 4  "},
}};

// The working files of one import in a folder of their own, so that imports of several programs
// never write into each other's. Files that were given a place outside the working folder keep it.
class Import_Folder {
 public:
  Import_Folder() : Before(Paths_Of_Now()) {
    if (Application.AppDirectory.empty()) return;
    Folder.emplace(Application.AppDirectory);
    for (std::string* path : Working_Paths()) {
      const std::string name = PathFileName(*path);
      if (*path == Join_Path(Application.AppDirectory, name))
        *path = Join_Path(Folder->Path(), name);
    }
  }
  ~Import_Folder() {
    std::size_t i = 0;
    for (std::string* path : Working_Paths()) *path = std::move(Before[i++]);
  }
  Import_Folder(const Import_Folder&) = delete;
  Import_Folder& operator=(const Import_Folder&) = delete;

 private:
  static std::array<std::string*, 5> Working_Paths() {
    return {&Application.Temporary_GCode, &Application.DXF_Scratch, &Application.HPGL_Scratch,
            &Application.Bitmap_Scratch, &Application.Gerber_Scratch};
  }
  static std::vector<std::string> Paths_Of_Now() {
    std::vector<std::string> paths;
    for (const std::string* path : Working_Paths()) paths.push_back(*path);
    return paths;
  }

  std::vector<std::string> Before;
  std::optional<Working_Folder> Folder;
};

}  // namespace

Import_Host_Operations Import_Host;

const Import_Kind_Row& Import_Row(Import_Kind kind) {
  return Rows[static_cast<std::size_t>(kind)];
}

bool Run_Import(Import_Kind kind, const std::string& path, const std::string& scratch,
                const std::function<bool()>& steps) {
  if (!FileExists(path)) {
    Platform.Beep();
    return false;
  }
  Application.EscFlag = false;
  Start_Import_Report(kind, path);
  AddMessage(std::string(Import_Row(kind).Message) + path);

  const std::string fault_name = std::string(Import_Row(kind).Name) + " Import Error";
  std::optional<Import_Folder> folder;
  bool written = false;
  if (Trap(fault_name, [&] { folder.emplace(); })) {
    const Scratch_File scratch_file(scratch);
    Trap(fault_name, [&] { written = steps(); });
  } else {
    Report_Note("The working files could not be made; nothing was opened. See the error log.");
  }
  Finish_Import_Report(Application.EscFlag, written);
  if (written) Import_Host.Open_GCode(Application.Temporary_GCode);
  Application.EscFlag = false;
  Show_Import_Report();
  return true;
}

std::string Import_Sequence_Text(std::int64_t n) {
  std::string text = std::to_string(n);
  if (text.size() < 3) text.insert(0, 3 - text.size(), '0');
  text += ' ';
  return text;
}

std::string File_Name_Part(std::string_view path) {
  return PathFileName(path);
}

std::string_view Without_Blanks(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool Is_Same_Layer(std::string_view a, std::string_view b) {
  return Upper(a) == Upper(b);
}

void Import_Status(std::string_view text) {
  SetStatus(1, text, Status_Seconds);
}

void Clear_Import_Status() {
  SetStatus(1, "", -1);
}

void Import_Progress(std::string_view before, double share, std::string_view after,
                     std::string_view pattern) {
  char percent[Formatted_Number_Limit];
  const char* end =
      Write_Number(percent, share * 100, Number_Pattern(pattern), Application.DecimalSeparator);
  std::string text(before);
  text.append(percent, static_cast<std::size_t>(end - percent));
  text += after;
  SetStatus(1, text, Status_Seconds);
}

void Yield_Counter::Yield() {
  DoEvents();
}

bool Pass_Rounds::Next(double share) {
  constexpr int records_per_progress = 3;
  if (Application.EscFlag) return false;
  if (--Until_Progress <= 0) {
    Until_Progress = records_per_progress;
    Import_Progress("Add Passes: Adding Passes... ", share, "% Completed, press ESC to cancel");
  }
  Yields.Round();
  return true;
}

void Import_Faults::Take_Current() noexcept {
  ++Seen;
  if (Seen <= Faults_Logged_Singly) Log_Current_Fault(Name);
}

Import_Faults::~Import_Faults() {
  if (Seen <= Faults_Logged_Singly) return;
  Trap(Name, [&] {
    ErrorLogWrite(std::string(Name) + " # " + std::to_string(Seen - Faults_Logged_Singly) +
                  " more of this kind");
  });
}

Text_Source::Text_Source(const std::string& path) {
  std::error_code failure;
  if (!std::filesystem::is_regular_file(path, failure)) {
    throw Fault(Fault_Number::Path_Access, path + " is not a file that can be imported");
  }
  File.reset(std::fopen(path.c_str(), "rb"));
  if (!File) {
    throw Fault(errno == EACCES ? Fault_Number::Permission_Denied : Fault_Number::File_Not_Found,
                "Cannot open " + path + " (" + std::strerror(errno) + ")");
  }
  std::fseek(File.get(), 0, SEEK_END);
  Bytes_Total = static_cast<std::uint64_t>(std::max(std::ftell(File.get()), 0L));
  std::rewind(File.get());
  Buffer.resize(Bytes_Total == 0 ? Read_Chunk
                                 : std::min<std::uint64_t>(Bytes_Total + 1, Read_Chunk));
}

double Text_Source::Share() const {
  return Bytes_Total == 0
             ? 1.0
             : std::min(1.0, static_cast<double>(Taken()) / static_cast<double>(Bytes_Total));
}

bool Text_Source::Fill() {
  Bytes_Before += Held;
  At = 0;
  Held = std::fread(Buffer.data(), 1, Buffer.size(), File.get());
  return Held > 0;
}

bool Text_Source::Next_Line(std::string_view& line) {
  Long_Line.clear();
  bool any = false, cut = false, line_ended = false;
  for (;;) {
    if (At == Held && !Fill()) break;
    any = true;
    const auto first = Buffer.begin() + static_cast<std::ptrdiff_t>(At);
    const auto last = Buffer.begin() + static_cast<std::ptrdiff_t>(Held);
    const auto stop = std::find_if(first, last, [](char c) { return c == '\n' || c == '\r'; });
    const std::string_view piece(&*first, static_cast<std::size_t>(stop - first));
    At += piece.size();
    const bool ended = stop != last;
    if (ended && Long_Line.empty() && piece.size() <= Line_Limit) {
      line = piece;
    } else {
      const std::size_t room = Line_Limit - Long_Line.size();
      cut = cut || piece.size() > room;
      Long_Line += piece.substr(0, room);
      line = Long_Line;
    }
    if (!ended) continue;
    line_ended = true;
    const bool carriage_return = *stop == '\r';
    ++At;
    if (carriage_return) {
      if (At == Held) {  // the line feed may stand in the next piece, which overwrites this one
        Long_Line.assign(line);
        line = Long_Line;
        if (!Fill()) break;
      }
      if (Buffer[At] == '\n') ++At;
    }
    break;
  }
  if (!any) return false;
  ++Lines;
  Line_Ended = line_ended;
  if (cut) ++Cut;
  return true;
}

}  // namespace norvik
