// StringResources.h: every text that is shown to people, by number, in one table for the whole system.
//
//   LoadStr(14672)                                       // "Day"
//
//   int main() {
//     SetResourceStrings({{14672, "Tag"}, {14673, "Woche"}, {14709, "Wahr"}});      // a translation
//     GetGroupName(vxgrOneDay);                                                     // "Tag"
//
// When a translation arrives. Messages, captions and hints are asked for each time they are shown. Units with tables of
// texts (the duration units, the date groups) fill them when the unit starts, before main(), and again at each change
// of texts. What already stands on the screen stays as it is: a program translates first of all.
//
// Placeholders ("%0:s") belong to the text; a translation keeps them, in an order of its own. A line break is one '\n'.
//
// Ownership: texts are copied. Errors: only running out of memory; then no text is replaced, or all are while some
// unit's table still has the old ones. Main thread only.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vx {

/// All numbers of the system lie within these two, not all of them have a text. Applications number theirs outside.
inline constexpr std::int32_t kFirstResourceString = 14601;
inline constexpr std::int32_t kLastResourceString = 14722;

struct TResourceString {
  std::int32_t Id;
  std::string_view Text;
};

/// The text of a number; empty if there is none. O(1), and O(log n) in n replacements.
std::string LoadStr(std::int32_t id);
/// The table itself, in order of number and untouched by replacements: what a translator begins with.
std::vector<TResourceString> OriginalResourceStrings();

// -- Translations -----------------------------------------------------------------------------------------------------

/// Replaces a text, perhaps by an empty one. A number that the table doesn't know is added.
void SetResourceString(std::int32_t id, std::string_view text);
/// Replaces a whole set, all or nothing; of a number named twice, the last text holds. Numbers that the table doesn't
/// know are added, and counted in the answer: 0 for a translation without a slip of the pen. O((m + n) log n) for m
/// replacements that were there.
std::int32_t SetResourceStrings(std::span<const TResourceString> texts);
inline std::int32_t SetResourceStrings(std::initializer_list<TResourceString> texts) {
  return SetResourceStrings(std::span(texts.begin(), texts.size()));
}
/// Takes all replacements back.
void ResetResourceStrings();
/// From now on `load` is called after each of these changes: for a unit that keeps some of the texts in a table.
void FollowResourceStrings(void (*load)());

}  // namespace vx
