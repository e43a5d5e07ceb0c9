// How the engine's time grows with the number of rows: each operation at 10^4, 10^5 and 10^6 random rows, and the
// power of n log n that fits the three medians of the thread's own time best (least squares of the logarithms): 1 grows
// as n log n does, less grows slower.
//
//   insert   row by row, with one cursor open
//   sort     by date descending, then text without case
//   filter   the rows with one value of an integer column
//   bucket   events by week and item, six aggregates of a value
//   walk     a cursor from the first row to the last, reading a value of each
//
//   ./dev bench growth
#include <array>
#include <cmath>
#include <map>

#include "FilledTable.h"
#include "Timing.h"
#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Locale.h"

namespace {

using namespace vx;
using namespace bench;

constexpr std::array<std::int32_t, 3> kSizes = {10'000, 100'000, 1'000'000};

std::shared_ptr<std::vector<TPlainRow>> Rows(std::int32_t count) {
  auto rows = std::make_shared<std::vector<TPlainRow>>(MakeRows());
  rows->resize(static_cast<std::size_t>(count));
  return rows;
}

/// Events over the whole horizon.
std::vector<TPlainEvent> Events(std::int32_t count) {
  const std::vector<TPlainEvent> all = MakeEvents();
  std::vector<TPlainEvent> some;
  for (std::size_t i = 0; i < all.size(); i += static_cast<std::size_t>(kRows / count)) some.push_back(all[i]);
  return some;
}

// -- Operations -------------------------------------------------------------------------------------------------------

TWork Insert(std::int32_t count) {
  const auto rows = Rows(count);
  const auto filled = std::make_shared<std::unique_ptr<TFilledTable>>();
  return {.before = [=] { filled->reset(); }, .body = [=] { *filled = TableOf(*rows); }};
}

TWork Sort(std::int32_t count) {
  const std::shared_ptr<TFilledTable> filled = TableOf(*Rows(count));
  TVXList& list = *filled->table->Get_MainRecordList();
  const std::vector<void*> unsorted(list.Data(), list.Data() + list.Count());
  return {.before = [=, &list] { std::copy(unsorted.begin(), unsorted.end(), list.Data()); },
          .body = [=] { filled->cursor->Sort("Date.D;Text"); }};
}

TWork Filter(std::int32_t count) {
  const std::shared_ptr<TFilledTable> filled = TableOf(*Rows(count));
  TVXRAMFieldDef* const number = filled->table->Get_FieldDefs()->Get_Item(kNumber);
  return {.before = [=] { filled->cursor->Get_Filter()->SetFilter(nullptr, Variant()); },
          .body = [=] { filled->cursor->Get_Filter()->SetFilter(number, Variant(500)); }};
}

TWork Bucket(std::int32_t count) {
  const std::shared_ptr<TFilledTable> filled = EventTableOf(Events(count));
  const auto folds = SixFolds();
  return {.before = [=] { filled->table->CloseCursor(filled->cursor); },
          .body = [=] { OpenWeekBuckets(*filled, *folds); }};
}

TWork Walk(std::int32_t count) {
  const std::shared_ptr<TFilledTable> filled = TableOf(*Rows(count));
  const auto read = std::make_shared<std::int32_t>(0);
  return {.before = [=] { *read = 0; },
          .body =
              [=] {
                TVXRAMCursor& cursor = *filled->cursor;
                for (cursor.GoToFirstRec(); cursor.GoToNextRec() == kDone;)
                  *read += cursor.Get_Value(kNumber).AsInteger() < 1000 ? 1 : 0;
              },
          .after = [=] { return *read == count ? "" : Differs("rows", count, *read); }};
}

// -- The fit ----------------------------------------------------------------------------------------------------------

/// Medians in milliseconds by number of rows.
using TMedians = std::map<double, double>;

double ExponentOf(const TMedians& medians) {
  double sumX = 0, sumY = 0, sumXX = 0, sumXY = 0;
  for (const auto& [rows, time] : medians) {
    const double x = std::log(rows * std::log(rows));
    const double y = std::log(time);
    sumX += x, sumY += y, sumXX += x * x, sumXY += x * y;
  }
  const auto count = static_cast<double>(medians.size());
  return (count * sumXY - sumX * sumY) / (count * sumXX - sumX * sumX);
}

void PrintFits(const std::map<std::string, TMedians>& all) {
  for (const auto& [name, medians] : all) {
    if (medians.size() < kSizes.size()) continue;
    std::printf("%-8s", name.c_str());
    for (const auto& [rows, time] : medians) std::printf("%10.3f ms at 10^%.0f", time, std::log10(rows));
    std::printf("    (n log n)^%.2f\n", ExponentOf(medians));
  }
}

void RegisterSizes(const std::string& name, TWork (*make)(std::int32_t), TMedians& medians) {
  for (const std::int32_t size : kSizes)
    benchmark::RegisterBenchmark(("growth/" + name + "/rows:" + std::to_string(size)).c_str(),
                                 [=, &medians](benchmark::State& state) {
                                   RunWork(state, make(size));
                                   medians[size] = state.counters["worked_ms"];
                                 })
        ->Iterations(kRuns)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
  GVXStartOfWeek = 2;  // weeks begin on Monday
  Locale() = ClassicLocale();
  std::map<std::string, TMedians> medians;
  RegisterSizes("insert", Insert, medians["insert"]);
  RegisterSizes("sort", Sort, medians["sort"]);
  RegisterSizes("filter", Filter, medians["filter"]);
  RegisterSizes("bucket", Bucket, medians["bucket"]);
  RegisterSizes("walk", Walk, medians["walk"]);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  PrintFits(medians);
}
