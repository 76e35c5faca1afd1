#include "ui/machine/port_io_window.h"

#include "parallel/port_display.h"
#include "ui/widgets/theme.h"

#include <algorithm>

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace norvik {

namespace {

constexpr int Last_Signal_Pin = 17;  // the pins behind it are ground

// The socket as one looks at the computer: pins 13 to 1 in the upper row, 25 to 14 in the lower
// one.
class Connector_Picture : public QWidget {
 public:
  Connector_Picture() {
    setMinimumSize(Text_Height() * 30, Text_Height() * 6);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double pitch = width() / 14.0;
    const double lamp = std::min(pitch * 0.62, Text_Height() * 1.5);
    painter.setPen(QPen(palette().color(QPalette::Mid), 2));
    painter.drawRoundedRect(QRectF(pitch * 0.3, 3, width() - pitch * 0.6, height() - 6.0),
                            height() / 5.0, height() / 5.0);
    for (int pin = 1; pin <= 25; ++pin) {
      const bool upper = pin <= 13;
      const double x = upper ? pitch * (13 - pin + 1) : pitch * (25 - pin + 1.5);
      const double y = height() * (upper ? 0.3 : 0.7);
      const QRectF place(x - lamp / 2, y - lamp / 2, lamp, lamp);
      const bool ground = pin > Last_Signal_Pin;
      const bool high = !ground && (Port_IO.Command_Pin[pin] || Port_IO.Command_PinIO[pin]);
      painter.setPen(QPen(palette().color(QPalette::WindowText), ground ? 0.6 : 1.4));
      painter.setBrush(ground ? palette().color(QPalette::Window)
                              : (high ? Colors().Run : palette().color(QPalette::Base)));
      painter.drawEllipse(place);
      painter.setPen(high ? (Theme_Is_Dark() ? Qt::black : Qt::white)
                          : palette().color(ground ? QPalette::Mid : QPalette::WindowText));
      painter.drawText(place, Qt::AlignCenter, QString::number(pin));
    }
  }
};

}  // namespace

Port_IO_Window::Port_IO_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("Port_IO");
  setWindowTitle("Port I/O");
  auto* rows = new QVBoxLayout(this);
  auto* head = new QHBoxLayout;
  head->addWidget(new QLabel("Port address"));
  Address = new QComboBox;
  Address->setObjectName("Combo_Port_Address");
  Address->setEditable(true);
  Address->setToolTip("Base address of the port, for instance &H378");
  for (const char* address : Port_IO_Addresses) Address->addItem(address);
  head->addWidget(Address);
  head->addStretch(1);
  auto* close = new QPushButton("Close");
  close->setObjectName("Command_Close");
  head->addWidget(close);
  rows->addLayout(head);
  Connector = new Connector_Picture;
  rows->addWidget(Connector);
  auto* foot = new QHBoxLayout;
  auto* legend = new QLabel("Green: high at the connector. White: low. Pins 18 to 25 are ground.");
  legend->setObjectName("Command_Legend");
  legend->setWordWrap(true);
  foot->addWidget(legend, 1);
  Bytes = new QLabel;
  Bytes->setObjectName("Text_PortIO");
  Bytes->setFont(Readout_Font(1.0));
  Bytes->setToolTip("Data, status and control register");
  foot->addWidget(Bytes);
  rows->addLayout(foot);
  rows->addStretch(1);

  Port_IO_SetupCombos();
  Address->setEditText(QString::fromStdString(Port_IO.Combo_Port_Address));
  connect(Address, &QComboBox::activated, this, [this] {
    Port_IO.Combo_Port_Address = Address->currentText().toStdString();
    Combo_Port_Address_Click();
  });
  connect(Address->lineEdit(), &QLineEdit::editingFinished, this, [this] {
    Port_IO.Combo_Port_Address = Address->currentText().toStdString();
    Combo_Port_Address_Change();
  });
  connect(close, &QPushButton::clicked, this, [this] {
    if (parentWidget() != nullptr) parentWidget()->close();
  });
  Timer = Platform.Start_Timer(Port_IO.Timer1_Interval, [this] {
    if (!isVisible()) return;
    Port_IO_Timer1();
    Show_Form();
  });
}

Port_IO_Window::~Port_IO_Window() {
  Platform.Stop_Timer(Timer);
}

void Port_IO_Window::Show_Form() {
  Bytes->setText(QString::fromStdString(Port_IO.Text_PortIO));
  Connector->update();
}

}  // namespace norvik
