// setup_tail.h: a machine file that lost its end.
//
// The mark of a good save stands at the beginning of the file, so a copy or an editor that was cut
// short leaves a file that carries the mark and lacks what came last. A file that a person keeps
// short lacks keys everywhere. The sections tell them apart, in the order of the save: the end is
// lost where every section up to some point has most of its keys, the last one those that a save
// writes first, and the sections behind it have none. A file whose sections stand in another order
// has lost its end where its last line was cut and no section but the last one lacks much.
#pragma once

#include <string>
#include <vector>

namespace norvik {

struct Lost_Tail_State {
  // The keys that the file of the last load lacks, "Section.Key" in the order of the save; empty
  // when its end is there.
  std::vector<std::string> Keys;
  // Why nothing moves before the operator has confirmed the values, in words that say what to do;
  // empty: nothing speaks against it.
  std::string Stands_Against;
};
extern Lost_Tail_State Lost_Tail;

// Looks at `Application.MachineFile` as it stands and fills `Keys`. Raises a file fault.
void Look_For_Lost_Tail();

// What to tell, with the number of keys; empty when nothing is lost.
std::string Words_About_Lost_Tail();

}  // namespace norvik
