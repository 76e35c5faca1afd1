#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/profile_file.h"
#include "core/remembered_files.h"
#include "core/setup.h"
#include "core/setup_table.h"
#include "core/setup_tail.h"
#include "core/version.h"
#include "core/waiting.h"
#include "platform/platform.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace norvik {

Machine_Setup MachineSetup;
Setup_Store_State Setup_Store;
Setup_Host_Operations Setup_Host;

namespace {

constexpr std::int16_t Good_Save = 123;
constexpr std::string_view Pointer_Name = "Norvik.Ini";
constexpr const char* Not_Valid_Text =
    "Your machine parameters are not valid.  Please create a new machine ini file.  If you "
    "continue "
    "to see this message, make sure you have administrator rights for disk access.";

// The files that could not be read, so that a whole window's keys give one line of the log.
struct Unreadable_State {
  std::string Last_Reported;
};
Unreadable_State Unreadable;

// The machine file as this program last loaded or saved it, to tell what another program has
// changed since.
struct Known_Value {
  std::string In_File;  // the text in the file; empty when it was missing
  std::string Ours;     // the field's text then
};
struct Known_File_State {
  std::string Path;
  std::map<std::pair<const Setup_Row*, int>, Known_Value> Values;
};
Known_File_State Known_File;

std::string Read_Key(const std::string& path, std::string_view section, std::string_view key) {
  std::string value;
  if (path.empty()) return value;
  Trap_With(
      [&](const Fault& fault) {
        if (Unreadable.Last_Reported == fault.Description) return;
        Unreadable.Last_Reported = fault.Description;
        ErrorLogWrite(fault.Description);
      },
      [&] {
        value = Read_Profile(path, section, key);
        Unreadable.Last_Reported.clear();
      });
  return value;
}

bool Write_Key(const std::string& path, std::string_view section, std::string_view key,
               std::string_view value) {
  if (Setup_Store.Leaves_Files) return true;
  if (path.empty()) return false;
  return Trap_With(
      [&](const Fault& fault) {
        ErrorLogWrite("Setting " + std::string(key) + " is not stored. " + fault.Description);
        Add_New_Message(fault.Description);
      },
      [&] { Write_Profile(path, section, key, value); });
}

bool Write_Together(const std::string& path, const std::function<void()>& body) {
  if (Setup_Store.Leaves_Files) {
    body();
    return true;
  }
  if (path.empty()) return false;
  return Trap_With(
      [](const Fault& fault) {
        ErrorLogWrite("Settings are not stored. " + fault.Description);
        Add_New_Message(fault.Description);
      },
      [&] {
        Profile_Session session(path, Profile_Use::Writing);
        body();
        session.Commit();
      });
}

void Note_Finding(const Setup_Row& row, int index, const std::string& text) {
  Setup_Store.Findings.push_back("[" + std::string(row.Section) + "] " + Setting_Key(row, index) +
                                 "=" + text.substr(0, 60) + " cannot be used, the value is now " +
                                 Setup_Text(row, index));
}

void After_Row(const Setup_Row& row) {
  switch (row.After) {
    case After_Load::Nothing:
      break;
    case After_Load::Apply_Priority:
      Setup_Host.Apply_Priority(MachineSetup.Application_Priority);
      Setup_Host.Copy_Steps_Per_Unit();
      break;
    case After_Load::Send_To_Controller:
      Setup_Host.Send_To_Controller();
  }
}

void Read_All_Rows(void (*after)(const Setup_Row&)) {
  Setup_Store.Findings.clear();
  Known_File = {Application.MachineFile, {}};
  for (const Setup_Row& row : Setup_Rows()) {
    for (int index = row.Loaded.First; index <= row.Loaded.Last; ++index) {
      const std::string text = ReadSetup(row.Section, Setting_Key(row, index));
      if (!Read_Setup_Text(row, index, text)) Note_Finding(row, index, text);
      if (!Setup_Store.RestoringDefaults) {
        Known_File.Values[{&row, index}] = {text, Setup_Text(row, index)};
      }
    }
    if (after != nullptr) after(row);
  }
}

// Holds the parsed file for the length of a load; nothing when it cannot be read.
std::unique_ptr<Profile_Session> Open_For_Load() {
  std::unique_ptr<Profile_Session> session;
  if (Application.MachineFile.empty()) return session;
  Trap_With(
      [](const Fault& fault) {
        Unreadable.Last_Reported = fault.Description;
        ErrorLogWrite(fault.Description);
        const char* goes_on =
            Setup_Store.Leaves_Files ? "" : "\n\nAll parameters have their factory values now.";
        Platform.Message_Box("Machine file", fault.Description + goes_on, Box_Buttons::Ok);
      },
      [&] {
        session = std::make_unique<Profile_Session>(Application.MachineFile, Profile_Use::Reading);
      });
  return session;
}

void Report_Findings() {
  constexpr std::size_t most_shown = 5;
  for (const std::string& finding : Setup_Store.Findings) ErrorLogWrite("Machine file: " + finding);
  if (const std::string lost = Words_About_Lost_Tail(); !lost.empty()) {
    ErrorLogWrite(lost);
    AddMessage(lost);
  }
  const auto count = Setup_Store.Findings.size();
  for (std::size_t i = 0; i < std::min(count, most_shown); ++i) AddMessage(Setup_Store.Findings[i]);
  if (count > most_shown) {
    AddMessage(std::to_string(count) +
               " values of the machine file cannot be used, see the error log");
  }
}

// The repair of a machine file that was never saved whole.
void Self_Test() {
  Application.SelfTestValue = MachineSetup.INI_Save_Test;
  if (Application.SelfTestValue == Good_Save) return;
  Platform.Message_Box("Warning", Not_Valid_Text, Box_Buttons::Ok);
  WritePointer("Machine", "Name", Application.MachineFile);
  SaveMachineSetup();
  RememberFile(File_Kind::Setup, Application.MachineFile);
}

std::string Save_Name(const Setup_Row& row, int index) {
  Setting_Row named = row;
  if (!row.Save_Key.empty()) named.Key = row.Save_Key;
  return Setting_Key(named, index);
}

// Another program has given the key a value since this one has read or written it, and nobody has
// changed it here.
bool Is_Theirs(const Setup_Row& row, int index, const std::string& name) {
  if (Known_File.Path != Application.MachineFile) return false;
  const auto known = Known_File.Values.find({&row, index});
  if (known == Known_File.Values.end()) return false;
  const auto in_file = Find_Profile(Application.MachineFile, row.Section, name);
  return in_file && *in_file != known->second.In_File &&
         Setup_Text(row, index) == known->second.Ours;
}

// Settings that another program has changed since the load, and this one not.
using Setup_Places = std::vector<std::pair<const Setup_Row*, int>>;
Setup_Places Changed_Elsewhere() {
  Setup_Places places;
  const Profile_Session file(Application.MachineFile, Profile_Use::Reading);
  for (const Setup_Row* row : Setup_Rows_In_Save_Order()) {
    for (int index = row->Saved.First; index <= row->Saved.Last; ++index) {
      if (Is_Theirs(*row, index, Save_Name(*row, index))) places.emplace_back(row, index);
    }
  }
  return places;
}

std::string Question_About(const Setup_Places& places) {
  constexpr std::size_t most_named = 5;
  std::string names;
  for (std::size_t i = 0; i < std::min(places.size(), most_named); ++i) {
    names += (i == 0 ? "" : ", ") + Save_Name(*places[i].first, places[i].second);
  }
  if (places.size() > most_named) names += " ...";
  return "Another program has changed " + std::to_string(places.size()) +
         " settings of this machine file since it was loaded here: " + names +
         ".\n\nYes loads their values, No keeps those of this program.";
}

// Whose values hold where another program was at the file meanwhile. Whoever does not answer leaves
// theirs in the file and works on with his own. Nobody is asked without windows.
void Ask_About_Foreign_Changes() {
  if (Setup_Store.Without_Windows) return;
  const Setup_Places places = Changed_Elsewhere();
  if (places.empty()) return;
  const Box_Answer answer =
      Platform.Message_Box("Machine file", Question_About(places), Box_Buttons::Yes_No);
  for (const auto& [row, index] : places) {
    if (answer == Box_Answer::Yes) {
      const std::string text = ReadSetup(row->Section, Save_Name(*row, index));
      Read_Setup_Text(*row, index, text);
      Known_File.Values[{row, index}] = {text, Setup_Text(*row, index)};
    } else if (answer == Box_Answer::No) {
      Known_File.Values.erase({row, index});
    }
  }
}

void Write_Row(const Setup_Row& row, Known_File_State& after) {
  for (int index = row.Saved.First; index <= row.Saved.Last; ++index) {
    const std::string name = Save_Name(row, index);
    if (Is_Theirs(row, index, name)) continue;
    const std::string text = Setup_Text(row, index);
    Write_Profile(Application.MachineFile, row.Section, name, text);
    after.Values[{&row, index}] = {Read_Profile(Application.MachineFile, row.Section, name), text};
  }
}

void Write_All_Rows() {
  Ask_About_Foreign_Changes();
  Known_File_State after = Known_File;
  if (after.Path != Application.MachineFile) after = {Application.MachineFile, {}};
  Profile_Session session(Application.MachineFile, Profile_Use::Writing);
  Write_Profile(Application.MachineFile, "AppInfo", "Application_Version",
                std::string(Program_Title) + " Version " + std::string(Program_Version()));
  bool announced = false;
  for (const Setup_Row* row : Setup_Rows_In_Save_Order()) {
    if (row->Save == Save_Place::Sounds && !std::exchange(announced, true)) {
      AddMessage("Saving Machine INI");
    }
    Write_Row(*row, after);
  }
  session.Commit();
  Known_File = std::move(after);
}

}  // namespace

bool LoadMachineSetup() {
  Setup_Store.SetupLoading = true;
  if (!Setup_Store.Without_Windows) Wait(0.25);  // what waits in the windows' queue comes first
  Set_Panel(4, FileNameStem(PathFileName(Application.MachineFile)));
  bool readable = true;
  Trap("LoadMachineSetup", [&] {
    const auto session = Open_For_Load();
    readable = session != nullptr;
    Read_All_Rows(After_Row);
    if (readable) Look_For_Lost_Tail();
  });
  Report_Findings();
  // Of a file out of reach nothing is known, so nothing is to be repaired.
  if (readable && !Setup_Store.RestoringDefaults && !Setup_Store.Leaves_Files) Self_Test();
  Setup_Store.SetupLoading = false;
  return readable;
}

bool SaveMachineSetup() {
  if (Application.MachineFile.empty()) return false;
  if (Setup_Store.Leaves_Files) return true;
  const std::int16_t before = MachineSetup.INI_Save_Test;
  MachineSetup.INI_Save_Test = Good_Save;
  const bool written = Trap_With(
      [](const Fault& fault) {
        ErrorLogWrite("The parameters are not saved. " + fault.Description);
        Platform.Message_Box("Machine file",
                             fault.Description + "\n\nYour parameters are not saved.",
                             Box_Buttons::Ok);
      },
      Write_All_Rows);
  if (written) {
    Application.SelfTestValue = Good_Save;
    Lost_Tail = {};
  } else {
    MachineSetup.INI_Save_Test = before;
  }
  return written;
}

bool Saved_Whole() {
  return MachineSetup.INI_Save_Test == Good_Save;
}

void Restore_Factory_Setup() {
  const bool before = std::exchange(Setup_Store.RestoringDefaults, true);
  MachineSetup = {};
  Read_All_Rows(nullptr);
  Setup_Store.RestoringDefaults = before;
}

void SetMachineName(const std::string& path) {
  WritePointer("Machine", "Name", path);
  Application.MachineFile = ReadPointer("Machine", "Name");
  if (Application.MachineFile.empty()) {
    Application.MachineFile = Join_Path(Application.AppDirectory, Default_Machine_Name);
  }
}

std::string ReadSetup(std::string_view section, std::string_view key) {
  if (Setup_Store.RestoringDefaults) return {};
  return Read_Key(Application.MachineFile, section, key);
}

bool WriteSetup(std::string_view section, std::string_view key, std::string_view value) {
  return Write_Key(Application.MachineFile, section, key, value);
}

bool Write_Setup_Together(const std::function<void()>& body) {
  return Write_Together(Application.MachineFile, body);
}

bool Write_Pointer_Together(const std::function<void()>& body) {
  return Write_Together(Pointer_File(), body);
}

std::string Pointer_File() {
  if (Application.Pointer_Folder.empty()) return {};
  return Join_Path(Application.Pointer_Folder, Pointer_Name);
}

std::string ReadPointer(std::string_view section, std::string_view key) {
  return Read_Key(Pointer_File(), section, key);
}

bool WritePointer(std::string_view section, std::string_view key, std::string_view value) {
  return Write_Key(Pointer_File(), section, key, value);
}

}  // namespace norvik
