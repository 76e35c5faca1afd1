#include "ui/main/error_log_window.h"

#include "core/application.h"
#include "ui/widgets/theme.h"

#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QVBoxLayout>

namespace norvik {

namespace {

// A log of years is not read while a machine may be moving: its end is.
constexpr qint64 Most_Bytes = 64 * 1024;

QString End_Of_Log() {
  QFile file(QString::fromStdString(Application.ErrorFile));
  if (!file.open(QIODevice::ReadOnly)) return "Nothing has been noted yet.";
  const bool cut = file.size() > Most_Bytes;
  if (cut) file.seek(file.size() - Most_Bytes);
  QString text = QString::fromUtf8(file.readAll());
  if (cut) text.remove(0, text.indexOf('\n') + 1);
  return text.trimmed().isEmpty() ? "Nothing has been noted yet." : text.trimmed();
}

}  // namespace

Error_Log_Window::Error_Log_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("Error_Log");
  setWindowTitle("Error log");
  auto* rows = new QVBoxLayout(this);
  auto* place = new QLabel(QString::fromStdString(Application.ErrorFile));
  place->setTextFormat(Qt::PlainText);
  place->setWordWrap(true);
  place->setForegroundRole(QPalette::PlaceholderText);
  rows->addWidget(place);
  auto* text = new QPlainTextEdit(End_Of_Log());
  text->setObjectName("Text_Error_Log");
  text->setReadOnly(true);
  text->setMinimumSize(Text_Height() * 34, Text_Height() * 14);
  rows->addWidget(text, 1);
  text->verticalScrollBar()->setValue(text->verticalScrollBar()->maximum());
}

}  // namespace norvik
