// ChartValueList.h: one channel of a series, a double for each of its points.
//
// A series has the channels X and Y; more may be added ("Infinite", "RecordId"). Every channel is made with the
// series as its owner and is from then on one of the series' own: it grows, shrinks and is cleared with the points,
// and dies with the series.
//
//   auto* sizes = New<TChartValueList>(series, "Size");
//   sizes->TempValue = 3.5;              // what the next point gets in this channel
//   series->AddXY(1, 10);
//   sizes->Value(0);                     // 3.5
//
// A position outside raises EListError. Least and greatest value are computed when asked for, and kept until a change.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/runtime/Object.h"

namespace vx {

class TChartSeries;

/// In which order the points of a series are joined.
enum TChartListOrder : std::uint8_t {
  loNone,       ///< as they were added
  loAscending,  ///< by rising value, equal ones as they were added
};

class TChartValueList : public TPersistent {
 public:
  /// Joins the channels of `owner`, which must not be null; filled with TempValue if there are points already.
  TChartValueList(TChartSeries* owner, std::string name);
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TChartSeries& Owner() const { return owner_; }
  const std::string& Name() const { return name_; }

  // -- Values -------------------------------------------------------------------------------------------------------
  std::int32_t Count() const { return static_cast<std::int32_t>(values_.size()); }
  double Value(std::int32_t index) const;
  void SetValue(std::int32_t index, double value);
  const std::vector<double>& Values() const { return values_; }

  /// Of the finite values; not a number if there are none.
  double MinValue() const;
  double MaxValue() const;

  // -- For the owner ------------------------------------------------------------------------------------------------
  void Append(double value);
  void Delete(std::int32_t index);
  void Clear();

  double TempValue = 0;            ///< what the next point gets
  bool DateTime = false;           ///< values are dates
  TChartListOrder Order = loNone;  ///< used of the X channel only

 private:
  void FindBounds() const;

  TChartSeries& owner_;
  std::string name_;
  std::vector<double> values_;
  mutable double min_ = 0;
  mutable double max_ = 0;
  mutable bool boundsKnown_ = false;
};

}  // namespace vx
