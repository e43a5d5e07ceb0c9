#include "platform/runtime/StringResources.h"

#include <array>
#include <cstddef>
#include <map>
#include <utility>

namespace vx {

namespace {

/// Grouped by who shows the text.
constexpr TResourceString kResources[] = {
    // Message dialogs: titles by kind, then buttons in the order of the platform's button set.
    {14605, "Warning"},
    {14606, "Error"},
    {14607, "Information"},
    {14608, "Confirmation"},
    {14609, "Yes"},
    {14610, "No"},
    {14611, "OK"},
    {14612, "Cancel"},
    {14613, "Abort"},
    {14614, "Retry"},
    {14615, "Ignore"},
    {14616, "All"},
    {14617, "No to All"},
    {14618, "Yes to All"},
    {14619, "Help"},

    // Messages by number.
    {14677, "<Index specifier %d out of range>"},
    {14678, "<Error converting parameter %d>"},
    {14679, "<Parameter %d is not of the correct type>"},
    {14680, "Requested message ID not found in application resources."},

    // Duration units, as they are written behind a number, in the order of TVXDurUnit.
    {14659, "a"},
    {14660, "s"},
    {14661, "min"},
    {14662, "h"},
    {14663, "d"},
    {14664, "w"},
    {14669, "mo"},
    {14670, "y"},

    // Reading dates and durations.
    {14665, "Invalid date: %0:s (should be between %1:s and %2:s)."},
    {14666, "Invalid duration unit: %0:s."},
    {14667, "Invalid duration: .%0:s."},

    // Date groups, in the order of TVXGroupMode.
    {14672, "Day"},
    {14673, "Week"},
    {14674, "Month"},
    {14675, "Year"},
    {14676, "Century"},

    // Date editors and their dialog.
    {14671, "Invalid Date"},

    // Periods.
    {14621, "Could not load periods."},
    {14622, "An error occured; could not save period list."},  // Kept: one "r", as users know it
    {14623, "Wrong period type."},

    // Unit markers.
    {14632, "Could not load NbUnitMarkers."},
    {14633, "An error occurred; could not save exception marker list. "},  // Kept: the blank at the end
    {14634,
     "Cannot add an exception marker to a day that already contains one, or have it overlap with another exception "
     "marker."},

    // The calendar: hints of periods and markers, and what it refuses.
    {14624, "Time: %0:s Duration: %1:s"},
    {14625, "Deleted for this resource."},
    {14626, "%0:s Units (Default)"},
    {14627, "From: %0:s\nTo: %1:s\n%2:s Units"},
    {14628, "From: %0:s\nForever\n%1:s Units"},
    {14629, "Exception"},
    {14630, "Continued from exception."},
    {14631, "Cannot add a period to a day that already contains one, or have it overlap with another period."},
    {14635, "Default"},

    // The selector of days for recurring events.
    {14658,
     "Some months have less than %s days.\nIn these cases the event will fall back on the last day of the month."},

    // The chart view: titles, progress, hints.
    {14689, "Untitled"},
    {14690, "Generating Chart"},
    {14705, "Infinite"},

    // The chart legend's menu.
    {14691, "Find Marker"},
    {14692, "Copy"},
    {14693, "Copy Bitmap"},
    {14694, "Copy Data"},
    {14695, "Remove"},
    {14696, "Remove All"},
    {14697, "Properties..."},

    // Data sets.
    {14709, "True"},
    {14710, "False"},

    // The data navigator.
    {14655, "Delete record?"},
    {14706, "(none)"},
};

constexpr std::size_t kNumbers = kLastResourceString - kFirstResourceString + 1;

/// By number; empty where there is none. A number outside, or named twice, doesn't compile.
constexpr auto kTexts = [] {
  std::array<std::string_view, kNumbers> texts;
  for (const auto& [id, text] : kResources) {
    std::string_view& place = texts.at(static_cast<std::size_t>(id - kFirstResourceString));
    if (!place.empty()) throw "a number named twice";
    place = text;
  }
  return texts;
}();

std::string_view OriginalOf(std::int32_t id) {
  if (id < kFirstResourceString || id > kLastResourceString) return {};
  return kTexts[static_cast<std::size_t>(id - kFirstResourceString)];
}

using TReplacements = std::map<std::int32_t, std::string>;

TReplacements& Replacements() {
  static TReplacements replacements;
  return replacements;
}

std::vector<void (*)()>& Followers() {
  static std::vector<void (*)()> followers;
  return followers;
}

void TellFollowers() {
  for (void (*const load)() : Followers()) load();
}

}  // namespace

std::string LoadStr(std::int32_t id) {
  if (const auto replaced = Replacements().find(id); replaced != Replacements().end()) return replaced->second;
  return std::string(OriginalOf(id));
}

std::vector<TResourceString> OriginalResourceStrings() {
  std::vector<TResourceString> originals;
  for (std::int32_t id = kFirstResourceString; id <= kLastResourceString; ++id)
    if (const std::string_view text = OriginalOf(id); !text.empty()) originals.push_back({id, text});
  return originals;
}

void SetResourceString(std::int32_t id, std::string_view text) {
  Replacements().insert_or_assign(id, std::string(text));
  TellFollowers();
}

std::int32_t SetResourceStrings(std::span<const TResourceString> texts) {
  TReplacements replacements = Replacements();
  std::int32_t unknown = 0;
  for (const auto& [id, text] : texts) {
    if (OriginalOf(id).empty()) ++unknown;
    replacements.insert_or_assign(id, std::string(text));
  }
  Replacements().swap(replacements);
  TellFollowers();
  return unknown;
}

void ResetResourceStrings() {
  Replacements().clear();
  TellFollowers();
}

void FollowResourceStrings(void (*load)()) { Followers().push_back(load); }

}  // namespace vx
