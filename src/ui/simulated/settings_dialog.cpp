#include "ui/simulated/settings_dialog.h"

#include "control/manual/jog_guard.h"
#include "platform/platform.h"
#include "simulate/simulated_machine.h"
#include "ui/widgets/theme.h"

#include <algorithm>
#include <vector>

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace norvik {

namespace {

std::vector<const Simulation_Setting*> Rows(bool of_axis) {
  std::vector<const Simulation_Setting*> rows;
  for (const Simulation_Setting& setting : Simulation_Settings()) {
    if (setting.Is_Family == of_axis) rows.push_back(&setting);
  }
  return rows;
}

QString Words(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString Head(const Simulation_Setting& setting) {
  return QString::fromStdString(Setting_Head(setting));
}

QString Text(const Simulation_Setting& setting, int axis) {
  return QString::fromStdString(Text_Of_Setting(setting, axis));
}

// Yes and no are ticks.
void Show_Item(QTableWidgetItem& item, const Simulation_Setting& setting, int axis) {
  if (setting.Kind == Setting_Kind::Yes_No) {
    item.setCheckState(setting.Get(axis) != 0.0 ? Qt::Checked : Qt::Unchecked);
  } else {
    item.setText(Text(setting, axis));
  }
}

QString Text_Of_Item(const QTableWidgetItem& item, const Simulation_Setting& setting) {
  if (setting.Kind != Setting_Kind::Yes_No) return item.text();
  return item.checkState() == Qt::Checked ? "1" : "0";
}

}  // namespace

Simulation_Settings_Dialog::Simulation_Settings_Dialog(QWidget* parent) : QDialog(parent) {
  setObjectName("Simulation_Settings");
  setWindowTitle("Simulated machine: settings");
  auto* rows = new QVBoxLayout(this);
  Build_Table();
  rows->addWidget(Table, 1);
  rows->addWidget(Build_Machine());
  Told = new QLabel;
  Told->setObjectName("Label_Settings");
  Told->setWordWrap(true);
  rows->addWidget(Told);
  rows->addWidget(Build_Buttons());
  Show_Values();
  Tell("Changes count at once. Save keeps them for the next start.", false);
  const Screen_Area screen = Platform.Screen();
  resize(std::min(Text_Height() * 42, screen.Width * 9 / 10),
         std::min(Text_Height() * 38, screen.Height * 8 / 10));
}

void Simulation_Settings_Dialog::Build_Table() {
  const auto settings = Rows(true);
  Table = new QTableWidget(static_cast<int>(settings.size()), 4);
  Table->setObjectName("Table_Settings");
  Table->setHorizontalHeaderLabels({"X", "Y", "Z", "A"});
  Table->setMinimumHeight(Text_Height() * 6);
  Table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  Table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  for (int row = 0; row < Table->rowCount(); ++row) {
    const Simulation_Setting& setting = *settings[static_cast<std::size_t>(row)];
    auto* head = new QTableWidgetItem(Head(setting));
    head->setToolTip(Words(setting.Help));
    Table->setVerticalHeaderItem(row, head);
    for (int column = 0; column < 4; ++column) {
      auto* item = new QTableWidgetItem;
      item->setToolTip(Words(setting.Help));
      item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
      if (setting.Kind == Setting_Kind::Yes_No) {
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
      }
      Table->setItem(row, column, item);
    }
  }
  connect(Table, &QTableWidget::itemChanged, this, [this, settings](QTableWidgetItem* item) {
    const Simulation_Setting& setting = *settings[static_cast<std::size_t>(item->row())];
    Take(setting, item->column() + 1, Text_Of_Item(*item, setting));
  });
}

QWidget* Simulation_Settings_Dialog::Editor_Of(const Simulation_Setting& setting) {
  if (setting.Kind == Setting_Kind::Yes_No) {
    auto* box = new QCheckBox;
    connect(box, &QCheckBox::toggled, this,
            [this, &setting](bool on) { Take(setting, 0, on ? "1" : "0"); });
    return box;
  }
  if (!setting.Choices.empty()) {
    auto* list = new QComboBox;
    for (const Setting_Choice& choice : setting.Choices) list->addItem(Words(choice.Words));
    connect(list, &QComboBox::activated, this,
            [this, &setting](int index) { Take(setting, 0, QString::number(index)); });
    return list;
  }
  auto* line = new QLineEdit;
  connect(line, &QLineEdit::editingFinished, this, [this, line, &setting] {
    if (line->text() != Text(setting, 0)) Take(setting, 0, line->text());
  });
  return line;
}

QWidget* Simulation_Settings_Dialog::Build_Machine() {
  auto* area = new QWidget;
  auto* form = new QFormLayout(area);
  form->setContentsMargins(0, 0, 0, 0);
  form->setVerticalSpacing(2);
  for (const Simulation_Setting* setting : Rows(false)) {
    QWidget* editor = Editor_Of(*setting);
    editor->setObjectName("Setting_" + Words(setting->Key));
    editor->setToolTip(Words(setting->Help));
    Editors[setting] = editor;
    form->addRow(Head(*setting), editor);
  }
  return area;
}

QWidget* Simulation_Settings_Dialog::Build_Buttons() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  const auto add = [&](const char* words, const char* name, auto&& act) {
    auto* button = new QPushButton(words);
    button->setObjectName(name);
    button->setAutoDefault(false);  // Enter ends the editing of a cell
    connect(button, &QPushButton::clicked, this, act);
    row->addWidget(button);
  };
  add("Restore the defaults", "Command_Restore_Defaults", [this] {
    Restore_Simulation_Defaults();
    Show_Values();
    Tell("These are the defaults for this machine file. Save keeps them.", false);
  });
  row->addStretch(1);
  add("Save", "Command_Save_Settings", [this] {
    if (Save_Simulation_Settings()) {
      Tell("Saved.", false);
    } else {
      Tell("Not saved: Norvik.Ini cannot be written. The messages of the panel say why.", true);
    }
  });
  add("Close", "Command_Close_Settings", [this] { close(); });
  return area;
}

void Simulation_Settings_Dialog::showEvent(QShowEvent* event) {
  Jog_Guard_Window_Lost();
  Show_Values();
  QDialog::showEvent(event);
}

// The panel may have changed something in the meantime.
bool Simulation_Settings_Dialog::event(QEvent* event) {
  if (event->type() == QEvent::WindowActivate) Show_Values();
  return QDialog::event(event);
}

void Simulation_Settings_Dialog::Show_Values() {
  Showing = true;
  int row = 0;
  for (const Simulation_Setting* setting : Rows(true)) {
    for (int axis = 1; axis <= 4; ++axis) Show_Item(*Table->item(row, axis - 1), *setting, axis);
    ++row;
  }
  for (const auto& [setting, editor] : Editors) {
    if (auto* box = qobject_cast<QCheckBox*>(editor)) box->setChecked(setting->Get(0) != 0.0);
    if (auto* list = qobject_cast<QComboBox*>(editor)) {
      list->setCurrentIndex(static_cast<int>(setting->Get(0).value_or(0)));
    }
    if (auto* line = qobject_cast<QLineEdit*>(editor)) line->setText(Text(*setting, 0));
  }
  Showing = false;
}

void Simulation_Settings_Dialog::Take(const Simulation_Setting& setting, int axis,
                                      const QString& text) {
  if (Showing) return;
  const std::string wrong = Change_Setting(setting, axis, text.toStdString());
  Show_Values();
  Tell(wrong.empty() ? "Changed. Save keeps it for the next start." : QString::fromStdString(wrong),
       !wrong.empty());
}

void Simulation_Settings_Dialog::Tell(const QString& words, bool wrong) {
  Told->setText(words);
  Set_Face(*Told, QColor(), wrong ? Colors().Stop : QColor());
}

}  // namespace norvik
