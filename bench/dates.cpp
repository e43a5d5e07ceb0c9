// Dates and durations to text and back: what a grid pays for a cell, a bucketer for a key and a loader for a field. A
// thousand calls each, so a time in milliseconds is that of one call in microseconds; none is to take 1. Runs are short
// enough to fit between two turns of other programs.
//
//   ./dev bench dates
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>

#include "Timing.h"
#include "datetime/VXDateFunc_UNT.h"
#include "datetime/VXDateGroup_UNT.h"
#include "platform/runtime/Locale.h"

namespace {

using namespace vx;
using namespace bench;

constexpr int kValues = 1000;

/// Days and seconds, spread over the years that can be typed.
std::vector<TDateTime> Dates() {
  std::vector<TDateTime> dates;
  for (int i = 0; i < kValues; ++i) dates.push_back(25570 + i * 24 + (i * 7919 % 86'400) / 86'400.0);
  return dates;
}

/// From no time at all to half a lifetime.
std::vector<std::int32_t> Lengths() {
  std::vector<std::int32_t> lengths;
  for (int i = 0; i < kValues; ++i) lengths.push_back(static_cast<std::int32_t>(std::exp(i * 0.021)) - 1);
  return lengths;
}

/// The texts of values.
template <class T, class Print>
std::vector<std::string> Texts(const std::vector<T>& values, Print print) {
  std::vector<std::string> texts;
  for (const T& value : values) texts.push_back(print(value));
  return texts;
}

template <class T>
double Sum(const std::vector<T>& values) {
  double sum = 0;
  for (const T& value : values) sum += value;
  return sum;
}

double Weight(double answer) { return answer; }
double Weight(const std::string& answer) { return static_cast<double>(answer.size()); }

/// Calls for each of the values. The answers, texts by their lengths, sum up to `expected`.
template <class T, class Call>
void Measure(const std::string& name, const std::vector<T>& values, std::optional<double> expected, Call call) {
  Register("dates/" + name + "/calls:1000", [=] {
    auto sum = std::make_shared<double>();
    return TWork{.body =
                     [=] {
                       *sum = 0;
                       for (const T& value : values) *sum += Weight(call(value));
                     },
                 .after =
                     [=] {
                       const bool agrees = !expected || std::abs(*sum - *expected) < 0.01;
                       return agrees ? std::string() : Differs("answers", *expected, *sum);
                     }};
  });
}

void RegisterGroups() {
  for (const auto mode : {vxgrOneDay, vxgrOneWeek, vxgrOneMonth, vxgrOneYear, vxgrOneCentury})
    Measure("GetGroupDate_" + GetGroupName(mode), Dates(), std::nullopt,
            [mode](TDateTime date) { return GetGroupDate(mode, date); });
  Measure("DateToWeekNumber", Dates(), std::nullopt, [](TDateTime date) {
    std::uint16_t year = 0;
    return DateToWeekNumber(date, year);
  });
}

void RegisterDates() {
  const auto dates = Dates();
  const auto read = [](const std::string& text) { return StrToSysDate(text, false); };
  Measure("SysDateToStr", dates, 23.0 * kValues, SysDateToStr);
  Measure("SysDateToDateStr", dates, 10.0 * kValues, SysDateToDateStr);
  Measure("StrToSysDate", Texts(dates, SysDateToStr), Sum(dates), read);
  Measure("StrToSysDate_date", Texts(dates, SysDateToDateStr), std::nullopt, read);
  Measure("StrToDate", Texts(dates, DateToStr), std::nullopt, StrToDate);
  Measure("StrToTime", Texts(dates, TimeToStr), std::nullopt, StrToTime);
}

void RegisterDurations() {
  const auto lengths = Lengths();
  const auto print = [](double length) { return DurationToStr(length, 12, vxduAuto); };
  Measure("DurationToStr", lengths, std::nullopt, print);
  Measure("DurationToExpandedStr", lengths, std::nullopt, DurationToExpandedStr);
  Measure("StrToDuration", Texts(lengths, print), Sum(lengths),
          [](const std::string& text) { return StrToDuration(text, vxduSec); });
}

}  // namespace

int main(int argc, char** argv) {
  Locale() = ClassicLocale();
  RegisterGroups();
  RegisterDates();
  RegisterDurations();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
