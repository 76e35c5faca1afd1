// Pictures of a program from every preset, against stored ones.
#include "comparison.h"
#include "part.h"
#include "plot/nist_plot.h"
#include "plot/plot_colour.h"
#include "plot/plot_picture.h"
#include "plot/view.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace norvik {
namespace {

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
    Compare_With_Stored(Make_Program_Picture({view, Stored_Size, false}), name);
  }
  const std::size_t isometric = Find_Preset("isometric-right").value();
  Compare_With_Stored(Make_Program_Picture({isometric, Stored_Size, true}), "isometric-right-dark");
}

TEST_F(Program_Pictures, The_Comparison_Sees_A_Missing_Line) {
  const Plot_Image whole = Make_Program_Picture({0, Stored_Size, false});
  Program_Wire.Rows()[3] = Program_Wire.Rows()[2];
  const Plot_Image part = Make_Program_Picture({0, Stored_Size, false});
  EXPECT_GT(Difference(Image_Of(whole), Image_Of(part)), 0.002);
}

TEST_F(Program_Pictures, Neither_View_Nor_Lists_Of_The_Window_Change) {
  View.ViewAngleA = 0.25;
  View.ZoomHalfSpan = 3;
  Plot.Last_Line = {1, 2, 3, 4, 5, 6};
  Make_Program_Picture({6, Stored_Size, false});
  EXPECT_EQ(View.ViewAngleA, 0.25);
  EXPECT_EQ(View.ZoomHalfSpan, 3);
  EXPECT_EQ(Plot.PlotLines.Count(), 0U);
  EXPECT_EQ(Plot.Last_Line, (Line_Memory{1, 2, 3, 4, 5, 6}));
}

TEST_F(Program_Pictures, Odd_Programs_And_Requests) {
  Install_Table({});
  const Plot_Image table = Make_Program_Picture({0, 64, false});  // the grid alone
  EXPECT_NE(table.Pixels, Plot_Image(64, 64, Argb(Light_Background)).Pixels);
  MachineSetup.Plot_Show_Grid = 0;
  EXPECT_EQ(Make_Program_Picture({0, 64, false}).Pixels,
            Plot_Image(64, 64, Argb(Light_Background)).Pixels);
  Part_Program dot;
  dot.Cut(3, 3, 0.5);
  Install_Table(dot.Take());
  Program_Wire.Rows()[0].Start = Program_Wire.Rows()[0].End;
  EXPECT_NE(Make_Program_Picture({6, 64, true}).Pixels,
            Plot_Image(64, 64, Argb(Dark_Background)).Pixels);
  MachineSetup.Plot_Show_Grid = 1;  // the table shows where the dot lies
  EXPECT_LT(Difference(Image_Of(Make_Program_Picture({0, 64, false})), Image_Of(table)), 0.002);
  EXPECT_THROW(Make_Program_Picture({8, 64, true}), Fault);
  EXPECT_THROW(Make_Program_Picture({0, 15, true}), Fault);
  EXPECT_THROW(Make_Program_Picture({0, 1 << 30, true}), Fault);
}

TEST_F(Program_Pictures, A_Fine_Grid_Stays_A_Grid) {
  const auto on_the_ground = [](const Plot_Image& picture) {
    return static_cast<double>(
               std::count(picture.Pixels.begin(), picture.Pixels.end(), Argb(Light_Background))) /
           static_cast<double>(picture.Pixels.size());
  };
  MachineSetup.Axis_Depth = {{1000, 800, 100, 1}};
  for (const float grid : {1e-30F, -1.0F, 1e-3F, 1.0F, 10.0F, 1e30F}) {
    SCOPED_TRACE(grid);
    MachineSetup.Axis_Table_Grid_Size = grid;
    for (const bool empty : {false, true}) {
      empty ? Install_Table({}) : Load_Part();
      EXPECT_GT(on_the_ground(Make_Program_Picture({0, Stored_Size, false})), 0.7);
    }
  }
}

TEST_F(Program_Pictures, The_Pixmap_Holds_The_Same_Pixels) {
  const Plot_Image picture = Make_Program_Picture({6, 40, false});
  const std::string path = testing::TempDir() + std::to_string(::getpid()) + "program.ppm";
  Write_Pixmap_File(path, picture);
  EXPECT_EQ(QImage(QString::fromStdString(path)).convertToFormat(QImage::Format_ARGB32),
            Image_Of(picture));
  EXPECT_THROW(Write_Pixmap_File("/no/such/folder/program.ppm", picture), Fault);
}

}  // namespace
}  // namespace norvik
