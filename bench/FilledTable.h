// FilledTable.h: the engine's tables of the benchmarks: the rows and events of TableData.h, row by row.
#pragma once

#include <algorithm>
#include <memory>
#include <span>
#include <string>

#include "TableData.h"
#include "data/VXRAMCursorBucketer_CMP.h"
#include "data/VXRAMTable_CMP.h"

namespace bench {

/// Whom a cursor tells of deletions; it doesn't mind.
struct TCursorOwner : public vx::TComponent, public vx::IRecordOwner {
  TCursorOwner() : TComponent(nullptr) {}
  void Refresh() override {}
};

/// A table with one open cursor.
struct TFilledTable {
  vx::TOwned<TCursorOwner> owner = vx::Make<TCursorOwner>();
  vx::TOwned<vx::TVXRAMTable> table = vx::Make<vx::TVXRAMTable>(nullptr);
  vx::TVXRAMCursor* cursor = nullptr;

  TFilledTable() = default;
  TFilledTable(TFilledTable&&) = default;
  ~TFilledTable() {
    if (table != nullptr) table->CloseCursor(cursor);
  }
  void OpenCursor(std::int32_t index = -1) {
    vx::TVXRAMCursorDesc wish(owner.get(), index, vx::vxrcoAscending, "", nullptr, vx::Variant());
    table->OpenCursor(nullptr, &wish, cursor);
  }
};

enum { kFlag, kAmount, kDate, kNumber, kText, kSmall };

/// An empty table for TPlainRow, whose cursor is not yet open.
inline std::unique_ptr<TFilledTable> TableForRows() {
  auto filled = std::make_unique<TFilledTable>();
  vx::TVXRAMTable& table = *filled->table;
  AddField(table, "Flag", vx::vxrftBoolean);
  AddField(table, "Amount", vx::vxrftFloat);
  AddField(table, "Date", vx::vxrftDateTime);
  AddField(table, "Number", vx::vxrftInteger);
  AddField(table, "Text", vx::vxrftString, kTextSize);
  AddField(table, "Small", vx::vxrftSmallint);
  return filled;
}

/// Appends one row through `record`, which the table made.
inline void AddRow(vx::TVXRAMTable& table, vx::TVXRecordStruct& record, const TPlainRow& row) {
  std::int32_t id = vx::kNoRecordId;
  record.Field(kFlag).AssignValue<std::uint8_t>(row.flag);
  record.Field(kAmount).AssignValue(row.amount);
  record.Field(kDate).AssignValue(row.date);
  record.Field(kNumber).AssignValue(row.number);
  std::memcpy(record.Field(kText).StringPtr, row.text, kTextSize);
  record.Field(kText).IsNull = false;
  record.Field(kSmall).AssignValue(row.small);
  table.AddRecordAndValues(record, -2, -1, id, /*append=*/true);
}

inline std::unique_ptr<TFilledTable> TableOf(std::span<const TPlainRow> rows) {
  auto filled = TableForRows();
  filled->OpenCursor();
  const auto record = filled->table->NewRecord();
  for (const TPlainRow& row : rows) AddRow(*filled->table, *record, row);
  return filled;
}

inline constexpr vx::TVXBucketType kFolds[] = {vx::vxbtCumulate, vx::vxbtMinValue,    vx::vxbtMaxValue,
                                               vx::vxbtAverage,  vx::vxbtFirstBucket, vx::vxbtLastBucket};

inline std::string FoldName(vx::TVXBucketType type) { return "Value" + std::to_string(type); }

inline void AddEvent(vx::TVXRAMTable& table, vx::TVXRecordStruct& record, const TPlainEvent& event) {
  std::int32_t id = vx::kNoRecordId;
  record.Field(0).AssignValue(event.date);
  record.Field(1).AssignValue(event.item);
  for (std::int32_t i = 2; i < 8; ++i) record.Field(i).AssignValue(event.value);
  table.AddRecordAndValues(record, -2, -1, id, /*append=*/true);
}

/// Date, item, and the value in six fields, one for each aggregate. No cursor is open.
inline std::shared_ptr<TFilledTable> EventTableOf(std::span<const TPlainEvent> events) {
  auto filled = std::make_shared<TFilledTable>();
  vx::TVXRAMTable& table = *filled->table;
  AddField(table, "Date", vx::vxrftDateTime);
  AddField(table, "Item", vx::vxrftInteger);
  for (const vx::TVXBucketType type : kFolds) AddField(table, FoldName(type), vx::vxrftFloat);
  const auto record = table.NewRecord();
  for (const TPlainEvent& event : events) AddEvent(table, *record, event);
  return filled;
}

inline std::shared_ptr<vx::TVXBucketFieldDefs> SixFolds() {
  auto folds = std::shared_ptr<vx::TVXBucketFieldDefs>(vx::Make<vx::TVXBucketFieldDefs>(nullptr));
  for (const vx::TVXBucketType type : kFolds) folds->Add(FoldName(type), type);
  return folds;
}

/// Opens the buckets of an event table by week and item, in that order, as its cursor.
inline void OpenWeekBuckets(TFilledTable& filled, vx::TVXBucketFieldDefs& folds) {
  vx::TVXRAMCursorBucketerDesc wish(nullptr, -1, vx::vxrcoAscending, "Date;Item", nullptr, vx::Variant(), &folds,
                                    vx::vxgrOneDay, vx::vxgrOneWeek, "Date;Item", /*bucketByStartOfGroup=*/true);
  filled.table->OpenCursor(vx::TClassOf<vx::TVXRAMCursor>::Of<vx::TVXRAMCursorBucketer>(), &wish, filled.cursor);
}

}  // namespace bench
