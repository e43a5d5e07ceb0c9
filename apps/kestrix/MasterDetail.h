// MasterDetail.h: "kestrix table --master": under each record of one file, those of the table that have the same value.
//
// Two data sets and the link between them: the detail follows the master from record to record. A null joins nothing
// here: the link alone would show all records under it. Cost: for each master's record one walk over the table.
//
//   table      a line with the master's values, the records below it
//   csv, tsv   a line for each pair; a master's record without any has blanks behind it
//   json       the master's objects, each with a list "Records"
//
// The limit counts the records under each one. Without --columns all but the joining one are shown.
#pragma once

#include "TableCommand.h"

namespace vx::kestrix {

/// Raises EUserError and EInterrupted.
void RunMasterDetail(const TTableOptions& options, const TStreams& streams);

}  // namespace vx::kestrix
