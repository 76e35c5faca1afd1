// jog_key_test.h: the window `JogKey_Test`: shows the code of any key, or reads one for the table.
#pragma once

#include <functional>

#include <QDialog>

class QLabel;

namespace norvik {

// Reads the key that the record `JogKey_Test` was opened for; after it the window closes. ESC stops
// the machine and is no key for a jog: it closes the window.
class JogKey_Test_Window : public QDialog {
 public:
  // `key_read` runs after every key.
  JogKey_Test_Window(QWidget* parent, std::function<void()> key_read);

  // Shows the record and takes the keys.
  void Open();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  bool focusNextPrevChild(bool) override { return false; }  // Tab is a key like any other

 private:
  void Show_Form();

  std::function<void()> Key_Read;
  QLabel *Prompt, *Value, *Name;
};

}  // namespace norvik
