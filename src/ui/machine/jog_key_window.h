// jog_key_window.h: the window `JogKey`: jogging by held keys or by the joystick.
#pragma once

#include "core/indexed.h"
#include "platform/platform.h"
#include "ui/widgets/form_binding.h"

#include <array>
#include <optional>

#include <QWidget>

class QListWidget;
class QRadioButton;

namespace norvik {

class JogKey_Window : public QWidget {
 public:
  explicit JogKey_Window(QWidget* parent = nullptr);
  ~JogKey_Window() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  bool focusNextPrevChild(bool) override { return false; }  // Tab must not take the keys away

 private:
  QWidget* Build_Key_Map();
  QWidget* Build_Joystick();
  void Show_Key_Names();
  void Show_Form();
  void Stop_Timers();

  Form_Binding Binding;
  std::array<QRadioButton*, 2> Devices{};
  std::array<QLabel*, 15> Key_Pictures_Shown{};
  std::optional<Indexed<std::int16_t, 0, 14>> Shown_Keys;
  QWidget* Stick = nullptr;
  QListWidget* Raw_Values = nullptr;
  Timer_Id Joystick_Timer = 0, Stop_Timer = 0;  // 0: stands, as both do while the window is hidden
};

}  // namespace norvik
