#include "compiler/interpreter/interpreter.h"

#include "compiler/arcs/records.h"
#include "compiler/interpreter/drill_cycles.h"
#include "compiler/state/compile_losses.h"
#include "compiler/state/record_table.h"
#include "compiler/text/block_reader.h"
#include "compiler/text/user_outputs.h"
#include "core/application.h"
#include "core/error_log.h"
#include "core/fault.h"
#include "core/numbers.h"
#include "core/rounding.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>

namespace norvik {

namespace {

struct Interpreter_State {
  Block Now;               // used again for each line, so that reading a line allocates nothing
  User_Output_Codes User;  // of this compile
};
Interpreter_State Interpreter;

// --- F, S and T ----------------------------------------------------------------------------------

void Take_Feed_And_Tool(const Block& block) {
  if (const Nullable feed = block.Words[word::F]) {
    Compiler.CurrentFeed = To_Single(*feed);
    Compiler.CutFeed = Compiler.CurrentFeed;
  }
  if (const Nullable tool = block.Words[word::T]) {
    Compiler.ToolNow = tool;
    const auto row = To_Int16(*tool);
    Compiler.ToolDiameter = Tools.Diameter[row];
    Compiler.ToolLength = Tools.Length[row];
  }
}

// --- Codes ---------------------------------------------------------------------------------------

void Act(Block& block, const Code& code);

void Act_On_Codes(Block& block, int first, int end) {
  const auto table = Code_Table();
  for (int place = block.Codes.Next(first, end); place != No_Code;
       place = block.Codes.Next(place + 1, end)) {
    const Code& code = table[static_cast<std::size_t>(place)];
    Act(block, code);
  }
}

void Act_On(Block& block, std::int16_t g_code) {
  const Code& code = Code_Table()[static_cast<std::size_t>(G_Code_Place(g_code))];
  Act(block, code);
}

// --- Modal motion --------------------------------------------------------------------------------

bool Is_Arc(std::int16_t g_code) {
  return g_code == 2 || g_code == 3;
}

// Codes that a block with bare axis words and no centre repeats.
bool Repeats_Without_Centre(std::int16_t g_code) {
  constexpr std::int16_t codes[] = {0, 1, 45, 81, 82, 83};
  return std::ranges::find(codes, g_code) != std::end(codes);
}

void Move_By_Mode(Block& block) {
  const Word_Values& words = block.Words;
  if (!words[word::X] && !words[word::Y] && !words[word::Z]) return;
  const auto mode = Compiler.ModalGroups[modal_group::Motion];
  if (words[word::I] || words[word::J] || words[word::K]) {
    const std::int16_t arc = mode && Is_Arc(*mode) ? *mode : Compiler_Memory.LastArcCode;
    if (Is_Arc(arc)) Act_On(block, arc);
    return;
  }
  const bool by_mode = mode && Repeats_Without_Centre(*mode);
  Act_On(block, by_mode ? *mode : Compiler_Memory.LastLinearCode);
}

// --- Outputs -------------------------------------------------------------------------------------

bool Has_M(const Block& block, std::optional<std::int16_t> number) {
  return number && block.MFlags.test(static_cast<std::size_t>(*number));
}

void Act_On_User_Outputs(const Block& block) {
  if (Has_M(block, Interpreter.User.High)) Compiler.Outputs[4] = Output_On;
  if (Has_M(block, Interpreter.User.Low)) Compiler.Outputs[4] = Output_Off;
}

void Reset_Outputs() {
  for (int output = 0; output <= 4; ++output) Compiler.Outputs[output] = Output_Unchanged;
}

// A record executes its dwell before its outputs, so that those of the dwell's block need a record
// of their own in front of it.
void Write_Outputs_First(Block& block) {
  Act_On_User_Outputs(block);
  bool any = block.Words[word::S].has_value();
  for (int output = 0; output <= 4; ++output)
    any = any || Compiler.Outputs[output] != Output_Unchanged;
  Compiler.PauseNext = 0;
  if (any) WriteControlRecord(block);
}

std::optional<std::int16_t> User_Code(const std::string& entry, std::string_view key) {
  if (entry.empty()) return std::nullopt;
  const auto number = Try_Number(entry);
  if (number && *number >= 0 && *number <= Last_M_Code) return To_Int16(*number);
  ErrorLogWrite("The machine file's " + std::string(key) + " is \"" + entry.substr(0, 40) +
                "\": write the number of an M code from 0 to 1000, or nothing");
  return std::nullopt;
}

// --- Lines ---------------------------------------------------------------------------------------

Axis_Words Words_Of(const Block& block) {
  const Word_Values& words = block.Words;
  return {words[word::X], words[word::Y], words[word::Z],
          words[word::A], words[word::B], words[word::C]};
}

void Line(Block& block, const Code& code, bool cutting, float feed, std::int16_t linear_code) {
  Compiler.FeedMoveNow = cutting;
  Compiler.CurrentFeed = feed;
  MoveLine(Words_Of(block));
  Compiler.ModalGroups[modal_group::Motion] = code.Number;
  Compiler_Memory.LastLinearCode = linear_code;
}

// --- What the codes do ---------------------------------------------------------------------------

namespace code_action {

void Retool(Block&, const Code&) {
  Compiler.PauseNext = -1;
  Compiler.CurrentFeed = 0;
}

void Spindle_Clockwise(Block&, const Code&) {
  Compiler.Outputs[0] = Output_On;
  Compiler.Outputs[1] = Output_Off;
}

void Spindle_Counter_Clockwise(Block&, const Code&) {
  Compiler.Outputs[1] = Output_On;
  Compiler.Outputs[0] = Output_Off;
}

void Spindle_Off(Block&, const Code&) {
  Compiler.Outputs[0] = Compiler.Outputs[1] = Output_Off;
}

void Mist_On(Block&, const Code&) {
  Compiler.Outputs[2] = Output_On;
}

void Flood_On(Block&, const Code&) {
  Compiler.Outputs[3] = Output_On;
}

void Coolant_Off(Block&, const Code&) {
  Compiler.Outputs[2] = Compiler.Outputs[3] = Output_Off;
}

void Dwell(Block& block, const Code&) {
  const Nullable seconds = Compiler.Last[word::P];
  if (!seconds) throw Fault(Fault_Number::Type_Mismatch, "G4 needs a P word: the dwell in seconds");
  if (MachineSetup.Outputs_Before_Dwell) Write_Outputs_First(block);
  Compiler.PauseNext = To_Single(*seconds);
  WriteControlRecord(block);
  Compiler.PauseNext = 0;
}

void Set_Mode(Block&, const Code& code) {
  Compiler.ModalGroups[code.Group] = code.Number;
}

void Set_Compensation(Block& block, const Code& code) {
  Set_Mode(block, code);
  Compiler.CompModeNow = static_cast<std::int16_t>(code.Number - 40);  // G40, G41, G42: 0, 1, 2
  if (Compiler.CompModeNow != 0) Compiler.UsesCompensation = true;
}

void Arc(Block& block, const Code& code) {
  if (code.Number == 2) {
    ArcG2(block);
  } else {
    ArcG3(block);
  }
}

void Cancel_Cycle(Block&, const Code& code) {
  Compiler.FeedMoveNow = false;
  Compiler.ModalGroups[code.Group] = 0;
}

void Drill_Cycle(Block& block, const Code& code) {
  Run_Drill_Cycle(block, code.Number);
}

void Line_Travel(Block& block, const Code& code) {
  Line(block, code, false, Compiler.TravelFeed, 1);
}

void Line_Cutting(Block& block, const Code& code) {
  Line(block, code, true, Compiler.CutFeed, 1);
}

void Line_Cutting_At_Travel_Feed(Block& block, const Code& code) {
  Line(block, code, true, Compiler.TravelFeed, 45);
}

void Halt(Block&, const Code&) {
  Compiler.PauseNext = -1;
}

void End_Program(Block&, const Code& code) {
  Compiler.PauseNext = -1;
  Compiler.Outputs[0] = Output_Off;
  if (code.Number == 30) {
    Compiler.Outputs[1] = Compiler.Outputs[2] = Compiler.Outputs[3] = Output_Off;
  }
}

void Wait_For_Input(Block&, const Code&) {
  Compiler.WaitInput = 1;
}

}  // namespace code_action

void Act(Block& block, const Code& code) {
  switch (code.Action) {
    case Code_Action::Nothing:
      return;
    case Code_Action::Retool:
      return code_action::Retool(block, code);
    case Code_Action::Spindle_Clockwise:
      return code_action::Spindle_Clockwise(block, code);
    case Code_Action::Spindle_Counter_Clockwise:
      return code_action::Spindle_Counter_Clockwise(block, code);
    case Code_Action::Spindle_Off:
      return code_action::Spindle_Off(block, code);
    case Code_Action::Mist_On:
      return code_action::Mist_On(block, code);
    case Code_Action::Flood_On:
      return code_action::Flood_On(block, code);
    case Code_Action::Coolant_Off:
      return code_action::Coolant_Off(block, code);
    case Code_Action::Dwell:
      return code_action::Dwell(block, code);
    case Code_Action::Set_Mode:
      return code_action::Set_Mode(block, code);
    case Code_Action::Set_Compensation:
      return code_action::Set_Compensation(block, code);
    case Code_Action::Arc:
      return code_action::Arc(block, code);
    case Code_Action::Cancel_Cycle:
      return code_action::Cancel_Cycle(block, code);
    case Code_Action::Drill_Cycle:
      return code_action::Drill_Cycle(block, code);
    case Code_Action::Line_Travel:
      return code_action::Line_Travel(block, code);
    case Code_Action::Line_Cutting:
      return code_action::Line_Cutting(block, code);
    case Code_Action::Line_Cutting_At_Travel_Feed:
      return code_action::Line_Cutting_At_Travel_Feed(block, code);
    case Code_Action::Halt:
      return code_action::Halt(block, code);
    case Code_Action::End_Program:
      return code_action::End_Program(block, code);
    case Code_Action::Wait_For_Input:
      return code_action::Wait_For_Input(block, code);
  }
}

// A block in the error log; nobody reads more of a line than this.
std::string Log_Text(std::string_view text) {
  constexpr std::size_t most = 4000;
  if (Compiler.Source_Macro) return Place_In_Macro();
  return std::string(text.substr(0, most)) + (text.size() > most ? "..." : "");
}

}  // namespace

void ExecuteBlock(Block& block) {
  static const int motion_end = First_Place(Code_Step::Flow);
  Take_Feed_And_Tool(block);
  Act_On_Codes(block, 0, motion_end);
  if (block.ModalMotion) Move_By_Mode(block);
  if (!block.MWordSeen) return;
  Act_On_Codes(block, motion_end, Acting_Code_Count);
  Act_On_User_Outputs(block);
  WriteControlRecord(block);
}

void ReadBlock(std::string_view text) {
  const auto report = [&](const Fault& fault) {
    ErrorLogWrite("NIST_Block_Interpretor_Error: " + Log_Text(text));
    Note_Loss(Loss_Kind::Line, text, fault.Description);
  };
  Trap_With(report, [&] {
    Block& block = Interpreter.Now;
    Compiler.BlockText = text;
    Read_Words(text, block);
    ExecuteBlock(block);
  });
}

void MoveLine(const Axis_Words& words, Z_Word z) {
  const Nullable target[] = {words.X, words.Y, words.Z, words.A, words.B, words.C};
  const bool incremental = Compiler.ModalGroups[modal_group::Distance] == 91;
  for (int axis = 1; axis <= 6; ++axis) {
    const Nullable value = target[axis - 1];
    if (!value) continue;
    const bool adds = incremental && !(axis == 3 && z == Z_Word::Absolute);
    const double from = adds ? Compiler.CurrentPosition[axis].value_or(0) : 0;
    Compiler.TargetPosition[axis] = adds ? from + *value : *value;
  }
  AddLineArc(Record_Type::Line);
  Compiler.PauseNext = 0;
  for (int axis = 1; axis <= 6; ++axis) {
    if (Compiler.TargetPosition[axis]) {
      Compiler.CurrentPosition[axis] = Compiler.TargetPosition[axis];
    }
  }
  Reset_Outputs();
}

void WriteControlRecord(Block& block) {
  AddLineArc(Record_Type::Control).WaitInput = Compiler.WaitInput;
  Compiler.PauseNext = 0;
  Compiler.WaitInput.reset();
  block.ControlWritten = true;
  Reset_Outputs();
}

void Take_User_Output_Codes() {
  const User_Output_Texts texts = User_Outputs_Of_Setup();
  Interpreter.User = {User_Code(texts.High, texts.High_Key), User_Code(texts.Low, texts.Low_Key)};
}

const User_Output_Codes& Current_User_Output_Codes() {
  return Interpreter.User;
}

}  // namespace norvik
