// DateModel.h: a second, plain reading of a typed date, for the fuzzer to compare with StrToSysDate.
//
// It builds the texts that the platform's own readers take, token by token, as a person would on paper; it shares with
// the unit only those readers and the clock. Characters are UTF-8 ones. Cost does not matter here.
#pragma once

#include <cmath>
#include <optional>
#include <string>
#include <string_view>

#include "platform/runtime/DateTime.h"
#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Format.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/NumberText.h"
#include "platform/runtime/Text.h"
#include "platform/system/Clock.h"

namespace vx::fuzz {

class TDateModel {
 public:
  /// The date that the text means; nothing if it means none.
  static std::optional<TDateTime> Read(std::string_view text, bool emptyIsToday) {
    TDateModel model(text);
    const bool dateFailed = Fails([&model] { model.ReadDate(); });
    const bool timeFailed = Fails([&model] { model.ReadTime(); });
    if (!model.holdsTime_ && model.isClassified_ && !model.dateIsEmpty_) model.result_ += Time();
    if (model.dateIsEmpty_ && model.timeIsEmpty_) return emptyIsToday ? Date() : 0;
    if (dateFailed || timeFailed) return std::nullopt;
    return model.result_;
  }

 private:
  explicit TDateModel(std::string_view typed)
      : text_(Trim(typed)), am_(SignOf(Locale().TimeAMString)), pm_(SignOf(Locale().TimePMString)) {
    if (text_ == "*") text_ = DateTimeToStr(Now());
    const std::string upper = AnsiUpperCase(text_);
    const auto holds = [&upper](const TSign& sign) {
      return !sign.text.empty() && upper.find(sign.first) != std::string::npos;
    };
    holdsDate_ = text_.find(Locale().DateSeparator) != std::string::npos;
    holdsTime_ = text_.find(Locale().TimeSeparator) != std::string::npos || holds(am_) || holds(pm_);
    if (!text_.empty() && !holdsTime_) holdsDate_ = true;
    isClassified_ = holdsDate_ || holdsTime_;
  }

  /// AM or PM, in upper case.
  struct TSign {
    std::string text;
    std::string first;  // its first character
  };

  static TSign SignOf(const std::string& text) {
    const std::string upper = AnsiUpperCase(text);
    return {upper, First(upper)};
  }

  static std::string First(const std::string& text) {
    std::size_t end = 0;
    if (!text.empty()) NextCodePoint(text, end);
    return text.substr(0, end);
  }

  static std::string Last(const std::string& text) {
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size();) {
      start = at;
      NextCodePoint(text, at);
    }
    return text.substr(start);
  }

  template <class Call>
  static bool Fails(Call&& call) {
    try {
      call();
      return false;
    } catch (const Exception&) {
      return true;
    }
  }

  /// The text before the first blank or separator. It goes, and so do the blanks behind it and one separator; behind a
  /// token that isn't empty as many blanks more as stood before the separator, so that "12 / 5" leaves "5".
  static std::string NextToken(std::string& text, char separator) {
    std::size_t end = 0, blanks = 0;
    while (end < text.size() && text[end] != ' ' && text[end] != separator) ++end;
    const std::string token = text.substr(0, end);
    for (text.erase(0, end); text.starts_with(' '); ++blanks) text.erase(0, 1);
    if (!text.starts_with(separator)) return token;
    text.erase(0, 1);
    for (; !token.empty() && blanks > 0 && text.starts_with(' '); --blanks) text.erase(0, 1);
    return token;
  }

  // -- Dates
  void ReadDate() {
    if (holdsDate_) result_ += StrToDate(DateText());
    if (!holdsDate_ && holdsTime_) result_ += std::trunc(Now());
    if (result_ < 25570 || result_ > 50422) throw EConvertError("out of bounds");
  }

  std::string DateText() {
    const char separator = Locale().DateSeparator;
    std::string format = UpperCase(Locale().ShortDateFormat);
    std::string date;
    for (;;) {
      const std::string field = NextToken(format, separator);
      if (field.empty()) break;
      const std::string token = NextToken(text_, separator);
      if (!token.empty()) dateIsEmpty_ = false;
      date += (token.empty() ? FieldOfClock(field) : FieldTyped(field, token)) + separator;
    }
    return date.substr(0, date.size() - (date.empty() ? 0 : 1));
  }

  static std::string FieldOfClock(const std::string& field) {
    std::uint16_t year = 0, month = 0, day = 0;
    DecodeDate(Now(), year, month, day);
    if (field[0] == 'Y') return field.size() == 4 ? IntToStr(year) : Format("%.2d", {year % 100});
    return Format("%.2d", {field[0] == 'M' ? month : day});
  }

  static std::string FieldTyped(const std::string& field, const std::string& token) {
    std::int32_t year = 0;
    if (field[0] == 'Y' && field.size() == 2 && TryStrToInt(token, year))
      return Format("%.4d", {std::int64_t{year} + (year < 40 ? 2000 : 1900)});
    if (field[0] != 'M' || field.size() != 3) return token;
    const auto& names = Locale().ShortMonthNames;
    for (std::size_t i = 0; i < names.size(); ++i)
      if (AnsiCompareText(token, names[i]) == 0) return Format("%.2d", {static_cast<std::int32_t>(i + 1)});
    return token;
  }

  // -- Times
  void ReadTime() {
    if (!holdsTime_) return;
    const std::string time = TimeText();
    if (!timeIsEmpty_) result_ += StrToTime(Trim(time));
  }

  std::string TimeText() {
    const char separator = Locale().TimeSeparator;
    std::string format = UpperCase(Locale().LongTimeFormat);
    std::string time;
    for (;;) {
      const std::string field = NextToken(format, ':');
      if (field.empty()) break;
      const std::string token = NextToken(text_, separator);
      if (!token.empty()) timeIsEmpty_ = false;
      if (const TSign* sign = Designator(token)) {
        time.resize(time.size() - Last(time).size());
        time += " " + sign->text + " ";
      } else {
        time += (token.empty() ? MissingField(field) : Expanded(Expanded(token, am_), pm_)) + separator;
      }
    }
    time = Trim(time.substr(0, time.size() - Last(time).size()));
    while (time.ends_with(separator)) time.pop_back();
    return time;
  }

  const TSign* Designator(const std::string& token) const {
    const std::string first = AnsiUpperCase(First(token));
    if (first.empty()) return nullptr;
    if (first == am_.first) return &am_;
    return first == pm_.first ? &pm_ : nullptr;
  }

  static std::string Expanded(const std::string& token, const TSign& sign) {
    const std::string last = Last(token);
    if (sign.text.empty() || AnsiUpperCase(last) != sign.first) return token;
    return token.substr(0, token.size() - last.size()) + sign.text;
  }

  static std::string MissingField(const std::string& field) {
    if (std::string_view("HMNS").find(field[0]) == std::string_view::npos) return "";
    return field[0] == 'H' && Locale().LongTimeFormat.find("AMPM") != std::string::npos ? "12" : "00";
  }

  std::string text_;  // what isn't read yet
  TSign am_, pm_;
  bool holdsDate_ = false, holdsTime_ = false, isClassified_ = false;
  bool dateIsEmpty_ = true, timeIsEmpty_ = true;
  TDateTime result_ = 0;
};

}  // namespace vx::fuzz
