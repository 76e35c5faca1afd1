// Tool length and work offsets, reference points: resolved into coordinates, or refused by name.
#include "adapt/context.h"
#include "core/format.h"

#include <cmath>

namespace norvik::adapting {

namespace {

std::string Number_Text(double value) {
  return Shortest_Text(std::round(value * 1e6) / 1e6);
}

void Take_Length(Context& context, const Foreign_Block& block) {
  if (block.Has_G(490)) context.Place.Set_Length(0);
  if (!block.Has_G(430)) return;
  context.Use("H");
  const double tool = block['H'].value_or(context.Mode.Tool.value_or(1));
  const bool listed = tool >= 0 && tool <= 200;
  const double length = listed ? context.Tool_Lengths[static_cast<std::size_t>(tool)] : 0;
  context.Place.Set_Length(length);
  const std::string name = "tool " + std::to_string(static_cast<int>(tool));
  if (length == 0) {
    context.Findings.Note("G43: the tool list has no length of " + name + ": Z is as written",
                          "set Z to zero with each tool, or give the tool list its length");
  } else {
    context.Findings.Note("G43: the length of " + name + ", " + Number_Text(length) +
                          ", is added to Z from here on");
  }
}

int System_Of(const Foreign_Block& block) {
  for (int system = 54; system <= 59; ++system) {
    if (block.Has_G(system * 10)) return system;
  }
  for (int tenth = 1; tenth <= 3; ++tenth) {
    if (block.Has_G(590 + tenth)) return 59 + tenth;
  }
  return 0;
}

std::string System_Name(int system) {
  return system <= 59 ? "G" + std::to_string(system) : "G59." + std::to_string(system - 59);
}

void Take_System(Context& context, const Foreign_Block& block) {
  const int system = System_Of(block);
  if (system == 0) return;
  if (!context.Place.Use_System(system)) {
    Refuse(context,
           "the display's zero is not known to be that of work offset " + System_Name(system),
           "give it in the options, counted from G54, or set the display's zero there at this halt",
           context.Findings.Text_Now(), true);
    context.Place.Lose_Position();
  } else if (system != 54) {
    context.Findings.Note(System_Name(system) + " is worked into the coordinates",
                          "the display's zero is that of the work offset used first");
  }
}

void Take_G10(Context& context, const Foreign_Block& block) {
  context.Use("LPXYZABCRIJQ");
  const int what = static_cast<int>(block['L'].value_or(0));
  const int number = static_cast<int>(block['P'].value_or(0));
  const Axis_Words words = Axis_Words_Of(block);
  const int system = number == 0 ? context.Mode.System : 53 + number;
  if (what == 2 && number >= 0 && number <= 9 && !block.Has('R')) {
    if (!context.Place.Set_System(system, words)) {
      Refuse(context, "G10 moves the zero that the display counts from",
             "set the display's zero by hand at this halt", context.Findings.Text_Now(), true);
    }
  } else if (what == 20 && number >= 0 && number <= 9) {
    context.Place.Set_System_By_Position(system, words);
  } else if (what == 1 && number >= 1 && number <= 200) {
    if (const auto z = block['Z']) {
      context.Tool_Lengths[static_cast<std::size_t>(number)] = *z * context.Place.Factor();
    }
    if (block.Has('R')) {
      Refuse(context, "G10 L1 sets a tool's radius", "set its diameter in the tool list",
             context.Findings.Text_Now(), false);
    }
  } else {
    Refuse(context, "G10 L" + std::to_string(what) + " is not expressed", "set offsets by hand",
           context.Findings.Text_Now(), false);
  }
}

void Go_Home(Context& context, const Foreign_Block& block, int code,
             const std::optional<Adapt_Axes>& home) {
  const Axis_Words words = Axis_Words_Of(block);
  const bool named = block.Has_Any("XYZA");
  context.Use("XYZA");
  if (!home) {
    Refuse(context, "where G" + std::to_string(code) + " goes to is not known",
           "give the place in the options, or move there by hand at this halt",
           context.Findings.Text_Now(), true);
    Lose_Axes(context, named ? words : Axis_Words{0, 0, 0, std::nullopt});
    return;
  }
  Axis_Words between{}, target{};
  for (int axis = 0; axis < Axis_Count; ++axis) {
    const auto place = static_cast<std::size_t>(axis);
    if (named ? words[place].has_value() : axis < 3) target[place] = (*home)[place];
    if (words[place]) between[place] = context.Place.Target(axis, *words[place]);
  }
  if (named) Write_Line(context, false, between);
  Write_Line(context, false, target);
}

std::optional<Adapt_Axes> Position_Now(const Context& context) {
  Adapt_Axes place{};
  for (int axis = 0; axis < Axis_Count; ++axis) {
    if (axis < 3 && !context.Place.At[static_cast<std::size_t>(axis)]) return std::nullopt;
    place[static_cast<std::size_t>(axis)] = context.Place.At_Or_Zero(axis);
  }
  return place;
}

bool Take_Reference(Context& context, const Foreign_Block& block) {
  if (block.Has_G(280)) return Go_Home(context, block, 28, context.Home), true;
  if (block.Has_G(300)) return Go_Home(context, block, 30, context.Second_Home), true;
  if (block.Has_G(281)) return context.Home = Position_Now(context), true;
  if (block.Has_G(301)) return context.Second_Home = Position_Now(context), true;
  return false;
}

bool Take_Shift(Context& context, const Foreign_Block& block) {
  using enum Coordinates::G92_Change;
  const Axis_Words words = Axis_Words_Of(block);
  if (block.Has_G(920)) return context.Place.Set_Position(words), true;
  if (block.Has_G(921)) return context.Place.Change_G92(Clear), true;
  if (block.Has_G(922)) return context.Place.Change_G92(Suspend), true;
  if (block.Has_G(923)) return context.Place.Change_G92(Restore), true;
  if (block.Has_G(520)) return context.Place.Set_Local(words), true;
  return false;
}

}  // namespace

bool Take_Offsets(Context& context, const Foreign_Block& block) {
  Take_Length(context, block);
  Take_System(context, block);
  if (block.Has_G(100)) {
    context.Simple.Flush(context.Out);
    return Take_G10(context, block), true;
  }
  return Take_Reference(context, block) || Take_Shift(context, block);
}

}  // namespace norvik::adapting
