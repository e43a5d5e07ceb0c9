#include "host/cairo/RowCoverage.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace vx {

namespace {

constexpr std::int32_t kPlaces = TRowCoverage::kPlaces;
constexpr std::int32_t kWord = 64;
/// Sides that are more level than this bound a shape by its top and bottom alone; in pixels of their height.
constexpr double kLevel = 1e-6;
/// Two sides whose slopes differ by less are parallel.
constexpr double kParallel = 1e-6;
/// Shapes wider than this are not looked up among what is covered.
constexpr std::int32_t kWidestLookup = 16;

/// How far a row of places is shifted to the right, in places: all eighths, and neighbours far from each other.
constexpr std::array<double, kPlaces> kShift{0.0625, 0.5625, 0.3125, 0.8125, 0.1875, 0.6875, 0.4375, 0.9375};

/// The number of the first place that isn't left of `x`, in a row of places that is shifted; never negative.
std::int32_t FirstPlaceFrom(double x, double shift, double end) {
  return static_cast<std::int32_t>(std::clamp(x, 0.0, end) + (1 - shift));
}

/// What lies left of a side in a pixel, for sides that move by at most a pixel to either side while they cross it.
class THalfPixels {
 public:
  static constexpr std::int32_t kFine = 64;  ///< steps in the width of a pixel
  static constexpr std::int32_t kMargin = kFine / 2;

  static const THalfPixels& All() {
    static const THalfPixels all;
    return all;
  }

  /// The row for a slope from -1 to 1, to be asked with PlacesLeftOf.
  std::size_t RowOf(double slope) const { return static_cast<std::size_t>(std::lround((slope + 1) * kSlopes)); }
  /// `at` is where the side crosses the middle row of the pixel, in steps from its left.
  std::uint64_t PlacesLeftOf(std::size_t row, std::int32_t at) const {
    return places_[row][static_cast<std::size_t>(std::clamp(at + kMargin, 0, 2 * kFine))];
  }

 private:
  static constexpr std::int32_t kSlopes = 32;  ///< from level to a pixel

  THalfPixels() {
    for (std::size_t row = 0; row < places_.size(); ++row) {
      const double slope = static_cast<double>(row) / kSlopes - 1;
      for (std::int32_t bit = 0; bit < 64; ++bit) {
        const TDot place = TRowCoverage::PlaceOf(bit);
        const auto last = static_cast<std::int32_t>(std::floor((place.X - slope * (place.Y - 0.5)) * kFine));
        places_[row][static_cast<std::size_t>(last + 1 + kMargin)] |= std::uint64_t{1} << bit;
      }
      for (std::size_t at = 1; at < places_[row].size(); ++at) places_[row][at] |= places_[row][at - 1];
    }
  }

  std::array<std::array<std::uint64_t, 2 * kFine + 1>, 2 * kSlopes + 1> places_{};
};

/// `count` from zero to a whole word.
std::uint64_t LowBits(std::int32_t count) {
  return count >= kWord ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

/// The bits of a word of columns that lie from `left` to `right`.
std::uint64_t WithinWord(std::int32_t word, std::int32_t left, std::int32_t right) {
  const std::int32_t start = word * kWord;
  return LowBits(std::clamp(right - start, 0, kWord)) & ~LowBits(std::clamp(left - start, 0, kWord));
}

/// `share` of 64 parts of a colour over another, rounded.
std::uint32_t Mixed(std::uint32_t over, std::uint32_t under, std::uint32_t share) {
  const auto half = [&](std::uint32_t mask, std::uint32_t round) {
    return ((over & mask) * share + (under & mask) * (kWord - share) + round) / kWord & mask;
  };
  const auto green = [&](std::uint32_t pixel) { return pixel >> 8 & 0xFF; };
  const std::uint32_t middle = (green(over) * share + green(under) * (kWord - share) + kWord / 2) / kWord;
  return 0xFF000000u | half(0xFF00FF, 0x200020) | middle << 8;
}

std::size_t At(std::int32_t index) { return static_cast<std::size_t>(index); }

}  // namespace

TDot TRowCoverage::PlaceOf(std::int32_t bit) {
  const std::int32_t row = bit / kPlaces;
  return {(bit % kPlaces + kShift[At(row)]) / kPlaces, (row + 0.5) / kPlaces};
}

// -- What is covered --------------------------------------------------------------------------------------------------

void TRowCoverage::Begin(const TRect& area) {
  area_ = area;
  const auto rows = At(std::max(area.Height(), 0));
  const auto columns = At(std::max(area.Width(), 0));
  const std::size_t words = (columns + kWord - 1) / kWord;
  turns_.Begin(rows);
  places_.Begin(rows);
  parts_.Begin(rows);
  shapes_.clear();
  active_.clear();
  tallest_.assign(columns, {});
  depth_.assign(columns, 0);
  bits_.assign(columns, 0);
  whole_.assign(words, 0);
  touched_.assign(words, 0);
}

void TRowCoverage::AddRect(TRect pixels) {
  pixels = pixels.Intersected(area_).Moved(-area_.Left, -area_.Top);
  if (pixels.IsEmpty()) return;
  turns_.Add(pixels.Top, {pixels.Left, pixels.Right, 1});
  if (pixels.Bottom < area_.Height()) turns_.Add(pixels.Bottom, {pixels.Left, pixels.Right, -1});
  for (std::int32_t column = pixels.Left; column < pixels.Right; ++column) {
    TRows& tallest = tallest_[At(column)];
    if (tallest.Bottom - tallest.Top < pixels.Height()) tallest = {pixels.Top, pixels.Bottom};
  }
}

void TRowCoverage::AddPixel(TPoint pixel, std::uint64_t places) {
  if (area_.Contains(pixel)) places_.Add(pixel.Y - area_.Top, {pixel.X - area_.Left, places});
}

void TRowCoverage::AddPixels(const TRect& pixels, std::uint64_t places) {
  for (std::int32_t y = pixels.Top; y < pixels.Bottom; ++y)
    for (std::int32_t x = pixels.Left; x < pixels.Right; ++x) AddPixel({x, y}, places);
}

/// The rows that all these columns have covered.
TRowCoverage::TRows TRowCoverage::CoveredRows(std::int32_t left, std::int32_t right) const {
  if (right - left > kWidestLookup) return {};
  TRows covered{0, area_.Height()};
  for (std::int32_t column = left; column < right; ++column) {
    covered.Top = std::max(covered.Top, tallest_[At(column)].Top);
    covered.Bottom = std::min(covered.Bottom, tallest_[At(column)].Bottom);
  }
  return covered.Top < covered.Bottom ? covered : TRows{};
}

bool TRowCoverage::IsCovered(const TRect& pixels) const {
  const TRect inside = pixels.Intersected(area_).Moved(-area_.Left, -area_.Top);
  if (inside.IsEmpty()) return true;
  const TRows covered = CoveredRows(inside.Left, inside.Right);
  return covered.Top <= inside.Top && covered.Bottom >= inside.Bottom;
}

void TRowCoverage::AddPart(std::int32_t shape, TRows rows) {
  if (rows.Top < rows.Bottom) parts_.Add(rows.Top, {shape, rows.Bottom});
}

void TRowCoverage::AddShape(std::span<const TDot> corners) {
  const auto [left, right] = std::ranges::minmax(corners, {}, &TDot::X);
  const auto [top, bottom] = std::ranges::minmax(corners, {}, &TDot::Y);
  const TRect bounds{static_cast<std::int32_t>(std::floor(left.X)), static_cast<std::int32_t>(std::floor(top.Y)),
                     static_cast<std::int32_t>(std::ceil(right.X)), static_cast<std::int32_t>(std::ceil(bottom.Y))};
  const TRect inside = bounds.Intersected(area_).Moved(-area_.Left, -area_.Top);
  if (inside.IsEmpty()) return;
  const TRows covered = CoveredRows(inside.Left, inside.Right);
  const auto index = static_cast<std::int32_t>(shapes_.size());
  AddPart(index, {inside.Top, std::min(covered.Top, inside.Bottom)});
  AddPart(index, {std::max(covered.Bottom, inside.Top), inside.Bottom});
  shapes_.push_back(ShapeOf(corners, top.Y, bottom.Y));
}

/// In places from the area's top left.
TRowCoverage::TShape TRowCoverage::ShapeOf(std::span<const TDot> corners, double top, double bottom) const {
  TDot middle;
  const double share = 1.0 / static_cast<double>(corners.size());
  for (const TDot& corner : corners) middle = {middle.X + corner.X * share, middle.Y + corner.Y * share};
  TShape shape{(top - area_.Top) * kPlaces, (bottom - area_.Top) * kPlaces, 0, 0, {}, {}, 0};
  const auto addSides = [&](bool left) {
    for (std::size_t i = 0; i < corners.size(); ++i) {
      const TDot& from = corners[i];
      const TDot& to = corners[(i + 1) % corners.size()];
      if (std::abs(to.Y - from.Y) < kLevel) continue;
      const double slope = (to.X - from.X) / (to.Y - from.Y);
      const bool isLeft = from.X + (middle.Y - from.Y) * slope < middle.X;
      if (isLeft == left)
        shape.Sides[shape.Count++] = {(from.X - area_.Left) * kPlaces, (from.Y - area_.Top) * kPlaces, slope};
    }
  };
  addSides(true);
  shape.LeftCount = shape.Count;
  addSides(false);
  FindSteady(shape, corners, area_.Top);
  return shape;
}

/// For a narrow stretch of a line; only rows between its second and third corner have two sides.
void TRowCoverage::FindSteady(TShape& shape, std::span<const TDot> corners, double areaTop) {
  if (corners.size() != 4 || shape.LeftCount == 0 || shape.LeftCount == shape.Count) return;
  std::array<double, 4> heights{};
  std::ranges::transform(corners, heights.begin(), [](TDot corner) { return corner.Y; });
  std::ranges::sort(heights);
  const double middle = ((heights[1] + heights[2]) / 2 - areaTop) * kPlaces;
  const auto at = [middle](const TSide& side) { return side.At(middle); };
  const auto sides = std::span(shape.Sides).first(At(shape.Count));
  const auto lefts = sides.first(At(shape.LeftCount));
  const auto rights = sides.subspan(At(shape.LeftCount));
  std::swap(lefts[0], *std::ranges::max_element(lefts, {}, at));
  std::swap(rights[0], *std::ranges::min_element(rights, {}, at));
  if (std::abs(lefts[0].Slope) > 1 || std::abs(lefts[0].Slope - rights[0].Slope) > kParallel) return;
  shape.SlopeRow = THalfPixels::All().RowOf(lefts[0].Slope);
  shape.Steady = {static_cast<std::int32_t>(std::ceil(heights[1] - areaTop)),
                  static_cast<std::int32_t>(std::floor(heights[2] - areaTop))};
}

// -- Row by row -------------------------------------------------------------------------------------------------------

void TRowCoverage::Turn(const TTurn& turn) {
  for (std::int32_t column = turn.Left; column < turn.Right; ++column) {
    std::int32_t& depth = depth_[At(column)];
    if (depth == 0 || depth + turn.By == 0) whole_[At(column / kWord)] ^= std::uint64_t{1} << column % kWord;
    depth += turn.By;
  }
}

void TRowCoverage::StartRow(std::int32_t row) {
  turns_.Each(row, [this](const TTurn& turn) { Turn(turn); });
  parts_.Each(row, [this](const TPart& part) { active_.push_back(part); });
  places_.Each(row, [this](const TPlaces& places) {
    bits_[At(places.Column)] |= places.Bits;
    MarkTouched(places.Column, places.Column + 1);
  });
  for (const TPart& part : active_) MarkShape(shapes_[At(part.Shape)], row);
}

void TRowCoverage::MarkTouched(std::int32_t left, std::int32_t right) {
  for (std::int32_t word = left / kWord; word * kWord < right; ++word)
    touched_[At(word)] |= WithinWord(word, left, right);
}

/// A row that is bounded by two parallel sides.
void TRowCoverage::MarkSteady(const TShape& shape, std::int32_t row) {
  constexpr std::int32_t kFine = THalfPixels::kFine;
  const TSide& leftSide = shape.Sides[0];
  const TSide& rightSide = shape.Sides[shape.LeftCount];
  const double middle = (row + 0.5) * kPlaces;
  const double farRight = area_.Width() + 1;
  const auto stepsOf = [&](const TSide& side) {
    return static_cast<std::int32_t>(std::clamp(side.At(middle) / kPlaces, -1.0, farRight) * kFine + kFine) - kFine;
  };
  const std::int32_t left = stepsOf(leftSide);
  const std::int32_t right = stepsOf(rightSide);
  const auto reach = static_cast<std::int32_t>(std::abs(leftSide.Slope) * (kFine / 2)) + 1;
  const std::int32_t first = std::max(left - reach, 0) / kFine;
  const std::int32_t end = std::min((right + reach) / kFine + 1, area_.Width());
  if (first >= end) return;
  const THalfPixels& halves = THalfPixels::All();
  for (std::int32_t column = first; column < end; ++column)
    bits_[At(column)] |= halves.PlacesLeftOf(shape.SlopeRow, right - column * kFine) &
                         ~halves.PlacesLeftOf(shape.SlopeRow, left - column * kFine);
  MarkTouched(first, end);
}

void TRowCoverage::MarkShape(const TShape& shape, std::int32_t row) {
  if (row >= shape.Steady.Top && row < shape.Steady.Bottom) return MarkSteady(shape, row);
  const double width = area_.Width() * double{kPlaces};
  std::int32_t first = area_.Width() * kPlaces;
  std::int32_t last = 0;
  for (std::int32_t i = 0; i < kPlaces; ++i) {
    const double y = row * kPlaces + i + 0.5;
    if (y < shape.Top || y >= shape.Bottom) continue;
    double left = 0;
    double right = width;
    for (std::int32_t side = 0; side < shape.LeftCount; ++side) left = std::max(left, shape.Sides[side].At(y));
    for (std::int32_t side = shape.LeftCount; side < shape.Count; ++side)
      right = std::min(right, shape.Sides[side].At(y));
    const std::int32_t from = FirstPlaceFrom(left, kShift[At(i)], width);
    const std::int32_t to = FirstPlaceFrom(right, kShift[At(i)], width);
    if (from >= to) continue;
    MarkPlaces(i, from, to);
    first = std::min(first, from);
    last = std::max(last, to);
  }
  if (first < last) MarkTouched(first / kPlaces, (last - 1) / kPlaces + 1);
}

/// Places `from` to `to`, without it, in one row of them.
void TRowCoverage::MarkPlaces(std::int32_t row, std::int32_t from, std::int32_t to) {
  const std::int32_t column = from / kPlaces;
  const std::int32_t end = (to - 1) / kPlaces;
  const auto add = [&](std::int32_t at, std::uint64_t places) { bits_[At(at)] |= places << row * kPlaces; };
  const std::uint64_t head = 0xFFu << from % kPlaces & 0xFF;
  const std::uint64_t tail = 0xFFu >> (kPlaces - 1 - (to - 1) % kPlaces);
  if (column == end) return add(column, head & tail);
  add(column, head);
  for (std::int32_t at = column + 1; at < end; ++at) add(at, 0xFF);
  add(end, tail);
}

void TRowCoverage::EndRow(std::int32_t row) {
  std::erase_if(active_, [row](const TPart& part) { return part.Bottom <= row + 1; });
  for (std::size_t word = 0; word < touched_.size(); ++word) {
    for (std::uint64_t left = touched_[word]; left != 0; left &= left - 1)
      bits_[word * kWord + At(std::countr_zero(left))] = 0;
    touched_[word] = 0;
  }
}

// -- Into the image ---------------------------------------------------------------------------------------------------

void TRowCoverage::Paint(const TPixelTarget& target, std::uint32_t pixel) {
  std::span<const TRect> clip = target.Clip.Rects();
  for (std::int32_t row = 0; row < area_.Height(); ++row) {
    StartRow(row);
    const std::int32_t y = area_.Top + row;
    while (!clip.empty() && clip.front().Bottom <= y) clip = clip.subspan(1);
    for (const TRect& rect : clip) {
      if (rect.Top > y) break;
      const TRect shown = rect.Intersected(area_);
      if (shown.IsEmpty()) continue;
      std::uint32_t* const pixels = target.RowAt(y) + (area_.Left - target.Bounds.Left);
      PaintWhole(pixels, shown.Left - area_.Left, shown.Right - area_.Left, pixel);
      PaintParts(pixels, shown.Left - area_.Left, shown.Right - area_.Left, pixel);
    }
    EndRow(row);
  }
}

/// Runs that go on in the next word are painted at once.
void TRowCoverage::PaintWhole(std::uint32_t* pixels, std::int32_t left, std::int32_t right, std::uint32_t pixel) const {
  std::int32_t start = 0;
  std::int32_t end = 0;
  for (std::int32_t word = left / kWord; word * kWord < right; ++word) {
    std::uint64_t columns = whole_[At(word)] & WithinWord(word, left, right);
    while (columns != 0) {
      const std::int32_t first = std::countr_zero(columns);
      const std::int32_t count = std::countr_one(columns >> first);
      columns &= ~LowBits(first + count);
      if (word * kWord + first != end) {
        std::fill(pixels + start, pixels + end, pixel);
        start = word * kWord + first;
      }
      end = word * kWord + first + count;
    }
  }
  std::fill(pixels + start, pixels + end, pixel);
}

void TRowCoverage::PaintParts(std::uint32_t* pixels, std::int32_t left, std::int32_t right, std::uint32_t pixel) const {
  for (std::int32_t word = left / kWord; word * kWord < right; ++word) {
    std::uint64_t columns = touched_[At(word)] & ~whole_[At(word)] & WithinWord(word, left, right);
    for (; columns != 0; columns &= columns - 1) {
      const std::int32_t column = word * kWord + std::countr_zero(columns);
      const auto share = static_cast<std::uint32_t>(std::popcount(bits_[At(column)]));
      pixels[column] = Mixed(pixel, pixels[column], share);
    }
  }
}

}  // namespace vx
