#include "ui/widgets/panel_group.h"

#include "ui/widgets/theme.h"

#include <QLayout>

namespace norvik {

QGroupBox* Panel_Group(const QString& title, QLayout* layout) {
  auto* group = new QGroupBox(title);
  const int side = Text_Height() / 2;
  layout->setContentsMargins(side, Text_Height() / 4, side, Text_Height() / 3);
  group->setLayout(layout);
  return group;
}

Value_Label::Value_Label(const QString& tip, Handler clicked, const QString& widest)
    : Clicked(std::move(clicked)) {
  setFont(Readout_Font(1.15));
  setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  setFrameShape(QFrame::StyledPanel);
  setMargin(Text_Height() / 5);
  setMinimumWidth(QFontMetrics(font()).size(0, widest).width() + 2 * (margin() + frameWidth()));
  Set_Face(*this, Colors().Readout_Ground, Colors().Readout);
  setToolTip(tip);
  setCursor(Qt::PointingHandCursor);
}

void Value_Label::mouseReleaseEvent(QMouseEvent*) {
  Clicked();
}

}  // namespace norvik
