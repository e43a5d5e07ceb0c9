#include "NaiveBucketer.h"

#include <algorithm>

#include "NaiveValues.h"

namespace vx::naive {
namespace {

void Remove(TRows& rows, const TRow* row) {
  const auto at = std::find(rows.begin(), rows.end(), row);
  if (at != rows.end()) rows.erase(at);
}

bool IsReal(TType type) { return type == TType::Currency || type == TType::Float; }
bool IsInteger(TType type) { return type == TType::Duration || type == TType::Integer; }

}  // namespace

void TBucketer::OpenBuckets(const TBucketerDesc& desc) {
  bucketFieldDefs = desc.bucketFieldDefs;
  basedGroupMode = desc.basedGroupMode;
  groupMode = desc.groupMode;
  bucketedFields = desc.bucketedFields;
  byStartOfGroup = desc.byStartOfGroup;
  Open(desc);
  BuildAllBuckets();
  RebuildFilteredList(virtualRows);
  InternalDoSort();
}

TBucket* TBucketer::BucketOfVirtualRow(const TRow* row) const {
  for (const auto& bucket : buckets)
    if (bucket->row == row) return bucket.get();
  return nullptr;
}

TBucket* TBucketer::BucketOfSourceRow(const TRow* row) const {
  for (const auto& bucket : buckets)
    if (std::find(bucket->records.begin(), bucket->records.end(), row) != bucket->records.end()) return bucket.get();
  return nullptr;
}

TRow* TBucketer::CurrentRecord() {
  TRow* row = TCursor::CurrentRecord();
  if (!updatingRecord || groupMode != basedGroupMode) return row;
  const TBucket* bucket = BucketOfVirtualRow(row);
  if (bucket == nullptr) return row;
  if (bucket->records.empty()) RaiseRange(0);
  return bucket->records[0];
}

void TBucketer::DeleteRec() {
  TRow* row = CurrentRecord();
  TBucket* bucket = BucketOfVirtualRow(row);
  if (bucket == nullptr) {
    TCursor::DeleteRec();
    return;
  }
  table.DeleteRecord(this, row);
  FreeBucket(bucket);  // the position isn't corrected
}

void TBucketer::FreeBucket(TBucket* bucket) {
  Remove(virtualRows, bucket->row);
  bucket->row->released = true;
  std::erase_if(buckets, [bucket](const auto& each) { return each.get() == bucket; });
}

void TBucketer::ReleaseVirtualRows() {
  for (const auto& bucket : buckets) bucket->row->released = true;
  buckets.clear();
  virtualRows.clear();
}

// -- Notifications ---

void TBucketer::RecordInsertionNotification(TRow* row) {
  Log("hears of new " + std::to_string(row->id));
  if (IsUpdating()) return;
  InsertRecord(row, true);
  InternalDoSort();
}

void TBucketer::RecordDeletionNotification(TCursor* origin, TRow* row) {
  TCursor::RecordDeletionNotification(origin, row);
  if (const TBucket* own = BucketOfVirtualRow(row)) {
    for (std::size_t i = 0; i < own->records.size(); ++i) table.DeleteRecord(this, own->records[i]);
    return;
  }
  if (origin == this) return;
  TBucket* bucket = BucketOfSourceRow(row);
  if (bucket == nullptr) return;
  Remove(bucket->records, row);
  if (!bucket->records.empty()) return;  // the values stay as they were
  table.DeleteRecord(this, bucket->row);
  FreeBucket(bucket);
}

void TBucketer::RecordEditionNotification(TRow* row) {
  Log("hears of edited " + (row != nullptr ? std::to_string(row->id) : "nothing"));
  if (TBucket* bucket = BucketOfVirtualRow(row)) UpdateBucket(*bucket);
}

void TBucketer::FilterChange() {
  Log("filter change");
  RebuildFilteredList(virtualRows);
  InternalDoSort();
}

void TBucketer::EndUpdating() {
  Log("end updating");
  BuildAllBuckets();
  RebuildFilteredList(virtualRows);
  InternalDoSort();
}

// -- Building ---

void TBucketer::BuildAllBuckets() {
  nextBucketId = 0;
  ReleaseVirtualRows();
  for (TRow* row : InternalRecordList()) InsertRecord(row, false);
  if (IsUpdating()) return;
  for (const auto& bucket : buckets) UpdateBucket(*bucket);
}

TBucket& TBucketer::Bucket(const std::string& key) {
  for (const auto& bucket : buckets)
    if (bucket->key == key) return *bucket;
  buckets.push_back(std::make_unique<TBucket>());
  TBucket& bucket = *buckets.back();
  bucket.key = key;
  bucket.row = table.NewRow();  // takes an id of the table, which is then overwritten
  bucket.row->id = nextBucketId++;
  virtualRows.push_back(bucket.row);
  return bucket;
}

void TBucketer::InsertRecord(TRow* row, bool update) {
  TBucket& bucket = Bucket(KeyOf(*row));
  bucket.records.push_back(row);
  if (update && !IsUpdating()) UpdateBucket(bucket);
}

double TBucketer::BucketDate(double date) const {
  if (byStartOfGroup) return GroupDate(groupMode, date, table.startOfWeek);
  return NextGroupDate(groupMode, date, table.startOfWeek) - 1.0;
}

std::string TBucketer::KeyOf(const TRow& row) const {
  std::string key;
  for (const std::string& fieldName : SplitItems(bucketedFields)) {
    const std::int32_t field = table.FieldNbByName(fieldName);
    if (field == -1) continue;
    const TType type = table.Field(field).type;
    const TBytes bytes = table.Read(row, static_cast<std::size_t>(field)).bytes;  // whatever the status
    if (type == TType::String)
      key += ReadText(bytes);
    else if (type == TType::DateTime)
      key += DateText(BucketDate(ReadDouble(bytes)));
    else if (IsReal(type))
      key += FloatText(ReadDouble(bytes));
    else
      key += std::to_string(ReadInteger(type, bytes));
  }
  return key;
}

bool TBucketer::IsBucketedField(const std::string& fieldName) const {
  const std::vector<std::string> items = SplitItems(bucketedFields);
  return std::find(items.begin(), items.end(), fieldName) != items.end();
}

double TBucketer::RowDate(const TRow& row) const {
  for (const std::string& fieldName : SplitItems(bucketedFields)) {
    const std::int32_t field = table.FieldNbByName(fieldName);
    if (field == -1) RaiseNil();
    if (table.Field(field).type == TType::DateTime)
      return ReadDouble(table.Read(row, static_cast<std::size_t>(field)).bytes);
  }
  return 0;
}

void TBucketer::UpdateBucket(TBucket& bucket) {
  for (TField& field : bucket.row->fields) field.bytes.assign(field.bytes.size(), 0);  // the status stays
  TDates dates;
  for (std::size_t position = 0; position < bucket.records.size(); ++position) {
    const double rowDate = RowDate(*bucket.records[position]);
    for (std::size_t field = 0; field < table.fields.size(); ++field)
      FoldField(bucket, field, position, dates, rowDate);
  }
}

void TBucketer::FoldField(const TBucket& bucket, std::size_t field, std::size_t position, TDates& dates,
                          double rowDate) {
  const TFieldDef& def = *table.fields[field];
  const TField source = table.Read(*bucket.records[position], field);
  TBytes buffer = source.bytes;
  if (IsBucketedField(def.name) && def.type == TType::DateTime)
    buffer = BytesOf(def.type, BucketDate(ReadDouble(buffer)), def.size);
  const TBytes folded = Calculate(bucket, field, position + 1, dates, rowDate, buffer);
  TField& target = table.Write(*bucket.row, field);
  target = {source.assigned || target.assigned, folded};
}

TBytes TBucketer::Calculate(const TBucket& bucket, std::size_t field, std::size_t n, TDates& dates, double rowDate,
                            const TBytes& buffer) const {
  const TFieldDef& def = *table.fields[field];
  const auto found = std::find_if(bucketFieldDefs.begin(), bucketFieldDefs.end(),
                                  [&](const auto& each) { return Upper(each.first) == Upper(def.name); });
  if (found == bucketFieldDefs.end() || !(IsReal(def.type) || IsInteger(def.type))) return buffer;
  const TBytes present = table.Read(*bucket.row, field).bytes;
  const bool presentIsLess = CompareValues(def.type, present, buffer) < 0;
  const bool presentIsGreater = CompareValues(def.type, present, buffer) > 0;
  const auto sumDividedBy = [&](std::size_t divisor) {
    if (IsReal(def.type))
      return BytesOf(def.type, (ReadDouble(buffer) + ReadDouble(present)) / static_cast<double>(divisor), def.size);
    const auto sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(ReadInteger(def.type, buffer)) +
                                               static_cast<std::uint32_t>(ReadInteger(def.type, present)));
    return BytesOf(def.type, sum / static_cast<std::int32_t>(divisor), def.size);
  };
  switch (found->second) {
    case TBucketType::Cumulate:
      return sumDividedBy(1);
    case TBucketType::Average:
      return sumDividedBy(n == bucket.records.size() ? n : 1);
    case TBucketType::Min:
      return n != 1 && presentIsLess ? present : buffer;
    case TBucketType::Max:
      return n != 1 && presentIsGreater ? present : buffer;
    case TBucketType::First:
      if (dates.first != 0 && rowDate > dates.first) return present;
      dates.first = rowDate;
      return buffer;
    case TBucketType::Last:
      break;
  }
  if (dates.last != 0 && rowDate < dates.last) return present;
  dates.last = rowDate;
  return buffer;
}

}  // namespace vx::naive
