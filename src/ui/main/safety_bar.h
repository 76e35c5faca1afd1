// safety_bar.h: the state of the machine and what it really does, with Stop and E-stop beside it.
//
// It stands in the menu bar, above every window inside the main one, so that both buttons are in
// reach when the panel is closed or covered.
#pragma once

#include "platform/platform.h"

#include <QLabel>
#include <QPushButton>

namespace norvik {

class Safety_Bar : public QWidget {
 public:
  explicit Safety_Bar(QWidget* parent = nullptr);
  ~Safety_Bar() override;

  // Copies the state of the machine; a timer of its own calls it too.
  void Show_State();

 private:
  QLabel *State, *Activity;
  QPushButton *Stop, *EStop;
  Timer_Id Timer = 0;
};

}  // namespace norvik
