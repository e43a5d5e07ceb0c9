// NumberText.h: numbers to text and back, by the locale's separators.
//
//   FloatToStr(1234.5)                      // "1234.5", or "1234,5"
//   FloatToStr(1e15)                        // "1E15"
//   FloatToStrF(2.5, ffFixed, 15, 0)        // "3": halves go away from zero in text
//   Round(2.5)                              // 2: and to the even number in arithmetic
//   StrToFloat("12 apples")                 // raises EConvertError: '12 apples' is not a valid floating point value
//
// Reading takes the whole text, blanks around it skipped. Group separators, hexadecimal digits, and the names of
// infinity and of "not a number" are not read. Cost: some tens of nanoseconds each. Main thread only, since Locale() is
// asked.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vx {

/// How FloatToStrF prints.
enum TFloatFormat : std::uint8_t {
  ffGeneral,   ///< the shortest of 1234.5 and 1.2345E20 at the given precision; an exponent below 0.0001 and at
               ///< 10^precision
  ffFixed,     ///< always `digits` decimals; from 10^precision on as ffGeneral
  ffExponent,  ///< always an exponent, with its sign and at least `digits` digits, 0 to 4: 1.50E+0015
  ffNumber,    ///< as ffFixed, the digits before the separator in groups: 1,234.50
  ffCurrency,  ///< as ffNumber, with the locale's currency and its way of writing what is below zero: ($1,234.50)
};

// -- To text --------------------------------------------------------------------------------------------------------

/// 15 significant digits, no trailing zeros, "1E15" and "1E-5" for the very large and small. "NAN", "INF", "-INF". Zero
/// has no sign.
std::string FloatToStr(double value);
/// `precision` is the number of significant digits, 1 to 15; what lies beyond prints as zeros. `digits` is the number
/// of decimals, 0 to 18, but see ffExponent. Both are brought into their range.
std::string FloatToStrF(double value, TFloatFormat format, std::int32_t precision, std::int32_t digits);
std::string IntToStr(std::int64_t value);

// -- From text ------------------------------------------------------------------------------------------------------

/// Raises EConvertError, naming the text, if that isn't a number or is out of the range of a double.
double StrToFloat(std::string_view text);
/// False, and `value` untouched, where StrToFloat would raise.
bool TryStrToFloat(std::string_view text, double& value);
/// A decimal number of 32 bits, with or without sign. Raises EConvertError, naming the text.
std::int32_t StrToInt(std::string_view text);
/// False, and `value` untouched, where StrToInt would raise.
bool TryStrToInt(std::string_view text, std::int32_t& value);

// -- To whole numbers -----------------------------------------------------------------------------------------------

/// The nearest whole number, a half to the even one. Beyond 64 bits the nearest bound; NaN gives 0.
std::int64_t Round(double value);
/// The whole part. Beyond 64 bits the nearest bound; NaN gives 0.
std::int64_t Trunc(double value);

}  // namespace vx
