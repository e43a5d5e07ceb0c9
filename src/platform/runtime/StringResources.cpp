#include "platform/runtime/StringResources.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

namespace vx {

namespace {

struct TResource {
  std::int32_t id;
  std::string_view text;
};

/// In order of id.
constexpr TResource kResources[] = {
    {14659, "a"},
    {14660, "s"},
    {14661, "min"},
    {14662, "h"},
    {14663, "d"},
    {14664, "w"},
    {14665, "Invalid date: %0:s (should be between %1:s and %2:s)."},
    {14666, "Invalid duration unit: %0:s."},
    {14667, "Invalid duration: .%0:s."},
    {14669, "mo"},
    {14670, "y"},
    {14672, "Day"},
    {14673, "Week"},
    {14674, "Month"},
    {14675, "Year"},
    {14676, "Century"},
};

std::map<std::int32_t, std::string>& Replacements() {
  static std::map<std::int32_t, std::string> replacements;
  return replacements;
}

}  // namespace

std::string LoadStr(std::int32_t id) {
  if (const auto replaced = Replacements().find(id); replaced != Replacements().end()) return replaced->second;
  const auto found =
      std::lower_bound(std::begin(kResources), std::end(kResources), id,
                       [](const TResource& resource, std::int32_t wanted) { return resource.id < wanted; });
  return found != std::end(kResources) && found->id == id ? std::string(found->text) : std::string();
}

void SetResourceString(std::int32_t id, std::string text) { Replacements()[id] = std::move(text); }

void ResetResourceStrings() { Replacements().clear(); }

}  // namespace vx
