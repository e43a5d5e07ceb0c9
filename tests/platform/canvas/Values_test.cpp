// Colours, system colours, bitmaps, and pens, brushes and fonts as properties.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "platform/canvas/Bitmap.h"
#include "platform/canvas/Brush.h"
#include "platform/canvas/Color.h"
#include "platform/canvas/Display.h"
#include "platform/canvas/Font.h"
#include "platform/canvas/Pen.h"
#include "platform/canvas/SystemColors.h"
#include "platform/component/Component.h"
#include "platform/component/ComponentStream.h"
#include "platform/component/Published.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

constexpr TColor kBeyond{clInfoBk + 1};  // behind the last system colour

// -- Colours ----------------------------------------------------------------------------------------------------------

TEST(Color, NamesGoBothWays) {
  std::vector<std::string> names;
  GetColorValues([&names](const std::string& name) { names.push_back(name); });
  EXPECT_EQ(names.size(), 16 + TSystemColors::kCount + 2);
  for (const std::string& name : names)
    EXPECT_EQ(ColorToString(StringToColor(name)), name == "clDefault" ? "clScrollBar" : name);
}

TEST(Color, TextsAreNamesOrNumbers) {
  const struct {
    const char* Text;
    std::uint32_t Color;
    const char* Written;
  } kTable[] = {
      {"clred", 0xFF, "clRed"},
      {" CLINFOBK ", 0x80000018, "clInfoBk"},
      {"$00123456", 0x123456, "$00123456"},
      {"0xff", 0xFF, "clRed"},
      {"$80000019", 0x80000019, "$80000019"},  // beyond the system colours
      {"255", 0xFF, "clRed"},
      {"-2147483648", 0x80000000, "clScrollBar"},
      {"33554432", 0x02000000, "$02000000"},
      {"$1FFFFFFF", 0x1FFFFFFF, "clNone"},
  };
  for (const auto& row : kTable) {
    EXPECT_EQ(static_cast<std::uint32_t>(StringToColor(row.Text)), row.Color) << row.Text;
    EXPECT_EQ(ColorToString(static_cast<TColor>(row.Color)), row.Written);
  }
  for (const char* const text : {"", "cl", "clRedd", "$", "0x", "$123456789", "$-1", "$12 34", "4294967296", "1.5"})
    EXPECT_EQ(MessageOf<EConvertError>([text] { StringToColor(text); }), "'" + std::string(text) + "' is not a colour");
}

/// Relative luminance by WCAG 2.
double Luminance(TColor color) {
  const auto linear = [](std::uint8_t part) {
    const double share = part / 255.0;
    return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(RedOf(color)) + 0.7152 * linear(GreenOf(color)) + 0.0722 * linear(BlueOf(color));
}
double Contrast(TColor a, TColor b) {
  const double light = std::max(Luminance(a), Luminance(b));
  const double dark = std::min(Luminance(a), Luminance(b));
  return (light + 0.05) / (dark + 0.05);
}

TEST(SystemColors, CanBeReadOnTheirGround) {
  const struct {
    TColor Text;
    TColor Ground;
    double Least;
  } kPairs[] = {
      {clWindowText, clWindow, 7},   {clBtnText, clBtnFace, 7},        {clHighlightText, clHighlight, 7},
      {clInfoText, clInfoBk, 7},     {clMenuText, clMenu, 7},          {clCaptionText, clActiveCaption, 7},
      {clGrayText, clWindow, 3},     {clGrayText, clBtnFace, 3},       {clInactiveCaptionText, clInactiveCaption, 4.5},
      {clWindowFrame, clWindow, 3},  {clGrayText, clMenu, 3},          {clHighlight, clWindow, 1.5},
      {clBtnShadow, clBtnFace, 1.3}, {clBtnHighlight, clBtnFace, 1.1}, {cl3DDkShadow, clBtnShadow, 1.1},
  };
  for (const TSystemColors& scheme : {LightSystemColors(), DarkSystemColors()}) {
    for (const auto& [text, ground, least] : kPairs)
      EXPECT_GE(Contrast(scheme.Get(text), scheme.Get(ground)), least)
          << ColorToString(text) << " on " << ColorToString(ground);
    double last = 0;  // a raised edge is lit from above: the five shades in their order
    for (const TColor shade : {cl3DDkShadow, clBtnShadow, clBtnFace, cl3DLight, clBtnHighlight}) {
      EXPECT_GT(Luminance(scheme.Get(shade)), last) << ColorToString(shade);
      last = Luminance(scheme.Get(shade));
    }
  }
}

TEST(SystemColors, AreLookedUpInTheTableInForce) {
  EXPECT_EQ(SystemColors(), LightSystemColors());
  EXPECT_EQ(ColorToRGB(clWindow), clWhite);
  SetSystemColors(DarkSystemColors());
  EXPECT_EQ(ColorToRGB(clWindow), TColor{0x262626});
  SetSystemColors(LightSystemColors());
  EXPECT_EQ(ColorToRGB(TColor{0x02123456}), TColor{0x123456});
  EXPECT_EQ(ColorToRGB(kBeyond), clBlack);
  EXPECT_EQ(ColorToRGB(TColor{-1}), clBlack);

  TSystemColors mine;
  mine.Set(clInfoBk, TColor{0x02FF0001});
  EXPECT_EQ(mine.Get(clInfoBk), TColor{0xFF0001});
  EXPECT_EQ(MessageOf<EConvertError>([&] { mine.Set(clRed, clBlue); }), "clRed is not a system colour");
  EXPECT_EQ(MessageOf<EConvertError>([&] { mine.Get(kBeyond); }), "$80000019 is not a system colour");
}

TEST(Display, IsDeepUntilAHostTells) {
  struct TOld : IDisplay {
    std::int32_t BitsPerPixel() const override { return 8; }
    std::int32_t PaletteSize() const override { return 256; }
  };
  const TOld old;
  SetDisplay(&old);
  EXPECT_EQ(Display().PaletteSize(), 256);
  SetDisplay(nullptr);
  EXPECT_EQ(Display().BitsPerPixel(), 32);
  EXPECT_EQ(Display().PaletteSize(), 0);
}

// -- Bitmaps ----------------------------------------------------------------------------------------------------------

TEST(Bitmap, KeepsColoursAndOpacityOfItsPixels) {
  TBitmap bitmap({3, 2});
  EXPECT_EQ(bitmap.Alpha({2, 1}), 0);
  bitmap.Fill(clRed);
  bitmap.SetPixel({2, 1}, TColor{0x332211}, 0x80);
  bitmap.SetPixel({0, 1}, clWindow);
  EXPECT_EQ(bitmap.Row(1)[2], 0x80112233u);
  EXPECT_EQ(bitmap.Pixel({2, 1}), TColor{0x332211});
  EXPECT_EQ(bitmap.Pixel({0, 1}), clWhite);
  const TBitmap opaque = bitmap;
  bitmap.MakeTransparent(clRed);
  EXPECT_EQ(bitmap.Alpha({1, 1}), 0);
  EXPECT_EQ(bitmap.Pixel({1, 1}), clRed);
  EXPECT_EQ(bitmap.Alpha({0, 1}), 255);
  EXPECT_FALSE(bitmap == opaque);
  bitmap.Row(0)[0] = 0xFF00FF00;
  EXPECT_EQ(bitmap.Pixel({0, 0}), clLime);
}

TEST(Bitmap, RefusesSizesAndPixelsThatCannotBe) {
  EXPECT_TRUE(TBitmap({0, 0}).IsEmpty());
  EXPECT_TRUE(TBitmap({0, 5}).Row(3).empty());
  const auto errorOf = [](TSize size) { return MessageOf<EGraphicError>([size] { TBitmap bitmap(size); }); };
  EXPECT_EQ(errorOf({-1, 5}), "A picture of -1 by 5 pixels can't be made: each side must be from 0 to 32767");
  EXPECT_EQ(errorOf({1, 100000}), "A picture of 1 by 100000 pixels can't be made: each side must be from 0 to 32767");
  EXPECT_EQ(errorOf({32767, 32767}),
            "A picture of 32767 by 32767 pixels can't be made: it would have more than 134217728 pixels");
  TBitmap bitmap({3, 2});
  for (const TPoint outside : {TPoint{3, 0}, {0, 2}, {-1, 0}, {0, -1}}) {
    EXPECT_THROW(bitmap.SetPixel(outside, clRed), EGraphicError);
    EXPECT_THROW(bitmap.Alpha(outside), EGraphicError);
  }
  EXPECT_EQ(MessageOf<EGraphicError>([&] { bitmap.Row(2); }), "Pixel 0, 2 lies outside of a picture of 3 by 2 pixels");
}

// -- Pens, brushes and fonts ------------------------------------------------------------------------------------------

class TBoard : public TComponent {
 public:
  using TComponent::TComponent;
  static const TClass& StaticClass() {
    static const TClass info = TClassBuilder<TBoard>("TBoard", TComponent::StaticClass())
                                   .Property("Brush", [](TBoard& board) { return board.Brush.get(); })
                                   .Property("Font", [](TBoard& board) { return board.Font.get(); })
                                   .Property("Pen", [](TBoard& board) { return board.Pen.get(); })
                                   .Build();
    return info;
  }
  const TClass& ClassType() const override { return StaticClass(); }
  void AfterConstruction() override {
    TComponent::AfterConstruction();
    Pen->OnChange = Brush->OnChange = Font->OnChange = [this](TObject*) { ++Changes; };
  }

  TOwned<TBrush> Brush = Make<TBrush>();
  TOwned<TFont> Font = Make<TFont>();
  TOwned<TPen> Pen = Make<TPen>();
  int Changes = 0;
};

TEST(GraphicsObject, TellsOfEachChangeOnce) {
  const TOwned<TBoard> board = Make<TBoard>(nullptr);
  const auto changesOf = [&board](const auto& act) {
    board->Changes = 0;
    act();
    act();
    return board->Changes;
  };
  const TOwned<TPen> otherPen = Make<TPen>();
  otherPen->SetData({clRed, 3, psDot, pmXor});
  const TOwned<TFont> otherFont = Make<TFont>();
  otherFont->SetHeight(20);
  otherFont->SetCharset(2);
  EXPECT_EQ(changesOf([&] { board->Pen->SetColor(clBlue); }), 1);
  EXPECT_EQ(changesOf([&] { board->Pen->Assign(otherPen.get()); }), 1);
  EXPECT_EQ(board->Pen->Data(), (TPenData{clRed, 3, psDot, pmXor}));
  EXPECT_EQ(changesOf([&] { board->Brush->SetStyle(bsClear); }), 1);
  EXPECT_EQ(changesOf([&] { board->Brush->SetColor(clWhite); }), 1);
  EXPECT_EQ(board->Brush->Data(), TBrushData{}) << "solid again";
  EXPECT_EQ(changesOf([&] { board->Font->SetSize(12); }), 1);
  EXPECT_EQ(changesOf([&] { board->Font->Assign(otherFont.get()); }), 1);
  EXPECT_EQ(board->Font->Height(), 20);
  EXPECT_EQ(board->Font->Charset(), 2);
  EXPECT_EQ(changesOf([&] { board->Font->SetData({"Serif", 9, fsBold, clRed}); }), 1);
  EXPECT_EQ(board->Font->Data(), (TFontData{"Serif", 9, fsBold, clRed}));
  EXPECT_EQ(board->Font->Charset(), 2);
  EXPECT_THROW(board->Pen->Assign(board->Brush.get()), EConvertError);
  EXPECT_THROW(board->Font->Assign(nullptr), EConvertError);
}

TEST(Font, SizeAndHeightAreOneNumber) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  const TOwned<TFont> font = Make<TFont>();
  EXPECT_EQ(font->Size(), 9);
  for (const std::int32_t size : {-20, -1, 0, 1, 7, 8, 10, 11, 12, 72, 1610612735}) {
    font->SetSize(size);
    EXPECT_EQ(font->Size(), size);
  }
  const struct {
    std::int32_t Height, Size, Drawn;
  } kTable[] = {{-11, 8, 11}, {16, -12, 16}, {0, 0, 12}, {kMost, -1610612735, kMost}, {-kMost - 1, 1610612736, kMost}};
  for (const auto& row : kTable) {
    font->SetHeight(row.Height);
    EXPECT_EQ(font->Size(), row.Size);
    EXPECT_EQ(font->Data().Height, row.Drawn);
  }
  font->SetSize(kMost);
  EXPECT_EQ(font->Height(), -kMost);
}

TEST(GraphicsObject, StreamsAsAPartOfItsComponent) {
  RegisterComponents("Test", {&TBoard::StaticClass()});
  constexpr const char* kText = R"(object Board1: TBoard
  Brush.Style = bsClear
  Font.Color = clRed
  Font.Height = 20
  Font.Name = 'Serif'
  Font.Pitch = fpFixed
  Font.Style = [fsBold, fsStrikeOut]
  Pen.Color = 1193046
  Pen.Mode = pmXor
  Pen.Style = psDashDotDot
end
)";
  const TOwned<TComponent> board = TextToComponent(kText);
  EXPECT_EQ(Cast<TBoard>(board.get())->Font->Style(), fsBold | fsStrikeOut);
  EXPECT_EQ(Cast<TBoard>(board.get())->Pen->Color(), TColor{0x123456});
  EXPECT_EQ(ComponentToText(*board), kText);
  EXPECT_EQ(GetPropInfo(TPen::StaticClass(), "Color")->TypeName(), "TColor");
  EXPECT_EQ(MessageOf<EReadError>([] { TextToComponent("object TBoard Pen.Color = clRose end"); }),
            "line 1, column 27: clRose is no value of TPen.Color (TColor)");
  TextIntoComponent("object TBoard Font.Size = 12 Pen.Color = clbtnface end", *board);
  EXPECT_EQ(Cast<TBoard>(board.get())->Font->Height(), -16);
  EXPECT_EQ(Cast<TBoard>(board.get())->Pen->Color(), clBtnFace);
  UnregisterComponents({&TBoard::StaticClass()});
}

}  // namespace
}  // namespace vx
