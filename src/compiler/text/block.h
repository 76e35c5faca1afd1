// block.h: one line of G-code, taken apart.
//
//   "N10 g1 X1.23456 Y2 M3 (rough)"  ->  G1, M3, X 1.235, Y 2, comment "rough"
//
// Filled by the block reader, acted on by the interpreter, rebuilt for each line.
#pragma once

#include "compiler/state/compiler_state.h"
#include "compiler/text/codes.h"
#include "core/indexed.h"
#include "core/nullable.h"

#include <bitset>
#include <cstdint>
#include <string_view>

namespace norvik {

// Largest code numbers that a block can hold; a larger one is a fault.
inline constexpr int Last_G_Code = 100, Last_M_Code = 1000;

inline constexpr double Repeat_End_Mark = -9999;

struct Block {
  std::bitset<Last_G_Code + 1> GFlags;
  std::bitset<Last_M_Code + 1> MFlags;
  bool MWordSeen = false;
  bool ControlWritten = false;  // a control record was written for this block
  bool ModalMotion = true;      // false once a G word other than G90 and G91 stands in the block
  Code_Set Codes;               // of the flagged codes, those that the interpreter acts on
  std::string_view Comment;     // points into the line
  Word_Values Words;            // absent: not in the block
  Nullable WordRepeat;          // count of REPEAT, or the end mark

  // Raise an out-of-range fault for a number that no block can hold.
  void Set_G(std::int16_t number) {
    if (number < 0 || number > Last_G_Code) Raise_Index_Fault(number, 0, Last_G_Code);
    GFlags.set(static_cast<std::size_t>(number));
    Codes.Add(G_Code_Place(number));
    if (number != 90 && number != 91) ModalMotion = false;
  }
  void Set_M(std::int16_t number) {
    if (number < 0 || number > Last_M_Code) Raise_Index_Fault(number, 0, Last_M_Code);
    MFlags.set(static_cast<std::size_t>(number));
    Codes.Add(M_Code_Place(number));
    MWordSeen = true;
  }

  void Clear() {
    GFlags.reset();
    if (MWordSeen) MFlags.reset();
    MWordSeen = ControlWritten = false;
    ModalMotion = true;
    Codes = {};
    Comment = {};
    Words.Fill(Nullable());
    WordRepeat.reset();
  }

  bool operator==(const Block&) const = default;
};

}  // namespace norvik
