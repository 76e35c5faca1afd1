#include "adapt/report.h"

namespace norvik::adapting {

namespace {

// A program of a million lines with a finding each must not take memory many times its size.
constexpr std::size_t Most_Findings = 10'000;

}  // namespace

std::string Shown_Text(std::string_view text) {
  constexpr std::size_t most = 80;
  std::string shown;
  for (const char c : text.substr(0, most)) shown += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
  return shown + (text.size() > most ? "..." : "");
}

std::int32_t Report::Tell(Adapt_Grade grade, std::string what, std::string instead) {
  ++Count;
  if (grade == Adapt_Grade::Refused) ++Result.Refused;
  if (Result.Findings.size() < Most_Findings) {
    Result.Findings.push_back(
        {Count, Line, grade, std::move(what), std::move(instead), Shown_Text(Text)});
  } else {
    ++Result.More_Findings;
  }
  return Count;
}

}  // namespace norvik::adapting
