// board_panel.h: the simulated controller board: its queue, its axes as it counts them, and hands
// to pull the cable, to make an axis slip, to press a switch.
#pragma once

#include <array>

#include <QGroupBox>

class QGridLayout;
class QLabel;
class QProgressBar;
class QPushButton;

namespace norvik {

struct Board_Line;

// Hidden until the port of a simulated board is opened.
class Board_Panel : public QGroupBox {
 public:
  explicit Board_Panel(QWidget* parent = nullptr);
  // Looks at the board in use; called ten times a second.
  void Show_Board();

 private:
  struct Axis_Row {
    QLabel *Counter, *Encoder, *Error, *Home;
    QPushButton *Low, *High, *Slip;
  };
  void Build_Queue(QGridLayout& grid);
  void Build_Axis(QGridLayout& grid, int axis);
  void Build_Hands(QGridLayout& grid);
  QPushButton* Hand(const QString& words, const QString& name, const QString& tip, bool stays);
  void Show_Queue(const Board_Line& line);
  void Show_Axis(const Board_Line& line, int axis);

  QLabel *Link = nullptr, *Entry = nullptr, *State = nullptr;
  QProgressBar* Queue = nullptr;
  std::array<Axis_Row, 5> Axes{};
  QPushButton *Cable = nullptr, *Aux = nullptr;
};

}  // namespace norvik
