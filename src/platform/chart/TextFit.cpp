#include "platform/chart/TextFit.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "platform/runtime/Text.h"

namespace vx {
namespace {

constexpr std::size_t kMostBytes = 2000;  // more never fits a picture
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

std::string Elided(std::string_view text, std::size_t end) {
  text = text.substr(0, end);
  while (text.ends_with(' ')) text.remove_suffix(1);
  return std::string(text).append(kEllipsis);
}

}  // namespace

std::string ElideText(std::string_view text, std::int32_t width, const TFont& font, const ITextMeter& meter) {
  const auto fits = [&](std::string_view part) { return meter.MeasureText(part, font).Width <= width; };
  const std::string line = OnOneLine(CutAtCodePoint(text, kMostBytes));
  if (line.size() == text.size() && fits(line)) return line;
  const std::vector<std::size_t> ends = Ends(line);
  const auto tooLong =
      std::partition_point(ends.begin(), ends.end(), [&](std::size_t end) { return fits(Elided(line, end)); });
  if (tooLong != ends.begin()) return Elided(line, *std::prev(tooLong));
  return fits(kEllipsis) ? std::string(kEllipsis) : std::string();
}

}  // namespace vx
