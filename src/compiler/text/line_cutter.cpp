#include "compiler/text/line_cutter.h"

#include "core/fault.h"

#include <algorithm>
#include <cstring>

namespace norvik {

namespace {

constexpr auto npos = std::string_view::npos;

// A line longer than this gives its memory back when the next is taken.
constexpr std::size_t Kept_Capacity = 1 << 20;

char Upper_Case(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool Belongs_To_Number(char c) {
  return (c >= '0' && c <= '9') || c == '.' || c == ',' || c == '-' || c == '+';
}

}  // namespace

std::optional<Comment_Place> Find_Comment(std::string_view text) {
  std::size_t opener = npos;
  for (const char kind : {'[', '{', '(', '\''}) {
    opener = text.find(kind);
    if (opener != npos) break;
  }
  if (opener == npos) return std::nullopt;
  std::size_t closer = npos;
  for (const char kind : {']', '}', ')', '\''}) {
    closer = text.find(kind, opener);
    if (closer != npos) break;
  }
  return Comment_Place{opener, closer != npos ? closer : text.size() - 1};
}

void Line_Cutter::Take(std::string_view text) {
  if (Buffer.capacity() > Kept_Capacity) Buffer = Value = std::string();
  Is_Done = false;
  Comment_Text = {};
  const auto comment = Find_Comment(text);
  if (comment) {
    if (comment->Closer == comment->Opener) {
      throw Fault(Fault_Number::Invalid_Call, "A comment is closed by the character that opens it");
    }
    Comment_Text = text.substr(comment->Opener + 1, comment->Closer - comment->Opener - 1);
    Buffer.assign(text.substr(0, comment->Opener)).append(text.substr(comment->Closer + 1));
  } else {
    Buffer.assign(text);
  }
  std::ranges::transform(Buffer, Buffer.begin(), Upper_Case);
  Begin = 0;
  End = Buffer.size();
  Look_If_Done();
}

// `count` characters from a position (from 1) on, as far as the line reaches.
std::string_view Line_Cutter::Keep(std::size_t position, std::size_t count) {
  Value.assign(Left().substr(std::min(position - 1, End - Begin), count));
  return Value;
}

// Leaves the first `front` and the last `tail` characters; moves the shorter of the two.
void Line_Cutter::Cut(std::size_t front, std::size_t tail) {
  char* data = Buffer.data();
  if (front < tail) {
    std::memmove(data + End - tail - front, data + Begin, front);
    Begin = End - tail - front;
  } else {
    std::memmove(data + Begin + front, data + End - tail, tail);
    End = Begin + front + tail;
  }
  Look_If_Done();
}

std::optional<std::string_view> Line_Cutter::Cut_Keyword(std::string_view keyword) {
  const std::string_view line = Left();
  const std::size_t place = line.find(keyword);
  if (place == npos) return std::nullopt;
  const std::size_t blank = std::min(line.find(' ', place), line.size());
  Keep(place + keyword.size() + 1, blank - place - keyword.size());
  Cut(place, line.size() - std::min(blank + 1, line.size()));
  return Value;
}

std::optional<std::string_view> Line_Cutter::Cut_To_Blank(char letter) {
  return Cut_Keyword({&letter, 1});
}

std::optional<std::string_view> Line_Cutter::Cut_Real(char letter) {
  const std::string_view line = Left();
  const std::size_t found = line.find(letter);
  if (found == npos) return std::nullopt;
  const std::size_t length = line.size(), p = found + 1;
  const std::size_t blank = line.find(' ', found);
  std::size_t e = blank == npos ? length + 1 : blank + 1;
  const std::string_view text = line.substr(p, e - p - 1);
  const auto stop = std::ranges::find_if_not(text, Belongs_To_Number);
  std::size_t count = text.size();
  if (stop != text.end()) {
    const auto i = static_cast<std::size_t>(stop - text.begin()) + 1;
    if (i < p) {
      throw Fault(Fault_Number::Invalid_Call,
                  std::string(1, letter) + " runs together with the word behind it");
    }
    count = i - p;
    e = i;
  }
  Keep(p + 1, count);
  Cut(p - 1, e <= length ? length - e : 0);
  return Value;
}

}  // namespace norvik
