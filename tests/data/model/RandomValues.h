// RandomValues.h: definitions and values for the random test. Few distinct ones, so that ties and boundaries are met
// often.
#pragma once

#include <string>

#include "Dice.h"
#include "NaiveTypes.h"

namespace vx::naive {

TType RandomType(TDice& dice);
/// Names that differ in letter case alone, or not at all, occur.
std::string RandomFieldName(TDice& dice, TType type);
std::int32_t RandomSize(TDice& dice, TType type);
/// The value bytes of a field. Texts carry rubbish behind their zero byte at times, and may fill their slot.
TBytes RandomBytes(TDice& dice, const TFieldDef& def);
/// A filter's value that such bytes equal.
TValue ValueOf(const TFieldDef& def, const TBytes& bytes);
/// Null, unassigned, or a value of any kind, whatever the field's.
TValue RandomFilterValue(TDice& dice);

std::string ToText(const TBytes& bytes);
std::string ToText(const TValue& value);

}  // namespace vx::naive
