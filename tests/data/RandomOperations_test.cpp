// Random operations on a table and all kinds of cursors, on the engine and on the naive model (model/) side by side.
// Positions, lists, values, ids, notifications, answers and errors must agree after each step.
//
//   KESTRIX_MODEL_OPS=2000000 KESTRIX_MODEL_SEED=77 tests_data --gtest_filter='RandomOperations.*'

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "datetime/VXDateFunc_UNT.h"
#include "model/RandomRun.h"
#include "platform/runtime/Locale.h"

namespace vx {
namespace {

constexpr std::int64_t kOperations = 210'000;
constexpr std::int32_t kOperationsPerTable = 350;

std::int64_t FromEnvironment(const char* name, std::int64_t otherwise) {
  const char* text = std::getenv(name);
  return text != nullptr ? std::atoll(text) : otherwise;
}

/// Keys of buckets hold dates as texts, so the test says how they look; weeks are set by each run.
class RandomOperations : public testing::Test {
 protected:
  RandomOperations() : locale_(Settings()) {}
  ~RandomOperations() override { GVXStartOfWeek = startOfWeek_; }

 private:
  static TLocaleSettings Settings() {
    TLocaleSettings settings = ClassicLocale();
    settings.ShortDateFormat = "d/M/yyyy";
    settings.LongTimeFormat = "h:mm:ss";
    return settings;
  }

  const std::int32_t startOfWeek_ = GVXStartOfWeek;
  const TLocaleScope locale_;
};

TEST_F(RandomOperations, AgreeWithTheNaiveModel) {
  const std::int64_t operations = FromEnvironment("KESTRIX_MODEL_OPS", kOperations);
  auto seed = static_cast<std::uint32_t>(FromEnvironment("KESTRIX_MODEL_SEED", 1));
  for (std::int64_t done = 0; done < operations; ++seed) {
    naive::TRandomRun run(seed);
    for (std::int32_t step = 0; step < kOperationsPerTable; ++step, ++done) {
      const std::string difference = run.Step();
      ASSERT_EQ(difference, "") << "KESTRIX_MODEL_SEED=" << seed << ", step " << step << "\n" << run.Report();
    }
  }
}

}  // namespace
}  // namespace vx
