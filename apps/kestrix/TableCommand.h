// TableCommand.h: "kestrix table": the records of a file, filtered and sorted, as text.
//
// The first "=" of the conditions is the cursor's own filter; all others go through its record callback. Everything is
// loaded and checked before the first line is written, so an error never follows half a result.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "Inputs.h"
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
  TTableFormat format = TTableFormat::Table;
  std::string output;  ///< a file; standard output if empty or "-"
};

/// The command's options; see TableOptions.cpp.
TRunCommand AddTable(CLI::App& app);
/// Raises EUserError and EInterrupted.
void RunTable(const TTableOptions& options, const TStreams& streams);

}  // namespace vx::kestrix
