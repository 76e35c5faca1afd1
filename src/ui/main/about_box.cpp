#include "ui/main/about_box.h"

#include "app/support_packet.h"
#include "app/support_text.h"
#include "control/motion/motion.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/version.h"
#include "platform/platform.h"
#include "ui/widgets/theme.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace norvik {

namespace {

QString Surroundings() {
  return QString("Windows: Qt %1, %2, scale %3, %4\n")
      .arg(qVersion(), QGuiApplication::platformName())
      .arg(qApp->devicePixelRatio())
      .arg(QSysInfo::prettyProductName());
}

QString Whole_Text() {
  return QString::fromStdString(Support_Text()) + Surroundings() +
         "\nLibraries and their licences: Qt 6 (LGPL 3), libserialport (LGPL 3), SDL 2 (zlib), "
         "CLI11 (BSD 3-clause). Norvik: MIT.\n";
}

// Asks for the name and writes what was shown.
void Save_Packet(QDialog& box, const std::vector<Packet_File>& files) {
  if (!Stopped_For("Can't save a file")) return;  // the dialog holds up the thread
  const auto path = Platform.Save_File_Dialog(
      {"Save support packet", "Zip Files (*.zip)|*.zip", "", "norvik-support.zip", "zip"});
  if (!path) return;
  const bool written = Trap_With(
      [](const Fault& fault) {
        Platform.Message_Box("Support packet", fault.Description, Box_Buttons::Ok);
      },
      [&] { Write_Support_Packet(*path, files); });
  if (!written) return;
  Tell("The support packet is saved: " + *path, 5);
  box.close();
}

// What goes in, to be read before anything is written.
void Show_Support_Packet(QWidget& about) {
  auto* box = new QDialog(&about);
  box->setObjectName("Support_Packet");
  box->setWindowTitle("Support packet");
  box->setAttribute(Qt::WA_DeleteOnClose);
  auto* rows = new QVBoxLayout(box);
  auto* words = new QLabel(
      "This goes into the packet. Folders outside the program's own are blanked; names of files "
      "and "
      "of devices stay. Nothing leaves this computer by itself.");
  words->setWordWrap(true);
  rows->addWidget(words);
  const std::vector<Packet_File> files = Support_Packet(Surroundings().toStdString());
  auto* list = new QListWidget;
  list->setObjectName("List_Packet");
  list->setAccessibleName("Files of the packet");
  auto* text = new QPlainTextEdit;
  text->setObjectName("Text_Packet");
  text->setAccessibleName("Text of the chosen file");
  text->setReadOnly(true);
  for (const Packet_File& file : files) {
    list->addItem(QString::fromStdString(file.Entry.Name + "\n" + file.What));
  }
  QObject::connect(list, &QListWidget::currentRowChanged, text, [text, files](int row) {
    if (row < 0) return;
    const Zip_Entry& entry = files[static_cast<std::size_t>(row)].Entry;
    text->setPlainText(
        QString::fromUtf8(entry.Bytes.data(), static_cast<qsizetype>(entry.Bytes.size())));
  });
  list->setCurrentRow(0);
  auto* columns = new QHBoxLayout;
  columns->addWidget(list, 2);
  columns->addWidget(text, 3);
  rows->addLayout(columns, 1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
  QPushButton* save = buttons->addButton("Save...", QDialogButtonBox::AcceptRole);
  save->setObjectName("Command_Save_Packet");
  QObject::connect(save, &QPushButton::clicked, box, [box, files] { Save_Packet(*box, files); });
  QObject::connect(buttons, &QDialogButtonBox::rejected, box, &QDialog::close);
  rows->addWidget(buttons);
  box->resize(Text_Height() * 44, Text_Height() * 26);
  box->show();
}

}  // namespace

void Show_About_Box(QWidget* parent) {
  auto* box = new QDialog(parent);
  box->setObjectName("About");
  box->setWindowTitle("About Norvik");
  box->setAttribute(Qt::WA_DeleteOnClose);
  auto* rows = new QVBoxLayout(box);
  auto* title = new QLabel(QString::fromUtf8(Program_Title.data()));
  title->setFont(Bold_Font(1.6));
  rows->addWidget(title);
  rows->addWidget(
      new QLabel("Control of step-and-direction machines.\n"
                 "Send the text below along when you ask for help."));
  auto* text = new QPlainTextEdit(Whole_Text());
  text->setObjectName("Text_Support");
  text->setReadOnly(true);
  text->setMinimumSize(Text_Height() * 32, Text_Height() * 13);
  rows->addWidget(text, 1);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  QPushButton* copy = buttons->addButton("Copy text", QDialogButtonBox::ActionRole);
  copy->setObjectName("Command_Copy_Support");
  QObject::connect(copy, &QPushButton::clicked, text,
                   [text] { QGuiApplication::clipboard()->setText(text->toPlainText()); });
  QPushButton* save = buttons->addButton("Save support packet...", QDialogButtonBox::ActionRole);
  save->setObjectName("Command_Save_Support");
  QObject::connect(save, &QPushButton::clicked, box, [box] { Show_Support_Packet(*box); });
  QObject::connect(buttons, &QDialogButtonBox::rejected, box, &QDialog::close);
  rows->addWidget(buttons);
  box->show();
}

}  // namespace norvik
