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

/// Bytes that a row takes with its size in front; at least what the chain of released rows needs.
std::size_t Footprint(std::int32_t size) { return 4 + std::max(static_cast<std::size_t>(size), sizeof(std::uint8_t*)); }

}  // namespace

std::uint8_t* TVXRAMRowPool::Cut(std::size_t bytes) {
  if (bytes > left_) {
    const std::size_t slab = std::max(nextSlab_, bytes);
    slabs_.emplace_back(std::make_unique_for_overwrite<std::uint8_t[]>(slab), slab);
    next_ = slabs_.back().first.get();
    left_ = slab;
    nextSlab_ = std::min(nextSlab_ * 2, kLargestSlab);
  }
  std::uint8_t* const cut = next_;
  next_ += bytes;
  left_ -= bytes;
  return cut;
}

TVXRAMRow* TVXRAMRowPool::Allocate(std::int32_t size) {
  std::uint8_t* row = nullptr;
  const auto chain = released_.empty() ? released_.end() : released_.find(size);
  if (chain != released_.end() && chain->second != nullptr) {
    row = chain->second;
    std::memcpy(&chain->second, row, sizeof chain->second);
  } else {
    row = Cut(Footprint(size)) + kPrefix;
  }
  WriteWord(row - kPrefix, static_cast<std::uint32_t>(size));
  row[kRecordStatusOffset] = vxrsActive;
  ++live_;
  return reinterpret_cast<TVXRAMRow*>(row);
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
