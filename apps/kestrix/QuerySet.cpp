#include "QuerySet.h"

#include <algorithm>
#include <utility>

#include "ColumnNames.h"
#include "UserError.h"

namespace vx::kestrix {

TSoughtCell ParseLocate(std::string_view text, TLocateOptions options, const TColumnPlan& plan) {
  const auto [index, value] = NeedHeadingAndValue(HeadingsOfPlan(plan), "--locate", text);
  TSoughtCell sought{index, Variant(std::string(value)), options};
  const TColumn& column = plan.columns[index];
  if (options.Has(loPartialKey) || column.type == TColumnType::Text) return sought;
  const TCellValue cell = CellOfText(value, column.type, column.dateOrder, plan.decimal);
  if (!IsNull(cell)) sought.value = VariantOf(cell);
  return sought;
}

void TQuerySet::OpenQuery(const TQuery& query) {
  conditions_ = query.conditions;
  if (query.index) SetIndexName(plan_.columns[*query.index].field);
  Set_CursorOrder(query.order);
  Open();
  // Filtered first, so that only what is left is sorted.
  TVXRAMCursor& cursor = *GetCursor();
  if (TCondition own; TakeOwnCondition(own))
    cursor.Get_Filter()->SetFilter(GetRAMTable()->Get_FieldDefs()->Get_Item(static_cast<std::int32_t>(own.column)),
                                   VariantOf(own.value));
  if (!conditions_.empty()) cursor.SetOnFilterRecord([this](TVXRAMRow* row, std::int32_t) { return FitsOthers(row); });
  First();
  SetSortedField(query.sort);
  First();
}

bool TQuerySet::TakeOwnCondition(TCondition& own) {
  const auto found = std::find_if(conditions_.begin(), conditions_.end(),
                                  [](const TCondition& condition) { return condition.op == TOperator::Equal; });
  if (isDetail_ || found == conditions_.end()) return false;
  own = std::move(*found);
  conditions_.erase(found);
  return true;
}

bool TQuerySet::FitsOthers(const TVXRAMRow* row) const {
  return std::all_of(conditions_.begin(), conditions_.end(), [&](const TCondition& condition) {
    return Matches(condition, reader_.Value(row, condition.column));
  });
}

void TQuerySet::Find(const TSoughtCell& sought, const std::string& text) {
  if (!Locate(plan_.columns[sought.column].field, sought.value, sought.options))
    throw EUserError("--locate " + Quoted(text) + ": no record found");
}

}  // namespace vx::kestrix
