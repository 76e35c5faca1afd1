#include "import/pipeline/report.h"

#include "core/axes.h"
#include "core/corrections.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "import/pipeline/file_unit.h"
#include "import/pipeline/numbers.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace norvik {

Import_Report_State Import_Report;

namespace {

constexpr std::size_t Most_Kinds = 100, Longest_Kind = 60, Most_Notes = 20, Most_Names = 12;

// Figures in a report are for reading: four decimals at most.
std::string Figure(double value) {
  if (!std::isfinite(value)) return "beyond all bounds";
  return General_Text(std::nearbyint(value * 1e4) / 1e4);
}

// A name from a foreign file as it can stand in a message.
std::string Printable(std::string_view name) {
  std::string text;
  for (const char c : name.substr(0, Longest_Kind)) {
    text += c >= ' ' && c <= '~' ? c : '?';
  }
  return text.empty() ? "(no name)" : text;
}

Import_Report_State::Kind_Count& Kind_Counter(std::string_view kind) {
  auto& kinds = Import_Report.Kinds;
  if (const auto known = kinds.find(kind); known != kinds.end()) return known->second;
  const std::string name = kinds.size() < Most_Kinds ? Printable(kind) : "other";
  return kinds[name];
}

std::string Joined(const std::vector<std::string>& items) {
  std::string text;
  for (std::size_t n = 0; n < items.size() && n < Most_Names; ++n) {
    if (n > 0) text += ", ";
    text += Printable(items[n]);
  }
  if (items.size() > Most_Names)
    text += ", and " + std::to_string(items.size() - Most_Names) + " more";
  return text;
}

void Add_Counts(std::vector<std::string>& lines) {
  std::string read, skipped;
  const auto put = [](std::string& to, const std::string& name, std::int64_t count) {
    if (count == 0) return;
    to += (to.empty() ? "" : ", ") + name + " " + std::to_string(count);
  };
  for (const auto& [name, counts] : Import_Report.Kinds) {
    put(read, name, counts.Read);
    put(skipped, name, counts.Skipped);
  }
  lines.push_back("Read: " + (read.empty() ? "nothing" : read));
  if (!skipped.empty()) lines.push_back("Not read: " + skipped);
}

std::string Range_Text(char axis, const Axis_Range& range) {
  return std::string(1, axis) + " " + Figure(*range.From) + " to " + Figure(*range.To);
}

void Add_Motion(std::vector<std::string>& lines) {
  const Motion_Tally& motion = Import_Report.Motion;
  std::string extents;
  for (int axis = 0; axis < 3; ++axis) {
    if (!motion.Cut[axis].From) continue;
    extents += (extents.empty() ? "" : ", ") + Range_Text(Axis_Letter(axis + 1), motion.Cut[axis]);
  }
  lines.push_back(extents.empty() ? "Cutting extents: nothing is cut"
                                  : "Cutting extents: " + extents);
  lines.push_back("Cut length " + Figure(motion.Cut_Length) + ", travel length " +
                  Figure(motion.Travel_Length) + ", lifts " + std::to_string(motion.Lifts));
}

// The table lies from 0 to its length, or around 0 when the plot centres it.
void Add_Table_Fit(std::vector<std::string>& lines) {
  if (Nothing_Arrived()) return;
  constexpr double allowance = 1e-6;
  const Motion_Tally& motion = Import_Report.Motion;
  std::string outside;
  for (int axis = 0; axis < 2; ++axis) {
    Axis_Range all = motion.Cut[axis];
    for (const auto& end : {motion.Travel[axis].From, motion.Travel[axis].To}) {
      if (end) all.Take(*end);
    }
    if (!all.From) continue;
    const double length = MachineSetup.Axis_Depth[axis + 1];
    const double low = MachineSetup.Plot_Centered ? -length / 2 : 0, high = low + length;
    if (*all.From >= low - allowance && *all.To <= high + allowance) continue;
    outside += (outside.empty() ? "" : "; ") + Range_Text(Axis_Letter(axis + 1), all) + " (table " +
               Figure(low) + " to " + Figure(high) + ")";
  }
  lines.push_back(outside.empty() ? "Everything lies on the table"
                                  : "Outside the table: " + outside);
}

std::string Reason_For_Nothing(const Import_Report_State& report) {
  bool read = false, skipped = false;
  for (const auto& [name, counts] : report.Kinds) {
    read = read || counts.Read > 0;
    skipped = skipped || counts.Skipped > 0;
  }
  if (read) return "what was read of it makes no cutting move. Look at the notes below.";
  if (skipped) return "none of what it holds can be read. \"Not read\" below says what that is.";
  return "it holds nothing that this import knows. Is it a file of this kind? A program of G-code "
         "needs no import: File > Open takes it.";
}

// How the import ended, when it did not end well; empty otherwise.
std::string Ending(const Import_Report_State& report) {
  if (report.Cancelled && report.Written) {
    return "Cancelled by ESC: the program is incomplete. Import the file again before it is run.";
  }
  if (report.Cancelled)
    return "Cancelled: nothing was imported, the program is the one from before";
  if (!report.Written) {
    return "No program was made, the program is the one from before. The error log says why.";
  }
  if (Nothing_Arrived()) return "Nothing of the file is cut: " + Reason_For_Nothing(report);
  return "";
}

}  // namespace

// --- Motion ------------------------------------------------------------------------------------

void Motion_Tally::Rapid(Nullable x, Nullable y, Nullable z) {
  const double to_x = x.value_or(X), to_y = y.value_or(Y);
  const double rise = z && Z ? *z - *Z : 0;
  Travel_Length += std::hypot(to_x - X, to_y - Y, rise);
  if (rise > 0) ++Lifts;
  X = to_x;
  Y = to_y;
  if (x) Travel[0].Take(X);
  if (y) Travel[1].Take(Y);
  if (z) Z = z;
}

void Motion_Tally::Cut_To(Nullable x, Nullable y, Nullable z) {
  const double to_x = x.value_or(X), to_y = y.value_or(Y);
  const double rise = z && Z ? *z - *Z : 0;
  Cut_Length += std::hypot(to_x - X, to_y - Y, rise);
  for (const auto& [px, py] : {std::pair(X, Y), std::pair(to_x, to_y)}) {
    Cut[0].Take(px);
    Cut[1].Take(py);
  }
  X = to_x;
  Y = to_y;
  if (z) Z = z;
  if (Z) Cut[2].Take(*Z);
  if (!Z) Cuts_Before_Z = true;
}

void Motion_Tally::Arc_To(bool clockwise, double x, double y, double i, double j) {
  ++Arcs;
  if (!Z) Cuts_Before_Z = true;
  constexpr double turn = 2 * std::numbers::pi;
  // The centre is the candidate that lies equally far from both ends.
  double cx = i, cy = j, best = -1;
  for (const auto& [px, py] : {std::pair(i, j), std::pair(x - i, y - j), std::pair(X + i, Y + j)}) {
    const double error = std::abs(std::hypot(X - px, Y - py) - std::hypot(x - px, y - py));
    if (best < 0 || error < best * 0.5 - 1e-6) {
      best = error;
      cx = px;
      cy = py;
    }
  }
  const double radius = std::hypot(x - cx, y - cy);
  double from = std::atan2(Y - cy, X - cx), to = std::atan2(y - cy, x - cx);
  if (clockwise) std::swap(from, to);
  double sweep = to - from;
  if (sweep <= 1e-9) sweep += turn;
  Cut_Length += radius * sweep;
  // The outermost points at 0, 90, 180 and 270 degrees that the arc passes.
  for (int quarter = -2; quarter <= 6; ++quarter) {
    const double angle = quarter * turn / 4;
    if (angle <= from || angle >= from + sweep) continue;
    Cut[0].Take(cx + radius * std::cos(angle));
    Cut[1].Take(cy + radius * std::sin(angle));
  }
  for (const auto& [px, py] : {std::pair(X, Y), std::pair(x, y)}) {
    Cut[0].Take(px);
    Cut[1].Take(py);
  }
  if (Z) Cut[2].Take(*Z);
  X = x;
  Y = y;
}

// --- Report ------------------------------------------------------------------------------------

void Start_Import_Report(Import_Kind kind, const std::string& path) {
  Import_Report = {};
  Import_Report.Kind = kind;
  Import_Report.Source = path;
}

std::string Words_About_Both_Sizes() {
  const auto size_of = [](double factor) {
    const auto& cut = Import_Report.Motion.Cut;
    const auto length = [&](const Axis_Range& range) {
      return range.From ? Figure((*range.To - *range.From) * factor) : "0";
    };
    return length(cut[0]) + " by " + length(cut[1]) + " ";
  };
  const File_Unit here = Unit_Of_Setup(), other = Other_Unit();
  return "Its numbers taken as " + std::string(here.Name) + ", what is cut is " + size_of(1) +
         std::string(here.Name) + " large; taken as " + std::string(other.Name) + ", " +
         size_of(other.Millimetres / here.Millimetres) + std::string(here.Name) + ".";
}

void Finish_Import_Report(bool stopped, bool written) {
  Import_Report.Cancelled = Import_Report.Cancelled || stopped;
  Import_Report.Written = written;
  if (Import_Report.Motion.Arcs > 0 && MachineSetup.GC_IJ_Incremental) {
    Report_Note(
        "Arc centres in this program are absolute, but the setup reads I and J as incremental. "
        "Switch GC_IJ_Incremental off before it is run.");
  }
  if (Import_Report.Unit_Unknown && MachineSetup.Import_Convert_Units && !Nothing_Arrived()) {
    Report_Note(Words_About_Both_Sizes());
  }
  if (Import_Report.Motion.Cuts_Before_Z) {
    Report_Note(
        "The drawing begins at X0 Y0, so that no travel and no plunge stand before its first cut: "
        "it "
        "runs at the height where the tool is. Write them in, or move the drawing.");
  }
}

bool Nothing_Arrived() {
  return !Import_Report.Motion.Cut[0].From && !Import_Report.Motion.Cut[2].From;
}

void Count_Read(std::string_view kind, std::int64_t count) {
  Kind_Counter(kind).Read += count;
}

void Count_Skipped(std::string_view kind, std::int64_t count) {
  Kind_Counter(kind).Skipped += count;
}

void Report_Note(std::string_view text) {
  auto& notes = Import_Report.Notes;
  if (notes.size() < Most_Notes && std::find(notes.begin(), notes.end(), text) == notes.end()) {
    notes.emplace_back(text);
  }
}

void Report_Answer(std::string_view correction, std::string_view text) {
  Report_Note(std::string(text) + " The correction " + std::string(correction) + " answers this.");
  auto& answers = Import_Report.Answers;
  if (std::find(answers.begin(), answers.end(), correction) == answers.end()) {
    answers.emplace_back(correction);
  }
}

void Report_Unreadable() {
  Report_Note(
      "The file could not be read to its end; the program is incomplete. See the error log.");
}

void Report_Cut_Lines() {
  Report_Note("The file has text lines of unusual length; they were read up to their " +
              std::to_string(Text_Source::Line_Limit) + "th character.");
}

void Report_Incomplete_Passes() {
  Report_Note(
      "The depth passes could not be written; the program is incomplete. See the error log.");
}

std::vector<std::string> Import_Report_Lines() {
  const Import_Report_State& report = Import_Report;
  std::vector<std::string> lines;
  lines.push_back("Import report: " + PathFileName(report.Source) + " (" +
                  std::string(Import_Row(report.Kind).Name) + ")");
  const std::string ending = Ending(report);
  if (!ending.empty()) lines.push_back(ending);
  if (report.Cancelled && !report.Written) return lines;
  const std::string unit = MachineSetup.UnitsofMeasurement == 1 ? "millimetres" : "inches";
  lines.push_back("Units: " + unit + " of the setup" +
                  (report.Format.empty() ? "" : ", " + report.Format));
  Add_Counts(lines);
  if (!report.Layers.empty()) {
    lines.push_back("Layers: " + std::to_string(report.Layers.size()) + " (" +
                    Joined(report.Layers) + ")");
  }
  if (!report.Tools.empty()) {
    lines.push_back("Tools: " + std::to_string(report.Tools.size()) + " (" + Joined(report.Tools) +
                    ")");
  }
  Add_Motion(lines);
  Add_Table_Fit(lines);
  for (const std::string& note : report.Notes) lines.push_back("Note: " + note);
  if (std::string corrections = Corrections_Line(); !corrections.empty()) {
    lines.push_back(std::move(corrections));
  }
  return lines;
}

void Show_Import_Report() {
  const std::vector<std::string> lines = Import_Report_Lines();
  // The list shows the newest message first.
  for (auto line = lines.rbegin(); line != lines.rend(); ++line) AddMessage(*line);
  // An importer that was cancelled in its window has said so itself.
  const bool told = Import_Report.Cancelled && !Import_Report.Written;
  const std::string ending = Ending(Import_Report);
  if (!ending.empty() && !told) SetStatus(1, ending, 10);
  Import_Host.Show_Report(lines);
}

}  // namespace norvik
