#include "adapt/context.h"

#include <utility>

namespace norvik::adapting {

namespace {

void Take_Units(Context& context, const Foreign_Block& block) {
  Modes& mode = context.Mode;
  const bool inch = block.Has_G(200) || block.Has_G(700);
  if (!inch && !block.Has_G(210) && !block.Has_G(710)) return;
  context.Place.Take_Units(!inch);
  mode.Units_Wait = !mode.Units_Written;
}

void Take_Feed(Context& context, const Foreign_Block& block) {
  Modes& mode = context.Mode;
  for (const int feed_mode : {93, 94, 95}) {
    if (block.Has_G(feed_mode * 10)) mode.Feed_Mode = feed_mode;
  }
  if (const auto speed = block['S']; speed && mode.Feed_Mode == 95) mode.Speed = *speed;
  const auto feed = block['F'];
  if (!feed) return;
  mode.Feed = *feed;
  if (mode.Feed_Mode == 94) Take_Feed_Value(context, *feed * context.Place.Factor());
  if (mode.Feed_Mode != 95) return;
  if (!mode.Speed || *mode.Speed <= 0) {
    Refuse(context, "F counts by turns of the spindle (G95), and no S stands before it",
           "write S before it, or F in units per minute", context.Findings.Text_Now(), true);
    return;
  }
  Take_Feed_Value(context, *feed * context.Place.Factor() * *mode.Speed);
  context.Findings.Note_Once("G95",
                             "F by turns of the spindle is written in units per minute, by S");
}

// Modes stand together on one line.
void Write_Mode(Context& context, int code) {
  if (!context.Out.Line_Is_Open()) context.Line();
  context.Out.Code('G', code);
}

void Take_Plane_And_Distance(Context& context, const Foreign_Block& block) {
  Modes& mode = context.Mode;
  if (std::exchange(mode.Units_Wait, false)) {
    mode.Units_Written = true;
    Write_Mode(context, context.Options.Millimetres ? 21 : 20);
  }
  for (const int plane : {17, 18, 19}) {
    if (block.Has_G(plane * 10)) mode.Plane = plane;
  }
  if (block.Has_G(170) && !std::exchange(mode.Plane_Written, true)) Write_Mode(context, 17);
  if (block.Has_G(910)) mode.Incremental = true;
  if (block.Has_G(900)) mode.Incremental = false;
  if (block.Has_G(900) && !std::exchange(mode.Distance_Written, true)) Write_Mode(context, 90);
  if (block.Has_G(901) || block.Has_G(911)) {
    mode.Centres_From_Start = block.Has_G(911);
    context.Centres_Stated = true;
  }
  if (block.Has_G(980)) mode.Returns_To_R = false;
  if (block.Has_G(990)) mode.Returns_To_R = true;
}

}  // namespace

void Take_Modes(Context& context, const Foreign_Block& block) {
  Take_Units(context, block);
  Take_Feed(context, block);
}

void Take_Compensation(Context& context, const Foreign_Block& block) {
  Modes& mode = context.Mode;
  Take_Plane_And_Distance(context, block);
  if (block.Has_G(400) && (mode.Compensation != 40 || !mode.Compensation_Written)) {
    mode.Compensation = 40;
    mode.Compensation_Written = true;
    Write_Mode(context, 40);
  }
  context.Out.End_Line();
  const int side = block.Has_G(410) ? 41 : block.Has_G(420) ? 42 : 0;
  if (side == 0) return;
  context.Use("D");
  if (mode.Plane != 17) {
    Refuse(context, "radius compensation in another plane than X and Y is not expressed",
           "write the contour for the tool's centre", context.Findings.Text_Now(), true);
    return;
  }
  const auto diameter = [&](double tool) {
    return tool >= 0 && tool <= 200 ? context.Options.Tool_Diameters[static_cast<std::size_t>(tool)]
                                    : 0.0;
  };
  const double tool = mode.Tool.value_or(1), wanted = block['D'].value_or(tool);
  if (wanted != tool && diameter(wanted) != diameter(tool)) {
    Refuse(context,
           "D" + std::to_string(static_cast<int>(wanted)) +
               " names the radius of another tool than the one in force, T" +
               std::to_string(static_cast<int>(tool)),
           "give tool T the diameter that D means", context.Findings.Text_Now(), true);
    return;
  }
  if (diameter(tool) == 0) {
    context.Findings.Note("tool " + std::to_string(static_cast<int>(tool)) +
                              " has no diameter in the tool list: the contour is not moved",
                          "set its diameter in the tool list");
  }
  mode.Compensation = side;
  mode.Compensation_Written = true;
  Write_Mode(context, side);
  context.Out.End_Line();
}

}  // namespace norvik::adapting
