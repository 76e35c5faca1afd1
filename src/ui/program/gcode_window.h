// gcode_window.h: the window `Gcode`: the program as text, its steps and what the check found.
#pragma once

#include "platform/platform.h"
#include "ui/widgets/form_binding.h"

#include <QWidget>

class QListWidget;
class QPushButton;

namespace norvik {

class Find_Bar;
class GCode_Editor;

class GCode_Window : public QWidget {
  Q_OBJECT

 public:
  explicit GCode_Window(QWidget* parent = nullptr);
  ~GCode_Window() override;

  Find_Bar& Finder() { return *Find; }
  void Undo();
  GCode_Editor& Editor() { return *Text_GCode; }

 signals:
  void File_Dropped(const QString& path);

 private:
  QWidget* Build_Findings();
  QWidget* Build_Tools();
  QWidget* Build_Steps();
  QWidget* Build_Transforms();
  void Show_Form();
  // Looks at the compiled program and shows what was found.
  void Show_Findings();

  Form_Binding Binding;
  Timer_Id Timer = 0;
  GCode_Editor* Text_GCode;
  Find_Bar* Find = nullptr;
  QLabel* Step_Line = nullptr;
  QWidget* Findings_Area = nullptr;
  QListWidget* Findings = nullptr;
  QPushButton* Correct = nullptr;
  QPushButton* Finding_Setting = nullptr;
};

}  // namespace norvik
