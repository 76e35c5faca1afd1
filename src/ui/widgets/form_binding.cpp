#include "ui/widgets/form_binding.h"

#include "ui/widgets/theme.h"

#include <QAbstractItemView>
#include <QSignalBlocker>

namespace norvik {

namespace {

// Widgets are repainted only where something changed: a panel of a hundred controls is copied four
// times a second while the machine steps.
template <class Value, class Setter>
void Set_If_Changed(const Value& now, const Value& wanted, Setter&& set) {
  if (now != wanted) set(wanted);
}

void Show_Color(QWidget& widget, Control_Color color) {
  const QVariant shown = widget.property("control_color");
  const int wanted = static_cast<int>(color);
  if (shown.isValid() && shown.toInt() == wanted) return;
  widget.setProperty("control_color", wanted);
  switch (color) {
    case Control_Color::Normal:
      return Set_Face(widget, QColor(), QColor());
    case Control_Color::Red:
      return Set_Face(widget, Colors().Stop, Ink_On_Face(Colors().Stop));
    case Control_Color::Green:
      return Set_Face(widget, Colors().Run, Ink_On_Face(Colors().Run));
  }
}

}  // namespace

void Form_Binding::Show() const {
  for (const Handler& copy : Copies) copy();
}

void Form_Binding::Button(QAbstractButton* widget, const QString& name, Button_Control& control,
                          Handler clicked) {
  widget->setObjectName(name);
  QObject::connect(widget, &QAbstractButton::clicked, widget, std::move(clicked));
  Copies.push_back([widget, &control] {
    Set_If_Changed(widget->text(), QString::fromStdString(control.Caption),
                   [&](const QString& text) { widget->setText(text); });
    Set_If_Changed(widget->isEnabled(), control.Enabled,
                   [&](bool enabled) { widget->setEnabled(enabled); });
    Show_Color(*widget, control.Color);
  });
}

void Form_Binding::Label(QLabel* widget, const QString& name, Label_Control& control) {
  widget->setObjectName(name);
  widget->setTextFormat(Qt::PlainText);
  Copies.push_back([widget, &control] {
    Set_If_Changed(widget->text(), QString::fromStdString(control.Caption),
                   [&](const QString& text) { widget->setText(text); });
    Show_Color(*widget, control.Color);
  });
}

void Form_Binding::Check(QAbstractButton* widget, const QString& name, Check_Control& control,
                         Handler changed) {
  widget->setObjectName(name);
  widget->setCheckable(true);
  // `clicked` is the operator's hand alone; a refresh never fires it.
  QObject::connect(widget, &QAbstractButton::clicked, widget,
                   [&control, changed = std::move(changed)](bool value) {
                     control.Value = value;
                     changed();
                   });
  Copies.push_back([widget, &control] {
    const QSignalBlocker quiet(widget);
    Set_If_Changed(widget->isChecked(), control.Value,
                   [&](bool value) { widget->setChecked(value); });
    Show_Color(*widget, control.Color);
  });
}

void Form_Binding::Text(QLineEdit* widget, const QString& name, Text_Control& control,
                        Handler committed) {
  widget->setObjectName(name);
  QObject::connect(widget, &QLineEdit::editingFinished, widget,
                   [widget, &control, committed = std::move(committed)] {
                     if (!widget->isModified()) return;
                     widget->setModified(false);
                     control.Text = widget->text().toStdString();
                     committed();
                   });
  Copies.push_back([widget, &control] {
    Set_If_Changed(widget->isEnabled(), control.Enabled,
                   [&](bool enabled) { widget->setEnabled(enabled); });
    // What is being typed stays until it is committed.
    if (widget->hasFocus() && widget->isModified()) return;
    const QSignalBlocker quiet(widget);
    Set_If_Changed(widget->text(), QString::fromStdString(control.Text),
                   [&](const QString& text) { widget->setText(text); });
  });
}

void Form_Binding::Slider(QSlider* widget, const QString& name, Slider_Control& control,
                          Handler changed) {
  widget->setObjectName(name);
  QObject::connect(widget, &QSlider::valueChanged, widget,
                   [&control, changed = std::move(changed)](int value) {
                     control.Value = value;
                     changed();
                   });
  Copies.push_back([widget, &control] {
    widget->setVisible(control.Visible);
    if (widget->isSliderDown()) return;  // the operator has it in hand
    const QSignalBlocker quiet(widget);
    widget->setMaximum(control.Maximum);
    widget->setValue(control.Value);
  });
}

void Form_Binding::Combo(QComboBox* widget, const QString& name, Combo_Control& control,
                         Handler chosen) {
  widget->setObjectName(name);
  QObject::connect(widget, &QComboBox::activated, widget,
                   [widget, &control, chosen = std::move(chosen)](int index) {
                     control.ListIndex = index;
                     control.Text = widget->itemText(index).toStdString();
                     chosen();
                   });
  Copies.push_back([widget, &control] {
    if (widget->view() != nullptr && widget->view()->isVisible()) return;
    const QSignalBlocker quiet(widget);
    QStringList wanted;
    for (const std::string& item : control.List) wanted << QString::fromStdString(item);
    QStringList now;
    for (int i = 0; i < widget->count(); ++i) now << widget->itemText(i);
    if (now != wanted) {
      widget->clear();
      widget->addItems(wanted);
    }
    if (widget->isEditable()) {
      if (widget->lineEdit()->hasFocus() && widget->lineEdit()->isModified()) return;
      // Only another text: setting it puts the caret to its end, under the operator's hand.
      Set_If_Changed(widget->currentText(), QString::fromStdString(control.Text),
                     [&](const QString& text) {
                       widget->setCurrentIndex(control.ListIndex);
                       widget->setEditText(text);
                     });
    } else {
      widget->setCurrentIndex(control.ListIndex);
    }
  });
}

}  // namespace norvik
