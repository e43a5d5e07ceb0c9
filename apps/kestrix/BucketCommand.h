// BucketCommand.h: "kestrix bucket": the records of a file folded by period and group, as a table.
//
// A row for each period and group that has records, with what was asked of their values: number of records, sum,
// average, least, greatest, first and last. Records whose date is null are left out, and counted on the error output.
// A null value counts as zero, as the bucketer has it; where that shows, a remark says how often.
//
// Values are folded as doubles, whole numbers too: a sum doesn't wrap, an average isn't cut. The aligned table shows as
// many decimals as the column has in the file (averages at least two); csv, tsv and json hold every digit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "Folding.h"
#include "Inputs.h"
#include "TableWriter.h"

namespace vx::kestrix {

struct TBucketAggregate {
  std::optional<TVXBucketType> type;  ///< none: the number of records
  std::string column;                 ///< empty for the number of records
};

struct TBucketOptions {
  TInputOptions input;
  std::string date;  ///< a column, or year, month and day columns; empty: the only column of dates
  TVXGroupMode by = vxgrOneMonth;
  std::vector<std::string> groups;
  std::vector<TBucketAggregate> aggregates;  ///< in the order in which they are shown
  std::optional<std::int32_t> startOfWeek;   ///< 1 is Sunday; else the one of the house
  bool isLabelledAtEnd = false;
  bool wantsTotals = false;
  std::vector<std::string> where;
  std::string sort;
  bool isDescending = false;
  std::optional<std::size_t> limit;
  TTableFormat format = TTableFormat::Table;
  std::string output;  ///< a file; standard output if empty or "-"
};

/// The command's options; see BucketOptions.cpp.
TRunCommand AddBucket(CLI::App& app);
/// Raises EUserError and EInterrupted.
void RunBucket(const TBucketOptions& options, const TStreams& streams);

}  // namespace vx::kestrix
