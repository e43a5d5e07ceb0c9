// The table engine against SQLite in memory and against plain C++ loops, which do nothing but the work and are the
// limit.
//
//   insert   a million rows of six columns, one by one, with one cursor open
//   sort     by date descending, then text without case
//   filter   the rows with one value of an integer column
//   bucket   a million events by week and item, six aggregates of a value, in the order of week and item
//
//   ./dev bench                 everything
//   ./dev bench sort            what matches
#include <strings.h>

#include <cmath>
#include <memory>
#include <numeric>
#include <unordered_map>

#include "FilledTable.h"
#include "Sqlite.h"
#include "Timing.h"
#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Locale.h"

namespace {

using namespace vx;
using namespace bench;

// -- The engine -------------------------------------------------------------------------------------------------------

TWork EngineInsert() {
  auto source = std::make_shared<std::vector<TPlainRow>>(MakeRows());
  auto filled = std::make_shared<std::unique_ptr<TFilledTable>>();
  return {.body = [=] { *filled = TableOf(*source); },
          .after =
              [=] {
                const std::int32_t count = (*filled)->cursor->Get_RecordCount();
                filled->reset();
                return count == kRows ? "" : Differs("rows", kRows, count);
              }};
}

TWork EngineSort() {
  std::shared_ptr<TFilledTable> filled = TableOf(MakeRows());
  TVXList& list = *filled->table->Get_MainRecordList();
  const std::vector<void*> unsorted(list.Data(), list.Data() + list.Count());
  return {.before = [=, &list] { std::copy(unsorted.begin(), unsorted.end(), list.Data()); },
          .body = [=] { filled->cursor->Sort("Date.D;Text"); },
          .after =
              [=] {
                filled->cursor->Set_RecIndex(kSortedPosition);
                const std::int32_t id = filled->cursor->Get_RecordID();
                return id == kSortedRow ? "" : Differs("sorted row", kSortedRow, id);
              }};
}

TWork EngineFilter() {
  std::shared_ptr<TFilledTable> filled = TableOf(MakeRows());
  TVXRAMFieldDef* const number = filled->table->Get_FieldDefs()->Get_Item(kNumber);
  return {.before = [=] { filled->cursor->Get_Filter()->SetFilter(nullptr, Variant()); },
          .body = [=] { filled->cursor->Get_Filter()->SetFilter(number, Variant(500)); },
          .after =
              [=] {
                const std::int32_t hits = filled->cursor->Get_RecordCount();
                return hits == kFilterHits ? "" : Differs("hits", kFilterHits, hits);
              }};
}

std::string CheckGroups(double groups, double total) {
  if (groups != static_cast<double>(kGroups)) return Differs("groups", static_cast<double>(kGroups), groups);
  return std::abs(total - kGroupsTotal) < 0.1 ? "" : Differs("total", kGroupsTotal, total);
}

std::string CheckBuckets(TVXRAMCursor& cursor) {
  double total = 0;
  std::int32_t groups = 0;
  for (cursor.GoToFirstRec(); cursor.GoToNextRec() == kDone; ++groups)
    for (std::int32_t i = 2; i < 8; ++i) total += cursor.Get_Value(i).AsDouble();
  return CheckGroups(groups, total);
}

TWork EngineBucket() {
  std::shared_ptr<TFilledTable> filled = EventTableOf(MakeEvents());
  const auto folds = SixFolds();
  return {.before = [=] { filled->table->CloseCursor(filled->cursor); },
          .body = [=] { OpenWeekBuckets(*filled, *folds); },
          .after = [=] { return CheckBuckets(*filled->cursor); }};
}

// -- SQLite -----------------------------------------------------------------------------------------------------------

std::shared_ptr<TDatabase> DatabaseOf(const std::vector<TPlainRow>& rows) {
  auto database = std::make_shared<TDatabase>();
  database->Run("CREATE TABLE t(flag INTEGER, amount REAL, date REAL, number INTEGER, text TEXT, small INTEGER)");
  TStatement insert(*database, "INSERT INTO t VALUES(?,?,?,?,?,?)");
  database->Run("BEGIN");
  for (const TPlainRow& row : rows) {
    sqlite3_bind_int(insert.Handle(), 1, row.flag);
    sqlite3_bind_double(insert.Handle(), 2, row.amount);
    sqlite3_bind_double(insert.Handle(), 3, row.date);
    sqlite3_bind_int(insert.Handle(), 4, row.number);
    sqlite3_bind_text(insert.Handle(), 5, row.text, static_cast<int>(strnlen(row.text, kTextSize)), SQLITE_STATIC);
    sqlite3_bind_int(insert.Handle(), 6, row.small);
    insert.Step();
    insert.Reset();
  }
  database->Run("COMMIT");
  return database;
}

TWork SqliteInsert() {
  auto source = std::make_shared<std::vector<TPlainRow>>(MakeRows());
  auto database = std::make_shared<std::shared_ptr<TDatabase>>();
  return {.body = [=] { *database = DatabaseOf(*source); }, .after = [=] { return database->reset(), std::string(); }};
}

TWork SqliteRowIds(const char* sql, const std::function<std::string(const std::vector<std::int64_t>&)>& check) {
  auto database = DatabaseOf(MakeRows());
  auto ids = std::make_shared<std::vector<std::int64_t>>();
  return {.body =
              [=] {
                ids->clear();
                TStatement statement(*database, sql);
                while (statement.Step()) ids->push_back(sqlite3_column_int64(statement.Handle(), 0) - 1);
              },
          .after = [=] { return check(*ids); }};
}

template <class Ids>
std::string CheckSorted(const Ids& ids) {
  const auto row = static_cast<double>(ids[kSortedPosition]);
  return row == static_cast<double>(kSortedRow) ? "" : Differs("sorted row", static_cast<double>(kSortedRow), row);
}

template <class Ids>
std::string CheckHits(const Ids& ids) {
  return ids.size() == kFilterHits ? "" : Differs("hits", kFilterHits, static_cast<double>(ids.size()));
}

TWork SqliteBucket() {
  auto database = std::make_shared<TDatabase>();
  database->Run("CREATE TABLE e(date REAL, item INTEGER, value REAL)");
  TStatement insert(*database, "INSERT INTO e VALUES(?,?,?)");
  database->Run("BEGIN");
  for (const TPlainEvent& event : MakeEvents()) {
    sqlite3_bind_double(insert.Handle(), 1, event.date);
    sqlite3_bind_int(insert.Handle(), 2, event.item);
    sqlite3_bind_double(insert.Handle(), 3, event.value);
    insert.Step();
    insert.Reset();
  }
  database->Run("COMMIT");
  auto answer = std::make_shared<std::pair<int, double>>();
  return {.body =
              [=] {
                *answer = {};
                TStatement statement(
                    *database,
                    "SELECT g.*, a.value, b.value FROM (SELECT (CAST(date AS INTEGER) - 44200) / 7 AS w,"
                    " item AS i, sum(value), min(value), max(value), avg(value), min(rowid) AS f,"
                    " max(rowid) AS l FROM e GROUP BY w, i) g"
                    " JOIN e a ON a.rowid = g.f JOIN e b ON b.rowid = g.l");
                while (statement.Step()) {
                  ++answer->first;
                  for (const int column : {2, 3, 4, 5, 8, 9})
                    answer->second += sqlite3_column_double(statement.Handle(), column);
                }
              },
          .after = [=] { return CheckGroups(answer->first, answer->second); }};
}

// -- Plain C++ --------------------------------------------------------------------------------------------------------

TWork PlainInsert() {
  auto source = std::make_shared<std::vector<TPlainRow>>(MakeRows());
  auto rows = std::make_shared<std::vector<TPlainRow>>();
  return {.body =
              [=] {
                for (const TPlainRow& row : *source) rows->push_back(row);
              },
          .after =
              [=] {
                benchmark::DoNotOptimize(rows->back().amount);
                std::vector<TPlainRow>().swap(*rows);
                return std::string();
              }};
}

TWork PlainSort() {
  auto rows = std::make_shared<std::vector<TPlainRow>>(MakeRows());
  auto order = std::make_shared<std::vector<const TPlainRow*>>(rows->size());
  return {.before =
              [=] {
                std::transform(rows->begin(), rows->end(), order->begin(), [](const TPlainRow& row) { return &row; });
              },
          .body =
              [=] {
                std::sort(order->begin(), order->end(), [](const TPlainRow* a, const TPlainRow* b) {
                  return a->date != b->date ? a->date > b->date : strncasecmp(a->text, b->text, kTextSize) < 0;
                });
              },
          .after =
              [=] {
                std::vector<std::int64_t> ids(order->size());
                std::transform(order->begin(), order->end(), ids.begin(),
                               [&](const TPlainRow* row) { return row - rows->data(); });
                return CheckSorted(ids);
              }};
}

TWork PlainFilter() {
  auto rows = std::make_shared<std::vector<TPlainRow>>(MakeRows());
  auto hits = std::make_shared<std::vector<std::uint32_t>>();
  return {.body =
              [=] {
                hits->clear();
                for (std::size_t i = 0; i < rows->size(); ++i)
                  if ((*rows)[i].number == 500) hits->push_back(static_cast<std::uint32_t>(i));
              },
          .after = [=] { return CheckHits(*hits); }};
}

struct TGroup {
  double sum = 0, least = INFINITY, greatest = -INFINITY, first = 0, last = 0;
  std::uint32_t count = 0;
  void Add(double value) {
    if (count++ == 0) first = value;
    last = value;
    sum += value;
    least = std::min(least, value);
    greatest = std::max(greatest, value);
  }
  double Total() const { return sum + least + greatest + sum / count + first + last; }
};

TWork PlainBucket() {
  auto events = std::make_shared<std::vector<TPlainEvent>>(MakeEvents());
  auto groups = std::make_shared<std::vector<std::pair<std::uint32_t, TGroup>>>();
  return {
      .body =
          [=] {
            std::unordered_map<std::uint32_t, TGroup> map;
            for (const TPlainEvent& event : *events)
              map[static_cast<std::uint32_t>(event.date - kFirstDay) / 7 * 64 + static_cast<std::uint32_t>(event.item)]
                  .Add(event.value);
            groups->assign(map.begin(), map.end());
            std::sort(groups->begin(), groups->end(), [](const auto& a, const auto& b) { return a.first < b.first; });
          },
      .after =
          [=] {
            return CheckGroups(static_cast<double>(groups->size()),
                               std::accumulate(groups->begin(), groups->end(), 0.0, [](double sum, const auto& group) {
                                 return sum + group.second.Total();
                               }));
          }};
}

void RegisterAll() {
  Register("insert/rows:1000000/kestrix", EngineInsert);
  Register("insert/rows:1000000/sqlite", SqliteInsert);
  Register("insert/rows:1000000/plain_push_back", PlainInsert);
  Register("sort/rows:1000000/keys:date_desc,text/kestrix", EngineSort);
  Register("sort/rows:1000000/keys:date_desc,text/sqlite_rowids", [] {
    return SqliteRowIds("SELECT rowid FROM t ORDER BY date DESC, text COLLATE NOCASE",
                        CheckSorted<std::vector<std::int64_t>>);
  });
  Register("sort/rows:1000000/keys:date_desc,text/plain_pointers", PlainSort);
  Register("filter/rows:1000000/key:integer/kestrix", EngineFilter);
  Register("filter/rows:1000000/key:integer/sqlite_scan",
           [] { return SqliteRowIds("SELECT rowid FROM t WHERE number = 500", CheckHits<std::vector<std::int64_t>>); });
  Register("filter/rows:1000000/key:integer/plain_scan", PlainFilter);
  Register("bucket/rows:1000000/groups:7800/kestrix", EngineBucket);
  Register("bucket/rows:1000000/groups:7800/sqlite", SqliteBucket);
  Register("bucket/rows:1000000/groups:7800/plain_unordered_map", PlainBucket);
}

}  // namespace

int main(int argc, char** argv) {
  GVXStartOfWeek = 2;  // weeks begin on Monday
  Locale() = ClassicLocale();
  RegisterAll();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
