// The four compares agree with their plain definitions on any bytes, and are orders.
#include "platform/runtime/Text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/TestKit.h"

namespace vx {
namespace {

using test::Cut;

constexpr char32_t kLastCode = 0x10FFFF;

std::string Utf8(char32_t code) {
  std::string text;
  AppendCodePoint(text, code);
  return text;
}

bool IsSurrogate(char32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

/// Pieces that meet often, so that equal beginnings and different cases are common; broken ones among them.
std::string RandomText(std::mt19937& random) {
  using namespace std::string_view_literals;
  static const std::vector<std::string> pieces =
      Cut("a A z Z _ [ 7 \0 Order oRDER é É ß ẞ σ ς Σ \u212A k ſ s İ Ж ж 中 😀 𐐀 𐐨 abcdefgh ABCDEFGH \U0010FFFD "
          "\x80 \xC3 \xFF \xE4\xB8 \xC0\xAF \xED\xA0\x80 \xF4\x90\x80\x80 \xF0\x9F\x98"sv);
  std::string text;
  for (std::size_t left = random() % 7; left > 0; --left) text += pieces[random() % pieces.size()];
  return text;
}

std::int32_t Sign(int value) { return (value > 0) - (value < 0); }

/// The definition: unfolded, code point by code point, no fast path.
std::int32_t PlainCompare(const std::string& a, const std::string& b) { return Sign(FoldCase(a).compare(FoldCase(b))); }

TEST(Text, ComparesDifferWhereTheyShould) {
  struct TCase {
    std::string a, b;
    std::int32_t exact, ascii, ansi, upper;
  };
  const std::vector<TCase> cases = {
      {"", "", 0, 0, 0, 0},
      {"", "a", -1, -1, -1, -1},
      {"abc", "ABC", 1, 0, 0, 0},
      {"a", "B", 1, -1, -1, -1},
      {"_", "a", -1, -1, -1, 1},
      {"ÉCOLE", "école", -1, -1, 0, 0},
      {"\u212A", "k", 1, 1, 0, 1},         // the Kelvin sign folds to k but is its own upper case
      {"ſ", "S", 1, 1, 0, 0},              // the long s
      {"ß", "SS", 1, 1, 1, 1},             // one letter stays one letter
      {"ς", "σ", -1, -1, 0, 0},            // final sigma
      {"z", "é", -1, -1, -1, -1},          // by code point, in no language's order
      {"\xFF", "\U0010FFFD", 1, 1, 1, 1},  // a malformed byte comes after every letter
      {"\x80", "é", -1, -1, 1, -1},        // but to its bytes it is only a byte
      {"Department of Arts", "DEPARTMENT OF ART", 1, 1, 1, 1},
      {"0123456@", "0123456`", -1, -1, -1, -1},  // neighbours of the letters don't fold
      {"0123456[", "0123456{", -1, -1, -1, -1},
  };
  for (const TCase& each : cases) {
    SCOPED_TRACE(each.a + " / " + each.b);
    EXPECT_EQ(CompareStr(each.a, each.b), each.exact);
    EXPECT_EQ(CompareText(each.a, each.b), each.ascii);
    EXPECT_EQ(AnsiCompareText(each.a, each.b), each.ansi);
    EXPECT_EQ(CompareUpper(each.a, each.b), each.upper);
    EXPECT_EQ(AnsiCompareText(each.b, each.a), -each.ansi);
    EXPECT_EQ(SameText(each.a, each.b), each.ansi == 0);
  }
}

TEST(Text, FoldedBytesAndPrefixesHaveTheOrderOfTheCompareOnAnyBytes) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 100000; ++round) {
    const std::string a = RandomText(random);
    const std::string b = RandomText(random);
    const std::int32_t order = AnsiCompareText(a, b);
    ASSERT_EQ(order, PlainCompare(a, b)) << testing::PrintToString(a) << " / " << testing::PrintToString(b);
    const std::uint64_t left = FoldPrefix8(a);
    const std::uint64_t right = FoldPrefix8(b);
    ASSERT_TRUE(left == right || (left < right ? -1 : 1) == order) << testing::PrintToString(a);
    const std::string folded = FoldCase(a) + std::string(32, '\0');
    const std::size_t at = random() % 24;
    std::uint64_t prefix = 0, later = 0;
    for (std::size_t i = 0; i < 8; ++i) prefix = prefix << 8 | static_cast<std::uint8_t>(folded[i]);
    for (std::size_t i = at; i < at + 8; ++i)
      later = later << 8 | static_cast<std::uint8_t>(i < folded.size() ? folded[i] : '\0');
    ASSERT_EQ(FoldEight(a, at), later) << testing::PrintToString(a) << " at " << at;
    const std::string slot = a + std::string(1, '\0') + "after it";
    const std::size_t room = a.size() + random() % 9;
    ASSERT_TRUE(a.find('\0') != std::string::npos || FoldSlotPrefix8(slot.data(), room) == prefix);
    ASSERT_EQ(left, prefix) << testing::PrintToString(a);
  }
}

TEST(Text, WordsOfEightBytesFoldAsSingleBytesDo) {
  for (int byte = 0; byte < 256; ++byte)
    for (std::size_t place = 0; place < 9; ++place) {
      std::string text = "0aZ[`{@~9";
      text[place] = static_cast<char>(byte);
      const std::string folded = FoldCase(text);
      EXPECT_EQ(AnsiCompareText(text, "0az[`{@~9"), Sign(folded.compare("0az[`{@~9"))) << byte << " at " << place;
    }
}

TEST(Text, EveryCodePointSurvivesAndFoldsOnce) {
  for (char32_t code = 0; code <= kLastCode; ++code) {
    const std::string text = Utf8(code);
    std::size_t at = 0;
    if (IsSurrogate(code)) {
      ASSERT_FALSE(IsValidUtf8(text));
      continue;
    }
    ASSERT_EQ(NextCodePoint(text, at), code);
    ASSERT_EQ(at, text.size());
    const std::string folded = FoldCase(text);
    ASSERT_TRUE(IsValidUtf8(folded)) << std::hex << static_cast<unsigned>(code);
    ASSERT_EQ(FoldCase(folded), folded) << std::hex << static_cast<unsigned>(code);
    ASSERT_EQ(CodePointCount(AnsiUpperCase(text)), 1u);
  }
}

TEST(Text, CaseChangesKeepWhatIsNoLetter) {
  EXPECT_EQ(AnsiUpperCase("straße ÿ\xFF\xC3"), "STRAßE Ÿ\xFF\xC3");
  EXPECT_EQ(AnsiLowerCase("ÀÇŸΣЖ\xE4\xB8"), "àçÿσж\xE4\xB8");
  EXPECT_EQ(UpperCase("aé"), "Aé");
  EXPECT_EQ(LowerCase("AÉ"), "aÉ");
  EXPECT_EQ(Trim("\t\0 a b \r\n"), "");  // a C text ends at its zero
  EXPECT_EQ(Trim(std::string_view("\t\0 a b \r\n", 9)), "a b");
  EXPECT_EQ(Trim("\u00A0x "), "\u00A0x");  // only bytes up to 32
}

TEST(Text, MalformedBytesAreToldAndCountedOneByOne) {
  for (const std::string& broken : Cut("\x80 \xC3 \xC0\xAF \xE0\x80\xAF \xED\xA0\x80 \xF4\x90\x80\x80 \xF0\x9F\x98 "
                                       "\xF8\x88\x80\x80\x80 \xE4\xB8z \xFE\xFF")) {
    EXPECT_FALSE(IsValidUtf8(broken)) << testing::PrintToString(broken);
    EXPECT_EQ(CodePointCount(broken), broken.size()) << testing::PrintToString(broken);
  }
  EXPECT_TRUE(IsValidUtf8("aé中😀"));
  EXPECT_EQ(CodePointCount("aé中😀"), 4u);
}

TEST(Text, CutNeverSplitsACodePoint) {
  const std::string text = "aé中😀b";  // lengths 1 2 3 4 1
  const std::size_t cuts[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 11, 11};
  for (std::size_t bytes = 0; bytes < std::size(cuts); ++bytes)
    EXPECT_EQ(CutAtCodePoint(text, bytes).size(), cuts[bytes]);
  EXPECT_EQ(CutAtCodePoint("\x98\x98\x98\x98\x98", 3).size(), 3u);  // tails without a lead may be cut anywhere
  EXPECT_EQ(CutAtCodePoint("\xF0\x9F\x98", 2).size(), 2u);
}

}  // namespace
}  // namespace vx
