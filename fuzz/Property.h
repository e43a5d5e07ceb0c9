// Property.h: what a fuzz target says when something that must hold does not.
//
// A target is a file with LLVMFuzzerTestOneInput: it takes any bytes, and holds the code to properties rather than only
// to staying alive. libFuzzer calls it in the preset `fuzz`; in every other build replay_main.cpp calls it with the
// files of corpus/.
//
//   Hold(ReadBack(Printed(value)) == value, "a printed value reads back", input);
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

/// Called by libFuzzer or by the replay; each target defines it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace vx::fuzz {

/// Printable ASCII as it is, all else as \xNN.
inline std::string Escaped(std::string_view text) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte < 0x7F && c != '\\')
      result += c;
    else
      result.append("\\x").append(1, kDigits[byte >> 4u]).append(1, kDigits[byte & 15u]);
  }
  return result;
}

/// Ends the process unless the property holds, after telling it and the input.
inline void Hold(bool holds, std::string_view property, std::string_view input) {
  if (holds) return;
  std::fprintf(stderr, "Broken: %.*s\nInput:  %s\n", static_cast<int>(property.size()), property.data(),
               Escaped(input).c_str());
  std::abort();
}

/// True if the call comes through, false if it raises an `Allowed`. Any other error breaks a property.
template <class Allowed, class Call>
bool Runs(Call&& call, std::string_view property, std::string_view input) {
  try {
    call();
    return true;
  } catch (const Allowed&) {
    return false;
  } catch (const std::exception& error) {
    Hold(false, std::string(property) + "; raised: " + error.what(), input);
    return false;
  }
}

inline std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace vx::fuzz
