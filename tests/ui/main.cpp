// The tests of the windows need the toolkit's application object and no display.
#include "core/fault.h"
#include "ui/widgets/theme.h"

#include <QApplication>
#include <gmock/gmock.h>

int main(int argument_count, char** arguments) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argument_count, arguments);
  norvik::Apply_Theme(application);
  testing::InitGoogleMock(&argument_count, arguments);
  return RUN_ALL_TESTS();
}
