// macro_files_window.h: the window `MacroFiles`: the files that M98 calls by number.
#pragma once

#include "ui/widgets/form_listener.h"

#include <optional>

#include <QWidget>

class QPlainTextEdit;
class QTableWidget;
class QVBoxLayout;

namespace norvik {

class Macro_Files_Window : public QWidget {
 public:
  explicit Macro_Files_Window(QWidget* parent = nullptr);
  ~Macro_Files_Window() override;

 protected:
  void hideEvent(QHideEvent* event) override;

 private:
  void Build_Foot(QVBoxLayout& rows);
  void Show_Form();

  QTableWidget* List;
  QPlainTextEdit* First;
  bool Showing = false;
  std::optional<Form_Listener> Listener;
};

}  // namespace norvik
