// Suggest.h: the name that the user may have meant.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vx::kestrix {

/// The name nearest to `wrong` by letters added, taken away, changed or swapped with their neighbour, letter case
/// aside; none if even the nearest needs more than a third of its letters changed. Of equally near ones the first.
std::optional<std::string> Nearest(std::string_view wrong, const std::vector<std::string>& names);

/// "; did you mean "X"?", or nothing.
std::string DidYouMean(std::string_view wrong, const std::vector<std::string>& names);

}  // namespace vx::kestrix
