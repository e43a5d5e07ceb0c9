// OddClock.h: a component whose published properties are as odd as may be, for listings.
#pragma once

#include "platform/component/Collection.h"
#include "platform/component/Component.h"
#include "platform/component/Published.h"

namespace vx {

template <>
struct TEnumInfo<TOperation> {
  static constexpr std::string_view kTypeName = "TOperation";
  static constexpr std::string_view kNames[] = {"opInsert", "opRemove"};
};

namespace test {

/// Has a collection of its own kind.
class TOddHand : public TCollectionItem {
 public:
  using TCollectionItem::TCollectionItem;
  static const TClass& StaticClass() {
    static const TClass info = TClassBuilder<TOddHand>("TOddHand", TCollectionItem::StaticClass())
                                   .Property("Length", &TOddHand::Length)
                                   .Default(0.1)
                                   .Property("Hands", [](TOddHand& hand) { return hand.Hands.get(); })
                                   .Build();
    return info;
  }
  const TClass& ClassType() const override { return StaticClass(); }

  double Length = 0.1;
  TOwned<TCollection> Hands = Make<TCollection>(TClassOf<TCollectionItem>::Of<TOddHand>());
};

class TOddFace : public TPersistent {
 public:
  static const TClass& StaticClass() {
    static const TClass info = TClassBuilder<TOddFace>("TOddFace", TPersistent::StaticClass())
                                   .Property("Letter", &TOddFace::Letter)
                                   .Default('"')
                                   .Property("OnPaint", &TOddFace::OnPaint)
                                   .Build();
    return info;
  }
  const TClass& ClassType() const override { return StaticClass(); }

  char Letter = 'x';
  TEvent<void(std::int32_t)> OnPaint;
};

/// Texts that want escaping, parts of parts, a part that can't be looked at.
class TOddClock : public TComponent {
 public:
  using TComponent::TComponent;
  static const TClass& StaticClass() {
    static const TClass info = TClassBuilder<TOddClock>("TOddClock", TComponent::StaticClass())
                                   .Property("Text", &TOddClock::Text)
                                   .Default("it's \"10\"\n\\ \x01 \xFF " + std::string(40, '-'))
                                   .Property("Moved", &TOddClock::Moved)
                                   .Default(TSetOf<TOperation>{opInsert, opRemove})
                                   .Property("IsRunning", &TOddClock::IsRunning)
                                   .Default(true)
                                   .Property("Big", &TOddClock::Big)
                                   .Default(std::numeric_limits<std::int64_t>::min())
                                   .Property("Far", &TOddClock::Far)
                                   .Default(std::numeric_limits<double>::infinity())
                                   .Stored([](TOddClock&) { return true; })
                                   .Property("Other", &TOddClock::Other)
                                   .Property("Face", [](TOddClock& clock) { return clock.Face.get(); })
                                   .Property("Hands", [](TOddClock& clock) { return clock.Hands.get(); })
                                   .Stored(false)
                                   .Property("OnTick", &TOddClock::OnTick)
                                   .TypeName("TTick \"Event\"")
                                   .Property("Broken", &TOddClock::Broken)
                                   .Build();
    return info;
  }
  const TClass& ClassType() const override { return StaticClass(); }

  std::string Text;
  TSetOf<TOperation> Moved;
  bool IsRunning = true;
  std::int64_t Big = 0;
  double Far = 0;
  TComponent* Other = nullptr;
  TOwned<TOddFace> Face = Make<TOddFace>();
  TOwned<TCollection> Hands = Make<TCollection>(TClassOf<TCollectionItem>::Of<TOddHand>());
  TEvent<void(TObject*)> OnTick;
  TPersistent* Broken() const { throw EInvalidOperation("not now"); }
};

}  // namespace test
}  // namespace vx
