#include "compiler/tables/fields.h"
#include "compiler/tables/tables_io.h"
#include "compiler/tables/value_stream.h"
#include "core/number_text.h"
#include "core/paths.h"
#include "core/rounding.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace norvik {

namespace {

// Keeps the texts of a table. A text equal to the one before is kept once: the chords of an arc and
// the records of a line all carry the text of their line.
class Text_Store {
 public:
  std::string_view Keep(std::string_view text) {
    if (text == Last) return Last;
    if (text.size() > Left) {
      const std::size_t size = std::max<std::size_t>(text.size(), 1 << 16);
      Blocks.push_back(std::make_unique_for_overwrite<char[]>(size));
      At = Blocks.back().get();
      Left = size;
    }
    std::copy(text.begin(), text.end(), At);
    Last = {At, text.size()};
    At += text.size();
    Left -= text.size();
    return Last;
  }

 private:
  std::vector<std::unique_ptr<char[]>> Blocks;
  char* At = nullptr;
  std::size_t Left = 0;
  std::string_view Last;
};

// Reads a field at once where it is spelled as this program's own writer spells it.
class Field_Cutter : public Value_Cutter {
 public:
  // The fast way, for a value spelled exactly as this program's own writer spells it. Returns false
  // and changes no place for any other spelling; `Cut` then reads it. It asks for 64 bytes to be at
  // hand, more than any such number takes, and so needs no check for the end on the way.
  template <class Field>
  bool Quick(Field& field, Text_Store& texts) {
    constexpr std::ptrdiff_t room = 64;
    return Last - At >= room && Quick_Value(field, texts);
  }

 private:
  // True when a comma or line end follows at `at`, so that the value is complete; steps over it.
  bool Quick_End(const char* at) {
    if (Last - at < 2) return false;
    if (*at == ',') {
      At = at + 1;
      return true;
    }
    if (*at != '\r' || at[1] != '\n') return false;
    At = at + 2;
    ++Line_Ends;
    return true;
  }
  bool Quick_Absent() { return std::memcmp(At, "#NULL#", 6) == 0 && Quick_End(At + 6); }

  template <class Number>
  bool Quick_Number(Number& field) {
    Number number = 0;
    const char* end = Parse_Plain_Number(At, number);
    if constexpr (std::is_floating_point_v<Number>) {
      if (end == At) end = Parse_Long_Number(At, Last, number);
    }
    if (end == At || !Quick_End(end)) return false;
    field = number;
    return true;
  }
  bool Quick_Digit(std::int16_t& field) {
    const char digit = *At;
    if (digit < '0' || digit > '9' || !Quick_End(At + 1)) return false;
    field = static_cast<std::int16_t>(digit - '0');
    return true;
  }

  bool Quick_Value(Nullable& field, Text_Store&) {
    if (*At == '#') {
      field.reset();
      return Quick_Absent();
    }
    double number = 0;
    if (!Quick_Number(number)) return false;
    field = number;
    return true;
  }
  bool Quick_Value(float& field, Text_Store&) { return Quick_Number(field); }
  bool Quick_Value(std::int32_t& field, Text_Store&) { return Quick_Number(field); }
  bool Quick_Value(std::int16_t& field, Text_Store&) { return Quick_Digit(field); }
  bool Quick_Value(std::optional<std::int16_t>& field, Text_Store&) {
    field.reset();
    return *At == '#' ? Quick_Absent() : Quick_Digit(field.emplace());
  }
  bool Quick_Value(bool& field, Text_Store&) {
    field = At[1] == 'T';
    const char* word = field ? "#TRUE#" : "#FALSE#";
    const std::size_t length = field ? 6 : 7;
    return std::memcmp(At, word, length) == 0 && Quick_End(At + length);
  }
  bool Quick_Value(Record_Type&, Text_Store&) { return false; }
  bool Quick_Value(std::string_view& field, Text_Store& texts) {
    if (*At != '"') return false;
    const char* first = At + 1;
    const auto* quote =
        static_cast<const char*>(std::memchr(first, '"', static_cast<std::size_t>(Last - first)));
    if (quote == nullptr || !Quick_End(quote + 1)) return false;
    field = texts.Keep({first, static_cast<std::size_t>(quote - first)});
    return true;
  }
};

bool Is_Null(const Raw_Value& value) {
  return !value.Quoted && value.Text == "#NULL#";
}
bool Is_Absent(const Raw_Value& value) {
  return value.Text.empty() || Is_Null(value);
}

[[noreturn]] void Refuse(std::string_view text, const char* what) {
  constexpr std::size_t shown = 40;
  throw Fault(Fault_Number::Bad_File_Data,
              "\"" + std::string(text.substr(0, shown)) + "\" is no " + what);
}

template <class Real>
Real Number_Of(const Raw_Value& value) {
  if (value.Text.empty()) return 0;
  Real number = 0;
  const char* first = value.Text.data();
  if (!Parse_Number(first, first + value.Text.size(), number)) Refuse(value.Text, "number");
  return number;
}

void Take(const Raw_Value& value, Nullable& field, Text_Store&) {
  field = Is_Absent(value) ? Nullable() : Nullable(Number_Of<double>(value));
}
void Take(const Raw_Value& value, float& field, Text_Store&) {
  field = Number_Of<float>(value);
}
void Take(const Raw_Value& value, std::int16_t& field, Text_Store&) {
  if (value.Text.size() == 1 && value.Text[0] >= '0' && value.Text[0] <= '9') {
    field = static_cast<std::int16_t>(value.Text[0] - '0');
  } else {
    field = To_Int16(Number_Of<double>(value));
  }
}
void Take(const Raw_Value& value, std::int32_t& field, Text_Store&) {
  field = To_Int32(Number_Of<double>(value));
}
void Take(const Raw_Value& value, std::optional<std::int16_t>& field, Text_Store& texts) {
  field.reset();
  if (!Is_Absent(value)) Take(value, field.emplace(), texts);
}
void Take(const Raw_Value& value, bool& field, Text_Store&) {
  if (value.Text == "#TRUE#" || value.Text == "#FALSE#") {
    field = value.Text == "#TRUE#";
    return;
  }
  const std::string word = Upper(value.Text);
  if (word == "TRUE" || word == "FALSE" || word == "#TRUE#" || word == "#FALSE#") {
    field = word.find("TRUE") != std::string::npos;
  } else {
    field = Number_Of<double>(value) != 0;
  }
}
void Take(const Raw_Value& value, Record_Type& field, Text_Store&) {
  field = value.Text == "0"   ? Record_Type::Control
          : value.Text == "1" ? Record_Type::Line
          : value.Text == "2" ? Record_Type::Arc
                              : Record_Type::Other;
}
void Take(const Raw_Value& value, std::string_view& field, Text_Store& texts) {
  if (Is_Null(value)) {
    field = {};
  } else if (!value.Doubled_Quotes) {
    field = texts.Keep(value.Text);
  } else {
    std::string text(value.Text);
    for (std::size_t at = text.find("\"\""); at != text.npos; at = text.find("\"\"", at + 1)) {
      text.erase(at, 1);
    }
    field = texts.Keep(text);
  }
}

template <class Record>
class Table_Reader {
 public:
  Table_Reader(Byte_Source& source, std::string_view name) : Source(source), Name(name) {}

  Table<Record> Read(std::size_t limit) {
    while (Result.Rows.size() < limit && Take_Record()) {
    }
    Result.Texts = std::move(Texts);
    return std::move(Result);
  }

 private:
  // The next record of the file into the table; false at the end.
  bool Take_Record() {
    for (;;) {
      const char* start = Cutter.Place();
      const std::int64_t lines = Cutter.Lines();
      if (Cutter.Skip_Line_Ends()) {
        if (Cutter.Ended()) return false;
        Record record;
        if (Take_Fields(record)) {
          Result.Rows.push_back(record);
          return true;
        }
      }
      Cutter.Return_To(start, lines);
      Get_More();
    }
  }

  bool Take_Fields(Record& record) {
    bool complete = true;
    const char* field = "";
    try {
      For_Each_Field<Record>([&](const auto& row) {
        if (!complete) return;
        if (Cutter.Quick(row.Of(record), *Texts)) return;
        field = row.Name;
        Raw_Value value;
        if (Cutter.Ended() && All) Raise_Cut_Off();
        complete = Cutter.Cut(value);
        if (complete) Take(value, row.Of(record), *Texts);
      });
    } catch (const Fault& fault) {
      throw Fault(fault.Number, Name + ", line " + std::to_string(Cutter.Lines() + 1) + ", field " +
                                    field + ": " + fault.Description);
    }
    return complete;
  }

  [[noreturn]] static void Raise_Cut_Off() {
    throw Fault(Fault_Number::Bad_File_Data,
                "the file ends within a record; compile the program again");
  }

  // Drops what has been used and appends what follows.
  void Get_More() {
    const char* place = Cutter.Place();
    if (place != nullptr) Bytes.erase(0, static_cast<std::size_t>(place - Bytes.data()));
    if (!Source.Fill(Bytes)) All = true;
    Cutter.Set(Bytes.data(), Bytes.data() + Bytes.size(), All);
  }

  Byte_Source& Source;
  std::string Name;
  std::string Bytes;
  bool All = false;  // nothing follows what is in Bytes
  Field_Cutter Cutter;
  std::shared_ptr<Text_Store> Texts = std::make_shared<Text_Store>();
  Table<Record> Result;
};

template <class Record>
Table<Record> Read_Table(const std::string& path, std::size_t limit) {
  File_Source file(path);
  return Table_Reader<Record>(file, path).Read(limit);
}

template <class Record>
Table<Record> Parse_Table(std::string_view bytes, std::string_view name, std::size_t limit) {
  Memory_Source source(bytes);
  return Table_Reader<Record>(source, name).Read(limit);
}

}  // namespace

Table<LineArc> Read_LineArc_Table(const std::string& path, std::size_t limit) {
  return Read_Table<LineArc>(path, limit);
}
Table<Wire> Read_Wire_Table(const std::string& path, std::size_t limit) {
  return Read_Table<Wire>(path, limit);
}
Table<LineArc> Parse_LineArc_Table(std::string_view bytes, std::string_view name,
                                   std::size_t limit) {
  return Parse_Table<LineArc>(bytes, name, limit);
}
Table<Wire> Parse_Wire_Table(std::string_view bytes, std::string_view name, std::size_t limit) {
  return Parse_Table<Wire>(bytes, name, limit);
}

}  // namespace norvik
