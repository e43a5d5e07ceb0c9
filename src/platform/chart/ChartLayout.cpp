#include "platform/chart/ChartLayout.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

#include "platform/runtime/DateTime.h"

namespace vx {
namespace {

constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();
constexpr double kMarginOfOnePlace = 1.5;  // steps to both sides where there is but one place
constexpr std::int32_t kMostTicksOnTheLeft = 10;
constexpr double kLinesPerInterval = 2.2;      // of text, between two ticks of the left axis
constexpr double kNumberWidthPerInterval = 6;  // label heights, between two ticks of a bottom axis of numbers

/// Values that have a text on the bottom axis.
using TPlaces = std::vector<TAxisItem>;

void SortPlaces(TPlaces& places) {
  std::erase_if(places, [](const TAxisItem& place) { return !std::isfinite(place.Value); });
  const auto before = [](const TAxisItem& a, const TAxisItem& b) { return a.Value < b.Value; };
  const auto same = [](const TAxisItem& a, const TAxisItem& b) { return a.Value == b.Value; };
  if (!std::is_sorted(places.begin(), places.end(), before)) std::stable_sort(places.begin(), places.end(), before);
  places.erase(std::unique(places.begin(), places.end(), same), places.end());
}

class TChartLayouter {
 public:
  TChartLayouter(const TCustomChart& chart, TSize size, const ITextMeter& meter)
      : chart_(chart), meter_(meter), picture_(TRect::At({}, size)) {
    layout_.Size = size;
    layout_.Style = StyleFor(size);
    area_ = picture_.Inflated(-Style().Margin, -Style().Margin);
    lineHeight_ = meter.MeasureText("0", Style().LabelFont).Height;
    for (std::int32_t i = 0; i < chart.SeriesCount(); ++i)
      if (chart.Series(i).Active()) active_.push_back(i);
  }

  TChartLayout Run() {
    PlaceTitle();
    PlaceLegend();
    PlaceAxisTitles();
    FindPlaces();
    PlaceAxes();
    CalcShapes();
    DropLabelsInTheWay();
    return std::move(layout_);
  }

 private:
  const TChartStyle& Style() const { return layout_.Style; }
  TSize Measure(std::string_view text) const { return meter_.MeasureText(text, Style().LabelFont); }
  TChartSeries& Series(std::int32_t index) const { return chart_.Series(index); }

  // -- Around the plot ----------------------------------------------------------------------------------------------
  void PlaceTitle() {
    if (!chart_.Title().Visible || area_.Height() < 6 * lineHeight_) return;
    const std::string text = ElideText(chart_.Title().Text, area_.Width(), Style().TitleFont, meter_);
    if (text.empty()) return;
    const TSize size = meter_.MeasureText(text, Style().TitleFont);
    layout_.Title = {TRect::At({area_.Left + (area_.Width() - size.Width) / 2, area_.Top}, size), text};
    area_.Top += size.Height + Style().Gap;
  }

  /// One series needs no legend: the title says what it is.
  void PlaceLegend() {
    std::vector<std::string> texts;
    for (const std::int32_t index : active_) texts.push_back(Series(index).Title());
    const bool named = std::any_of(texts.begin(), texts.end(), [](const std::string& text) { return !text.empty(); });
    if (!chart_.Legend().Visible || texts.size() < 2 || !named) return;
    for (TLegendEntry& entry : LayoutLegend(texts, area_, Style(), meter_)) AddLegendEntry(std::move(entry));
    for (const TLabelBox& label : layout_.LegendLabels)
      area_.Bottom = std::min(area_.Bottom, label.Box.Top - Style().Scaled(10));
  }

  void AddLegendEntry(TLegendEntry entry) {
    layout_.LegendLabels.push_back(std::move(entry.Label));
    if (entry.Index < 0) return;
    const std::int32_t index = active_[static_cast<std::size_t>(entry.Index)];
    const TSeriesFrame frame{.Color = chart_.ColorOf(index), .Scale = Style().Scale};
    layout_.LegendPictures.push_back({index, Series(index).CalcLegendShape(entry.Icon, frame)});
  }

  void PlaceAxisTitles() {
    const std::int32_t room = lineHeight_ + Style().Scaled(4);
    const std::string left = ElideText(chart_.LeftAxis().Title, area_.Width(), Style().LabelFont, meter_);
    if (!left.empty() && area_.Height() > 6 * room) {
      layout_.Left.Title = {TRect::At(area_.TopLeft(), Measure(left)), left};
      area_.Top += room;
    }
    const std::string bottom = ElideText(chart_.BottomAxis().Title, area_.Width(), Style().LabelFont, meter_);
    if (!bottom.empty() && area_.Height() > 6 * room) {
      const TSize size = Measure(bottom);
      layout_.Bottom.Title = {
          TRect::At({area_.Left + (area_.Width() - size.Width) / 2, area_.Bottom - size.Height}, size), bottom};
      area_.Bottom -= room;
    }
  }

  // -- Places of the bottom axis ------------------------------------------------------------------------------------
  /// The periods or points that are to be labelled; none for an axis of numbers.
  void FindPlaces() {
    places_ = chart_.BottomAxis().Items;
    if (places_.empty()) CollectPointLabels();
    if (places_.empty()) CollectDates();
    SortPlaces(places_);
    FindBarStep();
  }

  void CollectPointLabels() {
    for (const std::int32_t index : active_)
      for (std::int32_t i = 0; i < Series(index).Count(); ++i)
        if (!Series(index).XLabel(i).empty()) places_.push_back({Series(index).XValue(i), Series(index).XLabel(i)});
  }

  void CollectDates() {
    for (const std::int32_t index : active_)
      if (Series(index).XValues().DateTime)
        for (const double date : Series(index).XValues().Values()) places_.push_back({date, {}});
  }

  std::string TextOf(const TAxisItem& place) const {
    const auto& onLabelText = chart_.BottomAxis().OnLabelText;
    if (!place.Text.empty() || !chart_.BottomAxis().Items.empty()) return place.Text;
    return onLabelText ? onLabelText(place.Value) : DateToStr(place.Value);
  }

  /// Bars are as wide as the narrowest distance of two places allows.
  void FindBarStep() {
    std::vector<double> values;
    for (const TAxisItem& place : places_) values.push_back(place.Value);
    for (const std::int32_t index : active_)
      if (Series(index).StandsBeside()) std::ranges::copy(Series(index).XValues().Values(), std::back_inserter(values));
    std::erase_if(values, [](double value) { return !std::isfinite(value); });
    std::ranges::sort(values);
    values.erase(std::unique(values.begin(), values.end()), values.end());
    double narrowest = std::numeric_limits<double>::infinity();
    for (std::size_t i = 1; i < values.size(); ++i) narrowest = std::min(narrowest, values[i] - values[i - 1]);
    barStep_ = std::isfinite(narrowest) ? narrowest : 1;
    onePlace_ = values.size() < 2;
  }

  bool HasBars() const {
    return std::any_of(active_.begin(), active_.end(), [this](std::int32_t i) { return Series(i).StandsBeside(); });
  }

  // -- Axes ---------------------------------------------------------------------------------------------------------
  void PlaceAxes() {
    PlaceBothAxes();
    if (MakeRoomForTheEnds()) PlaceBothAxes();
  }

  void PlaceBothAxes() {
    layout_.Left.Ticks.clear();
    layout_.Left.Labels.clear();
    const std::int32_t labelTop = std::max(Style().TickLength + Style().Scaled(2), lineHeight_ / 2 + 1);
    TRect& plot = layout_.Plot;
    plot = area_;
    plot.Top += lineHeight_ / 2 + 1;
    plot.Bottom = std::max(plot.Bottom - labelTop - lineHeight_, plot.Top + 1);
    PlaceLeftAxis();
    plot.Right = std::max(plot.Right, plot.Left + 1);
    PlaceBottomAxis(plot.Bottom + labelTop);
  }

  /// The first and the last label of the bottom axis may reach beyond the plot, but not out of the picture.
  bool MakeRoomForTheEnds() {
    const std::vector<TLabelBox>& labels = layout_.Bottom.Labels;
    if (labels.empty()) return false;
    const std::int32_t edge = Style().Scaled(2);
    const std::int32_t left = std::max(0, picture_.Left + edge - labels.front().Box.Left);
    const std::int32_t right = std::max(0, labels.back().Box.Right - (picture_.Right - edge));
    if (left + right == 0 || left + right > layout_.Plot.Width() / 4) return false;
    area_.Left += left;
    area_.Right -= right;
    return true;
  }

  void PlaceLeftAxis() {
    TAxisLayout& axis = layout_.Left;
    const auto fitting =
        static_cast<std::int32_t>(layout_.Plot.Height() / (kLinesPerInterval * std::max(lineHeight_, 1)));
    axis.Range = LeftRange(std::clamp(fitting, 2, kMostTicksOnTheLeft));
    axis.Map = {axis.Range.Minimum, axis.Range.Maximum, layout_.Plot.Bottom - 1, layout_.Plot.Top};
    std::vector<std::string> texts;
    std::int32_t widest = 0;
    for (const double value : TicksOf(axis.Range)) {
      const auto& onLabelText = chart_.LeftAxis().OnLabelText;
      axis.Ticks.push_back(axis.Map.ToPixel(value));
      texts.push_back(onLabelText ? onLabelText(value) : TickText(value, axis.Range));
      widest = std::max(widest, Measure(texts.back()).Width);
    }
    if (widest > area_.Width() / 2) return;  // numbers are shown whole or not at all
    layout_.Plot.Left += widest + Style().Gap;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      const TSize size = Measure(texts[i]);
      const TPoint corner{area_.Left + widest - size.Width, axis.Ticks[i] - size.Height / 2};
      axis.Labels.push_back({TRect::At(corner, size), std::move(texts[i])});
    }
  }

  TAxisRange LeftRange(std::int32_t maxIntervals) const {
    const TChartAxis& axis = chart_.LeftAxis();
    if (!axis.Automatic()) return FixedRange(axis.Minimum(), axis.Maximum(), maxIntervals);
    double low = kNothing;
    double high = kNothing;
    TZero zero = TZero::kNever;
    for (const std::int32_t index : active_) {
      low = std::fmin(low, Series(index).MinYValue());  // fmin passes over what isn't a number
      high = std::fmax(high, Series(index).MaxYValue());
      zero = std::min(zero, Series(index).WantsZero());
    }
    return ChooseRange(low, high, zero, maxIntervals);
  }

  TAxisRange BottomRange(std::int32_t maxIntervals) const {
    const TChartAxis& axis = chart_.BottomAxis();
    if (!axis.Automatic()) return FixedRange(axis.Minimum(), axis.Maximum(), maxIntervals);
    double low = places_.empty() ? kNothing : places_.front().Value;
    double high = places_.empty() ? kNothing : places_.back().Value;
    for (const std::int32_t index : active_) {
      low = std::fmin(low, Series(index).MinXValue());
      high = std::fmax(high, Series(index).MaxXValue());
    }
    const double margin = onePlace_ ? barStep_ * kMarginOfOnePlace : HasBars() ? barStep_ / 2 : 0;
    if (places_.empty() && !HasBars()) return ChooseRange(low, high, TZero::kNever, maxIntervals);
    return FixedRange(low - margin, high + margin, maxIntervals);
  }

  void PlaceBottomAxis(std::int32_t labelTop) {
    TAxisLayout& axis = layout_.Bottom;
    const TRect& plot = layout_.Plot;
    const double roomPerNumber = kNumberWidthPerInterval * Style().LabelFont.Height;
    axis.Range = BottomRange(std::clamp(static_cast<std::int32_t>(plot.Width() / roomPerNumber), 2, 20));
    axis.Map = {axis.Range.Minimum, axis.Range.Maximum, plot.Left, plot.Right - 1};
    axis.Ticks.clear();
    axis.Labels.clear();
    TPlaces shown = places_.empty() ? NumberPlaces(axis.Range) : places_;
    std::erase_if(shown, [&](const TAxisItem& place) {
      return place.Value < axis.Range.Minimum || place.Value > axis.Range.Maximum;
    });
    PlaceBottomLabels(shown, labelTop);
  }

  TPlaces NumberPlaces(const TAxisRange& range) const {
    const auto& onLabelText = chart_.BottomAxis().OnLabelText;
    TPlaces places;
    const bool nothing =
        std::ranges::all_of(active_, [this](std::int32_t i) { return std::isnan(Series(i).MinXValue()); });
    if (nothing && chart_.BottomAxis().Automatic()) return places;  // numbers would mean nothing
    for (const double value : TicksOf(range))
      places.push_back({value, onLabelText ? onLabelText(value) : TickText(value, range)});
    return places;
  }

  void PlaceBottomLabels(const TPlaces& shown, std::int32_t labelTop) {
    TAxisLayout& axis = layout_.Bottom;
    std::vector<std::int32_t> at;
    for (const TAxisItem& place : shown) at.push_back(axis.Map.ToPixel(place.Value));
    const std::int32_t widest = layout_.Plot.Width() / 2;
    const auto textOf = [&](std::size_t i) { return ElideText(TextOf(shown[i]), widest, Style().LabelFont, meter_); };
    const auto widthOf = [&](std::size_t i) { return Measure(textOf(i)).Width; };
    const std::size_t interval = LabelInterval(at, widthOf, Style().Scaled(10));
    const bool allTicks = static_cast<std::int32_t>(at.size()) <= layout_.Plot.Width() / Style().Scaled(6);
    for (std::size_t i = 0; i < at.size(); ++i) {
      if (allTicks || i % interval == 0) axis.Ticks.push_back(at[i]);
      if (i % interval != 0) continue;
      std::string text = textOf(i);
      const TSize size = Measure(text);
      axis.Labels.push_back({TRect::At({at[i] - size.Width / 2, labelTop}, size), std::move(text)});
    }
  }

  // -- Series -------------------------------------------------------------------------------------------------------
  void CalcShapes() {
    TBarPlace bars{.Step = barStep_, .Index = 0, .Count = 0};
    for (const std::int32_t index : active_) bars.Count += Series(index).StandsBeside() ? 1 : 0;
    for (const std::int32_t index : active_) {
      const TSeriesFrame frame{layout_.Plot,          layout_.Bottom.Map, layout_.Left.Map,
                               chart_.ColorOf(index), Style().Scale,      bars};
      layout_.Series.push_back({index, Series(index).CalcShape(frame)});
      if (Series(index).StandsBeside()) ++bars.Index;
    }
  }

  // -- What remains -------------------------------------------------------------------------------------------------
  /// In a tiny picture even what was planned may be in the way; earlier kinds of labels win.
  void DropLabelsInTheWay() {
    std::vector<TRect> taken;
    const auto inTheWay = [&](const TLabelBox& label) {
      const bool free = picture_.Encloses(label.Box) &&
                        std::ranges::none_of(taken, [&](const TRect& box) { return box.Intersects(label.Box); });
      if (free) taken.push_back(label.Box);
      return !free;
    };
    for (TLabelBox* single : {&layout_.Title, &layout_.Left.Title, &layout_.Bottom.Title})
      if (!single->Text.empty() && inTheWay(*single)) *single = {};
    std::erase_if(layout_.Left.Labels, inTheWay);
    std::erase_if(layout_.Bottom.Labels, inTheWay);
    std::erase_if(layout_.LegendLabels, inTheWay);
  }

  const TCustomChart& chart_;
  const ITextMeter& meter_;
  const TRect picture_;
  TRect area_;  ///< what is still free
  std::int32_t lineHeight_ = 0;
  std::vector<std::int32_t> active_;
  TPlaces places_;
  double barStep_ = 1;
  bool onePlace_ = false;
  TChartLayout layout_;
};

/// Where upright things begin: at zero if that can be seen, else at the edge of the plot.
std::int32_t BaseLine(const TChartLayout& layout) {
  return std::clamp(layout.Left.Map.ToPixel(0), layout.Plot.Top, layout.Plot.Bottom - 1);
}

void DrawSeries(TCanvas& canvas, const TCustomChart& chart, const TChartLayout& layout) {
  const TCanvasStateSaver saved(canvas);
  const std::int32_t room = layout.Style.Scaled(4);  // for half of a line or pointer on the edge
  canvas.IntersectClip(layout.Plot.Inflated(room, room));
  for (const TSeriesLayout& series : layout.Series) chart.Series(series.Index).DrawShape(canvas, series.Shape);
}

void DrawTexts(TCanvas& canvas, const TChartLayout& layout) {
  const TCanvasStateSaver saved(canvas);
  canvas.SetFont(layout.Style.TitleFont);
  DrawLabel(canvas, layout.Title);
  canvas.SetFont(layout.Style.LabelFont);
  for (const TAxisLayout* axis : {&layout.Left, &layout.Bottom}) {
    DrawLabel(canvas, axis->Title);
    DrawLabels(canvas, axis->Labels);
  }
  DrawLabels(canvas, layout.LegendLabels);
}

}  // namespace

std::vector<TLabelBox> TChartLayout::Labels() const {
  std::vector<TLabelBox> all;
  for (const TLabelBox* single : {&Title, &Left.Title, &Bottom.Title})
    if (!single->Text.empty()) all.push_back(*single);
  for (const auto* some : {&Left.Labels, &Bottom.Labels, &LegendLabels})
    std::ranges::copy(*some, std::back_inserter(all));
  return all;
}

TChartLayout LayoutChart(const TCustomChart& chart, TSize size, const ITextMeter& meter) {
  return TChartLayouter(chart, size, meter).Run();
}

void DrawChart(TCanvas& canvas, const TCustomChart& chart, const TChartLayout& layout) {
  const TCanvasStateSaver saved(canvas);
  canvas.SetBrushColor(clWhite);
  canvas.FillRect(TRect::At({}, layout.Size));
  DrawAxis(canvas, layout.Left, layout.Plot, chart.LeftAxis(), layout.Style);
  DrawAxis(canvas, layout.Bottom, layout.Plot, chart.BottomAxis(), layout.Style);
  DrawSeries(canvas, chart, layout);
  canvas.SetPen(layout.Style.AxisPen);
  canvas.Line({layout.Plot.Left, BaseLine(layout)}, {layout.Plot.Right - 1, BaseLine(layout)});
  for (const TLegendPicture& picture : layout.LegendPictures)
    chart.Series(picture.SeriesIndex).DrawShape(canvas, picture.Shape);
  DrawTexts(canvas, layout);
}

}  // namespace vx
