// find_bar.h: find and replace, a bar at the foot of the editor.
//
// A search looks line by line and goes on from the other end of the text, with a note. All
// replacements of one press are one step of the editor's undo. While the machine moves nothing is
// searched: a long text would hold up its pulses. As long as the bar has the keys, ESC closes it
// and stops nothing.
#pragma once

#include "ui/program/text_search.h"

#include <QTextCursor>
#include <QTimer>
#include <QWidget>

class QCheckBox;
class QLabel;
class QLineEdit;

namespace norvik {

class GCode_Editor;

class Find_Bar : public QWidget {
  Q_OBJECT

 public:
  explicit Find_Bar(GCode_Editor* editor, QWidget* parent = nullptr);

  // Opens the bar with the selected text, with the row for replacements or without it.
  void Show_Find();
  void Show_Replace();
  void Find_Next();
  void Find_Previous();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* Build_Find_Row();
  QWidget* Build_Replace_Row();
  void Open();
  void Close();
  // The search as the controls have it; says what is wrong with it.
  Text_Search Asked() const;
  // False, with a note, while nothing can be searched.
  bool May_Search(const Text_Search& search);
  void Find(bool forward);
  bool Find_In(const Text_Search& search, const QTextCursor& from, bool forward, int first,
               int last);
  void Replace();
  void Replace_All();
  void Scope_Changed();
  // Positions between which is searched.
  int First_Position() const;
  int Last_Position() const;
  void Count_Hits();
  void Note(const QString& text);

  GCode_Editor* Editor;
  QLineEdit* Text_Find = nullptr;
  QLineEdit* Text_Replace = nullptr;
  QCheckBox* Match_Case = nullptr;
  QCheckBox* Whole_Word = nullptr;
  QCheckBox* Is_Pattern = nullptr;
  QCheckBox* In_Selection = nullptr;
  QLabel* Hits = nullptr;
  QLabel* Answer = nullptr;
  QWidget* Replace_Row = nullptr;
  QTextCursor Scope;  // the selection that is searched; moves with the text
  QTimer Count_Timer;
};

}  // namespace norvik
