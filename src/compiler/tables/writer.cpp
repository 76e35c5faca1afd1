#include "compiler/tables/fields.h"
#include "compiler/tables/tables_io.h"
#include "core/number_text.h"
#include "core/paths.h"
#include "core/replacement_file.h"

#include <cstring>

namespace norvik {

namespace {

constexpr std::size_t Flush_Size = 1 << 18;

// The buffer between records and file. A record reserves its room once, then its fields are put
// without further checks.
class Field_Buffer {
 public:
  // Room for `fields` numbers and the text.
  void Reserve(std::size_t fields, std::size_t text_length) {
    const std::size_t needed = Used() + fields * Number_Text_Limit + 2 * text_length + 64;
    if (needed <= Bytes.size()) return;
    const std::size_t used = Used();
    Bytes.resize(needed + Flush_Size);
    At = Bytes.data() + used;
  }

  void Put(std::int16_t value) {
    // Nearly all are a single digit.
    if (value >= 0 && value <= 9) {
      *At++ = static_cast<char>('0' + value);
    } else {
      At = Print_Number(At, std::int32_t{value});
    }
  }
  void Put(std::int32_t value) { At = Print_Number(At, value); }
  void Put(float value) { At = Singles.Print(At, value); }
  void Put(Nullable value) {
    if (value) {
      At = Doubles.Print(At, *value);
    } else {
      Put_Word("#NULL#");
    }
  }
  void Put(std::optional<std::int16_t> value) {
    if (value) {
      Put(*value);
    } else {
      Put_Word("#NULL#");
    }
  }
  void Put(bool value) {
    if (value) {
      Put_Word("#TRUE#");
    } else {
      Put_Word("#FALSE#");
    }
  }
  void Put(Record_Type value) {
    *At++ = '"';
    Put(static_cast<std::int16_t>(value));
    *At++ = '"';
  }
  void Put(std::string_view text) {
    *At++ = '"';
    for (;;) {
      const std::size_t quote = text.find('"');
      const std::string_view piece = text.substr(0, quote);
      At += piece.copy(At, piece.size());
      if (quote == std::string_view::npos) break;
      *At++ = '"';
      *At++ = '"';
      text.remove_prefix(quote + 1);
    }
    *At++ = '"';
  }
  void End_Field() { *At++ = ','; }
  // In place of the last comma.
  void End_Record() {
    At[-1] = '\r';
    *At++ = '\n';
  }

  std::size_t Used() const { return static_cast<std::size_t>(At - Bytes.data()); }
  std::string_view Text() const { return {Bytes.data(), Used()}; }
  void Clear() { At = Bytes.data(); }

 private:
  template <std::size_t N>
  void Put_Word(const char (&word)[N]) {
    std::memcpy(At, word, N - 1);
    At += N - 1;
  }

  std::string Bytes;
  char* At = Bytes.data();
  Recent_Texts<double> Doubles;
  Recent_Texts<float> Singles;
};

std::string_view Text_Of(const LineArc& record) {
  return record.SourceText;
}
std::string_view Text_Of(const Wire& record) {
  return record.Block_Text;
}

}  // namespace

template <class Record>
struct Table_Writer<Record>::Work {
  explicit Work(const std::string& path) : File(path) {}

  void Flush() {
    File.Write(Buffer.Text());
    Buffer.Clear();
  }

  Replacement_File File;
  Field_Buffer Buffer;
};

template <class Record>
Table_Writer<Record>::Table_Writer(const std::string& path) : Inner(std::make_unique<Work>(path)) {}

template <class Record>
Table_Writer<Record>::~Table_Writer() = default;

template <class Record>
void Table_Writer<Record>::Add(const Record& record) {
  Field_Buffer& buffer = Inner->Buffer;
  buffer.Reserve(Field_Count<Record>, Text_Of(record).size());
  For_Each_Field<Record>([&](const auto& row) {
    buffer.Put(row.Of(record));
    buffer.End_Field();
  });
  buffer.End_Record();
  if (buffer.Used() >= Flush_Size) Inner->Flush();
}

template <class Record>
void Table_Writer<Record>::Finish() {
  Inner->Flush();
  Inner->File.Commit(Flush_To_Disk::No);
}

template class Table_Writer<LineArc>;
template class Table_Writer<Wire>;

namespace {

template <class Record>
void Write_Table(const std::string& path, const Table<Record>& table) {
  Table_Writer<Record> file(path);
  for (const Record& record : table.Rows) file.Add(record);
  file.Finish();
}

}  // namespace

void Write_LineArc_Table(const std::string& path, const Table<LineArc>& table) {
  Write_Table(path, table);
}

void Write_Wire_Table(const std::string& path, const Table<Wire>& table) {
  Write_Table(path, table);
}

}  // namespace norvik
