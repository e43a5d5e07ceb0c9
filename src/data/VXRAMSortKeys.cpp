#include "data/VXRAMSortKeys.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "platform/runtime/Text.h"

namespace vx {

namespace {

constexpr std::int32_t kKeyBits = 64;
constexpr std::int32_t kWorthAWord = 16;  // bits of room for which another look at the rows pays
constexpr std::uint64_t kOnes = ~std::uint64_t{0};
constexpr std::uint64_t kNullWord = 0xFF;  // the word of no value: texts have no letter behind zeros
constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;

/// Order-preserving bits of a double: both zeros alike, NaN behind infinity.
std::uint64_t WordOf(double value) {
  if (std::isnan(value)) return kOnes;
  const auto bits = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value);
  return (bits & kSignBit) != 0 ? ~bits : bits | kSignBit;
}

std::uint64_t WordOf(std::int32_t value) { return static_cast<std::uint64_t>(std::int64_t{value}) ^ kSignBit; }

constexpr std::uint64_t LowBits(std::int32_t count) { return count == 0 ? 0 : kOnes >> (kKeyBits - count); }

/// Gathers the bits of a mask at the low end, in their order: a block of bits by one shift, others in six steps that
/// move them by 1, 2, 4 ... 32 places (H. S. Warren: Hacker's Delight, 7-4).
class TBitPicker {
 public:
  explicit TBitPicker(std::uint64_t mask)
      : mask_(mask),
        shift_(mask == 0 ? 0 : std::countr_zero(mask)),
        isBlock_(std::has_single_bit((mask >> shift_) + 1)) {
    if (!isBlock_) PlanMoves();
  }
  std::int32_t Count() const { return static_cast<std::int32_t>(std::popcount(mask_)); }
  std::uint64_t operator()(std::uint64_t word) const {
    word &= mask_;
    if (isBlock_) return word >> shift_;
    for (std::size_t step = 0; step < moves_.size(); ++step) {
      const std::uint64_t moving = word & moves_[step];
      word = (word ^ moving) | (moving >> (1u << step));
    }
    return word;
  }

 private:
  void PlanMoves() {
    std::uint64_t mask = mask_;
    std::uint64_t gaps = ~mask << 1;  // the parity of these up to a bit tells whether an odd number of gaps is below it
    for (std::size_t step = 0; step < moves_.size(); ++step) {
      std::uint64_t odd = gaps;
      for (std::int32_t shift = 1; shift < kKeyBits; shift *= 2) odd ^= odd << shift;
      moves_[step] = odd & mask;
      mask = (mask ^ moves_[step]) | (moves_[step] >> (1u << step));
      gaps &= ~odd;
    }
  }

  std::uint64_t mask_;
  std::int32_t shift_;
  bool isBlock_;
  std::array<std::uint64_t, 6> moves_{};
};

}  // namespace

// -- Reading words ----------------------------------------------------------------------------------------------------

template <class ReadWord>
TSortKeys::TSpread TSortKeys::Read(std::span<const TSortItem> items, const TVXRAMFieldSlot& slot,
                                   const ReadWord& read) {
  TSpread spread;
  for (std::size_t i = 0; i < items.size(); ++i) {
    PrefetchRow(Row(items[std::min(i + kRowsAhead, items.size() - 1)]), slot);
    const TVXRAMRow* const row = Row(items[i]);
    if (RowStatus(row, slot) != vxfsAssigned) {
      words_[i] = kNullWord;
      spread.nulls = true;
      continue;
    }
    const std::uint64_t word = words_[i] = read(row);
    spread.values = true;
    spread.any |= word;
    spread.all &= word;
    spread.least = std::min(spread.least, word);
    spread.greatest = std::max(spread.greatest, word);
  }
  return spread;
}

template <class T>
TSortKeys::TSpread TSortKeys::ReadNumbers(std::span<const TSortItem> items, const TVXRAMFieldSlot& slot) {
  return Read(items, slot, [&slot](const TVXRAMRow* row) { return WordOf(RowValue<T>(row, slot)); });
}

TSortKeys::TSpread TSortKeys::ReadText(std::span<const TSortItem> items, const TKeyPlace& place) {
  const TVXRAMFieldSlot& slot = columns_[place.column].slot;
  if (place.at > 0)
    return Read(items, slot, [&](const TVXRAMRow* row) { return FoldEight(RowText(row, slot), place.at); });
  return Read(items, slot, [&slot](const TVXRAMRow* row) {
    if (!RowHolds(row, slot)) return std::uint64_t{0};
    const char* const text = reinterpret_cast<const char*>(RowBytes(row)) + slot.valueOffset;
    return FoldSlotPrefix8(text, static_cast<std::size_t>(slot.size));
  });
}

TSortKeys::TSpread TSortKeys::ReadColumn(std::span<const TSortItem> items, const TKeyPlace& place) {
  const TVXRAMFieldSlot& slot = columns_[place.column].slot;
  switch (slot.type) {
    case vxrftBoolean:
      return ReadNumbers<std::uint8_t>(items, slot);
    case vxrftDuration:
    case vxrftInteger:
      return ReadNumbers<std::int32_t>(items, slot);
    case vxrftSmallint:
      return ReadNumbers<std::int16_t>(items, slot);
    case vxrftString:
      return ReadText(items, place);
    case vxrftWord:
      return ReadNumbers<std::uint16_t>(items, slot);
    default:
      return ReadNumbers<double>(items, slot);
  }
}

// -- Packing ----------------------------------------------------------------------------------------------------------

/// What a word becomes within a key: the bits that differ, cut to the room there is, and a bit above for nulls.
class TSortKeys::TField {
 public:
  TField(const TSpread& spread, bool text, std::int32_t room)
      : base_(text || !spread.values ? 0 : spread.least), pick_(Mask(spread, text)) {
    const bool marksNulls = spread.nulls && spread.values;
    const std::int32_t bits = pick_.Count() + (marksNulls ? 1 : 0);
    cut_ = std::max(bits - room, 0);
    width_ = bits - cut_;
    if (marksNulls) null_ = std::uint64_t{1} << (width_ - 1);
  }
  std::int32_t Width() const { return width_; }
  bool IsCut() const { return cut_ > 0; }
  std::uint64_t operator()(std::uint64_t word) const { return word == kNullWord ? null_ : pick_(word - base_) >> cut_; }

 private:
  /// Of texts the bits that aren't the same in all; of numbers those of their distances from the least.
  static std::uint64_t Mask(const TSpread& spread, bool text) {
    if (!spread.values) return 0;
    const std::uint64_t varying = spread.any & ~spread.all;
    if (text || varying == 0) return varying;
    const auto width = static_cast<std::int32_t>(std::bit_width(spread.greatest - spread.least));
    return LowBits(width) & ~LowBits(std::countr_zero(varying));
  }

  std::uint64_t base_;
  TBitPicker pick_;
  std::int32_t cut_ = 0;
  std::int32_t width_ = 0;
  std::uint64_t null_ = 0;
};

void TSortKeys::Append(std::span<TSortItem> items, const TField& field, std::uint64_t flip) const {
  const std::int32_t half = field.Width() / 2;  // in two steps, as no word can be shifted by all its bits
  for (std::size_t i = 0; i < items.size(); ++i)
    items[i].key = (items[i].key << half << (field.Width() - half)) | (field(words_[i]) ^ flip);
}

TKeyPlace TSortKeys::Pack(std::span<TSortItem> items, std::span<std::uint64_t> words, TKeyPlace place,
                          std::int32_t& bits) {
  words_ = words;
  bits = 0;
  for (TSortItem& item : items) item.key = 0;
  while (!IsEnd(place) && kKeyBits - bits >= kWorthAWord) {
    const TSortColumn& column = columns_[place.column];
    const bool text = column.slot.type == vxrftString;
    const TSpread spread = ReadColumn(items, place);
    const TField field(spread, text, kKeyBits - bits);
    if (field.Width() > 0) Append(items, field, column.descending ? LowBits(field.Width()) : 0);
    bits += field.Width();
    if (field.IsCut()) break;
    const bool more = text && (spread.any & 0xFF) != 0;  // some texts have an eighth byte
    place = more ? TKeyPlace{place.column, place.at + 8} : TKeyPlace{place.column + 1, 0};
  }
  return place;
}

std::int32_t TSortKeys::Compare(const TSortItem& a, const TSortItem& b, std::size_t column) const {
  for (; column < columns_.size(); ++column) {
    const std::int32_t order = CompareRows(Row(a), Row(b), columns_[column].slot);
    if (order != 0) return columns_[column].descending ? -order : order;
  }
  return 0;
}

}  // namespace vx
