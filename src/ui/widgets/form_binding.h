// form_binding.h: a window's widgets tied to the record of its controls.
//
// The record is the truth. A window names each pair once; `Show` copies every record to its widget
// with signals blocked, so that no handler runs because logic wrote to a record. What the operator
// changes is written to the record first, then the handler runs. A widget's object name is the name
// of its control, and user-interface tests find it by that name.
#pragma once

#include "control/state/form_controls.h"

#include <functional>
#include <vector>

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>

namespace norvik {

using Handler = std::function<void()>;

class Form_Binding {
 public:
  // Copies every record to its widget.
  void Show() const;

  void Button(QAbstractButton* widget, const QString& name, Button_Control& control,
              Handler clicked);
  void Label(QLabel* widget, const QString& name, Label_Control& control);
  void Check(QAbstractButton* widget, const QString& name, Check_Control& control, Handler changed);
  // `committed` runs when the operator presses Enter or leaves the field with another text.
  void Text(QLineEdit* widget, const QString& name, Text_Control& control, Handler committed);
  // What a window shows besides the record: copied with it.
  void Also(Handler copy) { Copies.push_back(std::move(copy)); }
  // `changed` runs for every place that the operator brings it to.
  void Slider(QSlider* widget, const QString& name, Slider_Control& control, Handler changed);
  void Combo(QComboBox* widget, const QString& name, Combo_Control& control, Handler chosen);

 private:
  std::vector<Handler> Copies;
};

}  // namespace norvik
