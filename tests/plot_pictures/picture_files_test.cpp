// Picture files through the toolkit, and texts on the surface.
#include "plot/picture/picture_files.h"

#include "core/fault.h"
#include "plot/picture/picture_surface.h"
#include "plot/plot_colour.h"

#include <QFile>
#include <QGuiApplication>
#include <QImageReader>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace norvik {
namespace {

using testing::ElementsAre;

std::string Path(const std::string& name) {
  return testing::TempDir() + std::to_string(::getpid()) + name;
}

void Write_Bytes(const std::string& path, const QByteArray& bytes) {
  QFile file(QString::fromStdString(path));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(bytes);
}

QByteArray Bytes_Of(const std::string& path) {
  QFile file(QString::fromStdString(path));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  return file.readAll();
}

// Left half dark, right half bright.
QImage Halves(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      image.setPixel(x, y, x < width / 2 ? qRgb(10, 20, 30) : qRgb(200, 210, 220));
  return image;
}

// Two pixels, the first transparent and the second red.
const unsigned char gif[] = {'G', 'I', 'F', '8', '9',  'a',  2, 0, 1, 0,    0x80, 0, 0,    0, 0,
                             0,   255, 0,   0,   0x21, 0xF9, 4, 1, 0, 0,    0,    0, 0x2C, 0, 0,
                             0,   0,   2,   0,   1,    0,    0, 2, 2, 0x44, 0x0A, 0, 0x3B};

TEST(Picture_Files, Formats_And_Palettes) {
  ASSERT_TRUE(Halves(4, 2).save(QString::fromStdString(Path("plain.bmp"))));
  const auto plain = Read_Picture_File(Path("plain.bmp"));
  ASSERT_TRUE(plain);
  EXPECT_EQ(plain->Width, 4);
  EXPECT_EQ(plain->Height, 2);
  EXPECT_EQ(plain->Rgb[0], 10);  // rows from the top; red, green, blue
  EXPECT_EQ(plain->Rgb[2], 30);
  EXPECT_EQ(plain->Rgb[23], 220);

  QImage palette(3, 1, QImage::Format_Indexed8);
  palette.setColorTable({qRgb(1, 2, 3), qRgb(255, 0, 7)});
  palette.fill(1);
  ASSERT_TRUE(palette.save(QString::fromStdString(Path("palette.bmp"))));
  EXPECT_THAT(Read_Picture_File(Path("palette.bmp"))->Rgb,
              ElementsAre(255, 0, 7, 255, 0, 7, 255, 0, 7));

  Write_Bytes(Path("two.gif"),
              QByteArray(reinterpret_cast<const char*>(gif), static_cast<int>(sizeof gif)));
  EXPECT_THAT(Read_Picture_File(Path("two.gif"))->Rgb, ElementsAre(255, 255, 255, 255, 0, 0));
}

TEST(Picture_Files, Orientation_Marks_Are_Ignored) {
  ASSERT_TRUE(Halves(32, 16).save(QString::fromStdString(Path("plain.jpg"))));
  // A mark "turn by 90 degrees" (orientation 6), put in behind the start of the file.
  const unsigned char mark[] = {0xFF, 0xE1, 0, 34, 'E', 'x', 'i', 'f', 0, 0,  'M', 'M',
                                0,    42,   0, 0,  0,   8,   0,   1,   1, 18, 0,   3,
                                0,    0,    0, 1,  0,   6,   0,   0,   0, 0,  0,   0};
  QByteArray bytes = Bytes_Of(Path("plain.jpg"));
  bytes.insert(2, QByteArray(reinterpret_cast<const char*>(mark), static_cast<int>(sizeof mark)));
  Write_Bytes(Path("turned.jpg"), bytes);
  QImageReader reader(QString::fromStdString(Path("turned.jpg")));
  ASSERT_EQ(reader.transformation(), QImageIOHandler::TransformationRotate90);

  const auto picture = Read_Picture_File(Path("turned.jpg"));
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->Width, 32);
  EXPECT_EQ(picture->Height, 16);
}

TEST(Picture_Files, Half_A_Picture_Is_None) {
  ASSERT_TRUE(Halves(64, 64).save(QString::fromStdString(Path("whole.jpg"))));
  ASSERT_TRUE(Halves(64, 64).save(QString::fromStdString(Path("whole.bmp"))));
  for (const std::string extension : {"jpg", "bmp"}) {
    SCOPED_TRACE(extension);
    const QByteArray bytes = Bytes_Of(Path("whole." + extension));
    EXPECT_TRUE(Read_Picture_File(Path("whole." + extension)));
    for (const qsizetype kept :
         {qsizetype{0}, qsizetype{1}, qsizetype{30}, bytes.size() / 2, bytes.size() - 2}) {
      Write_Bytes(Path("cut." + extension), bytes.left(kept));
      EXPECT_FALSE(Read_Picture_File(Path("cut." + extension))) << kept << " bytes";
    }
  }
  Write_Bytes(Path("cut.gif"), QByteArray(reinterpret_cast<const char*>(gif), 30));
  EXPECT_FALSE(Read_Picture_File(Path("cut.gif")));
  Write_Bytes(Path("words.jpg"), "not a picture at all");
  EXPECT_FALSE(Read_Picture_File(Path("words.jpg")));
  EXPECT_FALSE(Read_Picture_File(Path("missing.jpg")));
  EXPECT_FALSE(Read_Picture_File(testing::TempDir()));
}

// The end mark of a thumbnail is not that of the picture.
TEST(Picture_Files, A_Thumbnail_Ends_No_Picture) {
  ASSERT_TRUE(Halves(64, 64).save(QString::fromStdString(Path("inner.jpg"))));
  QByteArray bytes = Bytes_Of(Path("inner.jpg"));
  const QByteArray inner = bytes;
  const qsizetype length = inner.size() + 2;
  QByteArray segment("\xFF\xE2");
  segment.append(static_cast<char>(length >> 8)).append(static_cast<char>(length & 0xFF));
  bytes.insert(2, segment + inner);
  Write_Bytes(Path("thumb.jpg"), bytes);
  EXPECT_TRUE(Read_Picture_File(Path("thumb.jpg")));
  Write_Bytes(Path("thumb.jpg"), bytes.left(bytes.size() - 40));
  EXPECT_FALSE(Read_Picture_File(Path("thumb.jpg")));
}

// A bitmap of 4 by 2 pixels with the given header fields and data.
QByteArray Bitmap_Of(int bits, int compression, const QByteArray& colours, const QByteArray& data) {
  QByteArray bytes("BM");
  const auto put = [&](qint64 value, int size) {
    for (int n = 0; n < size; ++n) bytes.append(static_cast<char>(value >> (8 * n) & 0xFF));
  };
  const qint64 start = 54 + colours.size();
  put(start + data.size(), 4);
  put(0, 4);
  put(start, 4);
  for (const qint64 value : {40, 4, 2}) put(value, 4);
  put(1, 2);
  put(bits, 2);
  put(compression, 4);
  for (const qint64 value : {qint64{data.size()}, qint64{0}, qint64{0}, qint64{0}, qint64{0}})
    put(value, 4);
  return bytes + colours + data;
}

TEST(Picture_Files, Cut_Bitmaps_Of_Sixteen_Bits_And_Of_Runs_Are_Refused) {
  const QByteArray masks("\x00\xF8\x00\x00\xE0\x07\x00\x00\x1F\x00\x00\x00", 12);
  const QByteArray palette(256 * 4, '\x40');
  struct Row {
    const char* Name;
    QByteArray Whole;
  };
  for (const Row& row : {Row{"masks", Bitmap_Of(16, 3, masks, QByteArray(16, '\x55'))},
                         Row{"plain", Bitmap_Of(16, 0, {}, QByteArray(16, '\x55'))},
                         Row{"runs", Bitmap_Of(8, 1, palette,
                                               QByteArray("\x04\x01\x00\x00\x00\x04\x01\x02\x03"
                                                          "\x04\x00\x00\x00\x01",
                                                          14))}}) {
    Write_Bytes(Path("rows.bmp"), row.Whole);
    EXPECT_TRUE(Read_Picture_File(Path("rows.bmp"))) << row.Name;
    for (const int lost : {6, 10}) {
      Write_Bytes(Path("rows.bmp"), row.Whole.left(row.Whole.size() - lost));
      EXPECT_FALSE(Read_Picture_File(Path("rows.bmp"))) << row.Name << " less " << lost;
    }
  }
}

TEST(Picture_Files, Refused_Names_Say_What_To_Do) {
  const Plot_Image picture(4, 4, 0xFF00FF00);
  struct Row {
    std::string Path, Text;
  };
  for (const Row& row :
       {Row{"/no/such/folder/a.png", "choose another folder"},
        Row{testing::TempDir() + std::to_string(::getpid()) + "a.xyz", "ends in .png"}}) {
    try {
      Write_Picture_File(row.Path, picture);
      ADD_FAILURE() << row.Path;
    } catch (const Fault& fault) {
      EXPECT_THAT(fault.Description, testing::HasSubstr(row.Text));
    }
  }
}

TEST(Picture_Surface, Texts_Stand_Below_And_Right_Of_Their_Place) {
  Picture_Surface surface(100, 50);
  surface.Set_Scale({0, 0, 10, 5});
  surface.Clear(White);
  EXPECT_THROW(surface.Draw_Text(2, 1, "8", Black), Fault);  // no fonts without an application

  qputenv("QT_QPA_PLATFORM", "offscreen");
  int count = 1;
  char name[] = "test";
  char* arguments[] = {name, nullptr};
  const QGuiApplication application(count, arguments);
  surface.Set_Text_Height(20);
  surface.Draw_Text(2, 1, "8", Black);
  int inside = 0, outside = 0;
  for (std::int32_t y = 0; y < 50; ++y)
    for (std::int32_t x = 0; x < 100; ++x)
      if (surface.Image().At(x, y) != Argb(White))
        (x >= 20 && x < 40 && y >= 10 && y < 40 ? inside : outside) += 1;
  EXPECT_GT(inside, 20);
  EXPECT_EQ(outside, 0);
}

}  // namespace
}  // namespace norvik
