// gerber_layers_window.h: the window `GerberLayerSelection`: which layers of an artwork to import.
#pragma once

#include "ui/widgets/remembered_dialog.h"

class QLabel;
class QListWidget;

namespace norvik {

class Gerber_Layers_Window : public Remembered_Dialog {
 public:
  explicit Gerber_Layers_Window(QWidget* parent);
  // OK, Cancel, ESC or the frame's button: the record knows which, then the window closes.
  void done(int result) override;

 private:
  void Show_Count();

  QListWidget* Layers;
  QLabel* Count;
};

// The importers ask for layers by this window over `parent`.
void Connect_Gerber_Layers(QWidget& parent);

}  // namespace norvik
