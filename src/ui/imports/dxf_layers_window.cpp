#include "ui/imports/dxf_layers_window.h"

#include "import/dxf/layers.h"
#include "ui/widgets/theme.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace norvik {

DXF_Layers_Window::DXF_Layers_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("DXF_Import_Layers");
  setWindowTitle("DXF layers");
  auto* rows = new QVBoxLayout(this);
  Heading = new QLabel;
  Heading->setObjectName("Label_Layers");
  Heading->setWordWrap(true);
  rows->addWidget(Heading);
  Names = new QPlainTextEdit;
  Names->setObjectName("Text_Layers");
  Names->setReadOnly(true);
  Names->setMinimumSize(Text_Height() * 12, Text_Height() * 6);
  rows->addWidget(Names, 1);
  rows->addStretch();
  Show_Form();
}

void DXF_Layers_Window::Show_Form() {
  const QString text = QString::fromStdString(DXF_Import_Layers.Text_Layers).trimmed();
  Names->setPlainText(text);
  Names->setVisible(!text.isEmpty());
  Heading->setText(
      text.isEmpty()
          ? "No layers yet. They are listed when a DXF file is imported with "
            "DXF_Sort_Layers switched on."
          : QString("%1 layers in the drawing, sorted by name").arg(text.count('\n') + 1));
}

}  // namespace norvik
