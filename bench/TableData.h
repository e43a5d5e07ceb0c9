// TableData.h: the rows and events that the table benchmarks run on: the same on every machine.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

namespace bench {

/// SplitMix64 (Steele, Lea, Flood: Fast splittable pseudorandom number generators, 2014). The state starts at the seed.
class TRandom {
 public:
  explicit TRandom(std::uint64_t seed) : state_(seed) {}
  std::uint64_t Next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  double Unit() { return static_cast<double>(Next() >> 11) * 0x1p-53; }                                    // [0, 1)
  std::uint32_t Below(std::uint32_t n) { return static_cast<std::uint32_t>(((Next() >> 32) * n) >> 32); }  // 0 to n - 1

 private:
  std::uint64_t state_;
};

inline constexpr std::int32_t kRows = 1'000'000;
inline constexpr double kFirstDay = 44200;  // Monday, 2021-01-04
inline constexpr std::int32_t kDays = 1092;
inline constexpr std::int32_t kItems = 50;
inline constexpr std::int32_t kTextSize = 32;

/// A row of six columns, as a plain structure of 56 bytes.
struct TPlainRow {
  double amount;
  double date;          // whole days
  std::int32_t number;  // 0 to 999
  std::int16_t small;
  bool flag;
  char text[kTextSize];  // 8 to 31 letters, then zeros
};

inline std::vector<TPlainRow> MakeRows() {
  std::vector<TPlainRow> rows(kRows);
  TRandom random(1);
  for (TPlainRow& row : rows) {
    row.flag = (random.Next() & 1) != 0;
    row.amount = random.Unit() * 1000;
    row.date = kFirstDay + random.Below(kDays);
    row.number = static_cast<std::int32_t>(random.Below(1000));
    const std::uint32_t length = 8 + random.Below(24);
    std::memset(row.text, 0, sizeof row.text);
    for (std::uint32_t i = 0; i < length; ++i) {
      const std::uint32_t letter = random.Below(52);
      row.text[i] = static_cast<char>(letter < 26 ? 'A' + letter : 'a' + (letter - 26));
    }
    row.small = static_cast<std::int16_t>(static_cast<std::int32_t>(random.Below(65536)) - 32768);
  }
  return rows;
}

struct TPlainEvent {
  double date;
  double value;
  std::int32_t item;  // 0 to 49
};

/// Events in date order.
inline std::vector<TPlainEvent> MakeEvents() {
  std::vector<TPlainEvent> events(kRows);
  TRandom random(3);
  double i = 0;
  for (TPlainEvent& event : events) {
    event.date = kFirstDay + kDays * ((i++ + random.Unit()) / kRows);
    event.item = static_cast<std::int32_t>(random.Below(kItems));
    event.value = random.Unit() * 1000;
  }
  return events;
}

// What every way of doing the same work must answer.
inline constexpr std::int32_t kSortedPosition = 500'000;
inline constexpr std::int64_t kSortedRow = 879'617;
inline constexpr std::int64_t kFilterHits = 998;
inline constexpr std::int64_t kGroups = 7800;
inline constexpr double kGroupsTotal = 519367645.1;  // of all six aggregates of all groups

}  // namespace bench
