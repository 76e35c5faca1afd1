// reader_names.h: what a screen reader says of a control that shows no words of its own.
#pragma once

class QApplication;

namespace norvik {

// From now on every control gets a name when it is shown: that of the label it belongs to
// or stands behind, its tip, or its hint. One that the window has named keeps its name.
void Name_Controls_For_Readers(QApplication& application);

}  // namespace norvik
