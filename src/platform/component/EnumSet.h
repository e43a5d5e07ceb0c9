// EnumSet.h: a set of members of an enumeration, as a value of one word.
//
//   TSetOf<TComponentStateFlag> state = {csLoading, csReading};
//   state.Include(csDesigning);
//   state.Has(csReading);           // true
//
// Members have ordinals from 0 to 63; the ordinal is the bit.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <type_traits>

namespace vx {

template <class E>
class TSetOf {
  static_assert(std::is_enum_v<E>);

 public:
  using TMember = E;

  constexpr TSetOf() = default;
  constexpr TSetOf(std::initializer_list<E> members) {
    for (const E member : members) Include(member);
  }
  static constexpr TSetOf FromBits(std::uint64_t bits) {
    TSetOf set;
    set.bits_ = bits;
    return set;
  }

  constexpr bool Has(E member) const { return (bits_ & Bit(member)) != 0; }
  constexpr bool Empty() const { return bits_ == 0; }
  constexpr std::uint64_t Bits() const { return bits_; }
  constexpr bool operator==(const TSetOf&) const = default;

  constexpr void Include(E member) { bits_ |= Bit(member); }
  constexpr void Exclude(E member) { bits_ &= ~Bit(member); }
  constexpr void Put(E member, bool in) { in ? Include(member) : Exclude(member); }

  /// Union, intersection, difference.
  friend constexpr TSetOf operator+(TSetOf a, TSetOf b) { return FromBits(a.bits_ | b.bits_); }
  friend constexpr TSetOf operator*(TSetOf a, TSetOf b) { return FromBits(a.bits_ & b.bits_); }
  friend constexpr TSetOf operator-(TSetOf a, TSetOf b) { return FromBits(a.bits_ & ~b.bits_); }

 private:
  static constexpr std::uint64_t Bit(E member) {
    const auto ordinal = static_cast<std::uint64_t>(member);
    return ordinal < 64 ? std::uint64_t{1} << ordinal : 0;
  }

  std::uint64_t bits_ = 0;
};

}  // namespace vx
