// NaiveValues.h: what the bytes of a field mean, how values compare, how they read as text.
//
// Texts of the random test come from a small alphabet: ASCII letters, digits, "_", and the pair é/É. Folding knows just
// these.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "NaiveTypes.h"

namespace vx::naive {

std::int32_t ReadInteger(TType type, const TBytes& bytes);  ///< Boolean, Smallint, Word, Integer, Duration
double ReadDouble(const TBytes& bytes);                     ///< Currency, DateTime, Float
std::string ReadText(const TBytes& bytes);                  ///< up to the first zero byte, or the whole slot

TBytes BytesOf(TType type, double number, std::int32_t size);
TBytes BytesOf(const std::string& text, std::int32_t size);

std::string Lower(const std::string& text);
std::string Upper(const std::string& text);
bool SameName(const std::string& a, const std::string& b);  ///< letter case ignored

/// -1, 0 or 1, looking at the values alone.
std::int32_t CompareValues(TType type, const TBytes& a, const TBytes& b);
/// -1, 0 or 1; a null is greater than every value, and two nulls are equal.
std::int32_t CompareFields(TType type, const TField& a, const TField& b);

/// Does a field's value equal the filter's? Raises EVariantError where a text can't be read as a number.
bool EqualsFilter(TType type, const TBytes& bytes, const TValue& value);

/// Quicksort with fixed moves: equal rows end up in an order of their own, always the same.
void QuickSort(TRows& rows, const std::function<std::int32_t(const TRow*, const TRow*)>& compare);

/// The items of a list such as "a;b;": a trailing separator adds none, empty ones elsewhere count.
std::vector<std::string> SplitItems(const std::string& text);

/// 15 significant digits.
std::string FloatText(double value);

// -- Dates: whole days since 1899-12-30 ---
double GroupDate(TGroupMode mode, double date, std::int32_t startOfWeek);
double NextGroupDate(TGroupMode mode, double date, std::int32_t startOfWeek);
/// "dd/mm/yyyy 00:00:00", for dates without a time of day.
std::string DateText(double date);

}  // namespace vx::naive
