#include "ui/setup/jog_key_test.h"

#include "control/manual/jog_guard.h"
#include "control/manual/table_setup_keys.h"
#include "platform/keys/key_codes.h"
#include "ui/widgets/key_names.h"
#include "ui/widgets/theme.h"

#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace norvik {

JogKey_Test_Window::JogKey_Test_Window(QWidget* parent, std::function<void()> key_read)
    : QDialog(parent), Key_Read(std::move(key_read)) {
  setObjectName("JogKey_Test");
  setWindowTitle("Read a key");
  setFocusPolicy(Qt::StrongFocus);
  auto* rows = new QVBoxLayout(this);
  Prompt = new QLabel;
  Prompt->setAlignment(Qt::AlignCenter);
  rows->addWidget(Prompt);
  Value = new QLabel;
  Value->setObjectName("Label_Current_Key_Value");
  Value->setFont(Readout_Font(2));
  Value->setAlignment(Qt::AlignCenter);
  Value->setFrameShape(QFrame::StyledPanel);
  Value->setMargin(Text_Height() / 2);
  Set_Face(*Value, Colors().Readout_Ground, Colors().Readout);
  rows->addWidget(Value, 1);
  Name = new QLabel;
  Name->setAlignment(Qt::AlignCenter);
  rows->addWidget(Name);
  setMinimumWidth(Text_Height() * 20);
}

void JogKey_Test_Window::Show_Form() {
  Prompt->setText(JogKey_Test.Table_Entry ? "Press the key for this move. ESC: leave it as it is."
                                          : "Press any key to see its code. ESC closes.");
  Value->setText(QString::fromStdString(JogKey_Test.Label_Current_Key_Value.Caption));
  Name->setText(JogKey_Test.Last_Key ? Key_Name(*JogKey_Test.Last_Key) : QString(" "));
}

void JogKey_Test_Window::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) return reject();
  const int code = Virtual_Key_Code(*event);
  if (code == 0 || event->isAutoRepeat()) return;
  JogKey_Test_KeyDown(code);
  Show_Form();
  Key_Read();
}

void JogKey_Test_Window::keyReleaseEvent(QKeyEvent* event) {
  if (event->isAutoRepeat()) return;
  JogKey_Test_KeyUp();
  Show_Form();
  if (JogKey_Test.Table_Entry && JogKey_Test.Last_Key) accept();
}

void JogKey_Test_Window::Open() {
  Jog_Guard_Window_Lost();
  Show_Form();
  show();
  raise();
  activateWindow();
}

}  // namespace norvik
