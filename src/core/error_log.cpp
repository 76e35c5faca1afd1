#include "core/error_log.h"

#include "core/application.h"
#include "core/messages.h"
#include "platform/platform.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>

namespace norvik {

namespace {

// "mm/dd/yyyy hh:nn:ss"
std::string Time_Stamp() {
  const Calendar_Time now = Platform.Local_Time();
  char text[80];
  std::snprintf(text, sizeof text, "%02d/%02d/%04d %02d:%02d:%02d", now.Month, now.Day, now.Year,
                now.Hour, now.Minute, now.Second);
  return text;
}

void Write_Line(const std::string& line, std::ios::openmode mode) {
  if (Application.ErrorFile.empty()) return;
  // A failure of the log has nowhere to go; the panels have shown the text.
  std::ofstream file(Application.ErrorFile, std::ios::binary | mode);
  file << line << "\r\n";
}

// An entry is one line of readable length, whatever a faulty file put into the text.
std::string One_Line(std::string_view text) {
  constexpr std::size_t longest = 1000;
  std::string line(text.substr(0, longest));
  std::replace_if(
      line.begin(), line.end(),
      [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, ' ');
  if (text.size() > longest) line += "... (" + std::to_string(text.size()) + " characters)";
  return line;
}

}  // namespace

void ErrorLogWrite(std::string_view text) {
  const std::string line = One_Line(text);
  SetStatus(1, "Error Write:" + line, 10);
  SetStatus(3, "Error Log Entry", 10);
  Write_Line(Time_Stamp() + " Error Description: " + line, std::ios::app);
}

void Reset_Error_Log() {
  SetStatus(1, "Error File Reset:", 5);
  Write_Line(Time_Stamp() + " Error File Cleared on Startup", std::ios::trunc);
}

}  // namespace norvik
