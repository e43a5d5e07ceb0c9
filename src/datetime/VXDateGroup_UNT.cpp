#include "datetime/VXDateGroup_UNT.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/NumberText.h"
#include "platform/runtime/StringResources.h"

namespace vx {

namespace {

constexpr std::size_t kModes = 5;
constexpr std::int32_t kFirstNameId = 14672;

/// Filled at the unit's start, its names by each translation too. Its numbers stay when the texts are released.
std::array<TVXGroupInfo, kModes> groupTable;
std::int32_t unitUsers = 0;

void LoadNames() {
  if (unitUsers == 0) return;
  for (std::int32_t id = kFirstNameId; TVXGroupInfo & row : groupTable) row.Name = LoadStr(id++);
}

}  // namespace

const std::array<TVXGroupInfo, 5>& VXGroupInfo = groupTable;

namespace {

bool IsMode(TVXGroupMode mode) { return mode < kModes; }

const TVXGroupInfo& RowOf(TVXGroupMode mode) {
  if (!IsMode(mode)) throw ENilAccess("group mode " + std::to_string(+mode));
  return groupTable[mode];
}

/// January 1 of the year that closes the century.
TDateTime CenturyDate(std::uint16_t year) {
  return EncodeDate(static_cast<std::uint16_t>((year + 99) / 100 * 100), 1, 1);
}

/// Days that lead from a group's date safely into the next group; longer than any group, shorter than any two.
TDateTime StepOf(TVXGroupMode mode) {
  constexpr std::array<TDateTime, kModes> kSteps = {1, 7, 32, 367, 36716};
  return IsMode(mode) ? kSteps[mode] : 1;
}

TDateTime LastDateOf(TVXGroupMode mode, TDateTime date) { return GetNextGroupDate(mode, date) - 1.0; }

/// The span in whole days, held in 32 bits.
std::int32_t WholeDays(TDateTime span) {
  using TLimits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(Trunc(span), TLimits::min(), TLimits::max()));
}

/// Walks from `anchor` until a horizon of groups differs from its own, and answers the days from there to the last day
/// of the stretch, both counted; 0 if that day is past `limit`. Dates only grow, so a walk that has reached the limit
/// needs no further step, which may lead out of the calendar. Numbers that aren't dates may stand still, which is 0
/// too.
double StretchFrom(TVXGroupMode mode, TDateTime anchor, TDateTime limit) {
  const TDateTime group = GetGroupDate(mode, anchor);
  TDateTime cursor = anchor;
  for (std::int32_t count = 0; count < RowOf(mode).Horizon;) {
    if (cursor - 1.0 >= limit) return 0;
    const TDateTime next = GetNextGroupDate(mode, cursor);
    if (!(next > cursor)) return 0;
    cursor = next;
    if (GetGroupDate(mode, cursor) != group) ++count;
  }
  return cursor - 1.0 > limit ? 0 : cursor - 1.0 - anchor + 1.0;
}

}  // namespace

namespace VXDateGroup_UNT {

// -- The table ------------------------------------------------------------------------------------------------------

std::string GetGroupName(TVXGroupMode mode) { return RowOf(mode).Name; }
std::string GetGroupDateFormat(TVXGroupMode mode) { return RowOf(mode).DateFormat; }
std::int32_t GetGroupHorizon(TVXGroupMode mode) { return RowOf(mode).Horizon; }
std::int32_t GetGroupPointSize(TVXGroupMode mode) { return RowOf(mode).PointSize; }
double GetGroupIncrement(TVXGroupMode mode) { return RowOf(mode).Increment; }

// -- Groups ---------------------------------------------------------------------------------------------------------

TDateTime GetGroupDate(TVXGroupMode mode, TDateTime date) {
  if (mode == vxgrOneWeek) return GetFirstDayOfWeek(std::trunc(date));
  if (mode == vxgrOneDay || !IsMode(mode)) return std::trunc(date);
  std::uint16_t year = 0, month = 0, day = 0;
  DecodeDate(date, year, month, day);
  if (mode == vxgrOneMonth) return EncodeDate(year, month, 1);
  if (mode == vxgrOneYear) return EncodeDate(year, 1, 1);
  return CenturyDate(year);  // Kept: at or after the date, where all others are at or before it.
}

TDateTime GetNextGroupDate(TVXGroupMode mode, TDateTime date) {
  return GetGroupDate(mode, GetGroupDate(mode, date) + StepOf(mode));
}

TVXGroupMode BestGroupMode(TDateTime start, TDateTime end) {
  const std::int32_t span = WholeDays(end - start);
  const auto exceeds = [span](std::size_t mode) {
    return std::trunc(span / groupTable[mode].Increment) > groupTable[mode].Horizon;
  };
  std::size_t mode = vxgrOneDay;
  while (mode < vxgrOneCentury && exceeds(mode)) ++mode;
  return static_cast<TVXGroupMode>(mode);
}

double GetGroupDateHorizon(TVXGroupMode mode, TDateTime from, TDateTime to, bool alignOnStart) {
  if (alignOnStart) return StretchFrom(mode, GetGroupDate(mode, from), to);
  // Kept: the anchor is already the last day of the first group, so this stretch is a group shorter, plus one day. The
  // charts size their horizontal range by it.
  return StretchFrom(mode, LastDateOf(mode, from), LastDateOf(mode, to));
}

// -- Start and end --------------------------------------------------------------------------------------------------

void InitializeUnit() {
  if (unitUsers++ > 0) return;
  const std::string& dateFormat = Locale().ShortDateFormat;
  groupTable = {{{"", 14, 4, 1.0, dateFormat},
                 {"", 13, 5, 7.0, dateFormat},
                 {"", 12, 6, 30.0, "mmm yyyy"},
                 {"", 200, 7, 365.0, "yyyy"},
                 {"", 99, 8, 36516.0, "yyyy"}}};
  LoadNames();
}

void FinalizeUnit() {
  if (unitUsers == 0 || --unitUsers > 0) return;
  for (TVXGroupInfo& row : groupTable) {
    row.Name.clear();
    row.DateFormat.clear();
  }
}

}  // namespace VXDateGroup_UNT

namespace {

/// The program's own use of the unit.
struct TUnitUse {
  TUnitUse() {
    FollowResourceStrings(LoadNames);
    VXDateGroup_UNT::InitializeUnit();
  }
  ~TUnitUse() { VXDateGroup_UNT::FinalizeUnit(); }
};
const TUnitUse unitUse;

}  // namespace

}  // namespace vx
