#include "ui/simulated/top_view.h"

#include "core/axes.h"
#include "ui/widgets/theme.h"

#include <algorithm>
#include <cmath>

#include <QEvent>
#include <QPainter>

namespace norvik {

namespace {

constexpr double Depth_Part = 0.24;  // of the height
constexpr double Air = 0.06;         // around a trail that is shown alone, part of its size
constexpr double Gap = 4;            // pixels

double Length(const QPointF& a, const QPointF& b) {
  return std::hypot(b.x() - a.x(), b.y() - a.y());
}

QPen On_Pen() {
  return QPen(Colors().Run, 2);
}

// A pen whose dots go on where the last segment ended.
QPen Off_Pen(double length_so_far) {
  QPen pen(Colors().Muted, 1.2);
  pen.setCapStyle(Qt::FlatCap);
  pen.setDashPattern({2, 3});
  pen.setDashOffset(length_so_far / pen.widthF());
  return pen;
}

void Widen(double& from, double& to) {
  const double air = std::max((to - from) * Air, 1e-3);
  from -= air;
  to += air;
}

}  // namespace

Top_View::Top_View(QWidget* parent) : QWidget(parent) {
  setObjectName("Top_View");
  setMinimumSize(Text_Height() * 11, Text_Height() * 6);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

// --- Places --------------------------------------------------------------------------------------

QRectF Top_View::Depth() const {
  const double high = height() * Depth_Part;
  return QRectF(1, height() - high, width() - 2, high - 1);
}

QRectF Top_View::Table() const {
  return QRectF(1, 1, width() - 2, Depth().top() - Gap - 1);
}

QPointF Top_View::Above(double x, double y) const {
  const QRectF table = Table();
  const double scale = std::min(table.width() / (Shown.X_To - Shown.X_From),
                                table.height() / (Shown.Y_To - Shown.Y_From));
  return {table.center().x() + (x - (Shown.X_From + Shown.X_To) / 2) * scale,
          table.center().y() - (y - (Shown.Y_From + Shown.Y_To) / 2) * scale};
}

QPointF Top_View::Beside(double x, double z) const {
  const QRectF depth = Depth();
  return {Above(x, 0).x(),
          depth.bottom() - (z - Shown.Z_From) / (Shown.Z_To - Shown.Z_From) * depth.height()};
}

Top_View::Range Top_View::Whole_Travel() const {
  const auto ends = [this](int axis, double& from, double& to) {
    const Simulated_Axis_View& a = View.Axes[axis];
    from = a.Travel_Low - a.Overtravel;
    to = std::max(a.Travel_High + a.Overtravel, from + 1e-3);
  };
  Range range;
  ends(1, range.X_From, range.X_To);
  ends(2, range.Y_From, range.Y_To);
  ends(3, range.Z_From, range.Z_To);
  return range;
}

// A trail that has left the range shown makes a wider one; a smaller trail leaves it.
Top_View::Range Top_View::Wanted_Range() const {
  if (!Trail_Only || Trail.Point_Count == 0) return Whole_Travel();
  const bool fresh = Picture.isNull() || Clearings != Trail.Clearings;
  const std::int64_t first = fresh ? First_Trail_Point() : std::max(Drawn, First_Trail_Point());
  const Trail_Point& start = Trail_Point_At(Trail.Point_Count - 1);
  Range box{start.X, start.X, start.Y, start.Y, start.Z, start.Z};
  if (!fresh) box = Shown;
  bool inside = !fresh;
  for (std::int64_t n = first; n < Trail.Point_Count; ++n) {
    const Trail_Point& p = Trail_Point_At(n);
    const Range before = box;
    box = {std::min<double>(box.X_From, p.X), std::max<double>(box.X_To, p.X),
           std::min<double>(box.Y_From, p.Y), std::max<double>(box.Y_To, p.Y),
           std::min<double>(box.Z_From, p.Z), std::max<double>(box.Z_To, p.Z)};
    inside = inside && box == before;
  }
  if (inside) return Shown;
  Widen(box.X_From, box.X_To);
  Widen(box.Y_From, box.Y_To);
  Widen(box.Z_From, box.Z_To);
  return box;
}

// --- Trail ---------------------------------------------------------------------------------------

void Top_View::Begin_Picture() {
  Picture = QPixmap(size() * devicePixelRatioF());
  Picture.setDevicePixelRatio(devicePixelRatioF());
  Picture.fill(Qt::transparent);
  Drawn = First_Trail_Point();
  Clearings = Trail.Clearings;
  Dots_Above = Dots_Beside = 0;
}

void Top_View::Draw_Segment(QPainter& painter, const Trail_Point& from, const Trail_Point& to) {
  const auto draw = [&](const QPointF& a, const QPointF& b, double& dots) {
    painter.setPen(to.Spindle_On ? On_Pen() : Off_Pen(dots));
    painter.drawLine(a, b);
    if (!to.Spindle_On) dots += Length(a, b);
  };
  draw(Above(from.X, from.Y), Above(to.X, to.Y), Dots_Above);
  draw(Beside(from.X, from.Z), Beside(to.X, to.Z), Dots_Beside);
}

void Top_View::Add_To_Picture() {
  // What the ring has lost since the last look leaves a gap and no false line.
  QPainter painter(&Picture);
  painter.setRenderHint(QPainter::Antialiasing);
  for (auto n = std::max(Drawn, First_Trail_Point() + 1); n < Trail.Point_Count; ++n) {
    const Trail_Point& to = Trail_Point_At(n);
    if (!to.Jump) Draw_Segment(painter, Trail_Point_At(n - 1), to);
  }
  Drawn = Trail.Point_Count;
}

void Top_View::Show_View(const Simulated_Machine_View& view) {
  const bool moved = view.Axes[1].Position != View.Axes[1].Position ||
                     view.Axes[2].Position != View.Axes[2].Position ||
                     view.Axes[3].Position != View.Axes[3].Position;
  const bool new_trail = Trail.Point_Count != Drawn || Trail.Mark_Count != Marks;
  const bool same_material = view.Material_Top == View.Material_Top;
  View = view;
  const Range range = Wanted_Range();
  if (!(range == Shown) || Picture.isNull() || Clearings != Trail.Clearings) {
    Shown = range;
    Begin_Picture();
  } else if (!moved && !new_trail && same_material) {
    return;
  }
  Add_To_Picture();
  Marks = Trail.Mark_Count;
  update();
}

void Top_View::Show_Trail_Only(bool only) {
  Trail_Only = only;
  Picture = {};
}

void Top_View::resizeEvent(QResizeEvent*) {
  Picture = {};
}

void Top_View::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) Picture = {};
  QWidget::changeEvent(event);
}

// --- Picture -------------------------------------------------------------------------------------

void Top_View::Draw_Frames(QPainter& painter) const {
  const Simulated_Axis_View &x = View.Axes[1], &y = View.Axes[2], &z = View.Axes[3];
  painter.setBrush(palette().color(QPalette::Base));
  painter.setPen(QPen(palette().color(QPalette::Mid), 1));
  painter.drawRect(Table());
  painter.drawRect(Depth());
  // The travel between the ends; outside of it lie the switches and the hard stops.
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(palette().color(QPalette::Mid), 1, Qt::DashLine));
  painter.drawRect(QRectF(Above(x.Travel_Low, y.Travel_High), Above(x.Travel_High, y.Travel_Low)));
  painter.drawRect(
      QRectF(Beside(x.Travel_Low, z.Travel_High), Beside(x.Travel_High, z.Travel_Low)));
  painter.setPen(palette().color(QPalette::PlaceholderText));
  painter.drawText(Table().adjusted(4, 2, -4, -2), Qt::AlignTop | Qt::AlignLeft, "X / Y");
  painter.drawText(Depth().adjusted(4, 2, -4, -2), Qt::AlignTop | Qt::AlignLeft, "X / Z");
  if (!View.Material_Top) return;
  const double top = Beside(0, *View.Material_Top).y();
  painter.setPen(QPen(Colors().Warn, 1));
  painter.drawLine(QPointF(Depth().left(), top), QPointF(Depth().right(), top));
  painter.drawText(QRectF(Depth().left(), top, Depth().width() - 4, Text_Height()), Qt::AlignRight,
                   "material");
}

void Top_View::Draw_Marks(QPainter& painter) const {
  const double half = Text_Height() / 4.0;
  painter.setPen(QPen(Colors().Stop, 2));
  for (std::int64_t n = First_Trail_Mark(); n < Trail.Mark_Count; ++n) {
    const Trail_Mark& mark = Trail_Mark_At(n);
    const QPointF place = Above(mark.X, mark.Y), right(half, half), left(-half, half);
    if (mark.Kind == Mark_Kind::Stall) {
      painter.drawLine(place - right, place + right);
      painter.drawLine(place - left, place + left);
    } else {
      painter.drawRect(QRectF(place - right, place + right));
    }
    painter.drawText(place + QPointF(half + 2, 0), QString(Axis_Letter(mark.Axis)));
  }
}

void Top_View::Draw_Tool(QPainter& painter) const {
  const double x = View.Axes[1].Position, y = View.Axes[2].Position, z = View.Axes[3].Position;
  const QPointF above = Above(x, y), tip = Beside(x, z);
  const double radius = Text_Height() / 3.0;
  painter.setPen(QPen(palette().color(QPalette::WindowText), 1.5));
  painter.drawEllipse(above, radius, radius);
  painter.drawLine(above - QPointF(radius * 1.6, 0), above + QPointF(radius * 1.6, 0));
  painter.drawLine(above - QPointF(0, radius * 1.6), above + QPointF(0, radius * 1.6));
  painter.setBrush(palette().color(QPalette::WindowText));
  painter.drawPolygon(QPolygonF(
      {tip, tip + QPointF(-radius / 1.5, -radius * 2), tip + QPointF(radius / 1.5, -radius * 2)}));
}

void Top_View::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setClipRegion(QRegion(Table().toAlignedRect()) + QRegion(Depth().toAlignedRect()));
  Draw_Frames(painter);
  painter.drawPixmap(0, 0, Picture);
  Draw_Marks(painter);
  Draw_Tool(painter);
}

}  // namespace norvik
