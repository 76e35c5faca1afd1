// gcode_lines.h: a file of numbered G-code lines.
//
// A line is "N" + running number + statement + CR LF: "N001 G00 Z0.5". Lines are written through
// one buffer, so that a file of any length takes constant memory.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace norvik {

class GCode_Lines {
 public:
  // Replaces `path`. Raises a file fault whose text ends in `what_to_do`.
  GCode_Lines(std::string path, std::string what_to_do);

  // One numbered line.
  void Line(std::string_view statement);

  // The same word by word. A line that is not ended, since a word of it failed, is not printed at
  // all and does not count. `Word` raises a type fault for what is no number, an overflow fault for
  // infinity.
  void Begin(std::string_view statement);
  void Word(std::string_view letter, double value);
  void Text(std::string_view text) { Buffer += text; }
  void End();

  // Writes what is left and closes. Must be called; raises a file fault.
  void Close();
  std::int64_t Lines_Printed() const { return Sequence - 1; }

 private:
  struct File_Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  void Flush();
  [[noreturn]] void Raise_Write_Fault() const;

  std::string Path, What_To_Do;
  std::unique_ptr<std::FILE, File_Closer> File;
  std::string Buffer;
  std::size_t Line_Start = 0;
  bool Failed = false;
  std::int64_t Sequence = 1;
};

}  // namespace norvik
