// window_memory.h: where the windows stood and which of them were open.
//
// Section `Form Position` of the machine file. Positions and sizes are written in units of a
// fifteenth of a pixel, as the files of other systems have them; here everything is in pixels.
//
// The main window's left edge is written as `Main_Left` and read as `Main_Top_Left`, which nothing
// writes: it always comes back at the left.
#pragma once

#include "platform/platform.h"

#include <array>
#include <optional>
#include <string_view>

namespace norvik {

// The entries carry the names of the windows, as some records of other rooms do.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
enum class Form_Id {
  Main,
  GCode,
  CNC_Controls,
  Plot,
  JogKey,
  Port_IO,
  Simulated_Machine,
  DXF_Layer_List,
  Gerber_Layer_Choice,
  Bitmap_Choice
};
#pragma GCC diagnostic pop
inline constexpr std::size_t Form_Count = 10;
// Those of the layout: the main window and what stands inside it. The others are dialogs; each
// remembers its place on its own.
inline constexpr std::array All_Forms{
    Form_Id::Main,   Form_Id::GCode,   Form_Id::CNC_Controls,      Form_Id::Plot,
    Form_Id::JogKey, Form_Id::Port_IO, Form_Id::Simulated_Machine, Form_Id::DXF_Layer_List};

inline constexpr int Window_Normal = 0, Window_Minimized = 1, Window_Maximized = 2;

// Where the tool windows live. The main window tells when they stand inside it; absent: on the
// screen, below a menu.
struct Window_Area_State {
  std::optional<Screen_Area> Tool_Windows;
  int Panel_Width = 420;  // what the panel `CNC_Controls` needs, pixels
};
extern Window_Area_State Window_Area;

// Outer edges of a window in pixels of the screen.
struct Window_Place {
  int Top = 0, Left = 0, Height = 0, Width = 0;
  int WindowState = Window_Normal;
  bool operator==(const Window_Place&) const = default;
};

// What a window looks like at the moment; told by the window itself.
struct Form_View {
  Window_Place Place;
  bool Visible = false;
  bool Has_Been_Loaded = false;  // opened at least once in this run
};

// The name that the keys of a form begin with.
std::string_view Form_Name(Form_Id form);

// The saved place, held to what the screen can show; what is missing or makes no sense comes from
// the default layout.
Window_Place Read_Form_Place(Form_Id form);
// Writes the four edges and the state of one window.
void Write_Form_Place(Form_Id form, const Window_Place& place);
// Whether the window was open at the last save of the layout; absent when that is not known, as
// always of the main window.
std::optional<bool> Form_Was_Open(Form_Id form);
// Writes the whole layout, in the order of All_Forms; the open mark only of windows that have been
// loaded in this run.
void Write_Form_Views(const std::array<Form_View, All_Forms.size()>& views);

// A layout for this screen: controls at the right, plot above the program at the left. Where the
// screen is too low for both, each of these takes the whole left part and F4 and F5 change them.
Window_Place Default_Form_Place(Form_Id form, const Screen_Area& screen);
// `Reset_Form_Positions`: writes that layout.
void Reset_Form_Positions();

// Moves and shrinks a window until its frame lies on the screen.
Window_Place Brought_On_Screen(Window_Place place, const Screen_Area& screen);
// `CenterWindow`: a window of this size in the middle of an area.
Window_Place CenterWindow(int height, int width, const Screen_Area& parent);

}  // namespace norvik
