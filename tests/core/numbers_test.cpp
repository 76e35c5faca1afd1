// Text to numbers and back in both regions.
#include "core/numbers.h"

#include "core/application.h"
#include "core/fault.h"
#include "core/format.h"
#include "core/rounding.h"
#include "core/setup.h"
#include "support/fault_of.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <random>

#include <gmock/gmock.h>

namespace norvik {
namespace {

// Runs under one regional decimal sign and puts the old one back.
struct Region {
  explicit Region(char sign) : Before(Application.DecimalSeparator) {
    Application.DecimalSeparator = sign;
  }
  ~Region() { Application.DecimalSeparator = Before; }
  char Before;
};

TEST(Format_Number, Follows_The_Pattern) {
  struct Row {
    double Value;
    const char *Pattern, *Text;
  };
  const Row rows[] = {
      {1.0005, "000.000", "001.001"},  // a tie of the text, though the double lies below
      {-1.0005, "000.000", "-001.001"},
      {-1.5, "############000.000", "-001.500"},
      {-0.0004, "000.000", "000.000"},
      {-0.0, "0.0", "0.0"},
      {0.5, "0", "1"},
      {1.5, "0", "2"},
      {2.5, "0", "3"},
      {0.499999999999999, "0", "0"},
      {2.675, "0.00", "2.68"},
      {1e15 / 3, "0.0", "333333333333333.0"},  // 15 digits count, the rest is zeros
      {0, "###.00", ".00"},
      {0.25, "###.00", ".25"},
      {-0.25, "###.00", "-.25"},
      {100, "##0.00", "100.00"},
      {99.995, "##0.00", "100.00"},
      {999.9996, "000.000", "1000.000"},
      {0.25, "####.00##########", ".25"},
      {0.001, "####.00##########", ".001"},
      {12.3456789012345, "####.00##########", "12.345678901235"},
      {0.1 + 0.2, "0.0###############", "0.3"},
      {1.0 / 3, "00000000.000000000", "00000000.333333333"},
      {7, "######000 ", "007 "},
      {12345, "######000 ", "12345 "},
      {3, "000    ", "003    "},
      {1234567, "###,###", "1,234,567"},
      {123, "###,###", "123"},
      {0, "###", ""},
      {5, "0.", "5."},
      {1e22, "0.0", "10000000000000000000000.0"},
      {5e-324, "0.000", "0.000"},
      {123456.5, "0#.0", "123456.5"},
      {5, "0#", "05"},  // a "#" behind a "0" always stands
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Format_Number_Point(row.Value, row.Pattern), row.Text) << row.Pattern;
  }
  const Region comma(',');
  EXPECT_EQ(Format_Number(-1.5, "000.000"), "-001,500");
  EXPECT_EQ(Format_Number(1234.5, "#,##0.0"), "1.234,5");
  EXPECT_EQ(Format_Number_Point(-1.5, "000.000"), "-001.500");
  EXPECT_EQ(Format_Number(0.0025F, "0.000"), "0,003");  // by the single's own text
}

TEST(Format_Number, Refuses_What_Is_No_Number) {
  EXPECT_EQ(Fault_Of([] { Format_Number(std::nan(""), "0"); }), Fault_Number::Type_Mismatch);
  EXPECT_EQ(Fault_Of([] { Format_Number(1.0 / 0.0, "0"); }), Fault_Number::Overflow);
  // A pattern from a damaged machine file must not write beyond its buffer.
  const std::string wide(5000, '0');
  EXPECT_LT(Format_Number(-std::numeric_limits<double>::max(), wide + "." + wide).size(), 600U);
}

// The rule in plain words, on the decimal text alone.
std::string Plain_Rounding(double value, int decimals) {
  char digits[64];
  const auto end =
      std::to_chars(digits, digits + sizeof digits, std::abs(value), std::chars_format::fixed);
  std::string text(digits, end.ptr);
  if (text.find('.') == std::string::npos) text += '.';
  const auto point = text.find('.');
  text.resize(std::max(text.size(), point + static_cast<std::size_t>(decimals) + 2), '0');
  const bool up = text[point + static_cast<std::size_t>(decimals) + 1] >= '5';
  text.resize(point + static_cast<std::size_t>(decimals) + 1);
  text = "0" + text;
  for (auto at = text.size(); up && at-- > 0;) {
    if (text[at] == '.') continue;
    if (text[at] != '9') {
      ++text[at];
      break;
    }
    text[at] = '0';
  }
  const auto first = text.find_first_not_of('0');
  text = text.substr(std::min(first, text.find('.') - 1));
  const bool zero = text.find_first_not_of("0.") == std::string::npos;
  return (value < 0 && !zero ? "-" : "") + text;
}

TEST(Format_Number, Quick_Way_Equals_The_Plain_Rule) {
  std::mt19937 random(20240506);
  std::uniform_int_distribution<int> decimals(1, 9), whole(-99'999, 99'999), places(0, 7);
  std::uniform_real_distribution<double> real(-200, 200);
  for (int round = 0; round < 20'000; ++round) {
    const int count = decimals(random);
    const std::string pattern = "0." + std::string(static_cast<std::size_t>(count), '0');
    // Ties on purpose, then anything.
    const double tie =
        whole(random) / std::pow(10.0, places(random)) + 5 / std::pow(10.0, count + 1);
    const double any = std::round(real(random) * 1e10) / 1e10;
    const double large = 1e5 * whole(random);
    for (const double value : {tie, any, large + tie, large + any}) {
      char text[40];
      const auto end = std::to_chars(text, text + sizeof text, value);
      if (end.ptr - text > 15) continue;  // beyond 15 digits the plain rule does not apply
      ASSERT_EQ(Format_Number_Point(value, pattern), Plain_Rounding(value, count)) << value;
    }
  }
}

TEST(Shortest_Text, Reads_Back_Equal_Without_Exponent) {
  EXPECT_EQ(Shortest_Text(0.1), "0.1");
  EXPECT_EQ(Shortest_Text(0.1F), "0.1");
  EXPECT_EQ(Shortest_Text(-0.0), "0");
  EXPECT_EQ(Shortest_Text(1e21), "1000000000000000000000");
  EXPECT_EQ(Shortest_Text(1e-7), "0.0000001");
  EXPECT_EQ(To_Double(Shortest_Text(1.7976931348623157e308)), 1.7976931348623157e308);
  EXPECT_EQ(To_Double(Shortest_Text(5e-324)), 5e-324);
}

TEST(To_Double, Reads_Numbers_And_Only_Numbers) {
  struct Row {
    const char* Text;
    double Value;
  };
  for (const Row& row :
       {Row{"1.5", 1.5}, Row{" -1.5\t", -1.5}, Row{"+.5", 0.5}, Row{"5.", 5}, Row{"1E-05", 1e-5},
        Row{"1e+2", 100}, Row{"1e-400", 0}, Row{"0.000e999999999999999999", 0}}) {
    EXPECT_EQ(To_Double(row.Text), row.Value) << row.Text;
  }
  for (const char* text : {"", " ", ".", "-", "--4", "+-4", "1.2.3", "1x", "x", "inf", "nan",
                           "0x10", "1e", "1,5", "- 4", "1 2"}) {
    EXPECT_EQ(Fault_Of([&] { To_Double(text); }), Fault_Number::Type_Mismatch) << text;
    EXPECT_FALSE(IsNumeric(text)) << text;
  }
  EXPECT_EQ(Fault_Of([] { To_Double("1e400"); }), Fault_Number::Overflow);
  EXPECT_EQ(Fault_Of([] { To_Double("1" + std::string(400, '0')); }), Fault_Number::Overflow);
  EXPECT_EQ(To_Double("0." + std::string(400, '0') + "1"), 0);
  const Region comma(',');
  EXPECT_EQ(To_Double("1,5"), 1.5);
  EXPECT_EQ(To_Double("1.5"), 1.5);
  EXPECT_FALSE(IsNumeric("1,5.2"));
}

TEST(Settings_Conversions, Know_Sentinel_And_Default) {
  for (const char sign : {'.', ','}) {
    const Region region(sign);
    EXPECT_EQ(GetInt("", Sentinel::Empty, 5), 5);
    EXPECT_EQ(GetInt("0", Sentinel::Zero, 5), 5);
    EXPECT_EQ(GetInt("0", Sentinel::Empty, 5), 0);
    EXPECT_EQ(GetInt("12,5", Sentinel::Empty, 5), 12);
    EXPECT_EQ(GetInt("12.5", Sentinel::Empty, 5), 12);
    EXPECT_EQ(GetInt("-0.5", Sentinel::Zero, 5), -1);  // floored before it is compared
    EXPECT_EQ(GetInt("0.5", Sentinel::Zero, 5), 5);
    EXPECT_EQ(GetInt("99999", Sentinel::Empty, 5), 32767);
    EXPECT_EQ(GetInt("-1e99", Sentinel::Empty, 5), -32768);
    EXPECT_EQ(GetInt("abc", Sentinel::Zero, 5), 5);
    EXPECT_EQ(GetInt("abc", Sentinel::Empty, 5), 0);
    EXPECT_EQ(GetLong("4e9", Sentinel::Empty, 5), 2147483647);
    EXPECT_EQ(GetLong("-4e9", Sentinel::Empty, 5), -2147483647 - 1);
    EXPECT_EQ(GetFloat("1,5", Sentinel::Zero, 9), 1.5F);
    EXPECT_EQ(GetFloat("1.5", Sentinel::Zero, 9), 1.5F);
    EXPECT_EQ(GetFloat(".", Sentinel::Empty, 9), 9);
    EXPECT_EQ(GetFloat(",", Sentinel::Empty, 9), 9);
    EXPECT_EQ(GetFloat("0", Sentinel::Empty, 9), 0);
    EXPECT_EQ(GetFloat("0.0000000001", Sentinel::Zero, 9), 9);  // nine decimals are kept
    EXPECT_EQ(GetFloat("1e300", Sentinel::Empty, 9), 9);
    EXPECT_EQ(GetFloat("1.2,3", Sentinel::Empty, 9), 9);
    EXPECT_EQ(GetDouble("0,039370078", Sentinel::Zero, 9), 0.039370078);
    EXPECT_EQ(GetDouble("", Sentinel::Zero, 9), 9);
    EXPECT_EQ(GetDouble("0", Sentinel::Zero, 9), 9);
    EXPECT_EQ(NullToZero("1,5"), 1.5);
    EXPECT_EQ(NullToZero("none"), 0);
    EXPECT_EQ(RegionalNumber("1,0000000005"), 1.000000001);
    EXPECT_EQ(RegionalNumber(""), 0);
    EXPECT_EQ(Fault_Of([] { RegionalNumber("x"); }), Fault_Number::Type_Mismatch);
  }
  EXPECT_EQ(GetString("", "None"), "None");
  EXPECT_EQ(GetString("0", "None"), "0");
}

TEST(ToBoolean, Reads_Numbers_And_Words) {
  for (const char* text : {"-1", "1", "2", "0.5", "0,5", "True", "TRUE", " true "}) {
    EXPECT_TRUE(ToBoolean(text)) << text;
  }
  for (const char* text : {"", "0", "0.0", "False", "yes", "1x", "-"}) {
    EXPECT_FALSE(ToBoolean(text)) << text;
  }
  EXPECT_EQ(TrueToMinusOne(true), -1);
}

TEST(Regional_Texts, Change_Every_Decimal_Sign) {
  MachineSetup.Axis_Format = "000.000";
  EXPECT_EQ(RegionalFix("1,2.3,4"), "1.2.3.4");
  EXPECT_EQ(RegionalFormat(" 1,5 "), "001.500");
  EXPECT_EQ(RegionalFormat(""), "000.000");
  EXPECT_EQ(Format_Axis_Number("##0.00"), "000.000");  // a numeral format reads as 0
  EXPECT_EQ(Fault_Of([] { RegionalFormat("x"); }), Fault_Number::Type_Mismatch);
  EXPECT_EQ(ToPointDecimal("1,5\t \t2,5"), "1.5 2.5");
  EXPECT_EQ(ToCommaDecimal("1.5  2.5"), "1,5 2,5");
  EXPECT_EQ(NumbersOnly("a1b.2,c"), "1.2,");
  EXPECT_EQ(NumbersOnly(""), std::nullopt);
  const Region comma(',');
  EXPECT_EQ(RegionalFix("1,2.3"), "1,2,3");
  EXPECT_EQ(RegionalFormat("1.5"), "001,500");
  EXPECT_EQ(Format_Axis_Number(-2.25), "-002,250");
}

TEST(Words, Are_Found_By_Letter) {
  EXPECT_EQ(WordValue('x', "g01 x1,5y-2"), 1.5);
  EXPECT_EQ(WordValue('Y', "g01 x1.5y-2"), -2);
  EXPECT_EQ(WordValue('Z', "g01 x1"), std::nullopt);
  EXPECT_EQ(WordValue('X', "X 1"), std::nullopt);
  EXPECT_EQ(WordValue('X', "X0.123456789"), 0.1234568);
  EXPECT_EQ(WordText('n', "N0010 G1"), "0010");
  EXPECT_EQ(WordText('X', "X1,5"), "1");
}

TEST(FormatElapsed, Carries_Into_The_Next_Unit) {
  EXPECT_EQ(FormatElapsed(0), "00:00:00.000");
  EXPECT_EQ(FormatElapsed(59.9996), "00:01:00.000");
  EXPECT_EQ(FormatElapsed(3661.25), "01:01:01.250");
  EXPECT_EQ(FormatElapsed(400'000), "111:06:40.000");
  EXPECT_EQ(FormatElapsed(-5), "00:00:00.000");
}

TEST(Rounding, Goes_To_The_Even_Neighbour_And_Refuses_Overflow) {
  EXPECT_EQ(To_Int16(0.5), 0);
  EXPECT_EQ(To_Int16(1.5), 2);
  EXPECT_EQ(To_Int16(-2.5), -2);
  EXPECT_EQ(To_Int16(32767.5 - 1e-9), 32767);
  EXPECT_EQ(Fault_Of([] { To_Int16(32767.5); }), Fault_Number::Overflow);
  EXPECT_EQ(Fault_Of([] { To_Int16(-32768.6); }), Fault_Number::Overflow);
  EXPECT_EQ(Fault_Of([] { To_Int32(2147483647.5); }), Fault_Number::Overflow);
  EXPECT_EQ(Fault_Of([] { To_Int32(std::nan("")); }), Fault_Number::Type_Mismatch);
  EXPECT_EQ(Fault_Of([] { To_Single(1e39); }), Fault_Number::Overflow);
  EXPECT_EQ(To_Single(0.1), 0.1F);
  EXPECT_EQ(Whole_Part(-1.7), -1);
}

}  // namespace
}  // namespace norvik
