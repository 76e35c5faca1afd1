// flow.h: which line comes next: subprograms, branches, loops.
//
//   o100 sub / o100 call [1] [2] / o100 return / o100 endsub      O<name> too
//   o101 if [..] / elseif [..] / else / endif
//   o102 while [..] / endwhile     o103 do / while [..]     o104 repeat [n] / endrepeat
//   break, continue
//   M98 P100 L3 ... O100 ... M99   the other habit; M98 12 runs a macro of this machine
//   REPEAT 3 ... ENDREPEAT         this machine's own: once on the way and three times more
//
// All of them are written out: the new program has the lines in the order in which they run.
#pragma once

#include "adapt/context.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvik::adapting {

class Flow {
 public:
  Flow(const GCode_Text& program, Context& context) : Program(program), All(context) {}

  // The line that runs next; 0: none.
  std::int32_t Next();
  // True when the line is one of these and done with; a line with REPEAT goes on without the word.
  // Raises Unreadable; the line is then passed over.
  bool Take(Foreign_Line& line, std::int32_t number);
  bool Used() const { return Uses; }

 private:
  struct Mark {
    std::int32_t Line;
    std::string Label, Keyword;
    std::size_t Rest;  // of the code, behind the keyword
  };
  struct Loop {
    std::string Label;
    std::int32_t Line;
    std::int64_t Left;
    std::size_t Depth;
  };
  struct Call {
    std::int32_t Back, Start;  // behind the call; first line of the subprogram
    std::int64_t Left;         // times that it runs again
    bool By_Number;            // M98
    std::size_t Loops;
  };

  static std::optional<Mark> Read_Mark(std::string_view code, std::int32_t line);
  void Read_Marks();
  const Mark* Find(std::string_view label, std::string_view keyword, std::int32_t behind) const;
  void Jump_Behind(const Mark* mark, const char* what);
  double Condition(std::string_view code, std::size_t rest) const;

  void Act(const Mark& mark, std::string_view code);
  void Act_On_Subprogram(const Mark& mark, std::string_view code);
  void Act_On_Branch(const Mark& mark, std::string_view code);
  void Act_On_Loop(const Mark& mark, std::string_view code);
  void Leave_Loop(const Mark& mark);
  void Call_Subprogram(const Mark& mark, std::string_view code);
  void Return();
  bool Take_Number_Call(const Foreign_Line& line);
  void Take_Repeat(Foreign_Line& line, std::int32_t number);

  const GCode_Text& Program;
  Context& All;
  std::int32_t At = 1;
  bool Uses = false;
  std::optional<std::vector<Mark>> Marks;
  std::vector<Loop> Loops;
  std::vector<Call> Calls;
  // --- REPEAT ---
  std::int32_t Repeat_Start = 0, Repeat_End = 0;  // End: the ENDREPEAT that runs its lines again
  std::int64_t Repeat_Count = 0;
};

}  // namespace norvik::adapting
