#include "ui/program/text_search.h"

namespace norvik {

namespace {

QString Pattern_Of(const Search_Options& options) {
  const QString text = options.Is_Pattern ? options.Text : QRegularExpression::escape(options.Text);
  // A letter and its number are one word: X1 is not found in X10.
  return options.Whole_Word ? QString("(?<![\\w.])(?:%1)(?![\\w.])").arg(text) : text;
}

}  // namespace

Text_Search::Text_Search(const Search_Options& options)
    : Pattern(Pattern_Of(options), options.Match_Case ? QRegularExpression::NoPatternOption
                                                      : QRegularExpression::CaseInsensitiveOption),
      Is_Pattern(options.Is_Pattern),
      Valid(!options.Text.isEmpty() && Pattern.isValid()) {}

QString Text_Search::Problem() const {
  return Pattern.isValid() ? QString() : "No pattern: " + Pattern.errorString();
}

std::optional<Search_Hit> Text_Search::Next(const QString& line, int from) const {
  auto matches = Pattern.globalMatch(line, from);
  while (matches.hasNext()) {
    const auto match = matches.next();
    if (match.capturedLength() == 0) continue;
    return Search_Hit{static_cast<int>(match.capturedStart()),
                      static_cast<int>(match.capturedLength())};
  }
  return std::nullopt;
}

std::optional<Search_Hit> Text_Search::Previous(const QString& line, int to) const {
  std::optional<Search_Hit> last;
  auto matches = Pattern.globalMatch(line);
  while (matches.hasNext()) {
    const auto match = matches.next();
    if (match.capturedLength() == 0) continue;
    if (match.capturedEnd() > to) break;
    last = Search_Hit{static_cast<int>(match.capturedStart()),
                      static_cast<int>(match.capturedLength())};
  }
  return last;
}

bool Text_Search::Is_Hit(const QString& text) const {
  const auto match = Pattern.match(text);
  return match.hasMatch() && match.capturedStart() == 0 && match.capturedLength() == text.size() &&
         !text.isEmpty();
}

QString Text_Search::Expanded(const QRegularExpressionMatch& match,
                              const QString& replacement) const {
  if (!Is_Pattern) return replacement;
  QString text;
  for (qsizetype i = 0; i < replacement.size(); ++i) {
    const bool group = replacement[i] == '\\' && i + 1 < replacement.size() &&
                       replacement[i + 1] >= '0' && replacement[i + 1] <= '9';
    if (group) {
      text += match.captured(replacement[++i].digitValue());
    } else {
      text += replacement[i];
    }
  }
  return text;
}

QString Text_Search::Replaced(const QString& line, int from, int to, const QString& replacement,
                              int& count) const {
  QString text;
  qsizetype done = 0;
  auto matches = Pattern.globalMatch(line, from);
  while (matches.hasNext()) {
    const auto match = matches.next();
    if (match.capturedLength() == 0) continue;
    if (match.capturedEnd() > to) break;
    text += QStringView(line).mid(done, match.capturedStart() - done);
    text += Expanded(match, replacement);
    done = match.capturedEnd();
    ++count;
  }
  return done == 0 ? line : text + line.mid(done);
}

}  // namespace norvik
