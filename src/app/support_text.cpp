#include "app/support_text.h"

#include "app/main_form.h"
#include "app/yield_watch.h"
#include "core/application.h"
#include "core/corrections.h"
#include "core/format.h"
#include "core/setup.h"
#include "core/version.h"
#include "drive/drive.h"

namespace norvik {

namespace {

std::string Yield_Text() {
  const double gap = Longest_Yield_Gap_Ms();
  if (gap <= 0) return "not measured, nothing has moved yet";
  return Format_Number_Point(gap, "0.0") + " ms";
}

}  // namespace

std::string Support_Text() {
  const std::string on = Words_About_Corrections();
  const std::pair<const char*, std::string> lines[] = {
      {"Version", std::string(Program_Title) + ", " + std::string(Program_Version())},
      {"Machine file", Application.MachineFile},
      {"Pointer file", Pointer_File()},
      {"Working folder", Application.AppDirectory},
      {"Tables and traces", Application.Table_Folder},
      {"Error log", Application.ErrorFile},
      {"Drive", std::string(Drive().Name) + ", " + Drive().Health()},
      {"Corrections", on.empty() ? "none is on" : on},
      {"Longest wait of a button while the machine moves", Yield_Text()},
  };
  std::string text = Main_Form.Port_Text + "\n";
  for (const auto& [title, fact] : lines) text += std::string(title) + ": " + fact + "\n";
  return text;
}

}  // namespace norvik
