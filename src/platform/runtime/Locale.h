// Locale.h: how dates, times and numbers look where this program runs.
//
// One settings record serves the whole program. It is read from the environment (LC_ALL, LC_TIME, LANG, ...) when the
// program starts, without touching the C library's own locale, and stays as it is until somebody assigns to it:
//
//   Locale().DecimalSeparator = ',';          // a program's choice
//   const TLocaleScope scope(ClassicLocale()); // a test's choice, taken back at the end of the block
//
// Formats are those of FormatDateTime (DateTime.h): "M/d/yyyy", "h:mm:ss AMPM". A date format separates its fields by
// DateSeparator itself; a time format always writes ':', which prints as TimeSeparator.
//
// What the environment says is simplified on purpose: year, month and day in the country's order with the country's
// separator, if that is a single byte and no blank, and always four digits of the year, since texts of dates are used
// as keys. A currency stands in front of the amount, or a blank behind it, and has two decimals. The "C" and "POSIX"
// locales, an unknown one and none at all give ClassicLocale().
//
// Main thread only.
#pragma once

#include <array>
#include <string>

namespace vx {

/// Formats, separators and names. Texts are UTF-8, separators are single bytes.
struct TLocaleSettings {
  std::string ShortDateFormat;  ///< "M/d/yyyy"
  std::string LongDateFormat;   ///< "dddd, mmmm d, yyyy"
  std::string ShortTimeFormat;  ///< "h:mm AMPM"
  std::string LongTimeFormat;   ///< "h:mm:ss AMPM"; a clock of 24 hours has no "AMPM"
  char DateSeparator = '/';
  char TimeSeparator = ':';
  std::string TimeAMString;  ///< empty where the country has no such sign
  std::string TimePMString;
  char DecimalSeparator = '.';
  char ThousandSeparator = ',';
  std::string CurrencyString;  ///< "$"
  std::string MoneyFormat;     ///< "$n": where '$' stands for CurrencyString and 'n' for the amount without its sign
  std::string NegMoneyFormat;  ///< the same for an amount below zero: "-$n", "($n)"
  std::array<std::string, 12> ShortMonthNames;  ///< January first
  std::array<std::string, 12> LongMonthNames;
  std::array<std::string, 7> ShortDayNames;  ///< Sunday first
  std::array<std::string, 7> LongDayNames;

  bool operator==(const TLocaleSettings&) const = default;
};

/// The settings in force. Read anew by every function that prints or reads; nobody keeps a copy unless its header says
/// so.
TLocaleSettings& Locale();

/// English names, M/d/yyyy, h:mm:ss AMPM, '/', ':', '.' and ',', $1.00 and ($1.00). The same on every machine.
TLocaleSettings ClassicLocale();

/// What the environment of this process asks for; ClassicLocale() if it asks for nothing that is installed.
TLocaleSettings LocaleOfEnvironment();

// -- From the system's way of telling it ----------------------------------------------------------------------------

/// A locale as the C library tells it: strftime patterns and plain texts.
struct TSystemLocaleItems {
  std::string DateFormat;    ///< "%m/%d/%Y"
  std::string TimeFormat;    ///< "%H:%M:%S", or "%r" for TimeFormat12
  std::string TimeFormat12;  ///< "%I:%M:%S %p"
  std::string AM, PM, Radix, ThousandsSeparator;
  std::string Currency = {};  ///< a sign for its place and the text: "-$" stands before the amount, "+kr" behind it
  std::array<std::string, 12> ShortMonths, LongMonths;
  std::array<std::string, 7> ShortDays, LongDays;
};

/// Turns the system's items into settings. Empty or broken texts (not UTF-8) take those of ClassicLocale().
TLocaleSettings SettingsOf(const TSystemLocaleItems& items);

// -- Scope ----------------------------------------------------------------------------------------------------------

/// Puts settings in force for the life of the object, then restores what was before.
class TLocaleScope {
 public:
  explicit TLocaleScope(TLocaleSettings settings);
  ~TLocaleScope();
  TLocaleScope(const TLocaleScope&) = delete;
  TLocaleScope& operator=(const TLocaleScope&) = delete;

 private:
  TLocaleSettings saved_;
};

}  // namespace vx
