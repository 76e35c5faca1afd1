// dxf_layers_window.h: the window `DXF_Import_Layers`: the layers of the drawing imported last.
#pragma once

#include <QWidget>

class QLabel;
class QPlainTextEdit;

namespace norvik {

class DXF_Layers_Window : public QWidget {
 public:
  explicit DXF_Layers_Window(QWidget* parent = nullptr);

  // Copies the record of the window.
  void Show_Form();

 private:
  QLabel* Heading;
  QPlainTextEdit* Names;
};

}  // namespace norvik
