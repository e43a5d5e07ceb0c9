#include "ChartCommand.h"

#include <algorithm>
#include <limits>
#include <ostream>
#include <utility>

#include "ColumnNames.h"
#include "Folding.h"
#include "InputFile.h"
#include "Interrupt.h"
#include "Picture.h"
#include "TableLoader.h"
#include "UserError.h"
#include "platform/chart/BarSeries.h"
#include "platform/chart/LineSeries.h"
#include "platform/runtime/DateTime.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr std::size_t kMostPointers = 60;  ///< periods up to which a line marks its points

// -- Columns ----------------------------------------------------------------------------------------------------------

TChartColumns ResolveColumns(const TChartOptions& options, const std::vector<std::string>& headings) {
  TChartColumns columns;
  columns.date = NeedDateColumns(headings, options.date);
  columns.value = NeedHeading(headings, options.value);
  if (columns.date.size() == 1 && columns.date[0] == columns.value)
    throw EUserError("--date and --value are the same column, " + Quoted(headings[columns.value]));
  if (!options.series.empty()) columns.series = NeedHeading(headings, options.series);
  return columns;
}

void TellLeftOut(const TPointSet& set, std::ostream& err) {
  const std::size_t count = set.withoutDate + set.withoutValue;
  if (count == 0) return;
  err << "kestrix: " << count << (count == 1 ? " record" : " records") << " left out: " << set.withoutDate
      << " without a date, " << set.withoutValue << " without a value\n";
}

std::string DefaultTitle(const TChartOptions& options, const std::string& heading) {
  const std::string how = options.aggregate == vxbtCumulate ? "" : " (" + NameOfAggregate(options.aggregate) + ")";
  return heading + how + " by " + NameOfGroupMode(options.by);
}

// -- The chart --------------------------------------------------------------------------------------------------------

TChartSeries* NewSeries(TChart& chart, const TChartOptions& options, std::size_t periods) {
  if (options.hasBars) return New<TBarSeries>(&chart);
  auto* const line = New<TLineSeries>(&chart);
  line->Pointer.Visible = periods <= kMostPointers;
  return line;
}

}  // namespace

TOwned<TChart> MakeChart(const TFoldedChart& folded, const TChartOptions& options, const std::string& title) {
  auto chart = Make<TChart>(nullptr);
  chart->Title().Text = OneLine(title);
  // Places are the numbers of the periods: months of 28 and 31 days are equally wide.
  const std::string format = GetGroupDateFormat(options.by);
  for (std::size_t i = 0; i < folded.periods.size(); ++i)
    chart->BottomAxis().Items.push_back({static_cast<double>(i), FormatDateTime(format, folded.periods[i])});
  for (std::size_t s = 0; s < folded.series.size(); ++s) {
    TChartSeries* const series = NewSeries(*chart, options, folded.periods.size());
    chart->AddSeries(series);
    series->SetTitle(OneLine(folded.series[s]));
    for (std::size_t i = 0; i < folded.periods.size(); ++i) {
      const auto& value = folded.values[s][i];
      series->AddXY(static_cast<double>(i), value.value_or(std::numeric_limits<double>::quiet_NaN()));
    }
  }
  chart->Legend().Visible = folded.series.size() > 1;
  return chart;
}

void RunChart(const TChartOptions& options, const TStreams& streams) {
  const TPictureKind kind = KindOfPicture(options.output);
  TResult result(options.output, PathsOf(options.input), streams);
  TInputs inputs(options.input, streams);
  TCsvSource& source = inputs.Source();
  const std::vector<std::string>& headings = source.Headings();
  const TChartColumns columns = ResolveColumns(options, headings);
  const TColumnPlan plan =
      PlanColumns(source, WishesOfFold(options.input.wishes, headings, columns.date, {columns.value}));
  CheckMemory(source, PlanOfPoints(headings[columns.date.front()], plan.records), options.input.limits);

  TPointSet points = ReadPoints(source, plan, columns, options.by);
  inputs.TellSkipped();
  TellLeftOut(points, streams.err);
  if (points.points.empty())
    throw EUserError({source.Name(), 0, {}}, "nothing to draw: no record has a date and a value");
  KeepLargest(points, options.top);
  const TFoldedChart folded = FoldPoints(points, options.by, options.aggregate);

  const auto chart = MakeChart(folded, options, options.title.value_or(DefaultTitle(options, headings[columns.value])));
  const std::string picture = PictureOf(kind, {.Size = options.size}, {[&](TCanvas& canvas) { chart->Draw(canvas); }});
  CheckInterrupt();
  result.Out() << picture;
  result.Finish();
}

}  // namespace vx::kestrix
