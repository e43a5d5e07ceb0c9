#include "platform/chart/ChartScale.h"

#include <algorithm>
#include <cmath>

#include "platform/runtime/NumberText.h"

namespace vx {
namespace {

constexpr double kLargest = 1e300;
constexpr double kSmallest = 1e-300;
constexpr double kNoDifference = 1e-12;  // of two values, relative to the larger one
constexpr double kNearly = 1e-9;         // of a step: how far a bound may miss a multiple of it
constexpr std::size_t kMostTicks = 1000;
constexpr double kFarPixel = 4e6;

double Tamed(double value) { return std::abs(value) < kSmallest ? 0.0 : std::clamp(value, -kLargest, kLargest); }

bool AreTheSame(double low, double high) {
  return high - low <= kNoDifference * std::max(std::abs(low), std::abs(high));
}

/// Bounds that differ; see TZero.
TAxisRange Widened(double low, double high, TZero zero) {
  const bool same = AreTheSame(low, high);
  if (same && zero == TZero::kNever) {
    const double half = std::max(0.5, std::abs(low) / 10);
    return {low - half, high + half};
  }
  const bool near = zero == TZero::kWhenNear && (same || (low > 0 ? low <= high / 2 : high >= low / 2));
  if (zero == TZero::kAlways || near) {
    low = std::min(low, 0.0);
    high = std::max(high, 0.0);
  }
  return low < high ? TAxisRange{low, high} : TAxisRange{0, 1};
}

double NextNiceStep(double step) { return NiceStep(step * 1.5, 1); }

/// floor(log10(value)) for a value above 0, not misled by rounding: Magnitude(1000) is 3.
std::int32_t Magnitude(double value) { return static_cast<std::int32_t>(std::floor(std::log10(value) + kNearly)); }

std::int32_t DecimalsOf(double step) { return std::max(0, -Magnitude(step)); }

std::string PlainText(double value, std::int32_t decimals) { return FloatToStrF(value, ffNumber, 15, decimals); }

std::string TextWithExponent(double value, double step) {
  if (value == 0) return "0";
  const std::int32_t exponent = Magnitude(std::abs(value));
  const std::int32_t decimals = std::clamp(exponent - Magnitude(step), 0, 12);
  return FloatToStrF(value / std::pow(10.0, exponent), ffFixed, 15, decimals) + "e" + std::to_string(exponent);
}

struct TUnit {
  double size;
  const char* sign;
};
constexpr TUnit kUnits[] = {{1e12, "T"}, {1e9, "G"}, {1e6, "M"}};
constexpr double kShortenedFrom = 1e7;
constexpr double kExponentFrom = 1e15;
constexpr std::int32_t kMostDecimals = 6;

}  // namespace

double NiceStep(double span, std::int32_t maxIntervals) {
  const double wanted = std::max(span / std::max(maxIntervals, 1), kSmallest);
  const double power = std::pow(10.0, Magnitude(wanted));
  for (const double factor : {1.0, 2.0, 5.0})
    if (factor * power >= wanted * (1 - kNearly)) return factor * power;
  return 10 * power;
}

TAxisRange ChooseRange(double low, double high, TZero zero, std::int32_t maxIntervals) {
  const bool nothing = !(low <= high);
  TAxisRange range = nothing ? TAxisRange{} : Widened(Tamed(low), Tamed(high), zero);
  const TAxisRange bounds = range;
  const std::int32_t most = std::max(maxIntervals, 2);
  range.Step = NiceStep(range.Maximum - range.Minimum, most);
  for (;; range.Step = NextNiceStep(range.Step)) {
    const double first = std::floor(bounds.Minimum / range.Step + kNearly);
    const double last = std::ceil(bounds.Maximum / range.Step - kNearly);
    range.Minimum = first * range.Step;
    range.Maximum = last * range.Step;
    if (last - first <= most) return range;
  }
}

TAxisRange FixedRange(double low, double high, std::int32_t maxIntervals) {
  low = Tamed(low);
  high = Tamed(high);
  if (!(low < high) || AreTheSame(low, high)) return ChooseRange(low, high, TZero::kNever, maxIntervals);
  return {low, high, NiceStep(high - low, maxIntervals)};
}

std::vector<double> TicksOf(const TAxisRange& range) {
  std::vector<double> ticks;
  const double last = std::floor(range.Maximum / range.Step + kNearly);
  for (double at = std::ceil(range.Minimum / range.Step - kNearly); at <= last && ticks.size() < kMostTicks; ++at)
    ticks.push_back(at * range.Step + 0.0);  // not -0
  return ticks;
}

std::string TickText(double value, const TAxisRange& range) {
  const double largest = std::max(std::abs(range.Minimum), std::abs(range.Maximum));
  const std::int32_t decimals = DecimalsOf(range.Step);
  if (largest >= kExponentFrom || decimals > kMostDecimals) return TextWithExponent(value, range.Step);
  if (largest >= kShortenedFrom && value != 0)
    for (const auto& [size, sign] : kUnits)
      if (largest >= size && DecimalsOf(range.Step / size) <= 2)
        return PlainText(value / size, DecimalsOf(range.Step / size)) + sign;
  return PlainText(value, decimals);
}

double TAxisMap::ToPosition(double value) const {
  const double share = (value - Minimum) / (Maximum - Minimum);
  return std::clamp(Start + share * (End - Start), -kFarPixel, kFarPixel);
}

std::int32_t TAxisMap::ToPixel(double value) const {
  return static_cast<std::int32_t>(std::floor(ToPosition(value) + 0.5));
}

double TAxisMap::ToValue(std::int32_t pixel) const {
  if (End == Start) return Minimum;
  return Minimum + (Maximum - Minimum) * (pixel - Start) / (End - Start);
}

}  // namespace vx
