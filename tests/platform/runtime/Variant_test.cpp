// The table of the compare, kind by kind; exact numbers; conversions and their errors; arrays and interfaces.
#include "platform/runtime/Variant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "platform/runtime/Locale.h"

namespace vx {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t kMaxInt64 = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMinInt64 = std::numeric_limits<std::int64_t>::min();

struct TCounted : TImplements<> {};

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

template <class Call>
std::string ErrorOf(Call call) {
  try {
    call();
  } catch (const EVariantError& error) {
    return error.Message();
  }
  return "nothing raised";
}

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
  const std::pair<Variant, TVariantKind> cases[] = {{Variant(), vkUnassigned},
                                                    {Variant::Null(), vkNull},
                                                    {true, vkBoolean},
                                                    {std::uint8_t{1}, vkByte},
                                                    {std::int8_t{-1}, vkSmallint},
                                                    {std::int16_t{1}, vkSmallint},
                                                    {std::uint16_t{1}, vkWord},
                                                    {1, vkInteger},
                                                    {1u, vkInt64},
                                                    {std::int64_t{1}, vkInt64},
                                                    {1.0, vkDouble},
                                                    {1.0f, vkDouble},
                                                    {Variant::Date(1), vkDate},
                                                    {"", vkString},
                                                    {std::string("a"), vkString},
                                                    {std::string_view("a"), vkString},
                                                    {Variant::Array({}), vkArray},
                                                    {MakeCounted<TCounted>(), vkInterface}};
  for (const auto& [value, kind] : cases) EXPECT_STREQ(VariantKindName(value.Kind()), VariantKindName(kind));
  static_assert(!std::is_constructible_v<Variant, std::uint64_t> && !std::is_constructible_v<Variant, char> &&
                !std::is_constructible_v<Variant, void*> && !std::is_constructible_v<Variant, TVariantKind>);
}

TEST_F(VariantTest, NumbersCompareExactly) {
  const struct {
    Variant a, b;
    char relation;
  } cases[] = {
      {std::int64_t{9007199254740993}, 9007199254740992.0, '>'},
      {"9007199254740993", 9007199254740992.0, '>'},
      {"9007199254740993", std::int64_t{9007199254740993}, '='},
      {kMaxInt64, 9223372036854775808.0, '<'},
      {kMinInt64, -9223372036854775808.0, '='},
      {kMinInt64, -kInfinity, '>'},
      {kMaxInt64, kInfinity, '<'},
      {-1, -1.5, '>'},
      {1, 1.5, '<'},
      {0, -0.0, '='},
      {0.0, -0.0, '='},
      {kInfinity, kNaN, '<'},
      {" +1.5 ", 1.5, '='},
      {"1e3", 1000, '='},
      {"0x10", 16, 'E'},
      {"1 2", 1, 'E'},
      {"nan", kNaN, 'E'},
      {"1,5", 1.5, 'E'},
      {"+-1", -1, 'E'},
      {std::string("1\0"
                   "1",
                   3),
       11, 'E'},
  };
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
  const std::int64_t edges[] = {0, 1, -1, 9007199254740992, kMaxInt64, kMinInt64};
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
  EXPECT_EQ(Variant("9223372036854775807").AsInt64(), kMaxInt64);
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

  EXPECT_EQ(ErrorOf([] { Variant("twelve").AsInteger(); }),
            "Cannot convert a variant of kind String ('twelve') to Integer");
  EXPECT_EQ(ErrorOf([] { Variant(kMaxInt64).AsInteger(); }),
            "Cannot convert a variant of kind Int64 (9223372036854775807) to Integer");
  EXPECT_EQ(ErrorOf([] { Variant(kNaN).AsInt64(); }), "Cannot convert a variant of kind Double (NAN) to Int64");
  EXPECT_EQ(ErrorOf([] { Variant(9223372036854775808.0).AsInt64(); }).substr(0, 14), "Cannot convert");
  EXPECT_EQ(ErrorOf([] { Variant::Null().AsString(); }), "Cannot convert a variant of kind Null to String");
  EXPECT_EQ(ErrorOf([] { Variant("2024-02-30").AsDate(); }),
            "Cannot convert a variant of kind String ('2024-02-30') to Date");
  EXPECT_EQ(ErrorOf([] { Variant(1).Text(); }), "Cannot convert a variant of kind Integer (1) to String");
  EXPECT_EQ(ErrorOf([] { Variant(std::string(1000, 'x')).AsDouble(); }).size(), 134u);  // quotes 80 bytes of it
  EXPECT_EQ(ErrorOf([] { VarCompare(1, "one"); }), "Cannot convert a variant of kind String ('one') to Integer");
  EXPECT_EQ(ErrorOf([] { VarCompare(Variant::Array({}), 1); }),
            "Cannot compare a variant of kind Integer with one of kind Array");
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
  EXPECT_EQ(ErrorOf([&] { Variant::Array({deep}); }), "Arrays nested deeper than 64");
  EXPECT_TRUE(deep == deep);

  Variant wide = Variant::Array({1});  // twice itself at each level: few bytes, but very many elements to walk
  EXPECT_EQ(ErrorOf([&] {
              for (int level = 0; level < 40; ++level) wide = Variant::Array({wide, wide});
            }),
            "An array of more than 16777216 elements");
}

TEST_F(VariantTest, InterfacesAreHeldByACount) {
  const auto object = MakeCounted<TCounted>();
  {
    const Variant value = object;
    const std::vector<Variant> copies(5, value);
    EXPECT_EQ(object->RefCount(), 2);  // the copies share one count
    EXPECT_EQ(RelationOf(value, copies[0]), '=');
    EXPECT_EQ(RelationOf(value, MakeCounted<TCounted>()), 'n');
    EXPECT_EQ(value.AsInterface().Get(), static_cast<IUnknown*>(object.Get()));
  }
  EXPECT_EQ(object->RefCount(), 1);
}

}  // namespace
}  // namespace vx
