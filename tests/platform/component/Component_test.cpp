#include "platform/component/Component.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "platform/component/Published.h"
#include "platform/runtime/Text.h"
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

TEST_F(TComponents, WhoJoinsDuringARoundHearsTheNext) {
  auto form = Make<THostile>();
  THostile* const first = New<THostile>(form.get(), "first");
  auto late = Make<THostile>(nullptr, "late");
  first->onNotification = [&](TComponent*, TOperation) { form->InsertComponent(late.get()); };
  heard.clear();
  New<THostile>(form.get(), "news");
  EXPECT_EQ(heard, (std::vector<std::string>{"first+news", "first+late", "news+late", "late+late", "news+news"}));
  first->onNotification = nullptr;  // the form's end is news, too
  static_cast<void>(late.release());
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

// -- Who is passed over -----------------------------------------------------------------------------------------------

int calls = 0;
class TProtected : public TComponent {
 public:
  using TComponent::TComponent;

 protected:
  void Notification(TComponent*, TOperation) override { ++calls; }
};
class TPrivate : public TComponent {
  using TComponent::TComponent;
  void Notification(TComponent*, TOperation) override { ++calls; }
};
class TInherits : public TProtected {
  using TProtected::TProtected;
};
class TOverloads : public TComponent {
 public:
  using TComponent::TComponent;
  void Notification(TComponent*, TOperation) override { ++calls; }
  void Notification(int) {}
};

TEST_F(TComponents, NobodyWhoOverridesIsPassedOver) {
  TComponent* (*const makers[])(TComponent*) = {
      [](TComponent* owner) -> TComponent* { return New<TProtected>(owner); },
      [](TComponent* owner) -> TComponent* { return New<TPrivate>(owner); },
      [](TComponent* owner) -> TComponent* { return New<TInherits>(owner); },
      [](TComponent* owner) -> TComponent* { return New<TOverloads>(owner); },
      [](TComponent* owner) -> TComponent* { return new TProtected(owner); },
  };
  for (const auto make : makers) {
    const auto form = Make<TComponent>();
    TComponent* const panel = New<TComponent>(form.get());
    make(panel)->NoteClass<TComponent>();  // no class of its own: without effect
    calls = 0;
    New<TComponent>(form.get());
    EXPECT_EQ(calls, 1);
  }
}

/// Who doesn't listen but must be visited all the same, since it overrides.
class TPassesOn : public TComponent {
 public:
  using TComponent::TComponent;

 protected:
  void Notification(TComponent* component, TOperation operation) override {
    TComponent::Notification(component, operation);
  }
};

/// Random lives of listeners, who act on what they hear, among others of class `TOther`; the components bear numbers.
template <class TOther>
class TLives {
 public:
  explicit TLives(std::uint32_t seed) : random_(seed) {
    for (int step = 0; step < 1500; ++step) {
      log.push_back("step");
      Act(nullptr);
    }
    depth_ = 3;  // from here on they only listen
    while (TComponent* const last = Pick()) last->Free();
  }
  std::vector<std::string> log;

 private:
  class TListener : public TComponent {
   public:
    TListener(TComponent* owner, TLives* lives) : TComponent(owner), lives_(lives) {}

   protected:
    void Notification(TComponent* component, TOperation operation) override {
      const bool early = Tag() % 3 == 0;
      if (early) TComponent::Notification(component, operation);
      lives_->Heard(*this, *component, operation);
      if (!early) TComponent::Notification(component, operation);
    }

   private:
    TLives* lives_;
  };

  void Heard(TComponent& listener, TComponent& sender, TOperation operation) {
    log.push_back(std::to_string(listener.Tag()) + "+-"[operation] + std::to_string(sender.Tag()));
    if (depth_ >= 3 || random_() % 4 != 0) return;
    ++depth_;
    Act(&sender);
    --depth_;
  }
  TComponent* Pick() {
    std::erase_if(all_, [](const TComponentRef<>& each) { return !each; });
    return all_.empty() ? nullptr : all_[random_() % all_.size()].Get();
  }
  void Add() {
    TComponent* const owner = Pick();
    const auto number = static_cast<std::int32_t>(++made_);
    const bool listens = random_() % 4 == 0;
    depth_ += 3;  // who is still being made can't be freed
    TComponent* const made = listens ? New<TListener>(owner, this) : static_cast<TComponent*>(New<TOther>(owner));
    depth_ -= 3;
    made->SetTag(number);
    all_.emplace_back(made);
  }
  void Act(TComponent* sender) {
    const auto what = random_() % 12;
    TComponent* const one = Pick();
    TComponent* const other = sender != nullptr && random_() % 2 == 0 ? sender : Pick();
    if (one == nullptr || (what < 3 && all_.size() < 40)) return Add();
    if (what < 5) return one->FreeNotification(other);
    if (random_() % 8 == 0)
      for (const TComponentRef<>& each : all_) one->FreeNotification(each.Get());
    if (what < 6) return one->RemoveFreeNotification(other);
    if (what < 8) return one->Owner() != nullptr ? one->Owner()->RemoveComponent(one) : Add();
    if (what < 10) return all_.size() > 15 ? one->Free() : Add();
    try {
      one->InsertComponent(other);
    } catch (const EComponentError& error) {
      log.push_back(error.what());
    }
  }

  std::mt19937 random_;
  std::vector<TComponentRef<>> all_;
  std::size_t made_ = 0;
  int depth_ = 0;
};

TEST_F(TComponents, ListenersHearTheSameWhetherOthersAreVisitedOrPassedOver) {
  for (std::uint32_t seed = 1; seed <= 10; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const TLives<TPassesOn> visited(seed);
    const TLives<TComponent> passedOver(seed);
    ASSERT_GT(visited.log.size(), 3000u);
    ASSERT_EQ(visited.log, passedOver.log);
  }
}

TEST_F(TComponents, NamesAndPlacesAreThoseOfAWalk) {
  class TPermits : public TComponent {  // names may stand twice
   protected:
    void ValidateRename(const TComponent*, const std::string&) const override {}
  };
  const std::uint32_t seed = 20241123;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto name = [&random] {
    std::string text = "component_" + std::to_string(random() % 40);
    for (char& c : text)
      if (c >= 'a' && random() % 2 == 0) c = static_cast<char>(c - 'a' + 'A');
    return random() % 10 == 0 ? std::string() : text;
  };
  const auto strict = Make<TComponent>();
  const auto permits = Make<TPermits>();
  for (int step = 0; step < 20000; ++step) {
    TComponent* const owner = random() % 2 == 0 ? strict.get() : permits.get();
    std::vector<TComponent*> walk;  // as it was before; those who come stand at its end
    for (std::int32_t i = 0; i < owner->ComponentCount(); ++i) walk.push_back(owner->Components(i));
    const std::size_t at = walk.empty() ? 0 : random() % walk.size();
    const auto what = walk.empty() ? 0 : random() % 8;
    try {
      if (what < 2 && walk.size() < 60) {
        walk.push_back(New<TComponent>(owner));
      } else if (what < 3) {
        walk[at]->Free();
        walk.erase(walk.begin() + static_cast<std::ptrdiff_t>(at));
      } else if (what < 4) {
        (owner == strict.get() ? permits.get() : strict.get())->InsertComponent(walk[at]);
        walk.erase(walk.begin() + static_cast<std::ptrdiff_t>(at));
      } else {
        walk[at]->SetName(name());
      }
    } catch (const EComponentError&) {  // taken: all is as before
    }
    ASSERT_EQ(static_cast<std::size_t>(owner->ComponentCount()), walk.size());
    for (std::size_t i = 0; i < walk.size(); ++i) {
      ASSERT_EQ(owner->Components(static_cast<std::int32_t>(i)), walk[i]);
      ASSERT_EQ(walk[i]->ComponentIndex(), static_cast<std::int32_t>(i));
    }
    const std::string wanted = name();
    const auto found = std::find_if(walk.begin(), walk.end(), [&](const TComponent* each) {
      return !wanted.empty() && CompareText(each->Name(), wanted) == 0;
    });
    ASSERT_EQ(owner->FindComponent(wanted), found == walk.end() ? nullptr : *found) << "step " << step;
  }
}

TEST(Singles, TakeWhatAFloatHolds) {
  class TScale : public TComponent {
   public:
    static const TClass& StaticClass() {
      static const TClass info =
          TClassBuilder<TScale>("TScale", TComponent::StaticClass()).Property("Factor", &TScale::factor).Build();
      return info;
    }
    const TClass& ClassType() const override { return StaticClass(); }
    float factor = 1;
  };
  const auto scale = Make<TScale>();
  EXPECT_EQ(MessageOf<EPropertyError>([&] { SetFloatProp(scale.get(), "Factor", -1e39); }),
            "Invalid value for property TScale.Factor (Single): -1E39");
  EXPECT_EQ(scale->factor, 1);
  for (const float good : {std::numeric_limits<float>::max(), -std::numeric_limits<float>::infinity(), 0.0f}) {
    SetFloatProp(scale.get(), "Factor", static_cast<double>(good));
    EXPECT_EQ(scale->factor, good);
  }
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
