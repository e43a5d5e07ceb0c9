#include "EditCommand.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <ostream>
#include <sstream>
#include <utility>

#include "CellForm.h"
#include "ColumnNames.h"
#include "Encoding.h"
#include "InputFile.h"
#include "Interrupt.h"
#include "UserError.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

/// --set, looked up.
struct TAssignment {
  std::size_t column = 0;
  TCellValue value;
  std::string typed;
  std::vector<std::string> spellings;  ///< to be tried in this order
  std::size_t tried = 0;               ///< of the spellings, in vain

  const std::string& Text() const { return spellings[tried]; }
};

/// A record with other values than before.
struct TChange {
  std::size_t record = 0;                   ///< number among those that were loaded
  std::vector<const TAssignment*> changed;  ///< in the order of the columns

  /// Null if the record keeps its value in that column.
  const TAssignment* WishOf(std::size_t column) const {
    const auto found = std::find_if(changed.begin(), changed.end(),
                                    [column](const TAssignment* wish) { return wish->column == column; });
    return found == changed.end() ? nullptr : *found;
  }
};

// -- Wishes -----------------------------------------------------------------------------------------------------------

/// A column of days takes no time of day.
bool IsOfType(const TCellValue& value, std::string_view text, const TColumn& column) {
  if (column.type != TColumnType::Date) return !IsNull(value);
  const auto date = ReadDate(text, column.dateOrder);
  return date && std::get<TMoment>(value).days == date->days;
}

TAssignment ParseAssignment(const std::string& text, const TColumnPlan& plan, const TCsvSource& source) {
  const auto [index, value] = NeedHeadingAndValue(HeadingsOfPlan(plan), "--set", text);
  const TColumn& column = plan.columns[index];
  const TAssignment null{.column = index, .value = {}, .typed = std::string(value), .spellings = {}};
  if (value.empty() || (column.type != TColumnType::Text && source.Options().nulls.IsNull(value))) return null;
  TAssignment wish = null;
  wish.value = CellOfText(value, column.type, column.dateOrder, plan.decimal);
  if (!IsOfType(wish.value, value, column))
    throw EUserError({source.Name(), 0, column.heading}, "--set " + Quoted(text) + ": the column is of type " +
                                                             std::string(TypeName(column.type)) + ", and " +
                                                             Quoted(value) + " is not");
  return wish;
}

/// In the order of the columns.
std::vector<TAssignment> ParseAssignments(const std::vector<std::string>& texts, const TColumnPlan& plan,
                                          const TCsvSource& source) {
  std::vector<TAssignment> wishes;
  for (const std::string& text : texts) wishes.push_back(ParseAssignment(text, plan, source));
  std::sort(wishes.begin(), wishes.end(), [](const auto& a, const auto& b) { return a.column < b.column; });
  const auto twice = std::adjacent_find(wishes.begin(), wishes.end(),
                                        [](const auto& a, const auto& b) { return a.column == b.column; });
  if (twice != wishes.end())
    throw EUserError("--set names column " + Quoted(plan.columns[twice->column].heading) + " twice");
  return wishes;
}

void FindSpellings(TCsvSource& source, const TColumnPlan& plan, std::vector<TAssignment>& wishes) {
  std::vector<TCellForm> forms;
  for (const TAssignment& wish : wishes)
    forms.emplace_back(plan.columns[wish.column], plan.decimal, source.Options().nulls);
  source.ForEach([&](const TCsvRecord& record) {
    for (std::size_t i = 0; i < wishes.size(); ++i) forms[i].Add(record.cells[wishes[i].column]);
  });
  for (std::size_t i = 0; i < wishes.size(); ++i) {
    TAssignment& wish = wishes[i];
    wish.spellings = forms[i].Spellings(wish.value, wish.typed);
    if (wish.spellings.empty())
      throw EUserError({source.Name(), 0, plan.columns[wish.column].heading},
                       Quoted(wish.typed) + " cannot be written so that it is read as that value");
  }
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

using TRecords = TRecordSet<TVXMemoryDataset>;

/// Writes the values into the active record; posts it if that made a difference.
std::vector<const TAssignment*> Change(TRecords& records, const std::vector<TAssignment>& wishes) {
  std::vector<TCellValue> before;
  for (const TAssignment& wish : wishes) before.push_back(records.Value(wish.column));
  records.Edit();
  for (const TAssignment& wish : wishes) records.FieldOf(wish.column)->SetAsVariant(VariantOf(wish.value));
  std::vector<const TAssignment*> changed;
  for (std::size_t i = 0; i < wishes.size(); ++i)
    if (!AreSameValues(before[i], records.Value(wishes[i].column))) changed.push_back(&wishes[i]);
  changed.empty() ? records.Cancel() : records.Post();
  return changed;
}

/// The set isn't filtered: a record that doesn't meet the conditions any more would leave it, and the walk stumble.
std::vector<TChange> ChangeAll(TRecords& records, const TQuery& query, const std::vector<TAssignment>& wishes) {
  const auto fits = [&records](const TCondition& condition) {
    return Matches(condition, records.Value(condition.column));
  };
  std::vector<TChange> changes;
  std::size_t number = 0;
  for (records.Open(); !records.Eof(); records.Next(), ++number) {
    CheckInterrupt();
    if (!std::all_of(query.conditions.begin(), query.conditions.end(), fits)) continue;
    TChange change{number, Change(records, wishes)};
    if (!change.changed.empty()) changes.push_back(std::move(change));
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
  for (const TAssignment* const wish : change.changed) {
    const auto& [start, end] = places[wish->column];
    text += record.substr(at, start - at);
    text += SeparatedText(wish->Text(), separator, /*isAlone=*/places.size() == 1);
    at = end;
  }
  return text.append(record.substr(at));
}

/// Calls `use` with each record that was loaded, and with its change or null.
template <class TUse>
void ForEachLoaded(TCsvSource& source, const TColumnPlan& plan, const std::vector<TChange>& changes, const TUse& use) {
  std::size_t number = 0;
  auto change = changes.begin();
  source.ForEach([&](const TCsvRecord& record) {
    for (std::size_t i = 0; i < plan.columns.size(); ++i) ReadCell(source, plan, record, i);  // raises for a bad one
    const bool isChanged = change != changes.end() && change->record == number++;
    use(record, isChanged ? &*change : nullptr);
    if (isChanged) ++change;
  });
}

/// The file with the changes. Records are told apart as they were when the table was loaded.
std::string Rewritten(TCsvSource& source, const TColumnPlan& plan, const std::vector<TChange>& changes) {
  std::string text(source.HadMark() ? kUtf8Mark : "");
  std::size_t at = 0;
  ForEachLoaded(source, plan, changes, [&](const TCsvRecord& record, const TChange* change) {
    if (change == nullptr) return;
    const auto start = static_cast<std::size_t>(record.text.data() - source.Text().data());
    text.append(source.Text(), at, start - at);
    text += Changed(record.text, *change, source.Separator());
    at = start + record.text.size();
  });
  return text.append(source.Text(), at);
}

// -- Checking ---------------------------------------------------------------------------------------------------------

/// A cell that another reader of the new file would get otherwise.
struct TMisreading {
  std::size_t column = 0;
  EUserError error;
};

/// How the new text is read.
TColumnPlan PlanOfText(const TCsvSource& source, const TColumnPlan& plan, const std::string& text,
                       const TTypeWishes& wishes) {
  TCsvOptions options = source.Options();
  options.onProgress = [](double) { CheckInterrupt(); };
  std::ostringstream remarks;
  TCsvSource edited(std::move(options), remarks);
  edited.Add(source.Name(), text);
  if (!edited.IsAsItWas()) throw EUserError({source.Name(), 0, {}}, "--set: the value is not UTF-8");
  const EUserError otherColumns({source.Name(), 0, {}},
                                "after --set, other columns would be found in the file; say --separator and --header");
  if (edited.Separator() != source.Separator() || edited.Headings() != source.Headings()) throw otherColumns;
  TColumnPlan after = PlanColumns(edited, wishes);
  if (after.records != plan.records) throw otherColumns;  // a blank record may have become the header
  return after;
}

std::string HintOf(const TColumn& before, const TColumn& after, const TColumnPlan& plan) {
  if (before.type != after.type) return "--type " + Quoted(before.heading + "=" + std::string(TypeName(before.type)));
  if (IsDateType(before.type))
    return before.dateOrder == TDateOrder::DayFirst ? "--date-order dmy" : "--date-order mdy";
  return std::string("--decimal ") + plan.decimal;
}

EUserError ErrorOf(const TPlace& place, std::string_view cell, const TCellValue& value, const TColumn& after,
                   const std::string& hint) {
  const std::string type(TypeName(after.type));
  return {place, "after --set, " + Quoted(cell) + " would be read as " +
                     (IsNull(value) ? "no value" : CellText(value)) + ", in a column of type " + type + "; say " +
                     hint};
}

/// The first cell of the column, if any, whose value the new plan changes. A text may become what it looks like in a
/// column that has no other values.
std::optional<TMisreading> MisreadCell(TCsvSource& source, const TColumnPlan& plan, const TColumnPlan& after,
                                       const std::vector<TChange>& changes, std::size_t column) {
  const TColumn& wasColumn = plan.columns[column];
  const TColumn& isColumn = after.columns[column];
  std::optional<TMisreading> found;
  ForEachLoaded(source, plan, changes, [&](const TCsvRecord& record, const TChange* change) {
    if (found) return;
    const TAssignment* const wish = change != nullptr ? change->WishOf(column) : nullptr;
    if (wish != nullptr && wasColumn.type == TColumnType::Text) return;
    const std::string_view cell = wish != nullptr ? std::string_view(wish->Text()) : record.cells[column];
    const TCellValue value = ValueOfText(cell, isColumn, after.decimal, source.Options().nulls);
    if (AreSameValues(value, wish != nullptr ? wish->value : ReadCell(source, plan, record, column))) return;
    const TPlace place{record.file, record.line, wasColumn.heading};
    found = TMisreading{column, ErrorOf(place, Trimmed(cell), value, isColumn, HintOf(wasColumn, isColumn, plan))};
  });
  return found;
}

std::optional<TMisreading> Misread(TCsvSource& source, const TColumnPlan& plan, const TColumnPlan& after,
                                   const std::vector<TChange>& changes) {
  for (std::size_t i = 0; i < plan.columns.size(); ++i) {
    const TColumn& was = plan.columns[i];
    const TColumn& is = after.columns[i];
    const bool isOther = was.type != is.type || was.dateOrder != is.dateOrder || plan.decimal != after.decimal;
    if (!isOther) continue;
    if (auto found = MisreadCell(source, plan, after, changes, i)) return found;
  }
  return std::nullopt;
}

/// The new text, with the first spellings by which all cells are read as they should be.
std::string CheckedText(TCsvSource& source, const TColumnPlan& plan, const TTypeWishes& types,
                        std::vector<TAssignment>& wishes, const std::vector<TChange>& changes) {
  for (;;) {
    std::string text = Rewritten(source, plan, changes);
    const auto misread = Misread(source, plan, PlanOfText(source, plan, text, types), changes);
    if (!misread) return text;
    const auto wish = std::find_if(wishes.begin(), wishes.end(),
                                   [&](const TAssignment& each) { return each.column == misread->column; });
    if (wish == wishes.end() || ++wish->tried == wish->spellings.size()) throw misread->error;
  }
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
  std::vector<TAssignment> wishes = ParseAssignments(options.set, plan, source);
  FindSpellings(source, plan, wishes);
  std::vector<std::size_t> columns;
  for (const TAssignment& wish : wishes) {
    columns.push_back(wish.column);
    std::size_t& longest = plan.columns[wish.column].longestText;
    longest = std::max(longest, CellText(wish.value).size());
  }
  const auto table = LoadTable(source, plan, options.input.limits);

  const auto records = Make<TRecords>(*table, plan, columns);
  const std::vector<TChange> changes = ChangeAll(*records, query, wishes);
  const std::string text = CheckedText(source, plan, options.input.wishes, wishes, changes);
  inputs.TellSkipped();
  if (!options.inPlace || !changes.empty()) {
    result.Out() << text;
    result.Finish();
  }
  streams.err << "kestrix: " << changes.size() << (changes.size() == 1 ? " record" : " records") << " changed\n";
}

}  // namespace vx::kestrix
