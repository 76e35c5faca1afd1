// program_wire.h: the executing table, `Program_Wire`.
//
// What the plot draws, the run loop executes and the motion tools check. Filled by the end of a
// compile (`Take_Program_Wire`) or from a file (`Load_Program_Wire`), and replaced as a whole each
// time, by a Goto too. In it `IPM_E` is a whole number (halves to the even neighbour), B and C are
// dropped, and no more than `Wire_Table_Limit` wires stand.
//
// A program step is the set of wires that carry it. They need not stand together (a repeat runs the
// same lines again), so an index finds them:
//
//   for (auto k = Program_Wire.Next_Of_Step(step, 0); k; k = Program_Wire.Next_Of_Step(step, *k +
//   1))
//     ... Program_Wire.Rows()[*k] ...
#pragma once

#include "compiler/state/tables.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

// How the table stands to the program that is open. Set by whoever puts a program or a table in
// place; a table that is only handed over counts as whole.
enum class Wire_Standing {
  Whole,            // compiled to the end
  Cut_Short,        // the compile was cut short by ESC or failed
  Another_Program,  // opened or made new, and not compiled since
};

class Program_Wire_State {
 public:
  Wire_Standing Standing = Wire_Standing::Whole;
  // A Goto line stands in the table's place. The next table clears it; `Standing` stays that of the
  // program.
  bool Of_Goto = false;

  // The wires from 0 on. Speeds may be changed in place; `Step` must not, the index stands on it.
  Record_List<Wire>& Rows() { return Wires.Rows; }
  const Record_List<Wire>& Rows() const { return Wires.Rows; }
  std::size_t Count() const { return Wires.Rows.size(); }

  // The first wire at or after `from` that carries `step`; absent when there is none.
  std::optional<std::size_t> Next_Of_Step(std::int32_t step, std::size_t from) const;

  // Replaces the table. Raises an overflow fault for an `IPM_E` beyond 16 bits; the table of before
  // then stands.
  void Take(Table<Wire>&& wires);

 private:
  // Neighbouring wires of one step, sorted by step and place.
  struct Run {
    std::int32_t Step;
    std::uint32_t First, Count;
  };
  static std::vector<Run> Index_Of(const Record_List<Wire>& rows);

  Table<Wire> Wires;
  std::vector<Run> Runs;
};
extern Program_Wire_State Program_Wire;

// Replaces the executing table by wires handed over from a compile.
void Take_Program_Wire(Table<Wire>&& wires);

// Replaces the executing table by a wire file. Raises a file fault as `Read_Wire_Table` does; the
// table of before then stands.
void Load_Program_Wire(const std::string& path);

}  // namespace norvik
