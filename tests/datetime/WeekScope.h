// WeekScope.h: how weeks count, for the length of a test.
#pragma once

#include <cstdint>
#include <utility>

#include "datetime/VXDateFunc_UNT.h"

namespace vx {

class TWeekScope {
 public:
  explicit TWeekScope(std::int32_t start, std::int32_t trigger = 1)
      : start_(std::exchange(GVXStartOfWeek, start)), trigger_(std::exchange(GVXFirstWeekTriggerDay, trigger)) {}
  ~TWeekScope() {
    GVXStartOfWeek = start_;
    GVXFirstWeekTriggerDay = trigger_;
  }
  TWeekScope(const TWeekScope&) = delete;
  TWeekScope& operator=(const TWeekScope&) = delete;

 private:
  std::int32_t start_, trigger_;
};

}  // namespace vx
