#include "StreamKit.h"

#include <utility>

namespace vx::test {

namespace {

std::string& Log() {
  static std::string log;
  return log;
}

}  // namespace

std::string TakeLog() { return std::exchange(Log(), {}); }

const TClass& TCord::StaticClass() {
  static const TClass info = TClassBuilder<TCord>("TCord", TPersistent::StaticClass())
                                 .Property("Length", &TCord::Length)
                                 .Default(5)
                                 .Property("Knots", [](TCord& cord) -> TStrings* { return cord.Knots.get(); })
                                 .Property("Holder", [](TCord& cord) { return cord.Holder; })
                                 .Build();
  return info;
}

const TClass& TTone::StaticClass() {
  static const TClass info = TClassBuilder<TTone>("TTone", TCollectionItem::StaticClass())
                                 .Property(
                                     "Pitch", [](TTone& tone) { return tone.Pitch; },
                                     [](TTone& tone, double pitch) { Prank(tone, tone.Pitch = pitch); })
                                 .Property("Source", &TTone::Source)
                                 .Build();
  return info;
}

const TClass& TBell::StaticClass() {
  static const TClass info = TClassBuilder<TBell>("TBell", TComponent::StaticClass())
                                 .Property("Loud", &TBell::IsLoud, &TBell::SetLoud)
                                 .Default(true)
                                 .Property("Count", &TBell::GetCount, &TBell::SetCount)
                                 .Default(0)
                                 .Property("Far", &TBell::Far)
                                 .Default(0)
                                 .Property("Mark", &TBell::Mark)
                                 .Default('-')
                                 .Property("Pitch", &TBell::Pitch)
                                 .Property("Weight", &TBell::Weight)
                                 .Property("Text", &TBell::Text)
                                 .Property("Chime", &TBell::Chime)
                                 .Default(chHigh)
                                 .Property("Chimes", &TBell::Chimes)
                                 .Default(TSetOf<TChime>())
                                 .Property("Extra", &TBell::Extra)
                                 .Property("Cord", [](TBell& bell) { return bell.Cord.get(); })
                                 .Property("Tones", [](TBell& bell) -> TCollection* { return bell.Tones.get(); })
                                 .Property("Next", &TBell::Next)
                                 .Property("OnRing", &TBell::OnRing)
                                 .Property("Fixed", [](TBell&) { return std::int32_t{1}; })
                                 .Build();
  return info;
}

void TBell::SetCount(std::int8_t count) {
  if (count == 99) throw EConvertError("99 is too much");
  if (count == 98) return Free();
  count_ = count;
  Prank(*this, count);
}

void TBell::DefineProperties(TFiler& filer) {
  TComponent::DefineProperties(filer);
  filer.DefineProperty(
      "Steps",
      [this](TReader& reader) {
        steps.clear();
        for (reader.ReadListBegin(); !reader.EndOfList();) steps.push_back(reader.ReadInteger());
        reader.ReadListEnd();
        Prank(*this, steps.empty() ? 0 : steps.back());
      },
      [this](TWriter& writer) {
        if (!steps.empty()) Prank(*this, -steps.back());
        writer.WriteListBegin();
        for (const std::int32_t step : steps) writer.WriteInteger(step);
        writer.WriteListEnd();
      },
      !steps.empty());
  filer.DefineBinaryProperty(
      "Picture",
      [this](TStream& stream) {
        picture.resize(static_cast<std::size_t>(stream.GetSize()));
        stream.ReadBuffer(picture.data(), stream.GetSize());
      },
      [this](TStream& stream) { stream.WriteBuffer(picture.data(), static_cast<std::int64_t>(picture.size())); },
      !picture.empty());
}

void TBell::Loaded() {
  TComponent::Loaded();
  Log() += Name() + (Next == nullptr ? " " : ">" + Next->Name() + " ");
}

const TClass& TTower::StaticClass() {
  static const TClass info = TClassBuilder<TTower>("TTower", TBell::StaticClass())
                                 .Method("DoorOpen", &TTower::DoorOpen)
                                 .Method("Asked", &TTower::Asked)
                                 .Build();
  return info;
}

}  // namespace vx::test
