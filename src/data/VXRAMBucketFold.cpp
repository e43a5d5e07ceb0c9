#include "data/VXRAMBucketFold.h"

#include <type_traits>

namespace vx {

namespace {

bool Folds(TVXRAMFieldType type) {
  return type == vxrftCurrency || type == vxrftFloat || type == vxrftDuration || type == vxrftInteger;
}

double Sum(double a, double b) { return a + b; }
std::int32_t Sum(std::int32_t a, std::int32_t b) { return WrappingAdd(a, b); }

void AddStatus(const TVXRAMRow* row, const TVXRAMFieldSlot& slot, TVXRAMRow* target) {
  std::uint8_t& status = RowBytes(target)[slot.statusOffset];
  status = static_cast<std::uint8_t>(status | RowStatus(row, slot));
}

template <class T>
void Put(TVXRAMRow* target, const TVXRAMFieldSlot& slot, T value) {
  std::memcpy(RowBytes(target) + slot.valueOffset, &value, sizeof value);
}

/// Whether a row dated `date` takes over from one dated `kept`, 0 for none; `earlier` for first, else for last. A tie
/// takes over.
bool TakesOver(TDateTime date, TDateTime& kept, bool earlier) {
  if (kept != 0 && !(earlier ? date <= kept : date >= kept)) return false;
  kept = date;
  return true;
}

}  // namespace

TVXRAMBucketFold::TVXRAMBucketFold(const TVXRAMCursorBucketer& cursor) : cursor_(cursor) {
  const TVXRAMFieldDefs& fields = *cursor.Table().Get_FieldDefs();
  for (std::int32_t i = 0; i < fields.Count(); ++i) {
    const TVXRAMFieldDef& field = *fields.Get_Item(i);
    const TVXRAMFieldSlot slot = field.Get_Slot();
    const TVXBucketFieldDef* const def =
        Folds(slot.type) ? cursor.Get_BucketFieldDefs()->Get_BucketByName(field.Get_Name()) : nullptr;
    if (def != nullptr && slot.size >= DefaultByteSize(slot.type))
      folded_.push_back({slot, def->Get_BucketType()});
    else if (slot.type == vxrftDateTime && slot.size >= DefaultByteSize(slot.type) &&
             cursor.IsBucketedField(field.Get_Name()))
      grouped_.push_back(slot);
    else
      shown_.push_back(slot);
  }
}

TDateTime TVXRAMBucketFold::RowDate(const TVXRAMRow* row) {
  if (!dateIsKnown_) {  // looked up at the first row, where a wrong name raises
    if (const TVXRAMFieldDef* const field = cursor_.Get_BucketedDateFieldDef()) dateSlot_ = field->Get_Slot();
    dateIsKnown_ = true;
  }
  return dateSlot_ ? RowValue<TDateTime>(row, *dateSlot_) : 0;
}

void TVXRAMBucketFold::Compute(const TVXRAMBucketInfo& bucket) {
  TVXRAMRow* const target = bucket.Get_BucketRecord();
  const TVXList& rows = *bucket.Get_Records();
  TVXRAMTable& table = cursor_.Table();
  table.InternalClearAllFieldValues(target);
  if (rows.Count() == 0) return;
  RowDate(static_cast<const TVXRAMRow*>(rows.Items(0)));
  // Raises if the row is too old for a field.
  for (std::int32_t i = 0; i < table.Get_FieldDefs()->Count(); ++i)
    table.InternalSetFieldStatus(target, i, table.InternalGetFieldStatus(target, i));
  TDates dates;
  for (std::int32_t i = 0; i < rows.Count(); ++i)
    FoldRow(static_cast<const TVXRAMRow*>(rows.Items(i)), i + 1, rows.Count(), dates, target);
  for (const TVXRAMFieldSlot& slot : shown_) ShowLastRow(slot, rows, target);
  for (const TVXRAMFieldSlot& slot : grouped_) {
    ShowLastRow(slot, rows, target);
    Put(target, slot, cursor_.BucketDate(RowValue<TDateTime>(target, slot)));
  }
}

void TVXRAMBucketFold::ShowLastRow(const TVXRAMFieldSlot& slot, const TVXList& rows, TVXRAMRow* target) const {
  for (std::int32_t i = 0; i < rows.Count() && RowBytes(target)[slot.statusOffset] != vxfsAssigned; ++i)
    AddStatus(static_cast<const TVXRAMRow*>(rows.Items(i)), slot, target);
  const auto* const last = static_cast<const TVXRAMRow*>(rows.Last());
  if (RowHolds(last, slot))
    std::memcpy(RowBytes(target) + slot.valueOffset, RowBytes(last) + slot.valueOffset,
                static_cast<std::size_t>(slot.size));
}

void TVXRAMBucketFold::FoldRow(const TVXRAMRow* row, std::int32_t number, std::int32_t count, TDates& dates,
                               TVXRAMRow* target) {
  const TDateTime date = RowDate(row);
  for (const TColumn& column : folded_) {
    AddStatus(row, column.slot, target);
    if (column.slot.type == vxrftDuration || column.slot.type == vxrftInteger)
      FoldValue<std::int32_t>(column, row, number, count, date, dates, target);
    else
      FoldValue<double>(column, row, number, count, date, dates, target);
  }
}

template <class T>
void TVXRAMBucketFold::FoldValue(const TColumn& column, const TVXRAMRow* row, std::int32_t number, std::int32_t count,
                                 TDateTime date, TDates& dates, TVXRAMRow* target) {
  T value = RowValue<T>(row, column.slot);
  const T before = RowValue<T>(target, column.slot);
  switch (column.type) {
    case vxbtCumulate:
      value = Sum(value, before);
      break;
    case vxbtAverage:
      value = Sum(value, before);
      if (number == count) value = static_cast<T>(value / count);
      break;
    case vxbtMinValue:
      if (number != 1 && before < value) value = before;
      break;
    case vxbtMaxValue:
      if (number != 1 && before > value) value = before;
      break;
    case vxbtFirstBucket:
      if (!TakesOver(date, dates.first, true)) value = before;
      break;
    case vxbtLastBucket:
      if (!TakesOver(date, dates.last, false)) value = before;
      break;
  }
  Put(target, column.slot, value);
}

}  // namespace vx
