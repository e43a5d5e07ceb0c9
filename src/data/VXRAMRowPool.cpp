#include "data/VXRAMRowPool.h"

#include <algorithm>
#include <functional>

namespace vx {

namespace {

constexpr std::size_t kLargestSlab = std::size_t{4} << 20;
constexpr std::uint32_t kReleased = 0x80000000u;  // set in the size of a released row

std::uint32_t ReadWord(const std::uint8_t* at) {
  std::uint32_t word;
  std::memcpy(&word, at, sizeof word);
  return word;
}

void WriteWord(std::uint8_t* at, std::uint32_t word) { std::memcpy(at, &word, sizeof word); }

}  // namespace

void TVXRAMRowPool::AddSlab(std::size_t bytes) {
  const std::size_t slab = std::max(nextSlab_, bytes);
  slabs_.emplace_back(std::make_unique_for_overwrite<std::uint8_t[]>(slab), slab);
  next_ = slabs_.back().first.get();
  left_ = slab;
  nextSlab_ = std::min(nextSlab_ * 2, kLargestSlab);
}

std::uint8_t* TVXRAMRowPool::Reuse(std::int32_t size) {
  const auto chain = released_.find(size);
  if (chain == released_.end() || chain->second == nullptr) return Cut(size);
  std::uint8_t* const row = chain->second;
  std::memcpy(&chain->second, row, sizeof chain->second);
  return row;
}

bool TVXRAMRowPool::Drop(TVXRAMRow* row) {
  if (IsGivenUp(row)) return false;
  RowBytes(row)[kRecordStatusOffset] = kDropped;
  return true;
}

bool TVXRAMRowPool::Owns(const TVXRAMRow* row) const {
  const std::uint8_t* const at = RowBytes(row);
  return std::any_of(slabs_.begin(), slabs_.end(), [at](const auto& slab) {
    const std::uint8_t* const begin = slab.first.get();
    return !std::less<>()(at, begin) && std::less<>()(at, begin + slab.second);
  });
}

void TVXRAMRowPool::Release(TVXRAMRow* row) {
  if (row == nullptr) return;
  std::uint8_t* const bytes = RowBytes(row);
  const std::uint32_t size = ReadWord(bytes - kPrefix);
  if ((size & kReleased) != 0) throw EInvalidOperation("Row was released before");
  WriteWord(bytes - kPrefix, size | kReleased);
  std::uint8_t*& chain = released_[static_cast<std::int32_t>(size)];
  std::memcpy(bytes, &chain, sizeof chain);
  chain = bytes;
  --live_;
}

}  // namespace vx
