// Pictures of a program from every preset, against stored ones.
//
// The stored pictures lie beside this file. After a wanted change of the drawing, run this program
// with NORVIK_RENEW_PICTURES set, look at each picture, and commit them.
#include "part.h"
#include "platform/qt/picture_files.h"
#include "platform/qt/picture_surface.h"
#include "plot/nist_plot.h"
#include "plot/plot_colour.h"
#include "plot/plot_picture.h"
#include "plot/view.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace norvik {
namespace {

constexpr std::int32_t size = 200;

std::string Stored_Path(const std::string& name) {
  return std::string(NORVIK_TEST_FOLDER) + "/" + name + ".png";
}

// Share of the pixels of one picture that have no like pixel at their place or beside it in the
// other: lines may lie a pixel aside where another processor rounds otherwise.
double Unlike_Share(const QImage& one, const QImage& other) {
  constexpr int like = 32;
  const auto differs = [](QRgb a, QRgb b) {
    return std::abs(qRed(a) - qRed(b)) > like || std::abs(qGreen(a) - qGreen(b)) > like ||
           std::abs(qBlue(a) - qBlue(b)) > like;
  };
  int unlike = 0;
  for (int y = 0; y < one.height(); ++y) {
    for (int x = 0; x < one.width(); ++x) {
      bool found = false;
      for (int dy = -1; dy <= 1 && !found; ++dy)
        for (int dx = -1; dx <= 1 && !found; ++dx)
          found =
              other.valid(x + dx, y + dy) && !differs(one.pixel(x, y), other.pixel(x + dx, y + dy));
      unlike += found ? 0 : 1;
    }
  }
  return static_cast<double>(unlike) / (one.width() * one.height());
}

double Difference(const QImage& one, const QImage& other) {
  if (one.size() != other.size()) return 1;
  return std::max(Unlike_Share(one, other), Unlike_Share(other, one));
}

void Compare_With_Stored(const Plot_Image& picture, const std::string& name) {
  constexpr double tolerance = 0.0005;
  if (std::getenv("NORVIK_RENEW_PICTURES")) Write_Picture_File(Stored_Path(name), picture);
  const QImage stored(QString::fromStdString(Stored_Path(name)));
  if (Difference(Image_Of(picture), stored) > tolerance) {
    const std::string drawn = testing::TempDir() + name + ".png";
    Write_Picture_File(drawn, picture);
    ADD_FAILURE() << name << " differs from the stored picture; drawn now: " << drawn;
  }
}

class Program_Pictures : public testing::Test {
 protected:
  Program_Pictures() {
    Use_Picture_Setup();
    Load_Part();
  }
};

TEST_F(Program_Pictures, Every_Preset_Looks_As_Stored) {
  for (std::size_t view = 0; view < Preset_Views.size(); ++view) {
    const std::string name(Preset_Views[view].Name);
    Compare_With_Stored(Make_Program_Picture({view, size, false}), name);
  }
  const std::size_t isometric = Find_Preset("isometric-right").value();
  Compare_With_Stored(Make_Program_Picture({isometric, size, true}), "isometric-right-dark");
}

TEST_F(Program_Pictures, The_Comparison_Sees_A_Missing_Line) {
  const Plot_Image whole = Make_Program_Picture({0, size, false});
  Program_Wire.Rows()[3] = Program_Wire.Rows()[2];
  const Plot_Image part = Make_Program_Picture({0, size, false});
  EXPECT_GT(Difference(Image_Of(whole), Image_Of(part)), 0.002);
}

TEST_F(Program_Pictures, Neither_View_Nor_Lists_Of_The_Window_Change) {
  View.ViewAngleA = 0.25;
  View.ZoomHalfSpan = 3;
  Plot.Last_Line = {1, 2, 3, 4, 5, 6};
  Make_Program_Picture({6, size, false});
  EXPECT_EQ(View.ViewAngleA, 0.25);
  EXPECT_EQ(View.ZoomHalfSpan, 3);
  EXPECT_EQ(Plot.PlotLines.Count(), 0U);
  EXPECT_EQ(Plot.Last_Line, (Line_Memory{1, 2, 3, 4, 5, 6}));
}

TEST_F(Program_Pictures, Odd_Programs_And_Requests) {
  Take_Program_Wire({});
  const Plot_Image table = Make_Program_Picture({0, 64, false});  // the grid alone
  EXPECT_NE(table.Pixels, Plot_Image(64, 64, Argb(Light_Background)).Pixels);
  MachineSetup.Plot_Show_Grid = 0;
  EXPECT_EQ(Make_Program_Picture({0, 64, false}).Pixels,
            Plot_Image(64, 64, Argb(Light_Background)).Pixels);
  Part_Program dot;
  dot.Cut(3, 3, 0.5);
  Take_Program_Wire(dot.Take());
  Program_Wire.Rows()[0].Start = Program_Wire.Rows()[0].End;
  EXPECT_NE(Make_Program_Picture({6, 64, true}).Pixels,
            Plot_Image(64, 64, Argb(Dark_Background)).Pixels);
  MachineSetup.Plot_Show_Grid = 1;  // the table shows where the dot lies
  EXPECT_LT(Difference(Image_Of(Make_Program_Picture({0, 64, false})), Image_Of(table)), 0.002);
  EXPECT_THROW(Make_Program_Picture({8, 64, true}), Fault);
  EXPECT_THROW(Make_Program_Picture({0, 15, true}), Fault);
  EXPECT_THROW(Make_Program_Picture({0, 1 << 30, true}), Fault);
}

TEST_F(Program_Pictures, The_Pixmap_Holds_The_Same_Pixels) {
  const Plot_Image picture = Make_Program_Picture({6, 40, false});
  const std::string path = testing::TempDir() + "program.ppm";
  Write_Pixmap_File(path, picture);
  EXPECT_EQ(QImage(QString::fromStdString(path)).convertToFormat(QImage::Format_ARGB32),
            Image_Of(picture));
  EXPECT_THROW(Write_Pixmap_File("/no/such/folder/program.ppm", picture), Fault);
}

}  // namespace
}  // namespace norvik
