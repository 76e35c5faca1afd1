#include "plot/picture/picture_files.h"

#include "core/fault.h"
#include "core/paths.h"
#include "plot/picture/picture_surface.h"

#include <cstdlib>

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

std::uint32_t Little_16(const QByteArray& bytes, qsizetype at) {
  return static_cast<std::uint8_t>(bytes[at]) |
         std::uint32_t{static_cast<std::uint8_t>(bytes[at + 1])} << 8;
}

struct Bitmap_Header {
  std::int64_t Pixels = 0;  // where they begin
  std::int64_t Width = 0, Height = 0, Bits = 0;
  std::uint32_t Compression = 0;
};

// Offset of the pixels in bytes 10..13, length of the second header in 14..17. The old header of 12
// bytes holds sizes of 16 bits; all others width and height in 18..25, bits a pixel in 28..29,
// compression in 30..33.
std::optional<Bitmap_Header> Header_Of(const QByteArray& bytes) {
  constexpr qsizetype old_end = 26, header_end = 34;
  if (bytes.size() < old_end) return std::nullopt;
  Bitmap_Header header;
  header.Pixels = Little_32(bytes, 10);
  if (Little_32(bytes, 14) < 40) {
    header.Width = Little_16(bytes, 18);
    header.Height = Little_16(bytes, 20);
    header.Bits = Little_16(bytes, 24);
    return header;
  }
  if (bytes.size() < header_end) return std::nullopt;
  header.Width = static_cast<std::int32_t>(Little_32(bytes, 18));
  header.Height = std::abs(std::int64_t{static_cast<std::int32_t>(Little_32(bytes, 22))});
  header.Bits = Little_16(bytes, 28);
  header.Compression = Little_32(bytes, 30);
  return header;
}

// Runs of a compressed bitmap, pairs of bytes:
//   n v    n pixels of v             0 0  end of a row        0 1  end of the picture
//   0 2 x y  moves on                0 n  n pixels as they are, to an even number of bytes
// Whole when the end or the last row is reached.
bool Runs_Are_Whole(const QByteArray& bytes, const Bitmap_Header& header, bool four_bits) {
  std::int64_t row = 0;
  qsizetype at = header.Pixels;
  while (at + 1 < bytes.size()) {
    const auto count = static_cast<std::uint8_t>(bytes[at]);
    const auto value = static_cast<std::uint8_t>(bytes[at + 1]);
    at += 2;
    if (count != 0) continue;
    if (value == 1) return true;
    if (value == 0) {
      ++row;
    } else if (value == 2) {
      if (at + 1 < bytes.size()) row += static_cast<std::uint8_t>(bytes[at + 1]);
      at += 2;
    } else {
      const qsizetype length = four_bits ? (value + 1) / 2 : value;
      at += length + length % 2;
    }
  }
  return row >= header.Height && at <= bytes.size();
}

bool Bitmap_Is_Whole(const QByteArray& bytes) {
  constexpr std::uint32_t runs_of_bytes = 1, runs_of_halves = 2;
  const auto header = Header_Of(bytes);
  if (!header) return false;
  if (header->Compression == runs_of_bytes || header->Compression == runs_of_halves) {
    return Runs_Are_Whole(bytes, *header, header->Compression == runs_of_halves);
  }
  // All others hold all their rows, also those whose colours lie by masks.
  const std::int64_t row = (header->Width * header->Bits + 31) / 32 * 4;
  const std::int64_t there = bytes.size() - header->Pixels;
  return row > 0 && there >= 0 && header->Height <= there / row;
}

// Walks the segments of a JPEG to its end mark: a thumbnail within has one of its own.
bool Jpeg_Is_Whole(const QByteArray& bytes) {
  constexpr int end_mark = 0xD9, scan = 0xDA, first_restart = 0xD0, last_restart = 0xD7;
  const auto byte = [&](qsizetype at) { return static_cast<std::uint8_t>(bytes[at]); };
  qsizetype at = 2;  // behind the start mark
  while (at + 1 < bytes.size()) {
    if (byte(at) != 0xFF) return false;
    const int mark = byte(at + 1);
    if (mark == 0xFF) {  // a fill byte
      ++at;
      continue;
    }
    at += 2;
    if (mark == end_mark) return true;
    if (mark == 0x01 || (mark >= first_restart && mark <= last_restart)) continue;
    if (at + 1 >= bytes.size()) return false;
    at += byte(at) << 8 | byte(at + 1);
    if (mark != scan) continue;
    // The coded picture: a mark is an FF without 0 behind it.
    while (at + 1 < bytes.size() &&
           !(byte(at) == 0xFF && byte(at + 1) != 0 &&
             (byte(at + 1) < first_restart || byte(at + 1) > last_restart))) {
      ++at;
    }
  }
  return false;
}

// The readers fill up what a file lacks without a word, so its end is looked for here.
bool Is_Whole(const QByteArray& bytes, const QByteArray& format) {
  if (format == "jpeg" || format == "jpg") return Jpeg_Is_Whole(bytes);
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
