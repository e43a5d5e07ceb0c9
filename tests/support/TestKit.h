// TestKit.h: what tests of many folders need: the message of an error, a text cut into words, numbers that are none.
#pragma once

#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace vx::test {

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The message of the error that the call raises; errors that are no `Error` pass.
template <class Error, class Call>
std::string MessageOf(Call&& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.Message();
  }
  return "nothing raised";
}

/// The pieces between the separators; none of an empty text.
inline std::vector<std::string> Cut(std::string_view text, char separator = ' ') {
  std::vector<std::string> pieces;
  while (!text.empty()) {
    const std::size_t length = text.find(separator);
    pieces.emplace_back(text.substr(0, length));
    text.remove_prefix(length == std::string_view::npos ? text.size() : length + 1);
  }
  return pieces;
}

}  // namespace vx::test
