#include "ui/main/about_box.h"

#include "app/support_text.h"
#include "core/version.h"
#include "ui/widgets/theme.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace norvik {

namespace {

QString Whole_Text() {
  return QString::fromStdString(Support_Text()) +
         QString("Windows: Qt %1, %2, scale %3, %4\n")
             .arg(qVersion(), QGuiApplication::platformName())
             .arg(qApp->devicePixelRatio())
             .arg(QSysInfo::prettyProductName());
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
  QObject::connect(buttons, &QDialogButtonBox::rejected, box, &QDialog::close);
  rows->addWidget(buttons);
  box->show();
}

}  // namespace norvik
