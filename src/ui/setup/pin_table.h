// pin_table.h: the table of the port window: one line for each function of the machine.
//
// Columns: the function, pin, port, bit, inverted, and for the outputs the name that the panel
// shows. The columns of the page that is not live (pins, or ports and bits) are grey and follow.
#pragma once

#include <functional>

#include <QTableWidget>

namespace norvik {

class Pin_Table : public QTableWidget {
 public:
  // `changed` runs after a change has been taken into the record and checked.
  explicit Pin_Table(std::function<void()> changed);

  // Copies the record `Port_Setup`.
  void Show_Form();

 private:
  void Take(int row, int column);

  std::function<void()> Changed;
};

}  // namespace norvik
