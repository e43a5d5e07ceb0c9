#include <cmath>

#include "data/VXRAMBucketFold.h"
#include "data/VXRAMCursorBucketer_CMP.h"

namespace vx {

// -- TVXRAMBucketInfo -------------------------------------------------------------------------------------------------

const TClass& TVXRAMBucketInfo::StaticClass() {
  static const TClass info("TVXRAMBucketInfo", &TCollectionItem::StaticClass());
  return info;
}

TVXRAMBucketInfo::TVXRAMBucketInfo(TCollection* collection) : TCollectionItem(collection), records_(Make<TVXList>()) {}

void TVXRAMBucketInfo::TearDown() {
  if (TVXRAMBucketList* const list = Get_List()) list->BucketFreed(*this);
  TCollectionItem::TearDown();
}

TVXRAMBucketList* TVXRAMBucketInfo::Get_List() const { return As<TVXRAMBucketList>(Collection()); }

const TVXRAMCursorBucketer& TVXRAMBucketInfo::Cursor() const {
  return Need(Need(Get_List(), "list of the bucket").Get_Cursor(), "cursor of the bucket");
}

void TVXRAMBucketInfo::UpdateBucketValues() { TVXRAMBucketFold(Cursor()).Compute(*this); }

TDateTime TVXRAMBucketInfo::GetCurrentRecordDate(const TVXRAMRow* row) const {
  const TVXRAMFieldDef* const field = Cursor().Get_BucketedDateFieldDef();
  return field == nullptr ? 0 : RowValue<TDateTime>(row, field->Get_Slot());
}

// -- TVXRAMBucketList -------------------------------------------------------------------------------------------------

const TClass& TVXRAMBucketList::StaticClass() {
  static const TClass info("TVXRAMBucketList", &TCollection::StaticClass());
  return info;
}

TVXRAMBucketList::TVXRAMBucketList(TVXRAMCursorBucketer* cursor)
    : TCollection(TClassOf<TCollectionItem>::Of<TVXRAMBucketInfo>()),
      cursor_(cursor),
      bucketRecords_(Make<TVXList>()) {}

TVXRAMBucketInfo* TVXRAMBucketList::GetBucketByID(const std::string& key) const {
  const auto at = byKey_.find(key);
  return at == byKey_.end() ? nullptr : at->second;
}

TVXRAMBucketInfo* TVXRAMBucketList::Add(const std::string& key) {
  if (TVXRAMBucketInfo* const known = GetBucketByID(key)) return known;
  TVXRAMRow* const bucketRecord = Need(cursor_, "cursor of the buckets").MakeBucketRecord();
  auto* const bucket = static_cast<TVXRAMBucketInfo*>(TCollection::Add());
  bucket->key_ = key;
  bucket->bucketRecord_ = bucketRecord;
  bucketRecords_->Add(bucket->bucketRecord_);
  byKey_.emplace(key, bucket);
  byBucketRecord_.emplace(bucket->bucketRecord_, bucket);
  return bucket;
}

void TVXRAMBucketList::BucketFreed(TVXRAMBucketInfo& bucket) {
  const auto at = byKey_.find(bucket.key_);
  if (at == byKey_.end() || at->second != &bucket) return;  // never whole, or dropped with all others
  byKey_.erase(at);
  byBucketRecord_.erase(bucket.bucketRecord_);
  bucketRecords_->Remove(bucket.bucketRecord_);
  if (recordsAreMapped_ && !recordsRepeat_)
    for (std::int32_t i = 0; i < bucket.Get_RecordCount(); ++i)
      byRecord_.erase(static_cast<TVXRAMRow*>(bucket.records_->Items(i)));
  cursor_->Table().ReleaseRow(std::exchange(bucket.bucketRecord_, nullptr));
}

void TVXRAMBucketList::FreeBuckets() {
  byKey_.clear();
  byBucketRecord_.clear();
  byRecord_.clear();
  recordsAreMapped_ = false;
  recordsRepeat_ = false;
  bucketRecords_->Clear();
  for (std::int32_t i = 0; i < Count(); ++i) cursor_->Table().ReleaseRow(Get_Bucket(i)->bucketRecord_);
  Clear();
}

/// Buckets come and go by Add and Free. One that was moved here from elsewhere, or from here, would be known to two
/// lists.
void TVXRAMBucketList::ItemsMoved() {
  auto* const last = Count() == 0 ? nullptr : As<TVXRAMBucketInfo>(Items(Count() - 1));
  if (last != nullptr && last->bucketRecord_ != nullptr && !byBucketRecord_.contains(last->bucketRecord_)) {
    last->bucketRecord_ = nullptr;
    last->records_->Clear();
  }
  if (byBucketRecord_.size() <= static_cast<std::size_t>(Count())) return;
  std::erase_if(byBucketRecord_, [this](const auto& entry) { return entry.second->Collection() != this; });
  std::erase_if(byKey_, [this](const auto& entry) { return entry.second->Collection() != this; });
  for (std::int32_t i = bucketRecords_->Count() - 1; i >= 0; --i)
    if (!byBucketRecord_.contains(static_cast<TVXRAMRow*>(bucketRecords_->Items(i)))) bucketRecords_->Delete(i);
  byRecord_.clear();
  recordsAreMapped_ = false;
}

// -- Source rows ------------------------------------------------------------------------------------------------------

void TVXRAMBucketList::TakeRow(TVXRAMBucketInfo& bucket, TVXRAMRow* row) {
  bucket.records_->Add(row);
  if (recordsAreMapped_ && !byRecord_.emplace(row, &bucket).second) recordsRepeat_ = true;
}

void TVXRAMBucketList::DropRow(TVXRAMBucketInfo& bucket, TVXRAMRow* row) {
  bucket.records_->Remove(row);
  if (recordsAreMapped_ && !recordsRepeat_) byRecord_.erase(row);
}

TVXRAMBucketInfo* TVXRAMBucketList::WalkForRecord(const TVXRAMRow* row) const {
  for (std::int32_t i = 0; i < Count(); ++i)
    if (Get_Bucket(i)->records_->IndexOf(row) != -1) return Get_Bucket(i);
  return nullptr;
}

TVXRAMBucketInfo* TVXRAMBucketList::FindByRecord(const TVXRAMRow* row) {
  if (!recordsAreMapped_) {
    recordsRepeat_ = false;
    for (std::int32_t i = 0; i < Count(); ++i)
      for (std::int32_t j = 0; j < Get_Bucket(i)->Get_RecordCount(); ++j)
        if (!byRecord_.emplace(static_cast<TVXRAMRow*>(Get_Bucket(i)->records_->Items(j)), Get_Bucket(i)).second)
          recordsRepeat_ = true;
    recordsAreMapped_ = true;
  }
  if (recordsRepeat_) return WalkForRecord(row);
  const auto at = byRecord_.find(row);
  return at == byRecord_.end() ? nullptr : at->second;
}

void TVXRAMBucketList::InsertRecord(TVXRAMRow* row, bool update) {
  std::string key;
  Need(cursor_, "cursor of the buckets").CalcBucketedFieldValue(row, key);
  TVXRAMBucketInfo& bucket = *Add(key);
  TakeRow(bucket, row);
  if (update && !cursor_->Get_IsUpdating()) bucket.UpdateBucketValues();
}

void TVXRAMBucketList::DeleteRecord(TVXRAMRow* row) {
  TVXRAMBucketInfo* const bucket = FindByRecord(row);
  if (bucket == nullptr) return;
  DropRow(*bucket, row);
  bucket->UpdateBucketValues();
}

void TVXRAMBucketList::UpdateAllBuckets() {
  TVXRAMBucketFold fold(*cursor_);
  for (std::int32_t i = 0; i < Count(); ++i) fold.Compute(*Get_Bucket(i));
}

// -- Many rows at once ------------------------------------------------------------------------------------------------

/// Finds the buckets of many rows without making the text of each key: rows whose bucketed fields have the same bytes
/// (dates: the same bucket date) have the same text, so that a text is made for each new combination only.
class TVXRAMBucketList::TRowKeys {
 public:
  explicit TRowKeys(TVXRAMBucketList& list) : list_(list), cursor_(*list.cursor_), dates_(kDates) {
    for (std::int32_t i = 0; i < cursor_.Get_BucketedFieldCount(); ++i)
      if (const TVXRAMFieldDef* const field = cursor_.Get_BucketedRAMFieldDef(i)) slots_.push_back(field->Get_Slot());
  }

  TVXRAMBucketInfo& BucketOf(const TVXRAMRow* row) {
    combination_.clear();
    for (const TVXRAMFieldSlot& slot : slots_) AppendBytes(row, slot);
    const auto known = buckets_.find(combination_);
    if (known != buckets_.end()) return *known->second;
    std::string key;
    cursor_.CalcBucketedFieldValue(row, key);
    TVXRAMBucketInfo* const bucket = list_.Add(key);
    buckets_.emplace(combination_, bucket);
    return *bucket;
  }

 private:
  static constexpr std::size_t kDates = 1024;
  struct TKnownDate {
    double day = NAN;
    TDateTime bucketDate = 0;
  };

  void AppendBytes(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
    if (slot.type == vxrftDateTime) {
      const TDateTime date = BucketDate(RowValue<TDateTime>(row, slot));
      combination_.append(reinterpret_cast<const char*>(&date), sizeof date);
    } else if (slot.type == vxrftString) {
      combination_.append(RowText(row, slot)).push_back('\0');
    } else if (RowHolds(row, slot)) {
      combination_.append(reinterpret_cast<const char*>(RowBytes(row)) + slot.valueOffset,
                          static_cast<std::size_t>(slot.size));
    } else {
      combination_.append(static_cast<std::size_t>(slot.size), '\0');
    }
  }

  /// All times of a day share their bucket, but for the last milliseconds, which may round up into the next day.
  TDateTime BucketDate(TDateTime date) {
    constexpr double kAlmostMidnight = 0.999999;
    if (!(date >= 0 && date < 4e6)) return cursor_.BucketDate(date);
    const double day = std::trunc(date);
    if (date - day > kAlmostMidnight) return cursor_.BucketDate(date);
    TKnownDate& known = dates_[static_cast<std::size_t>(day) % kDates];
    if (known.day != day) known = {day, cursor_.BucketDate(day)};
    return known.bucketDate;
  }

  TVXRAMBucketList& list_;
  const TVXRAMCursorBucketer& cursor_;
  std::vector<TVXRAMFieldSlot> slots_;
  std::vector<TKnownDate> dates_;
  std::string combination_;
  std::unordered_map<std::string, TVXRAMBucketInfo*> buckets_;
};

void TVXRAMBucketList::InsertAll(const TVXList& rows) {
  TRowKeys keys(*this);
  for (std::int32_t i = 0; i < rows.Count(); ++i) {
    auto* const row = static_cast<TVXRAMRow*>(rows.Items(i));
    TakeRow(keys.BucketOf(row), row);
  }
}

}  // namespace vx
