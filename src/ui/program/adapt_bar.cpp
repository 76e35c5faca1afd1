#include "ui/program/adapt_bar.h"

#include "app/adapt_bar.h"
#include "app/adapt_program.h"
#include "app/gcode_form.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace norvik {

namespace {

struct Button_Row {
  const char* Name;
  const char* Caption;
  const char* Tip;
  void (*Clicked)();
};
constexpr Button_Row Buttons[] = {
    {"Command_Adapt", "Adapt", "Rewrite the program as its author meant it; Ctrl+Z takes it back",
     Command_Adapt_Click},
    {"Command_Adapt_Show", "Show", "Go to the first of these lines", Command_Adapt_Show_Click},
    {"Command_Adapt_Leave", "Leave", "Keep the program as it is", Command_Adapt_Leave_Click},
};

}  // namespace

QWidget* Make_Adapt_Bar(Form_Binding& binding) {
  auto* bar = new QFrame;
  bar->setObjectName("Bar_Adapt");
  bar->setFrameShape(QFrame::StyledPanel);
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins(6, 2, 6, 2);
  auto* text = new QLabel;
  text->setWordWrap(true);
  binding.Label(text, "Label_Adapt", Gcode_Form.Label_Adapt);
  row->addWidget(text, 1);
  for (const Button_Row& each : Buttons) {
    auto* button = new QPushButton(each.Caption);
    button->setObjectName(each.Name);
    button->setToolTip(each.Tip);
    button->setFocusPolicy(Qt::NoFocus);
    QObject::connect(button, &QPushButton::clicked, bar, [clicked = each.Clicked] { clicked(); });
    row->addWidget(button);
  }
  binding.Also([bar, text] { bar->setVisible(!text->text().isEmpty()); });
  return bar;
}

}  // namespace norvik
