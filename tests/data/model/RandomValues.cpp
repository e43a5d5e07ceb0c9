#include "RandomValues.h"

#include "NaiveValues.h"

namespace vx::naive {
namespace {

const std::vector<double>& NumbersOf(TType type) {
  static const std::vector<double> kFlags = {0, 1, 1, 2};
  static const std::vector<double> kReals = {-2.5, -1, -0.0, 0, 0.1, 0.2, 0.25, 1, 1, 2, 2.5, 3, 11, 12, 1e6};
  // Noon and midnight of a few days, both sides of a year's and of a century's end, and the day zero.
  static const std::vector<double> kDates = {0,       1,       36524, 36525.5, 36526,    36891,   36892, 45289,
                                             45290.5, 45290.5, 45291, 45292,   45292.25, 45297.5, 45298, 45299,
                                             45322,   45323,   45351, 45352,   45657,    45658,   73051, 73050.75};
  static const std::vector<double> kIntegers = {-1, 0, 1, 1, 2, 3, 11, 12, 2147483647, -2147483648.0};
  static const std::vector<double> kSmallints = {-32768, -1, 0, 1, 1, 2, 12, 32767};
  static const std::vector<double> kWords = {0, 1, 1, 2, 11, 12, 65535};
  static const std::vector<double>* const kNumbers[] = {&kFlags,    &kReals,     &kDates, &kIntegers, &kReals,
                                                        &kIntegers, &kSmallints, &kReals, &kWords};
  return *kNumbers[static_cast<std::size_t>(type)];
}

const std::vector<std::string> kTexts = {"",   "a",  "A",   "b",  "B", "_",    "\xC3\xA9", "\xC3\x89",
                                         "ab", "aB", "Ab_", "12", "2", "True", "1.5"};

TBytes RandomTextBytes(TDice& dice, std::int32_t size) {
  std::string text = dice.Pick(kTexts);
  if (size < 2) text = dice.OneIn(2) ? "a" : "";
  if (size < 3 && text.size() == 2 && static_cast<unsigned char>(text[0]) > 0x7F) text = "b";
  if (static_cast<std::int32_t>(text.size()) + 2 <= size && dice.OneIn(6)) text += std::string("\0z", 2);
  return BytesOf(text, size);
}

}  // namespace

TType RandomType(TDice& dice) { return static_cast<TType>(dice.Below(9)); }

std::string RandomFieldName(TDice& dice, TType type) {
  static const std::vector<std::string> kNames[] = {{"Open", "open"},
                                                    {"Cost"},
                                                    {"Day", "DAY", "Due"},
                                                    {"Span", "Length"},
                                                    {"Load", "Qty"},
                                                    {"Qty", "QTY", "Count"},
                                                    {"Level"},
                                                    {"Name", "Caf\xC3\xA9", "CAF\xC3\x89"},
                                                    {"Rank", "Qty"}};
  return dice.Pick(kNames[static_cast<std::size_t>(type)]);
}

std::int32_t RandomSize(TDice& dice, TType type) {
  static const std::int32_t kSizes[] = {1, 8, 8, 4, 8, 4, 2, 0, 2};
  return type == TType::String ? dice.Pick(std::vector<std::int32_t>{1, 2, 4, 9})
                               : kSizes[static_cast<std::size_t>(type)];
}

TBytes RandomBytes(TDice& dice, const TFieldDef& def) {
  if (def.type == TType::String) return RandomTextBytes(dice, def.size);
  return BytesOf(def.type, dice.Pick(NumbersOf(def.type)), def.size);
}

TValue ValueOf(const TFieldDef& def, const TBytes& bytes) {
  if (def.type == TType::Boolean) return bytes[0] != 0;
  if (def.type == TType::Currency || def.type == TType::Float) return ReadDouble(bytes);
  if (def.type == TType::DateTime) return TDate{ReadDouble(bytes)};
  if (def.type == TType::String) return ReadText(bytes);
  return ReadInteger(def.type, bytes);
}

TValue RandomFilterValue(TDice& dice) {
  const std::vector<TValue> values = {{},
                                      TNull{},
                                      dice.OneIn(2),
                                      dice.Between(-1, 3),
                                      dice.Pick(NumbersOf(TType::Float)),
                                      TDate{dice.Pick(NumbersOf(TType::DateTime))},
                                      dice.Pick(kTexts)};
  return dice.Pick(values);
}

std::string ToText(const TBytes& bytes) {
  static const char* const kDigits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) text += {kDigits[byte >> 4], kDigits[byte & 15]};
  return text;
}

std::string ToText(const TValue& value) {
  if (std::holds_alternative<std::monostate>(value)) return "unassigned";
  if (std::holds_alternative<TNull>(value)) return "Null";
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "True" : "False";
  if (const auto* integer = std::get_if<std::int32_t>(&value)) return std::to_string(*integer);
  if (const auto* real = std::get_if<double>(&value)) return FloatText(*real) + "f";
  if (const auto* date = std::get_if<TDate>(&value)) return "date " + FloatText(date->days);
  return "'" + std::get<std::string>(value) + "'";
}

}  // namespace vx::naive
