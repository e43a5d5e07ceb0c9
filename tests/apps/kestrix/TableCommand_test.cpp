#include <gtest/gtest.h>

#include "apps/kestrix/RunProgram.h"

namespace vx::kestrix {
namespace {

// Two columns whose headings mean something to a sort or a condition; a null in every column but the last; names that
// differ by case.
constexpr const char* kOrders =
    "No.,Item;Kind,Qty<=5,Price,Due,Done,Name\n"
    "1,saw,5,2.5,2015-02-01,yes,b\n"
    "2,Axe,,1e3,2015-03-01 12:00,no,a\n"
    "3,axe,3,,,,\"B, or not\"\n"
    "4,,4,-1,2014-12-31,yes,C\n"
    ",saw,5,0.25,2015-02-01,no,d\n";

TRun Table(const std::string& options, const std::string& input = kOrders) {
  return RunProgram(Words(("table " + options).c_str()), input);
}

/// The first column of the answer, "null" for a null, with blanks between.
std::string Numbers(const std::string& options) {
  const TRun run = Table(options + (options.empty() ? "" : " ") + "--columns No.,Name --format tsv");
  std::string numbers;
  const std::vector<std::string> lines = test::Cut(run.out, '\n');
  for (std::size_t i = 1; i < lines.size(); ++i)
    numbers += (lines[i].front() == '\t' ? "null" : lines[i].substr(0, lines[i].find('\t'))) + " ";
  return numbers + run.err;
}

using TQueryCase = std::pair<const char*, const char*>;  // options and numbers, or an error

TEST(TableCommand, FiltersBySigns) {
  constexpr TQueryCase kConditions[] = {
      {"No.=3", "3 "},          {"no._=_03", "3 "},          {"Item;Kind=saw", "1 null "}, {"Item;Kind=SAW", ""},
      {"Qty<=5=5", "1 null "},  {"Qty<=5<=4", "3 4 "},       {"Qty<=5!=5", "3 4 "},        {"Price>0.25", "1 2 "},
      {"Price<0", "4 "},        {"Due=1.2.2015", "1 null "}, {"Done=False", "2 null "},    {"Name<=b", "1 2 "},
      {"No._is_null", "null "}, {"Item;Kind=", "4 "},        {"Qty<=5!=", "1 3 4 null "}};
  for (const auto& [condition, numbers] : kConditions)
    EXPECT_EQ(Numbers(std::string("--where ") + condition), numbers) << condition;
  EXPECT_EQ(Numbers(""), "1 2 3 4 null ");
  EXPECT_EQ(Numbers("--where Item;Kind_IS_NOT_NULL"), "1 2 3 null ");
  EXPECT_EQ(Numbers("--where Price>=0.25 --where Price<1000"), "1 null ");
  EXPECT_EQ(Numbers("--where Due>2015-02-01 --where Due<=2015-03-01_12:00"), "2 ");
  EXPECT_EQ(Numbers("--where Item;Kind=saw --where Item;Kind=Axe"), "");
}

TEST(TableCommand, SortsWalksAndLimits) {
  constexpr TQueryCase kCases[] = {
      {"--sort No..D", "null 4 3 2 1 "},  // nulls come last, so first from the end
      {"--sort No.", "1 2 3 4 null "},
      {"--sort Name", "2 1 3 4 null "},
      {"--sort item;kind.D;Price.A", "4 null 1 2 3 "},
      {"--sort Item;Kind;No..D;", "3 2 null 1 4 "},
      {"--sort Qty<=5.A;No..A --desc", "2 null 1 4 3 "},
      {"--desc --limit 2", "null 4 "},
      {"--limit 0", ""},
      {"--index Price", "4 null 1 2 3 "},
      {"--index Name --desc --limit 3 --where Done_is_not_null", "null 4 1 "},
      {"--index Price --where Done=yes", "4 1 "},
      {"--index Price --sort No..D --where Qty<=5>3", "null 4 1 "},
  };
  for (const auto& [options, numbers] : kCases) EXPECT_EQ(Numbers(options), numbers) << options;
}

TEST(TableCommand, WritesEachFormat) {
  EXPECT_EQ("\n" + Table("").out, R"(
No.  Item;Kind  Qty<=5  Price  Due                  Done   Name
---  ---------  ------  -----  -------------------  -----  ---------
  1  saw             5    2.5  2015-02-01 00:00:00  True   b
  2  Axe                 1000  2015-03-01 12:00:00  False  a
  3  axe             3                                     B, or not
  4                  4     -1  2014-12-31 00:00:00  True   C
     saw             5   0.25  2015-02-01 00:00:00  False  d
)");
  EXPECT_EQ("\n" + Table("--format csv --columns Name,No.,Price --limit 3").out, R"(
Name,No.,Price
b,1,2.5
a,2,1000
"B, or not",3,
)");
  EXPECT_EQ("\n" + Table("--format json --columns Name,No.,Price,Done,Due --where No.>=2 --limit 2").out,
            R"(
[
{"Name": "a", "No.": 2, "Price": 1000, "Done": false, "Due": "2015-03-01 12:00:00"},
{"Name": "B, or not", "No.": 3, "Price": null, "Done": null, "Due": null}
]
)");
  EXPECT_EQ(Table("--format json --where No.=9").out, "[]\n");
}

TEST(TableCommand, WritesOddTextSafely) {
  const std::string input = "\"a\tb\",c\n\"q\"\"\\\n\x1F\",é\n=1+1,\xF0\x9F\x98\x80\n";
  EXPECT_EQ(Table("", input).out, "a␉b    c\n-----  -\nq\"\\␊␟  é\n=1+1   😀\n");
  EXPECT_EQ(Table("--format tsv", input).out, "\"a\tb\"\tc\n\"q\"\"\\\n\x1F\"\té\n=1+1\t😀\n");
  EXPECT_EQ(Table("--format json", input).out,
            "[\n{\"a\\tb\": \"q\\\"\\\\\\n\\u001f\", \"c\": \"é\"},\n{\"a\\tb\": \"=1+1\", \"c\": \"😀\"}\n]\n");
}

TEST(TableCommand, WritesNumbersThatReadBack) {
  for (const char* number :
       {"0.1", "1e300", "-2.5e-300", "123456789012345.5", "0.000001", "1e15", "-0.5", "179769313486231570000000000"}) {
    const std::string out = Table("--format csv --header yes", std::string("a\n0.5\n") + number + "\n").out;
    EXPECT_EQ(std::stod(out.substr(6)), std::stod(number)) << out;
  }
}

TEST(TableCommand, GathersStatistics) {
  EXPECT_EQ("\n" + Table("--stats").out, R"(
Column     Type      Nulls  Least                Greatest             Distinct
---------  --------  -----  -------------------  -------------------  --------
No.        integer       1  1                    4                           4
Item;Kind  string        1  Axe                  saw                         3
Qty<=5     integer       1  3                    5                           3
Price      float         1  -1                   1000                        4
Due        datetime      1  2014-12-31 00:00:00  2015-03-01 12:00:00         3
Done       boolean       1  False                True                        2
Name       string        0  a                    d                           5
)");
  EXPECT_EQ(Table("--stats --where Price_is_null --columns Price --format json").out,
            "[\n{\"Column\": \"Price\", \"Type\": \"float\", \"Nulls\": 1, \"Least\": null, \"Greatest\": null, "
            "\"Distinct\": 0}\n]\n");
}

TEST(TableCommand, TellsWhatItCannotFind) {
  constexpr const char* kNoColumn =
      "no column \"\"; there are \"No.\", \"Item;Kind\", \"Qty<=5\", \"Price\", \"Due\", \"Done\", \"Name\"";
  constexpr TQueryCase kCases[] = {
      {"--where Nmae=a", "no column \"Nmae\"; did you mean \"Name\"?"},
      {"--where Name", "--where \"Name\" should be COLUMN=VALUE, with one of = != < <= > >=, or COLUMN is null"},
      {"--where No.=three", "--where \"No.=three\": column \"No.\" is of type integer, and \"three\" is not"},
      {"--where Due>2015-02-30",
       "--where \"Due>2015-02-30\": column \"Due\" is of type datetime, and \"2015-02-30\" is not"},
      {"--sort Price;Nam.D", "no column \"Nam\"; did you mean \"Name\"?"},
      {"--sort Name.d;No.", "--sort \"Name.d\": behind the point stands A for ascending or D for descending"},
      {"--sort ;Name", kNoColumn},
      {"--index Prices", "no column \"Prices\"; did you mean \"Price\"?"},
      {"--columns Name,", kNoColumn},
      {"--limit -1", "--limit: Value -1 not in range 0 to 2147483647; see kestrix table --help"},
      {"--format xml", "--format: xml not in {table,csv,tsv,json}; see kestrix table --help"},
  };
  for (const auto& [options, message] : kCases) {
    SCOPED_TRACE(options);
    const TRun run = Table(options);
    EXPECT_EQ(run.err, std::string("kestrix: ") + message + "\n");
    EXPECT_EQ(run.code, kUserError);
    EXPECT_EQ(run.out, "");
  }
}

}  // namespace
}  // namespace vx::kestrix
