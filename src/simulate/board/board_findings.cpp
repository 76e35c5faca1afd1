#include "simulate/board/board_findings.h"

#include "core/axes.h"

#include <algorithm>
#include <cstdio>

namespace norvik {

Board_Finding& Count_Board_Finding(Board_Findings& findings, Board_Finding_Kind kind, int axis,
                                   std::int64_t time) {
  for (Board_Finding& finding : findings.List) {
    if (finding.Kind != kind || finding.Axis != axis) continue;
    ++finding.Count;
    finding.Last = time;
    return finding;
  }
  return findings.List.emplace_back(Board_Finding{kind, axis, time, time, 1, ""});
}

std::int64_t Board_Finding_Count(const Board_Findings& findings, Board_Finding_Kind kind,
                                 int axis) {
  std::int64_t count = 0;
  for (const Board_Finding& finding : findings.List) {
    if (finding.Kind == kind && (axis == 0 || finding.Axis == axis)) count += finding.Count;
  }
  return count;
}

std::vector<std::string> Board_Findings_Text(const Board_Findings& findings) {
  std::vector<const Board_Finding*> order;
  for (const Board_Finding& finding : findings.List) order.push_back(&finding);
  std::stable_sort(order.begin(), order.end(),
                   [](const auto* left, const auto* right) { return left->Last > right->Last; });
  std::vector<std::string> texts;
  for (const Board_Finding* finding : order) {
    constexpr double second = 1e9;
    char time[48];
    std::snprintf(time, sizeof time, "%.6f s  ", static_cast<double>(finding->First) / second);
    std::string text = time;
    if (finding->Axis > 0) text += std::string(1, Axis_Letter(finding->Axis)) + ": ";
    text += finding->Text;
    if (finding->Count > 1) text += " (" + std::to_string(finding->Count) + " times)";
    texts.push_back(std::move(text));
  }
  return texts;
}

}  // namespace norvik
