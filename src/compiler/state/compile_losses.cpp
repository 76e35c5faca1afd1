#include "compiler/state/compile_losses.h"

#include "compiler/state/compiler_state.h"

#include <utility>

namespace norvik {

Compile_Losses_State Compile_Losses;

namespace {

std::string Shortened(std::string_view text) {
  constexpr std::size_t most = 200;
  return std::string(text.substr(0, most)) + (text.size() > most ? "..." : "");
}

void Count(Loss_Kind kind) {
  switch (kind) {
    case Loss_Kind::Line:
      ++Compile_Losses.Lines;
      break;
    case Loss_Kind::Macro:
      ++Compile_Losses.Macros;
      break;
    case Loss_Kind::Records:
      Compile_Losses.Records_Cut = true;
      break;
    case Loss_Kind::Wires:
      Compile_Losses.Wires_Cut = true;
      break;
  }
}

void Add(Compile_Loss loss) {
  if (!Compile_Losses.Seen.insert({loss.Kind, loss.Macro, loss.Line}).second) return;
  Count(loss.Kind);
  if (Compile_Losses.List.size() < Compile_Losses_State::Most_Listed)
    Compile_Losses.List.push_back(std::move(loss));
}

void Append(std::string& text, const std::string& part) {
  if (!text.empty()) text += ", ";
  text += part;
}

std::string Counted(std::int64_t count, const std::string& one, const std::string& several) {
  return std::to_string(count) + " " + (count == 1 ? one : several);
}

}  // namespace

void Note_Loss(Loss_Kind kind, std::string_view text, std::string why) {
  Add({kind, Compiler.Source_Macro, Compiler.Source_Line, Shortened(text), std::move(why)});
}

void Note_Loss_At(std::int32_t line, Loss_Kind kind, std::string_view text, std::string why) {
  Add({kind, std::nullopt, line, Shortened(text), std::move(why)});
}

std::string Summary_Of(const Compile_Losses_State& losses) {
  std::string text;
  if (losses.Lines > 0) Append(text, Counted(losses.Lines, "line lost", "lines lost"));
  if (losses.Macros > 0) Append(text, Counted(losses.Macros, "macro missing", "macros missing"));
  if (losses.Records_Cut) Append(text, "records cut");
  if (losses.Wires_Cut) Append(text, "wires cut");
  return text;
}

}  // namespace norvik
