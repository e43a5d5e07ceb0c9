#include "data/VXRAMBucketFold.h"

#include <algorithm>

namespace vx {

namespace {

bool FoldsInDoubles(TVXRAMFieldType type) { return type == vxrftCurrency || type == vxrftFloat; }
bool FoldsInIntegers(TVXRAMFieldType type) { return type == vxrftDuration || type == vxrftInteger; }

double Sum(double a, double b) { return a + b; }
std::int32_t Sum(std::int32_t a, std::int32_t b) { return WrappingAdd(a, b); }

template <bool Whole>
TVXFieldStatus Status(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
  if constexpr (Whole) return static_cast<TVXFieldStatus>(RowBytes(row)[slot.statusOffset]);
  return RowStatus(row, slot);
}

template <class T, bool Whole = false>
T Value(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
  if constexpr (!Whole) return RowValue<T>(row, slot);
  T value;
  std::memcpy(&value, RowBytes(row) + slot.valueOffset, sizeof value);
  return value;
}

template <class T>
void Put(TVXRAMRow* target, const TVXRAMFieldSlot& slot, T value) {
  std::memcpy(RowBytes(target) + slot.valueOffset, &value, sizeof value);
}

template <bool Whole>
void AddStatus(const TVXRAMRow* row, const TVXRAMFieldSlot& slot, TVXRAMRow* target) {
  std::uint8_t& status = RowBytes(target)[slot.statusOffset];
  status = static_cast<std::uint8_t>(status | Status<Whole>(row, slot));
}

/// Whether a row dated `date` takes over from one dated `kept`, 0 for none; `earlier` for first, else for last. A tie
/// takes over.
bool TakesOver(TDateTime date, TDateTime& kept, bool earlier) {
  if (kept != 0 && !(earlier ? date <= kept : date >= kept)) return false;
  kept = date;
  return true;
}

template <class T, bool Whole>
void FoldValue(TVXBucketType type, const TVXRAMFieldSlot& slot, const TVXRAMRow* row, TDateTime date,
               TVXRAMBucketState& state, TVXRAMRow* target) {
  T value = Value<T, Whole>(row, slot);
  const T before = Value<T, true>(target, slot);
  switch (type) {
    case vxbtCumulate:
    case vxbtAverage:
      value = Sum(value, before);
      break;
    case vxbtMinValue:
      if (state.rows != 1 && before < value) value = before;
      break;
    case vxbtMaxValue:
      if (state.rows != 1 && before > value) value = before;
      break;
    case vxbtFirstBucket:
      if (!TakesOver(date, state.firstDate, true)) value = before;
      break;
    case vxbtLastBucket:
      if (!TakesOver(date, state.lastDate, false)) value = before;
      break;
  }
  Put(target, slot, value);
}

/// The sum in the row becomes the average; a 32-bit sum is exact as a double.
template <class T>
void DivideSum(const TVXRAMFieldSlot& slot, std::int32_t count, TVXRAMRow* target, std::vector<double>& sums) {
  const T sum = RowValue<T>(target, slot);
  sums.push_back(sum);
  Put(target, slot, static_cast<T>(sum / count));
}

}  // namespace

// -- What becomes of each field ---------------------------------------------------------------------------------------

TVXRAMBucketFold::TVXRAMBucketFold(const TVXRAMCursorBucketer& cursor) : cursor_(cursor) {
  const TVXRAMFieldDefs& fields = *cursor.Table().Get_FieldDefs();
  for (std::int32_t i = 0; i < fields.Count(); ++i) {
    const TVXRAMFieldDef& field = *fields.Get_Item(i);
    const TVXRAMFieldSlot slot = field.Get_Slot();
    const bool takesValue = slot.size >= DefaultByteSize(slot.type);
    const bool folds = takesValue && (FoldsInDoubles(slot.type) || FoldsInIntegers(slot.type));
    if (slot.statusOffset < kFirstFieldOffset || slot.size < 0) layoutIsSound_ = false;
    wholeSize_ = std::max(wholeSize_, WrappingAdd(slot.valueOffset, slot.size));
    const TVXBucketFieldDef* const def =
        folds ? cursor.Get_BucketFieldDefs()->Get_BucketByName(field.Get_Name()) : nullptr;
    if (def != nullptr)
      folded_.push_back({slot, def->Get_BucketType()});
    else if (takesValue && slot.type == vxrftDateTime && cursor.IsBucketedField(field.Get_Name()))
      grouped_.push_back(slot);
    else
      shown_.push_back(slot);
  }
  if (wholeSize_ > cursor.Table().Get_RecSize()) layoutIsSound_ = false;
  SettleDate();
}

void TVXRAMBucketFold::SettleDate() {
  for (std::int32_t i = 0; i < cursor_.Get_BucketedFieldCount(); ++i) {
    const TVXRAMFieldDef* const field = cursor_.Get_BucketedRAMFieldDef(i);
    dateFails_ = field == nullptr;
    if (dateFails_) return;
    hasDate_ = field->Get_DataType() == vxrftDateTime;
    if (!hasDate_) continue;
    dateSlot_ = field->Get_Slot();
    if (dateSlot_.size < DefaultByteSize(vxrftDateTime)) layoutIsSound_ = false;
    return;
  }
}

bool TVXRAMBucketFold::operator==(const TVXRAMBucketFold& other) const {
  return folded_ == other.folded_ && shown_ == other.shown_ && grouped_ == other.grouped_ &&
         dateSlot_ == other.dateSlot_ && hasDate_ == other.hasDate_ && dateFails_ == other.dateFails_;
}

// -- One bucket -------------------------------------------------------------------------------------------------------

void TVXRAMBucketFold::Compute(TVXRAMBucketInfo& bucket) const {
  Begin(bucket);
  const TVXList& rows = *bucket.Get_Records();
  for (std::int32_t i = 0; i < rows.Count(); ++i) AddRow(bucket, static_cast<const TVXRAMRow*>(rows.Items(i)));
  Finish(bucket);
}

void TVXRAMBucketFold::Begin(TVXRAMBucketInfo& bucket) const {
  bucket.state_ = {};
  TVXRAMRow* const target = bucket.Get_BucketRecord();
  ClearValues(target);
  if (bucket.Get_RecordCount() == 0) return;
  if (dateFails_) cursor_.Get_BucketedDateFieldDef();
  if (layoutIsSound_ && IsWhole(target)) return;
  TVXRAMTable& table = cursor_.Table();
  for (std::int32_t i = 0; i < table.Get_FieldDefs()->Count(); ++i)  // raises if the row is too old for a field
    table.InternalSetFieldStatus(target, i, table.InternalGetFieldStatus(target, i));
}

void TVXRAMBucketFold::Reset(TVXRAMBucketInfo& bucket) const {
  bucket.state_ = {};
  TVXRAMRow* const target = bucket.Get_BucketRecord();
  std::memset(RowBytes(target) + kFirstFieldOffset, 0,
              static_cast<std::size_t>(TVXRAMRowPool::SizeOf(target) - kFirstFieldOffset));
}

/// Not by the table, whose change stamp is for what others write.
void TVXRAMBucketFold::ClearValues(TVXRAMRow* target) const {
  for (const TVXRAMFieldSlot& slot : cursor_.Table().Get_FieldDefs()->Get_Slots())
    if (RowTakes(target, slot))
      std::memset(RowBytes(target) + slot.valueOffset, 0, static_cast<std::size_t>(slot.size));
}

void TVXRAMBucketFold::AddRow(TVXRAMBucketInfo& bucket, const TVXRAMRow* row) const {
  ++bucket.state_.rows;
  if (layoutIsSound_ && IsWhole(row))
    Fold<true>(bucket.state_, row, bucket.Get_BucketRecord());
  else
    Fold<false>(bucket.state_, row, bucket.Get_BucketRecord());
}

template <bool Whole>
void TVXRAMBucketFold::Fold(TVXRAMBucketState& state, const TVXRAMRow* row, TVXRAMRow* target) const {
  const TDateTime date = hasDate_ ? Value<TDateTime, Whole>(row, dateSlot_) : 0;
  for (const TColumn& column : folded_)
    if (FoldsInDoubles(column.slot.type))
      FoldValue<double, Whole>(column.type, column.slot, row, date, state, target);
    else
      FoldValue<std::int32_t, Whole>(column.type, column.slot, row, date, state, target);
  if (!state.allAssigned) AddStatuses<Whole>(state, row, target);
}

/// A field stays assigned once any row gave it a value.
template <bool Whole>
void TVXRAMBucketFold::AddStatuses(TVXRAMBucketState& state, const TVXRAMRow* row, TVXRAMRow* target) const {
  bool assigned = true;
  const auto add = [&](const TVXRAMFieldSlot& slot) {
    AddStatus<Whole>(row, slot, target);
    assigned = assigned && RowBytes(target)[slot.statusOffset] == vxfsAssigned;
  };
  for (const TColumn& column : folded_) add(column.slot);
  for (const TVXRAMFieldSlot& slot : shown_) add(slot);
  for (const TVXRAMFieldSlot& slot : grouped_) add(slot);
  state.allAssigned = assigned;
}

void TVXRAMBucketFold::Finish(TVXRAMBucketInfo& bucket) const {
  if (bucket.Get_RecordCount() == 0) return;
  Divide(bucket);
  TVXRAMRow* const target = bucket.Get_BucketRecord();
  const auto* const last = static_cast<const TVXRAMRow*>(bucket.Get_Records()->Last());
  for (const TVXRAMFieldSlot& slot : shown_) ShowLastRow(slot, last, target);
  for (const TVXRAMFieldSlot& slot : grouped_) {
    ShowLastRow(slot, last, target);
    Put(target, slot, cursor_.BucketDate(RowValue<TDateTime>(target, slot)));
  }
}

void TVXRAMBucketFold::ShowLastRow(const TVXRAMFieldSlot& slot, const TVXRAMRow* last, TVXRAMRow* target) const {
  if (RowHolds(last, slot))
    std::memcpy(RowBytes(target) + slot.valueOffset, RowBytes(last) + slot.valueOffset,
                static_cast<std::size_t>(slot.size));
}

// -- Averages ---------------------------------------------------------------------------------------------------------

void TVXRAMBucketFold::Divide(TVXRAMBucketInfo& bucket) const {
  TVXRAMRow* const target = bucket.Get_BucketRecord();
  const std::int32_t count = bucket.Get_RecordCount();
  bucket.state_.sums.clear();
  for (const auto& [slot, type] : folded_) {
    if (type != vxbtAverage) continue;
    if (FoldsInDoubles(slot.type))
      DivideSum<double>(slot, count, target, bucket.state_.sums);
    else
      DivideSum<std::int32_t>(slot, count, target, bucket.state_.sums);
  }
}

void TVXRAMBucketFold::Extend(TVXRAMBucketInfo& bucket, const TVXRAMRow* row) const {
  TVXRAMRow* const target = bucket.Get_BucketRecord();
  auto sum = bucket.state_.sums.begin();
  for (const auto& [slot, type] : folded_) {
    if (type != vxbtAverage) continue;
    if (FoldsInDoubles(slot.type))
      Put(target, slot, *sum++);
    else
      Put(target, slot, static_cast<std::int32_t>(*sum++));
  }
  AddRow(bucket, row);
  Finish(bucket);
}

}  // namespace vx
