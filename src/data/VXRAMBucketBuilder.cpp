#include "data/VXRAMBucketBuilder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <exception>
#include <utility>

#include "data/VXRAMBucketFold.h"

namespace vx {

/// Finds the buckets of many rows without making the text of each key: rows whose bucketed fields have the same bytes
/// (dates: the same bucket date) have the same text, so that a text is made for each new combination only.
///
/// A combination is a run of 64-bit words, of which none is the beginning of another; those that are known lie in a
/// hash table with open addressing.
class TVXRAMBucketBuilder::TRowKeys {
 public:
  explicit TRowKeys(TVXRAMBucketList& list)
      : list_(list), cursor_(Need(list.Get_Cursor(), "cursor of the buckets")), dates_(kDates), entries_(kFirstSize) {
    for (std::int32_t i = 0; i < cursor_.Get_BucketedFieldCount(); ++i)
      if (const TVXRAMFieldDef* const field = cursor_.Get_BucketedRAMFieldDef(i)) slots_.push_back(field->Get_Slot());
  }

  /// Rows that are looked up together, so that one needn't wait for the other's memory.
  static constexpr std::size_t kBlock = 64;

  /// Appends the buckets of up to kBlock rows. If a row has none, because its date raises, the rows before it have
  /// theirs.
  void AppendBuckets(void* const* rows, std::size_t count, std::vector<TVXRAMBucketInfo*>& buckets) {
    std::exception_ptr failure;
    const std::size_t known = TakeWords(rows, count, failure);
    for (std::size_t i = 0; i < known; ++i)
      buckets.push_back(&BucketOf(static_cast<const TVXRAMRow*>(rows[i]), keys_[i]));
    if (failure) std::rethrow_exception(failure);
  }

 private:
  static constexpr std::size_t kDates = 1024;
  static constexpr std::size_t kFirstSize = 4096;
  static constexpr std::size_t kRoom = 4;  // entries for each one that is taken, so that most are found at once
  struct TKnownDate {
    std::int64_t day = -1;
    TDateTime bucketDate = 0;
  };
  struct TEntry {
    TVXRAMBucketInfo* bucket = nullptr;
    std::uint64_t hash = 0;
    std::size_t at = 0;  // in known_
  };
  /// Where the words of a row are in words_.
  struct TKey {
    std::size_t begin, end;
    std::uint64_t hash;
  };

  std::size_t TakeWords(void* const* rows, std::size_t count, std::exception_ptr& failure) {
    std::size_t i = 0;
    end_ = 0;
    try {
      for (; i < count; ++i) {
        const std::size_t begin = end_;
        for (const TVXRAMFieldSlot& slot : slots_) AddWords(static_cast<const TVXRAMRow*>(rows[i]), slot);
        keys_[i] = {begin, end_, Hash(words_.data() + begin, words_.data() + end_)};
      }
    } catch (...) {
      failure = std::current_exception();
    }
    return i;
  }

  TVXRAMBucketInfo& BucketOf(const TVXRAMRow* row, const TKey& key) {
    TEntry& entry = Find(key);
    return entry.bucket != nullptr ? *entry.bucket : AddCombination(row, key, entry);
  }

  // -- Words of a row
  static std::size_t WordsOf(std::size_t bytes) { return (bytes + sizeof(std::uint64_t) - 1) / sizeof(std::uint64_t); }

  void AddWords(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
    if (slot.type == vxrftString)
      AddText(RowText(row, slot));
    else if (slot.type == vxrftDateTime)
      *Room(1) = std::bit_cast<std::uint64_t>(BucketDate(RowValue<TDateTime>(row, slot)));
    else
      *Room(1) = NumberWord(row, slot);
  }

  /// Where `count` more words of the row go.
  std::uint64_t* Room(std::size_t count) {
    if (words_.size() - end_ < count) words_.resize(std::max(words_.size() * 2, end_ + count));
    return words_.data() + std::exchange(end_, end_ + count);
  }

  /// What the text of the key is made from: a field from a stream may be larger than its type.
  static std::uint64_t NumberWord(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
    switch (slot.type) {
      case vxrftBoolean:
        return RowValue<std::uint8_t>(row, slot);
      case vxrftDuration:
      case vxrftInteger:
        return RowValue<std::uint32_t>(row, slot);
      case vxrftSmallint:
      case vxrftWord:
        return RowValue<std::uint16_t>(row, slot);
      default:
        return RowValue<std::uint64_t>(row, slot);
    }
  }

  /// Its length and its bytes.
  void AddText(std::string_view text) {
    std::uint64_t* const words = Room(1 + WordsOf(text.size()));
    words[0] = text.size();
    if (text.empty()) return;
    words[WordsOf(text.size())] = 0;
    std::memcpy(words + 1, text.data(), text.size());
  }

  /// All times of a day share their bucket, but for the last milliseconds, which may round up into the next day.
  TDateTime BucketDate(TDateTime date) {
    constexpr double kAlmostMidnight = 0.999999;
    if (!(date >= 0 && date < 4e6)) return cursor_.BucketDate(date);
    const auto day = static_cast<std::int64_t>(date);
    if (date - static_cast<double>(day) > kAlmostMidnight) return cursor_.BucketDate(date);
    TKnownDate& known = dates_[static_cast<std::size_t>(day) % kDates];
    if (known.day != day) known = {day, cursor_.BucketDate(static_cast<double>(day))};
    return known.bucketDate;
  }

  // -- Known combinations
  static std::uint64_t Hash(const std::uint64_t* word, const std::uint64_t* end) {
    std::uint64_t hash = 0;
    for (; word != end; ++word) {
      hash = (hash ^ *word) * 0x9E3779B97F4A7C15;  // 2^64 by the golden ratio
      hash ^= hash >> 32;
    }
    return hash;
  }

  /// The entry of the combination, or the free one where it belongs.
  TEntry& Find(const TKey& key) {
    for (std::size_t i = key.hash;; ++i) {
      TEntry& entry = entries_[i & (entries_.size() - 1)];
      if (entry.bucket == nullptr || (entry.hash == key.hash && IsOf(entry, key))) return entry;
    }
  }

  bool IsOf(const TEntry& entry, const TKey& key) const {
    const std::uint64_t* known = known_.data() + entry.at;  // word by word: a call of memcmp costs more than it saves
    for (std::size_t i = key.begin; i < key.end; ++i)
      if (*known++ != words_[i]) return false;
    return true;
  }

  TVXRAMBucketInfo& AddCombination(const TVXRAMRow* row, const TKey& key, TEntry& free) {
    std::string text;
    cursor_.CalcBucketedFieldValue(row, text);
    TVXRAMBucketInfo* const bucket = list_.Add(text);
    free = {bucket, key.hash, known_.size()};
    known_.insert(known_.end(), words_.data() + key.begin, words_.data() + key.end);
    if (++count_ * kRoom > entries_.size()) Grow();
    return *bucket;
  }

  void Grow() {
    const std::vector<TEntry> old = std::exchange(entries_, std::vector<TEntry>(entries_.size() * 2));
    for (const TEntry& entry : old) {
      if (entry.bucket == nullptr) continue;
      std::size_t at = entry.hash & (entries_.size() - 1);
      while (entries_[at].bucket != nullptr) at = (at + 1) & (entries_.size() - 1);
      entries_[at] = entry;
    }
  }

  TVXRAMBucketList& list_;
  const TVXRAMCursorBucketer& cursor_;
  std::vector<TVXRAMFieldSlot> slots_;
  std::vector<TKnownDate> dates_;
  std::vector<std::uint64_t> words_;  // of the rows in hand
  std::size_t end_ = 0;               // where the next word goes
  std::array<TKey, kBlock> keys_;     // of the rows in hand
  std::vector<std::uint64_t> known_;  // of all known combinations, one behind the other
  std::vector<TEntry> entries_;
  std::size_t count_ = 0;
};

// -- TVXRAMBucketBuilder ----------------------------------------------------------------------------------------------

TVXRAMBucketBuilder::TVXRAMBucketBuilder(TVXRAMBucketList& list, const TVXList& rows, const TVXRAMBucketFold* fold)
    : list_(list),
      rows_(rows.Data(), static_cast<std::size_t>(rows.Count())),
      fold_(fold),
      keys_(std::make_unique<TRowKeys>(list)) {
  bucketOf_.reserve(rows_.size());
}

TVXRAMBucketBuilder::~TVXRAMBucketBuilder() = default;

void TVXRAMBucketBuilder::Run() {
  try {
    for (std::size_t i = 0; i < rows_.size(); i += TRowKeys::kBlock) TakeBlock(i);
  } catch (...) {
    DealRows();
    Undo();
    throw;
  }
  DealRows();
  Finish();
}

void TVXRAMBucketBuilder::TakeBlock(std::size_t first) {
  Fetch(first + TRowKeys::kBlock);
  keys_->AppendBuckets(rows_.data() + first, std::min(TRowKeys::kBlock, rows_.size() - first), bucketOf_);
  for (std::size_t i = first; i < bucketOf_.size(); ++i)
    if (fold_ != nullptr)
      fold_->AddRow(*bucketOf_[i], static_cast<const TVXRAMRow*>(rows_[i]));
    else
      ++bucketOf_[i]->state_.rows;
}

/// Asks for the memory of the block from `first` on, which is read next: two lines of each row, without PrefetchRow's
/// look at row and field, which costs a fifth of the whole time here.
void TVXRAMBucketBuilder::Fetch(std::size_t first) {
  constexpr std::size_t kCacheLine = 64;
  for (std::size_t i = first; i < std::min(first + TRowKeys::kBlock, rows_.size()); ++i) {
    const auto* const bytes = static_cast<const char*>(rows_[i]);
    __builtin_prefetch(bytes);
    __builtin_prefetch(bytes + kCacheLine);
  }
}

void TVXRAMBucketBuilder::DealRows() {
  for (std::int32_t i = 0; i < list_.Count(); ++i)
    list_.Get_Bucket(i)->Get_Records()->SetCapacity(list_.Get_Bucket(i)->state_.rows);
  for (std::size_t i = 0; i < bucketOf_.size(); ++i) bucketOf_[i]->Get_Records()->Add(rows_[i]);
}

void TVXRAMBucketBuilder::Finish() {
  for (std::int32_t i = 0; fold_ != nullptr && i < list_.Count(); ++i) fold_->Finish(*list_.Get_Bucket(i));
}

void TVXRAMBucketBuilder::Undo() {
  for (std::int32_t i = 0; fold_ != nullptr && i < list_.Count(); ++i) fold_->Reset(*list_.Get_Bucket(i));
}

}  // namespace vx
