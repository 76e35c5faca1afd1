// program_wire.h: the executing table, `Program_Wire`, and its one owner.
//
// What the plot draws, the run loop executes and the motion tools check. It is replaced as a whole,
// by one call, which says what the new table is and what it was made from; whoever shows it reacts
// to the one event behind that call.
//
//   compile, Goto line, motion file --Install_Table--> Program_Wire --Installed--> plot, estimate
//   end of a Goto --Put_Back_Table--> the table that the Goto line took the place of
//
// In the table `IPM_E` is a whole number (halves to the even neighbour) unless the correction
// `Drop_Rounding_Of_Loads` is on, B and C are dropped, and no more than `Wire_Table_Limit` wires
// stand.
//
// A program step is the set of wires that carry it. They need not stand together (a repeat runs the
// same lines again), so an index finds them:
//
//   for (auto k = Program_Wire.Next_Of_Step(step, 0); k; k = Program_Wire.Next_Of_Step(step, *k +
//   1))
//     ... Program_Wire.Rows()[*k] ...
#pragma once

#include "compiler/state/compile_losses.h"
#include "compiler/state/tables.h"
#include "compiler/text/compile_sources.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace norvik {

enum class Table_Kind : std::uint8_t {
  None,  // nothing has been installed yet
  Program,
  Goto,         // one line of the panel
  Motion_File,  // wires as a file holds them, of no text
};

// What an executing table is and what it was made from.
struct Table_Origin {
  Table_Kind Kind = Table_Kind::Program;
  // False: the compile was cut short by ESC or failed, or the motion file has lost lines; to look
  // at, not to run.
  bool Whole = true;
  // Absent: nothing is known that could change. Of a motion file only the text counts, which is the
  // one that stood in the window when it was loaded: another one has taken its place since.
  std::shared_ptr<const Compile_Sources> Sources = {};
  Compile_Losses_State Losses = {};
};

// How the table stands to the program as it is now.
enum class Table_Standing : std::uint8_t {
  Ready,
  Of_Goto,        // a Goto line has taken the program's place
  Other_Text,     // the program's text is another one: opened, edited, or being typed
  Cut_Short,      // the table is not whole
  Other_Sources,  // a setting, the tools or a macro file are not what they were
};

class Program_Wire_State {
 public:
  const Table_Origin& Origin() const { return From; }
  // What the program's table is while a Goto line stands in its place; otherwise `Origin`.
  const Table_Origin& Program_Origin() const { return Aside ? Aside->From : From; }

  // The wires from 0 on. Speeds may be changed in place; `Step` must not, the index stands on it.
  Record_List<Wire>& Rows() { return Wires.Rows; }
  const Record_List<Wire>& Rows() const { return Wires.Rows; }
  std::size_t Count() const { return Wires.Rows.size(); }

  // The first wire at or after `from` that carries `step`; absent when there is none.
  std::optional<std::size_t> Next_Of_Step(std::int32_t step, std::size_t from) const;
  // The highest step of the program's table, whatever stands in its place; 0 for an empty one.
  std::int32_t Program_Last_Step() const {
    const auto& runs = Aside ? Aside->Runs : Runs;
    return runs.empty() ? 0 : runs.back().Step;
  }
  // The first step whose wires stand in several places, as a repeat leaves them; absent: none.
  std::optional<std::int32_t> First_Scattered_Step() const;

  // For `Install_Table` and `Put_Back_Table`, which tell the others.
  void Install(Table<Wire>&& wires, Table_Origin&& origin);
  bool Put_Back();

 private:
  // Neighbouring wires of one step, sorted by step and place.
  struct Run {
    std::int32_t Step;
    std::uint32_t First, Count;
  };
  // A table that a Goto line took the place of.
  struct Set_Aside {
    Table<Wire> Wires;
    std::vector<Run> Runs;
    Table_Origin From;
  };

  Table<Wire> Wires;
  std::vector<Run> Runs;
  Table_Origin From{.Kind = Table_Kind::None, .Sources = {}, .Losses = {}};
  std::optional<Set_Aside> Aside;
};
extern Program_Wire_State Program_Wire;

// What the rooms above do when the table has been replaced. Does nothing by default.
struct Program_Wire_Host_Operations {
  std::function<void()> Installed = [] {};
};
extern Program_Wire_Host_Operations Program_Wire_Host;

// Replaces the executing table. A Goto line sets the table of before aside; any other forgets what
// was set aside. Raises an overflow fault for an `IPM_E` beyond 16 bits; the table of before then
// stands.
void Install_Table(Table<Wire>&& wires, Table_Origin origin = {});
// Puts back what a Goto line took the place of; nothing when there is none.
void Put_Back_Table();

// Replaces the executing table by a wire file. Raises a file fault as `Read_Wire_Table` does; the
// table of before then stands.
void Load_Program_Wire(const std::string& path, Table_Origin origin);

// The last step that a run of the program's table can begin or end at: that of the text, or of the
// motion file that has taken its place.
std::int32_t Last_Program_Step();

struct Table_Judgement {
  Table_Standing Standing = Table_Standing::Ready;
  std::string Changed;  // of Other_Sources: what, in words that begin a sentence
};
// How the executing table stands to the program.
Table_Judgement Judge_Table();
// The same for the program's own table, whatever stands in its place.
Table_Judgement Judge_Program_Table();

}  // namespace norvik
