// EditCommand.h: "kestrix table --set": a file with other values in some of its records.
//
// The records that meet the conditions are changed in a data set, by Edit and Post, and the file is written anew. A
// cell whose value is another gets that value in its column's own form, as CellForm.h tells; all else of the file stays
// to the byte: other cells and records, line ends, bad records that were left out. Conditions see each record as it was
// in the file.
//
// Before anything is written, the new text is read as a file: each cell that stays must have the value that it had, of
// the type that it had, and each other one the value that was set. If the column's form would break that (the only
// date that told month from day was set, the only fraction, a word among texts that look like numbers), its other forms
// are tried, and then it is an EUserError that names a cell that would be read otherwise.
//
// The new file goes to standard output, to -o FILE, or with --in-place to where the old one was, whole or not at all. A
// file that isn't UTF-8 is written as UTF-8, and so not in place. How many records have other values now is told on the
// error output.
#pragma once

#include "TableCommand.h"

namespace vx::kestrix {

/// Raises EUserError and EInterrupted.
void RunEdit(const TTableOptions& options, const TStreams& streams);

}  // namespace vx::kestrix
