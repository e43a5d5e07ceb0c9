// Folding.h: records folded by period and group. What charts and tables of periods share.
//
// Folding is the work of a bucketed data set over a table of (date, number of the group, values …); here the rows go in
// and the buckets come out.
//
//   const TColumnPlan plan = PlanOfFold("Ordered", {FoldColumn("Profit", TColumnType::Float)}, records);
//   TFoldTable table(plan);
//   table.Add(date, groups.NumberOf("Fan Shop"), {12.5});                    // for each record
//   TBuckets buckets(table, {.by = vxgrOneMonth, .folds = {{kFirstValue, vxbtCumulate}}});
//   while (buckets.Next()) Use(buckets.Value(kFoldDate), buckets.Value(kFirstValue));
//
// The key of a bucket is the text of its fields without anything between them, so two keys could run into each other.
// Here they can't: the date comes first, whose text has one length for all groups, and all that makes a group is one
// number behind it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "CellValue.h"
#include "ColumnPlan.h"
#include "RecordSet.h"
#include "TableLoader.h"
#include "datetime/VXDateGroup_UNT.h"

namespace vx::kestrix {

// -- Words of the command line ----------------------------------------------------------------------------------------
inline const std::vector<std::string> kGroupModeNames = {"day", "week", "month", "year", "century"};
inline const std::vector<std::string> kAggregateNames = {"sum", "average", "min", "max", "first", "last"};

/// Nothing for other words.
std::optional<TVXGroupMode> GroupModeOfName(std::string_view name);
std::optional<TVXBucketType> AggregateOfName(std::string_view name);
const std::string& NameOfGroupMode(TVXGroupMode mode);
const std::string& NameOfAggregate(TVXBucketType type);

// -- Rows in ----------------------------------------------------------------------------------------------------------

/// Numbers texts in order of their first appearance.
class TGroupNumbers {
 public:
  std::int32_t NumberOf(const std::string& text);
  const std::vector<std::string>& Texts() const { return texts_; }

 private:
  std::vector<std::string> texts_;
  std::unordered_map<std::string, std::int32_t> numbers_;
};

/// Positions of the columns of a table that is folded.
inline constexpr std::size_t kFoldDate = 0;
inline constexpr std::size_t kFoldGroup = 1;
inline constexpr std::size_t kFirstValue = 2;

TColumn FoldColumn(const std::string& heading, TColumnType type, std::size_t longestText = 0,
                   std::size_t longestLine = 0);
/// The columns of such a table: the date, called `date`, the number of the group, and the values.
TColumnPlan PlanOfFold(const std::string& date, std::vector<TColumn> values, std::size_t records);

/// A table that is folded. The plan must outlive it.
class TFoldTable {
 public:
  explicit TFoldTable(const TColumnPlan& plan);
  void Add(TDateTime date, std::int32_t group, const std::vector<TCellValue>& values);

  const TColumnPlan& Plan() const { return plan_; }
  TVXRAMTable& Table() { return *table_; }

 private:
  const TColumnPlan& plan_;
  TOwned<TVXRAMTable> table_;
  TOwnedRecordStruct record_;
};

// -- Buckets out ------------------------------------------------------------------------------------------------------

struct TFoldWish {
  TVXGroupMode by = vxgrOneMonth;
  /// What becomes of each column; the others show the latest record of the bucket in the order of the records.
  std::vector<std::pair<std::size_t, TVXBucketType>> folds;
  std::string sort = {};         ///< before date and group; in the engine's words
  bool isByGroup = true;         ///< else a bucket holds all groups of its period
  bool isLabelledAtEnd = false;  ///< a bucket shows the last day of its period
  TVXRAMCursorOrder order = vxrcoAscending;
};

/// The buckets as the records of a data set. It stands before the first.
class TBuckets {
 public:
  /// The dates are such that DateOf answers for this period.
  TBuckets(TFoldTable& table, const TFoldWish& wish);

  /// Raises EInterrupted.
  bool Next();
  /// Null where all records of the bucket are.
  TCellValue Value(std::size_t column) const { return set_->Value(column); }
  std::int32_t RecordCount() const;

 private:
  TOwned<TRecordSet<TVXMemoryDatasetBucketer>> set_;
  bool hasBegun_ = false;
};

}  // namespace vx::kestrix
