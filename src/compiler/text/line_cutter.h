// line_cutter.h: the working copy of a line, from which words are cut.
//
// Positions count from 1, as the rules of cutting are worded. With p the position of a letter and
// L the length of the line:
//
//   e = position of the next blank after p, or L + 1
//   the value stands between p and e; the line keeps its first p - 1 and its last L - e characters
//
// The value of a real word may end earlier, at the first character that is no digit, sign or
// decimal sign: the i-th of the value text. The value then takes i - p characters and e becomes i,
// which is right for p = 1 alone:
//
//   "X1.0Y2.0"   p = 1, i = 4: value "1.0", left "Y2.0"
//   "AX1.0Y2"    p = 2, i = 4: value "1.", left "A" + ".0Y2"
//   "ABX1Y2"     p = 3, i = 2: a fault, the count is below zero
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace norvik {

class Line_Cutter {
 public:
  // Takes the line without its comment, in upper case. Raises a call fault for a comment whose
  // opener is its own end.
  void Take(std::string_view text);

  std::string_view Comment() const { return Comment_Text; }
  std::string_view Left() const { return std::string_view(Buffer).substr(Begin, End - Begin); }
  // Fewer than two characters are left: nothing more is read.
  bool Done() const { return Is_Done; }

  // Each cuts the first word of a letter (or keyword) out of the line and returns its value text,
  // absent when there is none. The text stays valid until the next cut.
  std::optional<std::string_view> Cut_Keyword(std::string_view keyword);
  std::optional<std::string_view> Cut_To_Blank(char letter);
  // Cuts all words of a letter up to `most`, one after the other, and hands each value text to
  // `handle`. Moves every character once, however many words there are.
  template <class Handler>
  void Cut_All_To_Blank(char letter, int most, Handler&& handle);
  // Raises a call fault where the count of characters comes out below zero.
  std::optional<std::string_view> Cut_Real(char letter);

 private:
  std::string_view Keep(std::size_t position, std::size_t count);
  void Cut(std::size_t front, std::size_t tail);
  void Look_If_Done() { Is_Done = Is_Done || End - Begin < 2; }

  std::string Buffer;  // the line lies between Begin and End
  std::size_t Begin = 0, End = 0;
  std::string Value;  // text of the last word
  std::string_view Comment_Text;
  bool Is_Done = false;
};

template <class Handler>
void Line_Cutter::Cut_All_To_Blank(char letter, int most, Handler&& handle) {
  char* const data = Buffer.data();
  char* const end = data + End;
  char* kept = data + Begin;  // behind what stays
  char* at = kept;            // what is not looked at yet
  const auto keep_up_to = [&](char* stop) {
    kept = kept == at ? stop : std::move(at, stop, kept);
    at = stop;
  };
  for (int count = 0; count < most; ++count) {
    char* const found = std::find(at, end, letter);
    keep_up_to(found);
    if (found == end) break;
    char* const blank = std::find(found, end, ' ');
    handle(std::string_view(found + 1, static_cast<std::size_t>(blank - found - 1)));
    at = blank == end ? end : blank + 1;
  }
  keep_up_to(end);
  End = static_cast<std::size_t>(kept - data);
  Look_If_Done();
}

// The place of the comment in a line, from its opener to its closer, positions from 0. The kinds of
// opener have a rank: "[" before "{" before "(" before "'", wherever they stand. Any closer closes,
// looked for in the order "]", "}", ")", "'" from the opener on; without one the last character of
// the line does. Absent when there is no opener.
struct Comment_Place {
  std::size_t Opener, Closer;
};
std::optional<Comment_Place> Find_Comment(std::string_view text);

}  // namespace norvik
