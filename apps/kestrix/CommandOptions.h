// CommandOptions.h: options that several commands have, and what their words mean.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "Command.h"
#include "Inputs.h"
#include "TableWriter.h"

namespace vx::kestrix {

/// What the command line says of the inputs, before its words are looked up.
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

/// What it says of the rows that are shown.
struct TRawRows {
  std::string format = "table";
  std::int64_t limit = -1;
};

/// One value each time the option is given.
CLI::Option* AddList(CLI::App& app, const std::string& name, std::vector<std::string>& values, const std::string& help);
/// "-o FILE".
void AddOutput(CLI::App& app, std::string& output);
/// `typeHelp` says what else --type is good for; else it stands among the options of reading.
void AddInputOptions(CLI::App& app, TRawInput& raw, const std::string& typeHelp);
void AddPeriod(CLI::App& app, std::string& by);

/// What a table of rows is asked, whatever its rows are. Options is TTableOptions or TBucketOptions.
template <class Options>
void AddRowOptions(CLI::App& app, TRawRows& raw, Options& options, const std::string& rows) {
  app.add_option("--sort", options.sort, "Columns to sort by: \"A;B.D\"");
  app.add_option("--limit", raw.limit, "Most " + rows + " to show")
      ->check(CLI::Range(0, std::numeric_limits<std::int32_t>::max()));
  app.add_flag("--desc", options.isDescending, "Walks from the last of the " + rows + " to the first");
  app.add_option("--format", raw.format, "How to write")
      ->capture_default_str()
      ->check(CLI::IsMember({"table", "csv", "tsv", "json"}));
  AddOutput(app, options.output);
}

/// Calls `check` with each file, which tells on the given output what it finds and answers whether all is well. Errors
/// of one file are told on the error output, and the others follow. The exit code of all.
int CheckEach(const std::vector<std::string>& files, const TStreams& streams,
              const std::function<bool(const std::string& file, std::ostream& out)>& check);

/// Raises EUserError.
TInputOptions InputOf(const TRawInput& raw);

template <class Options>
void TakeRows(Options& options, const TRawRows& raw) {
  options.format = FormatOfName(raw.format).value_or(TTableFormat::Table);
  if (raw.limit >= 0) options.limit = static_cast<std::size_t>(raw.limit);
}

}  // namespace vx::kestrix
