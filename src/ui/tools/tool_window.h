// tool_window.h: the window `Tool`: 200 tools, edited in place, with a picture of the chosen one.
#pragma once

#include "ui/widgets/form_listener.h"

#include <optional>

#include <QWidget>

class QLabel;
class QLineEdit;
class QTableView;
class QVBoxLayout;

namespace norvik {

class Tool_Model;
class Tool_Picture;

class Tool_Window : public QWidget {
 public:
  explicit Tool_Window(QWidget* parent = nullptr);

 private:
  void Build_Head(QVBoxLayout& rows);
  void Build_Foot(QVBoxLayout& rows);
  void Show_Form();
  void Show_Picture();
  void Find_Diameter();
  void Choose(int tool);

  Tool_Model* Model;
  QTableView* List;
  QLabel *Name, *Note;
  QLineEdit* Wanted;
  Tool_Picture* Picture;
  std::optional<Form_Listener> Listener;
};

}  // namespace norvik
