// StreamKit.h: a form and bells that publish a property of every kind, for tests of component streams.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/component/Collection.h"
#include "platform/component/Component.h"
#include "platform/component/Filer.h"
#include "platform/component/Published.h"
#include "platform/runtime/Strings.h"

namespace vx {

namespace test {
enum TChime : std::uint8_t { chHigh, chLow, chBoth };
}

template <>
struct TEnumInfo<test::TChime> {
  static constexpr std::string_view kTypeName = "TChime";
  static constexpr std::string_view kNames[] = {"chHigh", "chLow", "chBoth"};
};

namespace test {

/// What hostile application code does when it is given the number 97: as a bell's count, a tone's pitch, a step read.
inline std::function<void(TObject&)> OnPrank;
inline void Prank(TObject& self, double number) {
  if (number == 97 && OnPrank) OnPrank(self);
}

/// A part with a part of its own.
class TCord : public TPersistent {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  std::int32_t Length = 5;
  TPersistent* Holder = nullptr;
  TOwned<TStringList> Knots = Make<TStringList>();
};

class TTone : public TCollectionItem {
 public:
  using TCollectionItem::TCollectionItem;
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  double Pitch = 0;
  TComponent* Source = nullptr;
};

class TBell : public TComponent {
 public:
  using TComponent::TComponent;
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  void DefineProperties(TFiler& filer) override;

  bool IsLoud() const { return loud_; }
  void SetLoud(bool loud) { loud_ = loud; }
  std::int8_t GetCount() const { return count_; }
  /// Raises for 99; frees the bell for 98.
  void SetCount(std::int8_t count);

  std::int64_t Far = 0;
  char Mark = '-';
  double Pitch = 0;
  float Weight = 0;
  std::string Text = "ding";  // not empty in a fresh bell, and without a declared default
  TChime Chime = chHigh;
  TSetOf<TChime> Chimes;
  Variant Extra;
  TOwned<TCord> Cord = Make<TCord>();
  TOwned<TCollectionOf<TTone>> Tones = Make<TCollectionOf<TTone>>();
  TBell* Next = nullptr;
  TNotifyEvent OnRing;
  std::vector<std::int32_t> steps;  // defined: a list of lists
  std::string picture;              // defined: a block of bytes

 protected:
  void Loaded() override;

 private:
  bool loud_ = true;
  std::int8_t count_ = 0;
};

/// Owns bells, and has the handlers.
class TTower : public TBell {
 public:
  using TBell::TBell;
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  void DoorOpen(TObject*) {}
  std::int32_t Asked(std::int32_t) { return 0; }
};

/// What the streams have told since the last call: "Loaded Bell1 …".
std::string TakeLog();
/// Registers both classes while it lives.
struct TBellClasses {
  TBellClasses() { RegisterComponents("Test", {&TBell::StaticClass(), &TTower::StaticClass()}); }
  ~TBellClasses() { UnregisterComponents({&TBell::StaticClass(), &TTower::StaticClass()}); }
};

}  // namespace test

}  // namespace vx
