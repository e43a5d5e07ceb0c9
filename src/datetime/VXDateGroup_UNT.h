// VXDateGroup_UNT.h: time buckets. Day, week, month, year, century.
//
// Says which group a date falls into, where the next one begins, how a group is labelled, how many of them fill a
// chart, and which mode suits a span of dates. Whoever folds records by time uses these boundaries and no others.
//
//   GetGroupDate(vxgrOneMonth, EncodeDate(2024, 2, 29))      // 2024-02-01
//   GetNextGroupDate(vxgrOneMonth, EncodeDate(2024, 2, 29))  // 2024-03-01
//   GetGroupDate(vxgrOneCentury, EncodeDate(1950, 7, 1))     // 2000-01-01: centuries are named by their last year
//   BestGroupMode(start, start + 98)                         // vxgrOneMonth
//
// The table VXGroupInfo is filled when the program starts; the locale's date format is copied then, and later changes
// of the locale don't reach it. Its names follow a translation of the texts.
//
// Errors. A month, year or century of a date outside the years 1 to 9999 raises EConvertError, as does a group that
// would begin there. A mode that isn't one of the five raises ENilAccess where its row is asked for.
//
// Cost: a few tens of nanoseconds, except GetGroupDateHorizon, which walks up to 200 groups. Main thread only.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/component/EnumInfo.h"
#include "platform/runtime/DateTime.h"

namespace vx {

/// Size of a group, from fine to coarse. The order is the ordinal and is streamed.
enum TVXGroupMode : std::uint8_t { vxgrOneDay, vxgrOneWeek, vxgrOneMonth, vxgrOneYear, vxgrOneCentury };

template <>
struct TEnumInfo<TVXGroupMode> {
  static constexpr std::string_view kTypeName = "TVXGroupMode";
  static constexpr std::string_view kPrefix = "vxgr";
  static constexpr std::string_view kNames[] = {"vxgrOneDay", "vxgrOneWeek", "vxgrOneMonth", "vxgrOneYear",
                                                "vxgrOneCentury"};
};

/// What is known of a mode.
struct TVXGroupInfo {
  std::string Name;            ///< for display
  std::int32_t Horizon = 0;    ///< groups that fit one screen of a chart
  std::int32_t PointSize = 0;  ///< size of the marks of a line series
  double Increment = 0;        ///< mean length in days
  std::string DateFormat;      ///< prints a group's date, for FormatDateTime
};

/// One row a mode.
extern const std::array<TVXGroupInfo, 5>& VXGroupInfo;

namespace VXDateGroup_UNT {

// -- The table ------------------------------------------------------------------------------------------------------

std::string GetGroupName(TVXGroupMode mode);
std::string GetGroupDateFormat(TVXGroupMode mode);
std::int32_t GetGroupHorizon(TVXGroupMode mode);
std::int32_t GetGroupPointSize(TVXGroupMode mode);
double GetGroupIncrement(TVXGroupMode mode);

// -- Groups ---------------------------------------------------------------------------------------------------------

/// The date that labels the group of `date`: its first day at midnight, for a century the first of January of its
/// closing year, which lies at or after `date`. Weeks begin on GVXStartOfWeek.
TDateTime GetGroupDate(TVXGroupMode mode, TDateTime date);
/// The date that labels the next group.
TDateTime GetNextGroupDate(TVXGroupMode mode, TDateTime date);
/// The finest mode whose horizon holds the span, centuries if none does.
TVXGroupMode BestGroupMode(TDateTime start, TDateTime end);
/// Length in days of a stretch of groups that fills one screen, from the group of `from`; 0 if it would run past the
/// group of `to`. With `alignOnStart` it runs over Horizon groups from the first day of the first; without, from the
/// last day of the first to the last day of the last.
double GetGroupDateHorizon(TVXGroupMode mode, TDateTime from, TDateTime to, bool alignOnStart);

// -- Start and end --------------------------------------------------------------------------------------------------

/// Fills the table on the first of several calls. The program's start makes the first.
void InitializeUnit();
/// Releases the table's texts on the last of as many calls. The program's end makes the last. A pair of FinalizeUnit
/// and InitializeUnit reads the locale anew.
void FinalizeUnit();

}  // namespace VXDateGroup_UNT

using VXDateGroup_UNT::BestGroupMode;
using VXDateGroup_UNT::GetGroupDate;
using VXDateGroup_UNT::GetGroupDateFormat;
using VXDateGroup_UNT::GetGroupDateHorizon;
using VXDateGroup_UNT::GetGroupHorizon;
using VXDateGroup_UNT::GetGroupIncrement;
using VXDateGroup_UNT::GetGroupName;
using VXDateGroup_UNT::GetGroupPointSize;
using VXDateGroup_UNT::GetNextGroupDate;

}  // namespace vx
