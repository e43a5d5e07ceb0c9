// Positions, bounds and the lists' own arithmetic.
#include "platform/runtime/List.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

void* P(std::uintptr_t value) { return reinterpret_cast<void*>(value); }

TEST(List, PositionsOutsideRaiseAndChangeNothing) {
  const auto list = Make<TList>();
  list->Add(P(8));
  list->Add(P(16));
  for (const std::int32_t bad : {-1, 2, 2147483647}) {
    const std::string wanted = "List index out of bounds (" + std::to_string(bad) + ")";
    const std::function<void()> calls[] = {[&] { list->Items(bad); },   [&] { list->Put(bad, P(1)); },
                                           [&] { list->Delete(bad); },  [&] { list->Exchange(0, bad); },
                                           [&] { list->Move(0, bad); }, [&] { list->Move(bad, 0); }};
    for (const auto& call : calls) EXPECT_EQ(MessageOf<EListError>(call), wanted);
  }
  EXPECT_EQ(MessageOf<EListError>([&] { list->Insert(3, P(1)); }), "List index out of bounds (3)");
  EXPECT_EQ(MessageOf<EListError>([&] { list->SetCapacity(1); }), "List capacity out of bounds (1)");
  EXPECT_EQ(MessageOf<EListError>([&] { list->SetCapacity(-1); }), "List capacity out of bounds (-1)");
  EXPECT_EQ(list->Count(), 2);
  EXPECT_EQ(list->Items(1), P(16));

  const auto empty = Make<TList>();
  EXPECT_EQ(MessageOf<EListError>([&] { empty->First(); }), "List index out of bounds (0)");
  EXPECT_EQ(MessageOf<EListError>([&] { empty->Last(); }), "List index out of bounds (-1)");
}

// A long list notes what is deleted and closes up later: its steps are mostly those that don't end that.
void CompareWithVector(std::size_t length, int steps, int oneInMoves) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto list = Make<TList>();
  std::vector<void*> plain;
  const auto below = [&](std::size_t limit) { return static_cast<std::int32_t>(random() % limit); };
  for (std::size_t i = 0; i < length; ++i) plain.push_back(P(random() % length));
  for (void* const item : plain) list->Add(item);
  for (int step = 0; step < steps; ++step) {
    void* const item = P(random() % (length + 6));  // in a short list few values; null among them
    const std::int32_t at = plain.empty() ? 0 : below(plain.size());
    const std::int32_t to = plain.empty() ? 0 : below(plain.size());
    switch (plain.empty() ? 0 : random() % (random() % static_cast<unsigned>(oneInMoves) == 0 ? 9 : 6)) {
      case 0:
        ASSERT_EQ(list->Add(item), static_cast<std::int32_t>(plain.size()));
        plain.push_back(item);
        break;
      case 1:
      case 2:
        list->Delete(at);
        plain.erase(plain.begin() + at);
        break;
      case 3: {
        const auto found = std::find(plain.begin(), plain.end(), item);
        ASSERT_EQ(list->Remove(item), found == plain.end() ? -1 : found - plain.begin());
        if (found != plain.end()) plain.erase(found);
        break;
      }
      case 4:
        list->Exchange(at, to);
        std::swap(plain[static_cast<std::size_t>(at)], plain[static_cast<std::size_t>(to)]);
        break;
      case 5:
        list->Put(at, item);
        plain[static_cast<std::size_t>(at)] = item;
        break;
      case 6:
        list->Insert(at, item);
        plain.insert(plain.begin() + at, item);
        break;
      case 7: {
        void* const moved = plain[static_cast<std::size_t>(at)];
        list->Move(at, to);
        plain.erase(plain.begin() + at);
        plain.insert(plain.begin() + to, moved);
        break;
      }
      default:
        list->Pack();
        std::erase(plain, nullptr);
        list->SetCapacity(list->Count());
    }
    ASSERT_EQ(list->Count(), static_cast<std::int32_t>(plain.size())) << "step " << step;
    if (!plain.empty()) {
      const std::int32_t look = below(plain.size());
      ASSERT_EQ(list->Items(look), plain[static_cast<std::size_t>(look)]) << "step " << step;
    }
    if (length > 0 && step % 700 != 0) continue;
    const bool same = std::equal(plain.begin(), plain.end(), std::as_const(*list).Data());
    ASSERT_TRUE(same) << "step " << step;
  }
}

TEST(List, AgreesWithAPlainVector) {
  CompareWithVector(0, 5000, 1);
  CompareWithVector(9000, 6000, 400);
}

}  // namespace
}  // namespace vx
