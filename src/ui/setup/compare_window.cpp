#include "ui/setup/compare_window.h"

#include "control/motion/motion.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/paths.h"
#include "core/remembered_files.h"
#include "core/setup_compare.h"
#include "platform/platform.h"
#include "ui/widgets/theme.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

namespace norvik {

namespace {

constexpr const char* Filter = "All Files (*.*)|*.*|INI Files (*.ini)|*.ini";

void Show_Differences(QWidget& parent, const std::string& path,
                      const std::vector<Setup_Difference>& differences) {
  auto* box = new QDialog(&parent);
  box->setObjectName("Compare");
  box->setWindowTitle("Compare with file");
  box->setAttribute(Qt::WA_DeleteOnClose);
  auto* rows = new QVBoxLayout(box);
  const QString here = QString::fromStdString(PathFileName(Application.MachineFile));
  const QString there = QString::fromStdString(PathFileName(path));
  const auto count = differences.size();
  auto* title = new QLabel(count == 0 ? QString("%1 has the same settings as %2.").arg(there, here)
                                      : QString("%1 settings differ.").arg(count));
  title->setObjectName("Label_Compared");
  title->setTextFormat(Qt::PlainText);
  rows->addWidget(title);
  auto* table = new QTableWidget(static_cast<int>(count), 4);
  table->setObjectName("Table_Compared");
  table->setAccessibleName("Settings that differ");
  table->setHorizontalHeaderLabels({"Setting", here, there, "Key"});
  table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->verticalHeader()->hide();
  table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
  int row = 0;
  for (const Setup_Difference& one : differences) {
    int column = 0;
    for (const std::string& text : {one.Label, one.Here, one.There, one.Key}) {
      table->setItem(row, column++, new QTableWidgetItem(QString::fromStdString(text)));
    }
    ++row;
  }
  table->resizeColumnsToContents();
  rows->addWidget(table, 1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  QObject::connect(buttons, &QDialogButtonBox::rejected, box, &QDialog::close);
  rows->addWidget(buttons);
  box->resize(Text_Height() * 44, Text_Height() * 26);
  box->show();
}

}  // namespace

void Compare_With_File(QWidget& parent) {
  if (!Stopped_For("Can't open file")) return;  // the dialog holds up the thread
  const auto path = Platform.Open_File_Dialog(
      {"Compare with file", Filter, Last_File(File_Kind::Setup).Directory, "", "ini"});
  if (!path) return;
  Trap_With(
      [](const Fault& fault) {
        Platform.Message_Box("Compare with file", fault.Description, Box_Buttons::Ok);
      },
      [&] { Show_Differences(parent, *path, Compare_Setup_With(*path)); });
}

}  // namespace norvik
