#include "ui/widgets/key_names.h"

namespace norvik {

QString Key_Name(int code) {
  static constexpr std::pair<int, const char*> named[] = {
      {33, "Page up"}, {34, "Page down"}, {35, "End"},    {36, "Home"},   {37, "Left"},
      {38, "Up"},      {39, "Right"},     {40, "Down"},   {106, "Num *"}, {107, "Num +"},
      {109, "Num -"},  {110, "Num ."},    {111, "Num /"}, {187, "="},     {188, ","},
      {189, "-"},      {190, "."},        {191, "/"}};
  for (const auto& [key, name] : named) {
    if (key == code) return name;
  }
  constexpr int keypad_0 = 96, keypad_9 = 105;
  if (code >= keypad_0 && code <= keypad_9) return QString("Num %1").arg(code - keypad_0);
  const QChar character(code);
  if (code < keypad_0 && character.isLetterOrNumber()) return character;
  return code > 0 ? QString("key %1").arg(code) : QString("no key");
}

}  // namespace norvik
