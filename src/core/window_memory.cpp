#include "core/window_memory.h"

#include "core/numbers.h"
#include "core/rounding.h"
#include "core/setup.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace norvik {

Window_Area_State Window_Area;

namespace {

constexpr std::string_view Section = "Form Position";
constexpr double Units_Per_Pixel = 15;
// Smaller than this no window can be worked with.
constexpr int Least_Height = 100, Least_Width = 160;
// From this height on plot and program have room above each other.
constexpr int Least_Stacked_Height = 680;

struct Form_Words {
  std::string_view Name, Open_Key;
};

// In the order of Form_Id.
constexpr std::array<Form_Words, Form_Count> Words{{
    {"Main", ""},
    {"GCode", "GCode_Open"},
    {"CNC_Controls", "CNC_Controls_Open"},
    {"Plot", "Plot_Open"},
    {"JogKey", "JogKey_Open"},
    {"Port_IO", "Port_IO_Open"},
    {"Simulated_Machine", "Simulated_Machine_Open"},
    {"DXF_Import_Layers", ""},
    {"GerberLayerSelection", ""},
    {"Bitmap_Import", ""},
}};

const Form_Words& Words_Of(Form_Id form) {
  return Words.at(static_cast<std::size_t>(form));
}

std::string Edge_Key(Form_Id form, std::string_view edge) {
  return std::string(Form_Name(form)) + "_" + std::string(edge);
}

// A stored edge in pixels; `otherwise` when it is missing or no number.
int Read_Edge(const std::string& key, int otherwise) {
  constexpr double farthest = 1e6;
  const auto number = Try_Number(ReadSetup(Section, key));
  if (!number || std::abs(*number) > farthest * Units_Per_Pixel) return otherwise;
  return To_Int32(std::floor(*number / Units_Per_Pixel + 0.5));
}

void Write_Edge(const std::string& key, int pixels) {
  WriteSetup(Section, key, std::to_string(static_cast<long long>(pixels * Units_Per_Pixel)));
}

// Where a window may lie: the main window and dialogs on the screen, the others inside the main
// window when they live there.
Screen_Area Limits_Of(Form_Id form, const Screen_Area& screen) {
  const bool is_alone = form == Form_Id::Main || form == Form_Id::Gerber_Layer_Choice ||
                        form == Form_Id::Bitmap_Choice;
  return is_alone ? screen : Window_Area.Tool_Windows.value_or(screen);
}

// What the default layout divides among the tool windows.
Screen_Area Layout_Area(const Screen_Area& screen) {
  constexpr int menu_height = 60;
  return Window_Area.Tool_Windows.value_or(
      Screen_Area{screen.Left, screen.Top + menu_height, screen.Width,
                  std::max(Least_Height, screen.Height - menu_height)});
}

}  // namespace

std::string_view Form_Name(Form_Id form) {
  return Words_Of(form).Name;
}

Window_Place Read_Form_Place(Form_Id form) {
  const Screen_Area screen = Platform.Screen();
  Window_Place place = Default_Form_Place(form, screen);
  place.Top = Read_Edge(Edge_Key(form, "Top"), place.Top);
  place.Left = Read_Edge(Edge_Key(form, form == Form_Id::Main ? "Top_Left" : "Left"), place.Left);
  const int height = Read_Edge(Edge_Key(form, "Height"), place.Height);
  const int width = Read_Edge(Edge_Key(form, "Width"), place.Width);
  if (height > 0) place.Height = height;
  if (width > 0) place.Width = width;
  const auto state = Try_Number(ReadSetup(Section, Edge_Key(form, "WindowState")));
  if (state && *state >= Window_Normal && *state <= Window_Maximized) {
    place.WindowState = To_Int16(*state);
  }
  return Brought_On_Screen(place, Limits_Of(form, screen));
}

void Write_Form_Place(Form_Id form, const Window_Place& place) {
  Write_Setup_Together([&] {
    Write_Edge(Edge_Key(form, "Top"), place.Top);
    Write_Edge(Edge_Key(form, "Left"), place.Left);
    Write_Edge(Edge_Key(form, "Height"), place.Height);
    Write_Edge(Edge_Key(form, "Width"), place.Width);
    WriteSetup(Section, Edge_Key(form, "WindowState"), std::to_string(place.WindowState));
  });
}

std::optional<bool> Form_Was_Open(Form_Id form) {
  const std::string_view key = Words_Of(form).Open_Key;
  const std::string text = key.empty() ? std::string() : ReadSetup(Section, key);
  if (text.empty()) return std::nullopt;
  return ToBoolean(text);
}

void Write_Form_Views(const std::array<Form_View, All_Forms.size()>& views) {
  Write_Setup_Together([&] {
    for (const Form_Id form : All_Forms) {
      const Form_View& view = views[static_cast<std::size_t>(form)];
      const std::string_view open_key = Words_Of(form).Open_Key;
      if (!open_key.empty() && view.Has_Been_Loaded) {
        WriteSetup(Section, open_key, view.Visible ? "True" : "False");
      }
      if (view.Has_Been_Loaded) Write_Form_Place(form, view.Place);
    }
  });
}

Window_Place Default_Form_Place(Form_Id form, const Screen_Area& screen) {
  constexpr int jog_size = 420;
  if (form == Form_Id::Main) return {0, 0, screen.Height, screen.Width, Window_Maximized};
  const Screen_Area area = Layout_Area(screen);
  const int controls = std::min(Window_Area.Panel_Width, area.Width / 2);
  const int left_part = area.Width - controls;
  const bool stacked = area.Height >= Least_Stacked_Height;
  const int plot_height = stacked ? area.Height * 6 / 10 : area.Height;
  const int text_top = stacked ? plot_height : 0;
  switch (form) {
    case Form_Id::CNC_Controls:
      return {area.Top, area.Left + left_part, area.Height, controls, Window_Normal};
    case Form_Id::Plot:
      return {area.Top, area.Left, plot_height, left_part, Window_Normal};
    case Form_Id::GCode:
    case Form_Id::Simulated_Machine:
      return {area.Top + text_top, area.Left, area.Height - text_top, left_part, Window_Normal};
    case Form_Id::Main:
    case Form_Id::JogKey:
    case Form_Id::Port_IO:
      break;
    case Form_Id::DXF_Layer_List:
      // In the corner of the program: plot and panel stay in sight.
      return {area.Top + area.Height - 300, area.Left + left_part - 320, 300, 320, Window_Normal};
    case Form_Id::Gerber_Layer_Choice:
      return CenterWindow(480, 400, screen);
    case Form_Id::Bitmap_Choice:
      return CenterWindow(520, 820, screen);
  }
  return CenterWindow(jog_size, jog_size, area);
}

void Reset_Form_Positions() {
  const Screen_Area screen = Platform.Screen();
  Write_Setup_Together([&] {
    for (const Form_Id form : All_Forms) Write_Form_Place(form, Default_Form_Place(form, screen));
  });
}

Window_Place Brought_On_Screen(Window_Place place, const Screen_Area& screen) {
  place.Width = std::clamp(place.Width, std::min(Least_Width, screen.Width), screen.Width);
  place.Height = std::clamp(place.Height, std::min(Least_Height, screen.Height), screen.Height);
  place.Left = std::clamp(place.Left, screen.Left, screen.Left + screen.Width - place.Width);
  place.Top = std::clamp(place.Top, screen.Top, screen.Top + screen.Height - place.Height);
  return place;
}

Window_Place CenterWindow(int height, int width, const Screen_Area& parent) {
  return {parent.Top + (parent.Height - height) / 2, parent.Left + (parent.Width - width) / 2,
          height, width, Window_Normal};
}

}  // namespace norvik
