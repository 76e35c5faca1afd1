// top_view.h: the table from above with the tool's trail, and below it the depth.
//
// The trail is kept as a picture: each look adds what is new since the last one, so that drawing
// costs the same after hours as at the start. All of it is drawn again only when the size, the
// range or the colours change; then the last points of the model's ring are what is left.
//
//   solid     spindle on          cross with the axis's letter    the motor stalled here
//   dotted    spindle off         square with the letter          ran into a hard stop here
#pragma once

#include "simulate/simulated_machine.h"
#include "simulate/trail.h"

#include <QPixmap>
#include <QRectF>
#include <QWidget>

namespace norvik {

class Top_View : public QWidget {
 public:
  explicit Top_View(QWidget* parent = nullptr);
  // Takes the machine's places and draws what is new of the trail. Called from the panel's timer.
  void Show_View(const Simulated_Machine_View& view);
  // False: the whole table. True: where the trail is.
  void Show_Trail_Only(bool only);
  // The place of a point in the view from above.
  QPointF Above(double x, double y) const;
  QPointF Beside(double x, double z) const;
  const QPixmap& Trail_Picture() const { return Picture; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  struct Range {
    double X_From = 0, X_To = 1, Y_From = 0, Y_To = 1, Z_From = 0, Z_To = 1;
    bool operator==(const Range&) const = default;
  };
  Range Whole_Travel() const;
  Range Wanted_Range() const;
  void Begin_Picture();
  void Add_To_Picture();
  void Draw_Segment(QPainter& painter, const Trail_Point& from, const Trail_Point& to);
  void Draw_Frames(QPainter& painter) const;
  void Draw_Marks(QPainter& painter) const;
  void Draw_Tool(QPainter& painter) const;
  QRectF Table() const;
  QRectF Depth() const;

  Simulated_Machine_View View;
  Range Shown;
  QPixmap Picture;
  std::int64_t Drawn = 0, Marks = 0, Clearings = 0;  // of the trail
  double Dots_Above = 0, Dots_Beside = 0;            // length of dotted line so far, pixels
  bool Trail_Only = false;
};

}  // namespace norvik
