// Graphics.h: pens, brushes and fonts as values.
//
// A canvas holds one of each. They are plain values: copied, compared, never shared.
#pragma once

#include <cstdint>
#include <string>

#include "platform/canvas/Color.h"

namespace vx {

enum TPenStyle : std::uint8_t {
  psSolid,
  psDash,
  psDot,
  psDashDot,
  psDashDotDot,
  psClear,  ///< draws nothing
};

struct TPen {
  TColor Color = clBlack;
  std::int32_t Width = 1;  ///< pixels; less than one counts as one
  TPenStyle Style = psSolid;

  bool operator==(const TPen&) const = default;
};

/// How a closed shape is filled. The hatches will follow these two.
enum TBrushStyle : std::uint8_t {
  bsSolid,
  bsClear,  ///< fills nothing
};

struct TBrush {
  TColor Color = clWhite;
  TBrushStyle Style = bsSolid;

  bool operator==(const TBrush&) const = default;
};

/// Styles of letters; combine with `|`.
enum TFontStyles : std::uint8_t {
  fsNone = 0,
  fsBold = 1,
  fsItalic = 2,
  fsUnderline = 4,
  fsStrikeOut = 8,
};
constexpr TFontStyles operator|(TFontStyles a, TFontStyles b) {
  return static_cast<TFontStyles>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}

struct TFont {
  std::string Name = "DejaVu Sans";  ///< a family; a device without it takes its own sans-serif
  std::int32_t Height = 12;          ///< size of the letters (the em) in pixels; a line of text is somewhat higher
  TFontStyles Style = fsNone;
  TColor Color = clBlack;

  bool operator==(const TFont&) const = default;
};

}  // namespace vx
