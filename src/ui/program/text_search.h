// text_search.h: what the find bar looks for, and what it puts in its place.
#pragma once

#include <optional>

#include <QRegularExpression>
#include <QString>
#include <QStringList>

namespace norvik {

struct Search_Options {
  QString Text;
  bool Match_Case = false;
  bool Whole_Word = false;
  bool Is_Pattern = false;  // `Text` is a regular expression
};

// A place in a line: its characters from `Start` on.
struct Search_Hit {
  int Start = 0, Length = 0;
};

// Looks for one thing in single lines; a place without a character is no hit.
class Text_Search {
 public:
  explicit Text_Search(const Search_Options& options);

  // False for an empty text or a faulty pattern, which `Problem` tells.
  bool Is_Valid() const { return Valid; }
  QString Problem() const;

  // The first hit that begins at or behind `from`; the last one that ends at or before `to`.
  std::optional<Search_Hit> Next(const QString& line, int from) const;
  std::optional<Search_Hit> Previous(const QString& line, int to) const;
  // The whole of `text` is a hit.
  bool Is_Hit(const QString& text) const;

  // The line with the hits between `from` and `to` replaced; counts them. In a replacement for a
  // pattern, \1 to \9 stand for its groups and \0 for the hit.
  QString Replaced(const QString& line, int from, int to, const QString& replacement,
                   int& count) const;

 private:
  QString Expanded(const QRegularExpressionMatch& match, const QString& replacement) const;

  QRegularExpression Pattern;
  bool Is_Pattern, Valid;
};

}  // namespace norvik
