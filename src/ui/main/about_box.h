// about_box.h: version and support text, to be copied into a letter.
#pragma once

class QWidget;

namespace norvik {

// Opens beside the program's work: the buttons that stop the machine stay in reach.
void Show_About_Box(QWidget* parent);

}  // namespace norvik
