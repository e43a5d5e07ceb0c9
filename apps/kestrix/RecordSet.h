// RecordSet.h: the data sets that commands walk.
//
//   auto records = Make<TRecordSet<TVXMemoryDataset>>(*table, plan);
//   records->SetSortedField("Profit.D");
//   records->Open();
//   for (; !records->Eof(); records->Next()) Use(records->Value(column));
//
// A record of a data set has less than 64 KB, one of a file may have more. The set gets fields for the columns that
// fit, those that are asked for by name first; the others are read from the table's row, which each record buffer
// knows. They show what the row is now.
#pragma once

#include <cstddef>
#include <cstring>
#include <vector>

#include "CellValue.h"
#include "ColumnPlan.h"
#include "TableLoader.h"
#include "data/VXMemoryDatasetBucketer_CMP.h"
#include "data/VXMemoryDataset_CMP.h"

namespace vx::kestrix {

/// Makes persistent fields in a closed set, those of the `needed` columns first; null for a column that has no room.
/// Raises EUserError if a needed one has none.
std::vector<TField*> MakeFields(TDataSet& set, const TColumnPlan& plan, const std::vector<std::size_t>& needed);
/// The field's value in the active record.
TCellValue ValueOfField(const TField& field, TColumnType type);

/// TSet is TVXMemoryDataset or a descendant; the table, which MakeTable made by the plan, and the plan must outlive it.
template <class TSet>
class TRecordSet : public TSet {
 public:
  TRecordSet(TVXRAMTable& table, const TColumnPlan& plan, const std::vector<std::size_t>& needed = {})
      : TSet(nullptr), plan_(plan), reader_(table, plan) {
    this->SetRAMTable(&table);
    fields_ = MakeFields(*this, plan, needed);
  }

  /// Of the active record.
  TCellValue Value(std::size_t column) const {
    const TField* const field = fields_[column];
    return field != nullptr ? ValueOfField(*field, plan_.columns[column].type) : reader_.Value(Row(), column);
  }
  /// Null if the column has none.
  TField* FieldOf(std::size_t column) const { return fields_[column]; }
  /// The active record's.
  const TVXRAMRow* Row() const {
    const TVXRAMRow* row = nullptr;
    std::memcpy(&row, this->ActiveBuffer() + rowOffset_, sizeof row);
    return row;
  }

 protected:
  /// The inherited buffer, with room for the row behind.
  char* AllocRecordBuffer() override {
    rowOffset_ = this->GetRecordSize() + this->CalcFieldsSize() + 1 + this->BookmarkSize();
    return new char[static_cast<std::size_t>(rowOffset_) + sizeof(TVXRAMRow*)]();
  }
  TGetResult GetRecord(char* buffer, TGetMode mode, bool check) override {
    const TGetResult result = TSet::GetRecord(buffer, mode, check);
    const TVXRAMRow* const row = result == grOK ? this->GetCursor()->Get_CurrentRecord() : nullptr;
    std::memcpy(buffer + rowOffset_, &row, sizeof row);
    return result;
  }

  const TColumnPlan& plan_;
  const TRowReader reader_;

 private:
  std::vector<TField*> fields_;  // by column; owned by the set
  std::int32_t rowOffset_ = 0;
};

}  // namespace vx::kestrix
