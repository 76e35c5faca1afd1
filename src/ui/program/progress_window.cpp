#include "ui/program/progress_window.h"

#include "compiler/state/compiler_state.h"
#include "ui/widgets/theme.h"

#include <cmath>

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace norvik {

namespace {

constexpr int Poll_Interval_Ms = 100;

}  // namespace

Progress_Window::Progress_Window(QWidget* parent) : QWidget(parent, Qt::ToolTip) {
  setObjectName("Progress_Bar");
  setAttribute(Qt::WA_ShowWithoutActivating);
  auto* rows = new QVBoxLayout(this);
  Caption = new QLabel;
  Caption->setFont(Bold_Font(1.0));
  rows->addWidget(Caption);
  Bar = new QProgressBar;
  Bar->setRange(0, 100);
  Bar->setMinimumWidth(Text_Height() * 22);
  rows->addWidget(Bar);
  auto* hint = new QLabel("Press ESC to cancel");
  hint->setForegroundRole(QPalette::PlaceholderText);
  rows->addWidget(hint);
  hide();
}

Progress_Window::~Progress_Window() {
  Platform.Stop_Timer(Timer);
}

void Progress_Window::Show_Progress(const QString& caption) {
  setWindowTitle(caption);
  Caption->setText(caption);
  Bar->setValue(0);
  adjustSize();
  const QWidget* over = parentWidget();
  move(over->mapToGlobal(over->rect().center()) - rect().center());
  show();
  if (Timer == 0) Timer = Platform.Start_Timer(Poll_Interval_Ms, [this] { Poll(); });
}

void Progress_Window::Poll() {
  if (Compile_Status.CompileDone) {
    Platform.Stop_Timer(Timer);
    Timer = 0;
    hide();
    return;
  }
  Bar->setValue(static_cast<int>(std::lround(Compile_Status.CompileProgress)));
}

}  // namespace norvik
