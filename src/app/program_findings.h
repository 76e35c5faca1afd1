// program_findings.h: what the check says of the program, and whether it is run all the same.
//
//   opened, compiled --Check_Program--> List --> the editor's marks and list
//   Play: a finding "lost" or "wrong" --> a question, once for each version of the text
#pragma once

#include "compiler/check/program_check.h"
#include "compiler/text/compile_sources.h"

#include <memory>
#include <string_view>
#include <vector>

namespace norvik {

struct Program_Findings_State {
  std::vector<Check_Finding> List;
  // The text that the list is of, and what the table was made from when it was checked.
  std::shared_ptr<const GCode_Text> Text;
  std::shared_ptr<const Compile_Sources> Sources;
  // The operator runs this text as it is.
  std::shared_ptr<const GCode_Text> Agreed;
};
extern Program_Findings_State Program_Findings;

// Checks the program and shows the findings. Yields; not while something moves.
void Check_Now();
// The same behind a compile or an opening; a very long program waits for its button or for Play.
void Check_After_Compile();

// The key of the setting by which a finding of this kind would not come up or would be another one;
// empty: there is none.
std::string_view Setting_Of(Check_Kind kind);

// Before a run: true when nothing is lost or read wrongly, or the operator runs it all the same.
bool May_Begin_Run();

}  // namespace norvik
