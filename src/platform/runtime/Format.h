// Format.h: texts made from a pattern and arguments, for messages.
//
// A placeholder is  % [index :] [-] [width] [. precision] letter.  It takes the argument at `index`, else the one after
// the last taken. "%%" is a percent sign. What comes from an argument is never looked at again, so a "%" in it stays a
// "%".
//
//   Format("%s has %d rows", {"Orders", 30871});      // Orders has 30871 rows
//   Format("%1:s before %0:s", {"a", "b"});           // b before a
//   Format("%.2d:%.2d", {7, 5});                      // 07:05
//   Format("%x", {255});                              // FF
//   Format("[%-5s|%5.1f]", {"ab", 2.25});             // [ab   |  2.3]
//
// letter   argument       meaning of the precision
//   d      integer        least number of digits, zeros in front
//   u      integer        the same; a negative one counts from the top of its own size
//   x      integer        the same; hexadecimal, capitals; negative as for u
//   s      text           greatest number of code points
//   f      real           digits after the locale's DecimalSeparator; 2 if not given. Integers are taken too
//   g      real           significant digits, 15 if not given; integers are taken too
//   e      real           the same, always with an exponent: %.2e gives 1.5E+003
//   n      real           as for f, the digits before the separator in groups: 1,234.50
//   m      real           as for n, with the locale's currency: $1,234.50
//
// Errors. EConvertError, which quotes the format: a placeholder without its letter, an unknown letter, an index beyond
// the arguments, a width or precision over kFormatLimit, an argument of another kind. Nothing is made of a wrong
// format.
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace vx {

/// Greatest width and precision.
inline constexpr std::int32_t kFormatLimit = 1024;

template <class T>
concept TFormatInteger =
    std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> && !std::same_as<T, wchar_t> &&
    !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

/// One argument. Texts are not copied: they live at least until Format returns.
class TFormatArg {
 public:
  enum TKind : std::uint8_t { fkInteger, fkReal, fkText };

  template <TFormatInteger T>
  TFormatArg(T value)  // NOLINT: arguments are written as they are
      : kind_(fkInteger),
        negative_(value < T{}),
        bits_(sizeof(T) <= 4 ? 32 : 64),
        integer_(static_cast<std::uint64_t>(value)) {}
  template <std::floating_point T>
  TFormatArg(T value) : kind_(fkReal), real_(static_cast<double>(value)) {}            // NOLINT
  TFormatArg(std::string_view text) : kind_(fkText), text_(text) {}                    // NOLINT
  TFormatArg(const std::string& text) : kind_(fkText), text_(text) {}                  // NOLINT
  TFormatArg(const char* text) : kind_(fkText), text_(text == nullptr ? "" : text) {}  // NOLINT: null counts as empty

  TKind Kind() const { return kind_; }
  bool IsNegative() const { return negative_; }
  /// The integer without its sign.
  std::uint64_t Magnitude() const { return negative_ ? 0 - integer_ : integer_; }
  /// The integer's bits, in the argument's own size of 32 or 64.
  std::uint64_t Unsigned() const { return bits_ == 32 ? integer_ & 0xFFFFFFFFu : integer_; }
  /// An integer as a double, or the double.
  double Real() const;
  std::string_view Text() const { return text_; }

 private:
  TKind kind_;
  bool negative_ = false;
  std::uint8_t bits_ = 64;
  std::uint64_t integer_ = 0;
  double real_ = 0;
  std::string_view text_;
};

std::string Format(std::string_view format, std::initializer_list<TFormatArg> args);

}  // namespace vx
