// plot_fixture.h: a program, a setup and an open plot window for the tests of this room.
#pragma once

#include "compiler/tables/program_wire.h"
#include "core/application.h"
#include "core/messages.h"
#include "core/setup.h"
#include "platform/scripted/scripted_platform.h"
#include "plot/cursor.h"
#include "plot/nist_plot.h"
#include "plot/plot_form.h"
#include "plot/plot_host.h"
#include "plot/recording_surface.h"
#include "plot/view.h"
#include "support/reset.h"

#include <array>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace norvik {

inline constexpr std::int32_t Travel_Color = 0x0000FF, Cut_Color = 0x00FF00, Deep_Color = 0xFF0000,
                              Ground_Color = 0xFAFAFA, Grid_Color = 0xA0A0A0;

// A move in the plane or in space; what a row leaves out is as the compiler leaves it.
struct Wire_Row {
  std::int32_t Step = 1;
  bool FeedMove = true;
  std::array<Nullable, 3> From{}, To{};
  Nullable Tool{};
  float Dwell = 0;
  std::array<std::int16_t, 2> Spindle{Output_Unchanged, Output_Unchanged};
  std::string Text{};
};

inline Wire Make_Wire(const Wire_Row& row) {
  Wire wire;
  wire.Step = row.Step;
  wire.Motion = 1;
  wire.FeedMove = row.FeedMove;
  for (int axis = 1; axis <= 3; ++axis) {
    wire.Start[axis] = row.From[static_cast<std::size_t>(axis - 1)];
    wire.End[axis] = row.To[static_cast<std::size_t>(axis - 1)];
  }
  wire.Tool = row.Tool;
  wire.Dwell = row.Dwell;
  wire.Out[0] = row.Spindle[0];
  wire.Out[1] = row.Spindle[1];
  return wire;
}

inline void Load_Program(const std::vector<Wire_Row>& rows) {
  auto texts = std::make_shared<std::vector<std::string>>();
  texts->reserve(rows.size());
  Table<Wire> table;
  for (const Wire_Row& row : rows) {
    texts->push_back(row.Text);
    table.Rows.push_back(Make_Wire(row)).Block_Text = texts->back();
  }
  table.Texts = texts;
  Install_Table(std::move(table));
}

inline void PrintTo(const Plot_Line& line, std::ostream* out) {
  *out << "(" << line.X1 << ", " << line.Y1 << ")-(" << line.X2 << ", " << line.Y2 << ") color "
       << std::hex << line.Color << std::dec << " width " << line.Width;
}

// The place on a surface of `width` x `height` pixels where a plot coordinate lies: the reverse of
// Plot_Pixel_To_World, which is linear.
inline World_Point Plot_World_To_Pixel(double x, double y, double width, double height) {
  const World_Point from = Plot_Pixel_To_World(0, 0, width, height);
  const World_Point to = Plot_Pixel_To_World(width, height, width, height);
  return {(x - from.X) / (to.X - from.X) * width, (y - from.Y) / (to.Y - from.Y) * height};
}

// Everything at its start state, a table of 10 x 8 x 4 with a grid of 1, an open plot window.
class Plot_Test : public testing::Test {
 protected:
  Plot_Test() {
    Reset_Plot();
    Application.ErrorFile = testing::TempDir() + std::to_string(::getpid()) + "plot_errors.txt";
    std::remove(Application.ErrorFile.c_str());
    MachineSetup.Plot_Color = {
        {Travel_Color, Cut_Color, Deep_Color, Ground_Color, Grid_Color, 0x0000AA, 0x00AAAA}};
    MachineSetup.Axis_Depth = {{10, 8, 4, 1}};
    MachineSetup.Axis_Table_Grid_Size = 1;
    MachineSetup.Plot_FastDraw = 1;
    MachineSetup.Plot_Bit_Radious = 0.0001F;
    MachineSetup.Axis_Tool_Height = {{1, 0.5F, -1}};
    MachineSetup.Axis_Format = "000.000";
    Load_Program({});
    Plot_Host.Picture1 = &Picture1;
    Plot_Host.Picture_ZAxis = &Picture_ZAxis;
  }
  ~Plot_Test() override { Reset_Plot(); }

  std::string Error_Log() const {
    std::ifstream file(Application.ErrorFile);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  Scripted_Platform Scripted;
  Recording_Surface Picture1, Picture_ZAxis;
};

}  // namespace norvik
