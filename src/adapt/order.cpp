// The order in which controllers act on the words of one line, wherever they stand in it:
//
//   units -> F -> S, T, M6, M3.., M7.. -> G4 -> plane, radius, length, work offset, G90 -> G10,
//   G28, G92 -> motion -> outputs -> M0, M2
//
// This machine would act on some of them later or at once, so each gets a line of its own.
#include "adapt/context.h"
#include "compiler/text/codes.h"

#include <algorithm>

namespace norvik::adapting {

namespace {

std::string Name_Of_G(int tenths) {
  std::string name = "G" + std::to_string(tenths / 10);
  if (tenths % 10 != 0) name += "." + std::to_string(tenths % 10);
  return name;
}

// Codes of one group exclude each other in a line.
void Refuse_Excluding(const Foreign_Block& block) {
  std::array<std::string, 20> seen;
  const auto take = [&](char letter, int number, const std::string& name) {
    const std::int8_t place = Find_Code(letter, static_cast<std::int16_t>(std::min(number, 1000)));
    if (place == No_Code) return;
    const int group = Code_Table()[static_cast<std::size_t>(place)].Group;
    if (group == 0 || (letter == 'M' && (group == 8 || group == 9))) return;
    auto& first = seen[static_cast<std::size_t>(group)];
    if (!first.empty() && first != name)
      throw Unreadable{first + " and " + name + " exclude each other"};
    first = name;
  };
  // G80 ends the cycles before whatever else the line asks for.
  for (const int tenths : block.G) {
    if (tenths % 10 == 0 && tenths != No_Motion) take('G', tenths / 10, Name_Of_G(tenths));
  }
  seen = {};
  for (const int number : block.M) take('M', number, "M" + std::to_string(number));
}

// Codes of which this machine does what they ask for anyway, or which change nothing of the path.
bool Is_Noted(int tenths) {
  constexpr int noted[] = {80, 150, 400, 490, 500, 610, 611, 640, 690, 940, 970, 980, 990, 800};
  return std::ranges::find(noted, tenths) != std::end(noted);
}
bool Is_Taken(int tenths) {
  constexpr int taken[] = {0,   10,  20,  30,  40,  100, 170, 180, 190, 200, 210, 280, 281,
                           300, 301, 410, 420, 430, 520, 530, 540, 550, 560, 570, 580, 590,
                           591, 592, 593, 700, 710, 450, 730, 810, 820, 830, 850, 860, 890,
                           900, 901, 910, 911, 920, 921, 922, 923, 930, 940, 950};
  return std::ranges::find(taken, tenths) != std::end(taken) || Is_Noted(tenths);
}
// Those that would have moved the tool.
bool Moves_Elsewhere(int tenths) {
  constexpr int moving[] = {50,  51,  52,  53,  330, 331, 382, 383, 384, 385,
                            740, 760, 840, 870, 880, 70,  160, 510, 680, 960};
  return std::ranges::find(moving, tenths) != std::end(moving);
}

// True when the axis words of the line belong to a code that is not expressed.
bool Refuse_Unknown(Context& context, const Foreign_Block& block) {
  bool owns_words = false;
  for (const int tenths : block.G) {
    if (Is_Noted(tenths) && (tenths == 640 || tenths == 610 || tenths == 611)) {
      context.Findings.Note(Name_Of_G(tenths) +
                            " is left out: this machine plans its corners by its setup");
      context.Use("PQ");
    }
    if (Is_Taken(tenths)) continue;
    const std::int8_t place =
        tenths % 10 == 0 ? Find_Code('G', static_cast<std::int16_t>(tenths / 10)) : No_Code;
    std::string what = Name_Of_G(tenths);
    std::string instead;
    if (place != No_Code) {
      const Code& code = Code_Table()[static_cast<std::size_t>(place)];
      what += " (" + std::string(code.Title) + ")";
      instead = code.Instead;
    }
    const bool cycle = tenths == 740 || tenths == 840 || tenths == 870 || tenths == 880;
    if (cycle) continue;  // the motion tells it, with the place of the hole
    owns_words = true;
    context.Mode.Motion = No_Motion;
    Refuse(context, what + " is not expressed", instead, context.Findings.Text_Now(),
           Moves_Elsewhere(tenths));
    // Behind rigid tapping the tool is where it was.
    if (tenths != 331 && block.Has_Any("XYZA")) Lose_Axes(context, Axis_Words_Of(block));
  }
  return owns_words;
}

// Words of axes that this machine has not: as long as they stay where they are, nothing is lost.
void Take_Passive_Words(Context& context, const Foreign_Block& block) {
  for (const char letter : std::string_view("BCUVWE")) {
    const auto value = block[letter];
    if (!value) continue;
    context.Use(std::string(1, letter));
    auto& last = context.Passive[static_cast<std::size_t>(letter - 'A')];
    const bool moves = context.Mode.Incremental ? *value != 0 : *value != last;
    if (!moves) {
      context.Findings.Note_Once(
          (std::string("passive") + letter).c_str(),
          std::string(1, letter) + " is left out as long as it does not move");
      continue;
    }
    last = *value;
    Refuse(context, std::string(1, letter) + " moves, which this machine does not",
           "write the job for X, Y, Z and A", context.Findings.Text_Now(), true);
  }
}

void Note_Unused(Context& context, const Foreign_Block& block) {
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (!block.Has(letter) || context.Used.find(letter) != std::string::npos) continue;
    if (std::string_view("XYZAFST").find(letter) != std::string_view::npos) continue;
    context.Findings.Note(std::string(1, letter) + " has no meaning in this line and is left out");
  }
}

}  // namespace

void Refuse(Context& context, std::string what, std::string instead, std::string_view text,
            bool halts) {
  const std::int32_t number =
      context.Findings.Tell(Adapt_Grade::Refused, std::move(what), std::move(instead));
  context.Simple.Flush(context.Out);
  context.Out.End_Line();
  context.Out.Comment("not adapted " + std::to_string(number) + ": " + Shown_Text(text));
  if (!halts) return;
  context.Out.Code('M', 0);
  context.Out.End_Line();
}

void Execute(Context& context, const Foreign_Block& block) {
  context.Used.clear();
  context.Feed.reset();
  Refuse_Excluding(block);
  Take_Modes(context, block);
  Take_Tool_And_Outputs(context, block);
  Take_Dwell(context, block);
  Take_Compensation(context, block);
  const bool refused = Refuse_Unknown(context, block);
  const bool taken = Take_Offsets(context, block) || refused || block.Has_G(40);
  Take_Passive_Words(context, block);
  if (!taken) Take_Motion(context, block);
  Write_Feed(context);
  Take_Switches(context, block);
  Note_Unused(context, block);
  Take_Stops(context, block);
}

}  // namespace norvik::adapting
