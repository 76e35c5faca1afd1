#include "core/error_log.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "platform/platform.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <string>

#include <sys/stat.h>

namespace norvik {

Log_Limits_State Log_Limits;

namespace {

struct Log_Failure_State {
  std::string Told;
};
Log_Failure_State Log_Failure;

// "mm/dd/yyyy hh:nn:ss"
std::string Time_Stamp() {
  const Calendar_Time now = Platform.Local_Time();
  char text[80];
  std::snprintf(text, sizeof text, "%02d/%02d/%04d %02d:%02d:%02d", now.Month, now.Day, now.Year,
                now.Hour, now.Minute, now.Second);
  return text;
}

// The log has failed; the cause is told once for each file and cause.
void Tell_On_Standard_Error(const std::string& line, int reason) {
  const std::string cause = File_Fault(Application.ErrorFile, "Cannot write", reason).Description;
  if (Log_Failure.Told != cause) std::fprintf(stderr, "Error log: %s\n", cause.c_str());
  Log_Failure.Told = cause;
  std::fprintf(stderr, "%s\n", line.c_str());
}

void Write_Line(const std::string& line, std::ios::openmode mode) {
  if (Application.ErrorFile.empty()) return;
  Keep_File_Bounded(Application.ErrorFile, Log_Limits.Error_Log);
  errno = 0;
  std::ofstream file(Application.ErrorFile, std::ios::binary | mode);
  file << line << "\r\n" << std::flush;
  if (!file) Tell_On_Standard_Error(line, errno);
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

void Keep_File_Bounded(const std::string& path, std::int64_t limit) {
  struct stat about {};
  if (::stat(path.c_str(), &about) != 0 || !S_ISREG(about.st_mode) || about.st_size < limit) return;
  const std::string extension = PathExtension(PathFileName(path));
  const std::string stem = path.substr(0, path.size() - extension.size());
  std::rename(path.c_str(), (stem + ".1" + extension).c_str());
}

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
