// theme.h: the one look of all windows.
//
// One drawn style on every desktop, with a light and a dark palette of our own; which of the two
// follows the desktop. Sizes derive from the font, so that they follow the screen's scale, and
// every control that moves the machine is at least a gloved finger wide.
#pragma once

#include <initializer_list>

#include <QColor>
#include <QFont>
#include <QIcon>
#include <QString>

class QApplication;
class QPushButton;
class QWidget;

namespace norvik {

// Chooses light or dark from the desktop's own palette and applies style and palette. The
// environment variable NORVIK_THEME, "light" or "dark", overrules the desktop.
//
// Controls without words of their own get a name for screen readers. It also takes two habits of
// the toolkit away that are wrong beside a machine. No text can be dragged: a drag waits in a loop
// of its own, and a move that runs would stand still in it. A box takes the wheel only when it has
// the focus: a panel that is scrolled changes nothing.
void Apply_Theme(QApplication& application);
bool Theme_Is_Dark();

// Height of a line of text in pixels; every other size is a multiple of it.
int Text_Height();
// The smallest height and width of a control that moves the machine.
int Finger_Height();

// Figures of equal width for readouts, `scale` times the size of the text.
QFont Readout_Font(double scale);
QFont Bold_Font(double scale);

// Colours with a meaning, readable on the ground of the theme.
struct Theme_Colors {
  QColor Run, Stop, Warn, Muted, Readout, Readout_Ground;
};
const Theme_Colors& Colors();

// The red of every E-stop, for white letters.
QColor Alarm_Red();
// Black or white, whichever stands out more from the ground.
QColor Ink_On_Face(const QColor& ground);

// From 1, the same, to 21, black and white; letters can be read from `Readable_Contrast` on.
double Contrast(const QColor& one, const QColor& other);
inline constexpr double Readable_Contrast = 4.5;

// Paints the face of a button or label: invalid colours give it back its normal look. A button gets
// the colour that is nearest to the wanted one and leaves its letters readable as it is painted.
void Set_Face(QWidget& control, const QColor& wanted, const QColor& text);

// A button whose caption changes keeps the width of the widest one: it must not move under a hand.
void Keep_Room_For(QPushButton& button, std::initializer_list<QString> captions);

// Signs drawn as shapes, sharp at every scale.
enum class Sign {
  Play,
  Pause,
  Step,
  Stop,
  Home,
  Tool,
  Zoom_In,
  Zoom_Out,
  Zoom_Window,
  Zoom_All,
  Zoom_Table,
  Pan,
  Refresh,
  Arrow_Up,
  Arrow_Down,
  Arrow_Left,
  Arrow_Right,
  Arrow_Up_Left,
  Arrow_Up_Right,
  Arrow_Down_Left,
  Arrow_Down_Right,
  Turn_Left,
  Turn_Right
};
QIcon Sign_Icon(Sign sign, const QColor& color);
QIcon Sign_Icon(Sign sign);  // in the colour of the theme's text
// The red mushroom on its yellow plate, known from every machine.
QIcon EStop_Icon();

}  // namespace norvik
