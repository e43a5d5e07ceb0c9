#include "ChartCommand.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "apps/kestrix/RunProgram.h"
#include "apps/kestrix/SqliteShell.h"
#include "platform/runtime/DateTime.h"

namespace vx::kestrix {
namespace {

/// "period series=value series=value", a line each; "-" for no value.
std::string Text(const TFoldedChart& chart) {
  std::string text;
  for (std::size_t period = 0; period < chart.periods.size(); ++period) {
    text += FormatDateTime("yyyy-mm-dd", chart.periods[period]);
    for (std::size_t s = 0; s < chart.series.size(); ++s) {
      const auto& value = chart.values[s][period];
      text += " " + chart.series[s] + "=" + (value ? NumberText(*value) : "-");
    }
    text += "\n";
  }
  return text;
}

TPointSet Points(const std::string& csv, const TChartColumns& columns) {
  std::ostringstream remarks;
  TCsvSource source({}, remarks);
  source.Add("test", csv);
  TTypeWishes wishes;
  wishes.types = {{source.Headings()[columns.value], TColumnType::Float}};
  const TColumnType dateType = columns.date.size() == 3 ? TColumnType::Integer : TColumnType::DateTime;
  for (const std::size_t date : columns.date) wishes.types.emplace_back(source.Headings()[date], dateType);
  return ReadPoints(source, PlanColumns(source, wishes), columns, vxgrOneDay);
}

constexpr const char* kSales =
    "date,value,shop\n"
    "2015-01-31 23:00,4,B\n"
    "2015-01-31 10:00,1,B\n"
    "2015-01-02,2,A\n"
    "2015-04-01,8,A\n"
    "2015-04-30,16,\n";

TEST(ChartData, FoldsByEveryAggregate) {
  const std::pair<TVXBucketType, const char*> cases[] = {{vxbtCumulate, "B=5 A=2"},    {vxbtAverage, "B=2.5 A=2"},
                                                         {vxbtMinValue, "B=1 A=2"},    {vxbtMaxValue, "B=4 A=2"},
                                                         {vxbtFirstBucket, "B=1 A=2"}, {vxbtLastBucket, "B=4 A=2"}};
  const TPointSet points = Points(kSales, {{0}, 1, 2});
  for (const auto& [aggregate, january] : cases)
    EXPECT_EQ(Text(FoldPoints(points, vxgrOneMonth, aggregate)),
              std::string("2015-01-01 ") + january +
                  " (blank)=-\n2015-02-01 B=- A=- (blank)=-\n2015-03-01 B=- A=- (blank)=-\n" +
                  "2015-04-01 B=- A=8 (blank)=16\n");
}

TEST(ChartData, KeepsThePlaceOfEmptyPeriods) {
  const TPointSet points = Points(kSales, {{0}, 1, std::nullopt});
  EXPECT_EQ(FoldPoints(points, vxgrOneDay, vxbtCumulate).periods.size(), 119u);
  EXPECT_EQ(FoldPoints(points, vxgrOneWeek, vxbtCumulate).periods.size(), 18u);
  EXPECT_EQ(Text(FoldPoints(points, vxgrOneYear, vxbtCumulate)), "2015-01-01 value=31\n");
  const TPointSet old = Points("d,v\n1900-05-05,1\n1999-01-01,2\n2001-01-01,4\n1899-12-31,8\n", {{0}, 1, std::nullopt});
  EXPECT_EQ(Text(FoldPoints(old, vxgrOneCentury, vxbtCumulate)), "1900-01-01 v=9\n2000-01-01 v=2\n2100-01-01 v=4\n");
}

TEST(ChartData, KeepsTheLargestSeriesByTheirSizeWithoutSign) {
  TPointSet points =
      Points("d,v,s\n2015-01-01,1,a\n2015-01-01,-9,b\n2015-01-01,3,c\n2015-01-01,5,others\n", {{0}, 1, 2});
  KeepLargest(points, 2);
  EXPECT_EQ(Text(FoldPoints(points, vxgrOneYear, vxbtCumulate)), "2015-01-01 b=-9 others=5 others=4\n");
}

struct TMessageCase {
  std::string options;
  const char* input;
  const char* expected;
};

TEST(ChartCommand, TellsWhatItLeavesOutAndWhatIsWrong) {
  const TTestFolder folder;
  const std::string out = folder.Path("out.txt");
  const std::string one = "--date d --value v", three = "--date y,m,d --value v";
  const TMessageCase remarks[] = {
      {one, "d,v\n2015-01-01,1\n-,2\n,\n2015-01-02,NA\n", "3 records left out: 2 without a date, 1 without a value"},
      {three, "y,m,d,v\n2015,1,31,1\n2015,-,1,1\n", "1 record left out: 1 without a date, 0 without a value"},
  };
  const TMessageCase errors[] = {
      {one, "d,v\n2015-01-01,1\n2015-01-02,two\n", "standard input:3: column \"v\": \"two\" is not a number"},
      {one, "d,v\n2015-01-01,1\nsoon,2\n", "standard input:3: column \"d\": \"soon\" is not a date"},
      {three, "y,m,d,v\n2015,2,28,1\n2015,2,29,1\n", "standard input:3: column \"d\": \"2015-2-29\" is not a date"},
      {three, "y,m,d,v\n2015,Feb,28,1\n", "standard input:2: column \"m\": \"Feb\" is not an integer of 32 bits"},
      {one, "d,v\n-,1\n", "standard input: nothing to draw: no record has a date and a value"},
      {"--date d,v --value v", "d,v\n1,1\n",
       "--date \"d,v\" should be one column, or a year, a month and a day column"},
      {"--date d --value w", "d,v\n1,1\n", "no column \"w\"; there are \"d\", \"v\""},
      {one + " --by day", "d,v\n0001-01-01,1\n9999-12-31,1\n",
       "the dates reach from 0001-01-01 to 9999-12-31, more than 50000 periods; choose a coarser --by"},
      {"--date d --value d", "d,v\n20150101,1\n", "--date and --value are the same column, \"d\""},
      {one, "d,v\n2015-01-01,1e300\n2015-01-02,1e300\n",
       "the values of \"v\" in the period of 2015-01-01 are too large to draw"},
      {one + " --size 0x9", "", "--size \"0x9\" should be WIDTHxHEIGHT, in pixels of 1 to 32767"},
      {one + " --type pie", "", "--type \"pie\" should be line, bar or COLUMN=TYPE"},
  };
  const auto run = [&out](const TMessageCase& each) {
    std::vector<std::string> arguments = Words("chart " + each.options + " -o");
    arguments.push_back(out);
    return RunProgram(arguments, each.input);
  };
  for (const TMessageCase& each : remarks) {
    const TRun answer = run(each);
    EXPECT_TRUE(answer.err.starts_with(std::string("kestrix: ") + each.expected + "\n")) << answer.err;
    EXPECT_EQ(answer.code, kSuccess);
    EXPECT_TRUE(std::filesystem::remove(out));
  }
  for (const TMessageCase& each : errors) {
    const TRun answer = run(each);
    EXPECT_TRUE(answer.err.ends_with(std::string("kestrix: ") + each.expected + "\n")) << answer.err;
    EXPECT_EQ(answer.code, kUserError);
    EXPECT_EQ(folder.List(), "");
  }
}

// The whole way of a sentence: what the user typed stands in the drawing.
TEST(ChartCommand, DrawsWhatWasAskedFor) {
  const TTestFolder folder;
  const std::string out = folder.Path("out.txt");
  std::vector<std::string> arguments =
      Words("chart --date date --value value --series shop --top 1 --type bar --type value=float --size 400x300 -o");
  arguments.push_back(out);
  EXPECT_EQ(RunProgram(arguments, kSales).code, kSuccess);
  const std::string drawing = folder.Read("out.txt");
  for (const char* text : {"\"value by month\"", "\"Jan 2015\"", "\"others\"", "\"(blank)\""})
    EXPECT_NE(drawing.find(text), std::string::npos) << text << " in\n" << drawing;
  EXPECT_EQ(drawing.find("polyline"), std::string::npos) << "bars were asked for";
}

#if KESTRIX_WITH_CAIRO
TEST(ChartCommand, WritesAPng) {
  const TTestFolder folder;
  const auto draw = [](const std::string& path, const char* size) {
    return RunProgram({"chart", "--date", "date", "--value", "value", "--size", size, "-o", path}, kSales);
  };
  EXPECT_EQ(draw(folder.Path("a.png"), "640x480").err, "");
  EXPECT_EQ(folder.Read("a.png").substr(0, 8), "\x89PNG\r\n\x1A\n");
  EXPECT_EQ(draw("-", "640x480").out, folder.Read("a.png"));
  EXPECT_EQ(draw(folder.Path("b.png"), "32767x32767").code, kUserError);
  EXPECT_EQ(folder.List(), "a.png");
}
#endif

// -- SQLite as a second judge -----------------------------------------------------------------------------------------

#if KESTRIX_WITH_SQLITE
/// "2015-01-01 Fan Shop 12", sorted.
std::vector<std::string> Rows(const TFoldedChart& chart) {
  std::vector<std::string> rows;
  for (std::size_t s = 0; s < chart.series.size(); ++s)
    for (std::size_t period = 0; period < chart.periods.size(); ++period)
      if (const auto value = chart.values[s][period])
        rows.push_back(FormatDateTime("yyyy-mm-dd", chart.periods[period]) + " " + chart.series[s] + " " +
                       NumberText(*value));
  std::sort(rows.begin(), rows.end());
  return rows;
}

/// Ordered quantity by department and month.
constexpr const char* kMonthlySums =
    "select printf('%04d-%02d-01', [ Order Year ], [ Order Month ]), [Product Department], sum([Order Quantity]) "
    "from orders where trim([Order Quantity]) not in ('', '-', 'NA') group by 1, 2";

void ExpectSameSums(const std::string& path) {
  std::vector<std::string> expected = AskShell(path, kMonthlySums, " ");
  std::sort(expected.begin(), expected.end());
  EXPECT_GT(expected.size(), 20u);
  const TPointSet points = Points(test::ReadFile(path), {{3, 4, 5}, 7, 8});
  EXPECT_EQ(Rows(FoldPoints(points, vxgrOneMonth, vxbtCumulate)), expected);
}

TEST(ChartData, MonthlySumsOfTheSampleAreThoseOfSqlite) { ExpectSameSums(KESTRIX_TEST_DATA "/orders_sample.csv"); }

TEST(ChartData, MonthlySumsOfTheWholeFileAreThoseOfSqlite) {
  const char* const path = std::getenv("KESTRIX_FULL_DATA");
  if (path == nullptr || *path == '\0') GTEST_SKIP() << "KESTRIX_FULL_DATA names no file";
  ExpectSameSums(path);
}
#endif

}  // namespace
}  // namespace vx::kestrix
