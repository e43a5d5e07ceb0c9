// StringResources.h: texts that are shown to people, by number.
//
//   LoadStr(14672)                            // "Day"
//   SetResourceString(14672, "Tag");          // a translation, best at the program's start
//
// Units copy the texts that they show into tables of their own when they start, so a translation that comes later
// reaches only those who ask later. Main thread only.
#pragma once

#include <cstdint>
#include <string>

namespace vx {

/// The text of a number; empty if there is none. O(log n).
std::string LoadStr(std::int32_t id);
/// Replaces or adds a text.
void SetResourceString(std::int32_t id, std::string text);
/// Takes all replacements back.
void ResetResourceStrings();

}  // namespace vx
