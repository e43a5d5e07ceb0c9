// Draws the sheets of docs/gallery that show what a canvas can: shapes, pens, brushes, texts, depth, modes, colours.
//
//   CanvasGalleryCairo [folder]        the folder is made if needed; "gallery" if none is given
#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <string>
#include <utility>

#include "host/cairo/CairoDevice.h"
#include "platform/canvas/Canvas.h"
#include "platform/canvas/SystemColors.h"

namespace {

using namespace vx;

constexpr TColor kBlue{0x8C5A1F};
constexpr TColor kSand{0xB8E1F4};
constexpr std::int32_t kCell = 120;

/// Calls `draw` with a box for each name, six to a row, and writes the name below it.
template <class TNames, class TDraw>
void DrawCells(TCanvas& canvas, const TNames& names, TDraw draw) {
  for (std::size_t i = 0; i < std::size(names); ++i) {
    const TPoint corner{static_cast<std::int32_t>(i % 6) * kCell, static_cast<std::int32_t>(i / 6) * kCell};
    {
      const TCanvasStateSaver saved(canvas);
      draw(i, TRect::At({corner.X + 20, corner.Y + 14}, {80, 70}));
    }
    canvas.DrawText(TRect::At({corner.X, corner.Y + 92}, {kCell, 18}), names[i], {.Horizontal = TTextLayout::kCentre});
  }
}

std::array<TPoint, 5> StarIn(const TRect& box) {
  return {TPoint{(box.Left + box.Right) / 2, box.Top}, TPoint{box.Left + 18, box.Bottom - 1},
          TPoint{box.Right - 1, box.Top + 26}, TPoint{box.Left, box.Top + 26}, TPoint{box.Right - 18, box.Bottom - 1}};
}

template <TGradientDirection direction>
void DrawGradient(TCanvas& canvas, const TRect& box) {
  canvas.Gradient(box, {clWhite, kBlue, direction});
}

/// A name and what draws it into a box.
using TShape = std::pair<const char*, void (*)(TCanvas& canvas, const TRect& box)>;

constexpr TShape kShapes[] = {
    {"Line",
     [](TCanvas& c, const TRect& box) {
       c.Line(box.TopLeft(), {box.Right - 1, box.Bottom - 1});
     }},
    {"Polyline", [](TCanvas& c, const TRect& box) { c.Polyline(StarIn(box)); }},
    {"Arc",
     [](TCanvas& c, const TRect& box) {
       c.Arc(box, {30, 220});
     }},
    {"Rectangle", [](TCanvas& c, const TRect& box) { c.Rectangle(box); }},
    {"RoundRect",
     [](TCanvas& c, const TRect& box) {
       c.RoundRect(box, {24, 24});
     }},
    {"Ellipse", [](TCanvas& c, const TRect& box) { c.Ellipse(box); }},
    {"Chord",
     [](TCanvas& c, const TRect& box) {
       c.Chord(box, {30, 220});
     }},
    {"Pie",
     [](TCanvas& c, const TRect& box) {
       c.Pie(box, {30, 220});
     }},
    {"Polygon", [](TCanvas& c, const TRect& box) { c.Polygon(StarIn(box)); }},
    {"FillRect", [](TCanvas& c, const TRect& box) { c.FillRect(box); }},
    {"FrameRect", [](TCanvas& c, const TRect& box) { c.FrameRect(box); }},
    {"Frame3D",
     [](TCanvas& c, const TRect& box) {
       c.FillRect(box);
       c.Frame3D(box, clBtnHighlight, clBtnShadow, 3);
     }},
    {"DrawFocusRect", [](TCanvas& c, const TRect& box) { c.DrawFocusRect(box); }},
    {"SetPixel",
     [](TCanvas& c, const TRect& box) {
       for (std::int32_t k = 0; k < 80; ++k) c.SetPixel({box.Left + k, box.Top + k * k * 70 / 6400}, kBlue);
     }},
    {"TextRect",
     [](TCanvas& c, const TRect& box) {
       c.TextRect(box, {box.Left + 2, box.Top + 2}, "cut at the edge");
     }},
    {"gdTopBottom", DrawGradient<gdTopBottom>},
    {"gdBottomTop", DrawGradient<gdBottomTop>},
    {"gdLeftRight", DrawGradient<gdLeftRight>},
    {"gdRightLeft", DrawGradient<gdRightLeft>},
    {"gdFromCenter", DrawGradient<gdFromCenter>},
    {"gdFromTopLeft", DrawGradient<gdFromTopLeft>},
    {"gdFromBottomLeft", DrawGradient<gdFromBottomLeft>},
    {"opaque dashes",
     [](TCanvas& c, const TRect& box) {
       c.SetBackMode(cbmOpaque);
       c.SetBackColor(kSand);
       c.SetPen({kBlue, 4, psDash});
       c.Polyline(StarIn(box));
     }},
    {"8 by 8, 2 wide",
     [](TCanvas& c, const TRect& box) {
       for (std::int32_t k = 0; k < 5; ++k) c.Ellipse(TRect::At({box.Left + k * 16, box.Top + k * 12}, {8, 8}));
       c.SetPenWidth(2);
       c.Rectangle({box.Left, box.Bottom - 24, box.Left + 40, box.Bottom - 8});
     }},
};

void DrawShapes(TCanvas& canvas) {
  std::array<const char*, std::size(kShapes)> names{};
  std::transform(std::begin(kShapes), std::end(kShapes), names.begin(), [](const TShape& each) { return each.first; });
  DrawCells(canvas, names, [&](std::size_t i, const TRect& box) {
    canvas.SetPenColor(kBlue);
    canvas.SetBrushColor(kSand);
    kShapes[i].second(canvas, box);
  });
}

void DrawPens(TCanvas& canvas) {
  constexpr const char* kNames[] = {"psSolid",      "psDash",  "psDot",         "psDashDot",
                                    "psDashDotDot", "psClear", "psInsideFrame", "psAlternate"};
  canvas.SetPenColor(kBlue);
  canvas.SetFontHeight(13);
  for (std::int32_t i = 0; i < 8; ++i) {
    const std::int32_t y = 26 + i * 30;
    canvas.TextOut({12, y - 8}, kNames[i]);
    for (std::int32_t width = 1; width <= 4; ++width) {
      canvas.SetPen({kBlue, width, static_cast<TPenStyle>(i)});
      canvas.Line({-20 + width * 140, y}, {90 + width * 140, y});
    }
    canvas.SetPen({kBlue, 2, static_cast<TPenStyle>(i)});
    canvas.Line({680, y + 8}, {710, y - 8});
  }
}

void DrawBrushes(TCanvas& canvas) {
  constexpr const char* kNames[] = {"bsSolid",         "bsClear",     "bsHorizontal",  "bsVertical",
                                    "bsFDiagonal",     "bsBDiagonal", "bsCross",       "bsDiagCross",
                                    "opaque, bsCross", "over a bar",  "in an ellipse", "in a pie"};
  DrawCells(canvas, kNames, [&](std::size_t i, const TRect& box) {
    canvas.SetPenColor(kBlue);
    canvas.SetBrush({kBlue, i < 8 ? static_cast<TBrushStyle>(i) : i == 8 ? bsCross : bsDiagCross});
    if (i == 8) {
      canvas.SetBackMode(cbmOpaque);
      canvas.SetBackColor(kSand);
    } else if (i == 9) {
      canvas.SetBrush({kSand, bsSolid});
      canvas.Rectangle(box);
      canvas.SetBrush({kBlue, bsDiagCross});
    }
    if (i == 10)
      canvas.Ellipse(box);
    else if (i == 11)
      canvas.Pie(box, {-40, 250});
    else
      canvas.Rectangle(box);
  });
}

void DrawTexts(TCanvas& canvas) {
  constexpr std::pair<TFontStyles, const char*> kStyles[] = {
      {fsNone, "Week 12"},         {fsBold, "bold"},
      {fsItalic, "italic"},        {fsUnderline, "underlined"},
      {fsStrikeOut, "struck out"}, {fsBold | fsItalic, "bold italic"}};
  std::int32_t x = 16;
  for (const auto& [style, text] : kStyles) {
    canvas.SetFont({.Height = 16, .Style = style, .Color = kBlue});
    canvas.TextOut({x, 12}, text);
    x += canvas.TextWidth(text) + 24;
  }
  canvas.SetFont({.Height = 14});
  for (std::int32_t angle = 0; angle < 360; angle += 45)
    canvas.TextOutRotated({110, 150}, angle, "     " + std::to_string(angle) + "°");
  const TRect box{230, 60, 420, 160};
  canvas.SetBrushStyle(bsClear);
  canvas.SetPenColor(clSilver);
  canvas.Rectangle(box);
  canvas.DrawText(box,
                  "Words that are too long for one line are wrapped at blanks, and end in dots where there is no more "
                  "room for them.",
                  {.WordWrap = true});
  const TRect line{230, 180, 420, 204};
  canvas.Rectangle(line);
  canvas.DrawText(line, "One line ends in dots, as labels do",
                  {.Horizontal = TTextLayout::kNear, .Vertical = TTextLayout::kCentre});
  canvas.SetBackMode(cbmOpaque);
  canvas.SetBackColor(kSand);
  canvas.TextOut({450, 70}, "on a ground");
  canvas.TextOut({450, 100}, "Ångström, żółw, Ωμέγα, مرحبا");
  canvas.TextOutRotated({450, 200}, 20, "turned, with its ground");
}

void DrawBox(TCanvas& canvas, const TRect& front, std::int32_t depth) {
  canvas.SetBrushColor(TColor{0xD8C8B4});
  canvas.RectangleWithZ(front, depth);
  for (std::int32_t i = 0; i < 3; ++i) {
    const std::int32_t left = front.Left + 14 + i * 40, top = front.Bottom - 30 - i * 26;
    canvas.SetBrushColor(i == 1 ? kSand : kBlue);
    canvas.RectangleWithZ({left, top, left + 26, front.Bottom}, depth / 2);
    canvas.TriangleWithZ({left, top - 4}, {left + 26, top - 4}, {left + 13, top - 22}, depth / 2);
  }
  canvas.LineWithZ(front.TopLeft(), {front.Right - 1, front.Bottom - 1}, depth);
  canvas.PolygonWithZ(
      {{front.Right - 40, front.Top + 10}, {front.Right - 10, front.Top + 20}, {front.Right - 30, front.Top + 40}},
      depth);
  canvas.SetBrushStyle(bsClear);
  canvas.EllipseWithZ(front.Inflated(-20, -20), depth);
  for (const TPoint corner : {front.TopLeft(), TPoint{front.Right - 1, front.Top}, TPoint{front.Left, front.Bottom - 1},
                              TPoint{front.Right - 1, front.Bottom - 1}}) {
    canvas.MoveTo3D(corner.X, corner.Y, 0);
    canvas.LineTo3D(corner.X, corner.Y, depth);
  }
  canvas.RectangleWithZ(front, 0);
}

void DrawDepth(TCanvas& canvas) {
  const TRect front{40, 50, 180, 190};
  const auto rotated = [&](double rotation, double elevation, double perspective) {
    return TProjection::Rotated({{110, 120}, 60, rotation, elevation, perspective, 400});
  };
  const std::pair<const char*, TProjection> kViews[] = {{"flat", TProjection::Flat()},
                                                        {"orthogonal", TProjection::Orthogonal(0.5, 0.5)},
                                                        {"rotated 30, 20", rotated(30, 20, 0)},
                                                        {"rotated 30, 20, perspective 100", rotated(30, 20, 100)}};
  for (std::int32_t i = 0; i < 4; ++i) {
    const TCanvasStateSaver saved(canvas);
    const auto& [name, projection] = kViews[i];
    canvas.SetFont({.Height = 12});
    canvas.TextOut({i * 240 + 20, 225}, name);
    canvas.SetProjection(projection.Zoomed({110, 120}, 100, i * 240, 0));
    DrawBox(canvas, front, 60);
  }
}

TBitmap Glyph() {
  TBitmap glyph({16, 16});
  for (std::int32_t y = 0; y < 16; ++y)
    for (std::int32_t x = 0; x < 16; ++x)
      if (const std::int32_t d = (x - 8) * (x - 8) + (y - 8) * (y - 8); d < 50)
        glyph.SetPixel({x, y}, x > y ? clRed : clNavy, static_cast<std::uint8_t>(d < 25 ? 255 : 128));
  return glyph;
}

void DrawModes(TCanvas& canvas) {
  constexpr const char* kNames[] = {"pmXor over a bar", "twice: no trace", "a focus on a bar",
                                    "a bitmap",         "enlarged",        "a clip region",
                                    "filled, pmXor",    "hatched, pmXor",  "a part of a bitmap"};
  const TBitmap glyph = Glyph();
  DrawCells(canvas, kNames, [&](std::size_t i, const TRect& box) {
    canvas.SetPenColor(kBlue);
    canvas.SetBrushColor(kSand);
    if (i == 5) canvas.IntersectClip(TRegion::OfEllipse(box, box).Subtracted(TRegion::OfRect(box.Inflated(-30, -25))));
    canvas.Rectangle(box);
    const TRect inner = box.Inflated(14, -20);
    canvas.SetPen({clWhite, 3, psSolid, pmXor});
    canvas.SetBrushStyle(bsClear);
    if (i < 2) canvas.Ellipse(inner);
    if (i == 1) canvas.Ellipse(inner);
    if (i == 2) canvas.DrawFocusRect(inner);
    if (i == 3) canvas.Draw({box.Left + 32, box.Top + 27}, glyph);
    if (i == 4) canvas.StretchDraw(box.Inflated(-8, -3), glyph);
    if (i == 8) canvas.CopyRect(box.Inflated(-8, -3), glyph, {8, 0, 16, 16});
    canvas.SetBrush({clWhite, i == 6 ? bsSolid : bsDiagCross});
    if (i == 6 || i == 7) canvas.Ellipse(inner);
  });
}

void DrawWindow(TCanvas& canvas, const TRect& rect) {
  canvas.SetFont({.Height = 13});
  const auto line = [&](std::int32_t top, TColor ground, TColor text, const char* what) {
    const TRect row{rect.Left + 8, rect.Top + top, rect.Right - 8, rect.Top + top + 24};
    canvas.SetBrushColor(ground);
    canvas.FillRect(row);
    canvas.SetFontColor(text);
    canvas.TextOut({row.Left + 6, row.Top + 4}, what);
  };
  canvas.SetBrushColor(clBtnFace);
  canvas.FillRect(rect);
  canvas.Frame3D(rect, clBtnHighlight, cl3DDkShadow, 1);
  line(8, clActiveCaption, clCaptionText, "Active caption");
  line(36, clWindow, clWindowText, "Window text");
  line(60, clHighlight, clHighlightText, "Highlighted");
  line(84, clWindow, clGrayText, "Disabled");
  line(112, clInfoBk, clInfoText, "A hint");
  line(140, clMenu, clMenuText, "Menu");
  line(168, clBtnFace, clBtnText, "Button");
  canvas.Frame3D({rect.Left + 8, rect.Top + 166, rect.Right - 8, rect.Top + 194}, clBtnHighlight, clBtnShadow, 1);
}

void DrawSchemes(TCanvas& canvas) {
  const TSystemColors before = SystemColors();
  SetSystemColors(LightSystemColors());
  DrawWindow(canvas, {20, 20, 240, 222});
  SetSystemColors(DarkSystemColors());
  DrawWindow(canvas, {260, 20, 480, 222});
  SetSystemColors(before);
}

struct TSheet {
  const char* name;
  TSize size;
  double scale;
  void (*draw)(TCanvas& canvas);
};

constexpr TSheet kSheets[] = {
    {"canvas-shapes", {720, 480}, 1, DrawShapes},
    {"canvas-shapes-2x", {720, 480}, 2, DrawShapes},
    {"canvas-pens", {740, 260}, 1, DrawPens},
    {"canvas-brushes", {720, 240}, 1, DrawBrushes},
    {"canvas-brushes-1.5x", {720, 240}, 1.5, DrawBrushes},
    {"canvas-texts", {760, 240}, 1, DrawTexts},
    {"canvas-depth", {960, 250}, 1, DrawDepth},
    {"canvas-modes", {720, 240}, 1, DrawModes},
    {"canvas-schemes", {500, 240}, 1, DrawSchemes},
};

}  // namespace

int main(int argc, char** argv) {
  const std::filesystem::path folder = argc > 1 ? argv[1] : "gallery";
  std::filesystem::create_directories(folder);
  for (const TSheet& sheet : kSheets) {
    TCairoDevice device(sheet.size, sheet.scale);
    TCanvas canvas(device);
    sheet.draw(canvas);
    device.SaveToFile((folder / (std::string(sheet.name) + ".png")).string());
    std::cout << sheet.name << ".png\n";
  }
}
