// FloatMask.h: numbers by a mask, as a person writes it.
//
//   FormatFloat("#,##0.00", 1234.5)                 // "1,234.50"
//   FormatFloat("0.##", 0.25)                       // "0.25"; of 2 "2"
//   FormatFloat("0.0;(0.0);none", -3)               // "(3.0)"; of 0 "none"
//   FormatFloat("0' pieces'", 12)                   // "12 pieces"
//
//   0           a digit, or 0                       ;           between the sections: above zero, below, zero
//   #           a digit, or nothing                 E+ E- e+ e- an exponent; "-" prints the sign of a negative one alone.
//   .           the decimal separator: the first          The zeros that follow are its least number of digits, to 4
//   ,           anywhere: groups of thousands       'text' "text"  copied, as is every other character
//
// Separators are the locale's. Digits before the separator that find no place stand at the first one. The value is
// rounded, a half away from zero, to the decimals of its section; what is zero then is printed by the third section,
// without a sign. A missing or empty section is the first one, with a "-" before a value below zero. "%" is a character
// like others: nothing is multiplied.
//
// The plain text of FloatToStr serves an empty mask, a section without text and without digits, and numbers from 1E15
// on, NaN and infinities. No mask is refused. Cost: some hundred nanoseconds. Main thread only, since Locale() is
// asked.
#pragma once

#include <string>
#include <string_view>

namespace vx {

std::string FormatFloat(std::string_view mask, double value);

}  // namespace vx
