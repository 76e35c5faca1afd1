#include "import/pipeline/line.h"

#include "core/fault.h"
#include "core/rounding.h"
#include "import/pipeline/numbers.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>

namespace norvik {

namespace {

constexpr std::size_t Chunk = 1 << 18;
constexpr std::string_view Missing = "#NULL#";

[[noreturn]] void Raise_File_Fault(const std::string& path, const char* what) {
  const Fault_Number number = errno == ENOENT   ? Fault_Number::File_Not_Found
                              : errno == EACCES ? Fault_Number::Permission_Denied
                              : errno == ENOSPC ? Fault_Number::Disk_Full
                                                : Fault_Number::Path_Access;
  throw Fault(number, std::string(what) + " " + path + " (" + std::strerror(errno) +
                          "). Free some space or check the working folder.");
}

File_Handle Open_File(const std::string& path, const char* mode) {
  File_Handle file(std::fopen(path.c_str(), mode));
  if (!file) Raise_File_Fault(path, "Cannot open the working file");
  return file;
}

void Put_Number(std::string& out, const Nullable& value, Line_Precision precision) {
  if (!value) {
    out += Missing;
    return;
  }
  char text[General_Text_Limit];
  char* end = precision == Line_Precision::Single ? Write_General(text, To_Single(*value))
                                                  : Write_General(text, *value);
  out.append(text, end);
}

void Put_Text(std::string& out, std::string_view text) {
  out += '"';
  for (const char c : text) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

// The fields of one text line, taken from the left.
struct Field_Source {
  std::string_view Rest;
  bool Ended = false;  // nothing is left, not even an empty last field

  std::string_view Next_Plain() {
    if (Ended) return Missing;
    const auto comma = Rest.find(',');
    const std::string_view field = Rest.substr(0, comma);
    Step_Over(comma == std::string_view::npos ? Rest.size() : comma);
    return field;
  }

  void Next_Text(std::string& text) {
    text.clear();
    if (Ended) return;
    if (Rest.empty() || Rest.front() != '"') {
      const std::string_view field = Next_Plain();
      if (field != Missing) text = field;
      return;
    }
    std::size_t at = 1;
    for (; at < Rest.size(); ++at) {
      if (Rest[at] == '"') {
        if (at + 1 >= Rest.size() || Rest[at + 1] != '"') break;
        ++at;
      }
      text += Rest[at];
    }
    Step_Over(std::min(at + 1, Rest.size()));
  }

 private:
  void Step_Over(std::size_t count) {
    Rest.remove_prefix(count);
    Ended = Rest.empty();
    if (!Ended) Rest.remove_prefix(1);
  }
};

Nullable Number_In(std::string_view field) {
  if (field == Missing) return {};
  double value = 0;
  const auto [end, failure] = std::from_chars(field.data(), field.data() + field.size(), value);
  if (failure != std::errc() || end != field.data() + field.size()) {
    throw Fault(Fault_Number::Type_Mismatch,
                "\"" + std::string(field.substr(0, 40)) + "\" in a line file is no number");
  }
  return value;
}

std::optional<std::int16_t> Whole_In(std::string_view field) {
  const Nullable value = Number_In(field);
  if (!value) return std::nullopt;
  return To_Int16(*value);
}

}  // namespace

std::optional<std::int16_t> Reversed_Type(std::optional<std::int16_t> type) {
  if (type == Arc_Clockwise) return Arc_Counter_Clockwise;
  if (type == Arc_Counter_Clockwise) return Arc_Clockwise;
  return type;
}

void Reverse_Line(ImportLine& line) {
  std::swap(line.X1, line.X2);
  std::swap(line.Y1, line.Y2);
  std::swap(line.Z1, line.Z2);
  line.Type = Reversed_Type(line.Type);
}

Line_File_Writer::Line_File_Writer(std::string path, Line_Form form, Mode mode,
                                   Line_Precision precision)
    : Path(std::move(path)),
      Form(form),
      XY_Precision(precision),
      Z_Precision(Line_Precision::Double),
      File(Open_File(Path, mode == Mode::Append ? "ab" : "wb")) {}

void Line_File_Writer::Write(const ImportLine& line) {
  const std::size_t record_start = Buffer.size();
  const auto put = [&](const Nullable& value, Line_Precision precision) {
    Put_Number(Buffer, value, precision);
    Buffer += ',';
  };
  try {
    const bool planar = Form == Line_Form::Four;
    put(line.X1, XY_Precision);
    put(line.Y1, XY_Precision);
    if (!planar) put(line.Z1, Z_Precision);
    put(line.X2, XY_Precision);
    put(line.Y2, XY_Precision);
    if (!planar) {
      put(line.Z2, Z_Precision);
      put(line.I, Line_Precision::Double);
      put(line.J, Line_Precision::Double);
      put(line.Type ? Nullable(*line.Type) : Nullable(), Line_Precision::Double);
      Put_Text(Buffer, line.Layer);
      Buffer += ',';
    }
    if (Form == Line_Form::Thirteen) {
      Put_Text(Buffer, line.Cut_Feed);
      Buffer += ',';
      Put_Text(Buffer, line.Plunge_Feed);
      Buffer += ',';
      Buffer += std::to_string(line.Pen);
      Buffer += ',';
    }
  } catch (...) {  // A record is written whole or not at all.
    Buffer.resize(record_start);
    throw;
  }
  Buffer.back() = '\r';
  Buffer += '\n';
  if (Buffer.size() >= Chunk) Flush();
}

void Line_File_Writer::Flush() {
  const std::size_t wanted = Buffer.size();
  const std::size_t written = std::fwrite(Buffer.data(), 1, wanted, File.get());
  Buffer.clear();
  if (written != wanted) Raise_File_Fault(Path, "Cannot write");
}

void Line_File_Writer::Close() {
  Flush();
  std::FILE* file = File.release();
  if (std::fclose(file) != 0) Raise_File_Fault(Path, "Cannot write");
}

Line_File_Reader::Line_File_Reader(const std::string& path, Line_Form form)
    : Form(form), File(Open_File(path, "rb")) {
  std::fseek(File.get(), 0, SEEK_END);
  Bytes_Total = static_cast<std::uint64_t>(std::max(std::ftell(File.get()), 0L));
  std::rewind(File.get());
}

double Line_File_Reader::Share() const {
  return Bytes_Total == 0 ? 1.0
                          : static_cast<double>(Bytes_Taken) / static_cast<double>(Bytes_Total);
}

bool Line_File_Reader::Next_Text_Line(std::string_view& text) {
  for (;;) {
    const auto newline = Buffer.find('\n', At);
    if (newline != std::string::npos || (At_End && At < Buffer.size())) {
      const std::size_t stop = newline != std::string::npos ? newline : Buffer.size();
      text = std::string_view(Buffer).substr(At, stop - At);
      Bytes_Taken += stop - At + 1;
      At = std::min(stop + 1, Buffer.size());
      if (text.ends_with('\r')) text.remove_suffix(1);
      return true;
    }
    if (At_End) return false;
    Buffer.erase(0, At);
    At = 0;
    const std::size_t held = Buffer.size();
    Buffer.resize(held + Next_Read);
    const std::size_t got = std::fread(Buffer.data() + held, 1, Next_Read, File.get());
    Buffer.resize(held + got);
    At_End = got < Next_Read;
    Next_Read = std::min(Next_Read * 4, Chunk);
  }
}

bool Line_File_Reader::Read(ImportLine& line) {
  std::string_view text;
  do {
    if (!Next_Text_Line(text)) return false;
  } while (text.empty());

  const bool planar = Form == Line_Form::Four;
  Field_Source fields{text};
  line.X1 = Number_In(fields.Next_Plain());
  line.Y1 = Number_In(fields.Next_Plain());
  line.Z1 = planar ? Nullable() : Number_In(fields.Next_Plain());
  line.X2 = Number_In(fields.Next_Plain());
  line.Y2 = Number_In(fields.Next_Plain());
  if (planar) return true;
  line.Z2 = Number_In(fields.Next_Plain());
  line.I = Number_In(fields.Next_Plain());
  line.J = Number_In(fields.Next_Plain());
  line.Type = Whole_In(fields.Next_Plain());
  fields.Next_Text(line.Layer);
  if (Form == Line_Form::Ten) return true;
  fields.Next_Text(line.Cut_Feed);
  fields.Next_Text(line.Plunge_Feed);
  line.Pen = Whole_In(fields.Next_Plain()).value_or(-9999);
  return true;
}

}  // namespace norvik
