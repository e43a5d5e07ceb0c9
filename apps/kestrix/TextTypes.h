// TextTypes.h: what the text of a cell means, and which type a column of cells has.
//
// Reading is strict: the whole text, but for blanks around it, must be the value. Type finding is careful rather than
// clever: a column has a type only if every one of its values can be read so, and digits that carry more than their
// number (a leading zero, or more than 32 bits: order numbers, post codes) stay text.
//
//   TTypeFinder finder(words);
//   for (auto cell : {"3", "-", "12"}) finder.Add(cell, line++);
//   finder.Type('.');                                            // TColumnType::Integer; "-" is null in a number column
//
// Cost: each cell is read only as the types that are still possible.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vx::kestrix {

enum class TColumnType { Boolean, Integer, Float, Date, DateTime, Text };
inline bool IsDateType(TColumnType type) { return type == TColumnType::Date || type == TColumnType::DateTime; }
inline bool IsNumberType(TColumnType type) { return type == TColumnType::Integer || type == TColumnType::Float; }

/// How "03/04/2015" is read. With a dot (03.04.2015) the day always comes first.
enum class TDateOrder { DayFirst, MonthFirst };

/// The type's name as the user writes it: "boolean", "integer", "float", "date", "datetime", "string".
std::string_view TypeName(TColumnType type);
/// The type of that name, "text" being another word for "string". Letter case doesn't matter.
std::optional<TColumnType> TypeOfName(std::string_view name);

// -- Cells ------------------------------------------------------------------------------------------------------------

/// true, false, yes, no, in any letter case.
std::optional<bool> ReadBoolean(std::string_view text);
/// Digits with or without a sign, within 32 bits. Leading zeros are read: whoever asks knows that it is a number.
std::optional<std::int32_t> ReadInteger(std::string_view text);
/// Digits with a decimal part and an exponent, each if wanted. No "nan", no "inf", no hexadecimal digits, no thousands
/// separators.
std::optional<double> ReadFloat(std::string_view text, char decimal = '.');

struct TDateCell {
  double days = 0;                ///< since 1899-12-30, as all dates of the house
  bool hasTime = false;           ///< a time of day was written, be it 00:00
  bool couldBeExchanged = false;  ///< day and month are told apart by the order asked for alone
};

/// A date, with or without a time of day behind it. Spellings: 2015-02-21 (also with / and .), 21.2.2015, 21/2/2015 or
/// 2/21/2015, 21 Feb 2015, 21-Feb-15, February 21, 2015, 20150221; 14:07, 14:07:30, 14:07:30.5, 2:07 pm, and a "Z"
/// behind the time, which is read as it stands. Years of two digits lie in 1970 to 2069. A day that the calendar
/// doesn't have is no date.
std::optional<TDateCell> ReadDate(std::string_view text, TDateOrder order);
/// The day of that year and month as days since 1899-12-30, if the calendar has it (years 1 to 9999).
std::optional<double> DayNumber(std::int32_t year, std::int32_t month, std::int32_t day);

/// "january" to "december", by a number from 1 to 12.
std::string_view MonthName(std::int32_t month);

/// The words that stand for "no value" in columns that aren't text. Blank cells always do.
class TNullWords {
 public:
  TNullWords() : words_{"-", "NA"} {}
  explicit TNullWords(std::vector<std::string> words) : words_(std::move(words)) {}
  bool IsNull(std::string_view text) const;

 private:
  std::vector<std::string> words_;
};

// -- Columns ----------------------------------------------------------------------------------------------------------

/// Sees every cell of a column and says which types are left.
class TTypeFinder {
 public:
  /// `mayHaveDecimalComma`: commas don't separate the columns.
  explicit TTypeFinder(const TNullWords& nulls, bool mayHaveDecimalComma = false);

  /// The user says that these are numbers or dates: cells that can't be are no evidence of how the others are written.
  void Expect(TColumnType type) { expected_ = type; }
  void Add(std::string_view cell, std::size_t line);

  /// The narrowest type that all cells have, numbers with this decimal character. Text for a column without a value.
  TColumnType Type(char decimal) const;
  /// Some cell was not null.
  bool HasValues() const { return values_ > 0; }
  /// The column is one of numbers with a decimal comma, and with nothing else.
  bool NeedsDecimalComma() const;
  /// Of a date column: the order in which day and month are read.
  TDateOrder DateOrder(TDateOrder preferred) const;
  /// Of a date column: each order would do, and gives other dates.
  bool IsDateOrderOpen() const;
  /// Bytes of the longest cell, and the line on which it stands.
  std::size_t LongestText() const { return longest_; }
  std::size_t LongestLine() const { return longestLine_; }

 private:
  bool IsEvidence(std::string_view text) const;
  void AddNumber(std::string_view text);
  void AddDate(std::string_view text);
  bool HasDates() const { return isDayFirst_ || isMonthFirst_; }

  const TNullWords* nulls_;
  std::optional<TColumnType> expected_;
  std::size_t values_ = 0;
  std::size_t longest_ = 0;
  std::size_t longestLine_ = 0;
  // What the column can still be.
  bool isBoolean_ = true;
  bool isInteger_ = true;
  bool isPointFloat_ = true;
  bool isCommaFloat_;
  bool isDayFirst_ = true;
  bool isMonthFirst_ = true;
  // What was seen.
  bool sawWideDigits_ = false;
  bool sawFraction_ = false;
  bool sawTime_ = false;
  bool sawExchangeable_ = false;
};

}  // namespace vx::kestrix
