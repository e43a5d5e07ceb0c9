#include "Folding.h"

#include <algorithm>

#include "ColumnNames.h"
#include "Interrupt.h"

namespace vx::kestrix {

namespace {

template <class T>
std::optional<T> ValueOfName(const std::vector<std::string>& names, std::string_view name) {
  const auto found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? std::nullopt : std::optional(static_cast<T>(found - names.begin()));
}

std::string Both(const std::string& first, const std::string& second, const char* end = "") {
  return first + end + ";" + second + end;
}

}  // namespace

// The names stand in the order of the values.
std::optional<TVXGroupMode> GroupModeOfName(std::string_view name) {
  return ValueOfName<TVXGroupMode>(kGroupModeNames, name);
}
std::optional<TVXBucketType> AggregateOfName(std::string_view name) {
  return ValueOfName<TVXBucketType>(kAggregateNames, name);
}
const std::string& NameOfGroupMode(TVXGroupMode mode) { return kGroupModeNames[mode]; }
const std::string& NameOfAggregate(TVXBucketType type) { return kAggregateNames[type]; }

// -- Rows in ----------------------------------------------------------------------------------------------------------

std::int32_t TGroupNumbers::NumberOf(const std::string& text) {
  const auto [found, isNew] = numbers_.try_emplace(text, static_cast<std::int32_t>(texts_.size()));
  if (isNew) texts_.push_back(text);
  return found->second;
}

TColumn FoldColumn(const std::string& heading, TColumnType type, std::size_t longestText, std::size_t longestLine) {
  TColumn column;
  column.heading = heading;
  column.type = type;
  column.longestText = longestText;
  column.longestLine = longestLine;
  return column;
}

TColumnPlan PlanOfFold(const std::string& date, std::vector<TColumn> values, std::size_t records) {
  TColumnPlan plan;
  plan.records = records;
  plan.columns = std::move(values);
  const TColumn columns[] = {FoldColumn(date, TColumnType::Date), FoldColumn("Group", TColumnType::Integer)};
  plan.columns.insert(plan.columns.begin(), std::begin(columns), std::end(columns));
  std::vector<std::string> headings;
  for (const TColumn& column : plan.columns) headings.push_back(column.heading);
  const std::vector<std::string> fields = FieldNamesOf(headings);
  for (std::size_t i = 0; i < fields.size(); ++i) plan.columns[i].field = fields[i];
  return plan;
}

TFoldTable::TFoldTable(const TColumnPlan& plan) : plan_(plan), table_(MakeTable(plan)), record_(table_->NewRecord()) {}

void TFoldTable::Add(TDateTime date, std::int32_t group, const std::vector<TCellValue>& values) {
  record_->Field(kFoldDate).AssignValue(date);
  record_->Field(kFoldGroup).AssignValue(group);
  for (std::size_t i = 0; i < values.size(); ++i)
    AssignCell(record_->Field(static_cast<std::int32_t>(kFirstValue + i)), values[i]);
  std::int32_t id = kNoRecordId;
  table_->AddRecordAndValues(*record_, -1, -1, id, /*append=*/true);
}

// -- Buckets out ------------------------------------------------------------------------------------------------------

TBuckets::TBuckets(TFoldTable& table, const TFoldWish& wish)
    : set_(Make<TRecordSet<TVXMemoryDatasetBucketer>>(table.Table(), table.Plan())) {
  const std::vector<TColumn>& columns = table.Plan().columns;
  const std::string& date = columns[kFoldDate].field;
  const std::string& group = columns[kFoldGroup].field;
  for (const auto& [column, type] : wish.folds) set_->Get_BucketFieldDefs()->Add(columns[column].field, type);
  set_->SetBucketedField(wish.isByGroup ? Both(date, group) : date);
  set_->SetGroupMode(wish.by);
  set_->SetShowStartOfGroup(!wish.isLabelledAtEnd);
  set_->SetSortedField(wish.sort + (wish.sort.empty() ? "" : ";") + Both(date, group, ".A"));
  set_->Set_CursorOrder(wish.order);
  set_->Open();
}

bool TBuckets::Next() {
  CheckInterrupt();
  if (std::exchange(hasBegun_, true)) set_->Next();
  return !set_->Eof();
}

std::int32_t TBuckets::RecordCount() const {
  return set_->Get_CursorBucketer()->FindBucketInfoByBucketRecord(set_->Row())->Get_RecordCount();
}

}  // namespace vx::kestrix
