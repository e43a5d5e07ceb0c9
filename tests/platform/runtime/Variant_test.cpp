// The table of the compare, kind by kind; exact numbers; conversions and their errors; arrays and interfaces.
#include "platform/runtime/Variant.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "platform/runtime/Locale.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::kInfinity;
using test::kNaN;
using test::MessageOf;

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();

using namespace std::literals;

struct TCounted : TImplements<> {};
TInterfaceRef<TCounted> Counted() { return MakeCounted<TCounted>(); }

/// '<', '=', '>', 'n' for not equal, 'E' for EVariantError.
char RelationOf(const Variant& a, const Variant& b) {
  try {
    return "<=>n"[VarCompare(a, b)];
  } catch (const EVariantError&) {
    return 'E';
  }
}

class VariantTest : public testing::Test {
  const TLocaleScope locale_{ClassicLocale()};
};

TEST_F(VariantTest, TableOfTheCompareKindByKind) {
  const struct {
    const char* name;
    Variant value;
    const char* row;  // relation to each value of this list
  } table[] = {
      //                                                         U N F T B S W I L D N D " 0 T a A O
      {"unassigned", Variant(), /*                            */ "=n=><><=<<<<=<<<nn"},
      {"Null", Variant::Null(), /*                            */ "n=nnnnnnnnnnnnnnnn"},
      {"False", false, /*                                     */ "=n=><><=<<<<>><<EE"},
      {"True", true, /*                                       */ "<n<=<=<<<<<<>>=<EE"},
      {"Byte 200", std::uint8_t{200}, /*                      */ ">n>>=><><><<E>EEEE"},
      {"Smallint -1", std::int16_t{-1}, /*                    */ "<n<=<=<<<<<<E<EEEE"},
      {"Word 60000", std::uint16_t{60000}, /*                 */ ">n>>>>=><><>E>EEEE"},
      {"Integer 0", 0, /*                                     */ "=n=><><=<<<<E<EEEE"},
      {"Int64 2^53+1", std::int64_t{9007199254740993}, /*     */ ">n>>>>>>=><>E>EEEE"},
      {"Double 0.5", 0.5, /*                                  */ ">n>><><><=<<E=EEEE"},
      {"NaN", kNaN, /*                                        */ ">n>>>>>>>>=>E>EEEE"},
      {"Date 45351", Variant::Date(45351), /*                 */ ">n>>>><><><=E>EEEE"},
      {"''", "", /*                                           */ "=n<<EEEEEEEE=<<<EE"},
      {"'0.5'", "0.5", /*                                     */ ">n<<<><><=<<>=<<EE"},
      {"'True'", "True", /*                                   */ ">n>=EEEEEEEE>>=<EE"},
      {"'abc'", "abc", /*                                     */ ">n>>EEEEEEEE>>>=EE"},
      {"array", Variant::Array({1}), /*                       */ "nnEEEEEEEEEEEEEE=E"},
      {"interface", TInterfaceRef<IUnknown>(), /*             */ "nnEEEEEEEEEEEEEEE="},
  };
  for (std::size_t row = 0; row < std::size(table); ++row)
    for (std::size_t column = 0; column < std::size(table); ++column) {
      const char wanted = table[row].row[column];
      const char found = RelationOf(table[row].value, table[column].value);
      EXPECT_EQ(found, wanted) << table[row].name << " with " << table[column].name;
    }
}

TEST_F(VariantTest, KindsFollowFromTypes) {
  std::string kinds;
  for (const Variant& value :
       std::initializer_list<Variant>{true, std::uint8_t{1}, std::int8_t{-1}, std::int16_t{1}, std::uint16_t{1}, 1, 1u,
                                      std::int64_t{1}, 1.0f, Variant::Date(1), "", "a"sv, Counted()})
    kinds += VariantKindName(value.Kind()) + " "s;
  EXPECT_EQ(kinds, "Boolean Byte Smallint Smallint Word Integer Int64 Int64 Double Date String String Interface ");
  static_assert(!std::is_constructible_v<Variant, std::uint64_t> && !std::is_constructible_v<Variant, char> &&
                !std::is_constructible_v<Variant, void*> && !std::is_constructible_v<Variant, TVariantKind>);
}

TEST_F(VariantTest, NumbersCompareExactly) {
  constexpr std::int64_t kOdd = 9007199254740993;  // 2^53 + 1: the first that no double holds
  constexpr const char* kOddText = "9007199254740993";
  const struct {
    Variant a, b;
    char relation;
  } cases[] = {{0, -0.0, '='},         {0.0, -0.0, '='},    {-1, -1.5, '>'},         {1, 1.5, '<'},
               {" +1.5 ", 1.5, '='},   {"1e3", 1000, '='},  {"0x10", 16, 'E'},       {"1 2", 1, 'E'},
               {"nan", kNaN, 'E'},     {"1,5", 1.5, 'E'},   {"+-1", -1, 'E'},        {"1\0z"s, 1, 'E'},
               {kMin, -0x1p63, '='},   {kMax, 0x1p63, '<'}, {kMin, -kInfinity, '>'}, {kMax, kInfinity, '<'},
               {kInfinity, kNaN, '<'}, {kOdd, 0x1p53, '>'}, {kOddText, 0x1p53, '>'}, {kOddText, kOdd, '='}};
  for (const auto& each : cases) {
    EXPECT_EQ(RelationOf(each.a, each.b), each.relation) << each.a.AsString() << " with " << each.b.AsString();
  }
  TLocaleSettings comma = ClassicLocale();
  comma.DecimalSeparator = ',';
  const TLocaleScope scope(comma);
  EXPECT_TRUE(Variant("1,5") == 1.5);
}

TEST_F(VariantTest, OrderOfNumbersAndBooleansIsStrictAndWeak) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937_64 random(seed);
  const std::int64_t edges[] = {0, 1, -1, 9007199254740992, kMax, kMin};
  const auto next = [&]() -> Variant {
    const std::int64_t whole = edges[random() % 6] / (random() % 2 == 0 ? 1 : 2);
    switch (random() % 5) {
      case 0:
        return random() % 2 == 0;
      case 1:
        return random() % 4 == 0 ? kNaN : static_cast<double>(whole) + static_cast<double>(random() % 3) / 2;
      case 2:
        return Variant::Date(static_cast<double>(whole));
      case 3:
        return static_cast<std::int16_t>(whole);
      default:
        return whole;
    }
  };
  for (int round = 0; round < 50000; ++round) {
    const Variant a = next(), b = next(), c = next();
    const char ab = RelationOf(a, b), bc = RelationOf(b, c), ac = RelationOf(a, c);
    ASSERT_EQ(RelationOf(b, a), ab == '<' ? '>' : ab == '>' ? '<' : '=');
    ASSERT_TRUE(ab == '>' || bc == '>' || ac == (ab == '<' || bc == '<' ? '<' : '='))
        << a.AsString() << ab << b.AsString() << bc << c.AsString() << ", but " << ac;
  }
}

TEST_F(VariantTest, ConvertsOrNamesWhatItCannot) {
  EXPECT_EQ(Variant(2.5).AsInteger(), 2);  // a half to the even number
  EXPECT_EQ(Variant("3.5").AsInteger(), 4);
  EXPECT_EQ(Variant(true).AsInteger(), -1);
  EXPECT_EQ(Variant("9223372036854775807").AsInt64(), kMax);
  EXPECT_EQ(Variant().AsDouble(), 0.0);
  EXPECT_EQ(Variant("2/29/2024 18:00").AsDate(), 45351.75);
  EXPECT_EQ(Variant("45351").AsDate(), 45351.0);
  EXPECT_TRUE(Variant("TRUE").AsBoolean());
  EXPECT_TRUE(Variant("-1").AsBoolean());
  EXPECT_FALSE(Variant(0.0).AsBoolean());
  EXPECT_EQ(Variant(std::uint16_t{60000}).AsString(), "60000");
  EXPECT_EQ(Variant(0.1).AsString(), "0.1");
  EXPECT_EQ(Variant::Date(45351).AsString(), "2/29/2024");
  EXPECT_EQ(Variant(false).AsString(), "False");
  EXPECT_EQ(Variant().AsString(), "");

  const std::pair<std::function<void()>, const char*> failures[] = {
      {[] { Variant("twelve").AsInteger(); }, "convert a variant of kind String ('twelve') to Integer"},
      {[] { Variant(kMax).AsInteger(); }, "convert a variant of kind Int64 (9223372036854775807) to Integer"},
      {[] { Variant(kNaN).AsInt64(); }, "convert a variant of kind Double (NAN) to Int64"},
      {[] { Variant(0x1p63).AsInt64(); }, "convert a variant of kind Double (9.22337203685478E18) to Int64"},
      {[] { Variant::Null().AsString(); }, "convert a variant of kind Null to String"},
      {[] { Variant("2024-02-30").AsDate(); }, "convert a variant of kind String ('2024-02-30') to Date"},
      {[] { Variant(1).Text(); }, "convert a variant of kind Integer (1) to String"},
      {[] { VarCompare(1, "one"); }, "convert a variant of kind String ('one') to Integer"},
      {[] { VarCompare(Variant::Array({}), 1); }, "compare a variant of kind Integer with one of kind Array"},
  };
  for (const auto& [call, message] : failures)
    EXPECT_EQ(MessageOf<EVariantError>(call), std::string("Cannot ") + message);
  const Variant lengthy(std::string(1000, 'x'));
  EXPECT_EQ(MessageOf<EVariantError>([&] { lengthy.AsDouble(); }).size(), 134u) << "quotes 80 bytes of it";
}

TEST_F(VariantTest, ArraysCompareByMembersAndAreShared) {
  const Variant one = Variant::Array({1, "a", Variant::Null()});
  EXPECT_EQ(RelationOf(one, Variant::Array({1.0, "a", Variant::Null()})), '=');
  EXPECT_EQ(RelationOf(one, Variant::Array({1, "b"})), '<');
  EXPECT_EQ(RelationOf(one, Variant::Array({1, "a"})), '>');
  EXPECT_EQ(RelationOf(one, Variant::Array({1, "a", 0})), 'n');
  EXPECT_EQ(RelationOf(one, Variant::Array({"x"})), 'E');
  const Variant copy = one;
  EXPECT_EQ(&copy.Elements(), &one.Elements());
}

TEST_F(VariantTest, HostileArraysEndInAnErrorNotInAHang) {
  Variant deep = Variant::Array({1});
  for (int level = 1; level < Variant::kMaxArrayDepth; ++level) deep = Variant::Array({deep});
  EXPECT_EQ(MessageOf<EVariantError>([&] { Variant::Array({deep}); }), "Arrays nested deeper than 64");
  EXPECT_TRUE(deep == deep);

  Variant wide = Variant::Array({1});  // twice itself at each level: few bytes, but very many elements to walk
  EXPECT_EQ(MessageOf<EVariantError>([&] {
              for (int level = 0; level < 40; ++level) wide = Variant::Array({wide, wide});
            }),
            "An array of more than 16777216 elements");
}

TEST_F(VariantTest, InterfacesAreHeldByACount) {
  const auto object = Counted();
  {
    const Variant value = object;
    const std::vector<Variant> copies(5, value);
    EXPECT_EQ(object->RefCount(), 2);  // the copies share one count
    EXPECT_EQ(RelationOf(value, copies[0]), '=');
    EXPECT_EQ(RelationOf(value, Counted()), 'n');
    EXPECT_EQ(value.AsInterface().Get(), static_cast<IUnknown*>(object.Get()));
  }
  EXPECT_EQ(object->RefCount(), 1);
}

}  // namespace
}  // namespace vx
