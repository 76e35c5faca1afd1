#include "plot/recording_surface.h"

namespace norvik {

void Recording_Surface::Set_Scale(const Plot_Scale& scale) {
  Recorded_Call call;
  call.What = Recorded_Call::Kind::Scale;
  call.Scale = scale;
  Calls.push_back(call);
}

void Recording_Surface::Clear(std::int32_t background) {
  Recorded_Call call;
  call.What = Recorded_Call::Kind::Clear;
  call.Color = background;
  Calls.push_back(call);
}

void Recording_Surface::Draw_Lines(std::span<const Plot_Line> lines) {
  for (const Plot_Line& line : lines) {
    Recorded_Call call;
    call.What = Recorded_Call::Kind::Line;
    call.Line = line;
    Calls.push_back(call);
  }
}

void Recording_Surface::Draw_Text(double x, double y, std::string_view text, std::int32_t color) {
  Recorded_Call call;
  call.What = Recorded_Call::Kind::Text;
  call.X = x;
  call.Y = y;
  call.Text = text;
  call.Color = color;
  Calls.push_back(call);
}

void Recording_Surface::Draw_Picture(double x, double y, const Plot_Image& picture) {
  Recorded_Call call;
  call.What = Recorded_Call::Kind::Picture;
  call.X = x;
  call.Y = y;
  call.Picture_Height = picture.Height;
  Calls.push_back(call);
}

std::vector<Plot_Line> Recording_Surface::Lines() const {
  std::vector<Plot_Line> lines;
  for (const Recorded_Call& call : Calls) {
    if (call.What == Recorded_Call::Kind::Clear) lines.clear();
    if (call.What == Recorded_Call::Kind::Line) lines.push_back(call.Line);
  }
  return lines;
}

}  // namespace norvik
