// guide_page.h: one page of the guide's window, and what all of them build from.
#pragma once

#include "app/guide/guide.h"

#include <functional>
#include <vector>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>

namespace norvik {

// A page shows `Guide_Form` when it is told to, and calls its handlers. Nothing is kept here.
class Guide_Page_Widget : public QWidget {
 public:
  explicit Guide_Page_Widget(Guide_Page page);

  Guide_Page Page() const { return Its_Page; }
  // Copies the record to the controls.
  void Show_Form();

 protected:
  QVBoxLayout& Rows() { return *Its_Rows; }
  // Runs at each `Show_Form`.
  void Also(std::function<void()> copy) { Copies.push_back(std::move(copy)); }

  QPushButton* Add_Button(QLayout& row, const char* name, const QString& text, const QString& tip,
                          std::function<void()> clicked);
  // A field whose text is the record's, written at every key.
  QLineEdit* Add_Field(QLayout& row, const char* name, const QString& title,
                       std::function<std::string&()> text);
  QLabel* Add_Text(const char* name, std::function<QString()> text);
  // The axis that the page is about.
  QComboBox* Add_Axis_Choice(QLayout& row);

 private:
  Guide_Page Its_Page;
  QVBoxLayout* Its_Rows;
  std::vector<std::function<void()>> Copies;
};

// "units" of the setup: "inches" or "millimetres".
QString Guide_Units();

Guide_Page_Widget* Make_Guide_Page(Guide_Page page);
// Parts of it, by what the pages are about.
Guide_Page_Widget* Make_Machine_Page(Guide_Page page);  // Name, Drive, Pins
Guide_Page_Widget* Make_Motion_Page(Guide_Page page);   // Motors, Speeds, Switches
Guide_Page_Widget* Make_Last_Page(Guide_Page page);     // EStop and what follows

}  // namespace norvik
