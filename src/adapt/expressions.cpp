#include "adapt/expressions.h"

#include <array>
#include <charconv>
#include <cmath>
#include <numbers>

namespace norvik::adapting {

namespace {

constexpr double Degrees = std::numbers::pi / 180;
// An expression nested deeper than this is no expression of a real program.
constexpr int Deepest = 200;

bool Is_Digit(char c) {
  return c >= '0' && c <= '9';
}

// --- Operators -----------------------------------------------------------------------------------

enum class Operation {
  Power,
  Times,
  Divide,
  Modulo,
  Plus,
  Minus,
  Eq,
  Ne,
  Gt,
  Ge,
  Lt,
  Le,
  And,
  Or,
  Xor
};

struct Operator_Row {
  std::string_view Text;
  Operation What;
  int Rank;  // the highest binds first
};
constexpr Operator_Row Operators[] = {
    {"**", Operation::Power, 5},   {"*", Operation::Times, 4}, {"/", Operation::Divide, 4},
    {"MOD", Operation::Modulo, 4}, {"+", Operation::Plus, 3},  {"-", Operation::Minus, 3},
    {"EQ", Operation::Eq, 2},      {"NE", Operation::Ne, 2},   {"GT", Operation::Gt, 2},
    {"GE", Operation::Ge, 2},      {"LT", Operation::Lt, 2},   {"LE", Operation::Le, 2},
    {"AND", Operation::And, 1},    {"OR", Operation::Or, 1},   {"XOR", Operation::Xor, 1},
};

double Checked(double value, const char* what) {
  if (!std::isfinite(value)) throw Unreadable{std::string(what) + " has no result"};
  return value;
}

double Apply(Operation what, double a, double b) {
  constexpr double same = 1e-6;  // as controllers compare
  switch (what) {
    case Operation::Power:
      return Checked(std::pow(a, b), "**");
    case Operation::Times:
      return Checked(a * b, "*");
    case Operation::Divide:
      if (b == 0) throw Unreadable{"a division by 0"};
      return Checked(a / b, "/");
    case Operation::Modulo: {
      if (b == 0) throw Unreadable{"MOD by 0"};
      const double rest = std::fmod(a, b);
      return rest < 0 ? rest + std::abs(b) : rest;
    }
    case Operation::Plus:
      return Checked(a + b, "+");
    case Operation::Minus:
      return Checked(a - b, "-");
    case Operation::Eq:
      return std::abs(a - b) < same ? 1 : 0;
    case Operation::Ne:
      return std::abs(a - b) >= same ? 1 : 0;
    case Operation::Gt:
      return a > b ? 1 : 0;
    case Operation::Ge:
      return a >= b ? 1 : 0;
    case Operation::Lt:
      return a < b ? 1 : 0;
    case Operation::Le:
      return a <= b ? 1 : 0;
    case Operation::And:
      return a != 0 && b != 0 ? 1 : 0;
    case Operation::Or:
      return a != 0 || b != 0 ? 1 : 0;
    case Operation::Xor:
      return (a != 0) != (b != 0) ? 1 : 0;
  }
  return 0;
}

// --- Functions -----------------------------------------------------------------------------------

struct Function_Row {
  std::string_view Name;
  double (*Value)(double);
};
const std::array<Function_Row, 12> Functions = {{
    {"ABS", [](double x) { return std::abs(x); }},
    {"ACOS", [](double x) { return std::acos(x) / Degrees; }},
    {"ASIN", [](double x) { return std::asin(x) / Degrees; }},
    {"COS", [](double x) { return std::cos(x * Degrees); }},
    {"EXP", [](double x) { return std::exp(x); }},
    {"FIX", [](double x) { return std::floor(x); }},
    {"FUP", [](double x) { return std::ceil(x); }},
    {"LN", [](double x) { return std::log(x); }},
    {"ROUND", [](double x) { return std::round(x); }},
    {"SIN", [](double x) { return std::sin(x * Degrees); }},
    {"SQRT", [](double x) { return std::sqrt(x); }},
    {"TAN", [](double x) { return std::tan(x * Degrees); }},
}};

struct Reader {
  Cursor& At;
  const Parameters& Values;
  int Depth = 0;

  double Number() {
    const std::string_view text = At.Text.substr(At.At);
    std::size_t length = 0, digits = 0;
    bool point = false;
    std::string plain;
    while (length < text.size()) {
      const char c = text[length];
      if (Is_Digit(c)) {
        ++digits;
      } else if ((c == '.' || c == ',') && !point) {
        point = true;
      } else {
        break;
      }
      plain += c == ',' ? '.' : c;
      ++length;
    }
    if (digits == 0) {
      throw Unreadable{
          "a number is missing" +
          (text.empty() ? std::string() : " at \"" + std::string(text.substr(0, 12)) + "\"")};
    }
    At.At += length;
    double value = 0;
    std::from_chars(plain.data(), plain.data() + plain.size(), value);
    return Checked(value, "the number");
  }

  Parameter_Name Name() {
    if (At.Now() == '<') {
      ++At.At;
      return {0, Read_Name(At)};
    }
    const double number = Value();
    const double whole = std::round(number);
    if (std::abs(number - whole) > 1e-4 || whole < 1 || whole > 1e6) {
      throw Unreadable{"a parameter needs a whole number above 0"};
    }
    return {static_cast<int>(whole), {}};
  }

  double Parameter() {
    const Parameter_Name name = Name();
    if (const auto value = Values.Get(name)) return *value;
    if (!name.Name.empty()) throw Unreadable{"#<" + name.Name + "> was never set"};
    Values.Unset(name.Number);
    return 0;
  }

  double Arc_Tangent() {
    const double y = Bracket();
    if (!At.Skip("/")) throw Unreadable{"ATAN needs two values: ATAN[y]/[x]"};
    return std::atan2(y, Bracket()) / Degrees;
  }

  double Existence() {
    if (!At.Skip("[#")) throw Unreadable{"EXISTS needs a parameter"};
    const bool exists = Values.Exists(Name());
    if (!At.Skip("]")) throw Unreadable{"a bracket is not closed"};
    return exists ? 1 : 0;
  }

  double Function() {
    if (At.Skip("ATAN")) return Arc_Tangent();
    if (At.Skip("EXISTS")) return Existence();
    for (const Function_Row& row : Functions) {
      if (At.Skip(row.Name)) return Checked(row.Value(Bracket()), row.Name.data());
    }
    return Number();
  }

  double Value() {
    if (++Depth > Deepest) throw Unreadable{"the expression is nested too deeply"};
    double value = 0;
    if (At.Skip("-")) {
      value = -Value();
    } else if (At.Skip("+")) {
      value = Value();
    } else if (At.Skip("#")) {
      value = Parameter();
    } else if (At.Now() == '[') {
      value = Bracket();
    } else {
      value = Function();
    }
    --Depth;
    return value;
  }

  const Operator_Row* Operator() {
    for (const Operator_Row& row : Operators) {
      if (At.Skip(row.Text)) return &row;
    }
    throw Unreadable{"\"" + std::string(At.Text.substr(At.At, 12)) + "\" is no operator"};
  }

  // All operators of at least this rank; `next` is the one read ahead.
  double Chain(double left, const Operator_Row*& next, int rank) {
    while (next && next->Rank >= rank) {
      const Operator_Row* here = next;
      double right = Value();
      next = At.Now() == ']' ? nullptr : Operator();
      if (next && next->Rank > here->Rank) right = Chain(right, next, here->Rank + 1);
      left = Apply(here->What, left, right);
    }
    return left;
  }

  double Bracket() {
    if (!At.Skip("[")) throw Unreadable{"\"[\" is missing"};
    if (++Depth > Deepest) throw Unreadable{"the expression is nested too deeply"};
    const double first = Value();
    if (At.Ended()) throw Unreadable{"a bracket is not closed"};
    const Operator_Row* next = At.Now() == ']' ? nullptr : Operator();
    const double value = Chain(first, next, 1);
    if (!At.Skip("]")) throw Unreadable{"a bracket is not closed"};
    --Depth;
    return value;
  }
};

}  // namespace

double Read_Value(Cursor& cursor, const Parameters& parameters) {
  return Reader{cursor, parameters}.Value();
}

double Read_Bracket(Cursor& cursor, const Parameters& parameters) {
  return Reader{cursor, parameters}.Bracket();
}

Parameter_Name Read_Parameter_Name(Cursor& cursor, const Parameters& parameters) {
  return Reader{cursor, parameters}.Name();
}

std::string Read_Name(Cursor& cursor) {
  const std::size_t end = cursor.Text.find('>', cursor.At);
  if (end == std::string_view::npos || end == cursor.At)
    throw Unreadable{"a name is not closed by \">\""};
  std::string name(cursor.Text.substr(cursor.At, end - cursor.At));
  cursor.At = end + 1;
  return name;
}

}  // namespace norvik::adapting
