// Making and freeing in their steps, class info, casts and class references.
#include "platform/runtime/Object.h"

#include <gtest/gtest.h>

#include <string>

#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

/// Writes each step of its life; may fail at one of them.
class TAnimal : public TPersistent {
 public:
  using TClassArguments = TArguments<std::string*>;
  static const TClass& StaticClass() {
    static const TClass info("TAnimal", &TPersistent::StaticClass());
    return info;
  }
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TAnimal(std::string* log) : log_(log) { *log_ += "construct "; }
  void AfterConstruction() override {
    *log_ += "after ";
    if (FailsAtConstruction()) throw EAbort("unborn");
  }
  void BeforeDestruction() override {
    *log_ += "before ";
    if (Refuses) throw EInvalidOperation("not now");
  }
  void TearDown() override {
    *log_ += "down ";
    TPersistent::TearDown();
  }
  virtual bool FailsAtConstruction() const { return false; }

  bool Refuses = false;
  std::int32_t Legs = 4;
  TPersistent* Owner = nullptr;
  TPersistent* GetOwner() const override { return Owner; }

 protected:
  ~TAnimal() override { *log_ += "gone"; }
  void AssignTo(TPersistent* dest) const override {
    if (auto* const animal = As<TAnimal>(dest))
      animal->Legs = Legs;
    else
      TPersistent::AssignTo(dest);
  }

 private:
  std::string* log_;
};

class TBird : public TAnimal {
 public:
  using TAnimal::TAnimal;
  static const TClass& StaticClass() {
    static const TClass info("TBird", &TAnimal::StaticClass());
    return info;
  }
  const TClass& ClassType() const override { return StaticClass(); }
};

class TUnborn : public TAnimal {
 public:
  using TAnimal::TAnimal;
  bool FailsAtConstruction() const override { return true; }
};

TEST(Object, ThatRefusesIsWholeAndStillItsOwners) {
  std::string log;
  TOwned<TAnimal> animal = Make<TAnimal>(&log);
  animal->Refuses = true;
  EXPECT_THROW(animal->Free(), EInvalidOperation);
  EXPECT_EQ(log, "construct after before ");
  animal->Refuses = false;
  animal.release()->Free();
  EXPECT_EQ(log, "construct after before before down gone");

  log.clear();
  animal = Make<TAnimal>(&log);
  animal->Refuses = true;
  animal.reset();  // a handle takes no refusal
  EXPECT_EQ(log, "construct after before down gone");
}

TEST(Object, AFailedMakingIsTakenDown) {
  std::string log;
  EXPECT_THROW(Make<TUnborn>(&log), EAbort);
  EXPECT_EQ(log, "construct after before down gone");
}

TEST(Object, CastsOrNamesBothClasses) {
  std::string log;
  const TOwned<TAnimal> bird = Make<TBird>(&log);
  const TOwned<TAnimal> animal = Make<TAnimal>(&log);
  EXPECT_EQ(bird->ClassName(), "TBird");
  EXPECT_TRUE(bird->InheritsFrom(TObject::StaticClass()));
  EXPECT_FALSE(animal->InheritsFrom(TBird::StaticClass()));
  EXPECT_EQ(Cast<TBird>(bird.get()), bird.get());
  EXPECT_EQ(As<TBird>(animal.get()), nullptr);
  EXPECT_EQ(Cast<TBird>(static_cast<TObject*>(nullptr)), nullptr);
  EXPECT_EQ(MessageOf<EInvalidCast>([&] { Cast<TBird>(animal.get()); }),
            "Invalid class typecast: a TAnimal is no TBird");
}

TEST(Object, ClassReferencesMakeTheirClass) {
  std::string log;
  TClassOf<TAnimal> wanted;
  EXPECT_FALSE(wanted);
  EXPECT_THROW(wanted.Make(&log), ENilAccess);
  wanted = TClassOf<TAnimal>::Of<TBird>();
  EXPECT_EQ(wanted.Make(&log)->ClassName(), "TBird");
  EXPECT_EQ(wanted, TClassOf<TAnimal>::Of<TBird>());
  EXPECT_FALSE(wanted == TClassOf<TAnimal>::Of<TAnimal>());
}

TEST(Persistent, AssignsOrNamesBothClassesAndPathsGoThroughOwners) {
  std::string log;
  const TOwned<TAnimal> bird = Make<TBird>(&log);
  const TOwned<TAnimal> animal = Make<TAnimal>(&log);
  bird->Legs = 2;
  animal->Assign(bird.get());
  EXPECT_EQ(animal->Legs, 2);
  EXPECT_EQ(MessageOf<EConvertError>([&] { animal->Assign(nullptr); }), "Cannot assign a nil to a TAnimal");
  EXPECT_EQ(MessageOf<EConvertError>([&] { animal->Assign(Make<TPersistent>().get()); }),
            "Cannot assign a TPersistent to a TAnimal");
  bird->Owner = animal.get();
  EXPECT_EQ(bird->GetNamePath(), "TAnimal.TBird");
}

}  // namespace
}  // namespace vx
