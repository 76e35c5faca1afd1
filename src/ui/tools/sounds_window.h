// sounds_window.h: the window `Event_Sounds`: a sound for each event of the machine.
#pragma once

#include "ui/widgets/form_listener.h"

#include <optional>

#include <QWidget>

class QListWidget;

namespace norvik {

class Sounds_Window : public QWidget {
 public:
  explicit Sounds_Window(QWidget* parent = nullptr);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Show_Form();

  QListWidget* List;
  std::optional<Form_Listener> Listener;
};

}  // namespace norvik
