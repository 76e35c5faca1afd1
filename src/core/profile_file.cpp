#include "core/profile_file.h"

#include "core/fault.h"
#include "core/folder_lock.h"
#include "core/paths.h"

#include <algorithm>
#include <list>
#include <memory>
#include <utility>

namespace norvik {

namespace {

constexpr std::string_view Blanks = " \t\r\v\f";

std::string_view Without_Blanks(std::string_view text) {
  const auto first = text.find_first_not_of(Blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

std::string_view Without_End(std::string_view line) {
  if (line.ends_with('\n')) line.remove_suffix(1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

bool Is_Quoted(std::string_view value) {
  return value.size() >= 2 && value.front() == value.back() &&
         (value.front() == '"' || value.front() == '\'');
}

// The value in what stands behind the "=".
std::string_view Value_Of(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  text = Without_Blanks(text);
  return Is_Quoted(text) ? text.substr(1, text.size() - 2) : text;
}

// The value of a whole key=value line.
std::string_view Line_Value(std::string_view line) {
  return Value_Of(Without_End(line).substr(line.find('=') + 1));
}

// How a value is written so that reading gives it back.
std::string Written(std::string_view value) {
  std::string text(value);
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
  const bool needs_quotes = Value_Of(text) != text;
  return needs_quotes ? '"' + text + '"' : text;
}

// The first 255 characters; a character of UTF-8 is its first byte and the continuation bytes.
std::string Cut(std::string value) {
  std::size_t characters = 0;
  for (std::size_t at = 0; at < value.size(); ++at) {
    const bool continues = (static_cast<unsigned char>(value[at]) & 0xC0U) == 0x80U;
    if (!continues && ++characters > Profile_Value_Limit) {
      value.resize(at);
      break;
    }
  }
  return value;
}

}  // namespace

Profile_Text::Profile_Text(std::string bytes) : Original(std::move(bytes)) {
  constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
  Sections.emplace_back();
  std::string_view rest = Original;
  const auto first_end = rest.find('\n');
  const bool unix_ends =
      first_end != std::string_view::npos && (first_end == 0 || rest[first_end - 1] != '\r');
  Line_End = unix_ends ? "\n" : "\r\n";
  if (rest.starts_with(byte_order_mark)) {
    Sections.back().Lines.push_back(rest.substr(0, byte_order_mark.size()));
    rest.remove_prefix(byte_order_mark.size());
  }
  while (!rest.empty()) {
    const auto end = rest.find('\n');
    const auto length = end == std::string_view::npos ? rest.size() : end + 1;
    Take_Line(rest.substr(0, length));
    rest.remove_prefix(length);
  }
}

void Profile_Text::Take_Line(std::string_view line) {
  const std::string_view text = Without_Blanks(Without_End(line));
  if (text.starts_with('[')) {
    const auto close = text.rfind(']');
    if (close != std::string_view::npos) {
      Sections.emplace_back().Name = Upper(Without_Blanks(text.substr(1, close - 1)));
      Section_Index.try_emplace(Sections.back().Name, Sections.size() - 1);
    }
  }
  Section& section = Sections.back();
  section.Lines.push_back(line);
  const auto equals = text.find('=');
  if (equals == std::string_view::npos || text.starts_with('[') || text.starts_with(';')) return;
  section.Keys.try_emplace(Upper(Without_Blanks(text.substr(0, equals))), section.Lines.size() - 1);
}

const Profile_Text::Section* Profile_Text::Section_Of(std::string_view name) const {
  const auto found = Section_Index.find(Upper(name));
  return found == Section_Index.end() ? nullptr : &Sections[found->second];
}

Profile_Text::Section* Profile_Text::Section_Of(std::string_view name) {
  return const_cast<Section*>(std::as_const(*this).Section_Of(name));
}

std::optional<std::string> Profile_Text::Find(std::string_view section,
                                              std::string_view key) const {
  const Section* place = Section_Of(section);
  if (place == nullptr) return std::nullopt;
  const auto found = place->Keys.find(Upper(key));
  if (found == place->Keys.end()) return std::nullopt;
  return std::string(Line_Value(place->Lines[found->second]));
}

std::string_view Profile_Text::Keep(std::string line) {
  Has_Changed = true;
  return Added.emplace_back(std::move(line));
}

// The very last line of a text may lack its end; something is about to follow it.
void Profile_Text::End_Last_Line() {
  for (auto section = Sections.rbegin(); section != Sections.rend(); ++section) {
    if (section->Lines.empty()) continue;
    std::string_view& last = section->Lines.back();
    if (!last.ends_with('\n')) last = Keep(std::string(last) + std::string(Line_End));
    return;
  }
}

// Behind the last line of the section that is not blank, so that the places of its keys stand.
// Gives the place of the new line.
std::size_t Profile_Text::Add_Line(Section& section, std::string line) {
  End_Last_Line();
  auto place = section.Lines.end();
  while (place != section.Lines.begin() && Without_Blanks(Without_End(*(place - 1))).empty())
    --place;
  place = section.Lines.insert(place, Keep(std::move(line)));
  return static_cast<std::size_t>(place - section.Lines.begin());
}

void Profile_Text::Set(std::string_view section, std::string_view key, std::string_view value) {
  const std::string end(Line_End);
  Section* place = Section_Of(section);
  if (place == nullptr) {
    End_Last_Line();
    const bool first = std::all_of(Sections.begin(), Sections.end(),
                                   [](const Section& other) { return other.Lines.empty(); });
    place = &Sections.emplace_back();
    place->Name = Upper(section);
    Section_Index.emplace(place->Name, Sections.size() - 1);
    if (!first) Sections[Sections.size() - 2].Lines.push_back(Keep(end));
    place->Lines.push_back(Keep("[" + std::string(section) + "]" + end));
  }

  const auto found = place->Keys.find(Upper(key));
  if (found == place->Keys.end()) {
    const auto at = Add_Line(*place, std::string(key) + "=" + Written(value) + end);
    place->Keys.emplace(Upper(key), at);
    return;
  }
  std::string_view& line = place->Lines[found->second];
  if (Line_Value(line) == Value_Of(Written(value))) return;
  const auto equals = line.find('=');
  const std::string_view line_end = line.substr(Without_End(line).size());
  line = Keep(std::string(line.substr(0, equals + 1)) + Written(value) + std::string(line_end));
}

std::string Profile_Text::Bytes() const {
  std::string bytes;
  bytes.reserve(Original.size() + 1024);
  for (const Section& section : Sections) {
    for (const std::string_view line : section.Lines) bytes += line;
  }
  return bytes;
}

namespace {

struct Open_Profile {
  std::string Path;
  std::unique_ptr<Profile_Text> Text;
  int Users = 0;
  int Writers = 0;
  std::unique_ptr<Folder_Lock> Lock;  // while there are writers
};

struct Profile_State {
  std::list<Open_Profile> Open;
};
Profile_State Profiles;

Open_Profile* Open_At(const std::string& path) {
  for (Open_Profile& profile : Profiles.Open) {
    if (profile.Path == path) return &profile;
  }
  return nullptr;
}

// A missing file is an empty one; anything else that keeps it from being read is a fault, so that
// nobody replaces a file that was only out of reach for the moment.
std::unique_ptr<Profile_Text> Parse_File(const std::string& path) {
  return std::make_unique<Profile_Text>(Read_If_There(path).value_or(""));
}

}  // namespace

Profile_Session::Profile_Session(const std::string& path, Profile_Use use) : Path(path), Use(use) {
  Open_Profile* profile = Open_At(path);
  const bool first_writer =
      use == Profile_Use::Writing && (profile == nullptr || profile->Writers == 0);
  auto lock = first_writer ? std::make_unique<Folder_Lock>(path) : nullptr;
  if (profile == nullptr) {
    profile = &Profiles.Open.emplace_back(Open_Profile{path, Parse_File(path), 0, 0, nullptr});
  } else if (first_writer) {
    profile->Text = Parse_File(path);
  }
  ++profile->Users;
  if (use == Profile_Use::Writing) ++profile->Writers;
  if (first_writer) profile->Lock = std::move(lock);
}

Profile_Session::~Profile_Session() {
  Open_Profile* profile = Open_At(Path);
  if (Use == Profile_Use::Writing && --profile->Writers == 0) profile->Lock.reset();
  if (--profile->Users > 0) return;
  Profiles.Open.remove_if([this](const Open_Profile& other) { return other.Path == Path; });
}

void Profile_Session::Commit() {
  const Open_Profile& profile = *Open_At(Path);
  if (profile.Writers == 1 && profile.Text->Changed()) Replace_File(Path, profile.Text->Bytes());
}

std::optional<std::string> Find_Profile(const std::string& path, std::string_view section,
                                        std::string_view key) {
  const Open_Profile* profile = Open_At(path);
  auto value = (profile != nullptr ? *profile->Text : *Parse_File(path)).Find(section, key);
  if (value) value = Cut(std::move(*value));
  return value;
}

std::string Read_Profile(const std::string& path, std::string_view section, std::string_view key) {
  return Find_Profile(path, section, key).value_or("");
}

void Write_Profile(const std::string& path, std::string_view section, std::string_view key,
                   std::string_view value) {
  Open_Profile* profile = Open_At(path);
  if (profile != nullptr && profile->Writers > 0) return profile->Text->Set(section, key, value);
  const Folder_Lock lock(path);
  auto text = Parse_File(path);
  text->Set(section, key, value);
  if (text->Changed()) Replace_File(path, text->Bytes());
  if (profile != nullptr) profile->Text = std::move(text);
}

}  // namespace norvik
