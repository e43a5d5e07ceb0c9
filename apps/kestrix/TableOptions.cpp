#include <memory>

#include "CommandOptions.h"
#include "TableCommand.h"

namespace vx::kestrix {

namespace {

constexpr const char* kHelp =
    R"(Conditions are COLUMN=VALUE, with = != < <= > >=, or "COLUMN is null", "COLUMN is not null".
A sort is "COLUMN;COLUMN.D": .A is ascending, .D is descending. Text is sorted without regard to letter case.

--locate looks at the records one after another, as --where, --sort and --desc leave them, until the column's text is
the value, letter case included, and shows that record and those behind it. It is an error if there is none.
  A "*" at the end of the value is dropped, with --partial or without.
  --partial is for texts that begin with the value; it looks from the record on where the set stands, here the first.
  --ignore-case raises value and text to upper case; with --partial the value alone, so that only texts in capitals fit.

--master shows the records of its file, and below each those of the table, --limit at most. A record without a value
joins nothing. As csv and tsv each pair is a line; as json each record of the master has a list "Records".

--set changes records and writes the file again, with all its records, to standard output, to -o FILE, or with --in-place
to where it was. Cells whose value stays are written as they stood in the file, a new value as its column writes values.
It is an error if other cells would be read otherwise afterwards. An empty value makes a cell empty.

Examples:
  kestrix table orders.csv --where "Profit>=100" --where "Shipment Mode!=Same Day" --sort "Profit.D"
  kestrix table orders.csv --type "Order ID=string" --index "Order ID" --desc --limit 5
  kestrix table orders.csv --sort "Product Name" --locate "Product Name=Nike*" --partial --limit 5
  kestrix table orders.csv --master products.csv --on "Product Name" --columns "Order ID,Profit"
  kestrix table orders.csv --where "Profit<0" --set "Discount %=0" --in-place
  some-program | kestrix table --separator ";" --format tsv -o clean.tsv)";

struct TRawTable {
  TRawInput input;
  TTableOptions options;
  TRawRows rows;
  bool isPartial = false;
  bool ignoresCase = false;
};

TTableOptions OptionsOf(const TRawTable& raw) {
  TTableOptions options = raw.options;
  options.input = InputOf(raw.input);
  TakeRows(options, raw.rows);
  options.locateOptions.Put(loPartialKey, raw.isPartial);
  options.locateOptions.Put(loCaseInsensitive, raw.ignoresCase);
  return options;
}

void AddLocate(CLI::App& command, TRawTable& raw) {
  CLI::Option* const locate =
      command.add_option("--locate", raw.options.locate, "COLUMN=VALUE of the first record to show; see below");
  command.add_flag("--partial", raw.isPartial, "The text has only to begin with that value")->needs(locate);
  command.add_flag("--ignore-case", raw.ignoresCase, "Letter case doesn't matter; see below")->needs(locate);
}

void AddMaster(CLI::App& command, TTableOptions& options) {
  CLI::Option* const master = command.add_option(
      "--master", options.master, "A file, under each of whose records those of the table with the same value stand");
  CLI::Option* const on = command.add_option("--on", options.on, "The column of both files that joins them");
  master->needs(on);
  on->needs(master);
  for (const char* const other : {"--locate", "--stats"}) master->excludes(command.get_option(other));
}

void AddSet(CLI::App& command, TTableOptions& options) {
  CLI::Option* const set = AddList(command, "--set", options.set,
                                   "COLUMN=VALUE to write into the records that meet the conditions; see below");
  command.add_flag("--in-place", options.inPlace, "Writes the file that was read")
      ->needs(set)
      ->excludes(command.get_option("--output"));
  for (const char* const other :
       {"--sort", "--index", "--desc", "--columns", "--limit", "--format", "--stats", "--locate", "--master"})
    set->excludes(command.get_option(other));
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
  AddLocate(*command, *raw);
  AddMaster(*command, options);
  AddSet(*command, options);
  command->footer(kHelp);
  return [raw](const TStreams& streams) {
    RunTable(OptionsOf(*raw), streams);
    return kSuccess;
  };
}

}  // namespace vx::kestrix
