#include "simulate/findings.h"

#include "core/axes.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace norvik {

Findings_State Findings;

namespace {

Finding* Entry(Finding_Kind kind, int axis) {
  for (Finding& finding : Findings.List) {
    if (finding.Kind == kind && finding.Axis == axis) return &finding;
  }
  return nullptr;
}

std::string Line(const Finding& finding) {
  std::array<char, 32> time;
  std::snprintf(time.data(), time.size(), "%.6f s  ", static_cast<double>(finding.Last) / 1e9);
  std::string line = time.data() + finding.Text;
  if (finding.Count > 1) line += " (" + std::to_string(finding.Count) + " times)";
  return line;
}

}  // namespace

bool Count_Finding(Finding_Kind kind, int axis, std::int64_t time) {
  if (Finding* known = Entry(kind, axis)) {
    ++known->Count;
    known->Last = time;
    return false;
  }
  Findings.List.push_back({kind, axis, time, time, 1, ""});
  return true;
}

void Word_Finding(const std::string& text) {
  Finding& finding = Findings.List.back();
  finding.Text = finding.Axis == 0 ? text : std::string(1, Axis_Letter(finding.Axis)) + ": " + text;
}

void Add_Setup_Finding(const std::string& text) {
  Findings.List.push_back({Finding_Kind::Setup, 0, 0, 0, 1, text});
}

std::vector<std::string> Findings_Text() {
  std::vector<const Finding*> order;
  for (const Finding& finding : Findings.List) order.push_back(&finding);
  std::stable_sort(order.begin(), order.end(),
                   [](const Finding* a, const Finding* b) { return a->Last > b->Last; });
  std::vector<std::string> lines;
  for (const Finding* finding : order) lines.push_back(Line(*finding));
  return lines;
}

}  // namespace norvik
