// options_window.h: the window `Options`: every setting, page by page, and a search over them.
#pragma once

#include <map>

#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QStackedWidget;

namespace norvik {

class Option_Page_View;

class Options_Window : public QWidget {
 public:
  explicit Options_Window(QWidget* parent = nullptr);

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* Build_Left();
  QWidget* Build_Foot();
  void Show_Form();
  // The page of `Options_Form` and the setting on it.
  void Go_To_Place();
  void Search(const QString& words);
  void Open_Found(const QListWidgetItem& item);
  Option_Page_View& View_Of(const QString& page);

  QLineEdit* Text_Search = nullptr;
  QListWidget *List_Pages = nullptr, *List_Found = nullptr;
  QStackedWidget* Pages = nullptr;
  QLabel *Consequences = nullptr, *Result = nullptr;
  std::map<QString, Option_Page_View*> Views;  // those that were opened
};

}  // namespace norvik
