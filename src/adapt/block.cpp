#include "adapt/block.h"

#include <algorithm>
#include <cmath>

namespace norvik::adapting {

namespace {

struct Assignment {
  Parameter_Name Name;
  double Value;
};

int Tenths_Of(double value) {
  const double tenths = std::round(value * 10);
  if (std::abs(value * 10 - tenths) > 0.01 || tenths < 0 || tenths > 9999) {
    throw Unreadable{"G needs a number from 0 to 999.9"};
  }
  return static_cast<int>(tenths);
}

int Whole_Of(double value) {
  const double whole = std::round(value);
  if (std::abs(value - whole) > 1e-3 || whole < 0 || whole > 99'999) {
    throw Unreadable{"M needs a whole number"};
  }
  return static_cast<int>(whole);
}

std::string_view Take_Sequence(Cursor& cursor) {
  const std::size_t begin = cursor.At;
  while ((cursor.Now() >= '0' && cursor.Now() <= '9') || cursor.Now() == '.') ++cursor.At;
  return cursor.Text.substr(begin, cursor.At - begin);
}

void Take_Word(char letter, Cursor& cursor, const Parameters& parameters, Foreign_Block& block) {
  const double value = Read_Value(cursor, parameters);
  if (letter == 'G') {
    block.G.push_back(Tenths_Of(value));
  } else if (letter == 'M') {
    block.M.push_back(Whole_Of(value));
  } else {
    auto& word = block.Words[static_cast<std::size_t>(letter - 'A')];
    if (word) throw Unreadable{std::string("a second ") + letter + " stands in the line"};
    if (std::abs(value) > 1e9) throw Unreadable{std::string(1, letter) + " has too large a number"};
    word = value;
  }
}

}  // namespace

bool Foreign_Block::Has_G(int tenths) const {
  return std::ranges::find(G, tenths) != G.end();
}
bool Foreign_Block::Has_M(int number) const {
  return std::ranges::find(M, number) != M.end();
}
bool Foreign_Block::Empty() const {
  return G.empty() && M.empty() &&
         std::ranges::none_of(Words, [](const auto& word) { return word.has_value(); });
}

void Read_Block(const Foreign_Line& line, Parameters& parameters, Foreign_Block& block) {
  block.Sequence = {};
  block.G.clear();
  block.M.clear();
  block.Words.fill(std::nullopt);
  std::vector<Assignment> assignments;
  Cursor cursor{line.Code};
  while (!cursor.Ended()) {
    const char c = cursor.Now();
    ++cursor.At;
    if (c == 'N') {
      block.Sequence = Take_Sequence(cursor);
    } else if (c == '#') {
      Parameter_Name name = Read_Parameter_Name(cursor, parameters);
      if (!cursor.Skip("=")) throw Unreadable{"\"=\" is missing behind the parameter"};
      const double value = Read_Value(cursor, parameters);
      assignments.push_back({std::move(name), value});
    } else if (c >= 'A' && c <= 'Z') {
      Take_Word(c, cursor, parameters, block);
    } else {
      throw Unreadable{"\"" + std::string(cursor.Text.substr(cursor.At - 1, 12)) + "\" is no word"};
    }
  }
  for (const Assignment& each : assignments) parameters.Set(each.Name, each.Value);
  block.Assigns = !assignments.empty();
}

}  // namespace norvik::adapting
