// compare_window.h: which settings another machine file has otherwise.
#pragma once

class QWidget;

namespace norvik {

// Asks for a machine file and lists the keys that differ, in a window that nothing waits for.
void Compare_With_File(QWidget& parent);

}  // namespace norvik
