#include "import/hpgl/reader.h"

#include "core/application.h"
#include "core/geometry.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "import/hpgl/full_reader.h"
#include "import/hpgl/import.h"
#include "import/hpgl/numbers.h"
#include "import/hpgl/pens.h"
#include "import/pipeline/numbers.h"
#include "import/pipeline/pipeline.h"
#include "import/pipeline/report.h"
#include "import/pipeline/units.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <numbers>

namespace norvik {

namespace {

constexpr std::size_t Longest_Command = 1 << 24;
constexpr char Text_Terminator = 3;

bool Is_Letter(int c) {
  return c >= 'A' && c <= 'Z';
}

// What numbers mean.
enum class Mode { None, Absolute, Relative, Arc_Absolute, Arc_Relative, Select_Pen };

struct Mnemonic {
  std::string_view Letters;
  Mode Sets;
  std::optional<bool> Pen_Down;
};
constexpr std::array<Mnemonic, 7> Mnemonics{{
    {"PU", Mode::Absolute, false},
    {"PD", Mode::Absolute, true},
    {"PA", Mode::Absolute, {}},
    {"PR", Mode::Relative, {}},
    {"AA", Mode::Arc_Absolute, {}},
    {"AR", Mode::Arc_Relative, {}},
    {"SP", Mode::Select_Pen, {}},
}};

// Commands that set the plotter up by pairs of numbers: scales, corners, sizes of letters and the
// like, never places of the pen. All other commands that are not known leave their numbers to the
// mode in force.
bool Sets_Up(std::string_view letters) {
  constexpr std::array<std::string_view, 29> commands{
      "LT", "SI", "IP", "SC", "RO", "IW", "SL", "DR", "DI", "SR", "SS", "SA", "CS", "CA", "ES",
      "LO", "DT", "PT", "PW", "WU", "FT", "UL", "TL", "PS", "IR", "SM", "PM", "AC", "CT"};
  return std::find(commands.begin(), commands.end(), letters) != commands.end();
}

// Commands one by one, with the first letter of the next carried over.
class Command_Source {
 public:
  explicit Command_Source(const std::string& path) : Source(path) {}

  // The next command in capitals, blanks at its ends cut off; blank ones are none. False at the end
  // of the file and on ESC.
  bool Next(std::string& command);
  bool Ended_By_Semicolon() const { return By_Semicolon; }
  // Characters that did not fit into the longest command.
  std::int64_t Dropped() const { return Characters_Dropped; }
  // How often digits were read as one number although a line end stands between them.
  std::int64_t Joined() const { return Numbers_Joined; }
  // The character that ends a label was among the command's.
  bool Ended_A_Text() const { return Saw_Terminator; }

 private:
  bool Build(std::string& command);
  void Count_Character();

  Text_Source Source;
  char Carried = 0;  // 0: nothing
  int Before = 0;    // character read last
  bool By_Semicolon = false, Saw_Terminator = false;
  std::int64_t Characters_Dropped = 0, Numbers_Joined = 0;
  int Until_Progress = 1000;
};

void Command_Source::Count_Character() {
  constexpr int characters_per_progress = 1000;
  if (--Until_Progress > 0) return;
  Until_Progress = characters_per_progress;
  Import_Progress("HPGL Conversion: ", Source.Share(), " % Completed", "###");
  DoEvents();
}

// False when neither the carried letter nor the file gave anything.
bool Command_Source::Build(std::string& command) {
  command.clear();
  By_Semicolon = Saw_Terminator = false;
  if (Carried != 0) command += Carried;
  Carried = 0;
  bool any = !command.empty();
  for (;;) {
    if (Application.EscFlag) return false;
    int c = Source.Next_Char();
    if (c < 0) return any;
    any = true;
    Count_Character();
    if (c >= 'a' && c <= 'z') c += 'A' - 'a';
    const bool starts_next = Is_Letter(c) && !Is_Letter(Before);
    if (c >= '0' && c <= '9' && Before < 32 && !command.empty() &&
        std::isdigit(static_cast<unsigned char>(command.back())) != 0) {
      ++Numbers_Joined;
    }
    Before = c;
    if (starts_next) {
      Carried = static_cast<char>(c);
      return true;
    }
    if (c == Text_Terminator) Saw_Terminator = true;
    if (c < 32 || c > 127) continue;
    if (command.size() < Longest_Command) {
      command += static_cast<char>(c);
    } else {
      ++Characters_Dropped;
    }
    if (c == ';') {
      By_Semicolon = true;
      return true;
    }
  }
}

bool Command_Source::Next(std::string& command) {
  while (Build(command)) {
    command = Trim(command);
    if (!command.empty() && command != ";") return true;
  }
  return false;
}

// True for the commands whose numbers are points.
bool Moves_Pen(std::string_view command) {
  return std::ranges::any_of(Mnemonics, [&](const Mnemonic& each) {
    return each.Sets != Mode::Select_Pen && command.starts_with(each.Letters);
  });
}

class Reader {
 public:
  Reader(const std::string& path, const std::string& line_file)
      : Commands(path), File(line_file, Line_Form::Thirteen) {
    Record.Layer = "0";
    Record.Cut_Feed = Record.Plunge_Feed = General_Text(MachineSetup.Axis_Feed_Rate_Cut);
  }
  void Load();

 private:
  void Set_Mode(const std::string& command);
  void Count_Command(std::string_view command, bool known);
  void Count_Run_Together(std::string_view command);
  void Read_Parameters(const std::string& command);
  void Stroke_To(double x, double y);
  void Arc(const HPGL_Numbers& numbers, std::size_t first, double x, double y);
  void Write(double x, double y);

  Command_Source Commands;
  Line_File_Writer File;
  Import_Faults Faults{HPGL_Fault_Name};
  const double Factor = Unit_Factor(Unit_Inches);

  double Last_X = 0, Last_Y = 0;
  bool Pen_Down = false;
  Mode Now = Mode::None;
  ImportLine Record;  // pen fields stay from record to record
  Nullable Arc_I, Arc_J;
  std::optional<std::int16_t> Arc_Type;  // of the last arc
  bool In_Text = false;                  // behind a label command, up to its end character or ";"
  bool Lost_To_All_Pairs = false;        // the correction would have brought something
  bool In_Encoded = false;               // behind a PE, up to its semicolon
};

void Reader::Load() {
  std::string command;
  while (Commands.Next(command)) {
    Set_Mode(command);
    const bool passed_over = !In_Text && !In_Encoded && Sets_Up(command.substr(0, 2));
    if (!passed_over && !Faults.Try([&] { Read_Parameters(command); })) {
      Count_Skipped("commands with a number that cannot be read");
    }
    if (Commands.Ended_By_Semicolon()) In_Text = In_Encoded = false;
    if (Commands.Ended_A_Text()) In_Text = false;
  }
  File.Close();
  Report_Unit(Unit_Inches);
  if (Lost_To_All_Pairs) {
    Report_Answer("HPGL_All_Pairs", "Commands of the file are not read as a plotter reads them.");
  }
  if (Commands.Dropped() > 0) {
    Report_Note("A command is longer than 16 million characters; its end was not read.");
  }
  if (Commands.Joined() > 0) {
    Report_Note("Numbers that only a line end parts were read as one, " +
                std::to_string(Commands.Joined()) + " times. Put commas between them.");
  }
}

void Reader::Set_Mode(const std::string& command) {
  const std::string_view letters = std::string_view(command).substr(0, 2);
  bool known = false;
  for (const Mnemonic& mnemonic : Mnemonics) {
    if (!Contains_Word(mnemonic.Letters, letters)) continue;
    known = true;
    Now = mnemonic.Sets;
    if (mnemonic.Pen_Down) Pen_Down = *mnemonic.Pen_Down;
  }
  Count_Command(command, known);
}

void Reader::Count_Command(std::string_view command, bool known) {
  const std::string_view letters = command.substr(0, 2);
  if (In_Encoded) {
    Count_Skipped("words of encoded strokes");
  } else if (In_Text) {
    Count_Skipped("words of text");
  } else if (known) {
    Count_Read(letters);
  } else {
    Count_Skipped(letters);
    constexpr std::array<std::string_view, 15> read_in_full{
        "SC", "IP", "RO", "CI", "EA", "ER", "RA", "RR", "EW", "WG", "PE", "PM", "EP", "FP", "AT"};
    Lost_To_All_Pairs = Lost_To_All_Pairs || std::ranges::count(read_in_full, letters) > 0;
    In_Text = letters == "LB";
    In_Encoded = letters == "PE";
    if (In_Encoded) {
      Report_Note(
          "The file holds encoded strokes (PE), which are not read. Have it plotted as plain HPGL "
          "and import again.");
    }
    return;
  }
  Count_Run_Together(command);
}

// Only the first of commands that run together acts. A PA behind PU, PD or PA says nothing new.
void Reader::Count_Run_Together(std::string_view command) {
  std::string_view before = command.substr(0, 2);
  for (std::size_t n = 2; !In_Text && !In_Encoded && n + 2 <= command.size(); n += 2) {
    const std::string_view letters = command.substr(n, 2);
    if (!Is_Letter(letters[0]) || !Is_Letter(letters[1])) return;
    const bool repeats =
        letters == before || (letters == "PA" && (before == "PU" || before == "PD"));
    before = letters;
    if (repeats) continue;
    Lost_To_All_Pairs = true;
    Count_Skipped(std::string(letters) + " run together with " + std::string(command.substr(0, 2)));
    if (letters == "PU" || letters == "PD") {
      Report_Note(
          "Of commands that run together without a number or semicolon between them only the first "
          "is read. Have the file written with semicolons and import again.");
    }
  }
}

void Reader::Read_Parameters(const std::string& command) {
  const HPGL_Numbers numbers(command);
  std::size_t p = 1;
  for (;;) {
    if (Application.EscFlag) return;
    Nullable x = numbers.Coordinate(p), y = numbers.Coordinate(p + 1);
    const std::size_t first = p;
    p += 2;
    if (Now == Mode::Select_Pen && x && *x > 0 && MachineSetup.HPGL_Multiple_Pen_Enable) {
      constexpr double pens_per_unit = 1000;
      const std::int32_t pen = To_Int32(*x * pens_per_unit);
      if (pen >= 10) {
        Report_Note("A pen number of 10 or more selects nothing.");
        return;
      }
      Take_HPGL_Pen(Record, To_Int16(pen), Faults);
    }
    if (!x || !y) {
      // Behind an arc the fourth of its numbers stands alone.
      const bool of_an_arc = first > 1 && (Now == Mode::Arc_Absolute || Now == Mode::Arc_Relative);
      if (x && Moves_Pen(command) && !of_an_arc) Count_Skipped("numbers without a second one");
      Now = Mode::None;
      return;
    }
    x = *x * Factor;
    y = *y * Factor;
    if (In_Text || In_Encoded) {
      Report_Note(
          "Numbers inside texts or encoded strokes were read as coordinates. Look at the plot "
          "before the program is run.");
    }
    if (!Pen_Down) {
      Last_X = *x;
      Last_Y = *y;
    } else if (Now == Mode::Arc_Absolute || Now == Mode::Arc_Relative) {
      Arc(numbers, first, *x, *y);
      p = first + 3;
    } else {
      Stroke_To(*x, *y);
    }
    if (!Commands.Ended_By_Semicolon()) continue;
    constexpr std::size_t arc_numbers = 4;  // centre, sweep, chord angle
    const bool arc = Pen_Down && p == first + 3;
    const std::size_t used = arc ? first - 1 + arc_numbers : p - 1;
    if (numbers.Count() > used) {
      Lost_To_All_Pairs = true;
      Count_Skipped("pairs behind the first",
                    static_cast<std::int64_t>(numbers.Count() - used + 1) / 2);
    }
    return;
  }
}

void Reader::Write(double x, double y) {
  Record.X1 = Last_X;
  Record.Y1 = Last_Y;
  Record.X2 = x;
  Record.Y2 = y;
  File.Write(Record);
  Last_X = x;
  Last_Y = y;
}

void Reader::Stroke_To(double x, double y) {
  const bool plain = Now == Mode::Absolute || Now == Mode::Relative;
  Record.I = plain ? Nullable() : Arc_I;
  Record.J = plain ? Nullable() : Arc_J;
  Record.Type = plain ? std::nullopt : Arc_Type;
  if (Now == Mode::Absolute) {
    Write(x, y);
  } else {
    Write(Last_X + x, Last_Y + y);
  }
}

// The sweep is positive counter-clockwise. The record's centre is absolute, but a clockwise arc
// under incremental centres holds its end minus the centre, as the compiler of such setups expects
// it here.
void Reader::Arc(const HPGL_Numbers& numbers, std::size_t first, double x, double y) {
  constexpr double full_turn = 360, pi = std::numbers::pi;
  const double cx = Now == Mode::Arc_Relative ? Last_X + x : x;
  const double cy = Now == Mode::Arc_Relative ? Last_Y + y : y;
  const double sweep = numbers.Angle(first + 2).value_or(full_turn);
  const double dx = Last_X - cx, dy = Last_Y - cy;
  const double radius = std::sqrt(dx * dx + dy * dy);
  const double bearing = std::atan2(dx, dy);  // from +Y, clockwise
  const double start = NormalizeAngle(pi / 2 - bearing);
  const double end = NormalizeAngle(sweep * (pi / 180) + start);
  double end_x = std::cos(end) * radius + cx, end_y = std::sin(end) * radius + cy;
  if (std::fmod(sweep, full_turn) == 0) {  // a full turn ends where it began, not next to it
    end_x = Last_X;
    end_y = Last_Y;
  }
  Arc_Type = sweep > 0 ? Arc_Counter_Clockwise : Arc_Clockwise;
  const bool from_end = !(sweep > 0) && MachineSetup.GC_IJ_Incremental;
  Arc_I = from_end ? end_x - cx : cx;
  Arc_J = from_end ? end_y - cy : cy;
  Record.I = Arc_I;
  Record.J = Arc_J;
  Record.Type = Arc_Type;
  Write(end_x, end_y);
}

}  // namespace

void HPGL_Load(const std::string& path, const std::string& line_file) {
  Import_Status("HPGL Conversion: Loading File...");
  const bool read = Trap(HPGL_Fault_Name, [&] {
    if (MachineSetup.HPGL_All_Pairs) {
      HPGL_Load_Full(path, line_file);
    } else {
      Reader(path, line_file).Load();
    }
  });
  if (!read) Report_Unreadable();
}

}  // namespace norvik
