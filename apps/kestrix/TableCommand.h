// TableCommand.h: "kestrix table": the records of a file, filtered and sorted, as text.
//
// The records are those of a data set over the loaded table. Everything is loaded and checked before the first line is
// written, so an error never follows half a result.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "Inputs.h"
#include "QuerySet.h"
#include "TableWriter.h"

namespace vx::kestrix {

struct TTableOptions {
  TInputOptions input;
  std::vector<std::string> where;
  std::string sort;
  std::string index;    ///< column whose index the cursor walks
  std::string columns;  ///< those shown, separated by commas; all if empty
  std::optional<std::size_t> limit;
  bool isDescending = false;
  bool wantsStats = false;
  std::optional<std::string> locate;  ///< "COLUMN=VALUE": the first record that is shown
  TLocateOptions locateOptions;
  std::optional<std::string> master;  ///< a file, under whose records those of the table are shown
  std::string on;                     ///< column that joins them
  std::vector<std::string> set;       ///< "COLUMN=VALUE": what is written into the records, instead of showing them
  bool inPlace = false;               ///< the file takes the place of the one that was read
  TTableFormat format = TTableFormat::Table;
  std::string output;  ///< a file; standard output if empty or "-"
};

/// The command's options; see TableOptions.cpp.
TRunCommand AddTable(CLI::App& app);
/// Looks the wishes up, but those about --locate, --master and --set.
TQuery ResolveQuery(const TTableOptions& options, const TColumnPlan& plan);

std::vector<TWrittenColumn> WrittenColumnsOf(const TColumnPlan& plan, const std::vector<std::size_t>& columns);

/// Raises EUserError and EInterrupted.
void RunTable(const TTableOptions& options, const TStreams& streams);

}  // namespace vx::kestrix
