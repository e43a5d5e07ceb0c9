#include "host/cairo/CairoPainter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/cairo/BitmapSampling.h"
#include "host/cairo/CairoWork.h"
#include "host/cairo/PixelPainter.h"

namespace vx {

namespace {

using TPath = THandle<cairo_path_t, cairo_path_destroy>;

/// Image pixels beside an image at least, within which lines are drawn.
constexpr double kMargin = 1024;

double Radians(double degrees) { return std::fmod(degrees, 360) * std::numbers::pi / 180; }

/// For the time of a scope, distances count otherwise; paths that are made in it keep their shape.
class TMatrixScope {
 public:
  explicit TMatrixScope(cairo_t* context) : context_(context) { cairo_get_matrix(context, &matrix_); }
  ~TMatrixScope() { cairo_set_matrix(context_, &matrix_); }
  TMatrixScope(const TMatrixScope&) = delete;
  TMatrixScope& operator=(const TMatrixScope&) = delete;

 private:
  cairo_t* context_;
  cairo_matrix_t matrix_;
};

void AddRect(cairo_t* context, const TRect& rect) {
  if (!rect.IsEmpty()) cairo_rectangle(context, rect.Left, rect.Top, rect.Width(), rect.Height());
}

}  // namespace

TCairoPainter::TCairoPainter(TSize size, double scale) : size_(size), work_(std::make_unique<TWork>(scale)) {}
TCairoPainter::~TCairoPainter() = default;

const TPixelGrid& TCairoPainter::Grid() const { return work_->Grid; }

// -- Clip -------------------------------------------------------------------------------------------------------------

void TCairoPainter::SaveClip() { work_->SavedClips.push_back(false); }

void TCairoPainter::RestoreClip() {
  if (work_->SavedClips.empty()) return;  // Cairo would draw nothing any more
  if (work_->SavedClips.back()) cairo_restore(work_->Context.get());
  work_->SavedClips.pop_back();
}

void TCairoPainter::IntersectClip(const TRect& rect) { IntersectClip(TRegion::OfRect(rect)); }

void TCairoPainter::IntersectClip(const TRegion& region) {
  cairo_t* const context = work_->Context.get();
  if (!work_->SavedClips.empty() && !work_->SavedClips.back()) {
    cairo_save(context);
    work_->SavedClips.back() = true;
  }
  cairo_new_path(context);
  for (const TRect& rect : region.Rects()) AddRect(context, Grid().ImageRect(rect));
  cairo_clip(context);
}

// -- Shapes -----------------------------------------------------------------------------------------------------------

/// True if the outline leaves nothing of the shape within.
bool TCairoPainter::IsAllOutline(const TRect& rect, const TInk& ink) const {
  const TRect image = Grid().ImageRect(rect);
  return 2 * Grid().WidthOf(ink.Pen) >= std::min(image.Width(), image.Height());
}

namespace {

/// The shape as a filling of the pen's colour, without an outline.
TInk WithoutInside(const TInk& ink) {
  TInk solid = ink;
  solid.Brush = {ink.Pen.Color, bsSolid};
  solid.Pen.Style = psClear;
  return solid;
}

}  // namespace

void TCairoPainter::FillRect(const TRect& rect, const TInk& ink) {
  if (IsSkipped(ink)) return;
  cairo_t* const context = work_->Context.get();
  cairo_new_path(context);
  AddRect(context, Grid().ImageRect(rect));
  FillPath(ink);
  cairo_new_path(context);
}

void TCairoPainter::Rectangle(const TRect& rect, const TInk& ink) {
  if (IsSkipped(ink) || rect.IsEmpty()) return;
  if (ink.Pen.Style != psClear && IsAllOutline(rect, ink)) return FillRect(rect, WithoutInside(ink));
  const TRect image = Grid().ImageRect(rect);
  const double width = Grid().WidthOf(ink.Pen);
  cairo_t* const context = work_->Context.get();
  cairo_new_path(context);
  cairo_rectangle(context, image.Left + width / 2, image.Top + width / 2, image.Width() - width,
                  image.Height() - width);
  Paint(ink, TCorners::kSharp);
}

void TCairoPainter::RoundRect(const TRect& rect, TSize corner, const TInk& ink) {
  if (IsSkipped(ink) || rect.IsEmpty()) return;
  if (corner.Width <= 0 || corner.Height <= 0) return Rectangle(rect, ink);
  if (ink.Pen.Style != psClear && IsAllOutline(rect, ink)) return RoundRect(rect, corner, WithoutInside(ink));
  PathOfRoundRect(rect, Grid().WidthOf(ink.Pen) / 2, corner);
  Paint(ink, TCorners::kUsual);
}

void TCairoPainter::PathOfRoundRect(const TRect& rect, double inset, TSize corner) {
  const TRect image = Grid().ImageRect(rect);
  const double scale = Grid().Scale();
  const double radiusX = std::max(std::min(corner.Width * scale, 1.0 * image.Width()) / 2 - inset, 0.0);
  const double radiusY = std::max(std::min(corner.Height * scale, 1.0 * image.Height()) / 2 - inset, 0.0);
  const double lefts[] = {image.Left + inset + radiusX, image.Right - inset - radiusX};
  const double tops[] = {image.Top + inset + radiusY, image.Bottom - inset - radiusY};
  cairo_t* const context = work_->Context.get();
  cairo_new_path(context);
  for (int quarter = 0; quarter < 4; ++quarter) {  // clockwise from the lower right
    const TMatrixScope scope(context);
    cairo_translate(context, lefts[quarter == 0 || quarter == 3], tops[quarter < 2]);
    if (radiusX > 0 && radiusY > 0) {
      cairo_scale(context, radiusX, radiusY);
      cairo_arc(context, 0, 0, 1, quarter * std::numbers::pi / 2, (quarter + 1) * std::numbers::pi / 2);
    } else {
      cairo_line_to(context, 0, 0);
    }
  }
  cairo_close_path(context);
}

void TCairoPainter::Ellipse(const TRect& rect, const TInk& ink) {
  if (IsSkipped(ink) || rect.IsEmpty()) return;
  if (ink.Pen.Style != psClear && IsAllOutline(rect, ink)) return Ellipse(rect, WithoutInside(ink));
  PathOfEllipse(rect, Grid().WidthOf(ink.Pen) / 2, {}, asChord);
  Paint(ink, TCorners::kUsual);
}

void TCairoPainter::Arc(const TRect& rect, TArc arc, TArcShape shape, const TInk& ink) {
  if (IsSkipped(ink) || rect.IsEmpty() || arc.Sweep == 0) return;
  TInk used = ink;
  if (shape == asArc) used.Brush.Style = bsClear;
  if (std::abs(arc.Sweep) >= 360) return Ellipse(rect, used);
  if (shape != asArc && ink.Pen.Style != psClear && IsAllOutline(rect, ink))
    return Arc(rect, arc, shape, WithoutInside(ink));
  const TRect image = Grid().ImageRect(rect);
  const double inset = std::min({Grid().WidthOf(ink.Pen), image.Width() - 0.5, image.Height() - 0.5}) / 2;
  PathOfEllipse(rect, inset, arc, shape);
  Paint(used, TCorners::kRound);
}

void TCairoPainter::PathOfEllipse(const TRect& rect, double inset, TArc arc, TArcShape shape) {
  const TRect image = Grid().ImageRect(rect);
  if (image.IsEmpty()) return cairo_new_path(work_->Context.get());
  cairo_t* const context = work_->Context.get();
  const TMatrixScope scope(context);  // the pen stays round
  cairo_new_path(context);
  cairo_translate(context, (image.Left + image.Right) / 2.0, (image.Top + image.Bottom) / 2.0);
  cairo_scale(context, image.Width() / 2.0 - inset, image.Height() / 2.0 - inset);
  const double start = -Radians(arc.Start);
  if (std::abs(arc.Sweep) >= 360)
    cairo_arc(context, 0, 0, 1, 0, 2 * std::numbers::pi);
  else if (arc.Sweep > 0)
    cairo_arc_negative(context, 0, 0, 1, start, start - Radians(arc.Sweep));
  else
    cairo_arc(context, 0, 0, 1, start, start - Radians(arc.Sweep));
  if (shape == asPie) cairo_line_to(context, 0, 0);
  if (shape != asArc) cairo_close_path(context);
}

/// Lines of an image are cut off not far from it: Cairo bends sides longer than about 2^17 pixels, and each dash costs
/// time, seen or not.
double TCairoPainter::ReachOf(const TInk& ink) const {
  if (IsPaper()) return TPixelGrid::kFarOut;
  const TRect image = Grid().ImageRect(TRect::At({}, size_));
  return std::min(2 * std::max(image.Width(), image.Height()) + kMargin + Grid().WidthOf(ink.Pen), TPixelGrid::kFarOut);
}

void TCairoPainter::Polygon(std::span<const TPoint> points, const TInk& ink) {
  if (IsSkipped(ink)) return;
  cairo_t* const context = work_->Context.get();
  cairo_new_path(context);
  for (const TDot& dot : WithinReach(Grid().DotsOf(points, Grid().WidthOf(ink.Pen)), ReachOf(ink)))
    cairo_line_to(context, dot.X, dot.Y);
  cairo_close_path(context);
  Paint(ink, TCorners::kUsual);
}

namespace {

bool AreOnePlace(std::span<const TPoint> points) {
  return !points.empty() && std::ranges::all_of(points, [&](TPoint point) { return point == points[0]; });
}

}  // namespace

void TCairoPainter::Polyline(std::span<const TPoint> points, const TInk& ink) {
  if (IsSkipped(ink)) return;
  if (AreOnePlace(points)) points = points.first(1);
  if (points.size() == 1 && IsThin(ink.Pen) && ink.Pen.Style != psClear)
    return FillRect(TRect::At(points[0], {1, 1}), WithoutInside(ink));
  cairo_t* const context = work_->Context.get();
  TInk used = ink;
  if (points.size() == 1 && ink.Pen.Style != psClear) used.Pen.Style = psSolid;  // a dash has no direction there
  cairo_new_path(context);
  for (const auto& part : PartsWithinReach(Grid().DotsOf(points, Grid().WidthOf(ink.Pen)), ReachOf(ink))) {
    cairo_new_sub_path(context);
    for (const TDot& dot : part) cairo_line_to(context, dot.X, dot.Y);
    if (part.size() == 1) cairo_close_path(context);
  }
  StrokePath(used, TCorners::kUsual);
}

// -- The present path -------------------------------------------------------------------------------------------------

/// Ends the path.
void TCairoPainter::Paint(const TInk& ink, TCorners corners) {
  FillPath(ink);
  StrokePath(ink, corners);
}

/// Keeps the path.
void TCairoPainter::FillPath(const TInk& ink) {
  if (ink.Brush.Style == bsClear) return;
  cairo_t* const context = work_->Context.get();
  cairo_set_fill_rule(context, CAIRO_FILL_RULE_WINDING);
  if (ink.Brush.Style != bsSolid && !IsPaper()) return FillWithTiles(ink);
  const TColor ground = ink.Brush.Style == bsSolid ? ink.Brush.Color : ink.Back;
  if (ground != clNone) {
    SetSource(context, ground);
    cairo_fill_preserve(context);
  }
  if (ink.Brush.Style != bsSolid) FillWithLines(ink);
}

/// The same pixels of ink as PixelPainter.h has.
void TCairoPainter::FillWithTiles(const TInk& ink) {
  const TFilling filling(ink, Grid());
  const TSurface tile(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, filling.Period, filling.Period));
  unsigned char* const pixels = cairo_image_surface_get_data(tile.get());
  if (pixels == nullptr) return;
  for (std::int32_t y = 0; y < filling.Period; ++y) {
    auto* const row =
        reinterpret_cast<std::uint32_t*>(pixels + std::ptrdiff_t{y} * cairo_image_surface_get_stride(tile.get()));
    for (std::int32_t x = 0; x < filling.Period; ++x) row[x] = filling.PixelAt(x, y);
  }
  cairo_surface_mark_dirty(tile.get());
  const TPattern pattern(cairo_pattern_create_for_surface(tile.get()));
  cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_REPEAT);
  cairo_pattern_set_filter(pattern.get(), CAIRO_FILTER_NEAREST);
  cairo_set_source(work_->Context.get(), pattern.get());
  cairo_fill_preserve(work_->Context.get());
}

namespace {

struct TExtents {
  double Left = 0, Top = 0, Right = 0, Bottom = 0;
};

/// The lines of a hatch that may meet `area`, all in one path.
void AddHatch(cairo_t* context, TBrushStyle style, const TExtents& area) {
  constexpr double kApart = 8;
  const auto eachFrom = [](double low, double high, auto&& add) {
    for (double at = std::floor(low / kApart) * kApart; at <= high; at += kApart) add(at);
  };
  const auto add = [context](double x1, double y1, double x2, double y2) {
    cairo_move_to(context, x1, y1);
    cairo_line_to(context, x2, y2);
  };
  const auto [left, top, right, bottom] = area;
  if (style == bsHorizontal || style == bsCross)
    eachFrom(top, bottom, [=](double at) { add(left, at + 0.5, right, at + 0.5); });
  if (style == bsVertical || style == bsCross)
    eachFrom(left, right, [=](double at) { add(at + 0.5, top, at + 0.5, bottom); });
  if (style == bsFDiagonal || style == bsDiagCross)
    eachFrom(left - bottom, right - top, [=](double at) { add(at + top, top, at + bottom, bottom); });
  if (style == bsBDiagonal || style == bsDiagCross)
    eachFrom(left + top - 1, right + bottom, [=](double at) { add(at + 1 - top, top, at + 1 - bottom, bottom); });
}

}  // namespace

/// A hatch that is sharp on paper of any resolution.
void TCairoPainter::FillWithLines(const TInk& ink) {
  cairo_t* const context = work_->Context.get();
  const TPath path(cairo_copy_path(context));
  cairo_save(context);
  cairo_clip(context);
  TExtents area;
  cairo_clip_extents(context, &area.Left, &area.Top, &area.Right, &area.Bottom);
  AddHatch(context, ink.Brush.Style, area);
  SetSource(context, ink.Brush.Color);
  cairo_set_line_width(context, 1);
  cairo_set_dash(context, nullptr, 0, 0);
  cairo_stroke(context);
  cairo_restore(context);
  cairo_append_path(context, path.get());
}

namespace {

/// On a level line that starts at a pixel's middle, dashes begin and end at edges of pixels.
void SetDashes(cairo_t* context, const TDashes& dashes, double width) {
  std::array<double, 6> lengths{};
  std::ranges::copy(dashes.Lengths(), lengths.begin());
  cairo_set_dash(context, lengths.data(), static_cast<int>(dashes.Lengths().size()), std::fmod(width, 2) / 2);
}

}  // namespace

namespace {

/// Dashes of one path in an image; Cairo takes some 300 bytes and a microsecond or more for each.
constexpr double kMostDashes = 1 << 17;

double LengthOf(const cairo_path_t& path) {
  double length = 0;
  TDot start, at;
  for (int i = 0; i < path.num_data; i += path.data[i].header.length) {
    const cairo_path_data_t* const data = path.data + i;
    const bool isClose = data->header.type == CAIRO_PATH_CLOSE_PATH;
    const TDot to = isClose ? start : TDot{data[1].point.x, data[1].point.y};
    if (data->header.type == CAIRO_PATH_MOVE_TO)
      start = to;
    else
      length += std::hypot(to.X - at.X, to.Y - at.Y);
    at = to;
  }
  return length;
}

/// True for a path that reaches so far, or goes to and fro so often, that its dashes would not come to an end.
bool IsTooLongFor(cairo_t* context, const TDashes& dashes, double reach) {
  double left = 0, top = 0, right = 0, bottom = 0;
  cairo_path_extents(context, &left, &top, &right, &bottom);
  if (std::max(right - left, bottom - top) > 2 * reach + 1) return true;
  const TPath path(cairo_copy_path_flat(context));
  return LengthOf(*path) * static_cast<double>(dashes.Lengths().size()) / 2 >
         kMostDashes * static_cast<double>(dashes.Period());
}

}  // namespace

/// Ends the path.
void TCairoPainter::StrokePath(const TInk& ink, TCorners corners) {
  cairo_t* const context = work_->Context.get();
  const TPenData& pen = ink.Pen;
  if (pen.Style == psClear) return cairo_new_path(context);
  // A square end covers the end pixel of a thin line; a thick one looks better with round ends and corners.
  TDashes dashes = Grid().DashesOf(pen);
  if (!dashes.IsSolid() && !IsPaper() && IsTooLongFor(context, dashes, ReachOf(ink))) dashes = {};
  const bool isPointed = corners == TCorners::kSharp || (corners == TCorners::kUsual && IsThin(pen));
  const double width = Grid().WidthOf(pen);
  cairo_set_line_width(context, width);
  cairo_set_line_cap(context, !dashes.IsSolid() ? CAIRO_LINE_CAP_BUTT
                              : IsThin(pen)     ? CAIRO_LINE_CAP_SQUARE
                                                : CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(context, isPointed ? CAIRO_LINE_JOIN_MITER : CAIRO_LINE_JOIN_ROUND);
  cairo_set_miter_limit(context, 1.5);  // a right angle has 1.414
  if (!dashes.IsSolid() && ink.Back != clNone) {
    SetDashes(context, {}, width);
    SetSource(context, ink.Back);
    cairo_stroke_preserve(context);
  }
  SetDashes(context, dashes, width);
  SetSource(context, pen.Color);
  cairo_stroke(context);
}

// -- Pictures ---------------------------------------------------------------------------------------------------------

namespace {

/// In a square from 0, 0 to 1, 1; the first and last of `count` steps have the pure colours.
TPattern LinearPattern(TDot from, TDot to, double count) {
  const double margin = count > 1 ? 0.5 / count : 0;
  const TDot by{(to.X - from.X) * margin, (to.Y - from.Y) * margin};
  return TPattern(cairo_pattern_create_linear(from.X + by.X, from.Y + by.Y, to.X - by.X, to.Y - by.Y));
}

TPattern PatternOf(TGradientDirection direction, const TRect& image) {
  const double width = image.Width();
  const double height = image.Height();
  switch (direction) {
    case gdTopBottom:
      return LinearPattern({0, 0}, {0, 1}, height);
    case gdBottomTop:
      return LinearPattern({0, 1}, {0, 0}, height);
    case gdLeftRight:
      return LinearPattern({0, 0}, {1, 0}, width);
    case gdRightLeft:
      return LinearPattern({1, 0}, {0, 0}, width);
    case gdFromTopLeft:
      return LinearPattern({0, 0}, {1, 1}, std::max(width, height));
    case gdFromBottomLeft:
      return LinearPattern({0, 1}, {1, 0}, std::max(width, height));
    case gdFromCenter:
      break;
  }
  return TPattern(cairo_pattern_create_radial(0.5, 0.5, 0, 0.5, 0.5, std::numbers::sqrt2 / 2));
}

void AddStop(cairo_pattern_t* pattern, double offset, TColor color) {
  cairo_pattern_add_color_stop_rgb(pattern, offset, RedOf(color) / 255.0, GreenOf(color) / 255.0,
                                   BlueOf(color) / 255.0);
}

}  // namespace

void TCairoPainter::Gradient(const TRect& rect, const TGradient& gradient) {
  const TRect image = Grid().ImageRect(rect);
  if (image.IsEmpty()) return;
  const TPattern pattern = PatternOf(gradient.Direction, image);
  AddStop(pattern.get(), 0, gradient.StartColor);
  AddStop(pattern.get(), 1, gradient.EndColor);
  cairo_matrix_t toSquare;
  cairo_matrix_init_scale(&toSquare, 1.0 / image.Width(), 1.0 / image.Height());
  cairo_matrix_translate(&toSquare, -image.Left, -image.Top);
  cairo_pattern_set_matrix(pattern.get(), &toSquare);
  cairo_t* const context = work_->Context.get();
  cairo_new_path(context);
  AddRect(context, image);
  cairo_set_source(context, pattern.get());
  cairo_fill(context);
}

void TCairoPainter::Draw(const TBitmap& bitmap, const TRect& source, const TRect& target) {
  const TRect image = Grid().ImageRect(target);
  const TRect shown = source.Intersected(TRect::At({}, bitmap.Size()));
  if (image.IsEmpty() || shown.IsEmpty()) return;
  const TPattern pattern(cairo_pattern_create_for_surface(work_->Bitmaps.Shared(SurfaceOf(bitmap, shown))));
  const double across = (double{1} * source.Right - source.Left) / image.Width();
  const double down = (double{1} * source.Bottom - source.Top) / image.Height();
  cairo_matrix_t toSource;
  cairo_matrix_init(&toSource, across, 0, 0, down, source.Left - shown.Left - across * image.Left,
                    source.Top - shown.Top - down * image.Top);
  cairo_pattern_set_matrix(pattern.get(), &toSource);
  cairo_pattern_set_filter(pattern.get(), across <= 1 && down <= 1 ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD);
  cairo_t* const context = work_->Context.get();
  cairo_new_path(context);
  AddRect(context, image);
  cairo_set_source(context, pattern.get());
  cairo_fill(context);
}

// -- Text -------------------------------------------------------------------------------------------------------------

TSize TCairoPainter::MeasureText(std::string_view text, const TFontData& font) const {
  return work_->Text.Measure(text, font);
}

TFontMetrics TCairoPainter::MeasureFont(const TFontData& font) const { return work_->Text.Measure(font); }

void TCairoPainter::TextOut(TPoint topLeft, std::string_view text, const TTextInk& ink) {
  cairo_t* const context = work_->Context.get();
  const TMatrixScope scope(context);
  cairo_translate(context, Grid().Edge(topLeft.X), Grid().Edge(topLeft.Y));
  if (ink.Angle != 0) cairo_rotate(context, -Radians(ink.Angle));
  cairo_new_path(context);
  if (ink.Back != clNone) {
    AddRect(context, Grid().ImageRect(TRect::At({}, MeasureText(text, ink.Font))));
    SetSource(context, ink.Back);
    cairo_fill(context);
  }
  SetSource(context, ink.Font.Color);
  work_->Text.Draw(context, text, ink.Font);
}

}  // namespace vx
