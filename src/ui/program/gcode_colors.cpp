#include "ui/program/gcode_colors.h"

#include "compiler/text/codes.h"
#include "compiler/text/macros.h"
#include "ui/widgets/theme.h"

#include <optional>

namespace norvik {

namespace {

enum class Word_Kind {
  Code,
  Harmless_Code,
  Ignored_Code,
  Coordinate,
  Centre,
  Feed,
  Number,
  Unread,
  Comment
};

QTextCharFormat Format_Of(Word_Kind kind) {
  const bool dark = Theme_Is_Dark();
  const auto color = [dark](QRgb light, QRgb night) { return QColor(dark ? night : light); };
  QTextCharFormat format;
  const auto underline = [&format] {
    format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
    format.setUnderlineColor(Colors().Warn);
  };
  switch (kind) {
    case Word_Kind::Code:
      format.setForeground(color(0x0B4F9E, 0x7CC0FF));
      format.setFontWeight(QFont::Bold);
      break;
    case Word_Kind::Harmless_Code:
      format.setForeground(Colors().Muted);
      break;
    case Word_Kind::Ignored_Code:
    case Word_Kind::Unread:
      format.setForeground(Colors().Warn);
      underline();
      break;
    case Word_Kind::Coordinate:
      format.setForeground(color(0x1C2127, 0xE6E9ED));
      break;
    case Word_Kind::Centre:
      format.setForeground(color(0x6A2C91, 0xD3A4F2));
      break;
    case Word_Kind::Feed:
      format.setForeground(color(0x8A3B12, 0xF2B27C));
      break;
    case Word_Kind::Number:
      format.setForeground(Colors().Muted);
      break;
    case Word_Kind::Comment:
      format.setForeground(color(0x2E7D32, 0x86C98A));
      format.setFontItalic(true);
      break;
  }
  return format;
}

struct Span {
  int Start, End;
};

// The one comment that the reader cuts out: the first "[", else "{", else "(", else "'", up to the
// first closer of any kind in the order "]", "}", ")", "'".
std::optional<Span> Comment_Of(const QString& line) {
  for (const QChar opener : QStringLiteral("[{('")) {
    const auto start = line.indexOf(opener);
    if (start < 0) continue;
    for (const QChar closer : QStringLiteral("]})'")) {
      const auto end = line.indexOf(closer, start);
      if (end >= 0) return Span{static_cast<int>(start), static_cast<int>(end + 1)};
    }
    return Span{static_cast<int>(start), static_cast<int>(line.size())};
  }
  return std::nullopt;
}

Word_Kind Kind_Of_Code(char letter, const QString& digits) {
  bool numeric = false;
  const double number = digits.trimmed().toDouble(&numeric);
  if (!numeric || number < 0 || number > 1000) return Word_Kind::Ignored_Code;
  const std::int8_t place = Find_Code(letter, static_cast<std::int16_t>(number));
  if (place == No_Code) return Word_Kind::Ignored_Code;
  switch (Code_Table()[static_cast<std::size_t>(place)].Loss) {
    case Code_Loss::Nothing:
      return Word_Kind::Code;
    case Code_Loss::Harmless:
      return Word_Kind::Harmless_Code;
    case Code_Loss::Ignored:
    case Code_Loss::Missing:
      break;
  }
  return Word_Kind::Ignored_Code;
}

Word_Kind Kind_Of_Word(char letter, const QString& value) {
  switch (letter) {
    case 'G':
    case 'M':
      return Kind_Of_Code(letter, value);
    case 'X':
    case 'Y':
    case 'Z':
    case 'A':
    case 'B':
    case 'C':
      return Word_Kind::Coordinate;
    case 'I':
    case 'J':
    case 'K':
    case 'R':
      return Word_Kind::Centre;
    case 'F':
    case 'S':
    case 'T':
    case 'P':
    case 'Q':
    case 'L':
    case 'D':
    case 'H':
      return Word_Kind::Feed;
    case 'N':
      return Word_Kind::Number;
    default:
      return Word_Kind::Unread;
  }
}

// The call of a macro, and whether it runs one.
struct Call_Span {
  Span Where;
  bool Runs;
};
std::optional<Call_Span> Call_Of(const QString& line) {
  const auto call = Find_Macro_Call(line.toLatin1().toStdString());  // a character for each
  if (!call) return std::nullopt;
  return Call_Span{{static_cast<int>(call->Begin), static_cast<int>(call->End)},
                   Macro_File(call->Number).has_value()};
}

}  // namespace

QList<QTextLayout::FormatRange> GCode_HighlightWords(const QString& line) {
  QList<QTextLayout::FormatRange> formats;
  const auto add = [&formats](int start, int end, Word_Kind kind) {
    formats.push_back({start, end - start, Format_Of(kind)});
  };
  const std::optional<Span> comment = Comment_Of(line);
  if (comment) add(comment->Start, comment->End, Word_Kind::Comment);
  // A line with a call is not read but for it, be it within a comment. Behind the comment: what
  // comes later covers it.
  const std::optional<Call_Span> call = Call_Of(line);
  if (call)
    add(call->Where.Start, call->Where.End, call->Runs ? Word_Kind::Code : Word_Kind::Ignored_Code);

  const auto is_letter = [&line](int at) {
    const QChar sign = line[at].toUpper();
    return sign >= u'A' && sign <= u'Z';
  };
  const int end = static_cast<int>(line.size());
  int at = 0;
  while (at < end) {
    if (comment && at == comment->Start) {
      at = comment->End;
      continue;
    }
    if (call && at == call->Where.Start) {
      at = call->Where.End;
      continue;
    }
    if (!is_letter(at)) {
      ++at;
      continue;
    }
    int stop = at + 1;
    const auto inside = [&](int place) {
      return place < end && !is_letter(place) && !(comment && place == comment->Start) &&
             !(call && place == call->Where.Start);
    };
    if (line.mid(at, 9).compare(u"ENDREPEAT", Qt::CaseInsensitive) == 0) {
      stop = at + 9;
    } else if (line.mid(at, 6).compare(u"REPEAT", Qt::CaseInsensitive) == 0) {
      stop = at + 6;
    }
    const bool keyword = stop > at + 1;
    while (inside(stop)) ++stop;
    const char letter = line[at].toUpper().toLatin1();
    Word_Kind kind =
        keyword ? Word_Kind::Code : Kind_Of_Word(letter, line.mid(at + 1, stop - at - 1));
    if (call && letter != 'N') kind = Word_Kind::Unread;
    add(at, stop, kind);
    at = stop;
  }
  return formats;
}

}  // namespace norvik
