#include "ui/simulated/place_dialog.h"

#include "control/manual/jog_guard.h"
#include "core/numbers.h"
#include "simulate/board_port.h"
#include "simulate/simulated_machine.h"
#include "ui/widgets/theme.h"

#include <cmath>

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace norvik {

Place_Dialog::Place_Dialog(QWidget* parent) : QDialog(parent) {
  setObjectName("Place_Axis");
  setWindowTitle("Put an axis by hand");
  auto* rows = new QFormLayout(this);
  Axis = new QComboBox;
  Axis->setObjectName("Combo_Place_Axis");
  Axis->addItems({"X", "Y", "Z", "A"});
  rows->addRow("Axis", Axis);
  Position = new QLineEdit;
  Position->setObjectName("Text_Place_Position");
  rows->addRow("True position, units", Position);
  auto* put = new QPushButton("Put it there");
  put->setObjectName("Command_Place");
  put->setMinimumHeight(Finger_Height());
  rows->addRow(put);
  Told = new QLabel("The program is not told: it believes what it believed before.");
  Told->setObjectName("Label_Place");
  Told->setWordWrap(true);
  rows->addRow(Told);
  connect(put, &QPushButton::clicked, this, &Place_Dialog::Put);
}

void Place_Dialog::showEvent(QShowEvent* event) {
  Jog_Guard_Window_Lost();
  QDialog::showEvent(event);
}

void Place_Dialog::Put() {
  const auto position = Try_Number(Position->text().toStdString());
  if (!position) {
    Told->setText("\"" + Position->text() + "\" is no number. Write a position such as 2.5.");
    return;
  }
  const int axis = Axis->currentIndex() + 1;
  Place_Carriage(axis, *position);
  Fit_Board_To_Machine();
  const double reached = True_Position(axis);
  QString words = Axis->currentText() + " stands at " + QString::number(reached, 'f', 4) + ".";
  if (std::abs(reached - *position) > 1e-9) words += " Further on is its hard stop.";
  Told->setText(words);
}

}  // namespace norvik
