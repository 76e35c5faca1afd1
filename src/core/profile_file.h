// profile_file.h: text files of [section] and key=value lines.
//
// The machine file and the pointer file are such texts. People edit them by hand and other programs
// read them, so everything that is not asked to change stays as it is: comments, foreign sections
// and keys, their order, blank lines and the kind of line end.
//
//   ; a comment
//   [Axis]
//   Axis_SPI_1=4000
//   Axis_HomePos_1 = "  0.5"      one pair of quotes around a value is taken off: |  0.5|
//
// Names compare without regard to case. Of two sections or keys of one name the first counts.
// Lines end with LF or CR LF; a line that is neither section nor key=value is left alone. A value
// ends at a NUL character and is cut at 255 characters (of UTF-8, never inside one) when it is read
// from a file.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace norvik {

// Longest value that a read gives, in characters.
inline constexpr std::size_t Profile_Value_Limit = 255;

// One such text in memory.
class Profile_Text {
 public:
  explicit Profile_Text(std::string bytes);
  Profile_Text(const Profile_Text&) = delete;
  Profile_Text& operator=(const Profile_Text&) = delete;

  // The value without surrounding blanks and one pair of quotes; absent when the key is missing.
  std::optional<std::string> Find(std::string_view section, std::string_view key) const;
  // Changes the line of the key, or adds one behind the last line of its section, or adds the
  // section. Line ends and NULs in the value become blanks; a value that reading would strip is put
  // between quotes. A line whose value reads the same stays untouched.
  void Set(std::string_view section, std::string_view key, std::string_view value);
  // True once a Set has changed something.
  bool Changed() const { return Has_Changed; }
  // The whole text with its changes.
  std::string Bytes() const;

 private:
  struct Section {
    std::string Name;                     // upper case; empty for the lines before the first header
    std::vector<std::string_view> Lines;  // header included, each with its line end
    std::unordered_map<std::string, std::size_t> Keys;  // upper-case name to line
  };

  void Take_Line(std::string_view line);
  Section* Section_Of(std::string_view name);
  const Section* Section_Of(std::string_view name) const;
  std::string_view Keep(std::string line);
  std::size_t Add_Line(Section& section, std::string line);
  void End_Last_Line();

  std::string Original;
  std::deque<std::string> Added;  // storage of new lines
  std::deque<Section> Sections;
  std::unordered_map<std::string, std::size_t> Section_Index;
  std::string_view Line_End;
  bool Has_Changed = false;
};

// While one of these stands, reads of its file come from one parse of it. With `Writing`, writes
// are collected as well and reach the disk together, whole or not at all, with Commit; without
// Commit they are dropped. From the parse to the end of the writing other programs wait with their
// writes (core/folder_lock.h), so nothing of theirs is taken back. Raises a file fault when the
// file exists and cannot be read, or when another program keeps it locked.
enum class Profile_Use { Reading, Writing };
class Profile_Session {
 public:
  Profile_Session(const std::string& path, Profile_Use use);
  ~Profile_Session();
  Profile_Session(const Profile_Session&) = delete;
  Profile_Session& operator=(const Profile_Session&) = delete;

  // Writes what was collected. Raises a file fault that says what to do; the old file then stands.
  void Commit();

 private:
  std::string Path;
  Profile_Use Use;
};

// One value: empty when the file, the section or the key is missing. Raises a file fault when the
// file exists and cannot be read.
std::string Read_Profile(const std::string& path, std::string_view section, std::string_view key);
// The same, but absent when there is no such key.
std::optional<std::string> Find_Profile(const std::string& path, std::string_view section,
                                        std::string_view key);
// Writes one value into the file as it stands now; the file is replaced whole or stays as it was.
// Raises a file fault.
void Write_Profile(const std::string& path, std::string_view section, std::string_view key,
                   std::string_view value);

}  // namespace norvik
