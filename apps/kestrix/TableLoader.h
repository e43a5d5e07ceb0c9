// TableLoader.h: a source's records as rows of a table in memory, and values out of rows again.
//
//   const TColumnPlan plan = PlanColumns(source, wishes);
//   auto table = LoadTable(source, plan, {.memory = 1 << 30});
//
// Fields stand in the order of the columns. A text field's slot is the column's longest value and its closing zero, so
// no value is ever cut. Before a row is made the whole size is known: rows that would take more than `memory` are an
// EUserError that names the first line beyond it and the widest column. A cell that isn't of its column's type is one
// that names line, column and value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "CellValue.h"
#include "ColumnPlan.h"
#include "CsvSource.h"
#include "data/VXRAMTable_CMP.h"

namespace vx::kestrix {

struct TLoadLimits {
  std::uint64_t memory = std::uint64_t{1} << 30;  ///< bytes of all rows
};

/// Raises EUserError if rows of this plan need more than the limit.
void CheckMemory(TCsvSource& source, const TColumnPlan& plan, const TLoadLimits& limits);

/// A table without rows.
TOwned<TVXRAMTable> MakeTable(const TColumnPlan& plan);

/// A table with all records, in their order. With `index`, a column, its one index definition holds that column's
/// field, and the rows stand in the base index and in that index alone; without, in the main list.
TOwned<TVXRAMTable> LoadTable(TCsvSource& source, const TColumnPlan& plan, const TLoadLimits& limits,
                              std::optional<std::size_t> index = std::nullopt);

/// The text of a cell as a value of the column's type; null for a null word, for blank text, and for what isn't one.
TCellValue ValueOfText(std::string_view text, const TColumn& column, char decimal, const TNullWords& nulls);
/// The cell as a value of the column's type; null for a null word, or for blank text. Raises EUserError by way of
/// `source`.
TCellValue ReadCell(const TCsvSource& source, const TColumnPlan& plan, const TCsvRecord& record, std::size_t column);

/// Bytes that a row has for the column's value.
std::int32_t SlotSize(const TColumn& column);

/// Puts a value of the field's type into a record that is to be added.
void AssignCell(TVXFieldStruct& field, const TCellValue& value);

/// Reads values out of rows of a table made here.
class TRowReader {
 public:
  TRowReader(const TVXRAMTable& table, const TColumnPlan& plan);
  TCellValue Value(const TVXRAMRow* row, std::size_t column) const;

 private:
  template <class T>
  T Read(const TVXRAMRow* row, std::size_t column) const;

  const TVXRAMTable& table_;
  std::vector<TColumnType> types_;
  mutable std::vector<char> text_;  // as large as the largest slot
};

}  // namespace vx::kestrix
