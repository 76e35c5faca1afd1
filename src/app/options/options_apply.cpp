// What Apply does: Save_Options_Info, the load, Display_Options_Info, and what the changes ask for.
#include "app/drive_session.h"
#include "app/gcode_form.h"
#include "app/options/options_form.h"
#include "compiler/tables/program_wire.h"
#include "compiler/text/program_text.h"
#include "control/motion/motion.h"
#include "control/safety/safety.h"
#include "control/state/cnc_controls_form.h"
#include "core/computer_settings.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/profile_file.h"
#include "core/scope.h"
#include "core/setup.h"
#include "core/setup_keys.h"
#include "platform/platform.h"
#include "plot/nist_plot.h"

#include <algorithm>
#include <optional>

namespace norvik {

namespace {

constexpr std::string_view Not_Stored =
    "Not saved: the file cannot be written. The change holds until Norvik ends.";

using Fields = std::vector<Option_Field*>;

Fields Edited_Fields() {
  Fields edited;
  for (Option_Field& field : Options_Form.Fields) {
    if (Is_Edited(field)) edited.push_back(&field);
  }
  return edited;
}

After_Change Needs_Of(const Fields& fields) {
  auto all = After_Change::Nothing;
  for (const Option_Field* field : fields) all = all | field->Row->Needed_Then;
  return all;
}

void Say_Result(std::string text, bool trouble) {
  Options_Form.Label_Result = std::move(text);
  Options_Form.Result_Is_Trouble = trouble;
}

// The first field that cannot be taken is gone to.
bool All_Can_Be_Taken() {
  int count = 0;
  for (const Option_Field& field : Options_Form.Fields) {
    if (field.Error.empty()) continue;
    if (++count == 1) Show_Option(Option_Key(field));
  }
  if (count == 0) return true;
  Platform.Beep();
  const std::string fields = count == 1 ? "One field" : std::to_string(count) + " fields";
  Say_Result(fields + " cannot be taken, so nothing is applied. What is wrong stands beside it.",
             true);
  return false;
}

// --- Another program at the file ---------------------------------------------------------------

std::string In_File_Now(const Option_Field& field) {
  return ReadSetup(field.Row->Section, Option_Key(field));
}

// Changed here and, since the window has taken it, in the file by somebody else. What this program
// itself has written since is what its memory holds.
bool Is_Disputed(const Option_Field& field) {
  if (field.Machine == nullptr) return false;
  const std::string now = In_File_Now(field);
  if (now == field.In_File) return false;
  const Setup_Key key{field.Machine, field.Index};
  return Setup_Text_After(key, now) != Setup_Text(*field.Machine, field.Index);
}

// Whose values hold. False: the operator wants to think about it.
bool Settle_Disputes() {
  Fields disputed;
  std::string names;
  for (Option_Field* field : Edited_Fields()) {
    if (!Is_Disputed(*field)) continue;
    disputed.push_back(field);
    names += (names.empty() ? "" : ", ") + Option_Key(*field);
  }
  if (disputed.empty()) return true;
  const Box_Answer answer = Platform.Message_Box(
      "Machine file",
      "Another program has changed settings of this machine file that you have changed here: " +
          names + ".\n\nYes loads theirs, No keeps yours, Cancel applies nothing.",
      Box_Buttons::Yes_No_Cancel);
  if (answer == Box_Answer::Yes) {
    for (Option_Field* field : disputed) {
      Read_Setup_Text(*field->Machine, field->Index, In_File_Now(*field));
      field->Stored = field->Text = Setup_Text(*field->Machine, field->Index);
    }
  }
  return answer == Box_Answer::Yes || answer == Box_Answer::No;
}

// --- Storing -----------------------------------------------------------------------------------

// Layer names are stored in capitals; "None" marks a free row of the table.
std::string Text_To_Store(const Option_Field& field) {
  const std::string text = Trim(field.Text);
  if (field.Row->Key != "DXF_MultiDepth_Layer_<n>") return field.Text;
  return Upper(text) == "NONE" || text.empty() ? "None" : Upper(text);
}

// The save leaves some keys to whoever changes them.
bool Write_What_No_Save_Writes(const Fields& edited) {
  return Write_Setup_Together([&] {
    for (const Option_Field* field : edited) {
      if (field->Machine == nullptr || field->Machine->Save != Save_Place::Nowhere) continue;
      WriteSetup(field->Row->Section, Option_Key(*field),
                 Setup_Text(*field->Machine, field->Index));
    }
  });
}

bool Write_Of_This_Computer(const Fields& edited) {
  bool written = true;
  for (const Option_Field* field : edited) {
    if (field->Machine != nullptr) continue;
    const auto& row = static_cast<const Computer_Row&>(*field->Row);
    written = Write_Computer_Text(row, field->Index, field->Text) && written;
  }
  return written;
}

}  // namespace

bool Save_Options_Info() {
  const Fields edited = Edited_Fields();
  for (const Option_Field* field : edited) {
    if (field->Machine == nullptr) continue;
    Change_Setup_Key({field->Machine, field->Index}, Text_To_Store(*field));
  }
  const bool saved = SaveMachineSetup() && Write_What_No_Save_Writes(edited);
  return Write_Of_This_Computer(edited) && saved;
}

namespace {

// --- Behind the load ---------------------------------------------------------------------------

struct Typed_Text {
  Option_Field* Field;
  std::string Text;
};

// Fields that the rules of the load have changed, with their notes.
int Point_Out_Changed_Values(const std::vector<Typed_Text>& typed) {
  int count = 0;
  for (const auto& [field, text] : typed) {
    if (Same_Value(*field->Row, text, field->Text)) continue;
    field->Note = "\"" + text.substr(0, 60) + "\" became \"" + field->Text + "\".";
    ++count;
  }
  return count;
}

// A table that a motion file gave is of no text and stays.
bool Has_Program_To_Compile() {
  return GCodeLineCount() > 0 && Program_Wire.Program_Origin().Kind == Table_Kind::Program;
}

void Do_What_Follows(After_Change needed) {
  const bool compiles = Needs(needed, After_Change::Recompile) && Has_Program_To_Compile();
  if (compiles) Command_Update_Click();
  if (Needs(needed, After_Change::Redraw) || compiles) Plot_Refresh();
  Display_Parameters();
  Show_Table_Notice();
  CNC_Controls_Host.Form_Changed();
}

std::string Done_Text(After_Change needed, int changed_by_rules) {
  std::string text = "Applied and saved.";
  if (changed_by_rules == 1)
    text += " One value was changed by the rules of the setup; it is marked.";
  if (changed_by_rules > 1) {
    text += " " + std::to_string(changed_by_rules) +
            " values were changed by the rules of the setup; they are marked.";
  }
  if (Needs(needed, After_Change::Reopen_Drive)) text += " Outputs and motors are off.";
  if (Needs(needed, After_Change::Restart)) text += " Part of it counts when Norvik starts again.";
  return text;
}

// The drive ends by the pins as they have been and begins by the new ones; nothing may begin a
// motion in the yields between.
bool Store_And_Load(bool reopen) {
  std::optional<Operation_Scope> held;
  if (reopen) {
    held.emplace(Operation::Edit);
    End_Drive_Session();
  }
  bool saved = false;
  Trap("Save_Options_Info", [&] { saved = Save_Options_Info(); });
  // A file that cannot be written may not be readable either; memory is then all there is.
  if (saved) LoadMachineSetup();
  if (reopen) {
    Begin_Drive_Session();
    for (auto& output : CNC_Controls.Check_Outputs) output.Value = false;
  }
  return saved;
}

bool Apply_All() {
  const Fields edited = Edited_Fields();
  const After_Change needed = Needs_Of(edited);
  std::vector<Typed_Text> typed;
  for (Option_Field* field : edited) typed.push_back({field, field->Text});
  const bool reopen = Needs(needed, After_Change::Reopen_Drive);
  const bool saved = Store_And_Load(reopen);
  Display_Options_Info();
  const int changed_by_rules = Point_Out_Changed_Values(typed);
  Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal);
  Do_What_Follows(needed);
  if (saved) {
    Say_Result(Done_Text(needed, changed_by_rules), false);
    SetStatus(1, Options_Form.Label_Result, 5);
  } else {
    Say_Result(std::string(Not_Stored), true);
    Tell(Not_Stored, 10);
  }
  if (reopen) Tell_Session_Start();
  return saved;
}

}  // namespace

bool Options_Command_Apply_Click() {
  constexpr const char* refused = "Can't change the options";
  if (Options_Form.Applying) return false;
  if (!Stopped_For(refused)) {
    Say_Result("Not while the machine moves or a run is paused.", true);
    Options_Host.Form_Changed();
    return false;
  }
  bool applied = false;
  if (All_Can_Be_Taken()) {
    Platform.Set_Mouse_Pointer(Mouse_Pointer::Busy);
    const Value_In_Scope applying(Options_Form.Applying, true);
    DoEvents();
    // The yield lets a press through that may have begun something.
    const bool goes_on = Stopped_For(refused) && Settle_Disputes();
    if (goes_on) applied = Apply_All();
    if (!goes_on) Platform.Set_Mouse_Pointer(Mouse_Pointer::Normal);
    DoEvents();
  }
  if (Options_Form.Unload_Waits) Options_Form_Unload();
  Options_Host.Form_Changed();
  return applied;
}

void Options_Command_OK_Click() {
  if (Options_Command_Apply_Click()) Options_Host.Close();
}

void Options_Command_Cancel_Click() {
  Options_Host.Close();
}

}  // namespace norvik
