#include "platform/canvas/Canvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

#include "platform/canvas/SystemColors.h"
#include "platform/canvas/TextFit.h"
#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace {

// -- What devices can rely on -----------------------------------------------------------------------------------------

constexpr bool IsPlain(TColor color) { return (static_cast<std::uint32_t>(color) & 0xFF000000u) == 0; }
TColor Resolved(TColor color) { return IsPlain(color) || color == clNone ? color : ColorToRGB(color); }

TPenData Resolved(TPenData pen) {
  if (pen.Color == clNone) pen = {clBlack, pen.Width, psClear, pen.Mode};
  pen.Color = Resolved(pen.Color);
  pen.Width = std::clamp(pen.Width, 1, kWidestPen);
  return pen;
}

TBrushData Resolved(TBrushData brush) {
  if (brush.Color == clNone) return {clWhite, bsClear};
  brush.Color = Resolved(brush.Color);
  return brush;
}

bool ShowsLines(const TInk& ink) { return ink.Pen.Style != psClear; }
bool ShowsShapes(const TInk& ink) { return ShowsLines(ink) || ink.Brush.Style != bsClear; }

constexpr std::int32_t Near(std::int64_t value) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, -kFarthest, kFarthest));
}
constexpr TPoint Near(TPoint p) { return {Near(p.X), Near(p.Y)}; }
constexpr TRect Near(const TRect& r) { return {Near(r.Left), Near(r.Top), Near(r.Right), Near(r.Bottom)}; }

double WithinOneTurn(double degrees) { return std::fmod(degrees, 360.0) + 0.0; }  // "+ 0.0": no zero with a sign

// -- Rectangles -------------------------------------------------------------------------------------------------------

/// Of two opposite corners; the other two may be the wrong way round.
constexpr TRect Ordered(TPoint a, TPoint b) {
  return {std::min(a.X, b.X), std::min(a.Y, b.Y), std::max(a.X, b.X), std::max(a.Y, b.Y)};
}

/// `value`, which lies from `from` to `from + length`, on a scale from `to` to `to + toLength`.
constexpr std::int32_t Scaled(std::int64_t value, std::int64_t from, std::int64_t length, std::int64_t to,
                              std::int64_t toLength) {
  return Near(to + (value - from) * toLength / length);
}

/// The share of `target` on which `part` of `source` comes to lie.
constexpr TRect Share(const TRect& target, const TRect& source, const TRect& part) {
  const auto x = [&](std::int32_t at) { return Scaled(at, source.Left, source.Width(), target.Left, target.Width()); };
  const auto y = [&](std::int32_t at) { return Scaled(at, source.Top, source.Height(), target.Top, target.Height()); };
  return {x(part.Left), y(part.Top), x(part.Right), y(part.Bottom)};
}

}  // namespace

// -- State ------------------------------------------------------------------------------------------------------------

void TCanvas::SetBrushColor(TColor color) {
  state_.Brush.Color = color;
  if (state_.Brush.Style == bsClear) state_.Brush.Style = bsSolid;
}

void TCanvas::SetFont(const TFontData& font) {
  state_.Font = font;
  if (font.Name.size() > kMostFontName) state_.Font.Name = CutAtCodePoint(font.Name, kMostFontName);
}

void TCanvas::Save() {
  saved_.push_back(state_);
  try {
    device_.SaveClip();
  } catch (...) {
    saved_.pop_back();  // a saver that was never made restores nothing
    throw;
  }
}

void TCanvas::Restore() {
  if (saved_.empty()) throw EInvalidOperation("Restore of a canvas without a Save");
  device_.RestoreClip();
  state_ = std::move(saved_.back());
  saved_.pop_back();
}

void TCanvas::IntersectClip(const TRect& rect) { device_.IntersectClip(Near(rect)); }

TColor TCanvas::Back() const { return state_.BackMode == cbmOpaque ? Resolved(state_.BackColor) : clNone; }

TInk TCanvas::Ink() const { return {Resolved(state_.Pen), Resolved(state_.Brush), Back()}; }

const TFontData& TCanvas::PlainFont() {
  if (IsPlain(state_.Font.Color)) return state_.Font;
  plainFont_ = state_.Font;
  plainFont_.Color = Resolved(plainFont_.Color);
  return plainFont_;
}

// -- Lines and shapes -------------------------------------------------------------------------------------------------

template <class TDraw>
void TCanvas::DrawShape(const TRect& rect, const TDraw& draw) const {
  const TRect box = Near(rect);
  const TInk ink = Ink();
  if (!box.IsEmpty() && ShowsShapes(ink) && !IsSkipped()) draw(box, ink);
}

template <class TDraw>
void TCanvas::DrawPoints(std::span<const TPoint> points, const TInk& ink, const TDraw& draw) const {
  if (points.empty() || IsSkipped()) return;
  if (std::ranges::all_of(points, [](TPoint p) { return p == Near(p); })) return draw(points, ink);
  std::vector<TPoint> near(points.size());
  std::ranges::transform(points, near.begin(), [](TPoint p) { return Near(p); });
  draw(near, ink);
}

void TCanvas::LineTo(TPoint point) {
  Line(state_.Position, point);
  state_.Position = point;
}

void TCanvas::Line(TPoint from, TPoint to) { Polyline(std::array{from, to}); }

void TCanvas::Polyline(std::span<const TPoint> points) {
  const TInk ink = Ink();
  if (ShowsLines(ink)) DrawPoints(points, ink, [&](auto p, const TInk& i) { device_.Polyline(p, i); });
}

void TCanvas::Polygon(std::span<const TPoint> points) {
  const TInk ink = Ink();
  if (ShowsShapes(ink)) DrawPoints(points, ink, [&](auto p, const TInk& i) { device_.Polygon(p, i); });
}

void TCanvas::Arc(const TRect& rect, TArc arc) {
  if (ShowsLines(Ink())) DrawArc(rect, arc, asArc);
}
void TCanvas::Chord(const TRect& rect, TArc arc) { DrawArc(rect, arc, asChord); }
void TCanvas::Pie(const TRect& rect, TArc arc) { DrawArc(rect, arc, asPie); }

void TCanvas::DrawArc(const TRect& rect, TArc arc, TArcShape shape) {
  if (!std::isfinite(arc.Start) || !std::isfinite(arc.Sweep) || arc.Sweep == 0) return;
  const TArc told{WithinOneTurn(arc.Start), std::clamp(arc.Sweep, -360.0, 360.0)};
  DrawShape(rect, [&](const TRect& r, const TInk& ink) { device_.Arc(r, told, shape, ink); });
}

void TCanvas::Rectangle(const TRect& rect) {
  DrawShape(rect, [&](const TRect& r, const TInk& ink) { device_.Rectangle(r, ink); });
}

void TCanvas::RoundRect(const TRect& rect, TSize corner) {
  const TSize round{std::clamp(corner.Width, 0, kFarthest), std::clamp(corner.Height, 0, kFarthest)};
  DrawShape(rect, [&](const TRect& r, const TInk& ink) { device_.RoundRect(r, round, ink); });
}

void TCanvas::Ellipse(const TRect& rect) {
  DrawShape(rect, [&](const TRect& r, const TInk& ink) { device_.Ellipse(r, ink); });
}

// -- Filled -----------------------------------------------------------------------------------------------------------

void TCanvas::FillRect(const TRect& rect) {
  DrawShape(rect, [&](const TRect& r, const TInk& ink) {
    if (ink.Brush.Style != bsClear) device_.FillRect(r, ink);
  });
}

void TCanvas::Gradient(const TRect& rect, const TGradient& gradient) {
  const TRect box = Near(rect);
  if (box.IsEmpty() || gradient.StartColor == clNone || gradient.EndColor == clNone) return;
  device_.Gradient(box, {Resolved(gradient.StartColor), Resolved(gradient.EndColor), gradient.Direction});
}

void TCanvas::SetPixel(TPoint point, TColor color) {
  const TRect pixel = Near(TRect::At(Near(point), {1, 1}));
  if (!pixel.IsEmpty() && color != clNone) device_.FillRect(pixel, {.Pen = {}, .Brush = {Resolved(color)}});
}

// -- Frames -----------------------------------------------------------------------------------------------------------

void TCanvas::DrawFrame(const TRect& rect, const TPenData& pen) {
  const TRect box = Near(rect);
  const bool isSkipped = pen.Mode == pmXor && device_.IsPaper();
  if (!box.IsEmpty() && !isSkipped && pen.Style != psClear) device_.Rectangle(box, {pen, {clWhite, bsClear}, clNone});
}

void TCanvas::FrameRect(const TRect& rect) {
  if (state_.Brush.Style != bsClear) DrawFrame(rect, Resolved({state_.Brush.Color, 1, psSolid, state_.Pen.Mode}));
}

TRect TCanvas::Frame3D(const TRect& rect, TColor topLeft, TColor bottomRight, std::int32_t width) {
  const TInk upper{Resolved(TPenData{topLeft, 1, psSolid, state_.Pen.Mode}), {}, clNone};
  const TInk lower{Resolved(TPenData{bottomRight, 1, psSolid, state_.Pen.Mode}), {}, clNone};
  const auto draw = [&](std::span<const TPoint> points, const TInk& ink) {
    if (ShowsLines(ink) && !IsSkipped()) device_.Polyline(points, ink);
  };
  TRect box = Near(rect);
  for (std::int32_t i = 0; i < std::min(width, kMostFrames) && !box.IsEmpty(); ++i, box = box.Inflated(-1, -1)) {
    const std::int32_t right = box.Right - 1, bottom = box.Bottom - 1;
    if (right > box.Left && bottom > box.Top)
      draw(std::array<TPoint, 3>{{{box.Left, bottom - 1}, box.TopLeft(), {right - 1, box.Top}}}, upper);
    draw(std::array<TPoint, 3>{{{right, box.Top}, {right, bottom}, {box.Left, bottom}}}, lower);
  }
  const std::int32_t inset = std::clamp(width, 0, kFarthest);
  return Near(rect).Inflated(-inset, -inset);
}

void TCanvas::DrawFocusRect(const TRect& rect) { DrawFrame(rect, {clWhite, 1, psAlternate, pmXor}); }

// -- Pictures ---------------------------------------------------------------------------------------------------------

void TCanvas::Draw(TPoint topLeft, const TBitmap& bitmap) {
  StretchDraw(TRect::At(Near(topLeft), bitmap.Size()), bitmap);
}

void TCanvas::StretchDraw(const TRect& target, const TBitmap& bitmap) {
  CopyRect(target, bitmap, TRect::At({}, bitmap.Size()));
}

void TCanvas::CopyRect(const TRect& target, const TBitmap& bitmap, const TRect& source) {
  const TRect whole = Near(source), box = Near(target);
  const TRect part = whole.Intersected(TRect::At({}, bitmap.Size()));
  if (part.IsEmpty() || box.IsEmpty()) return;
  const TRect share = Share(box, whole, part);
  if (!share.IsEmpty()) device_.Draw(bitmap, part, share);
}

// -- Text -------------------------------------------------------------------------------------------------------------

void TCanvas::TextOutRotated(TPoint topLeft, double angle, std::string_view text) {
  if (!std::isfinite(angle) || state_.Font.Color == clNone) return;
  device_.TextOut(Near(topLeft), text, {PlainFont(), Back(), WithinOneTurn(angle)});
}

void TCanvas::TextRect(const TRect& rect, TPoint topLeft, std::string_view text) {
  FillRect(rect);
  if (Near(rect).IsEmpty()) return;
  const TCanvasStateSaver saved(*this);
  IntersectClip(rect);
  TextOut(topLeft, text);
}

/// Leaves as many lines as there is room for, but at least one, each no wider than the rectangle.
void TCanvas::Elide(std::vector<std::string>& lines, const TRect& rect, std::int64_t lineHeight) const {
  const auto room = static_cast<std::size_t>(std::max<std::int64_t>(rect.Height() / lineHeight, 1));
  const bool isCut = lines.size() > room;
  if (isCut) lines.resize(room);
  for (std::string& line : lines) {
    const auto elide = isCut && &line == &lines.back() ? ElideAlways : ElideText;
    line = elide(line, rect.Width(), state_.Font, device_);
  }
}

std::int32_t TCanvas::DrawText(const TRect& rect, std::string_view text, const TTextLayout& layout) {
  const TRect box = Near(rect);
  const std::optional<std::int32_t> wrap = layout.WordWrap ? std::optional(box.Width()) : std::nullopt;
  std::vector<std::string> lines = BreakText(text, wrap, state_.Font, device_);
  const std::int64_t lineHeight = std::max(TextHeight(" "), 1), all = lineHeight * std::ssize(lines);
  if (box.IsEmpty()) return Near(all);
  if (layout.EndEllipsis) Elide(lines, box, lineHeight);
  DrawLines(box, lines, layout);
  return Near(all);
}

void TCanvas::DrawLines(const TRect& rect, std::span<const std::string> lines, const TTextLayout& layout) {
  const auto inset = [](TTextLayout::TAlign align, std::int64_t room) {
    return align == TTextLayout::kNear ? 0 : align == TTextLayout::kCentre ? room / 2 : room;
  };
  const TCanvasStateSaver saved(*this);
  IntersectClip(rect);
  const std::int64_t lineHeight = std::max(TextHeight(" "), 1);
  std::int64_t y = rect.Top + inset(layout.Vertical, rect.Height() - lineHeight * std::ssize(lines));
  for (const std::string& line : lines) {
    if (y + lineHeight > rect.Top && y < rect.Bottom && !line.empty()) {
      const std::int64_t room = std::int64_t{rect.Width()} - TextWidth(line);
      TextOut({Near(rect.Left + inset(layout.Horizontal, room)), Near(y)}, line);
    }
    y += lineHeight;
  }
}

// -- In depth ---------------------------------------------------------------------------------------------------------

void TCanvas::MoveTo3D(std::int32_t x, std::int32_t y, std::int32_t z) { MoveTo(Project(x, y, z)); }
void TCanvas::LineTo3D(std::int32_t x, std::int32_t y, std::int32_t z) { LineTo(Project(x, y, z)); }

void TCanvas::LineWithZ(TPoint from, TPoint to, std::int32_t z) {
  Line(Project(from.X, from.Y, z), Project(to.X, to.Y, z));
}

void TCanvas::RectangleWithZ(const TRect& rect, std::int32_t z) {
  const TRect box = Ordered(Near(rect.TopLeft()), Near(TPoint{rect.Right, rect.Bottom}));
  if (box.IsEmpty()) return;
  if (state_.Projection.KeepsRectangles())
    return Rectangle(Ordered(Project(box.Left, box.Top, z), Project(box.Right, box.Bottom, z)));
  const std::int32_t right = box.Right - 1, bottom = box.Bottom - 1;
  PolygonWithZ({box.TopLeft(), {right, box.Top}, {right, bottom}, {box.Left, bottom}}, z);
}

void TCanvas::EllipseWithZ(const TRect& rect, std::int32_t z) {
  const TRect box = Ordered(Near(rect.TopLeft()), Near(TPoint{rect.Right, rect.Bottom}));
  if (box.IsEmpty()) return;
  if (state_.Projection.KeepsRectangles())
    return Ellipse(Ordered(Project(box.Left, box.Top, z), Project(box.Right, box.Bottom, z)));
  const double radiusX = (box.Width() - 1) / 2.0, radiusY = (box.Height() - 1) / 2.0;
  std::array<TPoint, 64> corners;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const double angle = 2 * std::numbers::pi * static_cast<double>(i) / corners.size();
    corners[i] = Project(box.Left + radiusX * (1 + std::cos(angle)), box.Top + radiusY * (1 - std::sin(angle)), z);
  }
  Polygon(corners);
}

void TCanvas::TriangleWithZ(TPoint a, TPoint b, TPoint c, std::int32_t z) { PolygonWithZ({a, b, c}, z); }

void TCanvas::PolygonWithZ(std::span<const TPoint> points, std::int32_t z) {
  std::vector<TPoint> seen(points.size());
  std::ranges::transform(points, seen.begin(), [&](TPoint p) { return Project(p.X, p.Y, z); });
  Polygon(seen);
}

}  // namespace vx
