#include "tools/motion_file.h"

#include "compiler/compile/compile.h"
#include "compiler/state/compiler_state.h"
#include "compiler/tables/fields.h"
#include "compiler/tables/program_wire.h"
#include "compiler/tables/tables_io.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/replacement_file.h"
#include "core/setup.h"
#include "core/setup_keys.h"
#include "platform/platform.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <memory>
#include <utility>

namespace norvik {

MotionFile_Record MotionFile;

namespace {

constexpr std::int32_t Lines_A_Step = 100;
constexpr std::string_view Absent_Value = "#NULL#", Line_End = "\r\n";
constexpr const char* Save_Error = "Save_Motion_File Error";
constexpr std::size_t Wire_Values = Field_Count<Wire>;

// Values as lines of 29.
class Line_Writer {
 public:
  Line_Writer(Motion_Content& content, const Motion_Step& step) : Content(content), Step(step) {}

  void Add(const Raw_Value& value) {
    Append_Spelled(Text, value);
    End_Value();
  }
  void Fill_Up() {
    while (In_Line != 0) {
      Text += Absent_Value;
      End_Value();
      ++Content.Filling;
    }
  }
  std::size_t Values_In_Line() const { return In_Line; }
  // The lines, the last one ended whether or not it is full.
  std::string Take() {
    if (In_Line != 0) {
      Text.pop_back();
      // An empty value alone in its line would be no value at all.
      if (Text.empty() || Text.back() == '\n') Text += "\"\"";
      Text += Line_End;
    }
    return std::move(Text);
  }

 private:
  void End_Value() {
    if (++In_Line < Motion_Line_Values) {
      Text += ',';
      return;
    }
    Text += Line_End;
    In_Line = 0;
    if (Content.Lines == std::numeric_limits<std::int32_t>::max()) {
      throw Fault(Fault_Number::Overflow, "The file has more lines than a motion file can count");
    }
    if (++Content.Lines % Lines_A_Step == 0) Step();
  }

  Motion_Content& Content;
  const Motion_Step& Step;
  std::string Text;
  std::size_t In_Line = 0;
};

bool Is_Absent(const Raw_Value& value) {
  return !value.Quoted && value.Text == Absent_Value;
}

// The one place that asks the correction.
void Complete_Last_Line(Line_Writer& lines, std::size_t values, Motion_Content& content) {
  if (lines.Values_In_Line() == 0) return;
  if (!MachineSetup.Motion_File_Any_Length) {
    content.Filling = Motion_Line_Values - lines.Values_In_Line();
    throw Fault(Fault_Number::Bad_File_Data,
                "The wire table has " + std::to_string(values) +
                    " values. A motion file holds lines of 29, and the last one would not be full, "
                    "so nothing was written. The correction Motion_File_Any_Length fills it up.");
  }
  lines.Fill_Up();
}

std::int32_t Count_Of(const std::optional<Raw_Value>& value) {
  std::int32_t count = 0;
  if (value) {
    const char* last = value->Text.data() + value->Text.size();
    const auto [end, failure] = std::from_chars(value->Text.data(), last, count);
    if (failure == std::errc() && end == last && count >= 0) return count;
  }
  throw Fault(Fault_Number::Bad_File_Data,
              "This is no motion file: the first line holds no count of records.");
}

}  // namespace

std::string Packed_Motion(Value_Stream& wires, Motion_Content& content, const Motion_Step& step) {
  content = {};
  Line_Writer lines(content, step);
  std::size_t values = 0;
  for (auto value = wires.Next(); value; value = wires.Next()) {
    lines.Add(*value);
    ++values;
  }
  Complete_Last_Line(lines, values, content);
  content.RecordCount = content.Lines;
  std::string text = lines.Take();
  return text.insert(0, std::to_string(content.Lines).append(Line_End));
}

std::string Unpacked_Motion(Value_Stream& motion, Motion_Content& content,
                            const Motion_Step& step) {
  content = {};
  content.RecordCount = Count_Of(motion.Next());
  Line_Writer lines(content, step);
  std::size_t values = 0;
  // Absent values that may turn out to be the filling. They are no more than a line has, for a
  // longer row of them cannot be one.
  std::size_t held = 0;
  const auto give = [&] {
    for (; held > 0; --held) lines.Add({Absent_Value, false, false});
  };
  for (auto value = motion.Next(); value; value = motion.Next()) {
    ++values;
    if (Is_Absent(*value)) {
      if (++held < Motion_Line_Values) continue;
      lines.Add({Absent_Value, false, false});
      --held;
    } else {
      give();
      lines.Add(*value);
    }
  }
  if (values % Motion_Line_Values != 0) {
    throw Fault(Fault_Number::Bad_File_Data, "The motion file is cut off: its last line has " +
                                                 std::to_string(values % Motion_Line_Values) +
                                                 " of 29 values. Copy or save it again.");
  }
  const std::size_t behind_last_wire = values % Wire_Values;
  if (behind_last_wire <= held) {
    held -= behind_last_wire;
    content.Filling = behind_last_wire;
  }
  give();
  content.Lines = static_cast<std::int32_t>(values / Motion_Line_Values);
  return lines.Take();
}

std::string Count_Finding(const Motion_Content& content) {
  if (content.RecordCount == content.Lines) return {};
  const std::string says = "The first line of the motion file says " +
                           std::to_string(content.RecordCount) + " lines, and there are " +
                           std::to_string(content.Lines) + ".";
  return says + (content.Lines < content.RecordCount
                     ? " The rest is missing. Copy or save the file again."
                     : " All of them were taken.");
}

std::string Program_Wire_File() {
  return Join_Path(Application.Table_Folder, Wire_Table_Name);
}

namespace {

// The percentage in panel 1; the text of a percentage is made once.
class Motion_Progress {
 public:
  Motion_Progress(std::string_view verb, int from) : Verb(verb), From(from) {}

  void Show(double share) {
    const int percent = From + static_cast<int>(share * 50);
    if (percent != Shown) {
      Shown = percent;
      Text = "GCode Motion File: " + std::string(Verb) + " File " + std::to_string(percent) +
             "% completed, press ESC to cancel";
    }
    SetStatus(1, Text, -1);
    DoEvents();
  }

 private:
  std::string_view Verb;
  int From, Shown = -1;
  std::string Text;
};

class Motion_Panels {
 public:
  Motion_Panels(std::string_view title, std::string_view work) {
    SetStatus(1, title, -1);
    SetStatus(2, work, -1);
  }
  ~Motion_Panels() {
    SetStatus(1, "", -1);
    SetStatus(2, "", -1);
  }
  Motion_Panels(const Motion_Panels&) = delete;
  Motion_Panels& operator=(const Motion_Panels&) = delete;
};

double Share_Of(std::uint64_t part, std::uint64_t whole) {
  if (whole == 0) return 0;
  return std::min(1.0, static_cast<double>(part) / static_cast<double>(whole));
}

// Writes in portions, with the second half of the progress.
void Write_Portions(Replacement_File& file, std::string_view bytes, std::string_view verb) {
  constexpr std::size_t portion = 1 << 18;
  Motion_Progress progress(verb, 50);
  for (std::size_t at = 0; at < bytes.size(); at += portion) {
    file.Write(bytes.substr(at, portion));
    progress.Show(Share_Of(at, bytes.size()));
  }
}

void Save_From_Table(const std::string& path, Motion_Content& content) {
  const Motion_Panels panels("GCode Motion File: Saving File...", "Saving File");
  std::string bytes;
  {
    File_Source source(Program_Wire_File());
    Value_Stream wires(source, Program_Wire_File());
    Motion_Progress progress("Saving", 0);
    bytes = Packed_Motion(wires, content,
                          [&] { progress.Show(Share_Of(wires.Bytes_Taken(), source.Size())); });
  }
  Replacement_File file(path);
  Write_Portions(file, bytes, "Saving");
  file.Commit(Flush_To_Disk::Yes);
}

// What a table of this file is; the text beside it is known, so that another one is noticed.
Table_Origin Origin_Of(const Motion_Content& content) {
  auto sources = std::make_shared<Compile_Sources>();
  sources->Text = GCode_Program.Text;
  Table_Origin origin;
  origin.Kind = Table_Kind::Motion_File;
  origin.Whole = content.Lines >= content.RecordCount;
  origin.Sources = std::move(sources);
  return origin;
}

// The range of a run over all steps of the file; the next compile brings it back to the text.
void Range_To_Motion_File() {
  Machine.StartingStep = 1;
  Machine.EndingStep = Last_Program_Step();
  Compile_Status.CurrentStep = 1;
  Compile_Status.CompileDone = true;  // the wire file is complete: it can be estimated
  GCode_Program.Range_Waits = true;
}

void Load_Into_Table(const std::string& path, Motion_Content& content) {
  const Motion_Panels panels("GCode Motion File: Loading File...", "Loading File");
  const Operation_Scope open(Operation::Open);
  File_Source source(path);
  Value_Stream motion(source, path);
  Motion_Progress progress("Loading", 0);
  const std::string bytes = Unpacked_Motion(
      motion, content, [&] { progress.Show(Share_Of(motion.Bytes_Taken(), source.Size())); });
  Table<Wire> wires = Parse_Wire_Table(bytes, path, Wire_Table_Limit);
  Replacement_File file(Program_Wire_File());
  Write_Portions(file, bytes, "Loading");
  Program_Wire.Install(std::move(wires), Origin_Of(content));
  file.Commit(Flush_To_Disk::No);
  Compile_Tables.Wire_Path = Program_Wire_File();
  Range_To_Motion_File();
  Program_Wire_Host.Installed();
}

void Tell(const char* name, const std::string& title, const Fault& fault) {
  Log_Fault(name, fault);
  Platform.Message_Box(title, fault.Description, Box_Buttons::Ok);
}

void Switch_Correction_On() {
  const auto key = Find_Setup_Key("Corrections", "Motion_File_Any_Length");
  Change_Setup_Key(*key, "True");
  WriteSetup("Corrections", "Motion_File_Any_Length", Setup_Text(*key->Row, key->Index));
}

// The failure that the correction answers. True when the operator has switched it on.
bool Takes_Correction(const std::string& title, const Fault& fault) {
  Log_Fault(Save_Error, fault);
  const std::string question =
      fault.Description +
      "\n\nSwitch it on and save the file with empty values at its end? Norvik takes them off "
      "when it loads the file.";
  if (Platform.Message_Box(title, question, Box_Buttons::Yes_No) != Box_Answer::Yes) return false;
  Switch_Correction_On();
  return true;
}

}  // namespace

bool Save_Motion_File(const std::string& title, const std::string& path) {
  Motion_Content content;
  bool again = false;
  const bool saved = Trap_With(
      [&](const Fault& fault) {
        if (content.Filling > 0 && !MachineSetup.Motion_File_Any_Length) {
          again = Takes_Correction(title, fault);
        } else {
          Tell(Save_Error, title, fault);
        }
      },
      [&] { Save_From_Table(path, content); });
  if (!saved) return again && Save_Motion_File(title, path);
  MotionFile.Path = path;
  return true;
}

bool Load_Motion_File(const std::string& title, const std::string& path) {
  Motion_Content content;
  const bool loaded =
      Trap_With([&](const Fault& fault) { Tell("Load_Motion_File Error", title, fault); },
                [&] { Load_Into_Table(path, content); });
  if (!loaded) return false;
  MotionFile.Path = path;
  if (const std::string finding = Count_Finding(content); !finding.empty()) {
    AddMessage(finding);
    Platform.Message_Box(title, finding, Box_Buttons::Ok);
  }
  return true;
}

void MotionFile_Form_Load() {
  constexpr std::size_t most = 100'000;
  std::string& text = MotionFile.RichTextBox1;
  text = "No motion file has been saved or opened yet.";
  if (MotionFile.Path.empty()) return;
  Trap_With([&](const Fault& fault) { text = fault.Description; },
            [&] {
              text.clear();
              File_Source source(MotionFile.Path);
              while (text.size() < most && source.Fill(text)) {
              }
              if (text.size() > most) text.erase(text.rfind('\n', most) + 1).append("...");
            });
}

}  // namespace norvik
