#include "core/tool_file.h"

#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/foreign_file.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/paths.h"

#include <algorithm>
#include <array>
#include <optional>

namespace norvik {

namespace {

// Blank fields and a missing second number count as 0; absent: no number.
std::optional<double> Field_Number(std::string_view field) {
  return Trim(field).empty() ? 0.0 : Try_Number(field);
}

// Diameter and offset as the line spells them; absent when it cannot be told where one ends.
std::optional<std::array<std::string_view, 2>> Fields_Of(std::string_view line) {
  const auto cut_at = [&](std::size_t place) {
    return std::array{line.substr(0, place), line.substr(std::min(place + 1, line.size()))};
  };
  if (const auto semicolon = line.find(';'); semicolon != line.npos) return cut_at(semicolon);
  const auto comma = line.find(',');
  switch (std::ranges::count(line, ',')) {
    case 0:
    case 1:
      return cut_at(std::min(comma, line.size()));
    case 3:
      return cut_at(line.find(',', comma + 1));
    default:  // "6,0,5" may be 6 and 0.5, or 6.0 and 5
      return std::nullopt;
  }
}

// What is wrong with a line, without and with its text in between; empty: nothing.
struct Row_Finding {
  std::string Line, Text, What;
};

Row_Finding Take_Row(int tool, std::string_view line) {
  const auto fields = Fields_Of(line);
  const auto diameter = fields ? Field_Number((*fields)[0]) : std::nullopt;
  const auto length = fields ? Field_Number((*fields)[1]) : std::nullopt;
  Tools.Diameter[tool] = diameter.value_or(0);
  Tools.Length[tool] = length.value_or(0);
  const auto says = [&](const char* what) {
    return Row_Finding{"line " + std::to_string(tool),
                       ": \"" + std::string(line.substr(0, 60)) + "\"", what};
  };
  if (!fields) return says(" cannot be told apart into diameter,offset; both count as 0");
  if (!diameter || !length) return says(" is not diameter,offset; the missing number counts as 0");
  if (*diameter < 0) return says(" has a diameter below 0");
  return {};
}

std::string Wrong_Count(std::size_t rows, std::size_t all) {
  const std::string has = "the file has " + std::to_string(rows) + " rows instead of 200; ";
  return has + (rows < all ? "the tools behind them count as 0" : "those behind 200 are not used");
}

// Rows without the empty ones at the end.
std::vector<std::string> Rows_Of(std::string_view text) {
  auto rows = Split_Lines(text);
  while (!rows.empty() && Trim(rows.back()).empty()) rows.pop_back();
  return rows;
}

std::vector<Row_Finding> Take_Rows(const std::vector<std::string>& rows) {
  Tools = {};
  std::vector<Row_Finding> findings;
  const int count = static_cast<int>(std::min<std::size_t>(rows.size(), Tools.Diameter.last));
  for (int tool = 1; tool <= count; ++tool) {
    Row_Finding finding = Take_Row(tool, rows[static_cast<std::size_t>(tool - 1)]);
    if (!finding.What.empty()) findings.push_back(std::move(finding));
  }
  return findings;
}

}  // namespace

bool Read_Tool_File(const std::string& path) {
  Tools = {};
  if (path.empty() || !FileExists(path)) return false;
  return Trap("Read Tool File", [&] {
    // A machine file from elsewhere may name any file here, so its text stays out of the log.
    for (const Row_Finding& finding :
         Take_Rows(Rows_Of(Read_Foreign_File(path, Largest_Tool_File)))) {
      ErrorLogWrite("Tool file " + path + ", " + finding.Line + finding.What);
    }
  });
}

Tool_Findings Take_Tool_Text(std::string_view text) {
  const auto rows = Rows_Of(text);
  Tool_Findings findings;
  for (const Row_Finding& finding : Take_Rows(rows)) {
    findings.Lines.push_back(finding.Line + finding.Text + finding.What);
  }
  const auto all = static_cast<std::size_t>(Tools.Diameter.last);
  if (rows.size() != all) findings.Rows = Wrong_Count(rows.size(), all);
  return findings;
}

std::string Tool_Text() {
  std::string text;
  for (int tool = 1; tool <= Tools.Diameter.last; ++tool) {
    text += Shortest_Text(Tools.Diameter[tool]) + "," + Shortest_Text(Tools.Length[tool]) + "\r\n";
  }
  return text;
}

}  // namespace norvik
