// panel_group.h: the frame of a group of the panel, and the readout that asks for another value.
#pragma once

#include "ui/widgets/form_binding.h"

#include <QGroupBox>

namespace norvik {

// A titled frame around `layout`, with the panel's narrow margins.
QGroupBox* Panel_Group(const QString& title, QLayout* layout);

// A framed readout as wide as `widest`; a click runs the handler.
class Value_Label : public QLabel {
 public:
  Value_Label(const QString& tip, Handler clicked, const QString& widest = "-000.0000");

 protected:
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  Handler Clicked;
};

}  // namespace norvik
