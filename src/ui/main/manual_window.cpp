#include "ui/main/manual_window.h"

#include "app/options/options_form.h"
#include "ui/widgets/theme.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QTextBrowser>

namespace norvik {

namespace {

constexpr const char* First_Page = "options.md";

struct Window_Page {
  const char* Window;
  const char* Page;
};

constexpr Window_Page Window_Pages[] = {
    {"Options", "options.md"},
    {"Machine_Check", "options.md"},
    {"Port_Setup", "hardware.md"},
    {"System_Timing", "hardware.md"},
    {"Port_IO", "hardware.md"},
    {"Table_Setup", "settings.md"},
    {"Simulated_Machine", "simulated_machine.md"},
    {"GCode", "text_tools.md"},
    {"Tool", "lists_and_motion_files.md"},
    {"MacroFiles", "lists_and_motion_files.md"},
    {"Event_Sounds", "lists_and_motion_files.md"},
    {"MotionFile", "lists_and_motion_files.md"},
    {"frmMotionAnalyzer", "lists_and_motion_files.md"},
};

}  // namespace

Manual_Place Manual_Place_Of(const QString& window, const QString& control) {
  for (const Option_Field& field : Options_Form.Fields) {
    if (window != "Options" || control.isEmpty()) break;
    if (QString::fromStdString(Option_Control_Name(field)) != control) continue;
    const std::string_view key = field.Row->Key;
    return {"settings.md", QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()))};
  }
  for (const Window_Page& row : Window_Pages) {
    if (window == row.Window) return {row.Page, {}};
  }
  return {First_Page, {}};
}

Manual_Window::Manual_Window(QWidget* parent)
    : QWidget(parent), Text(new QTextBrowser), Find(new QLineEdit) {
  setObjectName("Manual");
  setWindowTitle("Manual");
  auto* rows = new QVBoxLayout(this);
  auto* row = new QHBoxLayout;
  const auto button = [&](const char* name, const char* words, auto clicked) {
    auto* made = new QPushButton(words);
    made->setObjectName(name);
    made->setMinimumHeight(Finger_Height() * 3 / 4);
    connect(made, &QPushButton::clicked, this, clicked);
    row->addWidget(made);
    return made;
  };
  QPushButton* back = button("Command_Back", "&Back", [this] { Text->backward(); });
  back->setEnabled(false);
  connect(Text, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
  button("Command_Contents", "&Settings", [this] { Open_Page("settings.md", {}); });
  Find->setObjectName("Text_Find");
  Find->setPlaceholderText("Find on this page");
  Find->setMinimumHeight(Finger_Height() * 3 / 4);
  connect(Find, &QLineEdit::returnPressed, this, &Manual_Window::Find_Next);
  row->addWidget(Find, 1);
  rows->addLayout(row);
  Text->setObjectName("Text_Manual");
  Text->setAccessibleName("Page of the manual");
  Text->setSearchPaths({NORVIK_DOCS_FOLDER});
  Text->setOpenExternalLinks(false);
  rows->addWidget(Text, 1);
  resize(Text_Height() * 46, Text_Height() * 36);
  Open_Page(First_Page, {});
}

void Manual_Window::Open_Page(const QString& page, const QString& place) {
  const QString path = QString(NORVIK_DOCS_FOLDER) + "/" + page;
  if (!QFileInfo::exists(path)) {
    return Text->setPlainText("The manual's page " + page + " is not there: " + path);
  }
  const QUrl url = QUrl::fromLocalFile(path);
  if (Text->source() != url) Text->setSource(url, QTextDocument::MarkdownResource);
  Text->moveCursor(QTextCursor::Start);
  if (!place.isEmpty()) Text->find(place);
}

// From the place that was found last; from the beginning behind the end.
void Manual_Window::Find_Next() {
  if (Text->find(Find->text())) return;
  Text->moveCursor(QTextCursor::Start);
  Text->find(Find->text());
}

}  // namespace norvik
