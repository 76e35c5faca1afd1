// numbers.h: text to numbers, under either decimal sign.
//
// Settings and programs may have been written in a region with the other decimal sign; every read
// of a number passes here. Texts that are no number raise a type fault unless a rule says
// otherwise.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace norvik {

// The number in a text: blanks around it, a sign, digits with one decimal sign (a point or the
// region's), an exponent. Raises a type fault when the text is no number, an overflow fault when it
// is too large.
double To_Double(std::string_view text);

// The same for either decimal sign in any region; absent when the text is no number or too large.
std::optional<double> Try_Number(std::string_view text);

// Settings conversions. `sentinel` is the stored text or number that takes the default: an empty
// text (only a missing key or an empty value does) or 0 (a stored 0 does too).
// The integer rules take the whole number below and hold it to the type's range; text that is no
// number counts as 0. Where the single and double rules cannot read the text they give the default.
enum class Sentinel { Empty, Zero };
std::int16_t GetInt(std::string_view value, Sentinel sentinel, std::int16_t otherwise);
std::int32_t GetLong(std::string_view value, Sentinel sentinel, std::int32_t otherwise);
float GetFloat(std::string_view value, Sentinel sentinel, float otherwise);
double GetDouble(std::string_view value, Sentinel sentinel, double otherwise);
std::string GetString(std::string_view value, std::string_view otherwise);

double NullToZero(std::string_view value);       // any failure gives 0
std::string RegionalFix(std::string_view text);  // every decimal sign becomes the region's
double RegionalNumber(std::string_view text);    // nine decimals at most; the empty text gives 0
// By "############" + Axis_Format; empty gives 0, so does a numeral format ("##0.00").
std::string RegionalFormat(std::string_view text);
std::optional<std::string> NumbersOnly(
    std::string_view text);  // digits, "," and "."; absent: empty
// The four that follow wait for the functions on a program's text.
std::string ToPointDecimal(std::string_view text);
std::string ToCommaDecimal(std::string_view text);
// The number behind the first `letter` (any case), seven decimals at most; absent when the letter
// or its digits are missing.
std::optional<double> WordValue(char letter, std::string_view text);
// The same as text, empty when missing; a comma ends it.
std::string WordText(char letter, std::string_view text);
std::int16_t TrueToMinusOne(bool value);
bool ToBoolean(std::string_view value);  // -1, 1, any other number but 0, "True"; else false
bool IsNumeric(std::string_view value);
std::string FormatElapsed(double seconds);  // "00:00:00.000"

}  // namespace norvik
