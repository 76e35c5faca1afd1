// The command `corrections`.
#include "cli/companion.h"
#include "core/application.h"
#include "core/corrections.h"
#include "core/fault.h"
#include "core/paths.h"
#include "core/profile_file.h"
#include "core/setup.h"
#include "core/setup_keys.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace norvik {

namespace {

constexpr int Only = 0;  // a correction has one value

void Print_Correction(const Setup_Row& row) {
  std::cout << row.Key << '=' << Setup_Text(row, Only) << (row.Recommended.empty() ? "" : " *")
            << "\n    " << row.Label << ". " << row.Help << '\n';
  if (!row.For_Whom.empty()) std::cout << "    For: " << row.For_Whom << '\n';
}

int List(bool as_page) {
  if (as_page) {
    std::cout << Corrections_Page();
    return Done;
  }
  for (const Setup_Row* row : Correction_List()) Print_Correction(*row);
  std::cout << Corrections_On() << " on; * recommended for every machine\n";
  return Done;
}

// For whom it is stands on standard error: what to look at once the value counts.
void Print_Change(const Setup_Row& row) {
  std::cout << row.Key << '=' << Setup_Text(row, Only) << '\n';
  if (Correction_Is_On(row) && !row.For_Whom.empty()) std::cerr << "For: " << row.For_Whom << '\n';
}

struct Change {
  const Setup_Row* Row;
  std::string Text;
};

// A file that is missing is made with factory values, which takes the changes back for a moment.
int Store_Changes(const std::vector<Change>& changes) {
  const int status = Store_Setup([&] {
    Profile_Session file(Application.MachineFile, Profile_Use::Writing);
    for (const Change& change : changes) Write_Setup_Key(*change.Row, Only, change.Text);
    file.Commit();
  });
  if (status != Done) return status;
  for (const Change& change : changes) {
    Read_Setup_Text(*change.Row, Only, change.Text);
    Print_Change(*change.Row);
  }
  return Done;
}

int Store_Set(Correction_Set set) {
  std::vector<Change> changes;
  for (const Setup_Row* row : Take_Corrections(set)) {
    changes.push_back({row, Setup_Text(*row, Only)});
  }
  if (!changes.empty()) return Store_Changes(changes);
  std::cerr << "Nothing to change.\n";
  return Done;
}

int Set_One(const std::string& name, const std::string& value) {
  const Setup_Row* row = Find_Correction(name);
  if (!row) {
    Complain("No such correction: " + name + ". \"norvik-cli corrections list\" shows them all.");
    return Wrong_Usage;
  }
  if (value.empty() && row->Kind != Setting_Kind::Yes_No) {
    Complain(std::string(row->Key) + " needs a value: " + Setting_Values(*row) + " " +
             std::string(row->Unit) + ".");
    return Wrong_Usage;
  }
  try {
    Change_Setup_Key({row, Only}, value.empty() ? "True" : value);
  } catch (const Fault& fault) {
    Complain(fault.Description);
    return Wrong_Usage;
  }
  return Store_Changes({{row, Setup_Text(*row, Only)}});
}

}  // namespace

std::string Correction_Word(std::string_view key) {
  return key.empty() ? std::string() : " {corrections set " + std::string(key) + "}";
}

void Add_Corrections_Command(CLI::App& app, Companion& companion) {
  CLI::App* corrections = app.add_subcommand(
      "corrections", "What is stated and can hurt, and what the machine does instead");
  corrections->require_subcommand(1);

  const auto as_page = std::make_shared<bool>(false);
  CLI::App* list = corrections->add_subcommand("list", "All of them, with their values");
  list->add_flag("--page", *as_page, "As a page to read");
  list->callback(
      [&companion, as_page] { companion.Command = [as_page] { return List(*as_page); }; });

  CLI::App* recommended = corrections->add_subcommand(
      "recommended", "Switch those on that suit every machine; the others stay as they are");
  recommended->callback(
      [&companion] { companion.Command = [] { return Store_Set(Correction_Set::Recommended); }; });

  CLI::App* as_was = corrections->add_subcommand("as-the-system-was", "Switch all of them off");
  as_was->callback([&companion] {
    companion.Command = [] { return Store_Set(Correction_Set::As_The_System_Was); };
  });

  const auto name = std::make_shared<std::string>();
  const auto value = std::make_shared<std::string>();
  CLI::App* set = corrections->add_subcommand("set", "Change one of them");
  set->add_option("key", *name, "KEY")->required();
  set->add_option("value", *value, "Without it: True");
  set->callback([&companion, name, value] {
    companion.Command = [name, value] { return Set_One(*name, *value); };
  });
}

}  // namespace norvik
