#include "ui/program/find_bar.h"

#include "core/operation.h"
#include "ui/program/gcode_editor.h"
#include "ui/widgets/theme.h"

#include <algorithm>

#include <QCheckBox>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QToolButton>

namespace norvik {

namespace {

constexpr int Count_Delay_Ms = 250, Longest_Count_Ms = 200;

}  // namespace

Find_Bar::Find_Bar(GCode_Editor* editor, QWidget* parent) : QWidget(parent), Editor(editor) {
  setObjectName("Find_Bar");
  setProperty("Takes_Escape", true);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(2);
  rows->addWidget(Build_Find_Row());
  Replace_Row = Build_Replace_Row();
  rows->addWidget(Replace_Row);
  Count_Timer.setSingleShot(true);
  Count_Timer.setInterval(Count_Delay_Ms);
  connect(&Count_Timer, &QTimer::timeout, this, &Find_Bar::Count_Hits);
  connect(Editor, &QPlainTextEdit::textChanged, this, [this] {
    if (isVisible()) Count_Timer.start();
  });
  Replace_Row->hide();
  hide();
}

QWidget* Find_Bar::Build_Find_Row() {
  auto* area = new QWidget;
  auto* grid = new QGridLayout(area);
  grid->setContentsMargins(0, 0, 0, 0);
  Text_Find = new QLineEdit;
  Text_Find->setObjectName("Text_Find");
  Text_Find->setPlaceholderText("Find; Enter goes to the next place");
  grid->addWidget(Text_Find, 0, 0, 1, 4);
  const auto button = [this](const char* name, const QString& caption, const QString& tip,
                             void (Find_Bar::*clicked)()) {
    auto* made = new QToolButton;
    made->setObjectName(name);
    made->setText(caption);
    made->setToolTip(tip);
    made->setFocusPolicy(Qt::NoFocus);
    connect(made, &QToolButton::clicked, this, clicked);
    return made;
  };
  grid->addWidget(button("Command_Find_Previous", QString::fromUtf8("\u25B2"),
                         "The place before (Shift+F3)", &Find_Bar::Find_Previous),
                  0, 4);
  grid->addWidget(button("Command_Find_Next", QString::fromUtf8("\u25BC"), "The next place (F3)",
                         &Find_Bar::Find_Next),
                  0, 5);
  Hits = new QLabel;
  Hits->setObjectName("Label_Find_Hits");
  grid->addWidget(Hits, 0, 6);
  grid->addWidget(
      button("Command_Find_Close", QString::fromUtf8("\u2715"), "Close (ESC)", &Find_Bar::Close), 0,
      7);
  const auto check = [&](const char* name, const QString& caption, const QString& tip, int column) {
    auto* made = new QCheckBox(caption);
    made->setObjectName(name);
    made->setToolTip(tip);
    grid->addWidget(made, 1, column);
    return made;
  };
  Match_Case = check("Check_Match_Case", "Case", "Upper and lower case differ", 0);
  Whole_Word = check("Check_Whole_Word", "Word", "Whole words only: X1 is not found in X10", 1);
  Is_Pattern = check("Check_Regex", "Pattern", "The text is a regular expression", 2);
  In_Selection = check("Check_In_Selection", "Selection", "Only in what is selected now", 3);
  Answer = new QLabel;
  Answer->setObjectName("Label_Find_Answer");
  Answer->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  grid->addWidget(Answer, 1, 4, 1, 4);
  grid->setColumnStretch(3, 1);
  connect(Text_Find, &QLineEdit::returnPressed, this, &Find_Bar::Find_Next);
  connect(Text_Find, &QLineEdit::textChanged, this, [this] { Count_Timer.start(); });
  for (QCheckBox* box : {Match_Case, Whole_Word, Is_Pattern}) {
    connect(box, &QCheckBox::toggled, this, [this] { Count_Timer.start(); });
  }
  connect(In_Selection, &QCheckBox::toggled, this, &Find_Bar::Scope_Changed);
  return area;
}

QWidget* Find_Bar::Build_Replace_Row() {
  auto* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  Text_Replace = new QLineEdit;
  Text_Replace->setObjectName("Text_Replace");
  Text_Replace->setPlaceholderText("Replace by; \\1 is the first group of a pattern");
  row->addWidget(Text_Replace, 1);
  const auto button = [&](const char* name, const QString& caption, void (Find_Bar::*clicked)()) {
    auto* made = new QPushButton(caption);
    made->setObjectName(name);
    made->setFocusPolicy(Qt::NoFocus);
    connect(made, &QPushButton::clicked, this, clicked);
    row->addWidget(made);
  };
  button("Command_Replace", "Replace", &Find_Bar::Replace);
  button("Command_Replace_All", "Replace all", &Find_Bar::Replace_All);
  connect(Text_Replace, &QLineEdit::returnPressed, this, &Find_Bar::Replace);
  return area;
}

// --- Opening and closing -------------------------------------------------------------------------

void Find_Bar::Open() {
  const QString selected = Editor->textCursor().selectedText();
  // A selection of several lines is a place to search in, not a text to look for.
  if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator)) {
    Text_Find->setText(selected);
  }
  show();
  Text_Find->setFocus();
  Text_Find->selectAll();
  Note({});
  Count_Timer.start();
}

void Find_Bar::Show_Find() {
  Replace_Row->hide();
  Open();
}

void Find_Bar::Show_Replace() {
  Replace_Row->show();
  Open();
}

void Find_Bar::Close() {
  In_Selection->setChecked(false);
  hide();
  Editor->setFocus();
}

void Find_Bar::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    Close();
    event->accept();
    return;
  }
  QWidget::keyPressEvent(event);
}

// --- Search --------------------------------------------------------------------------------------

Text_Search Find_Bar::Asked() const {
  return Text_Search({Text_Find->text(), Match_Case->isChecked(), Whole_Word->isChecked(),
                      Is_Pattern->isChecked()});
}

bool Find_Bar::May_Search(const Text_Search& search) {
  if (Anything_Moves()) {
    Note("Not while the machine moves");
    return false;
  }
  Note(search.Problem());
  return search.Is_Valid();
}

void Find_Bar::Note(const QString& text) {
  Answer->setText(text);
  Answer->setToolTip(text);
}

void Find_Bar::Scope_Changed() {
  Scope = In_Selection->isChecked() ? Editor->textCursor() : QTextCursor();
  if (In_Selection->isChecked() && !Scope.hasSelection()) {
    In_Selection->setChecked(false);
    Note("Nothing is selected");
  }
  Count_Timer.start();
}

int Find_Bar::First_Position() const {
  return Scope.isNull() ? 0 : Scope.selectionStart();
}

int Find_Bar::Last_Position() const {
  return Scope.isNull() ? Editor->document()->characterCount() - 1 : Scope.selectionEnd();
}

// Looks between two positions, the text's order or the other way round, from the start or the end
// of a selection on.
bool Find_Bar::Find_In(const Text_Search& search, const QTextCursor& from, bool forward, int first,
                       int last) {
  const int start = std::clamp(forward ? from.selectionEnd() : from.selectionStart(), first, last);
  for (QTextBlock block = Editor->document()->findBlock(start); block.isValid();
       block = forward ? block.next() : block.previous()) {
    const int place = block.position();
    if (forward ? place > last : place + block.length() <= first) break;
    const QString line = block.text();
    auto hit = forward
                   ? search.Next(line, std::max(0, start - place))
                   : search.Previous(line, std::min(static_cast<int>(line.size()), start - place));
    if (!hit) continue;
    if (place + hit->Start < first || place + hit->Start + hit->Length > last) {
      if (forward || place + hit->Start < first) break;
      continue;
    }
    QTextCursor found(block);
    found.setPosition(place + hit->Start);
    found.setPosition(place + hit->Start + hit->Length, QTextCursor::KeepAnchor);
    Editor->setTextCursor(found);
    Editor->ensureCursorVisible();
    return true;
  }
  return false;
}

void Find_Bar::Find(bool forward) {
  if (!isVisible()) {
    Show_Find();
    if (Text_Find->text().isEmpty()) return;
  }
  const Text_Search search = Asked();
  if (!May_Search(search)) return;
  const int first = First_Position(), last = Last_Position();
  if (Find_In(search, Editor->textCursor(), forward, first, last)) return;
  QTextCursor end(Editor->document());
  end.setPosition(forward ? first : last);
  if (Find_In(search, end, forward, first, last)) {
    Note(forward ? "Went on from the top" : "Went on from the end");
  } else {
    Note("Not found");
  }
}

void Find_Bar::Find_Next() {
  Find(true);
}

void Find_Bar::Find_Previous() {
  Find(false);
}

void Find_Bar::Replace() {
  const Text_Search search = Asked();
  if (!May_Search(search)) return;
  QTextCursor cursor = Editor->textCursor();
  const QString selected = cursor.selectedText();
  if (search.Is_Hit(selected)) {
    int count = 0;
    cursor.insertText(search.Replaced(selected, 0, static_cast<int>(selected.size()),
                                      Text_Replace->text(), count));
  }
  Find_Next();
}

void Find_Bar::Replace_All() {
  const Text_Search search = Asked();
  if (!May_Search(search)) return;
  const int first = First_Position(), last = Last_Position();
  const QString replacement = Text_Replace->text();
  QString text;
  text.reserve(Editor->document()->characterCount());
  int count = 0;
  for (QTextBlock block = Editor->document()->begin(); block.isValid(); block = block.next()) {
    const QString line = block.text();
    const int place = block.position(), length = static_cast<int>(line.size());
    const bool inside = place <= last && place + length >= first;
    text += inside ? search.Replaced(line, std::max(0, first - place),
                                     std::min(length, last - place), replacement, count)
                   : line;
    if (block.next().isValid()) text += '\n';
  }
  if (count > 0) {
    In_Selection->setChecked(false);  // the whole text is a new one
    Editor->Replace_Text(text);
  }
  Note(count > 0 ? QString("%1 replaced").arg(count) : "Not found");
}

void Find_Bar::Count_Hits() {
  if (!isVisible()) return;
  const Text_Search search = Asked();
  if (!search.Is_Valid() || Anything_Moves()) return Hits->clear();
  QElapsedTimer clock;
  clock.start();
  const int first = First_Position(), last = Last_Position();
  int count = 0;
  bool whole = true;
  for (QTextBlock block = Editor->document()->findBlock(first);
       block.isValid() && block.position() <= last; block = block.next()) {
    const QString line = block.text();
    const int place = block.position();
    for (auto hit = search.Next(line, std::max(0, first - place));
         hit && place + hit->Start + hit->Length <= last;
         hit = search.Next(line, hit->Start + hit->Length)) {
      ++count;
    }
    if ((block.blockNumber() & 0xFF) == 0 && clock.elapsed() > Longest_Count_Ms) {
      whole = false;
      break;
    }
  }
  Hits->setText(QString(whole ? "%1 hits" : "over %1 hits").arg(count));
}

}  // namespace norvik
