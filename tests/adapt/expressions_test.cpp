// Expressions against a second evaluation of their own: random trees, worth known from the tree,
// printed as text with as few brackets as the ranks of the operators allow.
#include "adapt/expressions.h"

#include <cmath>
#include <complex>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace norvik::adapting {
namespace {

constexpr double Right_Angle = 90;
const double Turn = std::acos(-1.0) * 2;

struct Tree {
  std::string Text;  // of an operator, a function or a number
  int Rank = 6;      // 6: needs no brackets
  double Worth = 0;
  std::string Print;  // the whole of it
  // A rounding error within it may turn its worth over: a comparison of the same, a whole number
  // cut.
  bool Fragile = false;
};

struct Tree_Maker {
  std::mt19937 Random;
  Parameters& Values;

  int Below(int count) { return std::uniform_int_distribution(0, count - 1)(Random); }

  Tree Leaf() {
    const int digits = Below(2000) - 1000;
    Tree tree;
    tree.Worth = digits / 8.0;
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", tree.Worth);
    tree.Print = text;
    if (Below(3) != 0) return tree;
    const int number = 100 + Below(50);
    if (const auto known = Values.Get({number, {}})) {
      tree.Worth = *known;
    } else {
      Values.Set({number, {}}, tree.Worth);
    }
    tree.Print = "#" + std::to_string(number);
    return tree;
  }

  Tree Function(int depth) {
    const Tree inner = Make(depth - 1);
    Tree tree;
    const double x = inner.Worth;
    switch (Below(7)) {
      case 0:
        tree = {"ABS", 6, x < 0 ? -x : x, ""};
        break;
      case 1:
        tree = {"FIX", 6, std::floor(x), ""};
        break;
      case 2:
        tree = {"FUP", 6, -std::floor(-x), ""};
        break;
      case 3:
        tree = {"COS", 6, std::sin((x + Right_Angle) / 360 * Turn), ""};
        break;
      case 4:
        tree = {"SIN", 6, std::cos((x - Right_Angle) / 360 * Turn), ""};
        break;
      case 5:
        if (x < 0) return inner;
        tree = {"SQRT", 6, std::pow(x, 0.5), ""};
        break;
      default: {
        const Tree other = Make(depth - 1);
        tree = {"ATAN", 6, std::arg(std::complex<double>(other.Worth, x)) / Turn * 360, ""};
        tree.Print = "ATAN[" + inner.Print + "]/[" + other.Print + "]";
        tree.Fragile = inner.Fragile || other.Fragile || std::abs(x) < 1e-6;
        return tree;
      }
    }
    tree.Print = tree.Text + "[" + inner.Print + "]";
    tree.Fragile = inner.Fragile || Is_Whole(x);
    return tree;
  }

  static bool Is_Whole(double x) { return std::abs(x - std::round(x)) < 1e-6; }
  static bool Turns_Over(const std::string& text, double a, double b) {
    constexpr double close = 1e-6;
    if (text == "MOD" || text == "/") return std::abs(b) < close || Is_Whole(a / b);
    if (text == "**") return a < close;
    if (text == "EQ" || text == "GT" || text == "LE") return std::abs(a - b) < 1e-5;
    const bool logical = text == "AND" || text == "OR" || text == "XOR";
    return logical && ((a != 0 && std::abs(a) < close) || (b != 0 && std::abs(b) < close));
  }

  Tree Operation(int depth) {
    struct Row {
      const char* Text;
      int Rank;
    };
    constexpr Row rows[] = {{"**", 5}, {"*", 4},  {"/", 4},  {"MOD", 4}, {"+", 3},  {"-", 3},
                            {"EQ", 2}, {"GT", 2}, {"LE", 2}, {"AND", 1}, {"OR", 1}, {"XOR", 1}};
    const Row& row = rows[Below(static_cast<int>(std::size(rows)))];
    const Tree a = Make(depth - 1), b = Make(depth - 1);
    Tree tree{row.Text, row.Rank, Worth(row.Text, a.Worth, b.Worth), ""};
    if (!std::isfinite(tree.Worth) || std::abs(tree.Worth) > 1e8) return a;
    // From left to right: an operator of the same rank needs brackets on the right only.
    const std::string left = a.Rank >= tree.Rank ? a.Print : "[" + a.Print + "]";
    const std::string right = b.Rank > tree.Rank ? b.Print : "[" + b.Print + "]";
    tree.Print = left + tree.Text + right;
    tree.Fragile = a.Fragile || b.Fragile || Turns_Over(row.Text, a.Worth, b.Worth);
    return tree;
  }

  static double Worth(const std::string& text, double a, double b) {
    const bool left = a != 0, right = b != 0;
    if (text == "**") return std::pow(a, b);
    if (text == "*") return a * b;
    if (text == "/") return a / b;
    if (text == "MOD") return b == 0 ? NAN : a - std::abs(b) * std::floor(a / std::abs(b));
    if (text == "+") return a + b;
    if (text == "-") return a - b;
    if (text == "EQ") return a == b;
    if (text == "GT") return a > b;
    if (text == "LE") return !(a > b);
    if (text == "AND") return left ? right : 0;
    if (text == "OR") return left ? 1 : right;
    return left != right;
  }

  Tree Make(int depth) {
    if (depth <= 0 || Below(5) == 0) return Leaf();
    return Below(3) == 0 ? Function(depth) : Operation(depth);
  }
};

double Value_Of(const std::string& text, const Parameters& values) {
  Cursor cursor{text};
  const double value = Read_Value(cursor, values);
  EXPECT_TRUE(cursor.Ended()) << text;
  return value;
}

TEST(Adapt_Expressions, Give_What_The_Tree_They_Were_Printed_From_Is_Worth) {
  int compared = 0;
  for (unsigned seed = 0; seed < 3000; ++seed) {
    Parameters values;
    Tree_Maker maker{std::mt19937(seed), values};
    const Tree tree = maker.Make(4);
    if (tree.Fragile) continue;
    ++compared;
    const double value = Value_Of("[" + tree.Print + "]", values);
    EXPECT_NEAR(value, tree.Worth, 1e-6 * std::max(1.0, std::abs(tree.Worth))) << tree.Print;
  }
  EXPECT_GT(compared, 1000);
}

TEST(Adapt_Expressions, Of_The_Public_Description) {
  Parameters values;
  values.Set({3, {}}, 5);
  values.Set({5, {}}, 7);
  values.Set({0, "DEPTH"}, -2.5);
  const std::pair<const char*, double> rows[] = {
      {"[1+2*3-4/5]", 6.2},  {"[2**3*2]", 16},     {"[5-2-1]", 2},    {"ACOS[0]", 90},
      {"ATAN[1]/[-1]", 135}, {"##3", 7},           {"#[1+2]", 5},     {"-#<DEPTH>", 2.5},
      {"FIX[-2.8]", -3},     {"FUP[-2.8]", -2},    {"[-7MOD3]", 2},   {"EXISTS[#<DEPTH>]", 1},
      {"EXISTS[#<X>]", 0},   {"[2GT1AND1GE2]", 0}, {"[1EQ1XOR1]", 0}, {"ROUND[2.5]", 3},
      {"LN[EXP[1.5]]", 1.5}, {"TAN[45]", 1},       {"ASIN[.5]", 30},  {"+.5", 0.5},
  };
  for (const auto& [text, value] : rows) EXPECT_NEAR(Value_Of(text, values), value, 1e-9) << text;
}

TEST(Adapt_Expressions, That_Cannot_Be_Read_Say_Why) {
  const Parameters values;
  const char* rows[] = {"[1", "[1+]", "[1 2]", "SIN 3",   "ATAN[1]", "SQRT[-1]", "LN[0]",
                        "#0", "#<X",  "[1/0]", "[0**-1]", "FOO[1]",  "",         "."};
  for (const char* text : rows) {
    Cursor cursor{text};
    EXPECT_THROW(Read_Value(cursor, values), Unreadable) << text;
  }
  const std::string deep(10'000, '[');
  Cursor cursor{deep};
  EXPECT_THROW(Read_Value(cursor, values), Unreadable);
}

TEST(Adapt_Expressions, Parameters_Of_A_Subprogram_Are_Its_Own) {
  Parameters values;
  values.Set({1, {}}, 1);
  values.Set({31, {}}, 31);
  values.Set({0, "_ALL"}, 4);
  values.Enter({7});
  EXPECT_EQ(values.Get({1, {}}), 7);
  EXPECT_EQ(values.Get({2, {}}), 0) << "arguments that are not given are 0";
  EXPECT_EQ(values.Get({31, {}}), 31);
  EXPECT_EQ(values.Get({0, "_ALL"}), 4);
  values.Leave();
  EXPECT_EQ(values.Get({1, {}}), 1);
}

}  // namespace
}  // namespace norvik::adapting
