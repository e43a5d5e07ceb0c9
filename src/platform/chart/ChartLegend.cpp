#include "platform/chart/ChartLegend.h"

#include <algorithm>
#include <utility>

namespace vx {

const TClass& TChartLegend::StaticClass() {
  static const TClass info("TChartLegend", &TPersistent::StaticClass());
  return info;
}

namespace {

constexpr std::int32_t kLargestShare = 4;  // of the height: a quarter
constexpr double kWidestShare = 0.45;      // of the width, for one entry among several
constexpr std::int32_t kSmallestTextInEms = 3;

std::int32_t CeilDiv(std::int32_t a, std::int32_t b) { return (a + b - 1) / b; }

class TLegendLayouter {
 public:
  TLegendLayouter(const std::vector<std::string>& texts, const TRect& area, const TChartStyle& style,
                  const ITextMeter& meter)
      : texts_(texts), area_(area), style_(style), meter_(meter) {
    textHeight_ = meter.MeasureText("0", style.LabelFont).Height;
    rowHeight_ = textHeight_ + style.Scaled(2);
    mostRows_ = area.Height() / kLargestShare / std::max(rowHeight_, 1);
  }

  std::vector<TLegendEntry> Run() {
    if (texts_.empty() || mostRows_ < 1 || LargestTextWidth() < 1) return {};
    MeasureEntries();
    const std::int32_t all = Total(widths_) + Gap() * (Count() - 1);
    if (all <= area_.Width()) return InOneRow(all);
    return InColumns();
  }

 private:
  std::int32_t Count() const { return static_cast<std::int32_t>(texts_.size()); }
  std::int32_t Gap() const { return style_.Scaled(14); }
  std::int32_t IconWidth() const { return style_.Scaled(16); }
  std::int32_t IconRoom() const { return IconWidth() + style_.Scaled(5); }
  std::int32_t LargestTextWidth() const {
    const auto share = static_cast<std::int32_t>(area_.Width() * (Count() == 1 ? 1.0 : kWidestShare));
    return share - IconRoom();
  }
  static std::int32_t Total(const std::vector<std::int32_t>& widths) {
    std::int64_t total = 0;
    for (const std::int32_t width : widths) total += width;
    return static_cast<std::int32_t>(std::min<std::int64_t>(total, INT32_MAX / 2));
  }

  void MeasureEntries() {
    for (const std::string& text : texts_) {
      const std::string shown = ElideText(text, LargestTextWidth(), style_.LabelFont, meter_);
      widths_.push_back(IconRoom() + meter_.MeasureText(shown, style_.LabelFont).Width);
    }
  }

  std::vector<TLegendEntry> InOneRow(std::int32_t width) {
    std::int32_t left = area_.Left + (area_.Width() - width) / 2;
    for (std::int32_t i = 0; i < Count(); ++i) {
      const std::int32_t own = widths_[static_cast<std::size_t>(i)];
      AddEntry(i, left, area_.Bottom - rowHeight_, own);
      left += own + Gap();
    }
    return std::move(entries_);
  }

  /// Columns as wide as the widest entry if all find a place then, else narrower ones.
  std::vector<TLegendEntry> InColumns() {
    const std::int32_t smallest = IconRoom() + kSmallestTextInEms * style_.LabelFont.Height;
    std::int32_t width = *std::max_element(widths_.begin(), widths_.end());
    if (CeilDiv(Count(), ColumnsOf(width)) > mostRows_) {
      const std::int32_t columns = CeilDiv(Count(), mostRows_);
      width = std::max(smallest, (area_.Width() + Gap()) / columns - Gap());
    }
    const std::int32_t shown = std::min(Count(), ColumnsOf(width) * mostRows_);
    const std::int32_t rows = CeilDiv(shown, ColumnsOf(width));
    const std::int32_t columns = CeilDiv(shown, rows);
    const std::int32_t left = area_.Left + (area_.Width() - columns * (width + Gap()) + Gap()) / 2;
    const std::int32_t top = area_.Bottom - rows * rowHeight_;
    for (std::int32_t i = 0; i < shown; ++i)
      AddEntry(i, left + i % columns * (width + Gap()), top + i / columns * rowHeight_, width);
    if (shown < Count()) CountTheRest(width);
    return std::move(entries_);
  }

  std::int32_t ColumnsOf(std::int32_t width) const { return std::max(1, (area_.Width() + Gap()) / (width + Gap())); }

  void AddEntry(std::int32_t index, std::int32_t left, std::int32_t top, std::int32_t width) {
    const std::string text =
        ElideText(texts_[static_cast<std::size_t>(index)], width - IconRoom(), style_.LabelFont, meter_);
    const std::int32_t height = style_.Scaled(10);
    const TRect icon = TRect::At({left, top + (textHeight_ - height) / 2}, {IconWidth(), height});
    const TRect box = TRect::At({left + IconRoom(), top}, meter_.MeasureText(text, style_.LabelFont));
    entries_.push_back({index, icon, {box, text}});
  }

  void CountTheRest(std::int32_t width) {
    TLegendEntry& last = entries_.back();
    const auto rest = Count() - static_cast<std::int32_t>(entries_.size()) + 1;
    const std::string text = ElideText("+" + std::to_string(rest), width, style_.LabelFont, meter_);
    const TRect box = TRect::At({last.Icon.Left, last.Label.Box.Top}, meter_.MeasureText(text, style_.LabelFont));
    last = {-1, {}, {box, text}};
  }

  const std::vector<std::string>& texts_;
  const TRect area_;
  const TChartStyle& style_;
  const ITextMeter& meter_;
  std::int32_t textHeight_;
  std::int32_t rowHeight_;
  std::int32_t mostRows_;
  std::vector<std::int32_t> widths_;
  std::vector<TLegendEntry> entries_;
};

}  // namespace

std::vector<TLegendEntry> LayoutLegend(const std::vector<std::string>& texts, const TRect& area,
                                       const TChartStyle& style, const ITextMeter& meter) {
  return TLegendLayouter(texts, area, style, meter).Run();
}

}  // namespace vx
