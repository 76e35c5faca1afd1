// manual_window.h: the manual, read from its pages without a network.
#pragma once

#include <QWidget>

class QLineEdit;
class QTextBrowser;

namespace norvik {

class Manual_Window : public QWidget {
 public:
  explicit Manual_Window(QWidget* parent = nullptr);

  // Opens a page ("options.md") at the first place of a text; empty: at its beginning.
  void Open_Page(const QString& page, const QString& place);

 private:
  void Find_Next();

  QTextBrowser* Text;
  QLineEdit* Find;
};

// The page about a window, and for a control of `Options` the place of its setting.
struct Manual_Place {
  QString Page, Text;
};
Manual_Place Manual_Place_Of(const QString& window, const QString& control);

}  // namespace norvik
