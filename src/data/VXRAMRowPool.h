// VXRAMRowPool.h: where the rows of a table live.
//
// Rows are cut from slabs, with their size in front of them; released rows are used again for rows of the same size.
// The pool owns all of them and gives everything back at its end, so that a row which its table lost sight of is no
// leak.
//
// Cost: Allocate and Release are O(1); four bytes a row beyond its own.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "data/VXRAMTypes.h"

namespace vx {

class TVXRAMRowPool {
 public:
  /// A block of `size` bytes (1 to 2^31 - 1), uninitialised.
  TVXRAMRow* Allocate(std::int32_t size) {
    std::uint8_t* const row = released_.empty() ? Cut(size) : Reuse(size);
    std::memcpy(row - kPrefix, &size, sizeof size);
    row[kRecordStatusOffset] = vxrsActive;
    ++live_;
    return reinterpret_cast<TVXRAMRow*>(row);
  }
  /// Takes a block back. One that was released already raises EInvalidOperation. Null is ignored.
  void Release(TVXRAMRow* row);

  /// Marks a row whose memory will be released soon; false if that was done before, or if it was released.
  bool Drop(TVXRAMRow* row);
  static bool IsGivenUp(const TVXRAMRow* row) {
    return SizeOf(row) < 0 || reinterpret_cast<const std::uint8_t*>(row)[kRecordStatusOffset] == kDropped;
  }
  /// True for an address within this pool's memory.
  bool Owns(const TVXRAMRow* row) const;

  /// Rows that were allocated and not released, listed anywhere or not.
  std::int64_t LiveRows() const { return live_; }

  /// Size with which a live row was allocated, in bytes; negative for a released one. Null raises ENilAccess.
  static std::int32_t SizeOf(const TVXRAMRow* row) {
    if (row == nullptr) RaiseNoRow();
    std::int32_t size;
    std::memcpy(&size, reinterpret_cast<const std::uint8_t*>(row) - kPrefix, sizeof size);
    return size;
  }

 private:
  static constexpr std::int32_t kPrefix = 4;
  static constexpr std::uint8_t kDropped = 0xFF;  // in the status byte of a row that nobody lists any more

  [[noreturn]] static void RaiseNoRow() { throw ENilAccess("row"); }

  /// Bytes that a row takes with its size in front; at least what the chain of released rows needs.
  static std::size_t Footprint(std::int32_t size) {
    return kPrefix + std::max(static_cast<std::size_t>(size), sizeof(std::uint8_t*));
  }
  std::uint8_t* Cut(std::int32_t size) {
    const std::size_t bytes = Footprint(size);
    if (bytes > left_) AddSlab(bytes);
    std::uint8_t* const cut = next_;
    next_ += bytes;
    left_ -= bytes;
    return cut + kPrefix;
  }
  void AddSlab(std::size_t bytes);
  /// A released row of this size; a new one if there is none.
  std::uint8_t* Reuse(std::int32_t size);

  std::vector<std::pair<std::unique_ptr<std::uint8_t[]>, std::size_t>> slabs_;
  std::uint8_t* next_ = nullptr;  // first free byte of the newest slab
  std::size_t left_ = 0;
  std::size_t nextSlab_ = 16 * 1024;
  // By size: a chain of released rows, linked through their bytes.
  std::unordered_map<std::int32_t, std::uint8_t*> released_;
  std::int64_t live_ = 0;
};

// -- Bytes of a row, never beyond its own size ------------------------------------------------------------------------

inline const std::uint8_t* RowBytes(const TVXRAMRow* row) { return reinterpret_cast<const std::uint8_t*>(row); }
inline std::uint8_t* RowBytes(TVXRAMRow* row) { return reinterpret_cast<std::uint8_t*>(row); }

/// True if the row is as long as the field needs. Rows older than a change of the definitions may not be.
inline bool RowHolds(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
  return slot.size >= 0 && slot.valueOffset >= 0 &&
         std::int64_t{slot.valueOffset} + slot.size <= TVXRAMRowPool::SizeOf(row);
}

/// Asks for the memory of a row's head and of a field's value ahead of their use; for null nothing. A walk over many
/// rows gains by it from about kRowsAhead rows before.
inline void PrefetchRow(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
  if (row == nullptr) return;
  __builtin_prefetch(RowBytes(row));
  __builtin_prefetch(RowBytes(row) + slot.valueOffset);
}
inline constexpr std::int32_t kRowsAhead = 16;

/// RowHolds for writing: a layout with senseless sizes may place fields in the row's head or before it.
inline bool RowTakes(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
  return RowHolds(row, slot) && slot.statusOffset >= kFirstFieldOffset;
}

inline std::int32_t RowId(const TVXRAMRow* row) {
  std::int32_t id;
  std::memcpy(&id, &Need(RowBytes(row), "row"), sizeof id);
  return id;
}

/// The status byte; null for a field beyond the row's end, assigned for a slot without a status.
inline TVXFieldStatus RowStatus(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
  if (slot.statusOffset < 0) return vxfsAssigned;
  return RowHolds(row, slot) ? static_cast<TVXFieldStatus>(RowBytes(row)[slot.statusOffset]) : vxfsNull;
}

/// The value as a T, which must not be larger than the slot; zero for a field beyond the row's end.
template <class T>
T RowValue(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
  T value{};
  if (RowHolds(row, slot) && slot.size >= static_cast<std::int32_t>(sizeof value))
    std::memcpy(&value, RowBytes(row) + slot.valueOffset, sizeof value);
  return value;
}

/// The text of a slot up to its zero byte, or to the slot's end if there is none.
inline std::string_view RowText(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
  if (!RowHolds(row, slot)) return {};
  const char* const text = reinterpret_cast<const char*>(RowBytes(row)) + slot.valueOffset;
  return {text, strnlen(text, static_cast<std::size_t>(slot.size))};
}

}  // namespace vx
