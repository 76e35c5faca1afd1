// value_stream.h: the bytes of a table file cut into values, as they are spelled.
//
// A value ends at a comma or at a line end of any kind (CR LF, LF, CR). A text stands between
// double quotes; a quote inside is doubled, and one that was not doubled belongs to the text unless
// a comma or a line end follows it.
//
//   7,"say ""hi""",#NULL#,.5      ->  7 | say ""hi"" (quoted) | #NULL# | .5
//
// The reader of the tables turns the values into fields (tables_io.h); whoever hands values on as
// they are reads them one by one through `Value_Stream`.
#pragma once

#include "core/fault.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace norvik {

// Where the bytes come from. `Fill` appends the next portion; false when there is none.
class Byte_Source {
 public:
  virtual ~Byte_Source() = default;
  virtual bool Fill(std::string& bytes) = 0;
};

// A file. Constructor and `Fill` raise a file fault that says what to do.
class File_Source : public Byte_Source {
 public:
  explicit File_Source(const std::string& path);
  ~File_Source() override;
  File_Source(const File_Source&) = delete;
  File_Source& operator=(const File_Source&) = delete;

  bool Fill(std::string& bytes) override;
  // Bytes of the file as it was opened; 0 for what has no size, such as a pipe.
  std::uint64_t Size() const;

 private:
  std::string Path;
  int File = -1;
};

// Bytes that are in memory already; the first `Fill` appends them all.
class Memory_Source : public Byte_Source {
 public:
  explicit Memory_Source(std::string_view bytes) : Rest(bytes) {}
  bool Fill(std::string& bytes) override;

 private:
  std::string_view Rest;
};

// One value in the spelling of the file, without the comma or line end behind it.
struct Raw_Value {
  std::string_view Text;
  bool Quoted = false;
  bool Doubled_Quotes = false;  // each pair in the text stands for one
};

// Cuts the bytes into values. The bytes come in portions, so a value may go on in the next one. A
// cut that runs into the end of the portion returns false; the caller then gets more bytes and
// reads again from where it stood before.
class Value_Cutter {
 public:
  // `all`: nothing follows what is in the portion.
  void Set(const char* first, const char* last, bool all) {
    At = first;
    Last = last;
    All = all;
  }
  const char* Place() const { return At; }
  std::int64_t Lines() const { return Line_Ends; }
  void Return_To(const char* place, std::int64_t lines) {
    At = place;
    Line_Ends = lines;
  }

  // Empty lines between records hold no values.
  bool Skip_Line_Ends() {
    for (;;) {
      if (At == Last) return All;
      if (!Is_Line_End(*At)) return true;
      if (*At == '\n' || (At + 1 != Last && At[1] != '\n')) ++Line_Ends;
      ++At;
    }
  }
  bool Ended() const { return At == Last; }

  // The next value; steps over the comma or line end behind it. Raises a fault for a text without
  // its closing quote.
  bool Cut(Raw_Value& value) {
    while (At != Last && Is_Blank(*At)) ++At;
    if (At == Last && !All) return false;
    return At != Last && *At == '"' ? Cut_Quoted(value) : Cut_Plain(value);
  }

 protected:
  static bool Is_Blank(char c) { return c == ' ' || c == '\t'; }
  static bool Is_Line_End(char c) { return c == '\r' || c == '\n'; }

  const char* At = nullptr;
  const char* Last = nullptr;
  bool All = false;
  std::int64_t Line_Ends = 0;

 private:
  bool Cut_Plain(Raw_Value& value) {
    const char* first = At;
    while (At != Last && *At != ',' && !Is_Line_End(*At)) ++At;
    if (At == Last && !All) return false;
    const char* last = At;
    while (last != first && Is_Blank(last[-1])) --last;
    value = {std::string_view(first, static_cast<std::size_t>(last - first)), false, false};
    return Separate();
  }

  bool Cut_Quoted(Raw_Value& value) {
    const char* first = ++At;
    bool doubled = false;
    for (;; ++At) {
      At = std::find(At, Last, '"');
      if (At == Last) {
        if (!All) return false;
        throw Fault(Fault_Number::Bad_File_Data, "a text has no closing quote");
      }
      const char* after = At + 1;
      if (after != Last && *after == '"') {
        doubled = true;
        At = after;
        continue;
      }
      while (after != Last && Is_Blank(*after)) ++after;
      if (after == Last && !All) return false;
      if (after == Last || *after == ',' || Is_Line_End(*after)) {
        value = {std::string_view(first, static_cast<std::size_t>(At - first)), true, doubled};
        At = after;
        return Separate();
      }
    }
  }

  // Past one comma or line end; CR LF is one.
  bool Separate() {
    if (At == Last) return true;
    if (*At == '\r') {
      if (At + 1 == Last && !All) return false;
      if (At + 1 != Last && At[1] == '\n') ++At;
    }
    if (*At != ',') ++Line_Ends;
    ++At;
    return true;
  }
};

// The values of a source one after the other. Empty lines hold none.
class Value_Stream {
 public:
  // `name` stands for the file in fault texts. The source outlives the stream.
  Value_Stream(Byte_Source& source, std::string_view name) : Source(source), Name(name) {}

  // The next value, whose text stays until the next call; absent at the end. Raises a fault with
  // file and line for a text without its closing quote, and what the source raises.
  std::optional<Raw_Value> Next();
  std::uint64_t Bytes_Taken() const { return Dropped; }

 private:
  void Get_More();

  Byte_Source& Source;
  std::string Name;
  std::string Bytes;
  bool All = false;  // nothing follows what is in Bytes
  bool At_Line_Start = true;
  Value_Cutter Cutter;
  std::uint64_t Dropped = 0;  // bytes in front of those in hand
};

// Appends a value as the file spells it, quotes included.
void Append_Spelled(std::string& text, const Raw_Value& value);

}  // namespace norvik
