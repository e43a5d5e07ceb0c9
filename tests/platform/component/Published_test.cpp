#include "platform/component/Published.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "platform/component/Component.h"
#include "support/TestKit.h"

namespace vx {

enum TBellShape { bsRound, bsSquare, bsFlat };
template <>
struct TEnumInfo<TBellShape> {
  static constexpr std::string_view kTypeName = "TBellShape";
  static constexpr std::string_view kPrefix = "bs";
  static constexpr std::string_view kNames[] = {"bsRound", "bsSquare", "bsFlat"};
};

namespace {

using test::MessageOf;

/// No class of the family: accessors of a base that has no class info.
struct TLoudness {
  bool IsLoud() const { return loud; }
  void SetLoud(const bool& value) { loud = value; }
  bool loud = false;
};

class TCustomBell : public TComponent, public TLoudness {
 public:
  using TComponent::TComponent;
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  const std::string& GetText() const { return text_; }
  void SetText(const std::string& value) {
    if (value == "bad") throw EConvertError("bad text");
    text_ = value;
  }
  std::uint8_t GetCount() { return count_; }  // not const: makes its answer on demand
  void SetCount(std::uint8_t value) { count_ = value; }
  bool HasCount() const { return count_ != 9; }
  double GetPitch() const noexcept { return pitch_; }
  void SetPitch(double value) noexcept { pitch_ = value; }
  TBellShape GetShape() const { return shape_; }
  bool SetShape(TBellShape value) { return shape_ = value, true; }
  TSetOf<TBellShape> GetShapes() const { return shapes_; }
  void SetShapes(const TSetOf<TBellShape>& value) { shapes_ = value; }
  TCustomBell* GetNext() const { return next_; }
  void SetNext(TCustomBell* value) { next_ = value; }
  TNotifyEvent& OnRing() { return onRing_; }
  void DoorOpen(TObject*) { ++opened; }
  void DoorShut(TObject*) {}

  std::int64_t Big = -5;
  Variant Extra;
  TEvent<int(int)> OnAsk;
  int opened = 0;

 private:
  std::string text_;
  std::uint8_t count_ = 3;
  double pitch_ = 0;
  TBellShape shape_ = bsSquare;
  TSetOf<TBellShape> shapes_;
  TCustomBell* next_ = nullptr;
  TNotifyEvent onRing_;
};

const TClass& TCustomBell::StaticClass() {
  static const TClass info = TClassBuilder<TCustomBell>("TCustomBell", TComponent::StaticClass())
                                 .Property("Loud", &TCustomBell::IsLoud, &TCustomBell::SetLoud)
                                 .Default(false)
                                 .Property("Text", &TCustomBell::GetText, &TCustomBell::SetText)
                                 .Property("Count", &TCustomBell::GetCount, &TCustomBell::SetCount)
                                 .Default(3)
                                 .Stored(&TCustomBell::HasCount)
                                 .Property("Pitch", &TCustomBell::GetPitch, &TCustomBell::SetPitch)
                                 .TypeName("TDateTime")
                                 .Default(1)
                                 .Property("Shape", &TCustomBell::GetShape, &TCustomBell::SetShape)
                                 .Default(bsSquare)
                                 .Property("Shapes", &TCustomBell::GetShapes, &TCustomBell::SetShapes)
                                 .Property("Next", &TCustomBell::GetNext, &TCustomBell::SetNext)
                                 .Property("Opened", [](const TCustomBell& bell) { return bell.opened; })
                                 .Property("Big", &TCustomBell::Big)
                                 .Property("Extra", &TCustomBell::Extra)
                                 .Property("OnRing", &TCustomBell::OnRing)
                                 .Property("OnAsk", &TCustomBell::OnAsk)
                                 .TypeName("TAskEvent")
                                 .Hidden()
                                 .Method("DoorOpen", &TCustomBell::DoorOpen)
                                 .Method("DoorShut", &TCustomBell::DoorShut)
                                 .Abstract()
                                 .Build();
  return info;
}

class TBell : public TCustomBell {
 public:
  using TCustomBell::TCustomBell;
  static const TClass& StaticClass() {
    static const TClass info = TClassBuilder<TBell>("TBell", TCustomBell::StaticClass())
                                   .Property("Age", &TBell::age)
                                   .Publish("OnAsk")
                                   .Publish("shape")
                                   .Default(bsFlat)
                                   .Publish("Count")
                                   .NoDefault()
                                   .Stored(true)
                                   .Build();
    return info;
  }
  const TClass& ClassType() const override { return StaticClass(); }
  std::int16_t age = 0;
};

std::string ListOf(const TClass& type) {
  std::string list;
  for (const TPropInfo* const info : GetPropList(type))
    list += info->Name + ":" + info->TypeName() + (info->Default ? "=" : "") + (info->IsReadOnly() ? "!" : "") + " ";
  return list;
}

TEST(Published, ListsInDeclaredOrderAncestorsFirst) {
  EXPECT_EQ(ListOf(TCustomBell::StaticClass()),
            "Name:String Tag:Integer= Loud:Boolean= Text:String Count:Byte= Pitch:TDateTime= Shape:TBellShape= "
            "Shapes:set of TBellShape Next:TCustomBell Opened:Integer! Big:Int64 Extra:Variant OnRing:TNotifyEvent ");
  EXPECT_EQ(ListOf(TBell::StaticClass()),
            "Name:String Tag:Integer= Loud:Boolean= Text:String Count:Byte Pitch:TDateTime= Shape:TBellShape= "
            "Shapes:set of TBellShape Next:TCustomBell Opened:Integer! Big:Int64 Extra:Variant OnRing:TNotifyEvent "
            "Age:SmallInt OnAsk:TAskEvent ");
}

TEST(Published, ReadsAndWritesEveryKind) {
  const auto bell = Make<TBell>(), next = Make<TBell>();
  TBell* const b = bell.get();
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  for (const auto& [name, value] :
       {std::pair{"LOUD", std::int64_t{1}}, {"count", 255}, {"Big", kLeast}, {"Age", -32768}}) {
    SetOrdProp(b, name, value);
    EXPECT_EQ(GetOrdProp(b, name), value) << name;
  }
  SetStrProp(b, "Text", "ding");
  SetFloatProp(b, "Pitch", 440.5);
  SetEnumProp(b, "Shape", "BSflat");
  SetEnumProp(b, "Shapes", "[ bsFlat, bsround ]");
  SetObjectProp(b, "Next", next.get());
  SetVariantProp(b, "Extra", Variant(7));
  EXPECT_EQ(GetStrProp(b, "Text"), "ding");
  EXPECT_EQ(GetFloatProp(b, "Pitch"), 440.5);
  EXPECT_EQ(GetEnumProp(b, "Loud") + GetEnumProp(b, "Shape") + GetEnumProp(b, "Shapes"), "TruebsFlat[bsRound,bsFlat]");
  EXPECT_EQ(b->GetShapes(), (TSetOf<TBellShape>{bsRound, bsFlat}));
  EXPECT_EQ(GetObjectProp(b, "Next"), next.get());
  EXPECT_TRUE(GetVariantProp(b, "Extra") == Variant(7));
  SetEnumProp(b, "Shapes", "");
  EXPECT_TRUE(b->GetShapes().Empty());
}

TEST(Published, ErrorsNameClassPropertyAndValue) {
  const auto bell = Make<TBell>();
  TBell* const b = bell.get();
  const auto form = Make<TComponent>();
  struct TCase {
    std::function<void()> act;
    const char* message;
  };
  const TCase cases[] = {
      {[&] { GetOrdProp(b, "Foo"); }, "Unknown property: TBell.Foo"},
      {[&] { GetMethodProp(Make<TComponent>().get(), "OnAsk"); }, "Unknown property: TComponent.OnAsk"},
      {[&] { GetStrProp(b, "loud"); }, "Property TBell.Loud is an ordinal (Boolean), not a text"},
      {[&] { SetOrdProp(b, "Text", 1); }, "Property TBell.Text is a text (String), not an ordinal"},
      {[&] { SetOrdProp(b, "Opened", 1); }, "Property TBell.Opened is read-only"},
      {[&] { SetOrdProp(b, "Count", 256); }, "Invalid value for property TBell.Count (Byte): 256"},
      {[&] { SetOrdProp(b, "Loud", 2); }, "Invalid value for property TBell.Loud (Boolean): 2"},
      {[&] { SetOrdProp(b, "Shapes", 8); }, "Invalid value for property TBell.Shapes (set of TBellShape): 8"},
      {[&] { SetEnumProp(b, "Next", "x"); }, "Property TBell.Next has no names (TCustomBell)"},
      {[&] { SetEnumProp(b, "Loud", "bsRound"); }, "Invalid value for property TBell.Loud (Boolean): 'bsRound'"},
      {[&] { SetEnumProp(b, "Shapes", "[bsRound,]"); },
       "Invalid value for property TBell.Shapes (set of TBellShape): '[bsRound,]'"},
      {[&] { SetObjectProp(b, "Next", form.get()); },
       "Invalid value for property TBell.Next (TCustomBell): a TComponent"},
      {[&] { SetMethodProp(b, "OnAsk", TNotifyEvent(*b, &TBell::DoorOpen)); },
       "Invalid value for property TBell.OnAsk (TAskEvent): a handler with other arguments"},
      {[&] { GetOrdProp(form.get(), GetPropInfo(b, "Loud")); },
       "Property TCustomBell.Loud doesn't belong to a TComponent"},
      {[] { TClassBuilder<TBell>("TBad", TBell::StaticClass()).Publish("Foo"); }, "Unknown property: TBad.Foo"},
      {[] { TClassBuilder<TBell>("TBad", TBell::StaticClass()).Publish("Shape").Default(true); },
       "Invalid value for property Shape (TBellShape): a default of another enumeration"},
  };
  for (const TCase& c : cases) EXPECT_EQ(MessageOf<EPropertyError>(c.act), c.message);
  EXPECT_THROW(SetStrProp(b, "Text", "bad"), EConvertError) << "what a setter raises passes through";
  EXPECT_THROW(GetOrdProp(nullptr, "Loud"), ENilAccess);
  EXPECT_EQ(GetPropInfo(b, "Foo"), nullptr);
}

TEST(Published, DefaultsAndStoredRules) {
  const auto custom = Make<TCustomBell>();
  const auto bell = Make<TBell>();
  const auto defaultsOf = [](const TComponent& object) {
    std::string names;
    for (const TPropInfo* const info : GetPropList(object.ClassType()))
      if (IsDefaultProp(&object, info->Name)) names += info->Name + " ";
    return names;
  };
  EXPECT_EQ(defaultsOf(*custom), "Name Tag Loud Text Count Shape Next Extra OnRing ");  // Shapes and Big have none

  EXPECT_EQ(defaultsOf(*bell), "Name Tag Loud Text Next Extra OnRing OnAsk ");
  SetFloatProp(bell.get(), "Pitch", 1);
  EXPECT_TRUE(IsDefaultProp(bell.get(), "Pitch"));
  EXPECT_FALSE(IsStoredProp(bell.get(), "Name"));
  custom->SetCount(9);
  bell->SetCount(9);
  EXPECT_FALSE(IsStoredProp(custom.get(), "Count"));
  EXPECT_TRUE(IsStoredProp(bell.get(), "Count"));
}

TEST(Published, HandlersGoByName) {
  const auto bell = Make<TBell>(), other = Make<TBell>();
  SetMethodProp(bell.get(), "OnRing", MethodAddress(other.get(), "dooropen"));
  bell->OnRing()(nullptr);
  EXPECT_EQ(other->opened, 1);
  const TAnyEvent handler = GetMethodProp(bell.get(), "OnRing");
  EXPECT_EQ(MethodName(other.get(), handler), "DoorOpen");
  EXPECT_EQ(MethodName(bell.get(), handler), "") << "another object's handler";
  EXPECT_FALSE(MethodAddress(other.get(), "Free"));
  SetMethodProp(bell.get(), "OnRing", {});
  EXPECT_FALSE(bell->OnRing());
}

TEST(Published, ClassesMakeTheirObjects) {
  EXPECT_EQ(TCustomBell::StaticClass().Factory(), nullptr);
  const TOwned<TObject> made(TBell::StaticClass().Factory()());
  EXPECT_EQ(made->ClassName(), "TBell");
}

TEST(EnumInfo, TextsGoBothWays) {
  EXPECT_EQ(EnumText(bsSquare), "bsSquare");
  EXPECT_EQ(EnumShortText(bsSquare), "Square");
  EXPECT_EQ(EnumText(static_cast<TBellShape>(3)), "3") << "an ordinal without a name";
  EXPECT_EQ(TextToEnum<TBellShape>("BSSQUARE"), bsSquare);
  for (const char* bad : {"", "Square", "bsSquare ", "1"}) EXPECT_FALSE(TextToEnum<TBellShape>(bad)) << bad;
}

}  // namespace
}  // namespace vx
