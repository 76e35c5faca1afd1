#include "ui/simulated/view_page.h"

#include "simulate/trail.h"
#include "ui/simulated/top_view.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace norvik {

View_Page::View_Page(QWidget* parent) : QWidget(parent) {
  auto* rows = new QVBoxLayout(this);
  View = new Top_View;
  rows->addWidget(View, 1);
  auto* legend = new QLabel("Solid: spindle on. Dotted: off.\nCross: stalled. Square: hard stop.");
  legend->setObjectName("Label_Legend");
  auto* only = new QCheckBox("Trail only");
  only->setObjectName("Check_Trail_Only");
  only->setToolTip("Shows where the tool has been instead of the whole table");
  only->setFocusPolicy(Qt::NoFocus);
  connect(only, &QCheckBox::clicked, this, [this](bool on) {
    View->Show_Trail_Only(on);
    View->Show_View(View_Simulated_Machine());
  });
  auto* clear = new QPushButton("Clear");
  clear->setObjectName("Command_Clear_Trail");
  clear->setToolTip("Forgets the trail and its marks");
  clear->setFocusPolicy(Qt::NoFocus);
  connect(clear, &QPushButton::clicked, this, [this] {
    Clear_Trail();
    View->Show_View(View_Simulated_Machine());
  });
  auto* row = new QHBoxLayout;
  row->addWidget(legend, 1);
  auto* hands = new QVBoxLayout;
  hands->setSpacing(2);
  hands->addWidget(only);
  hands->addWidget(clear);
  row->addLayout(hands);
  rows->addLayout(row);
}

void View_Page::Show_View(const Simulated_Machine_View& view) {
  View->Show_View(view);
}

}  // namespace norvik
