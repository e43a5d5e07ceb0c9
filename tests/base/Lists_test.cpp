// The small lists of doubles, integers, pointers and owned objects, beside the standard containers that they resemble.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "base/VXIntegerList_UNT.h"
#include "base/VXLists_O.h"
#include "base/VXOwnerList_O.h"
#include "base/VXStack.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;
constexpr std::int32_t kLow = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHigh = std::numeric_limits<std::int32_t>::max();

// -- Doubles ----------------------------------------------------------------------------------------------------------

std::vector<double> ValuesOf(const TVXDoubleList& list) { return {list.Values().begin(), list.Values().end()}; }

std::int32_t Upwards(double a, double b) { return a < b ? -1 : static_cast<std::int32_t>(a > b); }

TEST(DoubleList, GrowsByTheseCapacities) {
  const auto list = Make<TVXDoubleList>();
  std::vector<std::int32_t> capacities = {0};
  for (std::int32_t i = 0; i < 200; ++i) {
    list->Add(i);
    if (list->Capacity() != capacities.back()) capacities.push_back(list->Capacity());
  }
  EXPECT_EQ(capacities, (std::vector<std::int32_t>{0, 4, 8, 12, 28, 44, 60, 76, 95, 118, 147, 183, 228}));
  list->Clear();
  EXPECT_EQ(list->Capacity(), 0);
}

TEST(DoubleList, WrongNumbersRaiseAndChangeNothing) {
  using TDoubles = TVXDoubleList;
  const std::pair<std::string, std::function<void(TDoubles&)>> cases[] = {
      {"index out of bounds (2)", [](TDoubles& list) { list.Get(2); }},
      {"index out of bounds (-1)", [](TDoubles& list) { list.Put(-1, 0); }},
      {"index out of bounds (2)", [](TDoubles& list) { list.Delete(2); }},
      {"index out of bounds (3)", [](TDoubles& list) { list.Insert(3, 0); }},
      {"index out of bounds (2147483647)", [](TDoubles& list) { list.Insert(kHigh, 0); }},
      {"index out of bounds (2)", [](TDoubles& list) { list.Exchange(0, 2); }},
      {"index out of bounds (-2147483648)", [](TDoubles& list) { list.Move(kLow, 0); }},
      {"capacity out of bounds (1)", [](TDoubles& list) { list.SetCapacity(1); }},
      {"capacity out of bounds (134217728)", [](TDoubles& list) { list.SetCapacity(0x8000000); }},
      {"count out of bounds (-1)", [](TDoubles& list) { list.SetCount(-1); }},
      {"count out of bounds (134217728)", [](TDoubles& list) { list.SetCount(0x8000000); }},
      {"index out of bounds (0)", [](TDoubles&) { Make<TVXDoubleList>()->First(); }},
      {"index out of bounds (-1)", [](TDoubles&) { Make<TVXDoubleList>()->Last(); }},
  };
  const auto list = Make<TVXDoubleList>();
  list->Add(1);
  list->Add(2);
  for (const auto& wrong : cases) {
    EXPECT_EQ(MessageOf<EDoubleListError>([&] { wrong.second(*list); }), "List " + wrong.first);
    EXPECT_EQ(ValuesOf(*list), (std::vector<double>{1, 2})) << wrong.first;
  }
  list->Move(7, 7);
  EXPECT_EQ(MessageOf<EDoubleListError>([&] { list->Move(0, 2); }), "List index out of bounds (2)");
  EXPECT_EQ(ValuesOf(*list), std::vector<double>{2});  // taken out, and nowhere put in
}

TEST(DoubleList, AgreesWithAVector) {
  for (std::uint32_t seed = 1; seed <= 50; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t limit) { return static_cast<std::int32_t>(random() % limit); };
    const auto list = Make<TVXDoubleList>();
    std::vector<double> plain;
    for (std::int32_t step = 0; step < 300; ++step) {
      const double value = below(2) ? below(8) : std::nextafter(below(8), 9);
      const std::int32_t at = below(plain.size() + 1);
      const auto found = std::find(plain.begin(), plain.end(), value);
      const std::int32_t what = plain.empty() ? 0 : below(6);
      if (what <= 1) {
        list->Insert(at, value);
        plain.insert(plain.begin() + at, value);
      } else if (what == 2) {
        ASSERT_EQ(list->Remove(value), found == plain.end() ? -1 : found - plain.begin());
        if (found != plain.end()) plain.erase(found);
      } else if (what == 3) {  // the old values don't come back
        for (const std::int32_t count : {at, at + 2}) list->SetCount(count);
        for (const std::int32_t count : {at, at + 2}) plain.resize(static_cast<std::size_t>(count));
      } else if (what == 4) {
        list->Move(0, list->Count() - 1);
        std::rotate(plain.begin(), plain.begin() + 1, plain.end());
      } else {
        list->Sort(Upwards);
        std::sort(plain.begin(), plain.end());
      }
      ASSERT_EQ(ValuesOf(*list), plain);
    }
  }
}

TEST(DoubleList, SortsByTheFixedMovesAndSurvivesEveryCompare) {
  const auto list = Make<TVXDoubleList>();
  const auto sorted = [&list](const std::vector<double>& values, TDoubleListSortCompare compare) {
    list->Clear();
    for (const double value : values) list->Add(value);
    list->Sort(compare);
    return ValuesOf(*list);
  };
  const auto byTens = [](double a, double b) {
    return static_cast<std::int32_t>(a) / 10 - static_cast<std::int32_t>(b) / 10;
  };
  EXPECT_EQ(sorted({11, 12, 1, 13, 2}, byTens), (std::vector<double>{1, 2, 11, 13, 12}));  // worked out by hand
  EXPECT_EQ(sorted({}, byTens), std::vector<double>());
  EXPECT_EQ(MessageOf<EDoubleListError>([&] {
              sorted({1, 2, 3}, [](double, double) { return -1; });
            }),
            "List index out of bounds (3)");
  EXPECT_EQ(MessageOf<ENilAccess>([&] { list->Sort(nullptr); }), "Access to a missing object: compare of a sort");
}

TEST(DoubleList, TellsWhereItRefused) {
  const auto addressOf = [](auto call) {
    try {
      call(*Make<TVXDoubleList>());
    } catch (const EDoubleListError& error) {
      return error.Address();
    }
    return static_cast<const void*>(nullptr);
  };
  EXPECT_NE(addressOf([](auto& list) { list.Delete(9); }), addressOf([](auto& list) { list.Insert(9, 0); }));
}

/// What a descendant may do wrong.
class TStubbornList : public TVXDoubleList {
 public:
  mutable std::string told;

 protected:
  void Grow() override {
    if (Count() == 4) Clear();  // and makes no room
    if (Count() == 0) TVXDoubleList::Grow();
  }
  void Error(const char* format, std::int32_t) const override { told = format; }
};

TEST(DoubleList, StaysSafeUnderOverridesThatMisbehave) {
  const auto list = Make<TStubbornList>();
  for (std::int32_t i = 0; i < 4; ++i) list->Add(i);
  EXPECT_EQ(MessageOf<EDoubleListError>([&] { list->Insert(4, 4); }), "List index out of bounds (4)");
  EXPECT_EQ(list->told, "List index out of bounds (%d)");
  list->SetCount(1);
  list->SetCapacity(1);
  EXPECT_EQ(MessageOf<EDoubleListError>([&] { list->Add(1); }), "List capacity out of bounds (2)");
}

// -- Integers ---------------------------------------------------------------------------------------------------------

std::vector<std::int32_t> ItemsOf(const TVXCustomIntegerList& list) {
  std::vector<std::int32_t> items;
  const Variant array = list.GetAsVariantArray();
  for (const Variant& item : array.Elements()) items.push_back(item.AsInteger());
  return items;
}

TEST(IntegerList, SortsByTheWrappedDifference) {
  const auto list = Make<TVXIntegerList>();
  list->SetAsVariantArray(Variant::Array({5, -1, 0, 5, -7}));
  list->Sort();
  EXPECT_EQ(ItemsOf(*list), (std::vector<std::int32_t>{-7, -1, 0, 5, 5}));
  list->SetAsVariantArray(Variant::Array({kLow, kHigh}));
  list->Sort();
  EXPECT_EQ(ItemsOf(*list), (std::vector<std::int32_t>{kHigh, kLow}));
}

TEST(IntegerList, TakesArraysAndRefusesTheRest) {
  const auto list = Make<TVXSortedIntegerList>();
  list->SetAsVariantArray(Variant::Array({3, "1", 3, kLow}));
  EXPECT_EQ(ItemsOf(*list), (std::vector<std::int32_t>{kLow, 1, 3}));
  EXPECT_NE(MessageOf<EVariantError>([&] { list->SetAsVariantArray(Variant::Array({9, "x", 8})); }), "nothing raised");
  EXPECT_EQ(ItemsOf(*list), std::vector<std::int32_t>{9});
  for (const Variant& none : {Variant::Null(), Variant(), Variant::Array({})}) {
    list->Add(1);
    list->SetAsVariantArray(none);
    EXPECT_EQ(ItemsOf(*list), std::vector<std::int32_t>());
  }
  EXPECT_NE(MessageOf<EVariantError>([&] { list->SetAsVariantArray(12); }), "nothing raised");
}

TEST(SortedIntegerList, AgreesWithASetInEitherOrder) {
  for (std::uint32_t seed = 1; seed <= 50; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto list = Make<TVXSortedIntegerList>();
    std::set<std::int32_t> plain;
    for (std::int32_t step = 0; step < 200; ++step) {
      const auto near = static_cast<std::int32_t>(random() % 20);
      const std::int32_t value = std::array{near, -near, kLow + near, kHigh - near}[random() % 4];
      if (random() % 20 == 0) list->SetAscending(!list->Ascending());
      const bool known = plain.count(value) != 0;
      const auto rank = std::distance(plain.begin(), plain.lower_bound(value));
      const auto size = static_cast<std::int64_t>(plain.size());
      const std::int64_t place = list->Ascending() ? rank : size - rank - (known ? 1 : 0);
      if (random() % 3 == 0) {
        ASSERT_EQ(list->Remove(value), known ? place : -1);
        plain.erase(value);
      } else {
        ASSERT_EQ(list->IndexOf(value), known ? place : -1);
        ASSERT_EQ(list->Add(value), place);
        plain.insert(value);
      }
      std::vector<std::int32_t> wanted(plain.begin(), plain.end());
      if (!list->Ascending()) std::reverse(wanted.begin(), wanted.end());
      ASSERT_EQ(ItemsOf(*list), wanted);
    }
  }
}

// -- Pointers and objects ---------------------------------------------------------------------------------------------

TEST(Stack, PopsAtBothEndsAndDropsNullsAtEachPop) {
  // A letter is pushed, 0 pushes null, < and > pop first and last.
  const std::map<std::string, std::string> poppedBySteps = {{"<>", "00"},      {"abc<>>>", "acb0"}, {"0a0b>>>", "ba0"},
                                                            {"a0>b>>", "0ba"}, {"0a<<<", "0a0"},    {"000>a>", "0a"}};
  for (const auto& [steps, wanted] : poppedBySteps) {
    char letters[128] = {};
    const auto stack = Make<TVXStack>();
    std::string popped;
    for (const char step : steps) {
      if (step != '<' && step != '>') {
        stack->Push(step == '0' ? nullptr : letters + step);
        continue;
      }
      const auto* const item = static_cast<char*>(step == '<' ? stack->PopFirst() : stack->PopLast());
      popped += item == nullptr ? '0' : static_cast<char>(item - letters);
    }
    EXPECT_EQ(popped, wanted) << steps;
  }
}

/// Writes its letter when it goes.
class TLetter : public TObject {
 public:
  TLetter(std::string& log, char letter) : log_(log), letter_(letter) {}
  void BeforeDestruction() override {
    if (refuses) throw Exception("no");
  }
  void TearDown() override {
    log_ += letter_;
    if (leaves != nullptr) leaves->Remove(this);
  }
  bool refuses = false;
  TVXOwnerList* leaves = nullptr;  ///< it takes itself out of this list as it goes

 private:
  std::string& log_;
  char letter_;
};

struct OwnerListTest : testing::Test {
  TLetter* Letter(char letter) { return Make<TLetter>(log, letter).release(); }
  TLetter* Item(std::int32_t index) { return static_cast<TLetter*>(list->GetItem(index)); }
  void SetUp() override {
    for (const char letter : {'a', 'b', 'c'}) list->Add(Letter(letter));
    list->Add(nullptr);
  }
  std::string log;
  TOwned<TVXOwnerList> list = Make<TVXOwnerList>();
};

TEST_F(OwnerListTest, FreesWhatItLosesAndClearsFromTheEnd) {
  list->SetItem(1, list->GetItem(1));
  EXPECT_EQ(log, "");
  list->SetItem(1, Letter('B'));
  EXPECT_EQ(log, "b");
  EXPECT_EQ(list->Remove(list->GetItem(0)), 0);
  EXPECT_EQ(list->Remove(list.get()), -1);
  EXPECT_EQ(MessageOf<EListError>([&] { list->Delete(3); }), "List index out of bounds (3)");
  EXPECT_EQ(log, "ba");
  list.reset();
  EXPECT_EQ(log, "bacB");
}

TEST_F(OwnerListTest, KeepsAnObjectThatRefusesUntilItsOwnEnd) {
  Item(1)->refuses = true;
  const TOwned<TObject> other(Letter('d'));
  for (const std::function<void()>& call :
       {std::function<void()>([&] { list->SetItem(1, other.get()); }), std::function<void()>([&] { list->Delete(1); })})
    EXPECT_EQ(MessageOf<Exception>(call), "no");
  EXPECT_EQ(list->IndexOf(Item(1)), 1);
  EXPECT_EQ(MessageOf<Exception>([&] { list->Clear(); }), "no");
  EXPECT_EQ(log + "|" + std::to_string(list->GetCount()), "c|2");
  list.reset();
  EXPECT_EQ(log, "cba");
}

TEST_F(OwnerListTest, LetsObjectsTakeThemselvesOut) {
  for (std::int32_t i = 0; i < 3; ++i) Item(i)->leaves = list.get();
  list->SetItem(2, Letter('C'));
  EXPECT_EQ(list->GetCount(), 4);
  EXPECT_EQ(list->GetItem(3), nullptr);
  list->Clear();
  EXPECT_EQ(log, "cCba");
}

}  // namespace
}  // namespace vx
