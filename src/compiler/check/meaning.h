// meaning.h: what a line means on the machine it was written for, against what it does here.
//
// A small interpreter of its own follows the program by the rules of RS274/NGC, from the words as
// their programmer reads them. It shares with the compiler only where the tool stands before a
// line, so that one lost line is not reported again with each line behind it:
//
//   line      as meant                      as compiled
//   G1X1      G1 to X1                      lost: a finding of its own
//   X2        goes on with G1, to X2        a travel move to X2     -> found by this file
//
// It is the last net: it speaks where the line does something else than meant and no rule with a
// better text has found the cause.
#pragma once

#include "compiler/check/blocks.h"
#include "compiler/check/words.h"

#include <cstdint>
#include <optional>
#include <string>

namespace norvik {

// The modes that the program has set so far, as meant.
struct Meant_Modes {
  std::optional<int> Motion;  // G code in tenths: 0, 10, 20, 30, 450, 730, 800..890
  std::string Motion_Line;    // "line 12" that set it
  bool Incremental = false;
  std::optional<bool> Centre_From_Start;  // G91.1 true, G90.1 false; absent: as the setup says
  int Plane = 17;
  int Feed_Mode = 94;
  bool Returns_To_Start = false;  // G98 stands in the program
  Nullable Feed;                  // absent too behind an F word whose number cannot be read
  std::string Unread_Feed;        // "line 12" of that word
  Nullable Cycle_Z, Cycle_R;      // of the cycle in force
};

class Meaning {
 public:
  // Takes a line before it is executed. `where` names it in findings of later lines.
  void Take(const Meant_Line& line, const std::string& where);

  // Compares what the block did with what the line taken last means. `Has_Cause` tells whether a
  // finding of grade lost or wrong stands at the line already.
  void Compare(const Block_Event& event, const std::function<bool()>& has_cause,
               const Report_Finding& report);

  const Meant_Modes& Modes() const { return Now; }

 private:
  void Take_Code(int tenths, const std::string& where);
  std::optional<int> Motion_Of_Line() const;
  std::optional<std::string> Difference(const Block_Event& event) const;
  std::optional<std::string> Line_Difference(const Block_Event& event, int motion) const;
  std::optional<std::string> Arc_Difference(const Block_Event& event, int motion) const;
  std::optional<std::string> Hole_Difference(const Block_Event& event) const;
  std::optional<std::string> End_Difference(const Block_Event& event, const LineArc& row) const;
  std::optional<std::string> Feed_Difference(const LineArc& row) const;
  std::optional<std::string> Centre_Difference(const LineArc& row, int motion) const;
  void Tell_Cycle(const Block_Event& event, const Report_Finding& report) const;
  void Tell_Side(const Block_Event& event, const Report_Finding& report) const;
  Nullable Target(const Block_Event& event, int axis) const;
  std::string By_Mode(int motion) const;

  Meant_Modes Now;

  // --- The line taken last ----------------------------------------------------------------------
  Word_Values Words;
  bool Readable = true;       // letters and numbers only
  bool Own_Words = false;     // a code of it uses the axis words otherwise
  bool Names_Motion = false;  // a motion code stands in it
};

}  // namespace norvik
