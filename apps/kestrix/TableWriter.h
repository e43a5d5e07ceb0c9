// TableWriter.h: records as text for people (an aligned table) and for programs (csv, tsv, json).
//
//   table   headings, a rule, columns aligned by code points, numbers to the right; control characters show as pictures
//   csv     RFC 4180: CRLF is not used, since the tools that read it don't want it; quotes where they are needed
//   tsv     the same with tabs
//   json    a list of objects; numbers, true, false and null are such
//
// A cell that a spreadsheet would take for a formula is written as it is: this is data, and changing it would be a lie.
#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CellValue.h"

namespace vx::kestrix {

enum class TTableFormat { Table, Csv, Tsv, Json };

std::optional<TTableFormat> FormatOfName(std::string_view name);

struct TWrittenColumn {
  std::string heading;
  bool isNumber = false;             ///< to the right in an aligned table
  std::optional<int> decimals = {};  ///< of its fractions in an aligned table; else as many as tell them apart
};

/// Begin once, then each row with a value for each column, then perhaps a row of totals, then End once.
class ITableWriter {
 public:
  virtual ~ITableWriter() = default;
  virtual void Begin(const std::vector<TWrittenColumn>& columns) = 0;
  virtual void Row(const std::vector<TCellValue>& values) = 0;
  /// An aligned table draws a line above.
  virtual void Totals(const std::vector<TCellValue>& values) { Row(values); }
  virtual void End() = 0;
};

/// A cell of separated values, in quotes where they are needed. An empty one alone on its line is: it would be no
/// record to a reader.
std::string SeparatedText(const std::string& cell, char separator, bool isAlone);
/// A cell as JSON has it: a number, true, false, null or a text.
std::string JsonValue(const TCellValue& value);

/// `out` must outlive the writer. An aligned table is held in memory until End; the others are written at once.
std::unique_ptr<ITableWriter> MakeTableWriter(TTableFormat format, std::ostream& out);

}  // namespace vx::kestrix
