// DateTime.h: dates and times as one number.
//
// A TDateTime counts days since 1899-12-30; the fraction is the time of day. Before that day the fraction still counts
// forward within its day: the whole part is the truncated number, the time is the fraction's absolute value.
//
//   EncodeDate(2024, 2, 29)                          // 45351.0
//   EncodeDate(2024, 2, 29) + EncodeTime(18, 0, 0, 0)  // 45351.75
//   DecodeDate(-1.25, y, m, d)                       // 1899-12-29, at 06:00
//   FormatDateTime("yyyy-mm-dd hh:nn", 45351.75)     // "2024-02-29 18:00"
//
// Dates run from 0001-01-01 to 9999-12-31 in the Gregorian calendar, extended backwards. Times are told to the
// millisecond; what rounds up to midnight is midnight of the next day, in the date as well as in the time.
//
// Errors. Making a date or reading a text raises EConvertError, which names what was given. Taking a number apart never
// raises: a number without a place in the calendar (also NaN and infinities) has year, month and day 0.
//
// Cost. Encoding and decoding take a few nanoseconds, text some hundreds. Formats and orders come from Locale() at each
// call. Main thread only where text is concerned.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vx {

using TDateTime = double;

constexpr TDateTime kFirstDate = -693593.0;  ///< 0001-01-01
constexpr TDateTime kLastDate = 2958465.0;   ///< 9999-12-31
constexpr std::int32_t kMillisecondsPerDay = 86'400'000;

// -- Calendar -------------------------------------------------------------------------------------------------------

bool IsLeapYear(std::int32_t year);
/// Days of `month` (1..12) in `year`; 0 for any other month.
std::int32_t DaysInMonth(std::int32_t year, std::int32_t month);
/// Midnight of a day. Raises EConvertError if there is no such day in the years 1 to 9999.
TDateTime EncodeDate(std::int32_t year, std::int32_t month, std::int32_t day);
/// As EncodeDate; false, and `date` untouched, if there is no such day.
bool TryEncodeDate(std::int32_t year, std::int32_t month, std::int32_t day, TDateTime& date);
/// Takes the date apart; 0, 0, 0 if it isn't in the calendar.
void DecodeDate(TDateTime date, std::uint16_t& year, std::uint16_t& month, std::uint16_t& day);
/// 1 is Sunday, 7 is Saturday; 0 for NaN and infinities.
std::int32_t DayOfWeek(TDateTime date);

// -- Time of day ----------------------------------------------------------------------------------------------------

/// A fraction of a day, from 00:00:00.000 to 23:59:59.999. Raises EConvertError outside.
TDateTime EncodeTime(std::int32_t hour, std::int32_t minute, std::int32_t second, std::int32_t millisecond);
bool TryEncodeTime(std::int32_t hour, std::int32_t minute, std::int32_t second, std::int32_t millisecond,
                   TDateTime& time);
/// The time of day, rounded to the millisecond; midnight for NaN and infinities.
void DecodeTime(TDateTime time, std::uint16_t& hour, std::uint16_t& minute, std::uint16_t& second,
                std::uint16_t& millisecond);

// -- To text --------------------------------------------------------------------------------------------------------

/// Prints by a format whose fields are, in either letter case:
///
///   d dd        day of the month           h hh    hour                       c    ddddd, and tt unless it is midnight
///   ddd dddd    day's name                 n nn    minute                     t    ShortTimeFormat
///   ddddd       ShortDateFormat            s ss    second                     tt   LongTimeFormat
///   dddddd      LongDateFormat             z zzz   millisecond                /    DateSeparator
///   m mm        month                      am/pm   these letters              :    TimeSeparator
///   mmm mmmm    month's name               a/p     these letters
///   y yy yyyy   year                       ampm    TimeAMString, TimePMString
///
/// Single letters print without leading zeros. "m" and "mm" are minutes when the field before them is the hour. With
/// any of the am/pm fields in the format, hours count from 1 to 12. A longer run of a letter is its longest field. Text
/// in 'quotes' or "quotes" and everything else is copied. An empty format is "c". Formats named by other formats may
/// name no further.
std::string FormatDateTime(std::string_view format, TDateTime date);
std::string DateToStr(TDateTime date);      ///< by ShortDateFormat
std::string TimeToStr(TDateTime time);      ///< by LongTimeFormat
std::string DateTimeToStr(TDateTime date);  ///< by "c"

// -- From text ------------------------------------------------------------------------------------------------------

/// Reads day, month and year as numbers, in the order of ShortDateFormat, with DateSeparator between. Blanks around
/// numbers and a separator at the end are skipped. A year of one or two digits is 2000 to 2039, or 1940 to 1999. Raises
/// EConvertError.
TDateTime StrToDate(std::string_view text);
/// False, and `date` untouched, where StrToDate would raise.
bool TryStrToDate(std::string_view text, TDateTime& date);
/// Reads hours, then minutes, seconds and, behind DecimalSeparator, a fraction of a second, each of which may be
/// missing. A sign for the half of the day (the locale's, or AM and PM) stands at either end, or between two numbers in
/// place of the separator or in front of it. Raises EConvertError.
TDateTime StrToTime(std::string_view text);
/// False, and `time` untouched, where StrToTime would raise.
bool TryStrToTime(std::string_view text, TDateTime& time);

}  // namespace vx
