#include "ui/program/gcode_editor.h"

#include "ui/program/gcode_colors.h"
#include "ui/widgets/theme.h"

#include <algorithm>

#include <QFontDatabase>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>
#include <QToolTip>

namespace norvik {

namespace {

// The strip at the left; all its work is done by the editor, which knows where the lines are.
class Editor_Margin : public QWidget {
 public:
  explicit Editor_Margin(GCode_Editor* editor) : QWidget(editor), Editor(editor) {}
  QSize sizeHint() const override { return {Editor->Margin_Width(), 0}; }

 protected:
  void paintEvent(QPaintEvent* event) override { Editor->Paint_Margin(event); }
  bool event(QEvent* event) override {
    if (event->type() == QEvent::ToolTip) {
      const auto* help = static_cast<QHelpEvent*>(event);
      QToolTip::showText(help->globalPos(), Editor->Margin_Tip(help->pos().y()), this);
      return true;
    }
    return QWidget::event(event);
  }

 private:
  GCode_Editor* Editor;
};

// A block's colours are valid while its text is that of this revision.
constexpr int Not_Colored = -1;

}  // namespace

GCode_Editor::GCode_Editor(QWidget* parent)
    : QPlainTextEdit(parent), Margin(new Editor_Margin(this)) {
  setObjectName("Text_GCode");
  setLineWrapMode(QPlainTextEdit::NoWrap);
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSizeF(std::max(10.0, QWidget::font().pointSizeF()));
  setFont(font);
  setTabChangesFocus(false);
  connect(this, &QPlainTextEdit::blockCountChanged, this, &GCode_Editor::Fit_Margin);
  connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& area, int dy) {
    if (dy != 0) {
      Margin->scroll(0, dy);
    } else {
      Margin->update(0, area.y(), Margin->width(), area.height());
    }
  });
  connect(document(), &QTextDocument::contentsChange, this, [this](int from, int, int added) {
    Whole_Text_Changed = from == 0 && added >= document()->characterCount() - 1;
  });
  Fit_Margin();
}

void GCode_Editor::Fit_Margin() {
  const int width = Margin_Width();
  setViewportMargins(width, 0, 0, 0);
  Margin->resize(width, Margin->height());
}

void GCode_Editor::Set_Program(const QString& text) {
  Marks.clear();
  Current_Line = 0;
  setPlainText(text);
  document()->setModified(false);
  Fit_Margin();  // the signals are blocked while a program is shown
}

void GCode_Editor::Replace_Text(const QString& text) {
  Marks.clear();
  const int line = textCursor().blockNumber();
  const int top = verticalScrollBar()->value();
  QTextCursor cursor(document());
  cursor.beginEditBlock();
  cursor.select(QTextCursor::Document);
  cursor.insertText(text);
  cursor.endEditBlock();
  Keep_Line(line, top);
  Fit_Margin();
}

void GCode_Editor::Keep_Line(int line, int top) {
  const QTextBlock block = document()->findBlockByNumber(std::min(line, blockCount() - 1));
  setTextCursor(QTextCursor(block));
  verticalScrollBar()->setValue(top);
}

// The toolkit leaves the cursor behind what has come back, which may be a million lines away.
void GCode_Editor::Keeping_Line_Of_Whole_Text(void (QPlainTextEdit::*step)()) {
  const int line = textCursor().blockNumber();
  const int top = verticalScrollBar()->value();
  Whole_Text_Changed = false;
  (this->*step)();
  if (Whole_Text_Changed) Keep_Line(line, top);
}

void GCode_Editor::Step_Back() {
  Keeping_Line_Of_Whole_Text(&QPlainTextEdit::undo);
}

void GCode_Editor::Step_Forth() {
  Keeping_Line_Of_Whole_Text(&QPlainTextEdit::redo);
}

void GCode_Editor::Show_Line(int line) {
  const QTextBlock block = document()->findBlockByNumber(line - 1);
  if (!block.isValid()) return;
  QTextCursor cursor(block);
  cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
  setTextCursor(cursor);
  centerCursor();
}

bool GCode_Editor::Show_First(const QString& text) {
  const QTextCursor found = document()->find(text, 0, QTextDocument::FindCaseSensitively);
  if (found.isNull()) return false;
  setTextCursor(found);
  centerCursor();
  return true;
}

void GCode_Editor::Set_Current_Line(int line) {
  if (line == Current_Line) return;
  Current_Line = line;
  Show_Current_Line();
}

void GCode_Editor::Show_Current_Line() {
  QList<QTextEdit::ExtraSelection> selections;
  const QTextBlock block = document()->findBlockByNumber(Current_Line - 1);
  if (Current_Line > 0 && block.isValid()) {
    QTextEdit::ExtraSelection selection;
    QColor ground = palette().color(QPalette::Highlight);
    ground.setAlpha(60);
    selection.format.setBackground(ground);
    selection.format.setProperty(QTextFormat::FullWidthSelection, true);
    selection.cursor = QTextCursor(block);
    selections << selection;
    const QRectF place = blockBoundingGeometry(block).translated(contentOffset());
    if (!viewport()->rect().contains(0, static_cast<int>(place.center().y()))) {
      verticalScrollBar()->setValue(std::max(0, Current_Line - 5));
    }
  }
  setExtraSelections(selections);
  Margin->update();
}

void GCode_Editor::Set_Marks(std::map<int, Mark> marks) {
  Marks = std::move(marks);
  Margin->update();
}

int GCode_Editor::Margin_Width() const {
  const auto digits = QString::number(std::max(1000, blockCount())).size();
  const QFontMetrics metrics = fontMetrics();
  return metrics.horizontalAdvance('9') * static_cast<int>(digits + 3) + metrics.height() / 2;
}

void GCode_Editor::Paint_Margin(QPaintEvent* event) {
  QPainter painter(Margin);
  painter.fillRect(event->rect(), palette().color(QPalette::AlternateBase));
  const int text_width = Margin->width() - fontMetrics().horizontalAdvance('9');
  const int height = fontMetrics().height();
  for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
    const QRectF place = blockBoundingGeometry(block).translated(contentOffset());
    if (place.top() > event->rect().bottom()) break;
    const int top = static_cast<int>(place.top());
    const int line = block.blockNumber() + 1;
    const bool current = line == Current_Line;
    painter.setFont(font());
    painter.setPen(current ? palette().color(QPalette::Highlight) : Colors().Muted);
    painter.drawText(0, top, text_width, height, Qt::AlignRight | Qt::AlignVCenter,
                     QString::number(line));
    if (current) {
      painter.drawText(height / 2 + 2, top, text_width, height, Qt::AlignLeft | Qt::AlignVCenter,
                       QString::fromUtf8("\u25B6"));
    }
    const auto mark = Marks.find(line);
    if (mark != Marks.end()) {
      painter.setRenderHint(QPainter::Antialiasing);
      painter.setPen(Qt::NoPen);
      painter.setBrush(mark->second.Serious ? Colors().Stop : Colors().Warn);
      const int size = height * 2 / 5;
      painter.drawEllipse(3, top + (height - size) / 2, size, size);
    }
  }
}

QString GCode_Editor::Margin_Tip(int y) const {
  const QTextCursor cursor = cursorForPosition({0, y});
  const auto mark = Marks.find(cursor.blockNumber() + 1);
  return mark == Marks.end() ? QString() : mark->second.Text;
}

void GCode_Editor::Color_Visible_Blocks() {
  const int bottom = viewport()->height();
  for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
    if (blockBoundingGeometry(block).translated(contentOffset()).top() > bottom) break;
    // A block keeps the state of the text that was coloured: its revision and its length.
    const int state = (block.revision() << 8) ^ block.length();
    if (block.userState() == state && state != Not_Colored) continue;
    block.setUserState(state);
    block.layout()->setFormats(GCode_HighlightWords(block.text()));
  }
}

void GCode_Editor::paintEvent(QPaintEvent* event) {
  Color_Visible_Blocks();
  QPlainTextEdit::paintEvent(event);
}

void GCode_Editor::resizeEvent(QResizeEvent* event) {
  QPlainTextEdit::resizeEvent(event);
  const QRect inside = contentsRect();
  Margin->setGeometry(inside.left(), inside.top(), Margin_Width(), inside.height());
}

void GCode_Editor::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Undo)) return Step_Back();
  if (event->matches(QKeySequence::Redo)) return Step_Forth();
  QPlainTextEdit::keyPressEvent(event);
}

void GCode_Editor::mouseDoubleClickEvent(QMouseEvent* event) {
  QPlainTextEdit::mouseDoubleClickEvent(event);
  emit Line_Double_Clicked(textCursor().blockNumber() + 1);
}

bool GCode_Editor::canInsertFromMimeData(const QMimeData* source) const {
  return source->hasUrls() || QPlainTextEdit::canInsertFromMimeData(source);
}

void GCode_Editor::insertFromMimeData(const QMimeData* source) {
  if (source->hasUrls() && source->urls().front().isLocalFile()) {
    emit File_Dropped(source->urls().front().toLocalFile());
    return;
  }
  QPlainTextEdit::insertFromMimeData(source);
}

}  // namespace norvik
