// A component of one's own: its table of published properties serves forms, the palette and property lists alike.
#include <iostream>

#include "package/PaletteListing.h"
#include "platform/component/ComponentStream.h"
#include "platform/component/Published.h"

using namespace vx;

enum TGaugeShape { gsRound, gsBar };
template <>
struct vx::TEnumInfo<TGaugeShape> {
  static constexpr std::string_view kTypeName = "TGaugeShape";
  static constexpr std::string_view kNames[] = {"gsRound", "gsBar"};
};

class TGauge : public TComponent {
 public:
  using TComponent::TComponent;
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TGauge* GetFollows() const { return follows_.Get(); }
  void SetFollows(TGauge* other) { follows_ = other; }
  void SetLevel(double level) {
    level_ = level;
    OnChange(this);
  }
  void Warn(TObject* sender) { std::cout << Cast<TGauge>(sender)->Name() << " has changed\n"; }

  TGaugeShape Shape = gsRound;
  TNotifyEvent OnChange;

 private:
  TComponentRef<TGauge> follows_;  // null as soon as that gauge is gone
  double level_ = 0;
};

const TClass& TGauge::StaticClass() {
  static const TClass info = TClassBuilder<TGauge>("TGauge", TComponent::StaticClass())
                                 .Property("Shape", &TGauge::Shape)
                                 .Default(gsRound)
                                 .Property("Follows", &TGauge::GetFollows, &TGauge::SetFollows)
                                 .Property("OnChange", &TGauge::OnChange)
                                 .Property("Level", &TGauge::level_, &TGauge::SetLevel)
                                 .Method("Warn", &TGauge::Warn)
                                 .Build();
  return info;
}

int main() {
  RegisterComponents("Mine", {&TGauge::StaticClass()});  // known by name, and on a page of the palette
  const TOwned<TComponent> stock = TextToComponent(R"(
    object Stock: TGauge
      Shape = gsBar  OnChange = Warn  Level = 12.5      // a handler is a method of the root: of Stock
      object Reserve: TGauge  Follows = Stock  OnChange = Warn  Level = 3.0 end
    end)");
  std::cout << ComponentToText(*stock) << '\n' << PaletteText(ListPalette());
}
