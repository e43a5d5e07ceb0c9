#include "CsvReader.h"

#include <gtest/gtest.h>

#include <random>

namespace vx::kestrix {
namespace {

/// Every record as "line: field|field"; an error as "line: !column message", after which reading goes on.
std::string Read(std::string_view text, char separator = ',', TCsvLimits limits = {}) {
  std::string trace;
  TCsvReader reader(text, separator, limits);
  for (;;) {
    try {
      if (!reader.Next()) return trace;
      trace += std::to_string(reader.Line()) + ": ";
      for (std::size_t i = 0; i < reader.Fields().size(); ++i)
        trace.append(i > 0 ? "|" : "").append(reader.Fields()[i]);
    } catch (const ECsvError& error) {
      trace += std::to_string(error.Line()) + ": !" + std::to_string(error.Column()) + " " + error.Message();
      reader.SkipLine();
    }
    trace += "\n";
  }
}

TEST(CsvReader, ReadsEachKindOfRecord) {
  const std::pair<std::string, const char*> cases[] = {
      {"", ""},
      {"\n\r\n\r", ""},
      {"a\nb\r\nc\rd", "1: a\n2: b\n3: c\n4: d\n"},
      {"a,b\n\n\nc,d\n", "1: a|b\n4: c|d\n"},
      {",\na,,b\n,,\n", "1: |\n2: a||b\n3: ||\n"},
      {" a , b \n", "1:  a | b \n"},
      {"\"a,b\",\"\",\"c\"\n", "1: a,b||c\n"},
      {"\"say \"\"hi\"\"\",\"\"\"\"\n", "1: say \"hi\"|\"\n"},
      {"\"a\r\nb\nc\",d\ne,f\n", "1: a\r\nb\nc|d\n4: e|f\n"},
      {"5\" pipe,a\"b\"\n", "1: 5\" pipe|a\"b\"\n"},
      {"a,\"b\"c\nd,e\n", "1: !1 text behind the closing quote\n2: d|e\n"},
      // One unclosed quote costs its line; what follows is read as lines again.
      {"a,b\nc,\"d\ne,f\ng,h\n", "1: a|b\n2: !1 a quote is opened and never closed\n3: e|f\n4: g|h\n"},
      {"a,\"", "1: !1 a quote is opened and never closed\n"},
      {std::string("a,b\0c\nd,e\n", 10), "1: !1 a zero byte; is this a text file?\n2: d|e\n"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(Read(text), expected) << testing::PrintToString(text);
}

TEST(CsvReader, HoldsItsLimitsToTheByte) {
  const TCsvLimits limits{.field = 5, .line = 12, .columns = 4};
  EXPECT_EQ(Read("12345,\"12345\"\n", ',', {.field = 5, .line = 20, .columns = 4}), "1: 12345|12345\n");
  EXPECT_EQ(Read("123456\n", ',', limits), "1: !0 a value longer than 5 bytes\n");
  EXPECT_EQ(Read("\"123\"\"5\"\n", ',', limits), "1: 123\"5\n");
  EXPECT_EQ(Read("\"123\"\"56\"\n", ',', limits),
            "1: !0 a value longer than 5 bytes, or a quote that is never closed\n");
  EXPECT_EQ(Read("\"123456\"\n", ',', limits), "1: !0 a value longer than 5 bytes, or a quote that is never closed\n");
  EXPECT_EQ(Read("1234,123,123\n", ',', limits), "1: 1234|123|123\n");
  EXPECT_EQ(Read("1234,1234,123\nab\n", ',', limits), "1: !2 a line longer than 12 bytes\n2: ab\n");
  EXPECT_EQ(Read("1,2,3,4\n1,2,3,4,5\n", ',', limits), "1: 1|2|3|4\n2: !4 more than 4 values in one line\n");
}

TEST(CsvReader, StandsLargeInputs) {
  const std::string manyColumns(9999, ',');
  TCsvReader wide(manyColumns, ',');
  ASSERT_TRUE(wide.Next());
  EXPECT_EQ(wide.Fields().size(), 10000u);
  EXPECT_EQ(Read("a," + std::string(1 << 20, 'x') + "\nb,c\n"), "1: !1 a value longer than 65536 bytes\n2: b|c\n");
  const std::string longLine = "a" + std::string(5 << 20, ' ').replace(0, 2, ",b");
  EXPECT_EQ(Read(longLine), "1: !1 a value longer than 65536 bytes\n");
}

// Whatever is cut off or changed: the reader ends, never reads beyond the text, and names lines in rising order.
TEST(CsvReader, EndsOnEveryPrefixAndEveryChangedByte) {
  constexpr char kNasty[] =
      "\xEF\xBB\xBFh1;\"h\"\"2\";h3\r\n\"a\r\nb\";\"\";\xFF\xFE\r\"c\"x;;\n\n;\"\"\"\";\0\n\"open;\n";
  const std::string nasty(kNasty, sizeof kNasty - 1);
  const std::string mutations(
      "\",\n\r;\0\xFF"
      "a",
      8);
  for (std::size_t size = 0; size <= nasty.size(); ++size)
    for (const char mutation : mutations) {
      // A fresh block of exactly this size, so that a read beyond it is a fault.
      std::vector<char> bytes(nasty.begin(), nasty.begin() + static_cast<std::ptrdiff_t>(size));
      if (size > 0) bytes[size / 2] = mutation;
      const std::string trace = Read({bytes.data(), bytes.size()}, ';');
      EXPECT_LE(trace.size(), 100 * (size + 1));
    }
}

TEST(CsvReader, ReadsBackWhatWasQuoted) {
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    constexpr std::string_view kLetters = "ab,;\"\n\r\t ";
    std::string text, expected = "1: ";
    for (int field = 0; field < 5; ++field) {
      text += field > 0 ? ",\"" : "\"";
      expected += field > 0 ? "|" : "";
      for (std::size_t i = random() % 8; i > 0; --i) {
        const char letter = kLetters[random() % kLetters.size()];
        text.append(letter == '"' ? 2 : 1, letter);
        expected += letter;
      }
      text += '"';
    }
    EXPECT_EQ(Read(text), expected + "\n");
  }
}

TEST(CsvSeparator, IsFoundOut) {
  constexpr std::pair<char, std::string_view> kCases[] = {{',', ""},
                                                          {',', "one column\nof words\n"},
                                                          {',', "a,b\n1,2\n"},
                                                          {'\t', "a\tb\n1\t2\n"},
                                                          {'|', "a|b\n1|2\n"},
                                                          {',', "a,b,c;d\n"},
                                                          {';', "1,5;2,5\n3,5;4,5\n"}};  // decimal commas all over
  for (const auto& [expected, text] : kCases) EXPECT_EQ(DetectSeparator(text), expected) << text;
  EXPECT_EQ(DetectSeparator("a,b\n\"x;y\",1\n\"p;q\",2\n"), ',') << "quoted, so not separating";
  EXPECT_EQ(DetectSeparator("city,note; remark\nRome,x\nOslo,y\n"), ',') << "only the header has it";
  EXPECT_EQ(DetectSeparator("a;b;c\n\"1;2;3\n"), ';') << "the quote is told when the file is read";
}

}  // namespace
}  // namespace vx::kestrix
