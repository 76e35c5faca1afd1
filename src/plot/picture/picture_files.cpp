#include "plot/picture/picture_files.h"

#include "core/fault.h"
#include "core/paths.h"
#include "plot/picture/picture_surface.h"

#include <cstring>

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>

namespace norvik {

namespace {

std::uint32_t Little_32(const QByteArray& bytes, qsizetype at) {
  std::uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = value << 8 | static_cast<std::uint8_t>(bytes[at + i]);
  return value;
}

// A bitmap without compression holds all its rows: offset of the pixels in bytes 10..13, width and
// height in 18..25, bits a pixel in 28..29, compression in 30..33.
bool Bitmap_Is_Whole(const QByteArray& bytes) {
  constexpr qsizetype header_end = 34;
  if (bytes.size() < header_end) return false;
  if (Little_32(bytes, 14) < 40 || Little_32(bytes, 30) != 0) return true;
  const auto width = static_cast<std::int32_t>(Little_32(bytes, 18));
  const auto height = static_cast<std::int32_t>(Little_32(bytes, 22));
  const std::int64_t bits = Little_32(bytes, 28) & 0xFFFF;
  const std::int64_t row = (std::int64_t{width} * bits + 31) / 32 * 4;
  return bytes.size() >= std::int64_t{Little_32(bytes, 10)} + row * std::abs(std::int64_t{height});
}

// The readers fill up what a file lacks without a word, so the end marks are looked for here.
bool Is_Whole(const QByteArray& bytes, const QByteArray& format) {
  if (format == "jpeg" || format == "jpg") return bytes.lastIndexOf("\xFF\xD9") > 0;
  if (format == "gif") return bytes.lastIndexOf('\x3B') > bytes.size() - 16;
  if (format == "bmp") return Bitmap_Is_Whole(bytes);
  return false;
}

// Transparent places become white, as paper.
Picture To_Picture(const QImage& image) {
  const QImage source = image.convertToFormat(QImage::Format_ARGB32);
  Picture picture{image.width(), image.height(), {}};
  picture.Rgb.reserve(static_cast<std::size_t>(image.width()) *
                      static_cast<std::size_t>(image.height()) * 3);
  for (int y = 0; y < source.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(source.constScanLine(y));
    for (int x = 0; x < source.width(); ++x) {
      const int alpha = qAlpha(row[x]);
      for (const int channel : {qRed(row[x]), qGreen(row[x]), qBlue(row[x])})
        picture.Rgb.push_back(
            static_cast<std::uint8_t>((channel * alpha + 255 * (255 - alpha) + 127) / 255));
    }
  }
  return picture;
}

}  // namespace

std::optional<Picture> Read_Picture_File(const std::string& path) {
  QFile file(QString::fromStdString(path));
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  QByteArray bytes = file.readAll();
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer);
  reader.setAutoTransform(false);
  const QByteArray format = reader.format();
  if (!Is_Whole(bytes, format)) return std::nullopt;
  const QImage image = reader.read();
  if (image.isNull()) return std::nullopt;
  return To_Picture(image);
}

void Write_Picture_File(const std::string& path, const Plot_Image& picture) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QImageWriter writer(&buffer, QFileInfo(QString::fromStdString(path)).suffix().toLatin1());
  if (!writer.write(Image_Of(picture).convertToFormat(QImage::Format_RGB32))) {
    throw Fault(Fault_Number::Invalid_Call,
                "Pictures of this kind cannot be written; give a name that ends in .png: " + path);
  }
  Replace_File(path, std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
}

void Install_Picture_Reader() {
  Platform.Load_Picture = Read_Picture_File;
}

}  // namespace norvik
