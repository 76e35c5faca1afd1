// The command `setup`.
#include "cli/companion.h"
#include "control/safety/machine_check.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/setup.h"
#include "core/setup_keys.h"
#include "core/setup_table.h"

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

int Save() {
  SaveMachineSetup();
  std::cerr << "Saved " << Application.MachineFile << '\n';
  return Done;
}

int Check_Machine() {
  const auto findings = Machine_Check();
  for (const Machine_Finding& finding : findings) {
    std::cout << finding.Text;
    if (!finding.Key.empty()) std::cout << " [" << finding.Key << ']';
    std::cout << '\n';
  }
  std::cout << findings.size() << (findings.size() == 1 ? " finding" : " findings") << '\n';
  return findings.empty() ? Done : Failed;
}

}  // namespace

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
        return Save();
      });
    };
  });

  CLI::App* reset = setup->add_subcommand("reset", "Factory values, for one key or for all");
  reset->add_option("key", *name, "SECTION.KEY; without it every key");
  reset->callback([&companion, name] {
    companion.Command = [name]() -> int {
      if (name->empty()) {
        Restore_Factory_Setup();
        return Save();
      }
      return With_Key(*name, [](const Setup_Key& key) -> int {
        Reset_Setup_Key(key);
        return Save();
      });
    };
  });

  CLI::App* check = setup->add_subcommand("check", "What in this machine file may surprise you");
  check->callback([&companion] { companion.Command = [] { return Check_Machine(); }; });
}

}  // namespace norvik
