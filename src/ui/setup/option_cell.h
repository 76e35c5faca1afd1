// option_cell.h: the control of one setting, with the way back to its factory value and what is
// wrong with it.
//
//   [ control ] [<-]        the arrow stands there while the value is not the factory's
//   what is wrong, or what the last Apply made of it
//
// The control carries the name of its field, the arrow "Reset_" and the words "Error_" before it.
#pragma once

#include "app/options/option_fields.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;

namespace norvik {

class Option_Cell : public QWidget {
 public:
  // `place`: that of its field in `Options_Form.Fields`. `narrow`: in a table, where the column
  // says what it is.
  explicit Option_Cell(std::size_t place, bool narrow = false);

  // Copies the field to the control.
  void Show_Field();
  std::size_t Field_Place() const { return Place; }
  QWidget* Control() const;

 private:
  QWidget* Build_Control(bool narrow);
  QWidget* Build_Choice();
  QWidget* Build_Text(bool narrow);
  QWidget* Build_Color();
  void Choose_Color();
  void Show_Text();

  std::size_t Place;
  QCheckBox* Check = nullptr;
  QComboBox* Combo = nullptr;
  QLineEdit* Edit = nullptr;
  QPushButton* Swatch = nullptr;
  QToolButton* Reset = nullptr;
  QLabel* Words = nullptr;
};

}  // namespace norvik
