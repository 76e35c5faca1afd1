#include "compiler/check/findings.h"

#include "compiler/text/program_text.h"

#include <array>

namespace norvik {

namespace {

using enum Check_Grade;

// In the order of Check_Kind.
// clang-format off
constexpr std::array<Check_Kind_Info, static_cast<std::size_t>(Check_Kind::Count_)> Kinds = {{
    {Lost, "G or M word runs into the next word", "put a blank behind each G and M word"},
    {Lost, "block cannot be read or executed", "correct the word named"},
    {Wrong, "words run together are cut wrongly", "put a blank between the words"},
    {Wrong, "letters of a second comment are read as words", "keep one comment a line"},
    {Note, "comment is not closed", "close it; its last character is lost, and so is a word behind it"},
    {Wrong, "line number swallows the word behind it", "put a blank behind the N word"},
    {Ignored, "letter is never read", "leave it out"},
    {Wrong, "axis that this machine does not move", "X, Y, Z and A move; write the job for these"},
    {Wrong, "text is not read", "write numbers, not parameters or expressions"},
    {Wrong, "second word of a letter is not read", "write one word of each letter in a line"},
    {Wrong, "comma in a number ends it or is its decimal sign", "write the number without commas"},
    {Wrong, "line with a slash runs", "take the line out, or take the slash away where it is to run"},
    {Wrong, "line is too long to be compared", "break it into lines of its own for each move"},
    {Ignored, "code has no effect", "leave it out"},
    {Wrong, "code is missing here and the job runs otherwise", "write what it does in other words"},
    {Note, "code is not needed", "the word can go"},
    {Wrong, "program is in other units than the machine", "scale the program to the machine's units"},
    {Note, "fraction of a code is rounded", "write the whole number that is meant"},
    {Wrong, "fraction of a code is rounded to another code", "leave the code out"},
    {Wrong, "codes of one group in one line", "write one of them"},
    {Note, "word is rounded by the axis format", "give the axis format more decimals, or write fewer"},
    {Ignored, "word is not used", "leave it out"},
    {Lost, "axis words without motion", "write G0 or G1 in front of the axis words"},
    {Wrong, "several motion codes in one line", "write one motion code a line"},
    {Wrong, "first motion has no code", "write G0 or G1; without it the last compile decides"},
    {Wrong, "bare words behind G80 are travel moves", "write G0 or G1 behind G80"},
    {Wrong, "cutting move without feed", "write an F word above 0 before it"},
    {Note, "cutting begins with the feed of the setup", "write an F word before the first cutting move"},
    {Wrong, "M6 beside a move does not pause", "put M6 on a line of its own"},
    {Wrong, "M2 leaves the counter-clockwise spindle on", "write M5 before it, or M30"},
    {Note, "long dwell", "P is in seconds, not milliseconds"},
    {Wrong, "dwell comes before the outputs switch",
     "write G4 on a line of its own behind it, or switch on Outputs_Before_Dwell (Corrections)", "Outputs_Before_Dwell"},
    {Wrong, "move before a stop ends at full feed",
     "switch on Slow_Before_Stops (Corrections), or write a short slow move before the stop", "Slow_Before_Stops"},
    {Wrong, "tool change waits with the spindle on", "write M5 on a line before M6"},
    {Wrong, "feed is not in units per minute", "write F in units per minute, with G94"},
    {Wrong, "line runs otherwise than it reads", "mend what was lost before it, or write code and words out in this line"},
    {Wrong, "arc takes over an old centre", "write both centre words"},
    {Wrong, "arc takes over an old end", "write both end words of the arc"},
    {Wrong, "arc becomes a straight line", "repeat G2 or G3 with its centre words"},
    {Wrong, "the two radii of the arc differ", "correct end or centre; the last chord would be a jump"},
    {Wrong, "radius of the arc is not used", "write centre words"},
    {Wrong, "arc by radius runs the long way round", "write centre words"},
    {Wrong, "height of an incremental arc is absolute", "write the height on a line of its own"},
    {Wrong, "arc is walked around another centre", "set mode, plane and arc setup as the text says"},
    {Wrong, "centre of the arc counts from another point", "set GC_IJ_Incremental as the program means it"},
    {Wrong, "arc runs the other way round", "write G3 for G2 and G2 for G3 in G18 and G19"},
    {Lost, "drill cycle lacks words", "write Z, R and X or Y"},
    {Wrong, "a word of the cycle counts as 0", "write X and Y, and move there before the cycle"},
    {Wrong, "cycle repeats by an old L", "write L1 in the line"},
    {Wrong, "cycle takes an old word", "write Z and R behind each new G81, G82 or G83"},
    {Note, "cycle returns to R", "choose R above all clamps"},
    {Wrong, "cycle under G98 returns to R", "choose R above all clamps, or write G0 Z behind each hole"},
    {Lost, "hole is not drilled", "write it with G81, G82 or G83, or out with G1 and G0"},
    {Wrong, "pecks do not reach the bottom", "choose Q as a whole part of the depth from R"},
    {Wrong, "pecks start from the R word as written", "write G90 for G83"},
    {Lost, "macro cannot be called", "give the macro a file in the macro list"},
    {Lost, "macro calls itself", "use REPEAT, or call another macro; a macro never runs within itself"},
    {Lost, "macro call without number", "write the number behind M98"},
    {Wrong, "other words of a macro call are lost", "put M98 on a line of its own"},
    {Wrong, "comma ends a line of a macro file", "write a point as decimal sign, and no commas"},
    {Note, "repeat without count", "write the count behind REPEAT; without it the lines run twice"},
    {Note, "repeat runs once more than its count", "write one less where the count was meant as the total"},
    {Wrong, "repeat without end", "write ENDREPEAT"},
    {Wrong, "end of a repeat without its beginning", "write REPEAT in front of the lines"},
    {Wrong, "repeat within a repeat", "put the inner repeat into a macro"},
    {Wrong, "count of a repeat is not read", "write one blank and a whole number up to 32767 behind REPEAT"},
    {Wrong, "repeated lines run in another order",
     "switch on Run_In_Table_Order (Corrections), or write the lines out as often as they are to run", "Run_In_Table_Order"},
    {Wrong, "compensation with a tool of no diameter", "set the tool's diameter in the tool list and load the list"},
    {Wrong, "compensation takes another tool's diameter", "set the diameter of tool T to what D means"},
    {Wrong, "compensation in another plane than X and Y", "write G17 before the first arc and keep it to the end"},
    {Wrong, "tool does not fit the contour", "take a smaller tool, or give the contour more room there"},
    {Wrong, "way to or from the contour cuts into it", "move away from the contour before G40, and towards it behind G41 or G42"},
    {Wrong, "compensation changes its side without G40", "write G40 with a move away from the contour between them"},
    {Wrong, "way to or from the contour leaves material", "come to the contour and leave it along it, or on an arc"},
    {Note, "move is passed over by the compensation", "take a smaller tool, or leave out what the tool cannot reach"},
    {Wrong, "travel is longer than the axis", "move or scale the part"},
    {Lost, "more records than the compiler makes", "split the program"},
    {Lost, "more wires than the machine's table takes", "split the program, or lower the arc resolution"},
}};
// clang-format on

}  // namespace

const Check_Kind_Info& Info_Of(Check_Kind kind) {
  return Kinds[static_cast<std::size_t>(kind)];
}

std::string_view Name_Of(Check_Grade grade) {
  switch (grade) {
    case Lost:
      return "lost";
    case Wrong:
      return "wrong";
    case Ignored:
      return "ignored";
    case Note:
      break;
  }
  return "note";
}

std::int32_t Check_Finding::Text_Line() const {
  return Macro ? Line : Text_Line_Of_Step(Line);
}

}  // namespace norvik
