// view_page.h: the view from above with what belongs to it: legend, range and clearing.
#pragma once

#include "simulate/simulated_machine.h"

#include <QWidget>

namespace norvik {

class Top_View;

class View_Page : public QWidget {
 public:
  explicit View_Page(QWidget* parent = nullptr);
  void Show_View(const Simulated_Machine_View& view);

 private:
  Top_View* View = nullptr;
};

}  // namespace norvik
