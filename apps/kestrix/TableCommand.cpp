#include "TableCommand.h"

#include <numeric>
#include <unordered_set>

#include "ColumnNames.h"
#include "EditCommand.h"
#include "Interrupt.h"
#include "MasterDetail.h"
#include "SortSpec.h"

namespace vx::kestrix {

namespace {

/// Calls `use` with the values of each record from the active one on, up to the limit.
template <class Use>
void ForEachRecord(TQuerySet& records, const TQuery& query, std::optional<std::size_t> limit, Use use) {
  std::vector<TCellValue> values(query.columns.size());
  for (std::size_t count = 0; (!limit || count < *limit) && !records.Eof(); records.Next(), ++count) {
    CheckInterrupt();
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = records.Value(query.columns[i]);
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

void WriteRows(ITableWriter& writer, const TColumnPlan& plan, const TQuery& query, TQuerySet& records,
               std::optional<std::size_t> limit) {
  writer.Begin(WrittenColumnsOf(plan, query.columns));
  ForEachRecord(records, query, limit, [&](const std::vector<TCellValue>& values) { writer.Row(values); });
  writer.End();
}

std::vector<TColumnStats> CollectStats(const TQuery& query, TQuerySet& records, std::optional<std::size_t> limit) {
  std::vector<TColumnStats> stats(query.columns.size());
  ForEachRecord(records, query, limit, [&](const std::vector<TCellValue>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) stats[i].Add(values[i]);
  });
  return stats;
}

}  // namespace

TQuery ResolveQuery(const TTableOptions& options, const TColumnPlan& plan) {
  const std::vector<std::string> headings = HeadingsOfPlan(plan);
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
  if (options.isDescending) query.order = vxrcoDescending;
  return query;
}

std::vector<TWrittenColumn> WrittenColumnsOf(const TColumnPlan& plan, const std::vector<std::size_t>& columns) {
  std::vector<TWrittenColumn> written;
  for (const std::size_t i : columns) written.push_back({plan.columns[i].heading, IsNumberType(plan.columns[i].type)});
  return written;
}

void RunTable(const TTableOptions& options, const TStreams& streams) {
  if (!options.set.empty()) return RunEdit(options, streams);
  if (options.master) return RunMasterDetail(options, streams);
  TResult result(options.output, PathsOf(options.input), streams);
  TInputs inputs(options.input, streams);
  const TColumnPlan plan = PlanColumns(inputs.Source(), options.input.wishes);
  const TQuery query = ResolveQuery(options, plan);
  std::optional<TSoughtCell> sought;
  if (options.locate) sought = ParseLocate(*options.locate, options.locateOptions, plan);
  const auto table = LoadTable(inputs.Source(), plan, options.input.limits, query.index);
  inputs.TellSkipped();

  const auto records = Make<TQuerySet>(*table, plan, sought ? std::vector{sought->column} : std::vector<std::size_t>{});
  records->OpenQuery(query);
  if (sought) records->Find(*sought, *options.locate);
  const auto writer = MakeTableWriter(options.format, result.Out());
  if (options.wantsStats)
    WriteStats(*writer, plan, query, CollectStats(query, *records, options.limit));
  else
    WriteRows(*writer, plan, query, *records, options.limit);
  result.Finish();
}

}  // namespace vx::kestrix
