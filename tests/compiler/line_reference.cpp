#include "line_reference.h"

#include "core/application.h"
#include "core/format.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/rounding.h"

#include <algorithm>

namespace norvik {

namespace {

// --- Text functions with positions from 1 --------------------------------------------------------

int Length(const std::string& text) {
  return static_cast<int>(text.size());
}

// Position of `what` from position `from` on, 0 when there is none.
int In_Text(int from, const std::string& text, const std::string& what) {
  const auto place = text.find(what, static_cast<std::size_t>(from - 1));
  return place == std::string::npos ? 0 : static_cast<int>(place) + 1;
}

std::string Left(const std::string& text, int count) {
  return text.substr(0, static_cast<std::size_t>(std::max(count, 0)));
}

std::string Right(const std::string& text, int count) {
  const int held = std::clamp(count, 0, Length(text));
  return text.substr(static_cast<std::size_t>(Length(text) - held));
}

std::string Middle(const std::string& text, int from, int count) {
  if (count < 0) throw Fault(Fault_Number::Invalid_Call, "Negative length");
  if (from > Length(text)) return "";
  return text.substr(static_cast<std::size_t>(from - 1), static_cast<std::size_t>(count));
}

// --- The reader ----------------------------------------------------------------------------------

struct Reference_Reader {
  Block& Result;
  Word_Values& Last;
  bool BlockDone = false;

  void Look_At_Rest(const std::string& line) {
    if (Length(line) < 2) BlockDone = true;
  }

  int End_Of_Word(const std::string& line, int p) {
    const int blank = In_Text(p, line, " ");
    return blank == 0 ? Length(line) + 1 : blank;
  }

  void Cut(std::string& line, int p, int e) {
    line = Left(line, p - 1) + Right(line, Length(line) - e);
    Look_At_Rest(line);
  }

  std::string ReadComment(std::string& line) {
    int opener = 0;
    for (const char* kind : {"[", "{", "(", "'"}) {
      if (opener == 0) opener = In_Text(1, line, kind);
    }
    std::string comment;
    if (opener != 0) {
      int closer = 0;
      for (const char* kind : {"]", "}", ")", "'"}) {
        if (closer == 0) closer = In_Text(opener, line, kind);
      }
      if (closer == 0) closer = Length(line);
      comment = Middle(line, opener + 1, closer - opener - 1);
      line = Left(line, opener - 1) + Right(line, Length(line) - closer);
    }
    Look_At_Rest(line);
    return comment;
  }

  void ReadRepeat(const std::string& keyword, std::string& line) {
    line = Upper(line);
    if (Length(keyword) > Length(line)) return;
    const int p = In_Text(1, line, keyword);
    if (p == 0) return;
    const int e = End_Of_Word(line, p);
    if (keyword == "ENDREPEAT") {
      Result.WordRepeat = Repeat_End_Mark;
    } else {
      const int from = p + Length(keyword);
      const auto digits = NumbersOnly(Middle(line, from, e - from));
      if (digits) Result.WordRepeat = NullToZero(*digits);
    }
    Cut(line, p, e);
  }

  std::optional<std::string> ReadInteger(const std::string& letter, std::string& line) {
    line = Upper(line);
    const int p = In_Text(1, line, letter);
    if (p == 0) return std::nullopt;
    const int e = End_Of_Word(line, p);
    std::string value = Middle(line, p + 1, e - p - 1);
    Cut(line, p, e);
    return value;
  }

  std::optional<std::string> ReadNumber(const std::string& letter, std::string& line) {
    line = Upper(line);
    const int p = In_Text(1, line, letter);
    if (p == 0) return std::nullopt;
    int e = End_Of_Word(line, p);
    std::string value = Middle(line, p + 1, e - p - 1);
    int i = 1;
    while (i <= Length(value) &&
           In_Text(1, "0123456789.,-+", value.substr(static_cast<std::size_t>(i - 1), 1)) != 0) {
      ++i;
    }
    if (i <= Length(value)) {
      value = Middle(line, p + 1, i - p);
      e = i;
    }
    const std::string other = Application.DecimalSeparator == '.' ? "," : ".";
    const int sign = In_Text(1, value, other);
    if (sign != 0) value[static_cast<std::size_t>(sign - 1)] = Application.DecimalSeparator;
    Cut(line, p, e);
    return value;
  }

  template <class Set>
  void ReadCodes(const std::string& letter, std::string& line, Set set) {
    for (int round = 0; round < 999; ++round) {
      line = Upper(line);
      const int p = In_Text(1, line, letter);
      if (p == 0) return;
      const int e = End_Of_Word(line, p);
      const std::string digits = Trim(Middle(line, p + 1, e - p - 1));
      set(To_Int16(To_Double(RegionalFix(digits))));
      Cut(line, p, e);
    }
  }

  void Read_Word(int name, std::string& line) {
    const std::string letter(1, word::Letters[name]);
    std::optional<double> value;
    if (name == word::L) {
      const auto text = ReadInteger(letter, line);
      if (text) value = To_Double(Format_Number(To_Double(RegionalFix(*text)), "0"));
    } else {
      const auto text = ReadNumber(letter, line);
      if (text) value = To_Double(Format_Axis_Number(To_Double(*text)));
    }
    if (!value) return;
    Result.Words[name] = *value;
    Last[name] = *value;
  }

  void ReadBlock(std::string line) {
    // The comment is a view; only its text is compared.
    Result.Comment = {};
    ReadComment(line);
    if (!BlockDone) ReadRepeat("ENDREPEAT", line);
    if (!BlockDone) ReadRepeat("REPEAT", line);
    if (!BlockDone) ReadInteger("N", line);
    if (!BlockDone) ReadCodes("M", line, [&](std::int16_t n) { Result.Set_M(n); });
    if (!BlockDone) ReadCodes("G", line, [&](std::int16_t n) { Result.Set_G(n); });
    for (int name = 0; name < word::Count; ++name) {
      if (!BlockDone) Read_Word(name, line);
    }
  }
};

}  // namespace

Reference_Reading Read_By_Reference(const std::string& text, const Word_Values& last) {
  Reference_Reading result;
  result.Last = last;
  Reference_Reader reader{result.Read, result.Last};
  try {
    reader.ReadBlock(text);
  } catch (const Fault&) {
    result.Fault = true;
  }
  return result;
}

}  // namespace norvik
