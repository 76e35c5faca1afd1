// gcode_window.h: the window `Gcode`: the program as text, its steps and what the check found.
#pragma once

#include "platform/platform.h"
#include "ui/widgets/form_binding.h"

#include <QWidget>

class QLineEdit;
class QListWidget;

namespace norvik {

class GCode_Editor;

class GCode_Window : public QWidget {
  Q_OBJECT

 public:
  explicit GCode_Window(QWidget* parent = nullptr);
  ~GCode_Window() override;

  void Show_Find();
  void Hide_Find();
  void Undo();
  GCode_Editor& Editor() { return *Text_GCode; }

 signals:
  void File_Dropped(const QString& path);

 private:
  QWidget* Build_Tools();
  QWidget* Build_Steps();
  QWidget* Build_Find();
  void Find_Next();
  void Show_Form();
  // Looks at the compiled program and shows what was found.
  void Show_Findings();

  Form_Binding Binding;
  Timer_Id Timer = 0;
  GCode_Editor* Text_GCode;
  QLineEdit* Find_Text = nullptr;
  QWidget* Find_Row = nullptr;
  QLabel* Step_Line = nullptr;
  QLabel* Find_Answer = nullptr;
  QListWidget* Findings = nullptr;
};

}  // namespace norvik
