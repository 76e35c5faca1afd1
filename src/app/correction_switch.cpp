#include "app/correction_switch.h"

#include "app/program_findings.h"
#include "control/motion/motion.h"
#include "core/corrections.h"
#include "core/messages.h"
#include "core/setup.h"

#include <string>

namespace norvik {

bool Switch_Correction_On(std::string_view key) {
  constexpr int seconds = 10;
  const Setup_Row* row = Find_Correction(key);
  if (row == nullptr || !Stopped_For("Can't switch a correction on")) return false;
  Read_Setup_Text(*row, 0, row->Recommended.empty() ? "True" : row->Recommended);
  std::string words = std::string(row->Key) + " is on.";
  if (!WriteSetup(row->Section, row->Key, Setup_Text(*row, 0)))
    words += " The machine file cannot be written: it holds until Norvik ends.";
  const std::string then = After_Change_Words(row->Needed_Then);
  if (!then.empty()) words += " It counts after this: " + then + ".";
  SetStatus(1, words, seconds);
  if (Program_Findings.Text) Check_Now();
  return true;
}

}  // namespace norvik
