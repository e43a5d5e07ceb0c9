// From the bytes of a file to columns with names and types: what a user sees of it, in tables of cases.
#include <gtest/gtest.h>

#include "ColumnNames.h"
#include "Encoding.h"
#include "Suggest.h"
#include "apps/kestrix/RunProgram.h"

namespace vx::kestrix {
namespace {

std::string ReplaceAll(std::string text, std::string_view from, std::string_view to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    text.replace(at, from.size(), to);
  return text;
}

struct TEncodingCase {
  const char* name;
  std::string bytes;
  const char* text;         // "?" for the sign of what can't be shown
  std::string remark = {};  // its beginning; empty for none
  std::size_t line = 0;
};

TEST(Encoding, KeepsEveryTextReadable) {
  using namespace std::string_literals;
  const TEncodingCase cases[] = {
      {"plain", "x,\xC3\xA9", "x,é"},
      {"mark", "\xEF\xBB\xBFx", "x"},
      {"mark alone", "\xEF\xBB\xBF", ""},
      {"Latin-1", "a\nS\xE3o \x80 \x93x\x94\n", "a\nSão € “x”\n", "not UTF-8", 2},
      {"no such letter", "\x81", "?", "not UTF-8", 1},
      {"both", "\xC3\xA9\n\nx\xE9\xC3", "é\n\nx??", "broken UTF-8", 3},
      {"surrogate in UTF-8", "\xC3\xA9\xED\xA0\x80", "é???", "broken UTF-8", 1},
      {"UTF-16 low byte first", "\xFF\xFEx\0\xE9\0\x3D\xD8\0\xDE"s, "xé😀"},
      {"UTF-16 high byte first", "\xFE\xFF\0x\0\xE9"s, "xé"},
      {"lone surrogates, odd size", "\xFF\xFE\0\xDC\x3D\xD8x\0y"s, "??x?"},
  };
  for (const TEncodingCase& each : cases) {
    SCOPED_TRACE(each.name);
    const TDecodedText decoded = DecodeText(each.bytes);
    EXPECT_EQ(ReplaceAll(decoded.text, "\xEF\xBF\xBD", "?"), each.text);
    EXPECT_EQ(decoded.remark.substr(0, each.remark.size()), each.remark);
    EXPECT_EQ(decoded.remark.empty(), each.remark.empty());
    EXPECT_EQ(decoded.line, each.line);
  }
}

TEST(Headings, AreTrimmedNamedAndUnique) {
  EXPECT_EQ(HeadingsOf({" Order ID ", "", "total", "TOTAL", "Total", "Total (2)", " "}),
            (std::vector<std::string>{"Order ID", "Column 2", "total", "TOTAL (2)", "Total (3)", "Total (2) (2)",
                                      "Column 7"}));
  EXPECT_EQ(FieldNamesOf({"No.", "a;b", "a.b", "A_b"}), (std::vector<std::string>{"No_", "a_b", "a_b (2)", "A_b (3)"}));
  const auto many = HeadingsOf(std::vector<std::string_view>(10000, "x"));
  EXPECT_EQ(many.back(), "x (10000)");
}

TEST(Headings, AreFoundAsTheUserWritesThem) {
  const std::vector<std::string> headings = {"Year", "Month, short", "a", "A b", "profit"};
  using TPositions = std::vector<std::size_t>;
  EXPECT_EQ(NeedHeadings(headings, "year, Month, short ,A B", ','), (TPositions{0, 1, 3}));
  EXPECT_EQ(NeedHeadings(headings, "Month, short", ','), (TPositions{1}));
  EXPECT_THROW(NeedHeadings(headings, "Year,", ','), EUserError);
  EXPECT_THROW(NeedHeadings(headings, "", ','), EUserError);
}

TEST(Suggest, NamesTheNearest) {
  const std::vector<std::string> names = {"Order Quantity", "Order Year", "Profit", "Größe"};
  EXPECT_EQ(Nearest("Order Quanity", names), "Order Quantity");
  EXPECT_EQ(Nearest("order yaer", names), "Order Year");
  EXPECT_EQ(Nearest("GRÖSE", names), "Größe");
  EXPECT_EQ(Nearest("Weather", names), std::nullopt);
  EXPECT_EQ(Nearest("", names), std::nullopt);
  EXPECT_TRUE(Nearest(std::string(1 << 20, 'x') + "y", {std::string(1 << 20, 'x')}));
}

struct TLoadCase {
  const char* name;
  std::string options;
  std::string input;
  std::string expected;  // csv output, then what was said
};

constexpr const char* kNoHeader =
    "kestrix: standard input:1: no header line found; the columns are called \"Column 1\" and so on\n";

TEST(Loading, TurnsTextIntoValuesAndBack) {
  const TLoadCase cases[] = {
      {"types", "", "b,i,f,d,t,s\nYES,+1,.50,1.2.2015,2015-01-02 3:04,x\nno,-,NA,,-, \n",
       "b,i,f,d,t,s\nTrue,1,0.5,2015-02-01,2015-01-02 03:04:00,x\nFalse,,,,,\n"},
      {"codes stay text", "", "a,b\n007,2147483648\n12,1\n", "a,b\n007,2147483648\n12,1\n"},
      {"text keeps its blanks and words", "", "a,b\n x , - \n-,NA\n", "a,b\n x , - \n-,NA\n"},
      {"semicolons and decimal commas", "", "a;b\n1,5;x\n-2,25;y\n", "a,b\n1.5,x\n-2.25,y\n"},
      // The file writes commas; a point is no decimal one then.
      {"one way of writing numbers", "", "a;b\n1,5;1.234\n", "a,b\n1.5,1.234\n"},
      {"decimal by wish", "--decimal ,", "a,b\n\"1,5\",2\n", "a,b\n1.5,2\n"},
      {"quotes where needed", "", "a\t\"b\"\n\"x,\"\"y\"\t\"1\n2\"\n=1+1\t\n", "a,b\n\"x,\"\"y\",\"1\n2\"\n=1+1,\n"},
      {"one empty column", "", "a\nx\n\"\"\n", "a\nx\n\"\"\n"},
      {"header only", "", "a,b\n", "a,b\n"},
      {"header of words over words", "", "a,b\nx,y\n", "a,b\nx,y\n"},
      {"no header", "", "1,x\n2,y\n", std::string("Column 1,Column 2\n1,x\n2,y\n") + kNoHeader},
      {"a null is no heading", "", "1,-\n2,5\n", std::string("Column 1,Column 2\n1,\n2,5\n") + kNoHeader},
      {"header by wish", "--header yes", "Region,2015\nN,1\n", "Region,2015\nN,1\n"},
      {"null words by wish", "--null ? --null none", "a\n1\n?\nnone\n", "a\n1\n\"\"\n\"\"\n"},
      {"type by wish", "--type Order_ID=string --type b=float", "Order ID,b\n7,1\n", "Order ID,b\n7,1\n"},
      {"open dates", "", "d\n03/04/2015\n",
       "d\n2015-04-03\nkestrix: standard input: column \"d\": day and month could be exchanged; read as day/month/year "
       "(--date-order mdy for the other)\n"},
      {"dates that decide themselves", "", "d\n03/04/2015\n04/13/2015\n", "d\n2015-03-04\n2015-04-13\n"},
      {"date order by wish", "--date-order mdy", "d\n03/04/2015\n", "d\n2015-03-04\n"},
      {"broken UTF-8 is told once", "", "a\n\xC3\xA9\n\xFF\n\xFE\n",
       "a\né\n\xEF\xBF\xBD\n\xEF\xBF\xBD\nkestrix: standard input:3: broken UTF-8; the bytes that make no letter are "
       "shown as \xEF\xBF\xBD\n"},
      {"bad records by wish", "--skip-bad --type a=integer", "a,b\n1,x\n2\nz,y\n3,\"y\n4,z\n",
       "a,b\n1,x\n4,z\nkestrix: 3 bad records left out; the first: standard input:3: column \"b\": the line has 1 "
       "value, but there are 2 columns\n"},
  };
  for (const TLoadCase& each : cases) {
    const TRun run = RunProgram(("table --format csv " + each.options).c_str(), each.input);
    EXPECT_EQ(run.out + run.err, each.expected) << each.name;
  }
}

TEST(Loading, TakesSeveralFilesOfTheSameColumns) {
  const TTestFolder folder;
  const std::string a = folder.Write("a.csv", "n,s\n1,x\n"), b = folder.Write("b.csv", "n;s\r\n2,5;y\r\n"),
                    c = folder.Write("c.csv", "n,t\n3,z\n");
  // The comma separates in one of them, so that it is no decimal one in either.
  EXPECT_EQ(RunProgram({"table", "--format", "csv", a, b}).out, "n,s\n1,x\n\"2,5\",y\n");
  EXPECT_EQ(RunProgram({"table", "--format", "csv", a, "-"}, "n,s\n4,y\n").out, "n,s\n1,x\n4,y\n");
  const auto error = [&](const std::string& path) { return RunProgram({"table", a, path}).err; };
  EXPECT_EQ(error(c), "kestrix: " + c + ":1: the columns are not those of " + a + "\n");
  EXPECT_EQ(error(c + "x"), "kestrix: " + c + "x: cannot be read: No such file or directory\n");
  EXPECT_EQ(error(folder.Path("")), "kestrix: " + folder.Path("") + ": is a directory\n");
}

struct TErrorCase {
  const char* options;
  std::string input;
  const char* expected;
};

TEST(Loading, TellsWhatIsWrongInOneLine) {
  std::string manyLines;
  for (int i = 0; i < 30; ++i) manyLines += "\n3,z";
  const TErrorCase places[] = {
      // what is wrong with the input
      {"", "", ": the file is empty"},
      {"", "\r\n\n", ": the file is empty"},
      {"", "a,b,c\n1,2,3\n1,2\n", ":3: column \"c\": the line has 2 values, but there are 3 columns"},
      {"", "a,b\n1,2,3\n", ":2: column \"3\": the line has 3 values, but there are 2 columns"},
      {"--type a=integer", "a,b\n1,2\nx\ty,3\n", ":3: column \"a\": \"x␉y\" is not an integer of 32 bits"},
      {"--type a=date", "a,b\n30.2.2015,1\n", ":2: column \"a\": \"30.2.2015\" is not a date"},
      {"--type a=float", "a,b\n1.5,1\n1.5.2,1\n", ":3: column \"a\": \"1.5.2\" is not a number"},
      {"--type a=boolean", "a,b\n1,1\n", ":2: column \"a\": \"1\" is not true or false"},
      {"--type b=date", "a,b\n\"x\ny\",1.1.2015\nz,q\n", ":4: column \"b\": \"q\" is not a date"},
      {"", "a,b\n1,\"2\n", ":2: column \"b\": a quote is opened and never closed"},
      {"", std::string("a,b\n1,\0\n", 8), ":2: column \"b\": a zero byte; is this a text file?"},
      {"", "a,b\n1," + std::string(65537, 'x'), ":2: column \"b\": a value longer than 65536 bytes"},
      {"", std::string(20000, ','), ":1: column \"16385\": more than 16384 values in one line"},
      {"--memory 1", "n,text\n1,x\n2," + std::string(60000, 'y') + manyLines + "\n",
       ":19: column \"text\": from here on the table would need more than 1 MiB (2 MiB in all, 60012 bytes a row, "
       "longest value on line 3; see --memory)"},
  };
  const TErrorCase wishes[] = {
      {"--type Ordr=string", "Order,b\n1,2\n", "no column \"Ordr\"; did you mean \"Order\"?"},
      {"--type a=number", "a\n1\n", "no type \"number\"; there are boolean, integer, float, date, datetime and string"},
      {"--separator ab", "a\n", "--separator \"ab\" should be one character, or \"tab\""},
  };
  const auto expectError = [](const TErrorCase& each, const std::string& expected) {
    const TRun run = RunProgram((std::string("table ") + each.options).c_str(), each.input);
    EXPECT_EQ(run.err, "kestrix: " + expected + "\n");
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.code, kUserError);
  };
  for (const TErrorCase& each : places) expectError(each, std::string("standard input") + each.expected);
  for (const TErrorCase& each : wishes) expectError(each, each.expected);
}

// What comes out must go in again and come out the same, whatever the cells hold.
TEST(Loading, ReadsItsOwnOutput) {
  const std::string nasty = "a;b;c\n\"x\r\ny\";\"q\"\"q\";1,5\n=1+1;-;2\n  z ;\"a;b\";\n";
  const std::string once = RunProgram("table --format csv", nasty).out;
  EXPECT_EQ(RunProgram("table --format csv", once).out, once);
  const std::string tabs = RunProgram("table --format tsv", nasty).out;
  EXPECT_EQ(RunProgram("table --format csv", tabs).out, once);
}

TEST(Loading, StandsTenThousandColumns) {
  std::string names, values;
  for (int i = 0; i < 10000; ++i) {
    names += (i > 0 ? ",c" : "c") + std::to_string(i);
    values += i > 0 ? ",1" : "1";
  }
  EXPECT_EQ(RunProgram("table --columns c9999 --sort c5000.D;c1 --where c7=1", names + "\n" + values + "\n").out,
            "c9999\n-----\n    1\n");
}

// No prefix of a file and no changed byte makes the program crash, or answer with anything but its two codes.
TEST(Loading, EndsInOrderOnEveryPrefixAndChangedByte) {
  const std::string file =
      "\xEF\xBB\xBF\"a;1\";b.;b;\xE9\r\n1,5;\"x\r\n\"\"y\";3.4.2015;\r\n-;;03/04/2015 10:00;true\r\n";
  for (std::size_t size = 0; size <= file.size(); ++size)
    for (const char change : std::string("\";\n\0\xFFz", 6)) {
      std::string broken = file.substr(0, size);
      if (size > 0) broken[size * 7 % size] = change;
      for (const char* policy : {"--desc", "--skip-bad"}) {
        const TRun run = RunProgram({"table", "--sort", "", policy, "--format", "json"}, broken);
        ASSERT_TRUE(run.code == kSuccess || (run.code == kUserError && run.out.empty())) << run.code << ' ' << run.err;
      }
    }
}

}  // namespace
}  // namespace vx::kestrix
