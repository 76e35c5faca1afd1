// motion_analyzer_window.h: the window `frmMotionAnalyzer`: the rows of a wire table with their
// checks, and their speeds as a chart.
#pragma once

#include <cstdint>

#include <QWidget>

class QCheckBox;
class QTableView;
class QVBoxLayout;

namespace norvik {

class Analyzer_Model;
class Speed_Chart_View;

class Motion_Analyzer_Window : public QWidget {
 public:
  explicit Motion_Analyzer_Window(QWidget* parent = nullptr);
  ~Motion_Analyzer_Window() override;

 private:
  void Build_Grid();
  void Build_Foot(QVBoxLayout& rows);
  void Add_Keys();
  void Show_Data();
  void Choose_Record(std::int32_t record);
  void Go_To_Error(bool next);
  std::int32_t Present_Record() const;

  Analyzer_Model* Model;
  QTableView* Grid;
  Speed_Chart_View* Chart;
  QCheckBox *Only_Errors, *Hold;
};

}  // namespace norvik
