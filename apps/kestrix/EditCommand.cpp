#include "EditCommand.h"

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <utility>

#include "ColumnNames.h"
#include "Encoding.h"
#include "InputFile.h"
#include "Interrupt.h"
#include "UserError.h"

namespace vx::kestrix {

namespace {

/// --set, looked up.
struct TAssignment {
  std::size_t column = 0;
  TCellValue value;
};

/// The cells of a record that get another text, in the order of the columns.
struct TChange {
  std::size_t record = 0;  ///< number among those that were loaded
  std::vector<std::pair<std::size_t, std::string>> cells;
};

// -- Wishes -----------------------------------------------------------------------------------------------------------

TAssignment ParseAssignment(const std::string& text, const TColumnPlan& plan, const std::string& file) {
  const auto [index, value] = NeedHeadingAndValue(HeadingsOfPlan(plan), "--set", text);
  if (value.empty()) return {index, {}};
  const TColumn& column = plan.columns[index];
  const TCellValue cell = CellOfText(value, column.type, column.dateOrder, plan.decimal);
  if (IsNull(cell))
    throw EUserError({file, 0, column.heading}, "--set " + Quoted(text) + ": the column is of type " +
                                                    std::string(TypeName(column.type)) + ", and " + Quoted(value) +
                                                    " is not");
  return {index, cell};
}

/// In the order of the columns.
std::vector<TAssignment> ParseAssignments(const std::vector<std::string>& texts, const TColumnPlan& plan,
                                          const std::string& file) {
  std::vector<TAssignment> wishes;
  for (const std::string& text : texts) wishes.push_back(ParseAssignment(text, plan, file));
  std::sort(wishes.begin(), wishes.end(), [](const auto& a, const auto& b) { return a.column < b.column; });
  const auto twice = std::adjacent_find(wishes.begin(), wishes.end(),
                                        [](const auto& a, const auto& b) { return a.column == b.column; });
  if (twice != wishes.end())
    throw EUserError("--set names column " + Quoted(plan.columns[twice->column].heading) + " twice");
  return wishes;
}

void CheckFiles(const TTableOptions& options) {
  const std::vector<std::string> paths = PathsOf(options.input);
  if (paths.size() > 1) throw EUserError("--set changes one file, and there are " + std::to_string(paths.size()));
  if (!options.inPlace) return;
  if (paths.front() == kStandardInput) throw EUserError("--in-place needs a file, not standard input");
  std::error_code error;
  if (std::filesystem::exists(paths.front(), error) && !std::filesystem::is_regular_file(paths.front(), error))
    throw EUserError({paths.front(), 0, {}}, "is no file that can be written in place");
}

// -- Editing ----------------------------------------------------------------------------------------------------------

std::string WrittenText(const TCellValue& value, char decimal) {
  std::string text = CellText(value);
  if (std::holds_alternative<double>(value)) std::replace(text.begin(), text.end(), '.', decimal);
  return text;
}

bool AreSame(const TCellValue& a, const TCellValue& b) {
  return IsNull(a) || IsNull(b) ? IsNull(a) == IsNull(b) : AreSameCells(a, b);
}

using TRecords = TRecordSet<TVXMemoryDataset>;

/// Writes the values into the active record; posts it if that made a difference.
std::vector<std::pair<std::size_t, std::string>> Change(TRecords& records, const std::vector<TAssignment>& wishes,
                                                        char decimal) {
  std::vector<TCellValue> before;
  for (const TAssignment& wish : wishes) before.push_back(records.Value(wish.column));
  records.Edit();
  for (const TAssignment& wish : wishes) records.FieldOf(wish.column)->SetAsVariant(VariantOf(wish.value));
  std::vector<std::pair<std::size_t, std::string>> cells;
  for (std::size_t i = 0; i < wishes.size(); ++i)
    if (const TCellValue value = records.Value(wishes[i].column); !AreSame(before[i], value))
      cells.emplace_back(wishes[i].column, WrittenText(value, decimal));
  cells.empty() ? records.Cancel() : records.Post();
  return cells;
}

/// The set isn't filtered: a record that doesn't meet the conditions any more would leave it, and the walk stumble.
std::vector<TChange> ChangeAll(TRecords& records, const TQuery& query, const std::vector<TAssignment>& wishes,
                               char decimal) {
  const auto fits = [&records](const TCondition& condition) {
    return Matches(condition, records.Value(condition.column));
  };
  std::vector<TChange> changes;
  std::size_t number = 0;
  for (records.Open(); !records.Eof(); records.Next(), ++number) {
    CheckInterrupt();
    if (!std::all_of(query.conditions.begin(), query.conditions.end(), fits)) continue;
    TChange change{number, Change(records, wishes, decimal)};
    if (!change.cells.empty()) changes.push_back(std::move(change));
  }
  return changes;
}

// -- Writing ----------------------------------------------------------------------------------------------------------

/// Begin and end of each cell, with its quotes, in the text of a record that was read without an error.
std::vector<std::pair<std::size_t, std::size_t>> PlacesOfCells(std::string_view record, char separator) {
  const std::string ends = {separator, '\r', '\n'};
  std::vector<std::pair<std::size_t, std::size_t>> places;
  for (std::size_t at = 0;; ++at) {
    const std::size_t start = at;
    if (at < record.size() && record[at] == '"') do {
        at = std::min(record.find('"', at + 1), record.size() - 1) + 1;
      } while (at < record.size() && record[at] == '"');
    else
      at = std::min(record.find_first_of(ends, at), record.size());
    places.emplace_back(start, at);
    if (at >= record.size() || record[at] != separator) return places;
  }
}

std::string Changed(std::string_view record, const TChange& change, char separator) {
  const auto places = PlacesOfCells(record, separator);
  std::string text;
  std::size_t at = 0;
  for (const auto& [column, value] : change.cells) {
    text += record.substr(at, places[column].first - at);
    text += SeparatedText(value, separator, /*isAlone=*/places.size() == 1);
    at = places[column].second;
  }
  return text.append(record.substr(at));
}

/// The file with the changes. Records are told apart as they were when the table was loaded.
std::string Rewritten(TCsvSource& source, const TColumnPlan& plan, const std::vector<TChange>& changes) {
  std::string text(source.HadMark() ? kUtf8Mark : "");
  std::size_t at = 0;
  std::size_t number = 0;
  auto change = changes.begin();
  source.ForEach([&](const TCsvRecord& record) {
    for (std::size_t i = 0; i < plan.columns.size(); ++i) ReadCell(source, plan, record, i);  // raises for a bad one
    if (change == changes.end() || change->record != number++) return;
    const auto start = static_cast<std::size_t>(record.text.data() - source.Text().data());
    text.append(source.Text(), at, start - at);
    text += Changed(record.text, *change++, source.Separator());
    at = start + record.text.size();
  });
  return text.append(source.Text(), at);
}

}  // namespace

void RunEdit(const TTableOptions& options, const TStreams& streams) {
  CheckFiles(options);
  const std::vector<std::string> paths = PathsOf(options.input);
  TResult result(options.inPlace ? paths.front() : options.output, options.inPlace ? std::vector<std::string>{} : paths,
                 streams);
  TInputs inputs(options.input, streams);
  TCsvSource& source = inputs.Source();
  if (options.inPlace && !source.IsAsItWas())
    throw EUserError({source.Name(), 0, {}}, "is not UTF-8, and would be written as UTF-8; say -o FILE");
  TColumnPlan plan = PlanColumns(source, options.input.wishes);
  const TQuery query = ResolveQuery(options, plan);
  const std::vector<TAssignment> wishes = ParseAssignments(options.set, plan, source.Name());
  std::vector<std::size_t> columns;
  for (const TAssignment& wish : wishes) {
    columns.push_back(wish.column);
    std::size_t& longest = plan.columns[wish.column].longestText;
    longest = std::max(longest, CellText(wish.value).size());
  }
  const auto table = LoadTable(source, plan, options.input.limits);

  const auto records = Make<TRecords>(*table, plan, columns);
  const std::vector<TChange> changes = ChangeAll(*records, query, wishes, plan.decimal);
  const std::string text = Rewritten(source, plan, changes);
  inputs.TellSkipped();
  if (!options.inPlace || !changes.empty()) {
    result.Out() << text;
    result.Finish();
  }
  streams.err << "kestrix: " << changes.size() << (changes.size() == 1 ? " record" : " records") << " changed\n";
}

}  // namespace vx::kestrix
