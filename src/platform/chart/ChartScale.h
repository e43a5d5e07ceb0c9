// ChartScale.h: from values to an axis, in pure steps.
//
// An axis is made in four places. ChooseRange picks round bounds and a step around what is to be shown; TicksOf
// divides them; TAxisMap turns values into pixels and back; DrawAxis (ChartAxis.h) paints. The first three are here:
// plain values and functions that know neither chart nor canvas.
//
//   const TAxisRange range = ChooseRange(3, 97, TZero::kWhenNear, 5);   // {0, 100, 20}
//   TicksOf(range);                                                     // 0 20 40 60 80 100
//   TAxisMap{range.Minimum, range.Maximum, 299, 0}.ToPixel(50);         // 150: upright axes run from the bottom up
//   TickText(40, range);                                                // "40"
//
// Steps are 1, 2 or 5 times a power of ten. No value is too wild: ranges are brought within ±1e300, differences below
// the twelfth digit count as none, and what isn't a number never gets here (a series leaves it out).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vx {

struct TAxisRange {
  double Minimum = 0;
  double Maximum = 1;  ///< always above Minimum
  double Step = 1;     ///< between ticks; always above 0

  bool operator==(const TAxisRange&) const = default;
};

/// Whether an automatic axis reaches down (or up) to zero.
enum class TZero : std::uint8_t {
  kAlways,    ///< for bars, which begin there
  kWhenNear,  ///< if that costs no more than half of the height
  kNever,
};

/// The smallest of 1, 2 and 5 times a power of ten that divides `span` (above 0) into at most `maxIntervals` (at
/// least 1).
double NiceStep(double span, std::int32_t maxIntervals);
/// Whole steps around `low` to `high`, at most `maxIntervals` (brought to at least 2). Equal bounds, or none at all
/// (low above high, or not a number), give a range around them that can be drawn.
TAxisRange ChooseRange(double low, double high, TZero zero, std::int32_t maxIntervals);
/// The range as it was given by a user, with a nice step; ChooseRange decides if it is empty.
TAxisRange FixedRange(double low, double high, std::int32_t maxIntervals);

/// The multiples of the step within the range, rising. Never more than a thousand.
std::vector<double> TicksOf(const TAxisRange& range);

/// A tick's value with as many decimals as its neighbours need. Large ones are grouped ("1 200 000" by the locale's
/// sign), from ten million on shortened by M, G or T where that loses nothing, and the very large and small have an
/// exponent.
std::string TickText(double value, const TAxisRange& range);

/// Values to pixels and back: Minimum stands on the pixel Start, Maximum on End, which may lie left of or above Start.
struct TAxisMap {
  double Minimum = 0;
  double Maximum = 1;
  std::int32_t Start = 0;
  std::int32_t End = 0;

  /// The nearest pixel. What is outside of the range lies outside of the pixels, at most some millions away.
  std::int32_t ToPixel(double value) const;
  /// The same without rounding.
  double ToPosition(double value) const;
  double ToValue(std::int32_t pixel) const;
};

}  // namespace vx
