// Input.h: what a person does with mouse and keyboard, in the words in which controls hear of it.
//
// A key is a number: letters and digits are their capitals' ASCII codes, all others have a name below. Key combinations
// have texts, which go both ways:
//
//   TextToShortCut("ctrl+pgdn");                     // {vkNext, {ssCtrl}}
//   ShortCutText({'C', {ssShift, ssCtrl}});          // "Ctrl+Shift+C"
//
// Places are pixels of the target, the first in its left upper corner at 0, 0; a pressed mouse is heard of outside too.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/component/EnumSet.h"

namespace vx {

enum TMouseButton : std::uint8_t { mbLeft, mbRight, mbMiddle };

enum TShiftStateFlag : std::uint8_t {
  ssShift,
  ssAlt,
  ssCtrl,
  ssLeft,  ///< these three: the button is down
  ssRight,
  ssMiddle,
  ssDouble,  ///< the press that makes a click a double click
};
/// What is held down during an event.
using TShiftState = TSetOf<TShiftStateFlag>;

using TKey = std::uint16_t;
inline constexpr TKey vkNone = 0;
inline constexpr TKey vkBack = 8;
inline constexpr TKey vkTab = 9;
inline constexpr TKey vkReturn = 13;
inline constexpr TKey vkShift = 16;  ///< these three: pressed by themselves
inline constexpr TKey vkControl = 17;
inline constexpr TKey vkMenu = 18;  ///< Alt
inline constexpr TKey vkEscape = 27;
inline constexpr TKey vkSpace = 32;
inline constexpr TKey vkPrior = 33;  ///< page up
inline constexpr TKey vkNext = 34;   ///< page down
inline constexpr TKey vkEnd = 35;
inline constexpr TKey vkHome = 36;
inline constexpr TKey vkLeft = 37;
inline constexpr TKey vkUp = 38;
inline constexpr TKey vkRight = 39;
inline constexpr TKey vkDown = 40;
inline constexpr TKey vkInsert = 45;
inline constexpr TKey vkDelete = 46;
inline constexpr TKey vkApps = 93;  ///< opens the menu of what has the focus
inline constexpr TKey vkAdd = 107;
inline constexpr TKey vkSubtract = 109;
inline constexpr TKey vkF1 = 112;  ///< up to F24 in one row

struct TShortCut {
  TKey Key = vkNone;
  TShiftState Shift = {};
  bool operator==(const TShortCut&) const = default;
};

/// "Ctrl+Shift+C", "F5", "Shift"; a key without a name is "#" and its number.
std::string ShortCutText(const TShortCut& shortCut);
/// Reads the modifiers Ctrl, Alt and Shift in any order, and one key: a letter, a digit, a name or a number, letter
/// case ignored. Empty if that is no such text.
std::optional<TShortCut> TextToShortCut(std::string_view text);
/// The modifier of that name, letter case ignored.
std::optional<TShiftStateFlag> TextToModifier(std::string_view text);

/// What the press of a key types, as a code point: "c" or "C", the control characters of Enter, Tab, Esc, Backspace and
/// of Ctrl with a letter; 0 for a key that types nothing. What Shift makes of a digit is up to the keyboard, and is 0.
char32_t CharacterOf(const TShortCut& shortCut);

/// Who is told what a person does. A double click comes as down, up, down with ssDouble, up; a key as down, press if it
/// types something, up.
class IInputTarget {
 public:
  virtual ~IInputTarget() = default;
  virtual void MouseDown(TMouseButton button, TShiftState shift, std::int32_t x, std::int32_t y) = 0;
  virtual void MouseMove(TShiftState shift, std::int32_t x, std::int32_t y) = 0;
  virtual void MouseUp(TMouseButton button, TShiftState shift, std::int32_t x, std::int32_t y) = 0;
  /// `notches` of the wheel: above 0 away from the person, which scrolls up.
  virtual void MouseWheel(TShiftState shift, std::int32_t notches, std::int32_t x, std::int32_t y) = 0;
  /// Setting `key` to vkNone swallows it: nothing is typed then.
  virtual void KeyDown(TKey& key, TShiftState shift) = 0;
  virtual void KeyPress(char32_t character) = 0;
  virtual void KeyUp(TKey key, TShiftState shift) = 0;
};

}  // namespace vx
