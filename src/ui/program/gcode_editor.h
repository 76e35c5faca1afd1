// gcode_editor.h: the text of the program as an editor.
//
// A plain text editor with a margin that shows line numbers, the current step and the marks of the
// program check. Colours come from the table of codes and are worked out for the lines on the
// screen only, so that a program of a million lines opens and scrolls like a small one.
#pragma once

#include <cstdint>
#include <map>
#include <unordered_map>

#include <QPlainTextEdit>

namespace norvik {

class GCode_Editor : public QPlainTextEdit {
  Q_OBJECT

 public:
  explicit GCode_Editor(QWidget* parent = nullptr);

  // Replaces the text; neither the change nor the old text can be undone.
  void Set_Program(const QString& text);
  // Replaces the text as one change that can be undone; the cursor keeps its line.
  void Replace_Text(const QString& text);
  // One step back or forth. Where that step was the whole text, the cursor keeps its line.
  void Step_Back();
  void Step_Forth();
  // Selects a line, counted from 1 over all lines of the text, and scrolls to it.
  void Show_Line(int line);
  // Selects the first place that holds `text`; false when there is none.
  bool Show_First(const QString& text);
  // The line that the machine executes or the step pointer names; 0 shows none.
  void Set_Current_Line(int line);

  // Marks beside lines, each with the words for its tool tip.
  struct Mark {
    QString Text;
    bool Serious = false;  // the machine would do something else than written
  };
  void Set_Marks(std::map<int, Mark> marks);

  int Margin_Width() const;
  void Paint_Margin(QPaintEvent* event);
  QString Margin_Tip(int y) const;

 signals:
  void Line_Double_Clicked(int line);
  // Files dropped on the text are for the main window.
  void File_Dropped(const QString& path);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  bool canInsertFromMimeData(const QMimeData* source) const override;
  void insertFromMimeData(const QMimeData* source) override;

 private:
  void Color_Visible_Blocks();
  void Show_Current_Line();
  void Fit_Margin();
  void Keep_Line(int line, int top);
  void Keeping_Line_Of_Whole_Text(void (QPlainTextEdit::*step)());

  QWidget* Margin;
  int Current_Line = 0;
  bool Whole_Text_Changed = false;  // by the last change
  std::map<int, Mark> Marks;
};

}  // namespace norvik
