// NameTable.h: finds things by their names, the case of ASCII letters ignored, as CompareText does. Not for users.
//
// The table holds small values that lead to the named things (a pointer, a position plus one) and the hash of each
// name, so that a thing is looked at only where the hashes are equal. Which of the equal ones is meant, the caller
// says. T{} stands for nothing.
//
// Cost: O(1); 16 bytes for each of two to four slots a name.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "platform/runtime/Text.h"

namespace vx {

/// Names are alike whatever the case of their ASCII letters.
inline bool IsSameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && (a == b || CompareText(a, b) == 0);
}

/// Equal for names that are alike. `start` differs from table to table, so that nobody can prepare names that all meet
/// in one place.
inline std::uint64_t HashOfName(std::uint64_t start, std::string_view name) {
  std::uint64_t hash = start ^ name.size();
  while (!name.empty()) {
    std::uint64_t word = 0;
    const std::size_t size = std::min(name.size(), sizeof word);
    std::memcpy(&word, name.data(), size);
    hash = (hash ^ (word | 0x2020202020202020)) * 0x9E3779B97F4A7C15;  // 0x20 tells upper case from lower
    hash ^= hash >> 29u;
    name.remove_prefix(size);
  }
  return hash;
}

template <class T>
class TNameTable {
 public:
  /// The value whose name has that hash and of which `isMeant` is true; null if there is none. It may be replaced by
  /// one of the same name.
  template <class Predicate>
  T* Find(std::uint64_t hash, Predicate&& isMeant) {
    if (slots_.empty()) return nullptr;
    for (std::size_t at = Home(hash); slots_[at].value != T{}; at = Next(at))
      if (slots_[at].hash == hash && isMeant(slots_[at].value)) return &slots_[at].value;
    return nullptr;
  }
  template <class Predicate>
  const T* Find(std::uint64_t hash, Predicate&& isMeant) const {
    return const_cast<TNameTable*>(this)->Find(hash, isMeant);
  }
  /// Puts a value in without a look at those that are there.
  void Add(std::uint64_t hash, T value) {
    if (2 * (count_ + 1) > slots_.size()) Grow();
    Put({value, hash});
    ++count_;
  }
  /// Takes out what Find has answered; what other calls of it answered means nothing then.
  void Remove(const T* found) {
    auto hole = static_cast<std::size_t>(reinterpret_cast<const TSlot*>(found) - slots_.data());
    slots_[hole] = {};
    --count_;
    for (std::size_t at = Next(hole); slots_[at].value != T{}; at = Next(at)) {
      // What would be looked for from at or before the hole on closes it.
      if (Distance(Home(slots_[at].hash), at) < Distance(hole, at)) continue;
      std::swap(slots_[hole], slots_[at]);
      hole = at;
    }
  }

 private:
  struct TSlot {
    T value{};  // first: Remove finds the slot by it
    std::uint64_t hash = 0;
  };

  std::size_t Home(std::uint64_t hash) const {
    return static_cast<std::size_t>(hash ^ hash >> 32u) & (slots_.size() - 1);
  }
  std::size_t Next(std::size_t at) const { return (at + 1) & (slots_.size() - 1); }
  std::size_t Distance(std::size_t from, std::size_t to) const { return (to - from) & (slots_.size() - 1); }
  void Put(const TSlot& slot) {
    std::size_t at = Home(slot.hash);
    while (slots_[at].value != T{}) at = Next(at);
    slots_[at] = slot;
  }
  void Grow() {
    std::vector<TSlot> old(std::max<std::size_t>(32, slots_.size() * 2));
    old.swap(slots_);
    for (const TSlot& slot : old)
      if (slot.value != T{}) Put(slot);
  }

  std::vector<TSlot> slots_;  // a power of two, at most half of them taken
  std::size_t count_ = 0;
};

}  // namespace vx
