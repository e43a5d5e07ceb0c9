// DateForm.h: how a column's dates are written, and further dates in the same way.
//
//   TDateForm form(TDateOrder::MonthFirst);
//   for (auto cell : {"02/13/2024", "11/05/2024 2:07 pm"}) form.Add(cell);
//   form.Write({45336, false});                                            // "02/14/2024"
//
// The day and the time of day are looked at on their own; of several ways of writing one the most frequent counts.
// Numbers have as many digits as the shortest that was seen in their place; a day beside a month of one digit, and a
// month beside such a day, has a leading zero only if one was seen.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "CellValue.h"
#include "TextTypes.h"

namespace vx::kestrix {

enum class TDateRole { Year, Month, Day, Hour, Minute, Second, Fraction, HalfDay, Mark };

/// A number, a word, or what stands between them, as it was written in one date.
struct TDatePart {
  TDateRole role = TDateRole::Mark;
  std::string text;
};
using TDateParts = std::vector<TDatePart>;

class TDateForm {
 public:
  /// `order` is the one in which the dates were read.
  explicit TDateForm(TDateOrder order) : order_(order) {}

  /// A text that ReadDate reads, as all below.
  void Add(std::string_view date);
  /// Some date was written in this way.
  bool Has(std::string_view date) const;
  /// As 2015-02-21 if no date was added. `isWhole`: the year with four digits, and a moment with its time, be it 00:00,
  /// whether the others have them or not.
  std::string Write(const TMoment& moment, bool isWhole = false) const;

 private:
  struct TSpelling {
    TDateParts parts;
    std::size_t count = 0;
    std::size_t place = 0;  ///< among the spellings, as they were met
  };
  using TSpellings = std::map<std::string, TSpelling>;  // by what all dates written so have in common

  static void AddTo(TSpellings& spellings, const TDateParts& parts);
  static const TDateParts& MostFrequent(const TSpellings& spellings);

  TDateOrder order_;
  TSpellings days_;
  TSpellings times_;
  bool sawNoTime_ = false;
};

/// `word` in capitals, in small letters, or with one capital, as `example` is.
std::string InCaseOf(std::string_view example, std::string_view word);

}  // namespace vx::kestrix
