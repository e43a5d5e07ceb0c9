#include "platform/canvas/RecordingDevice.h"

#include <algorithm>
#include <utility>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace {

std::string ToText(TPoint p) { return std::to_string(p.X) + "," + std::to_string(p.Y); }
std::string ToText(const TRect& r) { return ToText(r.TopLeft()) + " " + ToText(TPoint{r.Right, r.Bottom}); }

std::string ToText(std::span<const TPoint> points) {
  std::string text;
  for (const TPoint& p : points) text += (text.empty() ? "" : " ") + ToText(p);
  return text;
}

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

constexpr const char* kPenStyleNames[] = {"", " dash", " dot", " dashdot", " dashdotdot", " clear"};

std::string FontToText(const TFont& font) {
  constexpr std::pair<TFontStyles, const char*> kStyles[] = {
      {fsBold, " bold"}, {fsItalic, " italic"}, {fsUnderline, " underline"}, {fsStrikeOut, " strikeout"}};
  std::string text = ColorToText(font.Color) + " " + std::to_string(font.Height);
  for (const auto& [style, name] : kStyles)
    if ((font.Style & style) != 0) text += name;
  return font.Name == TFont{}.Name ? text : text + " " + Quoted(font.Name);
}

}  // namespace

TSize TRecordingDevice::MeasureText(std::string_view text, const TFont& font) const {
  const auto count = static_cast<std::int64_t>(CodePointCount(text));
  const std::int64_t width = (count * font.Height * 6 + 9) / 10;
  return {static_cast<std::int32_t>(std::min<std::int64_t>(width, INT32_MAX)), font.Height};
}

void TRecordingDevice::SaveClip() {
  saved_.push_back(written_);
  text_ += "save\n";
}

void TRecordingDevice::RestoreClip() {
  written_ = Need(saved_.empty() ? nullptr : &saved_.back(), "saved clip");
  saved_.pop_back();
  text_ += "restore\n";
}

void TRecordingDevice::IntersectClip(const TRect& rect) { WriteLine("clip", ToText(rect)); }

void TRecordingDevice::FillRect(const TRect& rect, const TBrush& brush) {
  Write(brush);
  WriteLine("fill", ToText(rect));
}

void TRecordingDevice::Rectangle(const TRect& rect, const TPen& pen, const TBrush& brush) {
  Write(pen);
  Write(brush);
  WriteLine("rectangle", ToText(rect));
}

void TRecordingDevice::Ellipse(const TRect& rect, const TPen& pen, const TBrush& brush) {
  Write(pen);
  Write(brush);
  WriteLine("ellipse", ToText(rect));
}

void TRecordingDevice::Polygon(std::span<const TPoint> points, const TPen& pen, const TBrush& brush) {
  Write(pen);
  Write(brush);
  WriteLine("polygon", ToText(points));
}

void TRecordingDevice::Polyline(std::span<const TPoint> points, const TPen& pen) {
  Write(pen);
  WriteLine(points.size() == 2 ? "line" : "polyline", ToText(points));
}

void TRecordingDevice::TextOut(TPoint topLeft, std::string_view text, const TFont& font) {
  Write(font);
  WriteLine("text", ToText(topLeft) + " " + Quoted(text));
}

void TRecordingDevice::Write(const TPen& pen) {
  if (std::exchange(written_.Pen, pen) == pen) return;
  const std::string width = pen.Width == 1 ? "" : " " + std::to_string(pen.Width);
  WriteLine("pen", ColorToText(pen.Color) + width + kPenStyleNames[pen.Style]);
}

void TRecordingDevice::Write(const TBrush& brush) {
  const TBrush old = std::exchange(written_.Brush, brush);
  const bool bothClear = old.Style == bsClear && brush.Style == bsClear;
  if (bothClear || old == brush) return;
  WriteLine("brush", brush.Style == bsClear ? "clear" : ColorToText(brush.Color));
}

void TRecordingDevice::Write(const TFont& font) {
  if (std::exchange(written_.Font, font) != font) WriteLine("font", FontToText(font));
}

void TRecordingDevice::WriteLine(std::string_view word, std::string_view rest) {
  text_.append(word).append(" ").append(rest).append("\n");
}

}  // namespace vx
