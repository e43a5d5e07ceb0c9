#include "platform/canvas/TextFit.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/runtime/Text.h"

namespace vx {
namespace {

constexpr std::size_t kMostBytes = 2000;        // more never fits a line
constexpr std::size_t kMostBytesOfAll = 65536;  // nor a picture
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

std::string OnOneLine(std::string_view text) {
  std::string line(text);
  std::replace_if(
      line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
  return line;
}

/// Where each code point ends.
std::vector<std::size_t> Ends(std::string_view text) {
  std::vector<std::size_t> ends;
  for (std::size_t at = 0; at < text.size(); ends.push_back(at)) NextCodePoint(text, at);
  return ends;
}

std::string_view WithoutBlanksBehind(std::string_view text) {
  while (text.ends_with(' ')) text.remove_suffix(1);
  return text;
}

std::string Elided(std::string_view text, std::size_t end) {
  return std::string(WithoutBlanksBehind(text.substr(0, end))).append(kEllipsis);
}

/// Breaks one paragraph, a line at a time.
class TLineBreaker {
 public:
  TLineBreaker(std::string_view text, std::int32_t width, const TFontData& font, const ITextMeter& meter)
      : text_(text), ends_(Ends(text)), width_(width), font_(font), meter_(meter) {}

  bool IsDone() const { return first_ == ends_.size(); }
  std::string Next();

 private:
  std::size_t Begin() const { return first_ == 0 ? 0 : ends_[first_ - 1]; }
  std::string_view Part(std::size_t last) const { return text_.substr(Begin(), ends_[last] - Begin()); }
  bool Fits(std::size_t last) const { return meter_.MeasureText(Part(last), font_).Width <= width_; }
  std::size_t FirstTooWide() const;
  std::size_t BreakBefore(std::size_t tooWide) const;

  std::string_view text_;
  std::vector<std::size_t> ends_;
  std::int32_t width_;
  const TFontData& font_;
  const ITextMeter& meter_;
  std::size_t first_ = 0;  ///< code point that begins the next line
};

/// The code point with which the line gets too wide. Looks ahead in growing steps, so that a long paragraph isn't
/// measured whole for each line.
std::size_t TLineBreaker::FirstTooWide() const {
  std::size_t step = 16, low = first_;
  while (low + step < ends_.size() && Fits(low + step - 1)) low += std::exchange(step, step * 2);
  const std::size_t high = std::min(low + step, ends_.size());
  const auto begin = ends_.begin() + static_cast<std::ptrdiff_t>(low);
  const auto end = ends_.begin() + static_cast<std::ptrdiff_t>(high);
  const auto fits = [&](const std::size_t& e) { return Fits(static_cast<std::size_t>(&e - ends_.data())); };
  return static_cast<std::size_t>(std::partition_point(begin, end, fits) - ends_.begin());
}

/// Where the next line begins, at the latest at `tooWide`.
std::size_t TLineBreaker::BreakBefore(std::size_t tooWide) const {
  const auto isBlank = [&](std::size_t i) { return text_[i == 0 ? 0 : ends_[i - 1]] == ' '; };
  std::size_t at = tooWide;
  while (at > first_ && !isBlank(at)) --at;
  std::size_t end = at;  // of the last word before that blank
  while (end > first_ && isBlank(end - 1)) --end;
  return end > first_ ? at : std::max(tooWide, first_ + 1);
}

std::string TLineBreaker::Next() {
  const std::size_t begin = Begin(), tooWide = FirstTooWide();
  if (tooWide == ends_.size()) {
    first_ = tooWide;
    return std::string(text_.substr(begin));
  }
  first_ = BreakBefore(tooWide);
  const std::string_view line = text_.substr(begin, Begin() - begin);
  while (!IsDone() && text_[Begin()] == ' ') ++first_;
  return std::string(WithoutBlanksBehind(line));
}

void AppendLines(std::vector<std::string>& lines, TLineBreaker breaker) {
  do lines.push_back(breaker.Next());
  while (!breaker.IsDone());
}

}  // namespace

std::string ElideText(std::string_view text, std::int32_t width, const TFontData& font, const ITextMeter& meter) {
  const auto fits = [&](std::string_view part) { return meter.MeasureText(part, font).Width <= width; };
  const std::string line = OnOneLine(CutAtCodePoint(text, kMostBytes));
  if (line.size() == text.size() && fits(line)) return line;
  const std::vector<std::size_t> ends = Ends(line);
  const auto tooLong =
      std::partition_point(ends.begin(), ends.end(), [&](std::size_t end) { return fits(Elided(line, end)); });
  if (tooLong != ends.begin()) return Elided(line, *std::prev(tooLong));
  return fits(kEllipsis) ? std::string(kEllipsis) : std::string();
}

std::string ElideAlways(std::string_view text, std::int32_t width, const TFontData& font, const ITextMeter& meter) {
  return ElideText(std::string(WithoutBlanksBehind(text)).append(kEllipsis), width, font, meter);
}

std::vector<std::string> BreakText(std::string_view text, std::optional<std::int32_t> width, const TFontData& font,
                                   const ITextMeter& meter) {
  text = CutAtCodePoint(text, kMostBytesOfAll);
  std::vector<std::string> lines;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t feed = std::min(text.find('\n', begin), text.size());
    std::string_view paragraph = text.substr(begin, feed - begin);
    if (feed < text.size() && paragraph.ends_with('\r')) paragraph.remove_suffix(1);
    const std::string line = OnOneLine(paragraph);
    if (width)
      AppendLines(lines, TLineBreaker(line, *width, font, meter));
    else
      lines.push_back(line);
    begin = feed + 1;
  }
  return lines;
}

}  // namespace vx
