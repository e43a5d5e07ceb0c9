#include <memory>
#include <utility>

#include "ChartCommand.h"
#include "CommandOptions.h"
#include "Folding.h"
#include "Picture.h"
#include "UserError.h"

namespace vx::kestrix {

namespace {

constexpr const char* kHelp = R"(Examples:
  kestrix chart orders.csv --date "Order Date" --value Profit -o profit.png
  kestrix chart orders.csv --date "Order Year,Order Month,Order Day" --value "Order Quantity" \
      --series "Product Department" --by week --type bar --top 5 --size 1600x900 -o weeks.png)";

struct TRawChart {
  TRawInput input;
  TChartOptions options;
  std::string by = "month";
  std::string aggregate = "sum";
  std::string size = "1000x560";
  std::string title;
  std::int64_t top = 12;
};

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

TChartOptions OptionsOf(TRawChart raw, bool hasTitle) {
  TChartOptions options = std::move(raw.options);
  options.hasBars = TakeBars(raw.input.types);
  options.input = InputOf(raw.input);
  options.by = GroupModeOfName(raw.by).value_or(vxgrOneMonth);
  options.aggregate = AggregateOfName(raw.aggregate).value_or(vxbtCumulate);
  options.top = static_cast<std::size_t>(raw.top);
  options.size = NeedSize(raw.size);
  if (hasTitle) options.title = raw.title;
  return options;
}

}  // namespace

TRunCommand AddChart(CLI::App& app) {
  const auto raw = std::make_shared<TRawChart>();
  TChartOptions& options = raw->options;
  CLI::App* const command = app.add_subcommand("chart", "Draws values by period");
  AddInputOptions(*command, raw->input, "line (as without it) or bar, the kind of series; or ");
  command->add_option("--date", options.date, "A date column, or \"YEAR,MONTH,DAY\" columns")->required();
  command->add_option("--value", options.value, "A column of numbers")->required();
  command->add_option("--series", options.series, "A column that parts the values into series");
  command->add_option("--top", raw->top, "Largest series shown before \"others\"")
      ->capture_default_str()
      ->check(CLI::Range(1, 1000));
  AddPeriod(*command, raw->by);
  command->add_option("--aggregate", raw->aggregate, "What is shown of a period's values")
      ->capture_default_str()
      ->check(CLI::IsMember(kAggregateNames));
  command->add_option("--size", raw->size, "Width and height in pixels")->capture_default_str();
  command->add_option("--title", raw->title, "Title (else column and period)");
  command->add_option("-o,--output", options.output, "The picture to write: NAME.png, .svg or .pdf")->required();
  command->footer(kHelp);
  return [raw, command](const TStreams& streams) {
    RunChart(OptionsOf(*raw, command->count("--title") > 0), streams);
    return kSuccess;
  };
}

}  // namespace vx::kestrix
