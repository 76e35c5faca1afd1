#include "ui/guide/welcome_window.h"

#include "app/guide/welcome.h"
#include "ui/widgets/theme.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace norvik {

Welcome_Window::Welcome_Window(std::function<void()> guide) {
  setObjectName("Welcome");
  setWindowTitle("Welcome");
  auto* rows = new QVBoxLayout(this);
  auto* title = new QLabel("What would you like to do?");
  title->setFont(Bold_Font(1.3));
  rows->addWidget(title);
  const auto way = [&](const char* name, const char* text, std::function<void()> chosen) {
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    button->setMinimumHeight(Finger_Height());
    connect(button, &QPushButton::clicked, this, [this, chosen = std::move(chosen)] {
      if (parentWidget() != nullptr) parentWidget()->close();
      chosen();
    });
    rows->addWidget(button);
  };
  way("Command_Open_Sample", "&Open a program, such as a sample", Welcome_Open_Program);
  way("Command_Import_Drawing", "&Import a drawing, a drill file or a picture",
      Welcome_Import_Drawing);
  way("Command_Set_Up", "&Set up a machine", std::move(guide));
  rows->addStretch(1);
  auto* again = new QCheckBox("Show this at the next start");
  again->setObjectName("Check_Show_Welcome");
  again->setChecked(Shows_Welcome());
  connect(again, &QCheckBox::toggled, this, Set_Shows_Welcome);
  rows->addWidget(again);
  resize(Text_Height() * 24, Text_Height() * 16);
}

}  // namespace norvik
