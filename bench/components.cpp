// Trees of 100,000 components, flat under one owner and with a fan-out of 100: to make and name them, to find each by
// its name, to free the owner. Nothing of it may grow with the square: the 1,000 beside them show that.
//
//   make, find, free      components whose class doesn't listen to notifications
//   friends               as `free`, each of them a friend of one table; then the table goes
//   property              to read and to write an integer of each, found before
//
//   ./dev bench components
#include "Timing.h"
#include "platform/component/Component.h"
#include "platform/component/Published.h"

namespace {

using namespace vx;
using namespace bench;

struct TTree {
  TOwned<TComponent> root = Make<TComponent>();
  std::vector<TComponent*> all;  // in the order of making

  TComponent* OwnerOf(std::size_t index, std::size_t fanOut) const {
    return fanOut == 0 || index < fanOut ? root.get() : all[index / fanOut - 1];
  }
};

std::string NameOf(std::size_t index) { return "C" + std::to_string(index); }

/// A fan-out of 0 is flat.
std::shared_ptr<TTree> TreeOf(std::size_t count, std::size_t fanOut) {
  auto tree = std::make_shared<TTree>();
  tree->all.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    tree->all.push_back(New<TComponent>(tree->OwnerOf(i, fanOut)));
    tree->all.back()->SetName(NameOf(i));
  }
  return tree;
}

TWork MakeAll(std::size_t count, std::size_t fanOut) {
  const auto tree = std::make_shared<std::shared_ptr<TTree>>();
  return {.before = [=] { tree->reset(); }, .body = [=] { *tree = TreeOf(count, fanOut); }};
}

TWork FindAll(std::size_t count, std::size_t fanOut) {
  const std::shared_ptr<TTree> tree = TreeOf(count, fanOut);
  const auto found = std::make_shared<std::size_t>(0);
  return {.before = [=] { *found = 0; },
          .body =
              [=] {
                for (std::size_t i = 0; i < count; ++i)
                  *found += tree->OwnerOf(i, fanOut)->FindComponent(NameOf(i)) == tree->all[i] ? 1 : 0;
              },
          .after =
              [=] {
                return *found == count ? std::string()
                                       : Differs("found", static_cast<double>(count), static_cast<double>(*found));
              }};
}

TWork FreeAll(std::size_t count, std::size_t fanOut, bool friends) {
  const auto tree = std::make_shared<std::shared_ptr<TTree>>();
  const auto table = std::make_shared<TOwned<TComponent>>();
  return {.before =
              [=] {
                *tree = TreeOf(count, fanOut);
                *table = Make<TComponent>();
                if (!friends) return;
                for (TComponent* const each : (*tree)->all) each->FreeNotification(table->get());
              },
          .body =
              [=] {
                (*tree)->root.reset();
                table->reset();
              }};
}

TWork Property(std::size_t count) {
  const std::shared_ptr<TTree> tree = TreeOf(count, 0);
  const TPropInfo* const tag = GetPropInfo(tree->root.get(), "Tag");
  return {.body = [=] {
    for (const TComponent* each : tree->all) SetOrdProp(tree->root.get(), tag, GetOrdProp(each, tag) + 1);
  }};
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (const std::size_t count : {std::size_t{1'000}, std::size_t{100'000}}) {
    for (const std::size_t fanOut : {std::size_t{0}, std::size_t{100}}) {
      const std::string which = (fanOut == 0 ? "/flat/" : "/nested/") + std::to_string(count);
      Register("components/make" + which, [=] { return MakeAll(count, fanOut); });
      Register("components/find" + which, [=] { return FindAll(count, fanOut); });
      Register("components/free" + which, [=] { return FreeAll(count, fanOut, false); });
      Register("components/friends" + which, [=] { return FreeAll(count, fanOut, true); });
    }
    Register("components/property/" + std::to_string(count), [=] { return Property(count); });
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
