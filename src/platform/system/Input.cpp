#include "platform/system/Input.h"

#include "platform/runtime/NumberText.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace {

constexpr std::int32_t kFunctionKeys = 24;
constexpr std::int32_t kLastKey = 255;

struct TKeyName {
  TKey Key;
  std::string_view Name;
};

/// The first name of a key is the one that is written.
constexpr TKeyName kKeyNames[] = {
    {vkBack, "Backspace"}, {vkTab, "Tab"},    {vkReturn, "Enter"},   {vkEscape, "Esc"},  {vkEscape, "Escape"},
    {vkSpace, "Space"},    {vkPrior, "PgUp"}, {vkPrior, "PageUp"},   {vkNext, "PgDn"},   {vkNext, "PageDown"},
    {vkEnd, "End"},        {vkHome, "Home"},  {vkLeft, "Left"},      {vkUp, "Up"},       {vkRight, "Right"},
    {vkDown, "Down"},      {vkInsert, "Ins"}, {vkInsert, "Insert"},  {vkDelete, "Del"},  {vkDelete, "Delete"},
    {vkApps, "Menu"},      {vkAdd, "Plus"},   {vkSubtract, "Minus"}, {vkShift, "Shift"}, {vkControl, "Ctrl"},
    {vkMenu, "Alt"},
};

struct TModifierName {
  TShiftStateFlag Flag;
  std::string_view Name;
};

constexpr TModifierName kModifiers[] = {{ssCtrl, "Ctrl"}, {ssAlt, "Alt"}, {ssShift, "Shift"}};  // as they are written

bool IsLetterKey(TKey key) { return key >= 'A' && key <= 'Z'; }
bool IsDigitKey(TKey key) { return key >= '0' && key <= '9'; }

std::string KeyText(TKey key) {
  if (IsLetterKey(key) || IsDigitKey(key)) return {static_cast<char>(key)};
  if (key >= vkF1 && key < vkF1 + kFunctionKeys) return "F" + std::to_string(key - vkF1 + 1);
  for (const TKeyName& each : kKeyNames)
    if (each.Key == key) return std::string(each.Name);
  return "#" + std::to_string(key);
}

TKey TextToFunctionKey(std::string_view text) {
  std::int32_t number = 0;
  const bool isOne = text.size() > 1 && UpperAscii(text[0]) == 'F' && text[1] >= '1' && text[1] <= '9' &&
                     TryStrToInt(text.substr(1), number) && number <= kFunctionKeys;
  return isOne ? static_cast<TKey>(vkF1 + number - 1) : vkNone;
}

TKey TextToKeyNumber(std::string_view digits) {
  std::int32_t number = 0;
  const bool isKey = TryStrToInt(digits, number) && number > 0 && number <= kLastKey;
  return isKey ? static_cast<TKey>(number) : vkNone;
}

TKey TextToKey(std::string_view text) {
  if (text.size() == 1) {
    const auto key = static_cast<TKey>(static_cast<unsigned char>(UpperAscii(text[0])));
    return IsLetterKey(key) || IsDigitKey(key) ? key : vkNone;
  }
  for (const TKeyName& each : kKeyNames)
    if (CompareText(each.Name, text) == 0) return each.Key;
  return text.starts_with('#') ? TextToKeyNumber(text.substr(1)) : TextToFunctionKey(text);
}

}  // namespace

std::string ShortCutText(const TShortCut& shortCut) {
  std::string text;
  for (const TModifierName& each : kModifiers)
    if (shortCut.Shift.Has(each.Flag)) text += std::string(each.Name) + "+";
  return text + KeyText(shortCut.Key);
}

std::optional<TShiftStateFlag> TextToModifier(std::string_view text) {
  for (const TModifierName& each : kModifiers)
    if (CompareText(each.Name, text) == 0) return each.Flag;
  return std::nullopt;
}

std::optional<TShortCut> TextToShortCut(std::string_view text) {
  TShortCut shortCut;
  for (std::size_t plus = text.find('+'); plus != std::string_view::npos; plus = text.find('+')) {
    const auto modifier = TextToModifier(text.substr(0, plus));
    if (!modifier) return std::nullopt;
    shortCut.Shift.Include(*modifier);
    text.remove_prefix(plus + 1);
  }
  shortCut.Key = TextToKey(text);
  return shortCut.Key != vkNone ? std::optional(shortCut) : std::nullopt;
}

char32_t CharacterOf(const TShortCut& shortCut) {
  const TKey key = shortCut.Key;
  if (shortCut.Shift.Has(ssAlt)) return 0;
  if (shortCut.Shift.Has(ssCtrl)) return IsLetterKey(key) ? key - U'A' + 1 : 0;
  const bool isShifted = shortCut.Shift.Has(ssShift);
  if (IsLetterKey(key)) return isShifted ? key : key - U'A' + U'a';
  if (IsDigitKey(key)) return isShifted ? 0 : key;
  if (key == vkAdd) return U'+';
  if (key == vkSubtract) return U'-';
  return key == vkBack || key == vkTab || key == vkReturn || key == vkEscape || key == vkSpace ? key : 0;
}

}  // namespace vx
