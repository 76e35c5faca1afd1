// motion_file_window.h: the window `MotionFile`: the text of the last motion file.
#pragma once

#include <QWidget>

namespace norvik {

class Motion_File_Window : public QWidget {
 public:
  explicit Motion_File_Window(QWidget* parent = nullptr);
};

}  // namespace norvik
