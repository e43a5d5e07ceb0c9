// Sqlite.h: SQLite in memory, as a yardstick of the table benchmarks.
#pragma once

#include <sqlite3.h>

#include <stdexcept>
#include <string>

namespace bench {

class TDatabase {
 public:
  TDatabase() {
    if (sqlite3_open_v2(":memory:", &handle_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                        nullptr) != SQLITE_OK)
      Fail("open");
    Run("PRAGMA journal_mode=OFF");
    Run("PRAGMA temp_store=MEMORY");
    Run("PRAGMA cache_size=-1000000");  // 1 GB: sorts never spill
  }
  TDatabase(const TDatabase&) = delete;
  TDatabase& operator=(const TDatabase&) = delete;
  ~TDatabase() { sqlite3_close(handle_); }

  void Run(const char* sql) {
    if (sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) Fail(sql);
  }
  sqlite3* Handle() const { return handle_; }
  [[noreturn]] void Fail(const char* what) const {
    throw std::runtime_error(std::string(what) + ": " + sqlite3_errmsg(handle_));
  }

 private:
  sqlite3* handle_ = nullptr;
};

class TStatement {
 public:
  TStatement(const TDatabase& database, const char* sql) {
    if (sqlite3_prepare_v2(database.Handle(), sql, -1, &handle_, nullptr) != SQLITE_OK) database.Fail(sql);
  }
  TStatement(const TStatement&) = delete;
  TStatement& operator=(const TStatement&) = delete;
  ~TStatement() { sqlite3_finalize(handle_); }

  bool Step() { return sqlite3_step(handle_) == SQLITE_ROW; }
  void Reset() { sqlite3_reset(handle_); }
  sqlite3_stmt* Handle() const { return handle_; }

 private:
  sqlite3_stmt* handle_ = nullptr;
};

}  // namespace bench
