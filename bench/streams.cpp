// Component streams: a form of 100,000 components, written and read in both forms. MB/s counts the bytes of the form in
// hand, binary or text; "rows" are flat under one owner, "groups" are 1,000 groups of 99 each.
//
// Memory is counted, not sampled: every allocation of the program is. "of_tree" is the most that was alive at a time
// while reading, the finished tree and what was read from included, divided by what the tree takes.
//
//   ./dev bench streams
#include <malloc.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include "Timing.h"
#include "platform/component/ComponentStream.h"
#include "platform/component/Published.h"
#include "platform/component/StreamText.h"

namespace {

std::size_t alive = 0;
std::size_t most = 0;

}  // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const memory = std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  alive += malloc_usable_size(memory);
  if (alive > most) most = alive;
  return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  alive -= malloc_usable_size(memory);
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace {

using namespace bench;

constexpr std::int32_t kComponents = 100'000;

enum TUrgency { urLow, urNormal, urHigh };

}  // namespace

template <>
struct vx::TEnumInfo<TUrgency> {
  static constexpr std::string_view kTypeName = "TUrgency";
  static constexpr std::string_view kNames[] = {"urLow", "urNormal", "urHigh"};
};

namespace {

/// What a planner's form might hold a lot of.
class TJob : public vx::TComponent {
 public:
  using TComponent::TComponent;
  static const vx::TClass& StaticClass() {
    static const vx::TClass info = vx::TClassBuilder<TJob>("TJob", TComponent::StaticClass())
                                       .Property("Caption", &TJob::GetCaption, &TJob::SetCaption)
                                       .Property("Quantity", &TJob::GetQuantity, &TJob::SetQuantity)
                                       .Default(0)
                                       .Property("Start", &TJob::GetStart, &TJob::SetStart)
                                       .TypeName("TDateTime")
                                       .Property("Urgency", &TJob::GetUrgency, &TJob::SetUrgency)
                                       .Default(urNormal)
                                       .Property("IsFirm", &TJob::IsFirm, &TJob::SetFirm)
                                       .Default(false)
                                       .Property("Before", &TJob::GetBefore, &TJob::SetBefore)
                                       .Build();
    return info;
  }
  const vx::TClass& ClassType() const override { return StaticClass(); }

  const std::string& GetCaption() const { return caption_; }
  void SetCaption(const std::string& value) { caption_ = value; }
  std::int32_t GetQuantity() const { return quantity_; }
  void SetQuantity(std::int32_t value) { quantity_ = value; }
  double GetStart() const { return start_; }
  void SetStart(double value) { start_ = value; }
  TUrgency GetUrgency() const { return urgency_; }
  void SetUrgency(TUrgency value) { urgency_ = value; }
  bool IsFirm() const { return firm_; }
  void SetFirm(bool value) { firm_ = value; }
  TJob* GetBefore() const { return before_; }
  void SetBefore(TJob* value) { before_ = value; }

 private:
  std::string caption_;
  std::int32_t quantity_ = 0;
  double start_ = 0;
  TUrgency urgency_ = urNormal;
  bool firm_ = false;
  TJob* before_ = nullptr;
};

TJob* AddJob(TJob& owner, std::int32_t number, TJob* before) {
  TJob* const job = vx::New<TJob>(&owner);
  job->SetName("Job" + std::to_string(number));
  job->SetCaption("Assemble order " + std::to_string(10'000'000 + number) + " for the customer");
  job->SetQuantity(number % 977 + 1);
  job->SetStart(45'000 + number * 0.375);
  job->SetUrgency(static_cast<TUrgency>(number % 3));
  job->SetFirm(number % 2 == 0);
  job->SetBefore(before);
  return job;
}

vx::TOwned<TJob> MakeTree(std::int32_t ofGroup) {
  vx::TOwned<TJob> root = vx::Make<TJob>();
  root->SetName("Plan");
  TJob* group = root.get();
  TJob* before = nullptr;
  for (std::int32_t i = 1; i < kComponents; ++i) {
    const bool beginsGroup = ofGroup > 1 && i % ofGroup == 1;
    before = AddJob(beginsGroup ? *root : *group, i, before);
    if (beginsGroup) group = before;
  }
  return root;
}

/// MB/s of `bytes` in the median of the runs.
void Report(benchmark::State& state, std::size_t bytes) {
  state.counters["MB_per_s"] = static_cast<double>(bytes) / 1e3 / state.counters["median_ms"];
  state.counters["MB"] = static_cast<double>(bytes) / 1e6;
}

void Write(benchmark::State& state, std::int32_t ofGroup, std::string (*write)(vx::TComponent&)) {
  const vx::TOwned<TJob> tree = MakeTree(ofGroup);
  std::string form;
  RunWork(state, {.before = [&] { form = {}; }, .body = [&] { form = write(*tree); }});
  Report(state, form.size());
}

using TRead = vx::TOwned<vx::TComponent> (*)(std::string_view, const vx::TStreamOptions&);

void Read(benchmark::State& state, std::int32_t ofGroup, std::string (*write)(vx::TComponent&), TRead read) {
  std::string form, binary;
  {
    const vx::TOwned<TJob> tree = MakeTree(ofGroup);
    form = write(*tree);
    binary = vx::ComponentToBinary(*tree);
  }
  vx::TOwned<vx::TComponent> tree;
  std::size_t begin = 0;
  const auto after = [&]() -> std::string {
    state.counters["of_tree"] = static_cast<double>(most - begin + form.size()) / static_cast<double>(alive - begin);
    return vx::ComponentToBinary(*tree) == binary ? "" : "what was read isn't what was written";
  };
  RunWork(state, {.before =
                      [&] {
                        tree.reset();
                        begin = most = alive;
                      },
                  .body = [&] { tree = read(form, {}); },
                  .after = after});
  Report(state, form.size());
}

void AddBenches(const std::string& name, std::int32_t ofGroup) {
  const auto add = [](const std::string& title, const auto& work) {
    benchmark::RegisterBenchmark(title.c_str(), work)
        ->Iterations(kRuns)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
  };
  add("streams/write_binary/" + name, [=](auto& state) { Write(state, ofGroup, &vx::ComponentToBinary); });
  add("streams/read_binary/" + name,
      [=](auto& state) { Read(state, ofGroup, &vx::ComponentToBinary, &vx::BinaryToComponent); });
  add("streams/write_text/" + name, [=](auto& state) { Write(state, ofGroup, &vx::ComponentToText); });
  add("streams/read_text/" + name,
      [=](auto& state) { Read(state, ofGroup, &vx::ComponentToText, &vx::TextToComponent); });
}

}  // namespace

int main(int argc, char** argv) {
  vx::RegisterClass(TJob::StaticClass());
  AddBenches("rows", 1);
  AddBenches("groups", 100);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
