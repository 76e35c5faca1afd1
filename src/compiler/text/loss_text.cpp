#include "compiler/text/loss_text.h"

#include "compiler/state/compile_losses.h"
#include "compiler/text/program_text.h"

#include <string_view>

namespace norvik {

namespace {

std::string_view Words_Of(Loss_Kind kind) {
  switch (kind) {
    case Loss_Kind::Line:
      return "lost";
    case Loss_Kind::Macro:
      return "macro missing";
    case Loss_Kind::Records:
    case Loss_Kind::Wires:
      break;
  }
  return "cut here";
}

}  // namespace

std::string Text_Of(const Compile_Loss& loss) {
  std::string text;
  if (loss.Macro) text = "Macro " + std::to_string(*loss.Macro) + ", ";
  const std::int32_t line = loss.Macro ? loss.Line : Text_Line_Of_Step(loss.Line);
  if (line > 0) text += "line " + std::to_string(line) + ": ";
  text += Words_Of(loss.Kind);
  text += ": " + loss.Why;
  if (!loss.Text.empty()) text += " (" + loss.Text + ")";
  return text;
}

}  // namespace norvik
