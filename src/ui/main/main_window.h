// main_window.h: the window `Main`: menus, status bar and the tool windows inside it.
#pragma once

#include <array>
#include <functional>
#include <map>

#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>

class QMdiSubWindow;

namespace norvik {

class GCode_Window;
class Progress_Window;
class Safety_Bar;

class Main_Frame : public QMainWindow {
 public:
  Main_Frame();
  ~Main_Frame() override;

  // Another tool window that the program offers, made at its first opening.
  void Add_Tool_Window(const QString& name, const QString& menu_text,
                       std::function<QWidget*()> make);
  // Shows a tool window and gives it the focus.
  void Show_Tool_Window(const QString& name);
  // The start of the program is over: the first activation may do its work.
  void Start_Is_Over();
  bool Tool_Window_Is_Open(const QString& name) const;
  // A text that stays in the status bar, for the warning that no real machine is driven. A narrow
  // window shows what stands before its dash.
  void Set_Banner(const QString& text);
  // A text that stays in the status bar, beside the panels that others write.
  void Add_Notice(const QString& text, const QString& tip);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Tool_Window {
    QString Menu_Text;
    std::function<QWidget*()> Make;
    QMdiSubWindow* Frame = nullptr;
    bool Opens_Anew = false;  // a closed one is made again when it opens
  };

  void Build_Menus();
  void Build_Setup_Entries(QMenu& menu);
  void Build_Guide_Entry(QMenu& menu);
  void Build_List_Entries();
  void Build_Recent_Menu(QMenu& menu);
  void Build_Status_Bar();
  void Build_Corrections_Mark();
  void Show_Banner();
  void Connect_Hosts();
  void Restore_Place(const QString& name, QMdiSubWindow& frame);
  void Show_Manual();
  void Tell_Area();
  void Reset_Places();
  void Keep_Place(const QString& name, const QWidget& frame);
  void Close_Tool_Windows();
  void Close_Setup_Windows();
  void Retire(QMdiSubWindow*& frame);
  void Open_Path(const QString& path);

  bool Started = false;
  QMdiArea* Area;
  std::map<QString, Tool_Window> Tool_Windows;
  QMenu* Window_Menu = nullptr;
  QMenu* Recent_Menu = nullptr;
  std::array<QLabel*, 4> Panels{};
  QLabel* Banner = nullptr;
  QString Banner_Text;
  Progress_Window* Progress = nullptr;
  Safety_Bar* Bar = nullptr;  // in the corner of the menu bar, beside every menu
};

}  // namespace norvik
