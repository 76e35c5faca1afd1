#include "plot/picture/picture_surface.h"

#include "core/fault.h"
#include "plot/plot_colour.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>

namespace norvik {

QImage Image_Of(const Plot_Image& picture) {
  return {reinterpret_cast<const uchar*>(picture.Pixels.data()), picture.Width, picture.Height,
          picture.Width * qsizetype{4}, QImage::Format_ARGB32};
}

void Picture_Surface::Draw_Text(double x, double y, std::string_view text, std::int32_t color) {
  if (!qGuiApp)
    throw Fault(Fault_Number::Internal, "Texts need the toolkit's application to be started");
  if (Frame.Pixels.empty()) return;
  QImage pixels(reinterpret_cast<uchar*>(Frame.Pixels.data()), Frame.Width, Frame.Height,
                Frame.Width * qsizetype{4}, QImage::Format_RGB32);
  QPainter painter(&pixels);
  // Numbers are padded with blanks to stand under each other: a font of equal widths.
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPixelSize(Text_Height * Pen_Scale);
  painter.setFont(font);
  painter.setPen(QColor::fromRgb(Argb(color)));
  const double base = Pixel_Y(y) + painter.fontMetrics().ascent();
  painter.drawText(QPointF(Pixel_X(x), base),
                   QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

}  // namespace norvik
