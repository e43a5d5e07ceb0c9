// Data sets over a table of a million rows, against the cursor under them.
//
//   walk     from the first record to the last, reading one field
//   open     open and close, over a million rows and over a thousand: neither sorted nor filtered, so that the number
//            of rows doesn't matter
//   edit     every record of a sorted set, with a post for each; 100,000 rows
//   delete   every record, while a set is open that is sorted and filtered; 100,000 rows
//   locate   the last record by its text, against a walk of the cursor that compares texts
//
//   ./dev bench datasets
#include <cmath>
#include <memory>

#include "FilledTable.h"
#include "Timing.h"
#include "data/VXMemoryDataset_CMP.h"

namespace {

using namespace vx;
using namespace bench;

/// A table of the first rows, a cursor, and an open data set.
struct TSetOverTable {
  explicit TSetOverTable(std::int32_t count)
      : rows(MakeRows()), filled(TableOf(std::span(rows).first(static_cast<std::size_t>(count)))) {
    set->SetRAMTable(filled->table.get());
    set->Open();
  }
  std::vector<TPlainRow> rows;
  std::unique_ptr<TFilledTable> filled;
  TOwned<TVXMemoryDataset> set = Make<TVXMemoryDataset>(nullptr);  ///< goes first
};

std::string CheckTotal(const TSetOverTable& over, double total) {
  double expected = 0;
  for (const TPlainRow& row : over.rows) expected += row.amount;
  return total == expected ? "" : Differs("total", expected, total);
}

/// `walk` answers the total of all amounts.
template <class Walk>
TWork WalkAll(Walk walk) {
  const auto over = std::make_shared<TSetOverTable>(kRows);
  const auto total = std::make_shared<double>();
  return {.body = [=] { *total = walk(*over); }, .after = [=] { return CheckTotal(*over, *total); }};
}

double WalkCursor(TSetOverTable& over) {
  TVXRAMCursor& cursor = *over.filled->cursor;
  double total = 0;
  for (cursor.GoToFirstRec(); cursor.GoToNextRec() == kDone;) {
    double amount = 0;
    std::int32_t size = sizeof amount;
    bool isNull = false;
    cursor.GetFieldValue(kAmount, &amount, size, isNull);
    if (!isNull) total += amount;
  }
  return total;
}

double WalkDataSet(TSetOverTable& over) {
  TDataSet& set = *over.set;
  const TField& amount = *set.FieldByName("Amount");
  double total = 0;
  for (set.First(); !set.Eof(); set.Next()) total += amount.GetAsFloat();
  return total;
}

constexpr int kOpenings = 100;

TWork OpenAndClose(std::int32_t count) {
  const auto over = std::make_shared<TSetOverTable>(count);
  return {.body =
              [=] {
                for (int i = 0; i < kOpenings; ++i) {
                  over->set->Close();
                  over->set->Open();
                }
              },
          .after = [=] { return over->set->IsEmpty() ? "empty" : std::string(); }};
}

constexpr std::int32_t kFewRows = 100'000;

TWork EditAll() {
  const auto over = std::make_shared<TSetOverTable>(kFewRows);
  over->set->SetSortedField("Amount");
  return {.body =
              [=] {
                TField& number = *over->set->FieldByName("Number");
                for (over->set->First(); !over->set->Eof(); over->set->Next()) {
                  over->set->Edit();
                  number.SetAsInteger(number.GetAsInteger() + 1);
                  over->set->Post();
                }
              },
          .after = [=] { return over->set->RecordCount() == kFewRows ? "" : "records are missing"; }};
}

/// And another set on the table, sorted, its filter asked for each record.
struct TTwoSets : TSetOverTable {
  TTwoSets() : TSetOverTable(kFewRows) {
    sorted->SetRAMTable(filled->table.get());
    sorted->SetSortedField("Amount");
    sorted->SetOnFilterRecord([](TDataSet*, bool& passes) { passes = true; });
    sorted->Open();
  }
  TOwned<TVXMemoryDataset> sorted = Make<TVXMemoryDataset>(nullptr);
};

TWork DeleteAll() {
  const auto sets = std::make_shared<std::unique_ptr<TTwoSets>>();
  return {.before = [=] { *sets = std::make_unique<TTwoSets>(); },
          .body =
              [=] {
                while (!(*sets)->set->IsEmpty()) (*sets)->set->Delete();
              },
          .after = [=] { return (*sets)->sorted->IsEmpty() ? "" : "records are left"; }};
}

/// `find` goes to the record of the text and answers its id.
template <class Find>
TWork FindLast(Find find) {
  const auto over = std::make_shared<TSetOverTable>(kRows);
  const auto id = std::make_shared<std::int32_t>();
  return {.body = [=] { *id = find(*over, std::string(over->rows.back().text)); },
          .after = [=] { return *id == kRows - 1 ? "" : Differs("id", kRows - 1, *id); }};
}

std::int32_t FindByCursor(TSetOverTable& over, const std::string& text) {
  TVXRAMCursor& cursor = *over.filled->cursor;
  char found[kTextSize] = {};
  for (cursor.GoToFirstRec(); cursor.GoToNextRec() == kDone;) {
    std::int32_t size = sizeof found;
    bool isNull = false;
    cursor.GetFieldValue(kText, found, size, isNull);
    if (text == found) return cursor.Get_RecordID();
  }
  return kNoRecordId;
}

std::int32_t FindByDataSet(TSetOverTable& over, const std::string& text) {
  return over.set->Locate("Text", text, {}) ? over.set->GetRecordId() : kNoRecordId;
}

void RegisterAll() {
  Register("datasets/walk/rows:1000000/cursor", [] { return WalkAll(WalkCursor); });
  Register("datasets/walk/rows:1000000/dataset", [] { return WalkAll(WalkDataSet); });
  Register("datasets/open_100_times/rows:1000", [] { return OpenAndClose(1000); });
  Register("datasets/open_100_times/rows:1000000", [] { return OpenAndClose(kRows); });
  Register("datasets/edit/rows:100000/sorted", EditAll);
  Register("datasets/delete/rows:100000/with_sorted_and_filtered_open", DeleteAll);
  Register("datasets/locate_last/rows:1000000/cursor", [] { return FindLast(FindByCursor); });
  Register("datasets/locate_last/rows:1000000/dataset", [] { return FindLast(FindByDataSet); });
}

}  // namespace

int main(int argc, char** argv) {
  RegisterAll();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
