// What the table command does with a data set beyond showing it: finding a record, details under a master, edits.
#include <gtest/gtest.h>

#include "apps/kestrix/RunProgram.h"

namespace vx::kestrix {
namespace {

constexpr const char* kParts =
    "No;Part;Qty;Due\n1;Nut M4;5;2.1.2015\n2;nut m6;1,5;3.1.2015\n3;BOLT;7;\n4;Bolt;9;3.1.2015 "
    "14:07\n5;Nut;5;2.1.2015\n";

TRun Table(const std::string& options, const std::string& input = kParts) {
  return RunProgram(Words(("table " + options).c_str()), input);
}

TEST(TableLocate, FollowsTheRulesOfTheSet) {
  constexpr std::pair<const char*, const char*> kCases[] = {
      {"--locate Part=Nut", "5 "},
      {"--locate part=Nut*", "5 "},  // the "*" goes, and the whole text is compared
      {"--locate Part=Nut* --partial", "1 2 3 4 5 "},
      {"--locate Part=Nut --partial --sort Part.D --limit 2", "1 5 "},
      {"--locate Part=bolt --ignore-case", "3 4 5 "},
      {"--locate Part=bolt --ignore-case --partial", "3 4 5 "},  // the value becomes BOLT, texts stay
      {"--locate Part=nut --ignore-case --partial", "?"},
      {"--locate Qty=9", "4 5 "},
      {"--locate Qty=1,5", "2 3 4 5 "},
      {"--locate Due=2015-01-03_14:07", "4 5 "},
      {"--locate Qty=5 --where No>1", "5 "},
      {"--locate Qty=5 --where No>1 --where Part!=Nut", "?"},
      {"--locate Qty=5 --desc", "5 4 3 2 1 "},
      {"--locate Due=", "3 4 5 "},
  };
  for (const auto& [options, expected] : kCases) {
    SCOPED_TRACE(options);
    const TRun run = Table(std::string(options) + " --columns No --format tsv");
    std::string numbers;
    for (const std::string& line : test::Cut(run.out, '\n'))
      if (line != "No") numbers += line + " ";
    const bool isFound = *expected != '?';
    EXPECT_EQ(numbers, isFound ? expected : "");
    EXPECT_EQ(run.code, isFound ? kSuccess : kUserError);
    EXPECT_EQ(run.err.find("no record found") != std::string::npos, !isFound) << run.err;
  }
  EXPECT_EQ(Table("--locate Part").err, "kestrix: --locate \"Part\" should be COLUMN=VALUE\n");
}

TEST(TableMaster, ShowsDetailsUnderEachRecord) {
  const TTestFolder folder;
  const std::string master =
      folder.Write("days.csv", "Due,Records\n2015-01-02,a\n03/01/2015,b\n,c\n2015-01-03 14:07,d\n");
  const auto run = [&](const std::string& options) {
    std::vector<std::string> words = Words("table --master M --on due --columns No,Part " + options);
    words[2] = master;
    return RunProgram(words, kParts);
  };
  EXPECT_EQ("\n" + run("--sort No.D --where Part!=Bolt").out, R"(
Due: 2015-01-02 00:00:00, Records: a
  No  Part
  --  ------
   5  Nut
   1  Nut M4

Due: 2015-01-03 00:00:00, Records: b
  No  Part
  --  ------
   2  nut m6

Due: , Records: c
  (no records)

Due: 2015-01-03 14:07:00, Records: d
  (no records)
)");
  EXPECT_EQ("\n" + run("--format csv --limit 1 --where Qty>1").out, R"(
Due,Records,No,Part
2015-01-02 00:00:00,a,1,Nut M4
2015-01-03 00:00:00,b,2,nut m6
,c,,
2015-01-03 14:07:00,d,4,Bolt
)");
  EXPECT_EQ("\n" + run("--format json --where No=5").out, R"json(
[
{"Due": "2015-01-02 00:00:00", "Records": "a", "Records (2)": [
  {"No": 5, "Part": "Nut"}]},
{"Due": "2015-01-03 00:00:00", "Records": "b", "Records (2)": []},
{"Due": null, "Records": "c", "Records (2)": []},
{"Due": "2015-01-03 14:07:00", "Records": "d", "Records (2)": []}
]
)json");
  EXPECT_EQ(RunProgram({"table", "--master", master, "--on", "Part"}, kParts).err,
            "kestrix: " + master + ": --on: no column \"Part\"; there are \"Due\", \"Records\"\n");
  EXPECT_EQ(RunProgram({"table", "--master", "-", "--on", "No"}, kParts).err,
            "kestrix: --master and the table cannot both be standard input\n");
}

TEST(TableSet, ChangesCellsAndNothingElse) {
  const std::string file =
      "\xEF\xBB\xBF"
      "No;\"Part\";Qty;Due\r\n1;\"a \"\"b\"\"\"; 1,50 ;2.1.2015\r\n\r\nbad\r\n2;\"c\nd\";;3.1.2015\n3;e;2;-";
  const auto changed = [&](const std::string& from, const std::string& to) {
    std::string text = file;
    return text.replace(text.find(from), from.size(), to);
  };
  const std::tuple<const char*, std::string, int> kCases[] = {
      {"--set Qty=1.5 --where No=1", file, 0},
      {"--set Qty=2.25 --where No=1", changed(" 1,50 ", "2,25"), 1},
      {"--set Due=2016-02-29 --where Part=e", changed("2;-", "2;29.2.2016"), 1},
      {"--set Due= --where No=1", changed("2.1.2015", ""), 1},
      {"--set No=7 --where No=2 --set part=x;\"y --where Qty=", changed("2;\"c\nd\"", "7;\"x;\"\"y\""), 1},
      {"--set Part=longer_than_all_others --where Qty>1,6", changed("e;2", "longer than all others;2"), 1},
      {"--set No=4 --where No=3 --where No=4", file, 0},
  };
  for (const auto& [options, expected, count] : kCases) {
    SCOPED_TRACE(options);
    const TRun run = Table(std::string("--skip-bad ") + options, file);
    EXPECT_EQ(run.out, expected);
    EXPECT_NE(run.err.find(std::to_string(count) + (count == 1 ? " record changed" : " records changed")),
              std::string::npos);
  }
}

struct TFormCase {
  const char* cells;         // of the column "v" of a file; "|" ends a line
  const char* set;           // into the first of them
  const char* expected;      // cells afterwards, or part of the error
  const char* options = "";  // of this reading and of all others
};

std::string FileOfCells(std::string_view cells) {
  std::string text = "n;v\n";
  char name = 'a';
  for (const std::string& cell : test::Cut(cells, '|')) text += std::string(1, name++) + ";" + cell + "\n";
  return text;
}

/// Each file is written in place and read back, and shows all other values as it did.
TEST(TableSet, WritesValuesAsTheirColumnDoes) {
  constexpr TFormCase kCases[] = {
      {"02/13/2024|02/05/2024|11/30/2024", "v=2024-02-14", "02/14/2024|02/05/2024|11/30/2024"},
      {"2/13/2024|12/15/2024|3/3/24", "v=03/07/2024", "03/07/2024|12/15/2024|3/3/24"},
      {"2/13/2024|12/15/2024|3/3/24", "v=2024-03-07", "3/7/2024|12/15/2024|3/3/24"},
      {"13.2.2024|5.2.2024", "v=2024-03-04", "4.3.2024|5.2.2024"},
      {"13.02.24|05.02.24", "v=1.3.2024", "01.03.24|05.02.24"},
      {"13.02.24|05.02.24", "v=1.3.1950", "01.03.1950|05.02.24"},
      {"2024-02-13|2024-02-05", "v=14.2.2024", "2024-02-14|2024-02-05"},
      {"13-FEB-24|05-MAR-24", "v=2024-08-01", "01-AUG-24|05-MAR-24"},
      {"February 13, 2024|July 5, 2024", "v=1.9.2024", "September 1, 2024|July 5, 2024"},
      {"2/13/2024 2:07 pm|3/3/2024 12:00 AM", "v=2024-02-14_00:30", "2/14/2024 12:30 am|3/3/2024 12:00 AM"},
      {"13.2.2024 14:07|5.2.2024", "v=2024-02-14_09:08:07.25", "14.2.2024 09:08:07.25|5.2.2024"},
      {"13.2.2024 14:07|5.2.2024 09:00", "v=14.2.2024", "14.2.2024 00:00|5.2.2024 09:00"},
      {"2024-02-13T14:07:30Z|2024-02-05", "v=1.2.2024", "2024-02-01T00:00:00Z|2024-02-05"},  // the last with a time
      {"20240213|20240205", "v=14.2.2024", "20240214|20240205", "--type v=date"},
      {"2/13/2024|02/05/2024", "v=3/4/2024", "3/4/2024|02/05/2024", "--date-order mdy"},
      {"02/13/2024|03/03/2024", "v=3/4/2024", "2024-03-04|03/03/2024"},  // nothing tells month from day any more
      {"02/13/2024|02/05/2024", "v=3/4/2024",
       ":3: column \"v\": after --set, \"02/05/2024\" would be read as "
       "2024-05-02, in a column of type date; say --date-order mdy"},
      {"02/13/2024|02/05/2024", "v=14/02/2024", "\"14/02/2024\" is not"},
      {"2024-02-13|2024-02-05", "v=2024-02-14_10:00", "the column is of type date, and \"2024-02-14 10:00\" is not"},
      {"YES|No|yes", "v=false", "No|No|yes"},
      {"YES|yes", "v=no", "NO|yes"},
      {"YES|no|false", "v=false", "false|no|false"},
      {"True|False", "v=no", "False|False"},
      {"1,50|2,25", "v=2.5", "2,50|2,25"},
      {"1,50|2", "v=2.5", "2,5|2"},
      {"1,50|2", "v=3", "3,0|2"},  // else the column would be one of integers
      {"1.5|2.5", "v=1e3", "1e3|2.5"},
      {"1|2", "v=007", "7|2"},
      {"1|2|-", "v=NA", "NA|2|-"},
      {"1,5|2", "v=",
       ":3: column \"v\": after --set, \"2\" would be read as 2, in a column of type "
       "integer; say --type \"v=float\""},
      {"1,5|2", "v=", "|2", "--type v=float"},
      {"x|1", "v=2",
       ":3: column \"v\": after --set, \"1\" would be read as 1, in a column of type integer; say --type "
       "\"v=string\""},
      {"x||", "v=2", "2||"},
  };
  const TTestFolder folder;
  for (const auto& [cells, set, expected, options] : kCases) {
    SCOPED_TRACE(std::string(cells) + "  " + set);
    const std::string path = folder.Write("a.csv", FileOfCells(cells));
    const auto run = [&](const std::string& words) {
      return RunProgram(Words("table " + path + " " + words + " " + options));
    };
    const std::string others = run("--where n!=a --format csv").out;
    const TRun edit = run(std::string("--in-place --where n=a --set ") + set);
    const bool isError = edit.code == kUserError;
    EXPECT_EQ(folder.Read("a.csv"), FileOfCells(isError ? cells : expected)) << edit.err;
    EXPECT_TRUE(!isError || edit.err.find(expected) != std::string::npos) << edit.err;
    EXPECT_EQ(run("--where n!=a --format csv").out, others);
  }
}

TEST(TableSet, WritesInPlaceOnlyWhenTold) {
  const TTestFolder folder;
  const std::string path = folder.Write("a.csv", "n\n1\n2\n"), wide = folder.Write("w.csv", "n\n\xE9\n"),
                    bare = folder.Write("c.csv", "1\n2\n");
  EXPECT_EQ(RunProgram({"table", path, "--set", "n=3", "--where", "n=2", "-o", path}).code, kUserError);
  EXPECT_EQ(RunProgram({"table", path, "--set", "n=3", "--where", "n=2", "-o", folder.Path("b.csv")}).code, kSuccess);
  EXPECT_EQ(folder.Read("a.csv") + folder.Read("b.csv"), "n\n1\n2\nn\n1\n3\n");
  EXPECT_EQ(RunProgram({"table", path, "--set", "n=", "--where", "n=2", "--in-place"}).out, "");
  EXPECT_EQ(folder.Read("a.csv"), "n\n1\n\"\"\n");
  const std::pair<std::vector<std::string>, std::string> kErrors[] = {
      {{path, "--set", "n=x"}, path + ": column \"n\": --set \"n=x\": the column is of type integer, and \"x\" is not"},
      {{path, path, "--set", "n=1"}, "--set changes one file, and there are 2"},
      {{"--set", "n=1", "--in-place"}, "--in-place needs a file, not standard input"},
      {{path, "--set", "n=1", "--set", "N="}, "--set names column \"n\" twice"},
      {{"/dev/null", "--set", "n=1", "--in-place"}, "/dev/null: is no file that can be written in place"},
      {{bare, "--set", "Column 1=", "--where", "Column 1=1"},
       bare + ": after --set, other columns would be found in the file; say --separator and --header"},
      {{path, "--set", "m=1"}, "no column \"m\"; there are \"n\""},
      {{wide, "--set", "n=x", "--in-place"}, wide + ": is not UTF-8, and would be written as UTF-8; say -o FILE"},
  };
  for (auto [words, error] : kErrors) {
    words.insert(words.begin(), "table");
    const TRun run = RunProgram(words);
    EXPECT_NE(run.err.find("kestrix: " + error + "\n"), std::string::npos) << run.err;
    EXPECT_EQ(run.code, kUserError);
  }
  EXPECT_EQ(folder.List(), "a.csv b.csv c.csv w.csv");
}

/// Columns and texts that have no room in a data set's record are there all the same.
TEST(TableRecords, MayBeLongerThanADataSetsRecord) {
  std::string text = "a,b,c,d\n";
  for (int i = 0; i < 5; ++i)
    text += std::to_string(i) + "," + std::string(i == 3 ? 65'000 : 3, 'x') + "," +
            std::string(i == 2 ? 60'000 : 3, 'y') + ",2015-01-02\n";
  EXPECT_EQ(Table("--format csv", text).out, text);
  EXPECT_EQ(RunProgram("bucket --by year --group b --group c --sum a --format csv", text).out,
            "Year,b,c,Sum of a\n2015-01-01,xxx,yyy,5\n2015-01-01,xxx," + std::string(60'000, 'y') + ",2\n2015-01-01," +
                std::string(65'000, 'x') + ",yyy,3\n");
  EXPECT_EQ(Table("--locate d=2015-01-02 --limit 1 --columns a --format tsv", text).out, "a\n0\n");
  EXPECT_EQ(Table("--locate b=x --partial", text).code, kUserError);
}

}  // namespace
}  // namespace vx::kestrix
