#include "platform/component/Collection.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

#include "platform/component/Component.h"
#include "platform/component/Published.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

class TRule : public TCollectionItem {
 public:
  using TCollectionItem::TCollectionItem;
  ~TRule() override { --living; }
  static const TClass& StaticClass() {
    static const TClass info("TRule", &TCollectionItem::StaticClass());
    return info;
  }
  const TClass& ClassType() const override { return StaticClass(); }
  void AfterConstruction() override {
    ++living;
    indexAtStart = Index();
    if (refusesToBegin) throw Exception("no");
    TCollectionItem::AfterConstruction();
  }
  void BeforeDestruction() override {
    if (stays) throw Exception("not now");
  }
  void TearDown() override {
    if (onTearDown) onTearDown();
    TCollectionItem::TearDown();
  }
  void Assign(const TPersistent* source) override {
    const auto* const other = As<TRule>(source);
    if (other == nullptr) return TCollectionItem::Assign(source);
    if (other->value < 0) throw EConvertError("a negative value");
    value = other->value;
    Changed(false);
  }
  void Touch(bool all) { Changed(all); }

  int value = 0;
  std::int32_t indexAtStart = -1;
  bool stays = false;
  std::function<void()> onTearDown;
  static inline bool refusesToBegin = false;
  static inline int living = 0;
};

class TOtherRule : public TRule {
 public:
  using TRule::TRule;
  static const TClass& StaticClass() {
    static const TClass info("TOtherRule", &TRule::StaticClass());
    return info;
  }
  const TClass& ClassType() const override { return StaticClass(); }
};

template <class Item>
class TListOf : public TCollectionOf<Item> {
 public:
  TPersistent* GetOwner() const override { return owner; }
  TPersistent* owner = nullptr;
  std::vector<std::int32_t> told;  // the item's index, -1 for all
  std::function<void()> onUpdate;

 protected:
  void Update(TCollectionItem* item) override {
    told.push_back(item == nullptr ? -1 : item->Index());
    if (onUpdate) onUpdate();
  }
};
using TRules = TListOf<TRule>;

std::vector<std::int32_t> IDs(const TCollection& list) {
  std::vector<std::int32_t> ids;
  for (std::int32_t i = 0; i < list.Count(); ++i) {
    EXPECT_EQ(list.Items(i)->Index(), i);
    EXPECT_EQ(list.Items(i)->Collection(), &list);
    ids.push_back(list.Items(i)->ID());
  }
  return ids;
}
using TIDs = std::vector<std::int32_t>;

TOwned<TRules> RulesOf(int count) {
  auto rules = Make<TRules>();
  for (int i = 0; i < count; ++i) rules->Add()->value = i;
  rules->told.clear();
  return rules;
}

TEST(Collection, ItemsMoveAndKeepTheirIds) {
  const auto rules = RulesOf(4);
  struct TCase {
    std::int32_t from, to;
    TIDs ids;
  };
  const TCase cases[] = {{0, 3, {1, 2, 3, 0}}, {3, 0, {0, 1, 2, 3}}, {1, 2, {0, 2, 1, 3}}, {2, 1, {0, 1, 2, 3}}};
  for (const TCase& c : cases) {
    rules->Items(c.from)->SetIndex(c.to);
    EXPECT_EQ(IDs(*rules), c.ids) << c.from << " to " << c.to;
  }
  EXPECT_EQ(rules->Insert(1)->indexAtStart, 4) << "made in place at the end, then moved";
  EXPECT_EQ(IDs(*rules), (TIDs{0, 4, 1, 2, 3}));
  rules->Delete(0);
  rules->FindItemID(3)->Free();
  EXPECT_EQ(rules->Add()->ID(), 5) << "ids are never used again";
  EXPECT_EQ(IDs(*rules), (TIDs{4, 1, 2, 5}));
  rules->Clear();
  EXPECT_EQ(rules->Add()->ID(), 6);
  EXPECT_EQ(rules->FindItemID(0), nullptr);
}

TEST(Collection, PositionsOutsideAreRefusedWithoutAChange) {
  const auto rules = RulesOf(2);
  const std::function<void()> calls[] = {[&] { rules->Items(2); }, [&] { rules->Delete(2); },
                                         [&] { rules->Items(0)->SetIndex(2); }, [&] { rules->Insert(3); },
                                         [&] { rules->Insert(-1); }};
  for (const auto& call : calls) EXPECT_TRUE(MessageOf<EListError>(call).starts_with("List index out of bounds ("));
  EXPECT_EQ(MessageOf<EListError>(calls[0]), "List index out of bounds (2)");
  EXPECT_EQ(IDs(*rules), (TIDs{0, 1}));
  EXPECT_TRUE(rules->told.empty());
}

TEST(Collection, TellsOfChangesAndOnceForABracket) {
  const auto rules = RulesOf(2);
  struct TCase {
    const char* name;
    std::function<void()> act;
    TIDs told;
  };
  const TCase cases[] = {
      {"add", [&] { rules->Add(); }, {-1}},
      {"insert", [&] { rules->Insert(0); }, {-1}},
      {"move", [&] { rules->Items(0)->SetIndex(1); }, {-1}},
      {"move nowhere", [&] { rules->Items(0)->SetIndex(0); }, {}},
      {"one item", [&] { rules->Items(1)->Touch(false); }, {1}},
      {"all items", [&] { rules->Items(1)->Touch(true); }, {-1}},
      {"display name", [&] { rules->Items(1)->SetDisplayName("x"); }, {1}},
      {"delete", [&] { rules->Delete(0); }, {-1}},
      {"end without a beginning", [&] { rules->EndUpdate(); }, {}},
      {"clear", [&] { rules->Clear(); }, {-1}},
      {"clear again", [&] { rules->Clear(); }, {}},
  };
  for (const TCase& c : cases) {
    rules->told.clear();
    c.act();
    EXPECT_EQ(rules->told, c.told) << c.name;
    EXPECT_EQ(rules->UpdateCount(), 0) << c.name;
  }
  rules->told.clear();
  rules->BeginUpdate();
  rules->BeginUpdate();
  rules->Add()->Touch(false);
  rules->EndUpdate();
  EXPECT_TRUE(rules->told.empty());
  rules->EndUpdate();
  rules->BeginUpdate();
  rules->EndUpdate();  // without a change, and told of all the same
  EXPECT_EQ(rules->told, (TIDs{-1, -1}));
}

TEST(Collection, AnItemThatFailsToBeginIsGone) {
  const auto rules = RulesOf(1);
  TRule::refusesToBegin = true;
  EXPECT_THROW(rules->Insert(0), Exception);
  TRule::refusesToBegin = false;
  rules->onUpdate = [&] {
    if (rules->Count() == 2) throw Exception("the list refuses");
  };
  EXPECT_THROW(rules->Add(), Exception);
  EXPECT_EQ(IDs(*rules), TIDs{0});
  EXPECT_EQ(rules->UpdateCount(), 0);
}

TEST(Collection, AnItemMayRefuseToGo) {
  TRule::living = 0;
  {
    const auto rules = RulesOf(4);
    rules->Items(1)->stays = true;
    EXPECT_THROW(rules->Delete(1), Exception);
    EXPECT_THROW(rules->Clear(), Exception);
    EXPECT_EQ(IDs(*rules), (TIDs{0, 1})) << "those after it are gone";
    EXPECT_EQ(rules->UpdateCount(), 0);
  }
  EXPECT_EQ(TRule::living, 0) << "the end of the collection takes no refusal";
}

TEST(Collection, AssignCopiesItemByItem) {
  const auto source = RulesOf(3), dest = RulesOf(5);
  dest->Assign(source.get());
  EXPECT_EQ(dest->told, TIDs{-1});
  EXPECT_EQ(IDs(*dest), (TIDs{5, 6, 7}));
  EXPECT_EQ(dest->Items(2)->value, 2);
  dest->Assign(dest.get());
  EXPECT_EQ(dest->Count(), 3);
  EXPECT_THROW(dest->Assign(dest->Items(0)), EConvertError);
  EXPECT_THROW(dest->Assign(nullptr), EConvertError);

  source->Items(1)->value = -1;
  EXPECT_THROW(dest->Assign(source.get()), EConvertError);
  EXPECT_EQ(dest->Count(), 2) << "the copy of the first, and the one that couldn't be";
  EXPECT_EQ(dest->UpdateCount(), 0);

  const auto part = RulesOf(1);
  part->owner = dest->Items(0);
  EXPECT_THROW(dest->Assign(part.get()), EInvalidOperation) << "its own clearing would end the source";
  EXPECT_THROW(dest->Items(0)->SetCollection(part.get()), EInvalidOperation);
}

TEST(Collection, ItemsChangeTheirCollection) {
  const auto rules = RulesOf(3), others = RulesOf(1);
  const auto narrow = Make<TListOf<TOtherRule>>();
  TRule* const rule = rules->Items(1);
  EXPECT_THROW(rule->SetCollection(narrow.get()), EInvalidCast);
  EXPECT_THROW(Make<TRule>(narrow.get()), EInvalidCast);
  EXPECT_EQ(narrow->Count(), 0);
  EXPECT_EQ(rule->Index(), 1);
  narrow->Add()->SetCollection(rules.get());
  rule->SetCollection(others.get());
  EXPECT_EQ(IDs(*rules), (TIDs{0, 2, 3}));
  EXPECT_EQ(IDs(*others), (TIDs{0, 1}));
  EXPECT_EQ(others->told, TIDs{-1});
  rule->SetCollection(nullptr);
  EXPECT_EQ(rule->Index(), -1);
  rule->SetIndex(0);
  rule->Touch(true);
  rule->Free();
}

TEST(Collection, HostileItemsAndListenersDoNoHarm) {
  TRule::living = 0;
  struct TCase {
    const char* name;
    std::function<void(TRules&)> act;
  };
  const TCase cases[] = {
      {"clears", [](TRules& rules) { rules.Clear(); }},
      {"frees the first",
       [](TRules& rules) {
         if (rules.Count() > 0) rules.Items(0)->Free();
       }},
      {"adds, once",
       [](TRules& rules) {
         if (rules.Count() == 2) rules.Add();
       }},
      {"frees the collection", [](TRules& rules) { rules.Free(); }},
  };
  for (const TCase& c : cases) {
    for (const bool byClear : {true, false}) {
      SCOPED_TRACE(std::string(c.name) + (byClear ? " while all are cleared" : " while one is freed"));
      TRules* const rules = RulesOf(3).release();
      for (int i = 0; i < 3; ++i) rules->Items(i)->onTearDown = [&c, rules] { c.act(*rules); };
      byClear ? rules->Clear() : rules->Delete(1);
      if (c.name != std::string("frees the collection")) rules->Free();
      EXPECT_EQ(TRule::living, 0);
    }
  }
  const auto rules = RulesOf(2);
  rules->onUpdate = [] { throw Exception("hostile"); };
  rules->Delete(0);  // its end can't be stopped
  EXPECT_EQ(IDs(*rules), TIDs{1});
}

TEST(Collection, PathsLeadThroughTheOwnersProperty) {
  class TForm : public TComponent {
   public:
    static const TClass& StaticClass() {
      static const TClass info =
          TClassBuilder<TForm>("TForm", TComponent::StaticClass()).Property("Rules", &TForm::GetRules).Build();
      return info;
    }
    const TClass& ClassType() const override { return StaticClass(); }
    TRules* GetRules() const { return rules_.get(); }

   private:
    TOwned<TRules> rules_ = Make<TRules>();
  };
  const auto form = Make<TForm>();
  form->SetName("Plan");
  TRule* const rule = form->GetRules()->Add();
  EXPECT_EQ(rule->GetNamePath(), "TCollection[0]");
  form->GetRules()->owner = form.get();
  EXPECT_EQ(rule->GetNamePath(), "Plan.Rules[0]");
  EXPECT_EQ(rule->DisplayName(), "TRule");
}

}  // namespace
}  // namespace vx
