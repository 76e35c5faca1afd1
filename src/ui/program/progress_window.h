// progress_window.h: the window `Progress_Bar`.
#pragma once

#include "platform/platform.h"

#include <QWidget>

class QLabel;
class QProgressBar;

namespace norvik {

// Shown by a compile over the main window; a timer of its own polls the compile and closes it.
// It never takes the keyboard, so that ESC and the panel stay usable.
class Progress_Window : public QWidget {
 public:
  explicit Progress_Window(QWidget* parent);
  ~Progress_Window() override;

  void Show_Progress(const QString& caption);

 private:
  void Poll();

  QLabel* Caption;
  QProgressBar* Bar;
  Timer_Id Timer = 0;
};

}  // namespace norvik
