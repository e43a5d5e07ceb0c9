#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "apps/kestrix/RunProgram.h"
#include "apps/kestrix/SqliteShell.h"
#include "datetime/VXDateFunc_UNT.h"
#include "support/Golden.h"

namespace vx::kestrix {
namespace {

constexpr const char* kSample = KESTRIX_TEST_DATA "/orders_sample.csv";
constexpr const char* kOrdered = "Order Year,Order Month,Order Day";

// Groups whose texts run together or differ by case alone, a blank one, nulls, a tie in time, a fraction that binary
// numbers don't have.
constexpr const char* kStock =
    "When,Site,Item,Level,Note\n"
    "2015-01-31 10:00,a,bc,0.1,x\n"
    "2015-01-30,ab,c,7,x\n"
    "2015-01-31 09:00,a,bc,0.2,x\n"
    "2015-01-31 10:00,a,bc,-,x\n"
    "2015-03-01,A,bc,1.25,y\n"
    ",a,bc,100,y\n"
    "2015-03-02, a ,bc,2,y\n"
    "2014-12-31,,bc,NA,y\n";

TRun Bucket(const std::string& options, const std::string& input = kStock) {
  return RunProgram(Words("bucket " + options), input);
}

/// The rows of the answer without the headings, "/" between them.
std::string Rows(const std::string& options, const std::string& input = kStock) {
  const TRun run = Bucket(options + " --format csv", input);
  if (run.code != kSuccess) return run.err;
  std::string rows = run.out.substr(run.out.find('\n') + 1);
  std::replace(rows.begin(), rows.end(), '\n', '/');
  return rows;
}

TEST(BucketCommand, FoldsGroupsApart) {
  const std::string all = "--group Site --group Item --count --sum Level --first Level --last Level --average Level";
  const TRun run = Bucket(all + " --totals");
  EXPECT_EQ("\n" + run.out, R"(
Month       Site  Item  Count  Sum of Level  First of Level  Last of Level  Average of Level
----------  ----  ----  -----  ------------  --------------  -------------  ----------------
2014-12-01        bc        1
2015-01-01  a     bc        3          0.30            0.20           0.00              0.10
2015-01-01  ab    c         1          7.00            7.00           7.00              7.00
2015-03-01  a     bc        1          2.00            2.00           2.00              2.00
2015-03-01  A     bc        1          1.25            1.25           1.25              1.25
----------  ----  ----  -----  ------------  --------------  -------------  ----------------
Total                       7         10.55            0.00           2.00              1.51
)");
  EXPECT_EQ(run.err, "kestrix: 1 record without a date left out\nkestrix: column \"Level\": 2 nulls count as zero\n");
}

TEST(BucketCommand, ShowsWhatIsAskedFor) {
  const std::string weeks = "--date When --by week --where Level_is_not_null --sum Level";
  const std::string old = "d,v\n1900-05-05,1\n1999-01-01,2\n2001-01-01,4\n9999-12-31,8\n";
  const std::pair<std::string, const char*> cases[] = {
      {"--by month", "2014-12-01,1/2015-01-01,4/2015-03-01,2/"},
      {"--desc --limit 1", "2015-03-01,2/"},
      {"--sort Count.D --limit 2", "2015-01-01,4/2015-03-01,2/"},
      // Columns stand as they were asked for; a column's own name is the first made of it.
      {"--max Level --count --min Level --sort level.D", "2014-12-01,,1,/2015-01-01,7,4,0/2015-03-01,2,2,1.25/"},
      {"--where Level>=2 --sort When.D --label end", "2015-03-31,1/2015-01-31,1/"},
      {"--where Note=z --sum Level --totals", "Total,/"},
      {weeks, "2015-01-25,7.3/2015-03-01,3.25/"},
      {weeks + " --start-of-week MON", "2015-01-26,7.3/2015-02-23,1.25/2015-03-02,2/"},
      {weeks + " --start-of-week 7 --label end", "2015-01-30,7/2015-02-06,0.30000000000000004/2015-03-06,3.25/"},
  };
  for (const auto& [options, rows] : cases) EXPECT_EQ(Rows(options), rows) << options;
  // A century bears the name of its last year, and ends with that.
  EXPECT_EQ(Rows("--by century --sum v --where v<8", old), "1900-01-01,1/2000-01-01,2/2100-01-01,4/");
  EXPECT_EQ(Rows("--by century --sum v --where v<8 --label end", old), "1900-12-31,1/2000-12-31,2/2100-12-31,4/");
  // Totals must not need more of the calendar than the rows.
  EXPECT_EQ(Rows("--first v --last v --where v>=4 --totals", old), "2001-01-01,4,4/9999-12-01,8,8/Total,4,8/");
  EXPECT_EQ(GVXStartOfWeek, 1);
}

TEST(BucketCommand, TellsWhatIsWrong) {
  const char* const two = "d,e,v\n2015-01-01,2015-01-02,1\n";
  const struct {
    const char* options;
    const char* input;
    const char* expected;
  } cases[] = {
      {"", "v\n1\n", "--date is missing, and no column holds dates; say --date COLUMN or --date \"YEAR,MONTH,DAY\""},
      {"", two, "--date is missing, and there are several columns of dates: \"d\", \"e\""},
      {"--date d --sum w", two, "no column \"w\"; there are \"d\", \"e\", \"v\""},
      {"--group Iten", kStock, "no column \"Iten\"; did you mean \"Item\"?"},
      {"--date d --last d", two, "--date and --last are the same column, \"d\""},
      {"--sum Note", kStock, "standard input:2: column \"Note\": \"x\" is not a number"},
      {"--sum", kStock, "--sum: 1 required TEXT missing; see kestrix bucket --help"},
      {"--sum Level --sort Sum_of_Levels.D", kStock, "no column \"Sum of Levels\"; did you mean \"Sum of Level\"?"},
      {"--averige Level", kStock, "no option \"--averige\"; did you mean \"--average\"?"},
      {"--by week", "d,v\n0001-01-07,1\n0001-01-01,1\n",
       "standard input:3: column \"d\": the week of 0001-01-01 needs a day beyond the calendar, the years 1 to 9999"},
      {"--by month --label end", "d,v\n9999-11-30,1\n9999-12-01,1\n",
       "standard input:3: column \"d\": the month of 9999-12-01 needs a day beyond the calendar, the years 1 to 9999"},
      {"--by century", "d,v\n9900-12-31,1\n9901-01-01,1\n",
       "standard input:3: column \"d\": the century of 9901-01-01 needs a day beyond the calendar, the years 1 to "
       "9999"},
      {"--start-of-week modnay", kStock,
       "--start-of-week \"modnay\" should be a weekday, or 1 (sunday) to 7 (saturday); did you mean \"monday\"?"},
      {"--sum v --header yes", "d,v\n2015-01-01,1e308\n2015-01-02,1e308\n",
       "\"Sum of v\" of 2015-01-01 is too large a number"},
  };
  for (const auto& each : cases) {
    const TRun run = Bucket(each.options, each.input);
    EXPECT_EQ(run.err, std::string("kestrix: ") + each.expected + "\n");
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.code, kUserError);
  }
}

TEST(BucketCommand, PrintsTheSampleAsApproved) {
  const std::vector<std::string> arguments = {"bucket",  kSample,           "--date",  kOrdered, "--by",   "year",
                                              "--group", "Customer Market", "--count", "--sum",  "Profit", "--average",
                                              "Profit",  "--max",           "Profit",  "--last", "Profit", "--totals"};
  EXPECT_TRUE(test::MatchesGolden("bucket/years.txt", RunProgram(arguments).out));
}

// -- SQLite as a second judge -----------------------------------------------------------------------------------------

#if KESTRIX_WITH_SQLITE
struct TJudgedCase {
  std::vector<const char*> by;
  const char* period;  // of the day of the order
  const char* group;
  const char* value;
};

/// A null is zero. Of several records of the first or last day the one that stands last in the file is taken.
std::string SqlOf(const TJudgedCase& each) {
  return std::string("with days as (select rowid as place, *, printf('%04d-%02d-%02d', [ Order Year ], ") +
         "[ Order Month ], [ Order Day ]) as day from orders), records as (select place, day, " + each.period +
         " as period, trim([" + each.group + "]) as part, iif(trim([" + each.value + "]) in ('', '-', 'NA'), 0, [" +
         each.value + "] + 0.0) as value from days) select distinct period, part, count(*) over bucket, " +
         "sum(value) over bucket, avg(value) over bucket, min(value) over bucket, max(value) over bucket, " +
         "first_value(value) over (bucket order by day, place desc), " +
         "first_value(value) over (bucket order by day desc, place desc) " +
         "from records window bucket as (partition by period, part)";
}

std::vector<std::string> AskBucket(const std::string& path, const TJudgedCase& each) {
  std::vector<std::string> arguments = {"bucket",   path,      "--date",   kOrdered, "--group",
                                        each.group, "--count", "--format", "csv"};
  arguments.insert(arguments.end(), each.by.begin(), each.by.end());
  for (const char* aggregate : {"--sum", "--average", "--min", "--max", "--first", "--last"})
    arguments.insert(arguments.end(), {aggregate, each.value});
  std::vector<std::string> lines = test::Cut(RunProgram(arguments).out, '\n');
  if (!lines.empty()) lines.erase(lines.begin());
  return lines;
}

/// Sorted, the numbers to nine digits, since the two add in different orders; nothing but nulls is zero.
std::string Comparable(std::vector<std::string> lines) {
  std::string text;
  std::sort(lines.begin(), lines.end());
  for (const std::string& line : lines) {
    std::vector<std::string> cells = test::Cut(line, ',');
    cells.resize(9);
    text += cells[0] + "," + cells[1];
    for (std::size_t i = 2; i < cells.size(); ++i) {
      char number[40];
      std::snprintf(number, sizeof number, ",%.9g", std::atof(cells[i].c_str()));
      text += number;
    }
    text += "\n";
  }
  return text;
}

void ExpectSameAggregates(const std::string& path) {
  const TJudgedCase cases[] = {
      {{"--by", "month"}, "substr(day, 1, 7) || '-01'", "Product Department", " Discount % "},
      {{"--by", "month"}, "substr(day, 1, 7) || '-01'", "Product Department", " Profit "},
      {{"--by", "year", "--label", "end"}, "substr(day, 1, 4) || '-12-31'", "Customer Country", " Gross Sales "},
      {{"--by", "week", "--start-of-week", "monday"}, "date(day, '-6 days', 'weekday 1')", "Shipment Mode", " Profit "},
  };
  for (const TJudgedCase& each : cases) {
    SCOPED_TRACE(SqlOf(each));
    const std::vector<std::string> answer = AskBucket(path, each);
    EXPECT_GT(answer.size(), 20u);
    EXPECT_EQ(Comparable(answer), Comparable(AskShell(path, SqlOf(each), ",")));
  }
}

TEST(BucketCommand, AggregatesOfTheSampleAreThoseOfSqlite) { ExpectSameAggregates(kSample); }

TEST(BucketCommand, AggregatesOfTheWholeFileAreThoseOfSqlite) {
  const char* const path = std::getenv("KESTRIX_FULL_DATA");
  if (path == nullptr || *path == '\0') GTEST_SKIP() << "KESTRIX_FULL_DATA names no file";
  ExpectSameAggregates(path);
}
#endif

}  // namespace
}  // namespace vx::kestrix
