// welcome_window.h: what a first start offers: a sample, a drawing, a machine.
#pragma once

#include <functional>

#include <QWidget>

namespace norvik {

class Welcome_Window : public QWidget {
 public:
  // `guide` opens the guide.
  explicit Welcome_Window(std::function<void()> guide);
};

}  // namespace norvik
