#include "platform/canvas/RecordingDevice.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "platform/canvas/RecordingWords.h"
#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace recording {

std::string Quoted(std::string_view text) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string quoted = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7F && c != '"' && c != '\\')
      quoted += c;
    else
      quoted += {'\\', kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return quoted + '"';
}

}  // namespace recording

namespace {

using recording::Quoted;

std::string ToText(TPoint p) { return std::to_string(p.X) + "," + std::to_string(p.Y); }
std::string ToText(TSize s) { return ToText(TPoint{s.Width, s.Height}); }
std::string ToText(const TRect& r) { return ToText(r.TopLeft()) + " " + ToText(TPoint{r.Right, r.Bottom}); }

template <class T>
std::string ToText(std::span<const T> items) {
  std::string text;
  for (const T& item : items) text += (text.empty() ? "" : " ") + ToText(item);
  return text;
}

/// As short as it reads back to the same number.
std::string ToText(double number) {
  std::array<char, 32> digits;
  const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), number);
  return {digits.data(), written.ptr};
}

std::string Word(std::string_view word) { return word.empty() ? "" : " " + std::string(word); }

std::string ToText(const TPenData& pen) {
  std::string text = ColorToText(pen.Color);
  if (pen.Width != 1) text += " " + std::to_string(pen.Width);
  text += Word(recording::kPenStyles[pen.Style]);
  return pen.Mode == pmXor ? text + Word(recording::kXor) : text;
}

std::string ToText(const TBrushData& brush) {
  if (brush.Style == bsClear) return std::string(recording::kClear);
  return ColorToText(brush.Color) + Word(recording::kBrushStyles[brush.Style]);
}

std::string ToText(const TFontData& font) {
  std::string text = ColorToText(font.Color) + " " + std::to_string(font.Height);
  for (std::size_t bit = 0; bit < recording::kFontStyles.size(); ++bit)
    if ((font.Style >> bit & 1) != 0) text += Word(recording::kFontStyles[bit]);
  return font.Name == TFontData{}.Name ? text : text + " " + Quoted(font.Name);
}

/// One pixel, 0xAARRGGBB, as many times as it is repeated.
std::string PixelText(std::uint32_t pixel, std::size_t count) {
  const auto byte = [pixel](unsigned shift) { return static_cast<std::uint8_t>(pixel >> shift & 0xFF); };
  std::string text = " " + ColorToText(RGBColor(byte(16), byte(8), byte(0)));
  if (byte(24) != 255) text += ColorToText(RGBColor(byte(24), 0, 0)).substr(0, 2);
  return count == 1 ? text : text + "*" + std::to_string(count);
}

std::string ToText(const TBitmap& bitmap) {
  const TSize size = bitmap.Size();
  std::string text = std::to_string(size.Width) + "x" + std::to_string(size.Height);
  std::uint32_t last = 0;
  std::size_t count = 0;
  for (std::int32_t y = 0; y < size.Height; ++y) {
    for (const std::uint32_t pixel : bitmap.Row(y)) {
      if (count > 0 && pixel != last) text += PixelText(last, std::exchange(count, 0));
      last = pixel;
      ++count;
    }
  }
  return count == 0 ? text : text + PixelText(last, count);
}

bool HasGaps(const TPenData& pen) { return pen.Style != psSolid && pen.Style != psClear && pen.Style != psInsideFrame; }
bool HasGaps(const TBrushData& brush) { return brush.Style != bsSolid && brush.Style != bsClear; }

std::int32_t WidthOf(std::size_t codePoints, std::int32_t height) {
  const std::int64_t width = (static_cast<std::int64_t>(codePoints) * height * 6 + 9) / 10;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(width, 0, INT32_MAX));
}

}  // namespace

TSize TRecordingDevice::MeasureText(std::string_view text, const TFontData& font) const {
  return {WidthOf(CodePointCount(text), font.Height), font.Height};
}

TFontMetrics TRecordingDevice::MeasureFont(const TFontData& font) const {
  const auto ascent = static_cast<std::int32_t>((std::int64_t{font.Height} * 8 + 5) / 10);
  return {.Ascent = ascent, .Descent = font.Height - ascent, .AverageWidth = WidthOf(1, font.Height)};
}

// -- Clip -------------------------------------------------------------------------------------------------------------

void TRecordingDevice::SaveClip() {
  saved_.push_back(written_);
  WriteLine("save");
}

void TRecordingDevice::RestoreClip() {
  written_ = Need(saved_.empty() ? nullptr : &saved_.back(), "saved clip");
  saved_.pop_back();
  WriteLine("restore");
}

void TRecordingDevice::IntersectClip(const TRect& rect) { WriteLine("clip", ToText(rect)); }
void TRecordingDevice::IntersectClip(const TRegion& region) { WriteLine("clipregion", ToText(region.Rects())); }

// -- Shapes -----------------------------------------------------------------------------------------------------------

void TRecordingDevice::FillRect(const TRect& rect, const TInk& ink) {
  if (ink.Pen.Mode != written_.Pen.Mode) Write(ink.Pen);
  Write(ink.Brush);
  if (HasGaps(ink.Brush)) WriteBack(ink.Back);
  WriteLine("fill", ToText(rect));
}

void TRecordingDevice::Rectangle(const TRect& rect, const TInk& ink) {
  WriteShapeState(ink);
  WriteLine("rectangle", ToText(rect));
}

void TRecordingDevice::RoundRect(const TRect& rect, TSize corner, const TInk& ink) {
  WriteShapeState(ink);
  WriteLine("roundrect", ToText(rect) + " " + ToText(corner));
}

void TRecordingDevice::Ellipse(const TRect& rect, const TInk& ink) {
  WriteShapeState(ink);
  WriteLine("ellipse", ToText(rect));
}

void TRecordingDevice::Arc(const TRect& rect, TArc arc, TArcShape shape, const TInk& ink) {
  shape == asArc ? WriteLineState(ink) : WriteShapeState(ink);
  WriteLine(recording::kArcShapes[shape], ToText(rect) + " " + ToText(arc.Start) + " " + ToText(arc.Sweep));
}

void TRecordingDevice::Polygon(std::span<const TPoint> points, const TInk& ink) {
  WriteShapeState(ink);
  WriteLine("polygon", ToText(points));
}

void TRecordingDevice::Polyline(std::span<const TPoint> points, const TInk& ink) {
  WriteLineState(ink);
  WriteLine(points.size() == 2 ? "line" : "polyline", ToText(points));
}

// -- Pictures and text ------------------------------------------------------------------------------------------------

void TRecordingDevice::Gradient(const TRect& rect, const TGradient& gradient) {
  WriteLine("gradient", ToText(rect) + " " + ColorToText(gradient.StartColor) + " " + ColorToText(gradient.EndColor) +
                            Word(recording::kGradientDirections[gradient.Direction]));
}

void TRecordingDevice::Draw(const TBitmap& bitmap, const TRect& source, const TRect& target) {
  const std::size_t number = BitmapNumber(bitmap);
  WriteLine("draw", std::to_string(number) + " " + ToText(source) + " " + ToText(target));
}

void TRecordingDevice::TextOut(TPoint topLeft, std::string_view text, const TTextInk& ink) {
  WriteBack(ink.Back);
  Write(ink.Font);
  const std::string angle = ink.Angle == 0 ? "" : " " + ToText(ink.Angle);
  WriteLine("text", ToText(topLeft) + " " + Quoted(text) + angle);
}

// -- State ------------------------------------------------------------------------------------------------------------

void TRecordingDevice::Write(const TPenData& pen) {
  if (std::exchange(written_.Pen, pen) != pen) WriteLine("pen", ToText(pen));
}

void TRecordingDevice::Write(const TBrushData& brush) {
  const TBrushData old = std::exchange(written_.Brush, brush);
  const bool bothClear = old.Style == bsClear && brush.Style == bsClear;
  if (!bothClear && old != brush) WriteLine("brush", ToText(brush));
}

void TRecordingDevice::WriteBack(TColor back) {
  if (std::exchange(written_.Back, back) != back)
    WriteLine("back", back == clNone ? std::string(recording::kNone) : ColorToText(back));
}

void TRecordingDevice::Write(const TFontData& font) {
  if (written_.Font == font) return;
  written_.Font = font;
  WriteLine("font", ToText(font));
}

void TRecordingDevice::WriteLineState(const TInk& ink) {
  Write(ink.Pen);
  if (HasGaps(ink.Pen)) WriteBack(ink.Back);
}

void TRecordingDevice::WriteShapeState(const TInk& ink) {
  Write(ink.Pen);
  Write(ink.Brush);
  if (HasGaps(ink.Pen) || HasGaps(ink.Brush)) WriteBack(ink.Back);
}

std::size_t TRecordingDevice::BitmapNumber(const TBitmap& bitmap) {
  const auto found = std::ranges::find(bitmaps_, bitmap);
  const auto number = static_cast<std::size_t>(found - bitmaps_.begin()) + 1;
  if (found == bitmaps_.end()) {
    bitmaps_.push_back(bitmap);
    WriteLine("bitmap", std::to_string(number) + " " + ToText(bitmap));
  }
  return number;
}

void TRecordingDevice::WriteLine(std::string_view word, std::string_view rest) {
  text_.append(word);
  if (!rest.empty()) text_.append(" ").append(rest);
  text_ += '\n';
}

}  // namespace vx
