#include "platform/runtime/Locale.h"

#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>

namespace vx {

namespace {

// -- Patterns -------------------------------------------------------------------------------------------------------

/// What the strftime fields of a pattern are, in order, as letters of ours; and the first sign that stands between two.
struct TPatternShape {
  std::string fields;
  char separator = 0;
};

bool IsSeparator(char c) { return c == '/' || c == '-' || c == '.' || c == ':' || c == ' '; }

/// The field of a strftime letter: year, month (name: b), day, hour of 24 or 12 (I), minute (N), second, half of the
/// day (p).
char FieldOf(char letter) {
  constexpr std::string_view kFrom = "YymbhBdeHkIlMSpP";
  constexpr std::string_view kTo = "yymbbbddHHIINSpp";
  const std::size_t at = kFrom.find(letter);
  return at == std::string_view::npos ? '\0' : kTo[at];
}

/// Patterns that stand for others.
std::string Expanded(std::string_view pattern, std::string_view twelveHours) {
  std::string text;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    const std::string_view two = pattern.substr(at, 2);
    const std::string_view meaning = two == "%D"   ? "%m/%d/%Y"
                                     : two == "%F" ? "%Y-%m-%d"
                                     : two == "%T" ? "%H:%M:%S"
                                     : two == "%R" ? "%H:%M"
                                     : two == "%r" ? (twelveHours.empty() ? "%I:%M:%S %p" : twelveHours)
                                                   : "";
    text += meaning.empty() ? pattern.substr(at, 1) : meaning;
    if (!meaning.empty()) ++at;
  }
  return text;
}

TPatternShape ShapeOf(std::string_view pattern) {
  TPatternShape shape;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    if (pattern[at] != '%') {
      if (!shape.fields.empty() && shape.separator == 0 && IsSeparator(pattern[at])) shape.separator = pattern[at];
      continue;
    }
    at = std::min(pattern.find_first_not_of("-_0^#EO", at + 1),
                  pattern.size());  // flags and alternatives say nothing to us
    const char field = at < pattern.size() ? FieldOf(pattern[at]) : '\0';
    if (field != 0 && shape.fields.find(field) == std::string::npos) shape.fields += field;
  }
  return shape;
}

bool HasOnce(std::string_view fields, std::string_view oneOf) {
  return std::count_if(fields.begin(), fields.end(),
                       [oneOf](char field) { return oneOf.find(field) != std::string_view::npos; }) == 1;
}

void SetDateFormats(TLocaleSettings& settings, std::string_view pattern) {
  const TPatternShape shape = ShapeOf(pattern);
  std::string_view fields = shape.fields;
  if (!HasOnce(fields, "y") || !HasOnce(fields, "mb") || !HasOnce(fields, "d")) return;
  // A blank ends the date in a text of date and time, a colon belongs to the time.
  const bool usable = shape.separator != 0 && shape.separator != ' ' && shape.separator != ':';
  settings.DateSeparator = usable ? shape.separator : '/';
  settings.ShortDateFormat.clear();
  std::string order;
  for (const char field : fields) {
    const std::string_view text = field == 'y'   ? "yyyy"
                                  : field == 'm' ? "M"
                                  : field == 'b' ? "MMM"
                                  : field == 'd' ? "d"
                                                 : "";
    if (text.empty()) continue;
    if (!order.empty()) settings.ShortDateFormat += settings.DateSeparator;
    settings.ShortDateFormat += text;
    order += field;
  }
  settings.LongDateFormat = order.front() == 'y'   ? "dddd, yyyy mmmm d"
                            : order.front() == 'd' ? "dddd, d mmmm yyyy"
                                                   : "dddd, mmmm d, yyyy";
}

void SetTimeFormats(TLocaleSettings& settings, std::string_view pattern) {
  const TPatternShape shape = ShapeOf(pattern);
  const std::size_t hour = shape.fields.find_first_of("HI");
  if (hour == std::string::npos || shape.fields.find('N') == std::string::npos) return;
  settings.TimeSeparator = shape.separator == 0 || shape.separator == ' ' ? ':' : shape.separator;
  if (shape.fields[hour] == 'H' || settings.TimeAMString.empty() || settings.TimePMString.empty()) {
    settings.ShortTimeFormat = "HH:mm";
    settings.LongTimeFormat = "HH:mm:ss";
    return;
  }
  const bool signInFront = shape.fields.find('p') < hour;
  settings.ShortTimeFormat = signInFront ? "AMPM h:mm" : "h:mm AMPM";
  settings.LongTimeFormat = signInFront ? "AMPM h:mm:ss" : "h:mm:ss AMPM";
}

// -- Texts ----------------------------------------------------------------------------------------------------------

/// A locale of another code set gives bytes that aren't UTF-8; most of them have no form of it either, so form is all
/// we ask.
bool LooksLikeUtf8(std::string_view text) {
  std::size_t following = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool continues = (byte & 0xC0u) == 0x80u;
    if (continues != (following > 0)) return false;
    following = continues ? following - 1 : byte < 0x80 ? 0 : byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : 1;
  }
  return following == 0;
}

template <std::size_t N>
void TakeNames(std::array<std::string, N>& names, const std::array<std::string, N>& given) {
  const auto usable = [](const std::string& name) { return !name.empty() && LooksLikeUtf8(name); };
  if (std::all_of(given.begin(), given.end(), usable)) names = given;
}

/// Group signs are often some kind of narrow blank, of several bytes.
char ThousandSeparatorOf(const std::string& given, char decimal) {
  if (given.size() == 1 && given[0] != decimal) return given[0];
  if (given.size() > 1) return ' ';
  return decimal == ',' ? '.' : ',';
}

void SetMoneyFormats(TLocaleSettings& settings, std::string_view given) {
  if (given.size() < 2 || !LooksLikeUtf8(given)) return;
  settings.CurrencyString = given.substr(1);
  settings.MoneyFormat = given.front() == '+' ? "n $" : "$n";
  settings.NegMoneyFormat = "-" + settings.MoneyFormat;
}

// -- The environment ------------------------------------------------------------------------------------------------

using TSystemLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, decltype(&freelocale)>;

/// Name of the locale that the environment asks for; empty for none.
std::string_view EnvironmentLocaleName() {
  for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"})
    if (const char* name = std::getenv(variable); name != nullptr && *name != '\0') return name;
  return {};
}

bool IsClassicName(std::string_view name) {
  return name.empty() || name == "C" || name == "POSIX" || name.substr(0, 2) == "C.";
}

template <std::size_t N>
std::array<std::string, N> Texts(locale_t locale, nl_item first) {
  std::array<std::string, N> texts;
  for (nl_item item = first; std::string & text : texts) text = nl_langinfo_l(item++, locale);
  return texts;
}

TSystemLocaleItems ItemsOf(locale_t locale) {
  const auto text = [locale](nl_item item) { return std::string(nl_langinfo_l(item, locale)); };
  return {.DateFormat = text(D_FMT),
          .TimeFormat = text(T_FMT),
          .TimeFormat12 = text(T_FMT_AMPM),
          .AM = text(AM_STR),
          .PM = text(PM_STR),
          .Radix = text(RADIXCHAR),
          .ThousandsSeparator = text(THOUSEP),
          .Currency = text(CRNCYSTR),
          .ShortMonths = Texts<12>(locale, ABMON_1),
          .LongMonths = Texts<12>(locale, MON_1),
          .ShortDays = Texts<7>(locale, ABDAY_1),
          .LongDays = Texts<7>(locale, DAY_1)};
}

/// Read at the program's start, so that what the program later does to its environment doesn't count.
[[maybe_unused]] const TLocaleSettings& readAtStart = Locale();

}  // namespace

// -- Settings -------------------------------------------------------------------------------------------------------

TLocaleSettings& Locale() {
  static TLocaleSettings settings = LocaleOfEnvironment();
  return settings;
}

TLocaleSettings ClassicLocale() {
  return {.ShortDateFormat = "M/d/yyyy",
          .LongDateFormat = "dddd, mmmm d, yyyy",
          .ShortTimeFormat = "h:mm AMPM",
          .LongTimeFormat = "h:mm:ss AMPM",
          .DateSeparator = '/',
          .TimeSeparator = ':',
          .TimeAMString = "AM",
          .TimePMString = "PM",
          .DecimalSeparator = '.',
          .ThousandSeparator = ',',
          .CurrencyString = "$",
          .MoneyFormat = "$n",
          .NegMoneyFormat = "($n)",
          .ShortMonthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"},
          .LongMonthNames = {"January", "February", "March", "April", "May", "June", "July", "August", "September",
                             "October", "November", "December"},
          .ShortDayNames = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"},
          .LongDayNames = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"}};
}

TLocaleSettings LocaleOfEnvironment() {
  if (IsClassicName(EnvironmentLocaleName())) return ClassicLocale();
  const TSystemLocale locale(newlocale(LC_ALL_MASK, "", nullptr), &freelocale);
  return locale == nullptr ? ClassicLocale() : SettingsOf(ItemsOf(locale.get()));
}

TLocaleSettings SettingsOf(const TSystemLocaleItems& items) {
  TLocaleSettings settings = ClassicLocale();
  if (LooksLikeUtf8(items.AM) && LooksLikeUtf8(items.PM)) {
    settings.TimeAMString = items.AM;
    settings.TimePMString = items.PM;
  }
  SetDateFormats(settings, Expanded(items.DateFormat, {}));
  SetTimeFormats(settings, Expanded(items.TimeFormat, items.TimeFormat12));
  settings.DecimalSeparator = items.Radix.size() == 1 ? items.Radix[0] : '.';
  settings.ThousandSeparator = ThousandSeparatorOf(items.ThousandsSeparator, settings.DecimalSeparator);
  SetMoneyFormats(settings, items.Currency);
  TakeNames(settings.ShortMonthNames, items.ShortMonths);
  TakeNames(settings.LongMonthNames, items.LongMonths);
  TakeNames(settings.ShortDayNames, items.ShortDays);
  TakeNames(settings.LongDayNames, items.LongDays);
  return settings;
}

// -- Scope ----------------------------------------------------------------------------------------------------------

TLocaleScope::TLocaleScope(TLocaleSettings settings) : saved_(std::exchange(Locale(), std::move(settings))) {}

TLocaleScope::~TLocaleScope() { Locale() = std::move(saved_); }

}  // namespace vx
