// settings_dialog.h: what the simulated machine is like: a table of axes, and the machine below it.
#pragma once

#include "simulate/simulation_settings.h"

#include <map>

#include <QDialog>

class QFormLayout;
class QLabel;
class QTableWidget;
class QTableWidgetItem;

namespace norvik {

// Every change counts at once; the pointer file takes it with "Save". A text that cannot be taken
// is named below the table and the old value stays. Holds nothing up while a program runs.
class Simulation_Settings_Dialog : public QDialog {
 public:
  explicit Simulation_Settings_Dialog(QWidget* parent);

 protected:
  void showEvent(QShowEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void Build_Table();
  QWidget* Build_Machine();
  QWidget* Editor_Of(const Simulation_Setting& setting);
  QWidget* Build_Buttons();
  // Copies the machine's settings to the controls.
  void Show_Values();
  void Take(const Simulation_Setting& setting, int axis, const QString& text);
  void Tell(const QString& words, bool wrong);

  QTableWidget* Table = nullptr;
  std::map<const Simulation_Setting*, QWidget*> Editors;  // of the machine as a whole
  QLabel* Told = nullptr;
  bool Showing = false;
};

}  // namespace norvik
