// GUIDs, queries and counts, and the ways in which counting goes wrong.
#include "platform/runtime/Interfaces.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace vx {
namespace {

struct IShape : virtual IUnknown {
  static constexpr TGUID kIID = TGUID::Of("{7B1C9F52-0C1E-4B57-9A53-2D6C0A5D9E11}");
  virtual std::int32_t Sides() = 0;
};
struct INamed : virtual IUnknown {
  static constexpr TGUID kIID = TGUID::Of("{7b1c9f52-0c1e-4b57-9a53-2d6c0a5d9e12}");
  virtual std::string Name() = 0;
};
struct IOther : virtual IUnknown {
  static constexpr TGUID kIID = TGUID::Of("{00000000-0000-0000-0000-000000000001}");
};

class TSquare : public TImplements<IShape, INamed> {
 public:
  explicit TSquare(std::string* log) : log_(log) {}
  ~TSquare() override { *log_ += "gone;"; }
  std::int32_t Sides() override { return 4; }
  std::string Name() override { return "square"; }
  void AfterConstruction() override {
    TInterfacedObject::AfterConstruction();
    const TInterfaceRef<IShape> self(this);  // handed out and given back before the maker has it
    *log_ += "made;";
  }
  void TearDown() override {
    const TInterfaceRef<IShape> self(this);  // and once more on the way out
    *log_ += "down;";
    TInterfacedObject::TearDown();
  }

 private:
  std::string* log_;
};

TEST(Guid, PrintsAndReadsExactly) {
  const std::string text = "{A11318C1-8EDD-11D2-BC8B-0008C710586E}";
  EXPECT_EQ(GUIDToString(StringToGUID(text)), text);
  EXPECT_EQ(GUIDToString(StringToGUID("{a11318c1-8edd-11d2-bc8b-0008c710586e}")), text);
  EXPECT_EQ(GUIDToString(IUnknown::kIID), "{00000000-0000-0000-C000-000000000046}");
  EXPECT_LT(IOther::kIID, IShape::kIID);
  for (const std::string bad : {"", "{}", "A11318C1-8EDD-11D2-BC8B-0008C710586E",
                                "{A11318C1-8EDD-11D2-BC8B-0008C710586G}", "{A11318C1-8EDD-11D2-BC8B-0008C710586E",
                                "{A11318C118EDD-11D2-BC8B-0008C710586E}", "{A11318C1-8EDD-11D2-BC8B-0008C710586E} "}) {
    TGUID kept = IShape::kIID;
    EXPECT_FALSE(TGUID::TryParse(bad, kept)) << bad;
    EXPECT_EQ(kept, IShape::kIID);
    EXPECT_THROW(StringToGUID(bad), EConvertError) << bad;
  }
}

TEST(Interfaces, LiveByTheirCount) {
  std::string log;
  {
    TInterfaceRef<TSquare> square = MakeCounted<TSquare>(&log);
    EXPECT_EQ(square->RefCount(), 1);
    TInterfaceRef<IShape> shape = square;
    const TInterfaceRef<INamed> named = shape.Query<INamed>();
    EXPECT_EQ(square->RefCount(), 3);
    EXPECT_EQ(named->Name(), "square");
    EXPECT_TRUE(SameObject(shape, named));
    TInterfaceRef<IShape>& alias = shape;
    shape = alias;
    shape = std::move(alias);
    TInterfaceRef<IShape> moved = std::move(shape);
    EXPECT_EQ(square->RefCount(), 3);
    EXPECT_FALSE(shape);
    EXPECT_THROW(shape->Sides(), ENilAccess);
    square.Reset();
    EXPECT_EQ(log, "made;");
  }
  EXPECT_EQ(log, "made;down;gone;");
}

TEST(Interfaces, QueriesAnswerCodes) {
  std::string log;
  const auto square = MakeCounted<TSquare>(&log);
  void* found = &log;
  EXPECT_EQ(square->QueryInterface(IOther::kIID, &found), static_cast<HRESULT>(0x80004002u));
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(square->QueryInterface(IShape::kIID, nullptr), E_POINTER);
  EXPECT_FALSE(TInterfaceRef<IShape>().Query<INamed>());
  EXPECT_EQ(square->RefCount(), 1);
}

class TRefusing : public TInterfacedObject {
 public:
  explicit TRefusing(bool* gone) : gone_(gone) {}
  ~TRefusing() override { *gone_ = true; }
  void BeforeDestruction() override { throw EAbort("stay"); }

 private:
  bool* gone_;
};

class TFailing : public TInterfacedObject {
 public:
  void AfterConstruction() override { throw EAbort("no"); }
};

TEST(Interfaces, TheLastReleaseNeverRaises) {
  bool gone = false;
  MakeCounted<TRefusing>(&gone).Reset();
  EXPECT_TRUE(gone);
  EXPECT_THROW(MakeCounted<TFailing>(), EAbort);  // and a failed making leaves nothing
}

/// Reaches the slot that holds it while it goes.
class TReaching : public TInterfacedObject {
 public:
  TInterfaceRef<TReaching>* Slot = nullptr;
  void TearDown() override {
    Slot->Reset();
    TInterfacedObject::TearDown();
  }
};

TEST(Interfaces, ADyingObjectMayClearTheSlotThatHeldIt) {
  auto slot = MakeCounted<TReaching>();
  slot->Slot = &slot;
  slot.Reset();
  EXPECT_FALSE(slot);
}

TEST(Interfaces, TheCountIsAtomic) {
  std::string log;
  auto square = MakeCounted<TSquare>(&log);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread)
    threads.emplace_back([shape = TInterfaceRef<IShape>(square)] {
      for (int round = 0; round < 20000; ++round) const TInterfaceRef<IShape> copy = shape;
    });
  for (std::thread& thread : threads) thread.join();
  threads.clear();
  EXPECT_EQ(square->RefCount(), 1);
}

#ifndef NDEBUG
TEST(InterfacesDeathTest, AReleaseTooManyIsStoppedInDebug) {
  std::string log;
  EXPECT_DEATH(
      {
        const auto square = MakeCounted<TSquare>(&log);
        square->Free();
      },
      "freed while referred to");
}
#endif

}  // namespace
}  // namespace vx
