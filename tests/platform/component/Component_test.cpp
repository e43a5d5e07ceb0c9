#include "platform/component/Component.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

struct ISpeaker {
  virtual ~ISpeaker() = default;
  virtual std::string Speak() const = 0;
};

std::vector<std::string> heard;  // what all listeners were told, in order; each test clears it

/// Does on a notification what the test says.
class THostile : public TComponent, public ISpeaker {
 public:
  explicit THostile(TComponent* owner = nullptr, std::string text = {}) : TComponent(owner), label(std::move(text)) {
    ++living;
  }
  ~THostile() override { --living; }
  std::string Speak() const override { return label; }
  void AfterConstruction() override {
    TComponent::AfterConstruction();
    if (label == "refuses to begin") throw Exception("no");
  }
  void BeforeDestruction() override {
    if (staysOnce) {
      staysOnce = false;
      throw Exception("not now");
    }
  }
  void TearDown() override {
    if (onTearDown) onTearDown();
    TComponent::TearDown();
  }
  std::string label;
  std::function<void(TComponent*, TOperation)> onNotification;
  std::function<void()> onTearDown;
  bool staysOnce = false;
  bool deaf = false;  // forgets to call the inherited Notification
  static inline int living = 0;

 protected:
  void Notification(TComponent* component, TOperation operation) override {
    if (!deaf) TComponent::Notification(component, operation);
    if (const auto* const other = As<THostile>(component); other != nullptr && !label.empty())
      heard.push_back(label + (operation == opInsert ? "+" : "-") + other->label);
    if (const auto act = onNotification) act(component, operation);
  }
};

class TComponents : public ::testing::Test {
 protected:
  void SetUp() override {
    heard.clear();
    THostile::living = 0;
  }
  void TearDown() override { EXPECT_EQ(THostile::living, 0) << "leaked, or freed twice"; }
};

TEST_F(TComponents, NamesAreIdentifiersAndUniqueWithinTheOwner) {
  const auto form = Make<THostile>();
  TComponent* const first = New<THostile>(form.get());
  TComponent* const second = New<THostile>(form.get());
  first->SetName("Orders");
  EXPECT_EQ(MessageOf<EComponentError>([&] { second->SetName("ORDERS"); }), "A component named ORDERS already exists");
  for (const char* bad : {"1st", "a b", "a.b", "\xC3\xA9t\xC3\xA9", "-"})
    EXPECT_EQ(MessageOf<EComponentError>([&] { second->SetName(bad); }),
              "''" + std::string(bad) + "'' is not a valid component name");
  EXPECT_EQ(second->Name(), "");
  first->SetName("orders");  // its own name in other letters
  EXPECT_EQ(form->FindComponent("ORDERS"), first);
  EXPECT_EQ(form->FindComponent(""), nullptr);

  const auto stranger = Make<THostile>();
  stranger->SetName("Orders");
  EXPECT_THROW(form->InsertComponent(stranger.get()), EComponentError);
  EXPECT_EQ(stranger->Owner(), nullptr);
  EXPECT_THROW(form->Components(2), EListError);
}

TEST_F(TComponents, AConstructionThatFailsLeavesNoTrace) {
  class TThrows : public TComponent {
   public:
    explicit TThrows(TComponent* owner) : TComponent(owner) {
      New<THostile>(static_cast<TComponent*>(this));
      throw Exception("in the constructor");
    }
  };
  const auto form = Make<THostile>();
  EXPECT_THROW(New<TThrows>(form.get()), Exception);
  EXPECT_THROW(New<THostile>(form.get(), "refuses to begin"), Exception);
  form->onNotification = [](TComponent*, TOperation operation) {
    if (operation == opInsert) throw Exception("the owner refuses");
  };
  EXPECT_THROW(New<THostile>(form.get(), "unwanted"), Exception);
  EXPECT_EQ(form->ComponentCount(), 0);
  EXPECT_EQ(THostile::living, 1);
}

TEST_F(TComponents, OwnersFormNoCircle) {
  auto root = Make<THostile>();
  THostile* const child = New<THostile>(root.get());
  EXPECT_THROW(root->InsertComponent(root.get()), EComponentError);
  EXPECT_THROW(child->InsertComponent(root.get()), EComponentError);
  EXPECT_EQ(root->Owner(), nullptr);
}

TEST_F(TComponents, AreToldOfNewcomersAndLeavers) {
  auto form = Make<THostile>(nullptr, "form"), other = Make<THostile>(nullptr, "other");
  New<THostile>(form.get(), "a");
  THostile* const b = New<THostile>(form.get(), "b");
  EXPECT_EQ(heard, (std::vector<std::string>{"a+a", "form+a", "a+b", "b+b", "form+b"}));
  heard.clear();
  other->InsertComponent(b);
  EXPECT_EQ(heard, (std::vector<std::string>{"a-b", "form-b", "b+b", "other+b"}));
  EXPECT_EQ(b->Owner(), other.get());
  EXPECT_EQ(b->ComponentIndex(), 0);
}

TEST_F(TComponents, FriendsAreToldOnceWhicheverGoesFirst) {
  for (const bool askerFirst : {true, false}) {
    auto asker = Make<THostile>(nullptr, "asker"), asked = Make<THostile>(nullptr, "asked");
    asker->FreeNotification(asked.get());
    asker->FreeNotification(asked.get());
    asked->FreeNotification(asker.get());
    heard.clear();
    (askerFirst ? asker : asked).reset();
    EXPECT_EQ(heard, std::vector<std::string>{askerFirst ? "asked-asker" : "asker-asked"});
  }
  auto asker = Make<THostile>(nullptr, "asker"), asked = Make<THostile>(nullptr, "asked");
  asker->FreeNotification(asked.get());
  asked->RemoveFreeNotification(asker.get());
  heard.clear();
  asked.reset();
  EXPECT_TRUE(heard.empty());
}

TEST_F(TComponents, AFriendWhoAsksAgainOrIsDeafKeepsNobodyFromGoing) {
  auto asker = Make<THostile>(nullptr, "asker"), asked = Make<THostile>(nullptr, "asked");
  asker->deaf = true;
  asker->FreeNotification(asked.get());
  asker->onNotification = [&](TComponent* gone, TOperation) { asker->FreeNotification(gone); };
  asked.reset();
  asker.reset();  // remembers nobody any more
  EXPECT_EQ(heard, std::vector<std::string>{"asker-asked"});
}

TEST_F(TComponents, TheTreeGoesLastToFirstAndARefusalOnlyDelays) {
  auto form = Make<THostile>(nullptr, "form");
  std::vector<std::string> order;
  for (const char* label : {"a", "b", "c"}) {
    THostile* const each = New<THostile>(form.get(), label);
    each->onTearDown = [&order, each] { order.push_back(each->label + (each->Is(csDestroying) ? " marked" : "")); };
    each->staysOnce = each->label == "b";
  }
  auto* const b = As<THostile>(form->Components(1));
  EXPECT_THROW(b->Free(), Exception);
  EXPECT_EQ(b->Owner(), form.get());
  b->staysOnce = true;
  form->staysOnce = true;
  EXPECT_THROW(form->Free(), Exception);  // whole, with all that it owns
  EXPECT_EQ(form->ComponentCount(), 3);
  EXPECT_FALSE(b->Is(csDestroying));
  form.release()->Free();
  EXPECT_EQ(order, (std::vector<std::string>{"c marked", "b marked", "a marked"}));
}

TEST_F(TComponents, ListenersMayDoWhatTheyLikeWhileOneGoes) {
  struct TCase {
    const char* name;
    std::function<void(THostile& form, THostile& sender, THostile& listener)> act;
    int livingAfter;  // of form, sender, listener, neighbour and whoever joins; the sender is freed
  };
  const TCase cases[] = {
      {"frees the sender", [](THostile&, THostile& sender, THostile&) { sender.Free(); }, 3},
      {"frees itself", [](THostile&, THostile&, THostile& listener) { listener.Free(); }, 2},
      {"frees its neighbour", [](THostile& form, THostile&, THostile&) { form.FindComponent("neighbour")->Free(); }, 2},
      {"frees the owner of all", [](THostile& form, THostile&, THostile&) { form.Free(); }, 0},
      {"leaves the owner",
       [](THostile& form, THostile&, THostile& listener) {
         form.RemoveComponent(&listener);
         listener.Free();
       },
       2},
      {"brings in another", [](THostile& form, THostile&, THostile&) { New<THostile>(&form); }, 4},
      {"gives the sender a child", [](THostile&, THostile& sender, THostile&) { New<THostile>(&sender); }, 3},
      {"asks the sender again",
       [](THostile&, THostile& sender, THostile& listener) { listener.FreeNotification(&sender); }, 3},
      {"gives the sender another owner",
       [](THostile&, THostile& sender, THostile& listener) { listener.InsertComponent(&sender); }, 3},
      {"raises", [](THostile&, THostile&, THostile&) { throw Exception("hostile"); }, 3},
  };
  for (const bool friends : {true, false}) {
    for (const TCase& c : cases) {
      SCOPED_TRACE(std::string(c.name) + (friends ? ", having asked" : ", as a sibling"));
      auto form = Make<THostile>();
      const TComponentRef<THostile> formRef(form.get());
      THostile* const listener = New<THostile>(form.get());
      New<THostile>(form.get())->SetName("neighbour");
      THostile* const sender = New<THostile>(form.get());
      if (friends) listener->FreeNotification(sender);
      bool acted = false;
      listener->onNotification = [&](TComponent* component, TOperation operation) {
        if (component != sender || operation != opRemove || acted) return;
        acted = true;
        c.act(*form, *sender, *listener);
      };
      sender->Free();
      EXPECT_TRUE(acted);
      EXPECT_EQ(THostile::living, c.livingAfter);
      if (!formRef) static_cast<void>(form.release());
    }
  }
}

TEST_F(TComponents, ANewcomerMayBeFreedByTheFirstWhoHearsOfIt) {
  auto form = Make<THostile>();
  THostile* const first = New<THostile>(form.get());
  New<THostile>(form.get(), "second");
  auto newcomer = Make<THostile>(nullptr, "newcomer");
  heard.clear();
  first->onNotification = [&](TComponent*, TOperation operation) {
    if (operation == opInsert) newcomer.reset();
  };
  form->InsertComponent(newcomer.get());
  EXPECT_EQ(heard, std::vector<std::string>{"second-newcomer"});
  EXPECT_EQ(form->ComponentCount(), 2);
}

TEST_F(TComponents, AChildMayFreeItsOwnerWhileItGoes) {
  THostile* const form = New<THostile>(static_cast<TComponent*>(nullptr));
  THostile* const child = New<THostile>(form);
  New<THostile>(form);
  child->onTearDown = [&] { form->Free(); };
  child->Free();
  EXPECT_EQ(THostile::living, 0);
}

TEST_F(TComponents, WeakReferencesBecomeNull) {
  auto owner = Make<THostile>(nullptr, "owner");
  TComponentRef<ISpeaker> speaker(static_cast<ISpeaker*>(owner.get()));
  TComponentRef<TComponent> component(owner.get());
  THostile* const child = New<THostile>(owner.get());
  bool nullInChild = false, nullForFriend = true;
  child->onTearDown = [&] { nullInChild = component.Get() == nullptr && component.RefersTo(owner.get()); };
  auto listener = Make<THostile>();
  listener->FreeNotification(owner.get());
  listener->onNotification = [&](TComponent* gone, TOperation) { nullForFriend = component != gone; };
  EXPECT_EQ(component.As<ISpeaker>()->Speak(), "owner");
  EXPECT_EQ(speaker->Speak(), "owner");
  owner->Free();
  EXPECT_TRUE(nullInChild) << "what is owned goes when the owner can't be used any more";
  EXPECT_FALSE(nullForFriend) << "who asked can still compare";
  EXPECT_THROW(speaker->Speak(), ENilAccess);
  EXPECT_FALSE(component);
  static_cast<void>(owner.release());

  struct TNoComponent : ISpeaker {
    std::string Speak() const override { return {}; }
  } plain;
  EXPECT_THROW(TComponentRef<ISpeaker>{&plain}, EInvalidCast);
}

TEST_F(TComponents, LoadingEndsWithLoadedOrWithoutIt) {
  class TLoads : public TComponent {
   public:
    int loaded = 0;

   protected:
    void Loaded() override {
      TComponent::Loaded();
      loaded += Is(csLoading) || Is(csReading) ? 100 : 1;
    }
  };
  const auto component = Make<TLoads>();
  {
    TLoading loading(*component);
    EXPECT_TRUE(component->Is(csLoading) && component->Is(csReading));
    loading.Finish();
  }
  EXPECT_EQ(component->loaded, 1);
  { const TLoading broken(*component); }
  EXPECT_EQ(component->loaded, 1);
  EXPECT_TRUE(component->ComponentState().Empty());
}

TEST_F(TComponents, RandomLivesKeepOwnersAndFriendsInOrder) {
  const std::uint32_t seed = 20240607;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::set<THostile*> alive;
  const auto pick = [&] { return *std::next(alive.begin(), static_cast<std::ptrdiff_t>(random() % alive.size())); };
  const auto make = [&](THostile* owner) {
    THostile* const made = New<THostile>(static_cast<TComponent*>(owner));
    alive.insert(made);
    made->onTearDown = [&alive, made] { alive.erase(made); };
    made->onNotification = [&, made](TComponent* component, TOperation operation) {
      EXPECT_NE(component, nullptr);
      if (operation != opRemove || random() % 8 != 0) return;
      THostile* const victim = alive.empty() ? nullptr : pick();
      if (random() % 2 == 0) made->FreeNotification(component);
      if (victim != nullptr && victim != made) victim->Free();
    };
  };
  for (int step = 0; step < 20000; ++step) {
    if (alive.size() < 10) make(nullptr);
    switch (random() % 5) {
      case 0:
        make(pick());
        break;
      case 1:
        pick()->FreeNotification(pick());
        break;
      case 2:
        try {
          pick()->InsertComponent(pick());
        } catch (const EComponentError&) {
        }
        break;
      case 3:
        pick()->RemoveFreeNotification(pick());
        break;
      default:
        if (alive.size() > 30) pick()->Free();
    }
    ASSERT_EQ(static_cast<std::size_t>(THostile::living), alive.size()) << "after step " << step;
  }
  for (THostile* each : alive) each->onNotification = nullptr;
  while (!alive.empty()) (*alive.begin())->Free();
}

TEST(ClassRegistry, KnowsClassesByNameAndPage) {
  class TOne : public TComponent {
   public:
    static const TClass& StaticClass() {
      static const TClass info("TOneOfTheRegistry", &TComponent::StaticClass());
      return info;
    }
  };
  static const TClass namesake("TONEofTHEregistry", &TComponent::StaticClass());
  RegisterComponents("Test Page", {&TOne::StaticClass(), &TComponent::StaticClass()});
  RegisterComponents("Test Page", {&TOne::StaticClass()});
  EXPECT_EQ(GetClass("toneoftheREGISTRY"), &TOne::StaticClass());
  EXPECT_THROW(RegisterClass(namesake), EComponentError);
  ASSERT_EQ(Palette().back().Name, "Test Page");
  EXPECT_EQ(Palette().back().Classes, (std::vector<const TClass*>{&TOne::StaticClass(), &TComponent::StaticClass()}));
  UnregisterComponents({&TOne::StaticClass(), &TComponent::StaticClass()});
  EXPECT_EQ(GetClass("TOneOfTheRegistry"), nullptr);
}

}  // namespace
}  // namespace vx
