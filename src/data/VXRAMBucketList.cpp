#include <utility>

#include "data/VXRAMBucketBuilder.h"
#include "data/VXRAMBucketFold.h"
#include "data/VXRAMCursorBucketer_CMP.h"
#include "data/VXRAMRowSearch.h"

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

void TVXRAMBucketInfo::UpdateBucketValues() {
  Cursor();  // raises for a bucket that is in no list any more
  Get_List()->Compute(*this);
}

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

TVXRAMBucketList::~TVXRAMBucketList() = default;

TVXRAMBucketInfo* TVXRAMBucketList::GetBucketByID(const std::string& key) const {
  const auto at = byKey_.find(key);
  return at == byKey_.end() ? nullptr : at->second;
}

TVXRAMBucketInfo* TVXRAMBucketList::Add(const std::string& key) {
  const auto [at, isNew] = byKey_.try_emplace(key);
  return isNew ? MakeBucket(at) : at->second;
}

TVXRAMBucketInfo* TVXRAMBucketList::MakeBucket(TBucketsByKey::iterator at) try {
  TVXRAMRow* const bucketRecord = Need(cursor_, "cursor of the buckets").MakeBucketRecord();
  ++strays_;
  auto* const bucket = static_cast<TVXRAMBucketInfo*>(TCollection::Add());
  bucket->key_ = at->first;
  bucket->bucketRecord_ = bucketRecord;
  bucketRecords_->Add(bucketRecord);
  byBucketRecord_.emplace(bucketRecord, bucket);
  --strays_;
  return at->second = bucket;
} catch (...) {
  strays_ = Count() - static_cast<std::int32_t>(byBucketRecord_.size());
  byKey_.erase(at);
  throw;
}

void TVXRAMBucketList::BucketFreed(TVXRAMBucketInfo& bucket) {
  const auto at = byKey_.find(bucket.key_);
  if (at == byKey_.end() || at->second != &bucket) return;  // never whole, or dropped with all others
  byKey_.erase(at);
  byBucketRecord_.erase(bucket.bucketRecord_);
  const std::int32_t shown = FindRow(*bucketRecords_, bucket.bucketRecord_, 0);
  if (shown >= 0) bucketRecords_->Delete(shown);
  cursor_->FilteredList().Remove(bucket.bucketRecord_);
  if (!IsMapped(bucket)) ForgetRecords();
  if (recordsAreMapped_ && !recordsRepeat_)
    for (std::int32_t i = 0; i < bucket.Get_RecordCount(); ++i)
      byRecord_.erase(static_cast<TVXRAMRow*>(bucket.records_->Items(i)));
  bucket.records_->Clear();  // releasing a row asks which bucket names it, and this one stands in the list still
  cursor_->Table().ReleaseRow(std::exchange(bucket.bucketRecord_, nullptr));
}

void TVXRAMBucketList::FreeBuckets() {
  const TTableOperation running(cursor_->Table());
  byKey_.clear();
  byBucketRecord_.clear();
  ForgetRecords();
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
  if (static_cast<std::int32_t>(byBucketRecord_.size()) + strays_ == Count()) return;
  std::erase_if(byBucketRecord_, [this](const auto& entry) { return entry.second->Collection() != this; });
  std::erase_if(byKey_, [this](const auto& entry) { return entry.second->Collection() != this; });
  for (std::int32_t i = bucketRecords_->Count() - 1; i >= 0; --i)
    if (!byBucketRecord_.contains(static_cast<TVXRAMRow*>(bucketRecords_->Items(i)))) bucketRecords_->Delete(i);
  strays_ = Count() - static_cast<std::int32_t>(byBucketRecord_.size());
  ForgetRecords();
}

// -- Source rows ------------------------------------------------------------------------------------------------------

/// Whether the map knows the bucket's rows: not those of a list that was changed by hand.
bool TVXRAMBucketList::IsMapped(const TVXRAMBucketInfo& bucket) const {
  return recordsAreMapped_ && bucket.mapped_ == bucket.records_->Changes();
}

void TVXRAMBucketList::ForgetRecords() {
  if (!recordsAreMapped_) return;
  byRecord_.clear();
  recordsAreMapped_ = false;
  recordsRepeat_ = false;
}

TVXRAMBucketInfo& TVXRAMBucketList::TakeRow(TVXRAMBucketInfo& bucket, TVXRAMRow* row) {
  if (!IsMapped(bucket)) ForgetRecords();
  bucket.records_->Add(row);
  bucket.mapped_ = bucket.records_->Changes();
  if (recordsAreMapped_ && !byRecord_.emplace(row, &bucket).second) recordsRepeat_ = true;
  return bucket;
}

void TVXRAMBucketList::DropRow(TVXRAMBucketInfo& bucket, TVXRAMRow* row) {
  if (!IsMapped(bucket)) ForgetRecords();
  bucket.records_->Remove(row);
  bucket.mapped_ = bucket.records_->Changes();
  if (recordsAreMapped_ && !recordsRepeat_) byRecord_.erase(row);
}

TVXRAMBucketInfo* TVXRAMBucketList::WalkForRecord(const TVXRAMRow* row) const {
  for (std::int32_t i = 0; i < Count(); ++i)
    if (Get_Bucket(i)->records_->IndexOf(row) != -1) return Get_Bucket(i);
  return nullptr;
}

TVXRAMBucketInfo* TVXRAMBucketList::FindByRecord(const TVXRAMRow* row) {
  if (!recordsAreMapped_) MapRecords();
  if (recordsRepeat_) return WalkForRecord(row);
  const auto at = byRecord_.find(row);
  if (at == byRecord_.end()) return nullptr;
  if (IsMapped(*at->second)) return at->second;
  ForgetRecords();
  return FindByRecord(row);
}

void TVXRAMBucketList::MapRecords() {
  byRecord_.clear();
  for (std::int32_t i = 0; i < Count(); ++i) {
    TVXRAMBucketInfo& bucket = *Get_Bucket(i);
    bucket.mapped_ = bucket.records_->Changes();
    for (std::int32_t j = 0; j < bucket.Get_RecordCount(); ++j)
      if (!byRecord_.emplace(static_cast<TVXRAMRow*>(bucket.records_->Items(j)), &bucket).second) recordsRepeat_ = true;
  }
  recordsAreMapped_ = true;
}

void TVXRAMBucketList::InsertRecord(TVXRAMRow* row, bool update) { Insert(row, update); }

TVXRAMBucketInfo& TVXRAMBucketList::Insert(TVXRAMRow* row, bool update) {
  std::string key;
  Need(cursor_, "cursor of the buckets").CalcBucketedFieldValue(row, key);
  TVXRAMBucketInfo& bucket = *Add(key);
  if (!update || cursor_->Get_IsUpdating()) return TakeRow(bucket, row);
  const TVXRAMBucketFold& fold = Fold();
  const bool goesOn = IsComputed(bucket);
  TakeRow(bucket, row);
  cursor_->KnownSort().Forget();
  if (goesOn)
    fold.Extend(bucket, row);
  else
    fold.Compute(bucket);
  MarkComputed(bucket);
  return bucket;
}

void TVXRAMBucketList::DeleteRecord(TVXRAMRow* row) {
  TVXRAMBucketInfo* const bucket = FindByRecord(row);
  if (bucket == nullptr) return;
  DropRow(*bucket, row);
  bucket->UpdateBucketValues();
}

// -- Values -----------------------------------------------------------------------------------------------------------

const TVXRAMBucketFold& TVXRAMBucketList::Fold() {
  auto present = std::make_unique<TVXRAMBucketFold>(Need(cursor_, "cursor of the buckets"));
  if (fold_ == nullptr || !(*fold_ == *present)) {
    fold_ = std::move(present);
    ++generation_;
  }
  return *fold_;
}

void TVXRAMBucketList::MarkComputed(TVXRAMBucketInfo& bucket) const {
  bucket.state_.stamp = cursor_->Table().Get_ChangeStamp();
  bucket.state_.changes = bucket.records_->Changes();
  bucket.state_.generation = generation_;
}

/// Whether the bucket's row is still what its source rows make of it: nothing was written since, no row came or went,
/// and the rules are the same.
bool TVXRAMBucketList::IsComputed(const TVXRAMBucketInfo& bucket) const {
  const TVXRAMBucketState& state = bucket.state_;
  return state.rows > 0 && state.changes == bucket.records_->Changes() &&
         state.stamp == cursor_->Table().Get_ChangeStamp() && state.generation == generation_;
}

void TVXRAMBucketList::Compute(TVXRAMBucketInfo& bucket) {
  const TVXRAMBucketFold& fold = Fold();
  cursor_->KnownSort().Forget();
  fold.Compute(bucket);
  MarkComputed(bucket);
}

void TVXRAMBucketList::UpdateAllBuckets() {
  const TVXRAMBucketFold& fold = Fold();
  cursor_->KnownSort().Forget();
  for (std::int32_t i = 0; i < Count(); ++i) {
    fold.Compute(*Get_Bucket(i));
    MarkComputed(*Get_Bucket(i));
  }
}

void TVXRAMBucketList::Build(const TVXList& rows, bool compute) {
  if (Count() > 0 || &rows == bucketRecords_.get()) return BuildPlainly(rows, compute);
  if (!compute) return TVXRAMBucketBuilder(*this, rows, nullptr).Run();
  const TVXRAMBucketFold& fold = Fold();
  const bool streams = fold.CanStream();
  TVXRAMBucketBuilder(*this, rows, streams ? &fold : nullptr).Run();
  if (!streams) return UpdateAllBuckets();
  for (std::int32_t i = 0; i < Count(); ++i) MarkComputed(*Get_Bucket(i));
}

void TVXRAMBucketList::BuildPlainly(const TVXList& rows, bool compute) {
  const std::int32_t count = rows.Count();  // it may be the list of one of the buckets, which grows
  for (std::int32_t i = 0; i < count; ++i) InsertRecord(static_cast<TVXRAMRow*>(rows.Items(i)), false);
  if (compute) UpdateAllBuckets();
}

}  // namespace vx
