// A component of one's own: its table of published properties serves the palette, streams and property lists alike.
#include <iostream>

#include "package/Package.h"
#include "package/PaletteListing.h"
#include "platform/component/ComponentStream.h"
#include "platform/component/Published.h"

enum TGaugeShape { gsRound, gsBar };
template <>
struct vx::TEnumInfo<TGaugeShape> {
  static constexpr std::string_view kTypeName = "TGaugeShape";
  static constexpr std::string_view kNames[] = {"gsRound", "gsBar"};
};

class TGauge : public vx::TComponent {
 public:
  using TComponent::TComponent;
  static const vx::TClass& StaticClass();
  const vx::TClass& ClassType() const override { return StaticClass(); }

  double GetLevel() const { return level_; }
  void SetLevel(double level) {
    level_ = level;
    OnChange(this);
  }
  void Warn(vx::TObject*) { std::cout << Name() << " stands at " << level_ << '\n'; }

  std::string Caption;
  TGaugeShape Shape = gsRound;
  TGauge* Follows = nullptr;
  vx::TNotifyEvent OnChange;

 private:
  double level_ = 0;
};

const vx::TClass& TGauge::StaticClass() {
  static const vx::TClass info = vx::TClassBuilder<TGauge>("TGauge", TComponent::StaticClass())
                                     .Property("Caption", &TGauge::Caption)
                                     .Property("Shape", &TGauge::Shape)
                                     .Default(gsRound)
                                     .Property("Follows", &TGauge::Follows)
                                     .Property("OnChange", &TGauge::OnChange)
                                     .Property("Level", &TGauge::GetLevel, &TGauge::SetLevel)
                                     .Method("Warn", &TGauge::Warn)
                                     .Build();
  return info;
}

void Register() { vx::RegisterComponents("Mine", {&TGauge::StaticClass()}); }

int main() {
  const vx::TPackage package;
  const vx::TStartedUnits mine({&Register});

  // Handlers are the root's own; names are looked up when all is read.
  const vx::TOwned<vx::TComponent> stock = vx::TextToComponent(R"(object Stock: TGauge
  Shape = gsBar
  OnChange = Warn
  Level = 12.5
  object Reserve: TGauge
    Follows = Stock
  end
end
)");
  std::cout << vx::ComponentToText(*stock) << '\n' << vx::PaletteText(vx::ListPalette());
}
