// What the package registers, and that it leaves nothing behind; the listing of the palette.
#include "package/Package.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "data/VXRAMTable_CMP.h"
#include "package/OddClock.h"
#include "package/PaletteListing.h"
#include "platform/component/Component.h"
#include "platform/dataset/DataLink.h"
#include "platform/system/Timer.h"
#include "support/Golden.h"
#include "support/TestFolder.h"
#include "support/TestKit.h"

namespace vx {
namespace {

/// "Page: A B; Other: C; plain", as the registry stands. Fields, data sources and timers are left out: they stand on no
/// page.
std::string Registered() {
  std::string text;
  std::vector<const TClass*> others = RegisteredClasses();
  for (const TPalettePage& page : Palette()) {
    text += (text.empty() ? "" : "; ") + page.Name + ":";
    for (const TClass* const type : page.Classes) text += " " + type->Name();
    for (const TClass* const type : page.Classes) std::erase(others, type);
  }
  std::erase_if(others, [](const TClass* type) {
    return type->InheritsFrom(TField::StaticClass()) || type->InheritsFrom(TDataSource::StaticClass()) ||
           type->InheritsFrom(TTimer::StaticClass());
  });
  for (const TClass* const type : others) text += (text.empty() ? "" : "; ") + type->Name();
  return text;
}

const TClass kGauge("TGauge", &TComponent::StaticClass());
const TClass kDial("TDial", &TComponent::StaticClass());
const TClass kFace("TFace", &TPersistent::StaticClass());
const TClass kNamesake("tgauge", &TComponent::StaticClass());

void RegisterGauge() {
  RegisterClass(kFace);
  RegisterComponents("Gauges", {&kGauge});
}
void RegisterDial() { RegisterComponents("Gauges", {&kDial}); }
void RegisterNamesake() {
  RegisterComponents("VX Data Access", {&kDial});
  RegisterClass(kNamesake);
}

TEST(Package, NestsAndLeavesNothingBehind) {
  ASSERT_EQ(Registered(), "");
  {
    const TPackage package;
    const std::string started = Registered();
    EXPECT_THAT(started, testing::StartsWith("VX Data Access: TVXRAMTable"));
    { const TPackage again; }
    EXPECT_EQ(Registered(), started);
  }
  EXPECT_EQ(Registered(), "");
  StopPackage();  // one too many
  {
    const TPackage package;
    EXPECT_NE(Registered(), "");
  }
  EXPECT_EQ(Registered(), "");
}

TEST(Package, LeavesStrangersWhereTheyAre) {
  std::string own;
  {
    const TPackage package;
    own = Registered();
    const TStartedUnits mine({&RegisterGauge, &RegisterDial});
    EXPECT_EQ(Registered(), own + "; Gauges: TGauge TDial; TFace");
  }
  EXPECT_EQ(Registered(), "");

  RegisterComponents("Mine", {&kDial});
  RegisterClass(kFace);
  {
    const TPackage package;
    RegisterComponents("VX Data Access", {&kGauge});
    {
      const TStartedUnits moving({&RegisterGauge, &RegisterDial});
      EXPECT_EQ(Registered(), "Mine:; " + own + "; Gauges: TGauge TDial; TFace");
    }
    EXPECT_EQ(Registered(), own + " TGauge; Mine: TDial; TFace");
  }
  EXPECT_EQ(Registered(), "VX Data Access: TGauge; Mine: TDial; TFace");
  for (const TClass* const type : RegisteredClasses()) UnregisterComponents({type});
}

TEST(Package, UndoesAStartThatFails) {
  RegisterClass(kGauge);
  EXPECT_EQ(test::MessageOf<EComponentError>([] {
              const TStartedUnits units({&VXRAMTable_CMP::Register, &RegisterNamesake});
            }),
            "A class named tgauge already exists");
  EXPECT_EQ(Registered(), "TGauge");
  UnregisterClass(kGauge);
}

TEST(Package, StartsEveryUnitThatHasARegister) {
  const std::filesystem::path src = std::filesystem::path(KESTRIX_TESTS_DIR) / "../src";
  const std::string package = test::ReadFile(src / "package/Package.cpp");
  const std::string kOpening = "namespace ";
  int count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(src)) {
    if (entry.path().extension() != ".h") continue;
    const std::string header = test::ReadFile(entry.path());
    const std::size_t at = header.find("\nvoid Register();");
    if (at == std::string::npos) continue;
    const std::size_t unit = header.rfind(kOpening, at) + kOpening.size();
    const std::string name = header.substr(unit, header.find(' ', unit) - unit);
    EXPECT_NE(package.find("&" + name + "::Register,"), std::string::npos) << name;
    ++count;
  }
  EXPECT_GT(count, 0);
}

// -- The listing ------------------------------------------------------------------------------------------------------

TEST(PaletteListing, ShowsEveryPageOfThePackage) {
  const TPackage package;
  EXPECT_TRUE(test::MatchesGolden("package/palette.txt", PaletteText(ListPalette())));
}

TEST(PaletteListing, ShowsPartsItemsAndOddities) {
  const std::vector<TPageListing> pages = {{"Odd", {ListClass(test::TOddClock::StaticClass()), ListClass(kFace)}}};
  EXPECT_TRUE(test::MatchesGolden("package/odd-classes.txt", PaletteText(pages)));
}

}  // namespace
}  // namespace vx
