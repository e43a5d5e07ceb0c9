// ChartData.h: from the records of a source to values by series and period.
//
//   TPointSet points = ReadPoints(source, plan, columns, vxgrOneMonth);  // one point a record with a date and a value
//   KeepLargest(points, 12);                                             // the rest becomes "others"
//   const TFoldedChart chart = FoldPoints(points, vxgrOneMonth, vxbtCumulate);
//
// Periods without records get their place here; the folding itself is that of Folding.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ColumnPlan.h"
#include "CsvSource.h"
#include "DateColumns.h"
#include "data/VXRAMCursorBucketer_CMP.h"
#include "datetime/VXDateGroup_UNT.h"

namespace vx::kestrix {

/// Positions of the columns that a chart is made of.
struct TChartColumns {
  TDateColumns date;
  std::size_t value = 0;
  std::optional<std::size_t> series;
};

struct TChartPoint {
  TDateTime date = 0;
  std::int32_t series = 0;  ///< position in TPointSet::series
  double value = 0;
};

struct TPointSet {
  std::vector<std::string> series;  ///< names, in order of first appearance
  std::vector<TChartPoint> points;  ///< in order of the records
  std::size_t withoutDate = 0;      ///< records left out
  std::size_t withoutValue = 0;     ///< records left out that have a date
};

/// Raises EUserError for a value that is no number, a date that is none, and one whose period the calendar lacks.
TPointSet ReadPoints(TCsvSource& source, const TColumnPlan& plan, const TChartColumns& columns, TVXGroupMode by);

/// Puts the series in order of their size, the sum of all values without their signs, largest first; of more than
/// `count` all but the largest become one, "others", which is the last.
void KeepLargest(TPointSet& set, std::size_t count);

/// The columns of the table in which so many points are folded; `date` is what messages call the first.
TColumnPlan PlanOfPoints(const std::string& date, std::size_t count);

struct TFoldedChart {
  std::vector<TDateTime> periods;  ///< every group from the first to the last, those without records too
  std::vector<std::string> series;
  std::vector<std::vector<std::optional<double>>> values;  ///< by series, then period
};

/// `by` as the points were read. Raises EUserError if the dates span more groups than a chart can take, or a value is
/// beyond what an axis can.
TFoldedChart FoldPoints(const TPointSet& set, TVXGroupMode by, TVXBucketType aggregate);

}  // namespace vx::kestrix
