// Dice.h: random choices that are the same with every standard library.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace vx::naive {

class TDice {
 public:
  explicit TDice(std::uint32_t seed) : random_(seed) {}

  /// 0 to `count` - 1.
  std::int32_t Below(std::int32_t count) {
    return static_cast<std::int32_t>(random_() % static_cast<std::uint32_t>(count));
  }
  std::int32_t Between(std::int32_t low, std::int32_t high) { return low + Below(high - low + 1); }
  bool OneIn(std::int32_t count) { return Below(count) == 0; }
  template <class T>
  const T& Pick(const std::vector<T>& from) {
    return from[static_cast<std::size_t>(Below(static_cast<std::int32_t>(from.size())))];
  }

 private:
  std::mt19937 random_;
};

}  // namespace vx::naive
