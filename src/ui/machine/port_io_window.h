// port_io_window.h: the window `Port_IO`: the 25-pin connector with one lamp for each pin.
#pragma once

#include "platform/platform.h"

#include <QWidget>

class QComboBox;
class QLabel;

namespace norvik {

class Port_IO_Window : public QWidget {
 public:
  explicit Port_IO_Window(QWidget* parent = nullptr);
  ~Port_IO_Window() override;

 private:
  void Show_Form();

  QWidget* Connector;
  QComboBox* Address;
  QLabel* Bytes;
  Timer_Id Timer = 0;
};

}  // namespace norvik
