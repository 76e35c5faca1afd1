// key_codes.h: the setup's key codes for the keys of the window toolkit.
//
// The machine file stores keys by the virtual key codes that desktop keyboards have used for
// decades: letters and digits by their upper-case ASCII code, the keypad from 96, function keys
// from 112, punctuation by its place on the keyboard.
#pragma once

#include <QKeyEvent>

namespace norvik {

// 0 when the key has no code. With NumLock off the keypad gives the codes of the arrow keys, as the
// keyboard itself does.
int Virtual_Key_Code(const QKeyEvent& event);

}  // namespace norvik
