#include <memory>

#include "CommandOptions.h"
#include "TableCommand.h"

namespace vx::kestrix {

namespace {

constexpr const char* kHelp =
    R"(Conditions are COLUMN=VALUE, with = != < <= > >=, or "COLUMN is null", "COLUMN is not null".
A sort is "COLUMN;COLUMN.D": .A is ascending, .D is descending. Text is sorted without regard to letter case.

Examples:
  kestrix table orders.csv --where "Profit>=100" --where "Shipment Mode!=Same Day" --sort "Profit.D"
  kestrix table orders.csv --type "Order ID=string" --index "Order ID" --desc --limit 5
  some-program | kestrix table --separator ";" --format tsv -o clean.tsv)";

struct TRawTable {
  TRawInput input;
  TTableOptions options;
  TRawRows rows;
};

TTableOptions OptionsOf(const TRawTable& raw) {
  TTableOptions options = raw.options;
  options.input = InputOf(raw.input);
  TakeRows(options, raw.rows);
  return options;
}

}  // namespace

TRunCommand AddTable(CLI::App& app) {
  const auto raw = std::make_shared<TRawTable>();
  TTableOptions& options = raw->options;
  CLI::App* const command = app.add_subcommand("table", "Shows records, filtered and sorted");
  AddInputOptions(*command, raw->input, "");
  AddList(*command, "--where", options.where, "A condition that records must meet; all of several");
  command->add_option("--index", options.index, "Walks an index on this column");
  command->add_option("--columns", options.columns, "Columns to show, separated by commas");
  AddRowOptions(*command, raw->rows, options, "records");
  command->add_flag("--stats", options.wantsStats,
                    "Shows type, nulls, least, greatest and number of distinct values of each column");
  command->footer(kHelp);
  return [raw](const TStreams& streams) {
    RunTable(OptionsOf(*raw), streams);
    return kSuccess;
  };
}

}  // namespace vx::kestrix
