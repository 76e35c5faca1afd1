#include "core/corrections.h"

#include "core/paths.h"

namespace norvik {

namespace {

constexpr std::string_view Section = "Corrections";

// A row has one value; index 0 is its only one.
constexpr int Only = 0;

// "Off: ..." and "On: ..." as paragraphs of their own.
std::string In_Two_Lines(std::string_view help) {
  const auto on = help.find(" On: ");
  if (on == std::string_view::npos) return std::string(help) + "\n";
  return std::string(help.substr(0, on)) + "\n\n" + std::string(help.substr(on + 1)) + "\n";
}

}  // namespace

std::vector<const Setup_Row*> Correction_List() {
  std::vector<const Setup_Row*> list;
  for (const Setup_Row& row : Setup_Rows()) {
    if (row.Section == Section) list.push_back(&row);
  }
  return list;
}

const Setup_Row* Find_Correction(std::string_view key) {
  const std::string wanted = Upper(key);
  for (const Setup_Row* row : Correction_List()) {
    if (Upper(row->Key) == wanted) return row;
  }
  return nullptr;
}

bool Correction_Is_On(const Setup_Row& row) {
  const std::string now = Setup_Text(row, Only);
  return now != "False" && now != "0";
}

int Corrections_On() {
  int count = 0;
  for (const Setup_Row* row : Correction_List()) count += Correction_Is_On(*row) ? 1 : 0;
  return count;
}

std::string Words_About_Corrections() {
  std::string words;
  for (const Setup_Row* row : Correction_List()) {
    if (!Correction_Is_On(*row)) continue;
    words += (words.empty() ? "" : ", ") + std::string(row->Key);
    if (row->Kind != Setting_Kind::Yes_No) words += " " + Setup_Text(*row, Only);
  }
  return words;
}

std::string Corrections_Line() {
  const std::string words = Words_About_Corrections();
  return words.empty() ? words : "Corrections: " + words;
}

std::vector<const Setup_Row*> Take_Corrections(Correction_Set set) {
  std::vector<const Setup_Row*> changed;
  for (const Setup_Row* row : Correction_List()) {
    if (set == Correction_Set::Recommended && row->Recommended.empty()) continue;
    const std::string before = Setup_Text(*row, Only);
    Read_Setup_Text(*row, Only, set == Correction_Set::Recommended ? row->Recommended : "");
    if (Setup_Text(*row, Only) != before) changed.push_back(row);
  }
  return changed;
}

std::string Corrections_Page() {
  std::string page =
      "# Corrections\n\n"
      "Some of what Norvik does is stated, works as stated, and can hurt: so a machine file of "
      "before goes on doing what it always did. Each of these can be changed by a correction, a "
      "key in section `Corrections` of the machine file. In a fresh machine file and after a "
      "factory reset all of them are off. The setups that ship have the recommended ones on.\n\n"
      "- `norvik-cli corrections list` shows all of them and which are on; "
      "`corrections recommended` switches those on that suit every machine and leaves the others "
      "as they are; `corrections as-the-system-was` switches all off; `corrections set KEY "
      "[VALUE]` changes one.\n"
      "- A mark in the status bar says how many are on. Import reports, the summary of a run and "
      "the text for support name them.\n"
      "- What a correction answers is named by the machine check, the program check or an import "
      "report as long as it is off, with the key and, in the windows, a button that switches it "
      "on.\n";
  for (const Setup_Row* row : Correction_List()) {
    page += "\n## " + std::string(row->Label) + "\n\n`" + std::string(row->Key) + "`";
    page += row->Recommended.empty() ? "" : ", recommended";
    page += "\n\n" + In_Two_Lines(row->Help);
    if (!row->For_Whom.empty()) page += "\nFor: " + std::string(row->For_Whom) + "\n";
    if (!row->Named_By.empty()) page += "\nNamed by: " + std::string(row->Named_By) + ".\n";
    const std::string then = After_Change_Words(row->Needed_Then);
    if (!then.empty()) page += "\nAfter a change: " + then + ".\n";
  }
  return page;
}

}  // namespace norvik
