#include "adapt/context.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace norvik::adapting {

namespace {

constexpr int Motions[] = {0,   10,  20,  30,  450, 730, 740, 800, 810,
                           820, 830, 840, 850, 860, 870, 880, 890};

bool Is_Arc(int motion) {
  return motion == 20 || motion == 30;
}
bool Is_Cycle(int motion) {
  return motion >= 730 && motion != No_Motion;
}

// Takes over the motion that the line names.
void Name_Motion(Context& context, const Foreign_Block& block) {
  Modes& mode = context.Mode;
  if (block.Has_G(No_Motion)) mode.Motion = No_Motion;
  for (const int code : block.G) {
    if (code == No_Motion || std::ranges::find(Motions, code) == std::end(Motions)) continue;
    const bool begins_cycles = Is_Cycle(code) && !Is_Cycle(mode.Motion.value_or(No_Motion));
    if (begins_cycles) context.Cycle.Start_Z = context.Place.At_Or_Zero(2);
    if (Is_Cycle(code) && code != mode.Motion) {
      const double height = context.Cycle.Start_Z;
      context.Cycle = {};
      context.Cycle.Start_Z = height;
    }
    mode.Motion = code;
  }
}

// G53: the words count from the machine's zero.
void Move_In_Machine(Context& context, const Foreign_Block& block, bool cutting) {
  const Axis_Words words = Axis_Words_Of(block);
  if (!context.Options.Machine_Zero) {
    Refuse(context, "G53: where the machine's zero lies is not known",
           "give it in the options, or move there by hand at this halt",
           context.Findings.Text_Now(), true);
    return Lose_Axes(context, words);
  }
  Axis_Words target{};
  for (int axis = 0; axis < Axis_Count; ++axis) {
    const auto place = static_cast<std::size_t>(axis);
    if (words[place]) {
      target[place] =
          *words[place] * context.Place.Factor_Of(axis) + (*context.Options.Machine_Zero)[place];
    }
  }
  Write_Line(context, cutting, target);
}

void Move_Straight(Context& context, const Foreign_Block& block, bool cutting) {
  const Axis_Words words = Axis_Words_Of(block);
  Axis_Words target{};
  for (int axis = 0; axis < Axis_Count; ++axis) {
    const auto place = static_cast<std::size_t>(axis);
    if (words[place]) target[place] = context.Place.Target(axis, *words[place]);
  }
  if (cutting) {
    double square = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (target[axis] && context.Place.At[axis])
        square += std::pow(*target[axis] - *context.Place.At[axis], 2);
    }
    Take_Feed_Of_Move(context, std::sqrt(square));
  }
  Write_Line(context, cutting, target);
}

void Move(Context& context, const Foreign_Block& block, int motion) {
  if (Is_Arc(motion)) return Move_Arc(context, block, motion == 20);
  if (Is_Cycle(motion)) return Run_Cycle(context, block, motion / 10);
  context.Use("XYZA");
  if (block.Has_G(530)) return Move_In_Machine(context, block, motion != 0);
  if (motion == 450) {
    throw Unreadable{"G45 (a cut at the travel feed on this machine) is an offset elsewhere"};
  }
  Move_Straight(context, block, motion != 0);
}

}  // namespace

Axis_Words Axis_Words_Of(const Foreign_Block& block) {
  return {block['X'], block['Y'], block['Z'], block['A']};
}

void Lose_Axes(Context& context, const Axis_Words& words) {
  for (std::size_t axis = 0; axis < words.size(); ++axis) {
    if (!words[axis]) continue;
    context.Place.At[axis].reset();
    context.Place.Lost = true;
  }
}

void Take_Feed_Of_Move(Context& context, double length) {
  if (context.Mode.Feed_Mode != 93) return;
  if (!(length > 0)) {
    context.Findings.Note("G93: the move has no length in X, Y and Z; the feed stays as it was");
    return;
  }
  Take_Feed_Value(context, length * context.Mode.Feed);
}

void Take_Feed_Value(Context& context, double feed) {
  if (context.Out.Numbers().Too_Large(feed)) throw Unreadable{"the feed is too large"};
  context.Feed = feed;
}

void Write_Feed(Context& context) {
  if (!context.Feed) return;
  context.Line().Short_Word('F', *std::exchange(context.Feed, std::nullopt));
  context.Out.End_Line();
}

void Write_Line(Context& context, bool cutting, const Axis_Words& target) {
  Writer& out = context.Out;
  if (std::ranges::none_of(target, [](const auto& word) { return word.has_value(); })) return;
  if (out.Line_Count() > static_cast<std::size_t>(context.Options.Most_Lines) * 2)
    throw Unreadable{"the program is too long written out"};
  for (std::size_t axis = 0; axis < target.size(); ++axis) {
    if (target[axis] && out.Numbers().Too_Large(*target[axis]))
      throw Unreadable{"the place is too far away"};
  }
  context.Place.Begin_Motion();
  for (std::size_t axis = 0; axis < target.size(); ++axis) {
    if (target[axis]) context.Place.At[axis] = target[axis];
  }
  if (cutting && !context.Feed && context.Simple.Takes(out, target)) return;
  context.Simple.Flush(out);
  out.End_Line();
  out.Code('G', cutting ? 1 : 0);
  for (std::size_t axis = 0; axis < target.size(); ++axis) {
    if (target[axis]) out.Word(Axis_Letters[axis], *target[axis]);
  }
  if (context.Feed) out.Short_Word('F', *std::exchange(context.Feed, std::nullopt));
  out.End_Line();
  context.Simple.Begin_At(out, context.Place.At);
}

void Take_Motion(Context& context, const Foreign_Block& block) {
  Name_Motion(context, block);
  const bool axes = block.Has_Any("XYZA");
  auto& motion = context.Mode.Motion;
  const bool moves = axes || (motion && Is_Arc(*motion) && block.Has_Any("IJKR"));
  if (!moves) return;
  if (!motion) {
    motion = 0;
    context.Findings.Note("no motion code stands before this line: it is taken as G0",
                          "write G0 or G1 into the line");
  }
  if (*motion == No_Motion)
    throw Unreadable{"axis words without a motion (behind G80, or a code not expressed)"};
  if (context.Mode.Compensation != 40 && Is_Arc(*motion) && context.Mode.Plane != 17) {
    throw Unreadable{"an arc in another plane than X and Y while the tool's radius counts"};
  }
  Move(context, block, *motion);
}

}  // namespace norvik::adapting
