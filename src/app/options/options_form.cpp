#include "app/options/options_form.h"

#include "app/options/option_pages.h"
#include "control/state/control_texts.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/operation.h"
#include "core/paths.h"
#include "core/profile_file.h"
#include "core/setup.h"
#include "core/setup_rows.h"
#include "drive/priority.h"

#include <algorithm>
#include <optional>

namespace norvik {

Options_Form_Record Options_Form;
Options_Host_Operations Options_Host;

namespace {

// While one of these stands, machine file and pointer file are read once and not for every key.
struct Files_At_Hand {
  Files_At_Hand() {
    Hold(Machine, Application.MachineFile);
    Hold(Pointer, Pointer_File());
  }
  std::optional<Profile_Session> Machine, Pointer;

 private:
  // A file that cannot be read reads as empty, key by key.
  static void Hold(std::optional<Profile_Session>& session, const std::string& path) {
    if (path.empty()) return;
    Trap_With([](const Fault&) {}, [&] { session.emplace(path, Profile_Use::Reading); });
  }
};

std::string Names_Of(After_Change need) {
  constexpr std::size_t most_named = 4;
  std::string names;
  std::size_t count = 0;
  for (const Option_Field& field : Options_Form.Fields) {
    if (!Is_Edited(field) || !Needs(field.Row->Needed_Then, need)) continue;
    if (++count > most_named) continue;
    names += (names.empty() ? "" : ", ") + Setting_Label(*field.Row, field.Index);
  }
  if (count > most_named) names += " and " + std::to_string(count - most_named) + " more";
  return names;
}

// What an Apply would do besides storing.
void Say_Consequences() {
  std::string& said = Options_Form.Label_Consequences;
  said.clear();
  const auto say = [&said](After_Change need, std::string_view before, std::string_view behind) {
    const std::string names = Names_Of(need);
    if (names.empty()) return;
    said += (said.empty() ? "" : "\n") + std::string(before) + names + std::string(behind);
  };
  say(After_Change::Reopen_Drive, "Apply opens the drive again, outputs and motors go off: ", ".");
  say(After_Change::Recompile, "Apply compiles the program again: ", ".");
  say(After_Change::Redraw, "Apply draws the plot again: ", ".");
  say(After_Change::Restart, "Counts when Norvik starts again: ", ".");
}

// Heard at once, as a trial; the stored one comes back unless it is applied.
void Try_Priority(const Option_Field& field) {
  const auto level = Try_Number(field.Text);
  if (!level || !field.Error.empty() || Anything_Moves()) return;
  Set_Application_Priority(static_cast<int>(*level));
}

bool Is_Priority(const Option_Field& field) {
  return field.Row->Key == "Application_Priority";
}

}  // namespace

void Options_Form_Load() {
  Options_Form.Unload_Waits = false;
  if (Options_Form.Applying) return;
  const std::string page = Options_Form.Page, key = Options_Form.Shown_Key;
  const Files_At_Hand files;
  Options_Form = {};
  for (const Setting_Row* row : Option_Rows()) {
    const Index_Span entries = Offered_Entries(*row);
    for (int index = entries.First; index <= entries.Last; ++index) {
      Options_Form.Fields.push_back(Make_Option_Field(*row, index));
    }
  }
  Options_Form.Page = page.empty() ? std::string(Option_Pages().front().Name) : page;
  Options_Form.Shown_Key = key;
}

void Options_Form_Unload() {
  Options_Form.Unload_Waits = Options_Form.Applying;
  if (Options_Form.Applying) return;
  for (const Option_Field& field : Options_Form.Fields) {
    const bool tried = Is_Priority(field) && Is_Edited(field) && !Anything_Moves();
    if (tried) Set_Application_Priority(MachineSetup.Application_Priority);
  }
  Options_Form = {};
}

Option_Field* Find_Option(std::string_view key) {
  const auto point = key.find('.');
  const std::string wanted = Upper(point == std::string_view::npos ? key : key.substr(point + 1));
  for (Option_Field& field : Options_Form.Fields) {
    if (Upper(Option_Key(field)) == wanted) return &field;
  }
  return nullptr;
}

bool Show_Option(std::string_view key_or_page) {
  // A page that is laid out takes the time of many pulses.
  if (Anything_Moves()) {
    Tell(control_text::Not_While_Moving, 5);
    return false;
  }
  const bool was_empty = Options_Form.Fields.empty();
  if (was_empty) Options_Form_Load();
  const auto is_named = [&](const Option_Page& page) { return page.Name == key_or_page; };
  const Option_Field* field = Find_Option(key_or_page);
  const bool is_page = std::ranges::any_of(Option_Pages(), is_named);
  if (field != nullptr) {
    Options_Form.Page = Page_Of_Group(field->Row->Group).Name;
    Options_Form.Shown_Key = Option_Key(*field);
  } else if (is_page) {
    Options_Form.Page = key_or_page;
    Options_Form.Shown_Key.clear();
  }
  if (field == nullptr && !is_page) return false;
  Options_Host.Show();
  Options_Host.Go_To_Place();
  return true;
}

void Option_Change(Option_Field& field, std::string_view text) {
  if (!field.Locked.empty()) return;
  Take_Typed(field, text);
  if (Is_Priority(field)) Try_Priority(field);
  Say_Consequences();
  Options_Form.Label_Result.clear();
  Options_Host.Form_Changed();
}

void Option_Reset(Option_Field& field) {
  Option_Change(field, field.Default);
}

void Choose_Corrections(bool recommended) {
  for (Option_Field& field : Options_Form.Fields) {
    if (field.Machine == nullptr || field.Row->Group != page::Corrections) continue;
    const std::string_view wanted = field.Machine->Recommended;
    if (!recommended) Take_Typed(field, field.Default);
    if (recommended && !wanted.empty()) Take_Typed(field, wanted);
  }
  Say_Consequences();
  Options_Form.Label_Result.clear();
  Options_Host.Form_Changed();
}

void Command_Increment_Click(int axis, int button) {
  Option_Field* field = Find_Option(axis == 0 ? "BMAP_Increment_X" : "BMAP_Increment_Y");
  const auto increment = field == nullptr ? std::nullopt : Try_Number(field->Text);
  if (!increment) return;
  const double changed = button == 0 ? *increment * 2 : *increment / 2;
  Option_Change(*field, RegionalFix(Shortest_Text(changed)));
}

std::string Display_Excellon_Format() {
  const auto digits = [](const char* key) {
    constexpr double most = 10;
    const Option_Field* field = Find_Option(key);
    const auto count = field == nullptr ? std::nullopt : Try_Number(field->Text);
    return static_cast<std::size_t>(std::clamp(count.value_or(0), 0.0, most));
  };
  const std::size_t whole = digits("Excellon_Integer_Format");
  const std::size_t decimals = digits("Excellon_Decimal_Format");
  std::string sample;
  for (std::size_t n = 1; n <= whole + decimals; ++n) sample += std::to_string(n % 10);
  return std::string(whole, '#') + "." + std::string(decimals, '#') + "   " + sample + " is " +
         sample.substr(0, whole) + "." + sample.substr(whole);
}

void Display_Options_Info() {
  const Files_At_Hand files;
  for (Option_Field& field : Options_Form.Fields) {
    Take_Stored(field);
    field.Text = field.Stored;
    field.Error.clear();
    field.Note.clear();
  }
  Say_Consequences();
}

void Refresh_Options_Info() {
  {
    const Files_At_Hand files;
    for (Option_Field& field : Options_Form.Fields) {
      if (Is_Edited(field)) continue;
      Take_Stored(field);
      field.Text = field.Stored;
    }
  }
  Options_Host.Form_Changed();
}

}  // namespace norvik
