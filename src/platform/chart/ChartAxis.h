// ChartAxis.h: the settings of an axis, its layout as a value, and its painter.
//
// An automatic axis takes its range from the series. The left axis has round values; so has a bottom axis of numbers.
// A bottom axis of periods is given Items: the value and text of each period, the empty ones too. Their order and
// places are kept, and when there is no room for all texts, every second, third, fourth, ... is shown, so that labels
// never touch.
//
//   for (TDateTime month = first; month <= last; month = NextMonth(month))
//     chart->BottomAxis().Items.push_back({month, FormatDateTime("mmm yyyy", month)});
//
// Places are true to the value: a February is narrower than a March, and a bar stands around the first day of its
// month.
//
// Without items, a bottom axis labels the points' own labels, or, where X is a date, the points' dates.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/canvas/Canvas.h"
#include "platform/canvas/TextFit.h"
#include "platform/chart/ChartScale.h"
#include "platform/chart/ChartStyle.h"
#include "platform/component/Event.h"
#include "platform/runtime/Object.h"

namespace vx {

struct TAxisItem {
  double Value = 0;
  std::string Text;
};

class TChartAxis : public TPersistent {
 public:
  explicit TChartAxis(bool horizontal) : GridVisible(!horizontal), horizontal_(horizontal) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  bool Horizontal() const { return horizontal_; }

  // -- Range --------------------------------------------------------------------------------------------------------
  /// True as long as no bounds were set.
  bool Automatic() const { return automatic_; }
  void SetAutomatic(bool automatic) { automatic_ = automatic; }
  /// Meaningful only if the axis isn't automatic.
  double Minimum() const { return minimum_; }
  double Maximum() const { return maximum_; }
  /// Ends the automatic. Bounds that no axis can have (equal, in the wrong order) are replaced when drawn.
  void SetMinMax(double minimum, double maximum);

  // -- Look ---------------------------------------------------------------------------------------------------------
  std::string Title;
  std::vector<TAxisItem> Items;             ///< rising values
  TEvent<std::string(double)> OnLabelText;  ///< the text for a value, instead of a number or date; not asked for items
  bool GridVisible;

 private:
  bool horizontal_;
  bool automatic_ = true;
  double minimum_ = 0;
  double maximum_ = 0;
};

/// Where all of an axis lies.
struct TAxisLayout {
  TAxisRange Range;
  TAxisMap Map;
  std::vector<std::int32_t> Ticks;  ///< pixels along the axis
  std::vector<TLabelBox> Labels;
  TLabelBox Title;  ///< empty text for none
};

/// Grid lines across the plot and marks beside it. Drawn before the series.
void DrawAxis(TCanvas& canvas, const TAxisLayout& axis, const TRect& plot, const TChartAxis& settings,
              const TChartStyle& style);
/// Each in the font that is set.
void DrawLabels(TCanvas& canvas, const std::vector<TLabelBox>& labels);
void DrawLabel(TCanvas& canvas, const TLabelBox& label);

/// The smallest number k of a pleasant row (1, 2, 3, 4, 6, 12, ...) such that the widths of every k-th of the labels,
/// centred on the positions, leave `gap` pixels between. Widths are asked for only where needed.
template <class Widths>
std::size_t LabelInterval(const std::vector<std::int32_t>& positions, Widths&& widthOf, std::int32_t gap) {
  constexpr std::size_t kPleasant[] = {1, 2, 3, 4, 6, 12, 24, 36, 60, 120, 240, 600};
  const auto touches = [&](std::size_t k) {
    for (std::size_t i = k; i < positions.size(); i += k)
      if (positions[i] - positions[i - k] < (widthOf(i) + widthOf(i - k) + 1) / 2 + gap) return true;
    return false;
  };
  for (const std::size_t k : kPleasant)
    if (!touches(k)) return k;
  std::size_t k = 1200;
  while (touches(k)) k *= 2;
  return k;
}

}  // namespace vx
