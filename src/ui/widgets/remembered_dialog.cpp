#include "ui/widgets/remembered_dialog.h"

#include "control/manual/jog_guard.h"

namespace norvik {

Remembered_Dialog::Remembered_Dialog(Form_Id form, QWidget* parent) : QDialog(parent), Form(form) {
  const std::string_view name = Form_Name(form);
  setObjectName(QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size())));
}

void Remembered_Dialog::showEvent(QShowEvent* event) {
  Jog_Guard_Window_Lost();
  const Window_Place place = Read_Form_Place(Form);
  setGeometry(place.Left, place.Top, place.Width, place.Height);
  QDialog::showEvent(event);
}

void Remembered_Dialog::done(int result) {
  const QRect frame = geometry();
  Write_Form_Place(Form, {frame.top(), frame.left(), frame.height(), frame.width(), Window_Normal});
  QDialog::done(result);
}

}  // namespace norvik
