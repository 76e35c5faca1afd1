#include "app/support_packet.h"

#include "app/program_findings.h"
#include "app/support_text.h"
#include "core/application.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/paths.h"
#include "core/setup.h"
#include "core/version.h"
#include "drive/drive.h"
#include "platform/platform.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <functional>

namespace norvik {

namespace {

constexpr std::string_view Blank = "[folder]";

void Replace_All(std::string& text, const std::string& what, std::string_view by) {
  if (what.size() < 2) return;
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
    text.replace(at, what.size(), by);
  }
}

std::string Without_End(std::string folder) {
  while (folder.size() > 1 && (folder.back() == '/' || folder.back() == '\\')) folder.pop_back();
  return folder;
}

// Folders that the program knows by name, blanks in them included; the longest first.
std::vector<std::string> Known_Folders() {
  std::vector<std::string> folders;
  const auto add = [&folders](const std::string& path) {
    const std::string folder = Without_End(PathDirectory(path));
    const bool device = folder == "/dev" || folder.starts_with("/dev/");
    if (folder.size() > 1 && !device) folders.push_back(folder);
  };
  if (const char* home = std::getenv("HOME")) folders.push_back(Without_End(home));
  add(Application.MachineFile);
  add(MachineSetup.Tool_File_Name);
  for (int n = MachineSetup.MacroFile.first; n <= MachineSetup.MacroFile.last; ++n) {
    add(MachineSetup.MacroFile[n]);
  }
  for (int n = MachineSetup.Sound_Files.first; n <= MachineSetup.Sound_Files.last; ++n) {
    add(MachineSetup.Sound_Files[n]);
  }
  const auto pointer = Read_If_There(Pointer_File());
  for (const std::string& line : Split_Lines(pointer.value_or(""))) {
    const auto equals = line.find('=');
    if (equals != std::string::npos) add(Trim(line.substr(equals + 1)));
  }
  std::ranges::sort(folders, std::greater<>(), &std::string::size);
  return folders;
}

bool Is_In_Path(char c) {
  return std::isspace(static_cast<unsigned char>(c)) == 0 &&
         std::string_view("\"'<>|;,()[]").find(c) == std::string_view::npos;
}

// Where a full path begins: "/x" or "C:\" behind something that is no part of a word.
bool Path_Begins(std::string_view text, std::size_t at) {
  const auto is_word = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '/' || c == '\\' || c == ']' ||
           c == '.' || c == '_';
  };
  if (at > 0 && is_word(text[at - 1])) return false;
  const std::string_view rest = text.substr(at);
  if (rest.size() > 2 && rest[0] == '/' && is_word(rest[1]) && rest[1] != '/') return true;
  return rest.size() > 3 && std::isalpha(static_cast<unsigned char>(rest[0])) != 0 &&
         rest[1] == ':' && (rest[2] == '\\' || rest[2] == '/');
}

// What looks like a full path keeps its last part.
std::string Blank_Other_Paths(std::string_view text) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    if (!Path_Begins(text, at)) {
      out += text[at++];
      continue;
    }
    auto end = at;
    while (end < text.size() && Is_In_Path(text[end])) ++end;
    const std::string_view path = text.substr(at, end - at);
    const auto last = path.find_last_of("/\\");
    const bool device = path.starts_with("/dev/");
    if (device || last == 0) {
      out += path;
    } else {
      out += std::string(Blank) + std::string(path.substr(last));
    }
    at = end;
  }
  return out;
}

std::string File_Or_Reason(const std::string& path) {
  std::string text;
  Trap_With([&](const Fault& fault) { text = fault.Description + "\n"; },
            [&] { text = Read_Whole_File(path); });
  return text;
}

std::string Check_Text() {
  std::string text;
  for (const Check_Finding& finding : Program_Findings.List) {
    if (finding.Macro) text += "Macro " + std::to_string(*finding.Macro) + ", ";
    text += "line " + std::to_string(finding.Line) + ": " + finding.What + "\n";
  }
  return text.empty() ? "Nothing was found, or no program was checked.\n" : text;
}

std::string Message_Text() {
  return Messages.Status_Box.empty() ? "No messages.\n" : Messages.Status_Box;
}

std::string Device_Text() {
  std::string text;
  for (const Serial_Port_Info& port : Platform.Serial_Ports()) {
    text += port.Device + "  " + port.Description;
    text += port.Problem.empty() ? "\n" : "  " + port.Problem + "\n";
  }
  return text.empty() ? "No serial ports.\n" : text;
}

std::string Timing_Text() {
  return "Time constant: " + std::to_string(MachineSetup.Parallel_Time_Constant) +
         " microseconds\nDrive: " + std::string(Drive().Name) + ", " + Drive().Health() +
         "\nLast move: " + Drive().Diagnostics() + "\n";
}

}  // namespace

std::string Blank_Folders(std::string_view text) {
  std::string blanked(text);
  Replace_All(blanked, Without_End(Application.Table_Folder), "[working folder]");
  Replace_All(blanked, Without_End(Application.AppDirectory), "[working folder]");
  Replace_All(blanked, Without_End(Application.Pointer_Folder), "[settings folder]");
  for (const std::string& folder : Known_Folders()) Replace_All(blanked, folder, Blank);
  return Blank_Other_Paths(blanked);
}

std::vector<Packet_File> Support_Packet(const std::string& surroundings) {
  std::vector<Packet_File> files = {
      {"Versions, drive and folders", {"versions.txt", Support_Text() + surroundings}},
      {"The machine file", {"machine.ini", File_Or_Reason(Application.MachineFile)}},
      {"The settings of this computer and the recent files",
       {"computer.ini", File_Or_Reason(Pointer_File())}},
      {"The error log", {"error_log.txt", File_Or_Reason(Application.ErrorFile)}},
      {"What the last check of the program found", {"check.txt", Check_Text()}},
      {"The messages, reports of imports among them", {"messages.txt", Message_Text()}},
      {"Timing and the numbers of the last move", {"timing.txt", Timing_Text()}},
      {"Serial ports, and what stands against using them", {"devices.txt", Device_Text()}},
  };
  for (Packet_File& file : files) file.Entry.Bytes = Blank_Folders(file.Entry.Bytes);
  return files;
}

void Write_Support_Packet(const std::string& path, const std::vector<Packet_File>& files) {
  std::vector<Zip_Entry> entries;
  for (const Packet_File& file : files) entries.push_back(file.Entry);
  Replace_File(path, Zip_Archive(entries));
}

}  // namespace norvik
