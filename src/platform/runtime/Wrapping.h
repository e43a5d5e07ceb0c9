// Wrapping.h: 32-bit arithmetic that wraps, as every integer sum of the system does.
#pragma once

#include <cstdint>

namespace vx {

constexpr std::int32_t WrappingAdd(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

constexpr std::int32_t WrappingSubtract(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

/// Counts on, and answers what the counter was.
constexpr std::int32_t CountOn(std::int32_t& counter) {
  const std::int32_t was = counter;
  counter = WrappingAdd(counter, 1);
  return was;
}

}  // namespace vx
