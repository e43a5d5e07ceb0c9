// What single edits of a large table cost, what a filled table weighs, and sorts of every shape.
//
//   memory   resident bytes after filling, for each byte that rows and their list entries need
//   delete   a million rows through a cursor, the front one each time, or any
//   insert   rows into a table with a user index of distinct keys, or with a bucketer of a million rows open
//   update   rows along such an index, each of which gets another key
//   sorts    by columns full of equal values, of sorted, reversed and random rows; the quicksort's worst input
//
//   ./dev bench edits
//
// An edit that costs too much is given up after kPatience; `done` tells how far it got.
#include <numeric>
#include <span>

#include "FilledTable.h"
#include "Timing.h"
#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Locale.h"

namespace {

using namespace vx;
using namespace bench;
using TClock = std::chrono::steady_clock;

constexpr std::int32_t kInserts = 100'000;
constexpr std::chrono::seconds kPatience(20);

double Microseconds(TClock::duration elapsed) { return std::chrono::duration<double, std::micro>(elapsed).count(); }

// -- Memory -----------------------------------------------------------------------------------------------------------

void FilledMemory(benchmark::State& state) {
  const std::vector<TPlainRow> rows = MakeRows();
  for (auto _ : state) {
    const double before = ResidentMiB();
    const auto filled = TableOf(rows);
    const double needed = static_cast<double>(kRows) * (filled->table->Get_RecSize() + 8) / (1024 * 1024);
    state.counters["added_MiB"] = ResidentMiB() - before;
    state.counters["of_needed"] = (ResidentMiB() - before) / needed;
  }
}

// -- Edits one by one -------------------------------------------------------------------------------------------------

/// Times `edit(i)` for i from 0 to count - 1, each by itself.
template <class Edit>
void RunEdits(benchmark::State& state, std::int32_t count, const Edit& edit) {
  std::vector<double> times;
  times.reserve(static_cast<std::size_t>(count));
  for (auto _ : state) {
    const auto start = TClock::now();
    auto last = start;
    for (std::int32_t i = 0; i < count && last - start < kPatience; ++i) {
      edit(i);
      const auto now = TClock::now();
      times.push_back(Microseconds(now - last));
      last = now;
    }
    state.SetIterationTime(Microseconds(last - start) / 1e6);
  }
  std::sort(times.begin(), times.end());
  state.counters["done"] = static_cast<double>(times.size());
  state.counters["median_us"] = times[times.size() / 2];
  state.counters["p99_us"] = times[times.size() * 99 / 100];
}

void Delete(benchmark::State& state, bool random) {
  const std::unique_ptr<TFilledTable> filled = TableOf(MakeRows());
  TVXRAMCursor& cursor = *filled->cursor;
  TRandom dice(21);
  RunEdits(state, kRows, [&](std::int32_t) {
    const auto rows = static_cast<std::uint32_t>(cursor.Get_RecordCount());
    const auto at = static_cast<std::int32_t>(random ? dice.Below(rows) : 0);
    cursor.InternalDeleteRecord(static_cast<TVXRAMRow*>(cursor.Get_ActiveRecordList()->Items(at)));
  });
}

void InsertUnderIndex(benchmark::State& state) {
  const std::vector<TPlainRow> rows = MakeRows();  // the amounts all differ
  const auto filled = TableForRows();
  filled->table->Get_Indices()->Add()->Set_FieldName("Amount");
  filled->OpenCursor();
  const auto record = filled->table->NewRecord();
  RunEdits(state, kInserts,
           [&](std::int32_t i) { AddRow(*filled->table, *record, rows[static_cast<std::size_t>(i)]); });
}

void UpdateUnderIndex(benchmark::State& state) {
  const std::vector<TPlainRow> rows = MakeRows();
  const auto filled = TableForRows();
  filled->table->Get_Indices()->Add()->Set_FieldName("Amount");
  filled->OpenCursor(/*index=*/0);
  const auto record = filled->table->NewRecord();
  for (const TPlainRow& row : std::span(rows).first(kInserts)) AddRow(*filled->table, *record, row);
  RunEdits(state, kInserts, [&](std::int32_t i) {
    filled->cursor->Set_RecIndex(i);
    record->Field(kAmount).AssignValue(rows[static_cast<std::size_t>(kInserts + i)].amount);
    filled->cursor->UpdateRecWithValues(*record);
  });
}

void InsertUnderBuckets(benchmark::State& state) {
  const std::vector<TPlainEvent> events = MakeEvents();
  const auto filled = EventTableOf(events);
  const auto folds = SixFolds();
  const double before = ResidentMiB();
  OpenWeekBuckets(*filled, *folds);
  state.counters["bytes_a_row"] = (ResidentMiB() - before) * 1024 * 1024 / kRows;
  const auto record = filled->table->NewRecord();
  TRandom dice(22);
  RunEdits(state, kInserts, [&](std::int32_t) { AddEvent(*filled->table, *record, events[dice.Below(kRows)]); });
}

// -- Sorts ------------------------------------------------------------------------------------------------------------

using TRows = std::vector<TPlainRow>;

/// Sorts by "Number" (0 to 999 unless changed), "Number;Flag" and the like.
TWork SortOf(const TRows& rows, const char* wish) {
  const std::shared_ptr<TFilledTable> filled = TableOf(rows);
  TVXList& list = *filled->table->Get_MainRecordList();
  const std::vector<void*> unsorted(list.Data(), list.Data() + list.Count());
  return {.before = [=, &list] { std::copy(unsorted.begin(), unsorted.end(), list.Data()); },
          .body = [=] { filled->cursor->Sort(wish); }};
}

template <class Change>
TRows Changed(const Change& change) {
  TRows rows = MakeRows();
  for (std::size_t i = 0; i < rows.size(); ++i) change(rows[i], static_cast<std::int32_t>(i));
  return rows;
}

TRows Items() {
  return Changed([](TPlainRow& row, std::int32_t) { row.number %= kItems; });
}
TRows Texts() {  // 50 texts, alike in their first twenty letters
  return Changed([](TPlainRow& row, std::int32_t) {
    std::snprintf(row.text, sizeof row.text, "Hydraulic press line %d", row.number % kItems);
  });
}
TRows Rising() {
  return Changed([](TPlainRow& row, std::int32_t i) { row.number = i; });
}
TRows Falling() {
  return Changed([](TPlainRow& row, std::int32_t i) { row.number = -i; });
}
TRows Pairs() {
  return Changed([](TPlainRow& row, std::int32_t i) {
    row.number = static_cast<std::int32_t>(TRandom(static_cast<std::uint64_t>(i / 2)).Next() >> 33);
  });
}

/// Numbers whose greatest stands in the middle of every part that the quicksort makes. `ties`: the two least are equal.
TRows WorstRows(std::size_t count, bool ties) {
  std::vector<std::int32_t> numbers(count);
  std::iota(numbers.begin(), numbers.end(), 0);
  for (std::size_t last = 1; last < count; ++last) std::swap(numbers[last / 2], numbers[last]);
  TRows rows = MakeRows();
  rows.resize(count);
  for (std::size_t i = 0; i < count; ++i) rows[i].number = ties ? std::max(numbers[i], 1) : numbers[i];
  return rows;
}

void RegisterSorts() {
  Register("edits/sorts/rows:1000000/key:integer_of_50", [] { return SortOf(Items(), "Number"); });
  Register("edits/sorts/rows:1000000/keys:integer_of_50,flag", [] { return SortOf(Items(), "Number;Flag.D"); });
  Register("edits/sorts/rows:1000000/key:text_of_50", [] { return SortOf(Texts(), "Text"); });
  Register("edits/sorts/rows:1000000/key:integer_in_pairs", [] { return SortOf(Pairs(), "Number"); });
  Register("edits/sorts/rows:1000000/key:integer_sorted", [] { return SortOf(Rising(), "Number"); });
  Register("edits/sorts/rows:1000000/key:integer_reversed", [] { return SortOf(Falling(), "Number"); });
  Register("edits/sorts/rows:1000000/key:double", [] { return SortOf(MakeRows(), "Amount"); });
  Register("edits/sorts/rows:1000000/key:text", [] { return SortOf(MakeRows(), "Text"); });
  for (const std::size_t count : {10'000u, 30'000u, 100'000u}) {
    const std::string name = "edits/sorts/rows:" + std::to_string(count) + "/worst";
    Register(name, [=] { return SortOf(WorstRows(count, false), "Number"); });
    Register(name + "_with_two_equal", [=] { return SortOf(WorstRows(count, true), "Number"); });
  }
}

template <class Run>
void RegisterOnce(const char* name, const Run& run) {
  benchmark::RegisterBenchmark(name, run)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
  GVXStartOfWeek = 2;  // weeks begin on Monday
  Locale() = ClassicLocale();
  benchmark::RegisterBenchmark("edits/memory/rows:1000000", FilledMemory)->Iterations(1);
  RegisterOnce("edits/delete/rows:1000000/front_first", [](benchmark::State& state) { Delete(state, false); });
  RegisterOnce("edits/delete/rows:1000000/random", [](benchmark::State& state) { Delete(state, true); });
  RegisterOnce("edits/insert/rows:100000/one_user_index", InsertUnderIndex);
  RegisterOnce("edits/insert/rows:100000/bucketer_of_1000000", InsertUnderBuckets);
  RegisterOnce("edits/update/rows:100000/one_user_index", UpdateUnderIndex);
  RegisterSorts();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
