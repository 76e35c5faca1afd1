// guide_window.h: the window `Guide`: a list of pages, the page, and the way on.
#pragma once

#include "platform/platform.h"
#include "ui/guide/guide_page.h"
#include "ui/widgets/form_listener.h"

#include <optional>

class QListWidget;
class QScrollArea;

namespace norvik {

class Guide_Window : public QWidget {
 public:
  explicit Guide_Window(QWidget* parent = nullptr);
  ~Guide_Window() override;

 private:
  QWidget* Build_Foot();
  void Show_Form();
  void Show_List();
  void Show_Page();

  QListWidget* Pages;
  QScrollArea* Area;
  Guide_Page_Widget* Page = nullptr;
  QLabel* Hint;
  QPushButton *Back = nullptr, *Next = nullptr;
  Timer_Id Timer;
  std::optional<Form_Listener> Listener;
};

}  // namespace norvik
