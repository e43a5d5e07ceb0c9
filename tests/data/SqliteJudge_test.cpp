// SQLite as a second judge: filters, sorts and groups of random rows, where its rules and ours agree.
//
// Where they don't, the query says what we mean, or the case is left out:
//  - Nulls stand last when ascending and first when descending: NULLS LAST, NULLS FIRST. (SQLite's own choice is the other way round.)
//  - Text is ordered without case by Unicode; SQLite's NOCASE knows ASCII alone, so the texts here are ASCII. A filter and a group key
//    compare texts exactly: BINARY.
//  - A filter for Null restricts nothing; in SQL "= NULL" finds nothing. Left out.
//  - In groups a null counts as zero, in every aggregate and in the key: coalesce(…, 0), coalesce(…, ''), count(*).
//  - An average of integers is an integer division, here as there.
//  - A float as a group key counts as its text of 15 digits, and keys are texts without a separator, so that (1, 12) and (11, 2) are
//    one group. SQL groups by values; the keys here are a date and a text, whose joined texts differ when they do.
//  - The order of equal rows is that of our quicksort. A last key without ties decides here.

#ifdef KESTRIX_WITH_SQLITE

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "data/VXRAMCursorBucketer_CMP.h"
#include "data/VXRAMTable_CMP.h"
#include "model/Dice.h"
#include "platform/runtime/Locale.h"

namespace vx {
namespace {

enum TField { kNr, kName, kQty, kPrice, kDay, kOpen, kFieldCount };
constexpr const char* kNames[] = {"Nr", "Name", "Qty", "Price", "Day", "Open"};
constexpr TVXRAMFieldType kTypes[] = {vxrftInteger, vxrftString, vxrftInteger, vxrftFloat, vxrftDateTime, vxrftBoolean};
constexpr std::int32_t kNameSize = 8;

class TDatabase {
 public:
  TDatabase() { sqlite3_open(":memory:", &handle_); }
  ~TDatabase() { sqlite3_close(handle_); }
  TDatabase(const TDatabase&) = delete;
  TDatabase& operator=(const TDatabase&) = delete;

  /// Runs a query; each row becomes the list of its columns, numbers as doubles' texts.
  std::vector<std::vector<std::string>> Query(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement, nullptr), SQLITE_OK) << sqlite3_errmsg(handle_);
    std::vector<std::vector<std::string>> rows;
    while (sqlite3_step(statement) == SQLITE_ROW) {
      std::vector<std::string>& row = rows.emplace_back();
      for (int column = 0; column < sqlite3_column_count(statement); ++column) row.push_back(Text(statement, column));
    }
    sqlite3_finalize(statement);
    return rows;
  }

 private:
  static std::string Text(sqlite3_stmt* statement, int column) {
    const int type = sqlite3_column_type(statement, column);
    if (type == SQLITE_INTEGER || type == SQLITE_FLOAT) return std::to_string(sqlite3_column_double(statement, column));
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return text == nullptr ? "null" : text;
  }

  sqlite3* handle_ = nullptr;
};

using TRowTexts = std::vector<std::vector<std::string>>;
using TGroups = std::map<std::pair<double, std::string>, std::vector<std::string>>;  // by date and name

/// The same random rows in a table of ours and in one of SQLite's.
class SqliteJudge : public testing::TestWithParam<std::uint32_t> {
 protected:
  SqliteJudge() : locale_(ClassicLocale()), dice_(GetParam()), table_(Make<TVXRAMTable>(nullptr)) {
    for (int field = 0; field < kFieldCount; ++field)
      AddField(*table_, kNames[field], kTypes[field], field == kName ? kNameSize : 0);
    database_.Query("CREATE TABLE t (Nr INTEGER, Name TEXT, Qty INTEGER, Price REAL, Day REAL, Open INTEGER)");
    for (std::int32_t nr = 0; nr < 150; ++nr) AddRow(nr);
  }

  TVXRAMCursor* Open(const std::string& sort, TVXRAMFieldDef* filterField = nullptr, const Variant& filterValue = {}) {
    TVXRAMCursorDesc wish(nullptr, -1, vxrcoAscending, sort, filterField, filterValue);
    TVXRAMCursor* cursor = nullptr;
    table_->OpenCursor(nullptr, &wish, cursor);
    return cursor;
  }

  template <class T>
  T Value(const TVXRAMRow* row, TField field) const {
    T value{};
    table_->InternalGetFieldValue(row, field, &value);
    return value;
  }

  TRowTexts NrsOf(const TVXRAMCursor& cursor) const {
    TRowTexts rows;
    const TVXList* list = cursor.Get_ActiveRecordList();
    for (std::int32_t i = 0; i < list->Count(); ++i)
      rows.push_back({Number(Value<std::int32_t>(static_cast<const TVXRAMRow*>(list->Items(i)), kNr))});
    return rows;
  }

  /// Adds what the groups show in a field.
  void AddColumn(TGroups& groups, const TVXRAMCursor& cursor, TField field) const {
    const TVXList* list = cursor.Get_ActiveRecordList();
    for (std::int32_t i = 0; i < list->Count(); ++i) {
      const auto* row = static_cast<const TVXRAMRow*>(list->Items(i));
      char name[kNameSize];
      table_->InternalGetFieldValue(row, kName, name);
      const double value = field == kQty ? Value<std::int32_t>(row, field) : Value<double>(row, field);
      groups[{Value<double>(row, kDay), name}].push_back(Number(value));
    }
  }

  static TRowTexts Flat(const TGroups& groups) {
    TRowTexts rows;
    for (const auto& [key, values] : groups) {
      std::vector<std::string>& row = rows.emplace_back(std::vector{Number(key.first), key.second});
      row.insert(row.end(), values.begin(), values.end());
    }
    return rows;
  }

  static std::string Number(double value) { return std::to_string(value); }
  TVXRAMFieldDef* FieldDef(TField field) const { return table_->Get_FieldDefs()->Get_Item(field); }

  const TLocaleScope locale_;
  naive::TDice dice_;
  TOwned<TVXRAMTable> table_;
  TDatabase database_;

 private:
  /// Stores the value on both sides, or a null on both.
  template <class T>
  void Put(TVXRecordStruct& record, std::string& sql, TField field, T value, const std::string& text) {
    const bool isNull = field != kNr && dice_.OneIn(6);
    if (!isNull) record.Field(field).AssignValue<T>(value);
    sql += (sql.back() == '(' ? "" : ", ") + (isNull ? "NULL" : text);
  }

  void AddRow(std::int32_t nr) {
    static const std::vector<std::string> kTexts = {"", "a", "A", "b", "B", "Bolt", "bolt", "_x", "10", "9"};
    const TOwnedRecordStruct record = table_->NewRecord();
    std::string sql = "INSERT INTO t VALUES (";
    Put(*record, sql, kNr, nr, std::to_string(nr));
    const std::string name = dice_.Pick(kTexts);
    const bool nameIsNull = dice_.OneIn(6);
    if (!nameIsNull) record->Field(kName).AssignText(name);
    sql += nameIsNull ? ", NULL" : ", '" + name + "'";
    const std::int32_t qty = dice_.Between(-5, 9);
    Put(*record, sql, kQty, qty, std::to_string(qty));
    const double price = dice_.Between(-40, 40) / 4.0;
    Put(*record, sql, kPrice, price, std::to_string(price));
    const double day = 45200 + dice_.Below(400) + dice_.Below(4) / 4.0;
    Put(*record, sql, kDay, day, std::to_string(day));
    const bool open = dice_.OneIn(2);
    Put(*record, sql, kOpen, static_cast<std::uint8_t>(open), open ? "1" : "0");
    std::int32_t id = -1;
    table_->AddRecordAndValues(*record, -2, -1, id, true);
    database_.Query(sql + ")");
  }
};

TEST_P(SqliteJudge, FiltersAlike) {
  const std::vector<std::tuple<TField, Variant, std::string>> cases = {
      {kName, "a", "Name = 'a'"}, {kName, "Bolt", "Name = 'Bolt'"},
      {kName, "", "Name = ''"},   {kName, "nowhere", "Name = 'nowhere'"},
      {kQty, 3, "Qty = 3"},       {kQty, 3.5, "Qty = 3.5"},
      {kQty, "4", "Qty = 4"},     {kPrice, 2.25, "Price = 2.25"},
      {kPrice, -3, "Price = -3"}, {kDay, Variant::Date(45210.5), "Day = 45210.5"},
      {kOpen, true, "Open = 1"},  {kOpen, false, "Open = 0"},
  };
  for (const auto& [field, value, condition] : cases) {
    SCOPED_TRACE(condition);
    TVXRAMCursor* cursor = Open("", FieldDef(field), value);
    EXPECT_EQ(NrsOf(*cursor), database_.Query("SELECT Nr FROM t WHERE " + condition + " ORDER BY Nr"));
    table_->CloseCursor(cursor);
  }
}

TEST_P(SqliteJudge, SortsAlike) {
  for (std::int32_t i = 0; i < 20; ++i) {
    std::string sortKeys;
    std::string order;
    for (std::int32_t keys = dice_.Between(0, 3); keys > 0; --keys) {
      const auto field = static_cast<TField>(dice_.Between(kName, kOpen));
      const bool descends = dice_.OneIn(2);
      sortKeys += std::string(kNames[field]) + (descends ? ".D;" : ";");
      order += std::string(kNames[field]) + (field == kName ? " COLLATE NOCASE" : "") +
               (descends ? " DESC NULLS FIRST, " : " ASC NULLS LAST, ");
    }
    SCOPED_TRACE(order);
    TVXRAMCursor* cursor = Open(sortKeys + "Nr");
    cursor->InternalDoSort();
    EXPECT_EQ(NrsOf(*cursor), database_.Query("SELECT Nr FROM t ORDER BY " + order + "Nr"));
    table_->CloseCursor(cursor);
  }
}

/// How SQLite tells the first day of the group of `d`, a whole day since 1899-12-30.
struct TGroupCase {
  TVXGroupMode mode;
  const char* start;
};
constexpr TGroupCase kGroups[] = {
    {vxgrOneDay, "d"},
    {vxgrOneWeek, "(d + 6) / 7 * 7 - 6"},  // weeks begin on Sunday; day 1 was one
    {vxgrOneMonth, "julianday('1899-12-30', d || ' days', 'start of month') - julianday('1899-12-30')"},
    {vxgrOneYear, "julianday('1899-12-30', d || ' days', 'start of year') - julianday('1899-12-30')"},
};

/// All that a group shows, by date and name: sum, average, least, greatest of Price; sum, average, first, last of Qty.
std::string GroupQuery(const char* start) {
  const std::string source =
      "SELECT *, CAST(coalesce(Day, 0) AS INTEGER) AS d, coalesce(Name, '') AS n, coalesce(Price, 0) AS p, "
      "coalesce(Qty, 0) AS q, coalesce(Day, 0) AS moment FROM t";
  const std::string grouped = "SELECT *, " + std::string(start) + " AS g FROM (" + source + ")";
  const std::string dated =
      "SELECT *, first_value(q) OVER (PARTITION BY g, n ORDER BY moment, Nr DESC) AS earliest, "
      "first_value(q) OVER (PARTITION BY g, n ORDER BY moment DESC, Nr DESC) AS latest FROM (" +
      grouped + ")";
  return "SELECT CAST(g AS REAL), n, sum(p), avg(p), min(p), max(p), sum(q), sum(q) / count(*), max(earliest), "
         "max(latest) FROM (" +
         dated + ") GROUP BY g, n ORDER BY g, n";
}

TEST_P(SqliteJudge, GroupsAlike) {
  struct TAggregate {
    TField field;
    TVXBucketType type;
  };
  const TAggregate kAggregates[] = {{kPrice, vxbtCumulate},  {kPrice, vxbtAverage}, {kPrice, vxbtMinValue},
                                    {kPrice, vxbtMaxValue},  {kQty, vxbtCumulate},  {kQty, vxbtAverage},
                                    {kQty, vxbtFirstBucket}, {kQty, vxbtLastBucket}};
  for (const TGroupCase& group : kGroups) {
    SCOPED_TRACE(group.start);
    const TRowTexts expected = database_.Query(GroupQuery(group.start));
    TGroups got;
    for (const TAggregate& aggregate : kAggregates) {
      const auto defs = Make<TVXBucketFieldDefs>(nullptr);
      defs->Add(kNames[aggregate.field], aggregate.type);
      TVXRAMCursorBucketerDesc wish(nullptr, -1, vxrcoAscending, "", nullptr, {}, defs.get(), vxgrOneDay, group.mode,
                                    "Day;Name", true);
      TVXRAMCursor* cursor = nullptr;
      table_->OpenCursor(TClassOf<TVXRAMCursor>::Of<TVXRAMCursorBucketer>(), &wish, cursor);
      AddColumn(got, *cursor, aggregate.field);
      table_->CloseCursor(cursor);
    }
    EXPECT_EQ(Flat(got), expected);
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, SqliteJudge, testing::Range(1u, 6u));

}  // namespace
}  // namespace vx

#endif
