// machine_check_window.h: the window `Machine_Check`: what in the setup may surprise the operator.
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;
class QTableWidget;

namespace norvik {

class Machine_Check_Window : public QWidget {
 public:
  explicit Machine_Check_Window(QWidget* parent = nullptr);

  // Looks at the setup and lists the findings.
  void Show_Findings();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* Build_Foot();
  // The key of the chosen line; empty when there is none.
  QString Chosen_Key() const;
  // The correction that answers the chosen line; empty when there is none.
  QString Chosen_Correction() const;
  void Copy_Key();

  QLabel* Nothing_Found;
  QTableWidget* Findings;
  QPushButton *Copy = nullptr, *Correct = nullptr, *Change = nullptr;
};

}  // namespace norvik
