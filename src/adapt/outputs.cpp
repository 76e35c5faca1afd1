// Spindle, coolant, tool, dwell, halts: each on a line of its own, so that this machine acts on it
// where controllers do.
#include "adapt/context.h"

#include <algorithm>
#include <utility>

namespace norvik::adapting {

namespace {

void Write_M(Context& context, int number) {
  context.Line().Code('M', number);
  context.Out.End_Line();
}

void Stop_Spindle(Context& context) {
  context.Mode.Spindle = 5;
  Write_M(context, 5);
}

bool Is_Tool(double value) {
  return value >= 0 && value <= 200;
}

void Take_Tool(Context& context, const Foreign_Block& block) {
  Modes& mode = context.Mode;
  const bool change = block.Has_M(6);
  std::optional<double> tool = block['T'];
  if (tool && !Is_Tool(*tool)) {
    Refuse(context, "the tool list ends at 200", "give the tool a lower number",
           context.Findings.Text_Now(), true);
    tool.reset();
  }
  if (tool && !change && mode.Compensation != 40) {
    // It is only made ready; this machine would take its radius at once.
    mode.Waiting_Tool = tool;
    context.Findings.Note(
        "the tool is named where it is changed: before that its radius would count");
    return;
  }
  if (!tool && change) tool = std::exchange(mode.Waiting_Tool, std::nullopt);
  if (!tool && !change) return;
  if (change && mode.Spindle != 5) {
    context.Findings.Note_Once(
        "M5", "the spindle is stopped before the tool is changed, as controllers do");
    Stop_Spindle(context);
  }
  context.Line();
  if (tool) {
    mode.Tool = tool;
    context.Out.Code('T', static_cast<int>(*tool));
  }
  if (change) context.Out.Code('M', 6);
  context.Out.End_Line();
}

void Take_Spindle(Context& context, const Foreign_Block& block) {
  Modes& mode = context.Mode;
  int spindle = 0;
  for (const int number : block.M) {
    if (number >= 3 && number <= 5) spindle = number;
  }
  auto speed = block['S'];
  if (block.Has_G(40) && !block.Has('P') && !block.Has('X')) speed.reset();
  const bool again = speed && spindle == 0 && mode.Spindle != 5 && mode.Speed != speed;
  if (again) {
    spindle = mode.Spindle;
    context.Findings.Note_Once("S",
                               "S beside a move is written with M3 or M4 on a line of its own: "
                               "this machine takes a speed only there");
  }
  const bool cool[] = {block.Has_M(7), block.Has_M(8), block.Has_M(9)};
  const bool switches = spindle != 0 || cool[0] || cool[1] || cool[2];
  const bool states = speed && (switches || mode.Speed != speed || mode.Spindle == 5);
  if (speed) mode.Speed = speed;
  if (!switches && !states) return;
  context.Line();
  if (spindle != 0) context.Out.Code('M', mode.Spindle = spindle);
  for (int n = 0; n < 3; ++n) {
    if (cool[n]) context.Out.Code('M', 7 + n);
  }
  if (cool[0] || cool[1] || cool[2]) mode.Coolant = !cool[2];
  if (states) context.Out.Short_Word('S', *speed);
  context.Out.End_Line();
}

// M62 to M65: the one output that programs reach here is the auxiliary one.
void Take_Digital_Output(Context& context, const Foreign_Block& block, int number) {
  const bool on = number == 62 || number == 64;
  const auto code = on ? context.Options.Output_High : context.Options.Output_Low;
  context.Use("P");
  if (block['P'].value_or(0) == 0 && code) return Write_M(context, *code);
  Refuse(context, "M" + std::to_string(number) + " switches an output that is not known",
         "set the M codes of the auxiliary output; it is output P0", context.Findings.Text_Now(),
         true);
}

void Take_Input(Context& context, const Foreign_Block& block) {
  context.Use("PELQ");
  const bool plain = block['P'].value_or(0) == 0 && !block.Has('E') &&
                     (!block.Has('L') || block['L'] == 1.0 || block['L'] == 3.0);
  if (!plain) {
    return Refuse(context, "M66 asks for another input or edge than the auxiliary one",
                  "only waiting until the auxiliary input is on is known here",
                  context.Findings.Text_Now(), true);
  }
  if (block.Has('Q')) context.Findings.Note("M66 waits without the end that Q gives it");
  Write_M(context, 66);
}

bool Is_User_Output(const Context& context, int number) {
  return context.Options.Output_High == number || context.Options.Output_Low == number;
}

}  // namespace

void Take_Tool_And_Outputs(Context& context, const Foreign_Block& block) {
  context.Out.End_Line();
  Take_Tool(context, block);
  Take_Spindle(context, block);
}

void Take_Dwell(Context& context, const Foreign_Block& block) {
  if (!block.Has_G(40)) return;
  context.Use("PXUS");
  const bool by_p = block.Has('P');
  const auto time = by_p             ? block['P']
                    : block.Has('X') ? block['X']
                    : block.Has('U') ? block['U']
                                     : block['S'];
  if (!time || *time < 0) throw Unreadable{"G4 needs a time in P or X"};
  if (!by_p && !block.Has('X') && !block.Has('U')) {
    context.Findings.Note("S of G4 is taken as the time in seconds");
  }
  const double seconds = *time * (by_p ? context.Options.Dwell_Factor : 1);
  if (seconds >= 60) {
    context.Findings.Note(
        "the dwell lasts " + std::to_string(static_cast<long>(seconds)) + " seconds",
        "where P counts milliseconds, say so in the options");
  }
  context.Line().Code('G', 4);
  context.Out.Short_Word('P', seconds);
  context.Out.End_Line();
}

void Take_Switches(Context& context, const Foreign_Block& block) {
  for (const int number : block.M) {
    constexpr int known[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 30, 60, 98, 99};
    if (std::ranges::find(known, number) != std::end(known)) continue;
    if (Is_User_Output(context, number)) {
      Write_M(context, number);
    } else if (number >= 62 && number <= 65) {
      Take_Digital_Output(context, block, number);
    } else if (number == 66) {
      Take_Input(context, block);
    } else if (number >= 48 && number <= 53) {
      context.Findings.Note("M" + std::to_string(number) +
                            " is left out: overrides stay as they are");
      context.Use("P");
    } else {
      context.Use("PQ");
      Refuse(context, "M" + std::to_string(number) + " is not known here",
             "leave it out where the job does not need it", context.Findings.Text_Now(), false);
    }
  }
}

void Take_Stops(Context& context, const Foreign_Block& block) {
  for (const int number : {0, 1, 60}) {
    if (block.Has_M(number)) Write_M(context, number);
  }
  const int end = block.Has_M(2) ? 2 : block.Has_M(30) ? 30 : 0;
  if (end == 0) return;
  // M2 leaves more on here than on controllers.
  if (end == 2 && context.Mode.Spindle == 4) Stop_Spindle(context);
  if (end == 2 && context.Mode.Coolant) Write_M(context, 9);
  Write_M(context, end);
  context.Ended = true;
}

}  // namespace norvik::adapting
