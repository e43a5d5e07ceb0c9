// SQLite as a second judge: filters, sorts and groups of random rows, where its rules and ours agree.
//
// Where they don't, the query says what we mean, or the case is left out:
//  - Nulls stand last when ascending and first when descending: NULLS LAST, NULLS FIRST. (SQLite's own choice is the
//    other way round.)
//  - Text is ordered without case by Unicode; SQLite's NOCASE knows ASCII alone, so the texts here are ASCII. A filter
//    and a group key compare texts exactly: BINARY.
//  - A filter for Null restricts nothing; in SQL "= NULL" finds nothing. Left out.
//  - In groups a null counts as zero, in every aggregate and in the key: coalesce(…, 0), coalesce(…, ''), count(*).
//  - An average of integers is an integer division, here as there.
//  - A float as a group key counts as its text of 15 digits, and keys are texts without a separator, so that (1, 12)
//    and (11, 2) are one group. SQL groups by values; the keys here are a date and a text, whose joined texts differ
//    when they do.
//  - The order of equal rows is that of our quicksort. A last key without ties decides here.

#ifdef KESTRIX_WITH_SQLITE

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <map>
#include <sstream>
#include <tuple>

#include "TableKit.h"
#include "model/Dice.h"
#include "platform/runtime/Locale.h"

namespace vx {
namespace {

/// The same random rows in a table of ours and in one of SQLite's. Nr equals a row's id.
class SqliteJudge : public testing::TestWithParam<std::uint32_t> {
 protected:
  SqliteJudge() {
    sqlite3_open(":memory:", &handle_);
    Query("CREATE TABLE t (Nr INTEGER, Name TEXT, Qty INTEGER, Price REAL, Day REAL, Open INTEGER)");
    const std::vector<const char*> names = {"", "a", "A", "b", "B", "Bolt", "bolt", "_x", "10", "9"};
    for (std::int32_t nr = 0; nr < 150; ++nr) {
      TCells cells = {nr,
                      dice_.Pick(names),
                      dice_.Between(-5, 9),
                      dice_.Between(-40, 40) / 4.0,
                      45200 + dice_.Below(400) + dice_.Below(4) / 4.0,
                      dice_.Below(2)};
      std::string sql;
      for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i > 0 && dice_.OneIn(6)) cells[i] = Null();
        sql += (i > 0 ? ", '" : "'") + (cells[i].IsNull() ? "" : cells[i].AsString()) + "'";
        if (cells[i].IsNull()) sql.replace(sql.size() - 2, 2, "NULL");
      }
      table_.Add(cells);
      Query("INSERT INTO t VALUES (" + sql + ")");
    }
  }
  ~SqliteJudge() override { sqlite3_close(handle_); }

  /// The rows that a query finds, a line each.
  std::string Query(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement, nullptr), SQLITE_OK) << sqlite3_errmsg(handle_);
    std::ostringstream rows;
    for (; sqlite3_step(statement) == SQLITE_ROW; rows << "\n")
      for (int column = 0; column < sqlite3_column_count(statement); ++column) {
        if (sqlite3_column_type(statement, column) == SQLITE_TEXT)
          rows << sqlite3_column_text(statement, column) << "; ";
        else
          rows << std::to_string(sqlite3_column_double(statement, column)) << "; ";
      }
    sqlite3_finalize(statement);
    return rows.str();
  }
  static std::string Nrs(const TVXRAMCursor& cursor) {
    std::string rows;
    for (std::int32_t i = 0; i < cursor.Get_ActiveRecordList()->Count(); ++i)
      rows += std::to_string(1.0 * RowId(static_cast<TVXRAMRow*>(cursor.Get_ActiveRecordList()->Items(i)))) + "; \n";
    return rows;
  }

  const TLocaleScope locale_{ClassicLocale()};
  naive::TDice dice_{GetParam()};
  TTestTable table_{{{"Nr", vxrftInteger},
                     {"Name", vxrftString, 8},
                     {"Qty", vxrftInteger},
                     {"Price", vxrftFloat},
                     {"Day", vxrftDateTime},
                     {"Open", vxrftBoolean}}};
  sqlite3* handle_ = nullptr;
};

TEST_P(SqliteJudge, FiltersAlike) {
  const std::tuple<const char*, Variant, const char*> cases[] = {
      {"Name", "a", "Name = 'a'"},     {"Name", "", "Name = ''"},   {"Name", "nowhere", "Name = 'nowhere'"},
      {"Qty", 3, "Qty = 3"},           {"Qty", 3.5, "Qty = 3.5"},   {"Qty", "4", "Qty = 4"},
      {"Price", 2.25, "Price = 2.25"}, {"Price", -3, "Price = -3"}, {"Day", Variant::Date(45210.5), "Day = 45210.5"},
      {"Open", true, "Open = 1"},      {"Open", false, "Open = 0"}};
  for (const auto& [field, value, condition] : cases)
    EXPECT_EQ(Nrs(table_.Open({.filterField = field, .filterValue = value})),
              Query("SELECT Nr FROM t WHERE " + std::string(condition) + " ORDER BY Nr"))
        << condition;
}

TEST_P(SqliteJudge, SortsAlike) {
  for (std::int32_t i = 0; i < 20; ++i) {
    std::string keys, order;
    for (std::int32_t count = dice_.Between(0, 3); count > 0; --count) {
      const std::string field = dice_.Pick(std::vector<const char*>{"Name", "Qty", "Price", "Day", "Open"});
      const bool descends = dice_.OneIn(2);
      keys += field + (descends ? ".D;" : ";");
      order +=
          field + (field == "Name" ? " COLLATE NOCASE" : "") + (descends ? " DESC NULLS FIRST, " : " ASC NULLS LAST, ");
    }
    EXPECT_EQ(Nrs(table_.Open({.sort = keys + "Nr"})), Query("SELECT Nr FROM t ORDER BY " + order + "Nr")) << order;
  }
}

/// All that a group shows, by date and name: sum, average, least, greatest of Price; sum, average, first, last of Qty.
std::string GroupQuery(const std::string& start) {
  const std::string source =
      "SELECT *, CAST(coalesce(Day, 0) AS INTEGER) AS d, coalesce(Name, '') AS n, coalesce(Price, 0) AS p, "
      "coalesce(Qty, 0) AS q, coalesce(Day, 0) AS moment FROM t";
  const std::string dated =
      "SELECT *, first_value(q) OVER (PARTITION BY g, n ORDER BY moment, Nr DESC) AS earliest, "
      "first_value(q) OVER (PARTITION BY g, n ORDER BY moment DESC, Nr DESC) AS latest FROM (SELECT *, " +
      start + " AS g FROM (" + source + "))";
  return "SELECT CAST(g AS REAL), n, sum(p), avg(p), min(p), max(p), sum(q), sum(q) / count(*), max(earliest), "
         "max(latest) FROM (" +
         dated + ") GROUP BY g, n ORDER BY g, n";
}

TEST_P(SqliteJudge, GroupsAlike) {
  const std::pair<const char*, TVXBucketType> aggregates[] = {
      {"Price", vxbtCumulate}, {"Price", vxbtAverage}, {"Price", vxbtMinValue},  {"Price", vxbtMaxValue},
      {"Qty", vxbtCumulate},   {"Qty", vxbtAverage},   {"Qty", vxbtFirstBucket}, {"Qty", vxbtLastBucket}};
  // How SQLite tells the first day of the group of `d`, a whole day since 1899-12-30.
  const std::string days = "julianday('1899-12-30', d || ' days', 'start of ", base = "') - julianday('1899-12-30')";
  const std::pair<TVXGroupMode, std::string> groups[] = {
      {vxgrOneDay, "d"},
      {vxgrOneWeek, "(d + 6) / 7 * 7 - 6"},  // weeks begin on Sunday; day 1 was one
      {vxgrOneMonth, days + "month" + base},
      {vxgrOneYear, days + "year" + base}};
  for (const auto& [mode, start] : groups) {
    std::map<std::pair<double, std::string>, std::ostringstream> got;  // by date and name
    for (const auto& aggregate : aggregates) {
      TVXRAMCursor& cursor = table_.OpenBuckets({"Day;Name", mode, {aggregate}});
      for (std::int32_t i = 0; i < cursor.Get_RecordCount(); ++i) {
        const auto* const row = static_cast<TVXRAMRow*>(cursor.Get_ActiveRecordList()->Items(i));
        const Variant value = RowVariant(row, table_.Field(aggregate.first)->Get_Slot());
        const std::string name(RowText(row, table_.Field("Name")->Get_Slot()));
        got[{RowValue<double>(row, table_.Field("Day")->Get_Slot()), name}]
            << std::to_string(value.IsNull() ? 0 : value.AsDouble()) << "; ";
      }
    }
    std::ostringstream rows;
    for (const auto& [key, values] : got)
      rows << std::to_string(key.first) << "; " << key.second << "; " << values.str() << "\n";
    EXPECT_EQ(rows.str(), Query(GroupQuery(start))) << start;
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, SqliteJudge, testing::Range(1u, 6u));

}  // namespace
}  // namespace vx

#endif
