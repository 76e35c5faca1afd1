#include "app/openers.h"

#include "app/gcode_file.h"
#include "app/main_form.h"
#include "control/motion/motion.h"
#include "core/fault.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/recent_files.h"
#include "platform/platform.h"

#include <array>

namespace norvik {

namespace {

struct Kind_Row {
  Opened_Kind Kind;
  std::string_view Name;
  std::array<std::string_view, 3> Extensions;  // upper case; a "*" at the end stands for anything
};

constexpr std::array<Kind_Row, 7> Kinds{{
    {Opened_Kind::Gerber, "Gerber", {".GB*"}},
    {Opened_Kind::DXF, "DXF", {".DXF"}},
    {Opened_Kind::Excellon, "Excellon", {".NC"}},
    {Opened_Kind::HPGL, "HPGL", {".PLT"}},
    {Opened_Kind::Picture, "picture", {".JPG", ".BMP", ".GIF"}},
    {Opened_Kind::Motion, "motion", {".MCD"}},
    {Opened_Kind::GCode, "G-code", {}},
}};

struct Opener_State {
  std::array<Opener, Kinds.size()> Openers;  // by kind; empty: not offered
};
Opener_State Openers;

bool Matches(std::string_view extension, std::string_view pattern) {
  if (pattern.empty()) return false;
  if (!pattern.ends_with('*')) return extension == pattern;
  return extension.starts_with(pattern.substr(0, pattern.size() - 1));
}

void Open_By_Kind(const std::string& path) {
  const Opened_Kind kind = Kind_Of_File(path);
  const auto opener = Opener_Of(kind);
  if (!opener) {
    Platform.Message_Box(
        "Norvik 4", "This version opens no " + std::string(Kind_Name(kind)) + " files : " + path,
        Box_Buttons::Ok);
    return;
  }
  const std::int64_t start = Platform.Monotonic_Clock();
  Main_Form.Current_File = path;
  Set_Caption(path);
  Add_Recent_File(path);
  (*opener)(path);
  const double seconds = static_cast<double>(Platform.Monotonic_Clock() - start) / 1e9;
  SetStatus(3, "Load Time=" + FormatElapsed(seconds), -1);
}

}  // namespace

Opened_Kind Kind_Of_File(std::string_view path) {
  const std::string extension = Upper(PathExtension(path));
  for (const Kind_Row& row : Kinds) {
    for (const std::string_view pattern : row.Extensions) {
      if (Matches(extension, pattern)) return row.Kind;
    }
  }
  return Opened_Kind::GCode;
}

std::string_view Kind_Name(Opened_Kind kind) {
  return Kinds.at(static_cast<std::size_t>(kind)).Name;
}

void Register_Opener(Opened_Kind kind, Opener opener) {
  Openers.Openers.at(static_cast<std::size_t>(kind)) = std::move(opener);
}

std::optional<Opener> Opener_Of(Opened_Kind kind) {
  const Opener& opener = Openers.Openers.at(static_cast<std::size_t>(kind));
  return opener ? std::optional(opener) : std::nullopt;
}

void LoadRecentFile(const std::string& path) {
  Trap("Load Recent File Error", [&] {
    if (!Stopped_For("Can't open file")) return;  // before any box: a move waits for it
    if (!FileExists(path)) {
      Platform.Message_Box("Norvik 4", "File not found : " + path, Box_Buttons::Ok);
      return;
    }
    if (!May_Lose_Program() || !Stopped_For("Can't open file")) return;
    Open_By_Kind(path);
  });
}

void Menu_File_File_Click(int slot) {
  // A copy: opening moves the slots.
  const std::string path = Recent.RecentFiles[slot];
  if (!path.empty()) LoadRecentFile(path);
}

}  // namespace norvik
