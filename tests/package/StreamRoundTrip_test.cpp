// Every class of the package goes to a stream and back, with random values in its properties.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "package/Package.h"
#include "platform/component/Collection.h"
#include "platform/component/ComponentStream.h"
#include "platform/component/Published.h"
#include "platform/component/StreamText.h"

namespace vx {

namespace {

class TRandomProperties {
 public:
  explicit TRandomProperties(unsigned seed) : random_(seed) {}

  /// Values that the setters refuse are left out.
  void Fill(TPersistent& object) {
    for (const TPropInfo* const info : GetPropList(&object)) {
      if (info->Name == "Name" && As<TComponent>(&object) != nullptr) continue;
      if (info->Kind == tkClass)
        FillPart(std::get<TObject*>(info->Get(object)));
      else if (!info->IsReadOnly() && random_() % 4 != 0)
        Set(object, *info);
    }
  }

 private:
  void FillPart(TObject* part) {
    if (auto* const collection = As<TCollection>(part)) {
      for (auto i = random_() % 5; i > 0; --i) Fill(*collection->Add());
    } else if (auto* const persistent = As<TPersistent>(part); persistent != nullptr && !As<TComponent>(part)) {
      Fill(*persistent);
    }
  }

  void Set(TPersistent& object, const TPropInfo& info) {
    try {
      SetPropValue(&object, info, Value(info));
    } catch (const Exception&) {
      ++refused;
    }
  }

  TPropValue Value(const TPropInfo& info) {
    if (info.Kind == tkString) {
      static const std::string kPieces[] = {"Due", "'", "\r\n", "Größe", "\xFF", "%0:s", "\0x", " "};
      std::string text;
      for (auto i = random_() % 4; i > 0; --i) text += kPieces[random_() % std::size(kPieces)];
      return text;
    }
    if (info.Kind == tkFloat) return std::ldexp(static_cast<double>(random_()), static_cast<int>(random_() % 100) - 50);
    if (info.Kind == tkVariant) return Variant(static_cast<std::int32_t>(random_()));
    if (info.Kind == tkMethod) return TAnyEvent();
    const auto span = static_cast<std::uint64_t>(info.Greatest) - static_cast<std::uint64_t>(info.Least);
    const std::uint64_t number = span == ~std::uint64_t{0} ? random_() : random_() % (span + 1);
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(info.Least) + number);
  }

  std::mt19937_64 random_;

 public:
  int refused = 0;
};

}  // namespace

TEST(StreamRoundTrip, OfEveryRegisteredClassGivesEqualBytes) {
  const TPackage package;
  int classes = 0;
  for (const TPalettePage& page : Palette()) {
    for (const TClass* const type : page.Classes) {
      ++classes;
      for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(type->Name() + ", seed " + std::to_string(seed));
        const TOwned<TComponent> component(Cast<TComponent>(type->Factory()()));
        component->SetName("It");
        TRandomProperties properties(seed);
        if (seed > 0) properties.Fill(*component);
        const std::string stream = ComponentToBinary(*component);
        ASSERT_EQ(ComponentToBinary(*BinaryToComponent(stream)), stream);
        ASSERT_EQ(TextToBinary(BinaryToText(stream)), stream);
      }
    }
  }
  EXPECT_GT(classes, 0);
}

}  // namespace vx
