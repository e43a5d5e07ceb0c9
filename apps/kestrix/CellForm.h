// CellForm.h: how the cells of a column are written, so that a new value is written like those around it.
//
//   TCellForm form(column, plan.decimal, nulls);
//   for (auto cell : cells) form.Add(cell);
//   form.Spellings(value, "2024-02-14")                       // {"02/14/2024", "2024-02-14"}, the best first
//
// A text that the user typed is the best one if the column has texts of that form: the order and the marks of a date,
// the word of a Boolean, the decimal character of a number. The others are the value in the column's form, then in
// forms that say more: a year of four digits, a number with a decimal, a date as 2015-02-21. Which of them leaves the
// column to be read as it was is for the caller to find out.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "CellValue.h"
#include "ColumnPlan.h"
#include "DateForm.h"
#include "TextTypes.h"

namespace vx::kestrix {

class TCellForm {
 public:
  /// All must outlive the form.
  TCellForm(const TColumn& column, char decimal, const TNullWords& nulls);

  /// Passes by what is null or no value of the column's type.
  void Add(std::string_view cell);
  /// Texts that are read as `value` in this column, each once; `typed` is the user's. None if there is no such text.
  std::vector<std::string> Spellings(const TCellValue& value, std::string_view typed) const;

 private:
  void AddBoolean(std::string_view word, bool isTrue);
  void AddFloat(std::string_view number);
  bool IsTypedInForm(const TCellValue& value, std::string_view typed) const;
  std::string BooleanWord(bool isTrue) const;
  std::string FloatText(double value, std::size_t leastDecimals) const;
  std::vector<std::string> Candidates(const TCellValue& value) const;

  const TColumn& column_;
  char decimal_;
  const TNullWords& nulls_;
  std::size_t values_ = 0;
  std::vector<std::string> words_[2];  // of false and of true, in the order in which they were met
  std::size_t decimals_ = 0;           // that all numbers have at least
  TDateForm dates_;
};

}  // namespace vx::kestrix
