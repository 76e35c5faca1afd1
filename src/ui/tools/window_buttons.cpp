#include "ui/tools/window_buttons.h"

#include "ui/widgets/theme.h"

namespace norvik {

QPushButton* Add_Window_Button(QBoxLayout& row, const QString& name, const QString& text,
                               const QString& tip) {
  auto* button = new QPushButton(text);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setMinimumHeight(Finger_Height());
  button->setAutoDefault(false);
  row.addWidget(button);
  return button;
}

void Close_Frame_Of(QWidget& window) {
  if (window.parentWidget() != nullptr) window.parentWidget()->close();
}

}  // namespace norvik
