#include "platform/component/ComponentStream.h"

#include <gtest/gtest.h>

#include <string>

#include "StreamKit.h"
#include "platform/component/StreamText.h"
#include "support/TestKit.h"

namespace vx::test {

namespace {

/// Every kind of property, written by hand as the house lays it out.
constexpr const char* kTower = R"(object Tower1: TTower
  Tag = 7
  Text = ''
  Next = Big.Small
  object Big: TBell
    Loud = False
    Count = -128
    Far = 9223372036854775807
    Mark = '\'
    Pitch = 0.1
    Weight = -0.5
    Text = 'Grüße, '#13#10'''leise'''#$FF
    Chime = chBoth
    Chimes = [chHigh, chBoth]
    Extra = (
      Array
      1
      (
        Date
        45351.5)
      Null
      'x')
    Cord.Length = 6
    Cord.Knots.Strings = (
      'one'
      '')
    Tones = <
      item
        Pitch = 440.0
        Source = Tower1
      end
      item
      end>
    Next = Big
    OnRing = DoorOpen
    Steps = (
      1
      -70000)
    Picture = {
      00FF41}
    object Small: TBell
      Text = ''
    end
  end
  object TBell
    Text = 'ding'
  end
end
)";

std::string ErrorOf(const std::string& text) {
  return MessageOf<EReadError>([&] { TextToComponent(text); });
}

}  // namespace

TEST(ComponentStream, WritesWhatItRead) {
  const TBellClasses classes;
  const TOwned<TComponent> tower = TextToComponent(kTower);
  EXPECT_EQ(TakeLog(), "Small Big>Big  Tower1>Small ");  // each after what it owns, references already in place
  const std::string stream = ComponentToBinary(*tower);
  EXPECT_EQ(BinaryToText(stream), kTower);
  const TOwned<TComponent> copy = BinaryToComponent(stream);
  EXPECT_EQ(ComponentToBinary(*copy), stream);
  EXPECT_FALSE(copy->Is(csLoading) || copy->Is(csReading));
  EXPECT_EQ(dynamic_cast<TBell*>(copy->FindComponent("Big"))->Tones->Items(0)->Source, copy.get());

  const TOwned<TMemoryStream> memory = Make<TMemoryStream>("behind");
  memory->SetPosition(6);
  memory->WriteComponent(*copy);
  memory->WriteBuffer("more", 4);
  memory->SetPosition(6);
  EXPECT_EQ(ComponentToBinary(*memory->ReadComponent()), stream);
  EXPECT_EQ(memory->GetSize() - memory->GetPosition(), 4);
  TakeLog();
}

TEST(ComponentStream, EveryMistakeIsToldAtItsPlaceBeforeAnythingHappens) {
  const TBellClasses classes;
  const struct {
    const char* body;  // from line 2 on, in a tower with a bell that raises for any setter
    const char* message;
  } kMistakes[] = {
      {"  Loudd = 1", "line 2, column 3: unknown property: TTower.Loudd"},
      {"  Loud = 1", "line 2, column 10: TTower.Loud wants the name of a value (Boolean)"},
      {"  Count = 128", "line 2, column 11: 128 is out of the range of TTower.Count (ShortInt)"},
      {"  Count = 'a'", "line 2, column 11: TTower.Count wants a whole number (ShortInt)"},
      {"  Mark = 'ab'", "line 2, column 10: TTower.Mark wants a text of one byte (Char)"},
      {"  Weight = 1e39", "line 2, column 12: the number is out of the range of TTower.Weight (Single)"},
      {"  Chime = chNone", "line 2, column 11: chNone is no value of TTower.Chime (TChime)"},
      {"  Chimes = [chLow, low]", "line 2, column 20: low is no value of TTower.Chimes (set of TChime)"},
      {"  Extra = (Moon 1)", "line 2, column 12: Moon is no kind of variant that stands in a list"},
      {"  Fixed = 2", "line 2, column 3: TTower.Fixed is read-only"},
      {"  Cord = nil", "line 2, column 3: TTower.Cord is an object: give its properties, as Cord.Name"},
      {"  Cord.Width = 2", "line 2, column 3: unknown property: TCord.Width"},
      {"  Tag.Width = 2", "line 2, column 3: TTower.Tag has no properties of its own"},
      {"  Tones = (1)", "line 2, column 11: TTower.Tones wants items (TCollection)"},
      {"  Tones = <item Pitch = 'a' end>", "line 2, column 25: TTone.Pitch wants a number (Double)"},
      {"  Next = Ben", "line 2, column 10: there is no component Ben"},
      {"  OnRing = Shut", "line 2, column 12: TTower has no handler Shut"},
      {"  OnRing = Asked", "line 2, column 12: handler Asked has other arguments than TTower.OnRing gives"},
      {"  Name = 'x'", "line 2, column 3: the name of a component stands beside its class, not among its properties"},
      {"  Tag = 1\n  Pitch = 1\n  TAG = 2", "line 4, column 3: TTower.TAG is given twice"},
      {"  object A: TNone\n  end", "line 2, column 13: unknown class: TNone"},
      {"  object A: TBell\n  end\n  object a: TBell\n  end", "line 4, column 10: a component named a already exists"},
  };
  for (const auto& [body, message] : kMistakes)
    EXPECT_EQ(ErrorOf("object T: TTower\n" + std::string(body) + "\n  object Late: TBell\n    Count = 99\n  end\nend"),
              message);

  const TOwned<TTower> tower = Make<TTower>();
  New<TBell>(tower.get())->SetName("Here");
  const std::string before = ComponentToText(*tower);
  const auto into = [&](const std::string& text) {
    return MessageOf<EReadError>([&] { TextIntoComponent(text, *tower); });
  };
  EXPECT_EQ(into("object TTower\n Tag = 5\n object Here: TBell\n end\nend"),
            "line 3, column 9: a component named Here already exists");
  EXPECT_EQ(into("object TBell\n Next = Here.There\nend"), "line 2, column 9: there is no component Here.There");
  EXPECT_EQ(into("object TMoon\nend"), "line 1, column 8: the stream holds a TMoon, which TTower, a TTower, is not");
  EXPECT_EQ(ComponentToText(*tower), before);
}

TEST(ComponentStream, ASetterThatRaisesEndsTheReadingAndTellsWhatWasDone) {
  const TBellClasses classes;
  const TOwned<TTower> tower = Make<TTower>();
  EXPECT_EQ(MessageOf<EReadError>([&] {
              TextIntoComponent(
                  "object T: TTower\n Tag = 5\n Pitch = 2\n object A: TBell\n end\n object B: TBell\n  Count = "
                  "99\n end\nend",
                  *tower);
            }),
            "line 7, column 3: T.B.Count: 99 is too much (2 components that had been made are freed again; 3 "
            "properties of T had been set and stay)");
  EXPECT_EQ(tower->ComponentCount(), 0);
  EXPECT_EQ(tower->Tag(), 5);
  EXPECT_FALSE(tower->Is(csLoading) || tower->Is(csReading));
  // A component that frees itself takes what it would own along; the rest is read.
  TextIntoComponent(
      "object TTower\n object A: TBell\n  Count = 98\n  Tag = 1\n  object C: TBell\n  end\n end\n object B: "
      "TBell\n end\nend",
      *tower);
  EXPECT_EQ(tower->ComponentCount(), 1);
  EXPECT_EQ(TextToComponent("object TTower\n Count = 98\nend"), nullptr);
  TakeLog();
}

TEST(ComponentStream, OutlivesWhatApplicationCodeDoesToTheTree) {
  const TBellClasses classes;
  class TAngry final : public TCollectionOf<TTone> {
    void Update(TCollectionItem*) override { throw EConvertError("no more tones"); }
  };
  TTower* tower = nullptr;
  const auto raise = [](TObject&) { throw EConvertError("enough"); };
  const std::string tones = "Tones = <item Pitch = 97 Source = B end item Pitch = 2 end> object B: TBell end";
  const struct {
    std::string body;  // of a tower that has a bell, Here
    std::function<void(TObject&)> prank;
    std::string message;
  } kPranks[] = {
      {"Count = 97 Next = Here", [&](TObject&) { tower->Components(0)->Free(); },
       "line 1, column 26: TTower.Next: the component Here is gone (1 property of TTower had been set and stays)"},
      {"Count = 97 " + tones, [&](TObject&) { tower->Free(); }, ""},
      {tones, [](TObject& tone) { tone.Free(); }, ""},
      {tones, [](TObject& tone) { dynamic_cast<TTone&>(tone).Collection()->Clear(); }, ""},
      {tones, [&](TObject&) { tower->Free(); }, ""},
      {tones, [&](TObject&) { tower->Tones = Make<TCollectionOf<TTone>>(); },
       "line 1, column 29: TTower.Pitch: A collection that is being freed takes no items (1 property of TTower had "
       "been "
       "set and stays)"},
      {"Count = 97 " + tones,
       [&](TObject& self) { self.InheritsFrom(TTone::StaticClass()) ? raise(self) : tower->Tones.reset(new TAngry); },
       "line 1, column 40: TTower.Pitch: no more tones (1 property of TTower had been set and stays)"},
      {"Steps = (97)", [](TObject& bell) { bell.Free(); }, ""},
      {"Steps = (97)", raise, "line 1, column 23: TTower.Steps: enough"},
      {"Steps = (97)",
       [&](TObject& bell) {
         if (&bell != tower) tower->Free();
       },
       "line 1, column 8: the component that is read into has been freed"},
      {"Count = 97", [](TObject&) { TextToComponent("object TBell Loudd = 1 end"); },
       "line 1, column 15: TTower.Count: line 1, column 14: unknown property: TBell.Loudd"},
  };
  for (const auto& [body, prank, message] : kPranks) {
    tower = New<TTower>(static_cast<TComponent*>(nullptr));
    const TComponentRef<TTower> alive(tower);
    New<TBell>(tower)->SetName("Here");
    OnPrank = prank;
    EXPECT_EQ(MessageOf<EReadError>([&] { TextIntoComponent("object TTower " + body + " end", *tower); }),
              message.empty() ? "nothing raised" : message);
    OnPrank = nullptr;
    if (alive) alive->Free();
  }
  TakeLog();
}

TEST(ComponentStream, ReferencesLeadOutOfTheTreeByTheNameOfItsRoot) {
  const TBellClasses classes;
  const TOwned<TTower> town = Make<TTower>(), tower = Make<TTower>();
  town->SetName("Town");
  auto* const bell = New<TBell>(town.get());
  bell->SetName("Bell");
  tower->Next = bell;
  const std::string text = ComponentToText(*tower);
  EXPECT_EQ(text, "object TTower\n  Text = 'ding'\n  Next = Town.Bell\nend\n");
  EXPECT_EQ(ErrorOf(text), "line 3, column 10: there is no component Town.Bell");
  const auto copy =
      TextToComponent(text, {[&](std::string_view name) { return name == "Town" ? town.get() : nullptr; }});
  EXPECT_EQ(dynamic_cast<TTower&>(*copy).Next, bell);
  TakeLog();
}

TEST(ComponentStream, WhatCouldNotBeReadAgainIsNotWritten) {
  const TBellClasses classes;
  const TOwned<TTower> tower = Make<TTower>();
  tower->SetName("T");
  auto* bell = New<TBell>(tower.get());
  const auto message = [&] { return MessageOf<EWriteError>([&] { ComponentToBinary(*tower); }); };
  tower->Next = bell;
  EXPECT_EQ(message(), "T.Next: it refers to a TBell without a name");
  tower->Next = nullptr;
  bell->SetName("B");
  bell->Chime = static_cast<TChime>(9);
  EXPECT_EQ(message(), "T.B.Chime: 9 is no value of TChime");
  bell->Chime = chLow;
  bell->Text.assign(kMaxStreamText + 1, 'x');
  EXPECT_EQ(message(), "T.B.Text: A text of 1048577 bytes is longer than 1048576");
  bell->Text = "x";
  bell->Cord->Holder = bell->Cord.get();  // written where it stands, not round and round
  bell->steps = {-97};
  OnPrank = [](TObject&) { throw EConvertError("enough"); };
  EXPECT_EQ(message(), "T.B.Steps: enough");
  OnPrank = [](TObject& self) { self.Free(); };
  EXPECT_EQ(message(), "B.Steps: the component has been freed while it was written");
  OnPrank = nullptr;
  bell = New<TBell>(tower.get());
  bell->SetName(std::string(kMaxStreamName + 1, 'n'));
  EXPECT_EQ(message(), "T." + bell->Name() + ": a name of 256 characters is longer than 255");
  bell->SetName("B");
  New<TComponent>(bell);
  EXPECT_EQ(message(), "T.B.TComponent: class TComponent is not registered, so nobody could read it");
  bell->Components(0)->Free();
  TComponent* deep = bell;
  for (int i = 0; i < kMaxStreamDepth; ++i) deep = New<TBell>(deep);
  EXPECT_TRUE(message().ends_with("nested deeper than 64 levels")) << message();
}

TEST(ComponentStream, EveryCutAndEveryChangedByteEndsInAReadError) {
  const TBellClasses classes;
  const std::string stream = TextToBinary(kTower);
  const TOwned<TTower> tower = Make<TTower>();
  const std::string before = ComponentToText(*tower);
  const auto refuses = [&](const std::string& damaged) {
    return MessageOf<EReadError>([&] { BinaryIntoComponent(damaged, *tower); }) != "nothing raised";
  };
  for (std::size_t i = 0; i < stream.size(); ++i) {
    EXPECT_TRUE(refuses(stream.substr(0, i))) << "cut at " << i;
    for (int bit = 0; bit < 8; ++bit) {
      std::string damaged = stream;
      damaged[i] = static_cast<char>(damaged[i] ^ (1 << bit));
      EXPECT_TRUE(refuses(damaged)) << "bit " << bit << " of byte " << i;
    }
  }
  EXPECT_EQ(ComponentToText(*tower), before);
}

TEST(ComponentStream, ATextWithAnyByteChangedIsReadOrRefusedAtAPlace) {
  const TBellClasses classes;
  const std::string text = kTower;
  for (std::size_t i = 0; i < text.size(); ++i) {
    EXPECT_NE(ErrorOf(text.substr(0, i)), i + 1 < text.size() ? "nothing raised" : "");
    for (int bit = 0; bit < 8; ++bit) {
      std::string damaged = text;
      damaged[i] = static_cast<char>(damaged[i] ^ (1 << bit));
      const std::string message = ErrorOf(damaged);
      if (message == "nothing raised") continue;
      EXPECT_EQ(message.substr(0, 5), "line ") << message;
    }
  }
  TakeLog();
}

}  // namespace vx::test
