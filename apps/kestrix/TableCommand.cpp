#include "TableCommand.h"

#include <algorithm>
#include <numeric>
#include <unordered_set>
#include <utility>

#include "ColumnNames.h"
#include "Conditions.h"
#include "Interrupt.h"
#include "SortSpec.h"
#include "UserError.h"

namespace vx::kestrix {

namespace {

/// The wishes, looked up: from here on nothing is unknown.
struct TQuery {
  std::vector<TCondition> conditions;
  std::string sort;
  std::optional<std::size_t> index;
  std::vector<std::size_t> columns;
};

TQuery ResolveQuery(const TTableOptions& options, const std::vector<std::string>& headings, const TColumnPlan& plan) {
  TQuery query;
  for (const std::string& condition : options.where) query.conditions.push_back(ParseCondition(condition, plan));
  query.sort = SortSpecification(options.sort, plan);
  if (!options.index.empty()) query.index = NeedHeading(headings, options.index);
  if (!options.columns.empty()) {
    query.columns = NeedHeadings(headings, options.columns, ',');
  } else {
    query.columns.resize(headings.size());
    std::iota(query.columns.begin(), query.columns.end(), std::size_t{0});
  }
  return query;
}

/// A cursor over a query's rows, closed at the end of the scope.
class TQueryCursor {
 public:
  TQueryCursor(TVXRAMTable& table, const TRowReader& reader, const TQuery& query, TVXRAMCursorOrder order)
      : table_(table), reader_(reader), conditions_(query.conditions) {
    const auto own = TakeOwnCondition();
    TVXRAMFieldDef* const field =
        own ? table.Get_FieldDefs()->Get_Item(static_cast<std::int32_t>(own->column)) : nullptr;
    auto wish = Make<TVXRAMCursorDesc>(nullptr, query.index ? 0 : -1, order, std::string(), field,
                                       own ? VariantOf(own->value) : Variant());
    table.OpenCursor(nullptr, wish.get(), cursor_);
    if (!conditions_.empty())
      cursor_->SetOnFilterRecord([this](TVXRAMRow* row, std::int32_t) { return FitsOthers(row); });
    cursor_->Set_SortedField(query.sort);
    cursor_->GoToFirstRec();
  }
  ~TQueryCursor() { table_.CloseCursor(cursor_); }
  TQueryCursor(const TQueryCursor&) = delete;
  TQueryCursor& operator=(const TQueryCursor&) = delete;

  /// The next row, null behind the last.
  const TVXRAMRow* Next() { return cursor_->GoToNextRec() == kDone ? cursor_->Get_CurrentRecord() : nullptr; }

 private:
  std::optional<TCondition> TakeOwnCondition() {
    const auto own = std::find_if(conditions_.begin(), conditions_.end(),
                                  [](const TCondition& condition) { return condition.op == TOperator::Equal; });
    if (own == conditions_.end()) return std::nullopt;
    TCondition taken = std::move(*own);
    conditions_.erase(own);
    return taken;
  }

  bool FitsOthers(const TVXRAMRow* row) const {
    return std::all_of(conditions_.begin(), conditions_.end(), [&](const TCondition& condition) {
      return Matches(condition, reader_.Value(row, condition.column));
    });
  }

  TVXRAMTable& table_;
  const TRowReader& reader_;
  std::vector<TCondition> conditions_;
  TVXRAMCursor* cursor_ = nullptr;
};

/// Calls `use` with the values of each row that the query gives, up to the limit.
template <class Use>
void ForEachRow(TQueryCursor& cursor, const TRowReader& reader, const TQuery& query, std::optional<std::size_t> limit,
                Use use) {
  std::vector<TCellValue> values(query.columns.size());
  for (std::size_t count = 0; !limit || count < *limit; ++count) {
    CheckInterrupt();
    const TVXRAMRow* const row = cursor.Next();
    if (row == nullptr) return;
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = reader.Value(row, query.columns[i]);
    use(values);
  }
}

// -- Statistics -------------------------------------------------------------------------------------------------------

struct TColumnStats {
  std::int32_t nulls = 0;
  TCellValue least;
  TCellValue greatest;
  std::unordered_set<std::string> distinct;

  void Add(const TCellValue& value) {
    if (IsNull(value)) {
      ++nulls;
      return;
    }
    if (IsNull(least) || CompareCells(value, least) < 0) least = value;
    if (IsNull(greatest) || CompareCells(value, greatest) > 0) greatest = value;
    distinct.insert(CellText(value));
  }
};

void WriteStats(ITableWriter& writer, const TColumnPlan& plan, const TQuery& query,
                const std::vector<TColumnStats>& stats) {
  writer.Begin({{"Column"}, {"Type"}, {"Nulls", true}, {"Least"}, {"Greatest"}, {"Distinct", true}});
  for (std::size_t i = 0; i < stats.size(); ++i) {
    const TColumn& column = plan.columns[query.columns[i]];
    writer.Row({column.heading, std::string(TypeName(column.type)), stats[i].nulls, stats[i].least, stats[i].greatest,
                static_cast<std::int32_t>(stats[i].distinct.size())});
  }
  writer.End();
}

// -- The two kinds of output ------------------------------------------------------------------------------------------

void WriteRows(ITableWriter& writer, const TColumnPlan& plan, const TQuery& query, TQueryCursor& cursor,
               const TRowReader& reader, std::optional<std::size_t> limit) {
  std::vector<TWrittenColumn> columns;
  for (const std::size_t i : query.columns)
    columns.push_back({plan.columns[i].heading, IsNumberType(plan.columns[i].type)});
  writer.Begin(columns);
  ForEachRow(cursor, reader, query, limit, [&](const std::vector<TCellValue>& values) { writer.Row(values); });
  writer.End();
}

std::vector<TColumnStats> CollectStats(const TQuery& query, TQueryCursor& cursor, const TRowReader& reader,
                                       std::optional<std::size_t> limit) {
  std::vector<TColumnStats> stats(query.columns.size());
  ForEachRow(cursor, reader, query, limit, [&](const std::vector<TCellValue>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) stats[i].Add(values[i]);
  });
  return stats;
}

}  // namespace

void RunTable(const TTableOptions& options, const TStreams& streams) {
  TResult result(options.output, PathsOf(options.input), streams);
  TInputs inputs(options.input, streams);
  const TColumnPlan plan = PlanColumns(inputs.Source(), options.input.wishes);
  const TQuery query = ResolveQuery(options, inputs.Source().Headings(), plan);
  const auto table = LoadTable(inputs.Source(), plan, options.input.limits, query.index);
  inputs.TellSkipped();

  const TRowReader reader(*table, plan);
  TQueryCursor cursor(*table, reader, query, options.isDescending ? vxrcoDescending : vxrcoAscending);
  const auto writer = MakeTableWriter(options.format, result.Out());
  if (options.wantsStats)
    WriteStats(*writer, plan, query, CollectStats(query, cursor, reader, options.limit));
  else
    WriteRows(*writer, plan, query, cursor, reader, options.limit);
  result.Finish();
}

}  // namespace vx::kestrix
