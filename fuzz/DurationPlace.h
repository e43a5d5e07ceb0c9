// DurationPlace.h: the locale that the first byte of an input with durations chooses.
#pragma once

#include <cstdint>

#include "platform/runtime/Locale.h"

namespace vx::fuzz {

/// A decimal point for small letters, a decimal comma for capitals.
inline TLocaleSettings PlaceOf(std::uint8_t choice) {
  TLocaleSettings settings = ClassicLocale();
  const bool isLower = (choice & 0x20u) != 0;
  settings.DecimalSeparator = isLower ? '.' : ',';
  settings.ThousandSeparator = isLower ? ',' : '.';
  return settings;
}

}  // namespace vx::fuzz
