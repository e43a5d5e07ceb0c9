#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>
#include <new>
#include <ostream>

#include "ChartCommand.h"
#include "Suggest.h"
#include "TableCommand.h"
#include "UserError.h"

namespace vx::kestrix {

namespace {

constexpr const char* kAbout = "Tables and charts from a planner's files.";

constexpr std::int32_t kMostMemory = 1 << 24;  // MiB

constexpr const char* kExamples = R"(Examples:
  kestrix table orders.csv --where "Customer Market=Europe" --sort "Profit.D;Order ID" --limit 10
  kestrix table orders.csv --where "Discount % is null" --columns "Order ID,Profit" --format json
  kestrix table orders.csv --stats
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

CLI::App* AddTable(CLI::App& app, TRawTable& raw) {
  TTableOptions& options = raw.options;
  CLI::App* const command = app.add_subcommand("table", "Shows records, filtered and sorted");
  AddInputOptions(*command, raw.input, "");
  AddList(*command, "--where", options.where, "A condition that records must meet; all of several");
  command->add_option("--sort", options.sort, "Columns to sort by: \"A;B.D\"");
  command->add_option("--index", options.index, "Walks an index on this column");
  command->add_option("--columns", options.columns, "Columns to show, separated by commas");
  command->add_option("--limit", raw.limit, "Most records to show")
      ->check(CLI::Range(0, std::numeric_limits<std::int32_t>::max()));
  command->add_flag("--desc", options.isDescending, "Walks from the last record to the first");
  command->add_option("--format", raw.format, "How to write")
      ->capture_default_str()
      ->check(CLI::IsMember({"table", "csv", "tsv", "json"}));
  command->add_flag("--stats", options.wantsStats,
                    "Shows type, nulls, least, greatest and number of distinct values of each column");
  command->add_option("-o,--output", options.output, "A file to write instead of standard output");
  command->footer(kTableExamples);
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
  command->add_option("--by", raw.by, "Period")
      ->capture_default_str()
      ->check(CLI::IsMember({"day", "week", "month", "year", "century"}));
  command->add_option("--aggregate", raw.aggregate, "What is shown of a period's values")
      ->capture_default_str()
      ->check(CLI::IsMember({"sum", "average", "min", "max", "first", "last"}));
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
  static const std::vector<std::string> kCommands = {"table", "chart"};
  if (arguments.empty()) throw EUserError("a command is missing, table or chart; see kestrix --help");
  const std::string& first = arguments.front();
  if (first.starts_with('-') || std::find(kCommands.begin(), kCommands.end(), first) != kCommands.end()) return;
  throw EUserError("no command " + Quoted(first) + DidYouMean(first, kCommands));
}

int Run(std::vector<std::string> arguments, const TStreams& streams) {
  CLI::App app(kAbout, "kestrix");
  app.set_version_flag("--version", "kestrix " KESTRIX_VERSION);
  app.footer(kExamples);
  TRawTable table;
  TRawChart chart;
  const CLI::App* const tableCommand = AddTable(app, table);
  const CLI::App* const chartCommand = AddChart(app, chart);
  CheckCommand(arguments);
  try {
    std::reverse(arguments.begin(), arguments.end());  // that is how they are wanted
    app.parse(std::move(arguments));
  } catch (const CLI::Success& wish) {
    return app.exit(wish, streams.out, streams.err);  // --help, --version
  } catch (const CLI::ParseError& error) {
    throw EUserError(OneLine(error.what()) + "; see kestrix --help");
  }
  if (tableCommand->parsed()) RunTable(TableOf(table), streams);
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
