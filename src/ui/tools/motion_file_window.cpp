#include "ui/tools/motion_file_window.h"

#include "tools/motion_file.h"
#include "ui/tools/window_buttons.h"
#include "ui/widgets/theme.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace norvik {

Motion_File_Window::Motion_File_Window(QWidget* parent) : QWidget(parent) {
  setObjectName("MotionFile");
  setWindowTitle("Motion file text");
  MotionFile_Form_Load();
  auto* rows = new QVBoxLayout(this);
  auto* path = new QLabel(QString::fromStdString(MotionFile.Path));
  path->setTextFormat(Qt::PlainText);
  path->setWordWrap(true);
  rows->addWidget(path);
  auto* text = new QPlainTextEdit(QString::fromStdString(MotionFile.RichTextBox1));
  text->setObjectName("RichTextBox1");
  text->setReadOnly(true);
  text->setLineWrapMode(QPlainTextEdit::NoWrap);
  text->setFont(Readout_Font(1.0));
  text->setTabChangesFocus(true);
  text->setMinimumSize(Text_Height() * 24, Text_Height() * 8);
  rows->addWidget(text, 1);
  auto* foot = new QHBoxLayout;
  foot->addStretch(1);
  Add_Window_Button(*foot, "Command1", "Close", "Close", [this] { Close_Frame_Of(*this); });
  rows->addLayout(foot);
  resize(Text_Height() * 44, Text_Height() * 26);
}

}  // namespace norvik
