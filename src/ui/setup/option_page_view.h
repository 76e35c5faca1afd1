// option_page_view.h: one page of the window `Options`, laid out from the settings table.
#pragma once

#include "app/options/option_pages.h"

#include <functional>
#include <vector>

#include <QScrollArea>

class QLabel;
class QVBoxLayout;

namespace norvik {

class Option_Cell;

class Option_Page_View : public QScrollArea {
 public:
  explicit Option_Page_View(const Option_Page& page);

  // Copies the fields to the controls.
  void Show_Fields();
  // Scrolls to the control of a key and gives it the focus. False when it is not on this page.
  bool Go_To(std::string_view key);

 private:
  void Build_Group(QVBoxLayout& rows, std::string_view group);
  QWidget* Build_Line(const Setting_Row& row);
  QWidget* Build_Columns(const Option_Block& block);
  QWidget* Build_Entries(const Option_Block& block);
  void Build_Extras(QVBoxLayout& rows, std::string_view group);
  QWidget* Build_Increments();
  QWidget* Build_Correction_Sets();
  Option_Cell* Cell_Of(const Setting_Row& row, int index, bool narrow);

  std::vector<Option_Cell*> Cells;
  std::vector<std::function<void()>> Also;  // what is shown besides the cells
};

}  // namespace norvik
