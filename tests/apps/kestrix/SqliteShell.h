// SqliteShell.h: SQLite as a second judge: its shell reads a file by itself and answers a query.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/TestKit.h"

namespace vx::kestrix {

/// The answer to a query of a file, as the table "orders": a line each, columns with the separator between.
inline std::vector<std::string> AskShell(const std::string& path, const std::string& sql,
                                         const std::string& separator) {
  const std::string command =
      "sqlite3 -separator '" + separator + "' -cmd '.import --csv \"" + path + "\" orders' :memory: \"" + sql + "\"";
  std::FILE* const answer = popen(command.c_str(), "r");
  if (answer == nullptr) return {};
  std::string text;
  char part[4096];
  while (const std::size_t size = std::fread(part, 1, sizeof part, answer)) text.append(part, size);
  EXPECT_EQ(pclose(answer), 0) << command;
  return test::Cut(text, '\n');
}

}  // namespace vx::kestrix
