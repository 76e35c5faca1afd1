// error_log_window.h: the end of the error log, as it was when the window opened.
#pragma once

#include <QWidget>

namespace norvik {

class Error_Log_Window : public QWidget {
 public:
  explicit Error_Log_Window(QWidget* parent = nullptr);
};

}  // namespace norvik
