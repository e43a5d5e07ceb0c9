#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>
#include <new>
#include <ostream>

#include "BucketCommand.h"
#include "ChartCommand.h"
#include "Suggest.h"
#include "TableCommand.h"
#include "UserError.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr const char* kAbout = "Tables and charts from a planner's files.";

constexpr std::int32_t kMostMemory = 1 << 24;  // MiB

constexpr const char* kExamples = R"(Examples:
  kestrix table orders.csv --where "Customer Market=Europe" --sort "Profit.D;Order ID" --limit 10
  kestrix table orders.csv --where "Discount % is null" --columns "Order ID,Profit" --format json
  kestrix table orders.csv --stats
  kestrix bucket orders.csv --date "Order Date" --by week --group Department --sum Quantity --average Profit
  kestrix chart orders.csv --date "Order Year,Order Month,Order Day" --value "Order Quantity" \
      --series "Product Department" --by month -o out.png
  kestrix <command> --help)";

constexpr const char* kTableExamples =
    R"(Conditions are COLUMN=VALUE, with = != < <= > >=, or "COLUMN is null", "COLUMN is not null".
A sort is "COLUMN;COLUMN.D": .A is ascending, .D is descending. Text is sorted without regard to letter case.

Examples:
  kestrix table orders.csv --where "Profit>=100" --where "Shipment Mode!=Same Day" --sort "Profit.D"
  kestrix table orders.csv --type "Order ID=string" --index "Order ID" --desc --limit 5
  some-program | kestrix table --separator ";" --format tsv -o clean.tsv)";

constexpr const char* kBucketHelp =
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

constexpr const char* kChartExamples = R"(Examples:
  kestrix chart orders.csv --date "Order Date" --value Profit -o profit.png
  kestrix chart orders.csv --date "Order Year,Order Month,Order Day" --value "Order Quantity" \
      --series "Product Department" --by week --type bar --top 5 --size 1600x900 -o weeks.png)";

/// What the command line says, before its words are looked up.
struct TRawInput {
  std::vector<std::string> files;
  std::string separator;
  std::string header;
  std::vector<std::string> nulls;
  std::vector<std::string> types;
  std::string decimal;
  std::string dateOrder;
  std::int64_t memory = 1024;
  bool skipBad = false;
};

struct TRawTable {
  TRawInput input;
  TTableOptions options;
  std::string format = "table";
  std::int64_t limit = -1;
};

struct TRawBucket {
  TRawInput input;
  TBucketOptions options;
  std::string by = "month";
  bool count = false;
  std::vector<std::vector<std::string>> aggregates = std::vector<std::vector<std::string>>(kAggregateNames.size());
  std::string startOfWeek;
  std::string label = "start";
  std::string format = "table";
  std::int64_t limit = -1;
};

struct TRawChart {
  TRawInput input;
  TChartOptions options;
  std::string by = "month";
  std::string aggregate = "sum";
  std::string size = "1000x560";
  std::string title;
  std::int64_t top = 12;
};

// -- Options ----------------------------------------------------------------------------------------------------------

/// One value each time the option is given.
CLI::Option* AddList(CLI::App& app, const std::string& name, std::vector<std::string>& values,
                     const std::string& help) {
  return app.add_option(name, values, help)->allow_extra_args(false);
}

void AddInputOptions(CLI::App& app, TRawInput& raw, const std::string& typeHelp) {
  const std::string group = "Reading";
  app.add_option("FILE", raw.files,
                 "Files of separated values with the same columns; standard input if there is none, or for -");
  AddList(app, "--type", raw.types,
          typeHelp + "COLUMN=TYPE: boolean, integer, float, date, datetime or string (else found out)")
      ->group(typeHelp.empty() ? group : "Options");
  app.add_option("--separator", raw.separator, "One character, or \"tab\" (else found out)")->group(group);
  app.add_option("--decimal", raw.decimal, "The decimal character, . or , (else found out)")->group(group);
  app.add_option("--header", raw.header, "Whether the first line names the columns (else found out)")
      ->check(CLI::IsMember({"yes", "no"}))
      ->group(group);
  AddList(app, "--null", raw.nulls,
          "A word for \"no value\" in columns that aren't text, instead of - and NA; blank always is")
      ->group(group);
  app.add_option("--date-order", raw.dateOrder, "How 03/04/2015 is read (else found out)")
      ->check(CLI::IsMember({"dmy", "mdy"}))
      ->group(group);
  app.add_option("--memory", raw.memory, "Most MiB that the rows may take")
      ->capture_default_str()
      ->check(CLI::Range(1, kMostMemory))
      ->group(group);
  app.add_flag("--skip-bad", raw.skipBad, "Leave bad records out and count them")->group(group);
}

/// What a table of rows is asked, whatever its rows are.
template <class Raw>
void AddRowOptions(CLI::App& app, Raw& raw, const std::string& rows) {
  app.add_option("--sort", raw.options.sort, "Columns to sort by: \"A;B.D\"");
  app.add_option("--limit", raw.limit, "Most " + rows + " to show")
      ->check(CLI::Range(0, std::numeric_limits<std::int32_t>::max()));
  app.add_flag("--desc", raw.options.isDescending, "Walks from the last of the " + rows + " to the first");
  app.add_option("--format", raw.format, "How to write")
      ->capture_default_str()
      ->check(CLI::IsMember({"table", "csv", "tsv", "json"}));
  app.add_option("-o,--output", raw.options.output, "A file to write instead of standard output");
}

void AddPeriod(CLI::App& app, std::string& by) {
  app.add_option("--by", by, "Period")->capture_default_str()->check(CLI::IsMember(kGroupModeNames));
}

CLI::App* AddTable(CLI::App& app, TRawTable& raw) {
  TTableOptions& options = raw.options;
  CLI::App* const command = app.add_subcommand("table", "Shows records, filtered and sorted");
  AddInputOptions(*command, raw.input, "");
  AddList(*command, "--where", options.where, "A condition that records must meet; all of several");
  command->add_option("--index", options.index, "Walks an index on this column");
  command->add_option("--columns", options.columns, "Columns to show, separated by commas");
  AddRowOptions(*command, raw, "records");
  command->add_flag("--stats", options.wantsStats,
                    "Shows type, nulls, least, greatest and number of distinct values of each column");
  command->footer(kTableExamples);
  return command;
}

CLI::App* AddBucket(CLI::App& app, TRawBucket& raw) {
  TBucketOptions& options = raw.options;
  CLI::App* const command = app.add_subcommand("bucket", "Shows sums, averages and more by period and group");
  AddInputOptions(*command, raw.input, "");
  command->add_option("--date", options.date,
                      "A date column, or \"YEAR,MONTH,DAY\" columns (else the only column of dates)");
  AddPeriod(*command, raw.by);
  AddList(*command, "--group", options.groups,
          "A column that parts each period into groups; a second one parts the groups");
  command->add_flag("--count", raw.count, "Shows the number of records");
  constexpr const char* kHelp[] = {"Shows the sum of a column of numbers",
                                   "Shows the average; all records count, nulls as zero",
                                   "Shows the least value",
                                   "Shows the greatest value",
                                   "Shows the value of the earliest record; of the later one in the file on a tie",
                                   "Shows the value of the latest record; of the later one in the file on a tie"};
  for (std::size_t i = 0; i < kAggregateNames.size(); ++i)
    AddList(*command, "--" + kAggregateNames[i], raw.aggregates[i], kHelp[i]);
  AddList(*command, "--where", options.where, "A condition that records must meet; all of several");
  command->add_option("--start-of-week", raw.startOfWeek, "A weekday, or 1 (sunday, as without it) to 7 (saturday)");
  command->add_option("--label", raw.label, "The day that names a period; a century has its last year's name")
      ->capture_default_str()
      ->check(CLI::IsMember({"start", "end"}));
  command->add_flag("--totals", options.wantsTotals, "Shows a last row with the totals of all records");
  AddRowOptions(*command, raw, "rows");
  command->footer(kBucketHelp);
  return command;
}

CLI::App* AddChart(CLI::App& app, TRawChart& raw) {
  TChartOptions& options = raw.options;
  CLI::App* const command = app.add_subcommand("chart", "Draws values by period");
  AddInputOptions(*command, raw.input, "line (as without it) or bar, the kind of series; or ");
  command->add_option("--date", options.date, "A date column, or \"YEAR,MONTH,DAY\" columns")->required();
  command->add_option("--value", options.value, "A column of numbers")->required();
  command->add_option("--series", options.series, "A column that parts the values into series");
  command->add_option("--top", raw.top, "Largest series shown before \"others\"")
      ->capture_default_str()
      ->check(CLI::Range(1, 1000));
  AddPeriod(*command, raw.by);
  command->add_option("--aggregate", raw.aggregate, "What is shown of a period's values")
      ->capture_default_str()
      ->check(CLI::IsMember(kAggregateNames));
  command->add_option("--size", raw.size, "Width and height in pixels")->capture_default_str();
  command->add_option("--title", raw.title, "Title (else column and period)");
  command->add_option("-o,--output", options.output, "The picture to write: NAME.png")->required();
  command->footer(kChartExamples);
  return command;
}

// -- Looking words up -------------------------------------------------------------------------------------------------

std::optional<char> SeparatorOf(const std::string& text) {
  if (text.empty()) return std::nullopt;
  if (text == "tab" || text == "\\t") return '\t';
  const bool isUsable =
      text.size() == 1 && text != "\"" && text != "\n" && text != "\r" && static_cast<unsigned char>(text[0]) < 0x80;
  if (!isUsable) throw EUserError("--separator " + Quoted(text) + " should be one character, or \"tab\"");
  return text.front();
}

std::optional<char> DecimalOf(const std::string& text) {
  if (text.empty()) return std::nullopt;
  if (text != "." && text != ",") throw EUserError("--decimal " + Quoted(text) + " should be . or ,");
  return text.front();
}

TInputOptions InputOf(const TRawInput& raw) {
  TInputOptions input;
  input.files = raw.files;
  input.csv.separator = SeparatorOf(raw.separator);
  if (!raw.header.empty()) input.csv.hasHeader = raw.header == "yes";
  if (!raw.nulls.empty()) input.csv.nulls = TNullWords(raw.nulls);
  input.csv.skipBad = raw.skipBad;
  for (const std::string& type : raw.types) input.wishes.types.push_back(ParseTypeWish(type));
  input.wishes.decimal = DecimalOf(raw.decimal);
  if (!raw.dateOrder.empty())
    input.wishes.dateOrder = raw.dateOrder == "dmy" ? TDateOrder::DayFirst : TDateOrder::MonthFirst;
  input.limits.memory = static_cast<std::uint64_t>(raw.memory) << 20;
  return input;
}

TTableOptions TableOf(const TRawTable& raw) {
  TTableOptions options = raw.options;
  options.input = InputOf(raw.input);
  options.format = FormatOfName(raw.format).value_or(TTableFormat::Table);
  if (raw.limit >= 0) options.limit = static_cast<std::size_t>(raw.limit);
  return options;
}

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

TBucketOptions BucketOf(const TRawBucket& raw, const CLI::App& command) {
  TBucketOptions options = raw.options;
  options.input = InputOf(raw.input);
  options.by = GroupModeOfName(raw.by).value_or(vxgrOneMonth);
  options.aggregates = AggregatesOf(command, raw);
  if (!raw.startOfWeek.empty()) options.startOfWeek = StartOfWeekOf(raw.startOfWeek);
  options.isLabelledAtEnd = raw.label == "end";
  options.format = FormatOfName(raw.format).value_or(TTableFormat::Table);
  if (raw.limit >= 0) options.limit = static_cast<std::size_t>(raw.limit);
  return options;
}

/// "--type bar" says what is drawn, "--type COLUMN=TYPE" what is read.
bool TakeBars(std::vector<std::string>& types) {
  bool hasBars = false;
  std::erase_if(types, [&](const std::string& type) {
    if (type.find('=') != std::string::npos) return false;
    if (type != "line" && type != "bar")
      throw EUserError("--type " + Quoted(type) + " should be line, bar or COLUMN=TYPE");
    hasBars = type == "bar";
    return true;
  });
  return hasBars;
}

TChartOptions ChartOf(TRawChart raw, bool hasTitle) {
  TChartOptions options = std::move(raw.options);
  options.hasBars = TakeBars(raw.input.types);
  options.input = InputOf(raw.input);
  options.by = GroupModeOfName(raw.by).value_or(vxgrOneMonth);
  options.aggregate = AggregateOfName(raw.aggregate).value_or(vxbtCumulate);
  options.top = static_cast<std::size_t>(raw.top);
  const auto size = SizeOfText(raw.size);
  if (!size) throw EUserError("--size " + Quoted(raw.size) + " should be WIDTHxHEIGHT, in pixels of 1 to 32767");
  options.size = *size;
  if (hasTitle) options.title = raw.title;
  return options;
}

/// The first word, if it is one, must be a command; the parser's own words for that are no help.
void CheckCommand(const std::vector<std::string>& arguments) {
  static const std::vector<std::string> kCommands = {"table", "bucket", "chart"};
  if (arguments.empty()) throw EUserError("a command is missing: table, bucket or chart; see kestrix --help");
  const std::string& first = arguments.front();
  if (first.starts_with('-') || std::find(kCommands.begin(), kCommands.end(), first) != kCommands.end()) return;
  throw EUserError("no command " + Quoted(first) + DidYouMean(first, kCommands));
}

/// Words left over are options: any other word is a file.
[[noreturn]] void FailOnUnknown(const CLI::App& command) {
  std::vector<std::string> known;
  for (const CLI::Option* const option : command.get_options())
    if (!option->get_positional()) known.push_back("--" + option->get_single_name());
  const std::string unknown = command.remaining().front();
  const std::string hint = DidYouMean(unknown, known);
  throw EUserError("no option " + Quoted(unknown) +
                   (hint.empty() ? "; see kestrix " + command.get_name() + " --help" : hint));
}

int Run(std::vector<std::string> arguments, const TStreams& streams) {
  CLI::App app(kAbout, "kestrix");
  app.set_version_flag("--version", "kestrix " KESTRIX_VERSION);
  app.footer(kExamples);
  app.require_subcommand(0, 1);  // behind one, such a word is a file
  TRawTable table;
  TRawBucket bucket;
  TRawChart chart;
  const CLI::App* const tableCommand = AddTable(app, table);
  const CLI::App* const bucketCommand = AddBucket(app, bucket);
  const CLI::App* const chartCommand = AddChart(app, chart);
  CheckCommand(arguments);
  try {
    std::reverse(arguments.begin(), arguments.end());  // that is how they are wanted
    app.parse(std::move(arguments));
  } catch (const CLI::Success& wish) {
    return app.exit(wish, streams.out, streams.err);  // --help, --version
  } catch (const CLI::ParseError& error) {
    const auto commands = app.get_subcommands();
    if (!commands.empty() && !commands.front()->remaining().empty()) FailOnUnknown(*commands.front());
    const std::string command = commands.empty() ? "" : " " + commands.front()->get_name();
    throw EUserError(OneLine(error.what()) + "; see kestrix" + command + " --help");
  }
  if (tableCommand->parsed()) RunTable(TableOf(table), streams);
  if (bucketCommand->parsed()) RunBucket(BucketOf(bucket, *bucketCommand), streams);
  if (chartCommand->parsed()) RunChart(ChartOf(std::move(chart), chartCommand->count("--title") > 0), streams);
  return kSuccess;
}

}  // namespace

int RunKestrix(std::vector<std::string> arguments, const TStreams& streams) try {
  return Run(std::move(arguments), streams);
} catch (const EUserError& error) {
  streams.err << "kestrix: " << error.Message() << '\n';
  return kUserError;
} catch (const EInterrupted&) {
  return kInterrupted;
} catch (const std::bad_alloc&) {
  streams.err << "kestrix: out of memory\n";
  return kInternalError;
} catch (const std::exception& error) {
  streams.err << "kestrix: internal error: " << OneLine(error.what()) << '\n';
  return kInternalError;
}

}  // namespace vx::kestrix
