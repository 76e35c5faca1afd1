#include "core/gcode_lines.h"

#include "core/fault.h"
#include "core/general_text.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <utility>

namespace norvik {

namespace {

constexpr std::size_t Chunk = 1 << 18;

}  // namespace

void GCode_Lines::Raise_Write_Fault() const {
  throw Fault(
      errno == ENOSPC ? Fault_Number::Disk_Full : Fault_Number::Path_Access,
      "Cannot write the program " + Path + " (" + std::strerror(errno) + "). " + What_To_Do);
}

GCode_Lines::GCode_Lines(std::string path, std::string what_to_do)
    : Path(std::move(path)),
      What_To_Do(std::move(what_to_do)),
      File(std::fopen(Path.c_str(), "wb")) {
  if (!File) Raise_Write_Fault();
}

void GCode_Lines::Begin(std::string_view statement) {
  Buffer.resize(Line_Start);  // whatever an abandoned line left
  char number[24];
  const auto end = std::to_chars(number, number + sizeof number, Sequence).ptr;
  Buffer += 'N';
  for (auto digits = end - number; digits < 3; ++digits) Buffer += '0';
  Buffer.append(number, end);
  Buffer += ' ';
  Buffer += statement;
}

void GCode_Lines::Word(std::string_view letter, double value) {
  char number[General_Text_Limit];
  Buffer += letter;
  Buffer.append(number, Write_General(number, value));
}

void GCode_Lines::End() {
  Buffer += "\r\n";
  ++Sequence;
  if (Buffer.size() >= Chunk) Flush();
  Line_Start = Buffer.size();
}

void GCode_Lines::Line(std::string_view statement) {
  Begin(statement);
  End();
}

// After a failed write nothing more is written, so that no program with a hole comes out; Close
// says so.
void GCode_Lines::Flush() {
  const std::size_t wanted = Buffer.size();
  if (!Failed) Failed = std::fwrite(Buffer.data(), 1, wanted, File.get()) != wanted;
  Buffer.clear();
  Line_Start = 0;
}

void GCode_Lines::Close() {
  Buffer.resize(Line_Start);
  Flush();
  std::FILE* file = File.release();
  if (std::fclose(file) != 0 || Failed) Raise_Write_Fault();
}

}  // namespace norvik
