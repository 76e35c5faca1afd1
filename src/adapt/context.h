// context.h: what the stages of an adaption share while it goes on.
#pragma once

#include "adapt/adapt.h"
#include "adapt/block.h"
#include "adapt/coordinates.h"
#include "adapt/modes.h"
#include "adapt/report.h"
#include "adapt/simplify.h"
#include "adapt/writer.h"

#include <optional>
#include <string>
#include <string_view>

namespace norvik::adapting {

struct Context {
  Context(const Adapt_Options& options, Adapted& result, bool centres_from_start);

  const Adapt_Options& Options;
  Report Findings;
  Writer Out;
  Modes Mode;
  Coordinates Place;
  Parameters Values;
  Cycle_Words Cycle;
  Simplifier Simple;

  std::optional<Adapt_Axes> Home, Second_Home;
  std::array<double, 201> Tool_Lengths;

  // --- Of the line ---
  std::optional<double> Feed;  // to be written with its motion, units per minute
  std::string Used;            // letters that had a meaning

  // --- Of the program ---
  bool Ended = false;
  bool Centres_Stated = false;  // by G90.1 or G91.1
  int Arcs_That_Fit = 0, Arcs_That_Fit_Otherwise = 0, Full_Circles = 0;
  std::array<double, 26> Passive{};  // of words that move nothing here

  void Use(std::string_view letters) { Used += letters; }
  // A new line, behind the moves that were kept back.
  Writer& Line() {
    Simple.Flush(Out);
    Out.End_Line();
    return Out;
  }
};

// A finding of grade refused, a comment that names it, and a halt where the tool would have moved.
void Refuse(Context& context, std::string what, std::string instead, std::string_view text,
            bool halts);
// A feed, units of the machine per minute, for the motion of the line.
void Take_Feed_Value(Context& context, double feed);
// A feed that no move has taken, on a line of its own.
void Write_Feed(Context& context);

// --- Stages --------------------------------------------------------------------------------------

// The whole line in the order of execution of controllers.
void Execute(Context& context, const Foreign_Block& block);
// Modes that change nothing but state, and what stands for them in the new program.
void Take_Modes(Context& context, const Foreign_Block& block);
void Take_Compensation(Context& context, const Foreign_Block& block);
// Speed, tool, spindle, coolant; dwell; halts and ends.
void Take_Tool_And_Outputs(Context& context, const Foreign_Block& block);
void Take_Dwell(Context& context, const Foreign_Block& block);
void Take_Switches(Context& context, const Foreign_Block& block);
void Take_Stops(Context& context, const Foreign_Block& block);
// G10, G28, G30, G52, G92; true when the axis words were theirs.
bool Take_Offsets(Context& context, const Foreign_Block& block);
// The motion of the line, if it has one.
void Take_Motion(Context& context, const Foreign_Block& block);
void Move_Arc(Context& context, const Foreign_Block& block, bool clockwise);
void Run_Cycle(Context& context, const Foreign_Block& block, int code);

// --- Inside the motions --------------------------------------------------------------------------

Axis_Words Axis_Words_Of(const Foreign_Block& block);
// A straight move to points of this machine; absent axes stay.
void Write_Line(Context& context, bool cutting, const Axis_Words& target);
// By G93 and G95 the feed depends on the move: its length, units of the machine.
void Take_Feed_Of_Move(Context& context, double length);
// Axes that a move would have changed and did not.
void Lose_Axes(Context& context, const Axis_Words& words);

}  // namespace norvik::adapting
