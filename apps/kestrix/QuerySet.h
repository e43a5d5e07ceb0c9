// QuerySet.h: the records that --where, --sort, --index and --desc ask for, as a data set that stands on the first.
//
// The first "=" of the conditions is the cursor's own filter by a field; all others go through its record callback, not
// through OnFilterRecord, to whose handler a null is a value. A detail's filter by a field is its master's.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Conditions.h"
#include "RecordSet.h"

namespace vx::kestrix {

/// The wishes, looked up: from here on nothing is unknown.
struct TQuery {
  std::vector<TCondition> conditions;
  std::string sort;
  std::optional<std::size_t> index;
  std::vector<std::size_t> columns;  ///< shown
  TVXRAMCursorOrder order = vxrcoAscending;
};

/// --locate taken apart.
struct TSoughtCell {
  std::size_t column = 0;
  Variant value;
  TLocateOptions options;
};

/// A value that the column's type can be is looked for as the set prints such values; others by their text. Raises
/// EUserError.
TSoughtCell ParseLocate(std::string_view text, TLocateOptions options, const TColumnPlan& plan);

class TQuerySet : public TRecordSet<TVXMemoryDataset> {
 public:
  /// `needed` are the columns that must have fields.
  TQuerySet(TVXRAMTable& table, const TColumnPlan& plan, const std::vector<std::size_t>& needed, bool isDetail = false)
      : TRecordSet(table, plan, needed), isDetail_(isDetail) {}

  void OpenQuery(const TQuery& query);
  /// Goes to the record found. Raises EUserError if there is none.
  void Find(const TSoughtCell& sought, const std::string& text);

 private:
  bool TakeOwnCondition(TCondition& own);
  bool FitsOthers(const TVXRAMRow* row) const;

  std::vector<TCondition> conditions_;
  bool isDetail_;
};

}  // namespace vx::kestrix
