#include "platform/keys/key_codes.h"

#include <iterator>

namespace norvik {

namespace {

struct Key_Row {
  int Qt_Key;
  int Code;
};

constexpr Key_Row Keypad_Keys[] = {
    {Qt::Key_Asterisk, 106}, {Qt::Key_Plus, 107},  {Qt::Key_Minus, 109}, {Qt::Key_Period, 110},
    {Qt::Key_Comma, 110},    {Qt::Key_Slash, 111}, {Qt::Key_Enter, 13},
};

// A shifted sign has the code of its key.
constexpr Key_Row Plain_Keys[] = {
    {Qt::Key_Backspace, 8},      {Qt::Key_Tab, 9},          {Qt::Key_Return, 13},
    {Qt::Key_Enter, 13},         {Qt::Key_Shift, 16},       {Qt::Key_Control, 17},
    {Qt::Key_Alt, 18},           {Qt::Key_Pause, 19},       {Qt::Key_CapsLock, 20},
    {Qt::Key_Escape, 27},        {Qt::Key_Space, 32},       {Qt::Key_PageUp, 33},
    {Qt::Key_PageDown, 34},      {Qt::Key_End, 35},         {Qt::Key_Home, 36},
    {Qt::Key_Left, 37},          {Qt::Key_Up, 38},          {Qt::Key_Right, 39},
    {Qt::Key_Down, 40},          {Qt::Key_Insert, 45},      {Qt::Key_Delete, 46},
    {Qt::Key_Clear, 12},         {Qt::Key_NumLock, 144},    {Qt::Key_ScrollLock, 145},
    {Qt::Key_Semicolon, 186},    {Qt::Key_Colon, 186},      {Qt::Key_Equal, 187},
    {Qt::Key_Plus, 187},         {Qt::Key_Comma, 188},      {Qt::Key_Less, 188},
    {Qt::Key_Minus, 189},        {Qt::Key_Underscore, 189}, {Qt::Key_Period, 190},
    {Qt::Key_Greater, 190},      {Qt::Key_Slash, 191},      {Qt::Key_Question, 191},
    {Qt::Key_QuoteLeft, 192},    {Qt::Key_AsciiTilde, 192}, {Qt::Key_BracketLeft, 219},
    {Qt::Key_BraceLeft, 219},    {Qt::Key_Backslash, 220},  {Qt::Key_Bar, 220},
    {Qt::Key_BracketRight, 221}, {Qt::Key_BraceRight, 221}, {Qt::Key_Apostrophe, 222},
    {Qt::Key_QuoteDbl, 222},
};

template <std::size_t Count>
int Find_Code(const Key_Row (&rows)[Count], int qt_key) {
  for (const Key_Row& row : rows) {
    if (row.Qt_Key == qt_key) return row.Code;
  }
  return 0;
}

}  // namespace

int Virtual_Key_Code(const QKeyEvent& event) {
  const int qt_key = event.key();
  if (event.modifiers() & Qt::KeypadModifier) {
    if (qt_key >= Qt::Key_0 && qt_key <= Qt::Key_9) return 96 + (qt_key - Qt::Key_0);
    if (const int code = Find_Code(Keypad_Keys, qt_key)) return code;
  }
  if (qt_key >= Qt::Key_A && qt_key <= Qt::Key_Z) return qt_key;
  if (qt_key >= Qt::Key_0 && qt_key <= Qt::Key_9) return qt_key;
  if (qt_key >= Qt::Key_F1 && qt_key <= Qt::Key_F24) return 112 + (qt_key - Qt::Key_F1);
  return Find_Code(Plain_Keys, qt_key);
}

}  // namespace norvik
