// place_dialog.h: puts the carriage of one axis somewhere by hand.
#pragma once

#include <QDialog>

class QComboBox;
class QLabel;
class QLineEdit;

namespace norvik {

// Stays open beside the panel and holds nothing up: a program may go on running.
class Place_Dialog : public QDialog {
 public:
  explicit Place_Dialog(QWidget* parent);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void Put();

  QComboBox* Axis = nullptr;
  QLineEdit* Position = nullptr;
  QLabel* Told = nullptr;
};

}  // namespace norvik
