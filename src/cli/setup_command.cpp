// The command `setup`.
#include "cli/companion.h"
#include "control/panel/drive_choice.h"
#include "control/safety/machine_check.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/paths.h"
#include "core/profile_file.h"
#include "core/setup.h"
#include "core/setup_compare.h"
#include "core/setup_keys.h"
#include "core/setup_table.h"
#include "core/setup_tail.h"

#include <iostream>
#include <memory>

namespace norvik {

namespace {

// Runs `act` on the named key; complains about an unknown one.
int With_Key(const std::string& name, const std::function<int(const Setup_Key&)>& act) {
  const auto key = Find_Setup_Key(name);
  if (!key) {
    Complain("No such key: " + name + ". \"norvik-cli setup show\" lists them all.");
    return Wrong_Usage;
  }
  try {
    return act(*key);
  } catch (const Fault& fault) {
    Complain(name + ": " + fault.Description);
    return Wrong_Usage;
  }
}

int Show(bool reference) {
  if (reference) {
    std::cout << Setup_Reference_Page();
    return Done;
  }
  for (const Setup_Key& key : Setup_Keys()) {
    std::cout << Setup_Full_Name(key) << '=' << Setup_Text(*key.Row, key.Index) << '\n';
  }
  return Done;
}

// What a stored value of the key would not do; empty for the others.
std::string Why_Not_Stored(const Setup_Row& row) {
  if (row.Key != "Tool_Directory") return {};
  return "every start takes the folder Tools of the working folder, so a stored value would have "
         "no "
         "effect. Tool_File_Name names the tool file, by a path of its own.";
}

int Store_Key(const Setup_Key& key) {
  const std::string why_not = Why_Not_Stored(*key.Row);
  if (!why_not.empty()) {
    Complain(Setup_Full_Name(key) + " is not stored: " + why_not);
    return Failed;
  }
  const std::string text = Setup_Text(*key.Row, key.Index);
  return Store_Setup([&] { Write_Setup_Key(*key.Row, key.Index, text); });
}

// Those too that a save leaves to the windows that change them.
int Reset_All() {
  return Store_Setup([] {
    Restore_Factory_Setup();
    Profile_Session file(Application.MachineFile, Profile_Use::Writing);
    if (!SaveMachineSetup()) throw Fault(Fault_Number::Path_Access, "The file cannot be written");
    for (const Setup_Row& row : Setup_Rows()) {
      if (row.Save != Save_Place::Nowhere) continue;
      for (int index = row.Loaded.First; index <= row.Loaded.Last; ++index) {
        Write_Setup_Key(row, index, Setup_Text(row, index));
      }
    }
    file.Commit();
  });
}

// Like the tools that compare files: 1 where something differs.
int Compare_With(const std::string& path) {
  try {
    const std::vector<Setup_Difference> differences = Compare_Setup_With(path);
    for (const Setup_Difference& one : differences) {
      std::cout << one.Key << ": " << one.Here << " | " << one.There << '\n';
    }
    return differences.empty() ? Done : Failed;
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return Wrong_Usage;
  }
}

int Check_Machine() {
  Choose_Drive_By_Setup();  // the drive has findings of its own
  const auto findings = Machine_Check();
  for (const Machine_Finding& finding : findings) {
    std::cout << finding.Text;
    if (!finding.Key.empty()) std::cout << " [" << finding.Key << ']';
    std::cout << Correction_Word(finding.Correction) << '\n';
  }
  for (const std::string& finding : Setup_Store.Findings) std::cout << finding << '\n';
  for (const std::string& key : Lost_Tail.Keys) std::cout << "missing [" << key << "]\n";
  const auto count = findings.size() + Setup_Store.Findings.size() + Lost_Tail.Keys.size();
  std::cout << count << (count == 1 ? " finding" : " findings") << '\n';
  return count == 0 ? Done : Failed;
}

}  // namespace

int Store_Setup(const std::function<void()>& store) {
  Setup_Store.Leaves_Files = false;
  if (!FileExists(Application.MachineFile)) {
    Restore_Factory_Setup();
    if (!SaveMachineSetup()) return Failed;
  }
  try {
    store();
  } catch (const Fault& fault) {
    Complain(fault.Description + ". Nothing is stored.");
    return Failed;
  }
  std::cerr << "Saved " << Application.MachineFile << '\n';
  return Done;
}

void Write_Setup_Key(const Setup_Row& row, int index, const std::string& text) {
  Write_Profile(Application.MachineFile, row.Section, Setting_Key(row, index), text);
}

void Add_Setup_Command(CLI::App& app, Companion& companion) {
  CLI::App* setup = app.add_subcommand("setup", "Show and change the machine file");
  setup->require_subcommand(1);
  const auto name = std::make_shared<std::string>();
  const auto value = std::make_shared<std::string>();
  const auto reference = std::make_shared<bool>(false);

  CLI::App* show = setup->add_subcommand("show", "All keys with their values");
  show->add_flag("--reference", *reference, "What each key means, as a page");
  show->callback(
      [&companion, reference] { companion.Command = [reference] { return Show(*reference); }; });

  CLI::App* get = setup->add_subcommand("get", "The value of one key");
  get->add_option("key", *name, "SECTION.KEY")->required();
  get->callback([&companion, name] {
    companion.Command = [name] {
      return With_Key(*name, [](const Setup_Key& key) -> int {
        std::cout << Setup_Text(*key.Row, key.Index) << '\n';
        return Done;
      });
    };
  });

  CLI::App* set = setup->add_subcommand("set", "Change one key in the machine file");
  set->add_option("key", *name, "SECTION.KEY")->required();
  set->add_option("value", *value, "The new value")->required();
  set->callback([&companion, name, value] {
    companion.Command = [name, value] {
      return With_Key(*name, [value](const Setup_Key& key) -> int {
        Change_Setup_Key(key, *value);
        return Store_Key(key);
      });
    };
  });

  CLI::App* reset = setup->add_subcommand("reset", "Factory values, for one key or for all");
  reset->add_option("key", *name, "SECTION.KEY; without it every key");
  reset->callback([&companion, name] {
    companion.Command = [name]() -> int {
      if (name->empty()) return Reset_All();
      return With_Key(*name, [](const Setup_Key& key) -> int {
        Reset_Setup_Key(key);
        return Store_Key(key);
      });
    };
  });

  const auto file = std::make_shared<std::string>();
  CLI::App* compare = setup->add_subcommand("compare", "What another machine file has otherwise");
  compare->add_option("file", *file, "The other machine file")->required();
  compare->callback(
      [&companion, file] { companion.Command = [file] { return Compare_With(*file); }; });

  CLI::App* check = setup->add_subcommand("check", "What in this machine file may surprise you");
  check->callback([&companion] { companion.Command = [] { return Check_Machine(); }; });
}

}  // namespace norvik
