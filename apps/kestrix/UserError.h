// UserError.h: what the user did wrong, in one line.
//
// A message names the place as far as there is one, so that an editor can jump to it:
//
//   orders.csv:17: column "Order Quantity": "abc" is not a number
//
// The program's main puts its own name before it and ends with code 2. Texts taken from files are quoted so that a
// message stays one line of readable text, whatever the file holds.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Exceptions.h"

namespace vx::kestrix {

/// Where in a file something stands. Line 0 and an empty column mean "none".
struct TPlace {
  std::string file;
  std::size_t line = 0;
  std::string column;
};

/// A mistake of the user's, or of the user's file.
class EUserError : public TNamedException<EUserError> {
 public:
  static constexpr const char* kName = "EUserError";
  explicit EUserError(const std::string& message) : TNamedException(message) {}
  EUserError(TPlace place, const std::string& message);

  const TPlace& Place() const { return place_; }

 private:
  TPlace place_;
};

/// The user pressed Ctrl-C: everything is undone on the way out.
class EInterrupted : public TNamedException<EInterrupted> {
 public:
  static constexpr const char* kName = "EInterrupted";
  EInterrupted() : TNamedException("Interrupted") {}
};

/// `text` in double quotes, on one line: control characters become pictures of them, a long text ends in an ellipsis.
std::string Quoted(std::string_view text);

/// "a", "b", "c": the first few of several names, then an ellipsis.
std::string QuotedList(const std::vector<std::string>& names);

/// `text` with each control character as its picture ("\n" is shown as ␊).
std::string OneLine(std::string_view text);

}  // namespace vx::kestrix
