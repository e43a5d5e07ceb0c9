#include <memory>

#include "BucketCommand.h"
#include "CommandOptions.h"
#include "Suggest.h"
#include "UserError.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr const char* kHelp =
    R"(A row for each period and group that has records; a period without records has none. Columns stand in the order of
their options, each of which may be given several times, under headings like "Sum of Profit"; --sort knows these,
"Month" (or what --by says), the groups, and "Profit" for the first column made of it. Without any of the columns the
records are counted.

A period is shown by its first day, with --label end by its last. A century is named by the year that closes it: 1950
and 2000 belong to 2000-01-01, 2001 to 2100-01-01; its last day is 2000-12-31.
First and last go by the date (with its time of day): --first is the value of the record with the earliest date of the
period, --last of the latest. Of several records with that very date it is in both cases the one that stands last in
the file.
A null counts as zero, and an average divides by its record too; only a row of nothing but nulls shows none. --where
"COLUMN is not null" leaves such records out. Records without a date are always left out.
The totals are those of all records that meet the conditions, also where --limit shows fewer rows. Conditions
and sorts are written as for kestrix table.

Examples:
  kestrix bucket orders.csv --date "Order Date" --by week --start-of-week monday --group Department --sum Quantity
  kestrix bucket orders.csv --date "Order Year,Order Month,Order Day" --count --sum Profit --average Profit --totals
  kestrix bucket orders.csv --by year --group Market --sum Profit --sort "Profit.D" --limit 10 --format csv -o top.csv
  kestrix bucket stock.csv --by month --label end --group Item --last Level --min Level --max Level)";

struct TRawBucket {
  TRawInput input;
  TBucketOptions options;
  std::string by = "month";
  bool count = false;
  std::vector<std::vector<std::string>> aggregates = std::vector<std::vector<std::string>>(kAggregateNames.size());
  std::string startOfWeek;
  std::string label = "start";
  TRawRows rows;
};

/// 1 is Sunday. The beginning of a day's name will do.
std::int32_t StartOfWeekOf(const std::string& text) {
  static const std::vector<std::string> kDays = {"sunday",   "monday", "tuesday", "wednesday",
                                                 "thursday", "friday", "saturday"};
  const auto number = ReadInteger(text);
  if (number && *number >= 1 && *number <= 7) return *number;
  for (std::size_t i = 0; i < kDays.size(); ++i)
    if (text.size() > 1 && kDays[i].starts_with(LowerCase(text))) return static_cast<std::int32_t>(i) + 1;
  throw EUserError("--start-of-week " + Quoted(text) + " should be a weekday, or 1 (sunday) to 7 (saturday)" +
                   DidYouMean(text, kDays));
}

/// In the order in which they were typed, over all options.
std::vector<TBucketAggregate> AggregatesOf(const CLI::App& command, const TRawBucket& raw) {
  std::vector<TBucketAggregate> aggregates;
  std::vector<std::size_t> used(raw.aggregates.size());
  for (const CLI::Option* const option : command.parse_order()) {
    const std::string name = option->get_single_name();
    if (name == "count") aggregates.push_back({});
    if (const auto type = AggregateOfName(name)) aggregates.push_back({*type, raw.aggregates[*type][used[*type]++]});
  }
  return aggregates;
}

TBucketOptions OptionsOf(const TRawBucket& raw, const CLI::App& command) {
  TBucketOptions options = raw.options;
  options.input = InputOf(raw.input);
  options.by = GroupModeOfName(raw.by).value_or(vxgrOneMonth);
  options.aggregates = AggregatesOf(command, raw);
  if (!raw.startOfWeek.empty()) options.startOfWeek = StartOfWeekOf(raw.startOfWeek);
  options.isLabelledAtEnd = raw.label == "end";
  TakeRows(options, raw.rows);
  return options;
}

}  // namespace

TRunCommand AddBucket(CLI::App& app) {
  const auto raw = std::make_shared<TRawBucket>();
  TBucketOptions& options = raw->options;
  CLI::App* const command = app.add_subcommand("bucket", "Shows sums, averages and more by period and group");
  AddInputOptions(*command, raw->input, "");
  command->add_option("--date", options.date,
                      "A date column, or \"YEAR,MONTH,DAY\" columns (else the only column of dates)");
  AddPeriod(*command, raw->by);
  AddList(*command, "--group", options.groups,
          "A column that parts each period into groups; a second one parts the groups");
  command->add_flag("--count", raw->count, "Shows the number of records");
  constexpr const char* kAggregateHelp[] = {
      "Shows the sum of a column of numbers",
      "Shows the average; all records count, nulls as zero",
      "Shows the least value",
      "Shows the greatest value",
      "Shows the value of the earliest record; of the later one in the file on a tie",
      "Shows the value of the latest record; of the later one in the file on a tie"};
  for (std::size_t i = 0; i < kAggregateNames.size(); ++i)
    AddList(*command, "--" + kAggregateNames[i], raw->aggregates[i], kAggregateHelp[i]);
  AddList(*command, "--where", options.where, "A condition that records must meet; all of several");
  command->add_option("--start-of-week", raw->startOfWeek, "A weekday, or 1 (sunday, as without it) to 7 (saturday)");
  command->add_option("--label", raw->label, "The day that names a period; a century has its last year's name")
      ->capture_default_str()
      ->check(CLI::IsMember({"start", "end"}));
  command->add_flag("--totals", options.wantsTotals, "Shows a last row with the totals of all records");
  AddRowOptions(*command, raw->rows, options, "rows");
  command->footer(kHelp);
  return [raw, command](const TStreams& streams) {
    RunBucket(OptionsOf(*raw, *command), streams);
    return kSuccess;
  };
}

}  // namespace vx::kestrix
