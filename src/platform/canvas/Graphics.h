// Graphics.h: what things are drawn with.
//
// Pens, brushes and fonts as plain values (TPenData, TBrushData, TFontData): a canvas holds one of each, and they are
// copied, compared, never shared. As properties of components they are objects, with an event that tells of changes:
// Pen.h, Brush.h, Font.h.
#pragma once

#include <cstddef>
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
  psClear,        ///< draws nothing
  psInsideFrame,  ///< solid; outlines of closed shapes lie within their rectangle in any style
  psAlternate,    ///< every second pixel, one pixel wide: a focus rectangle
};

/// How what is drawn meets what is there.
enum TPenMode : std::uint8_t {
  pmCopy,
  pmXor,  ///< each colour byte exclusive-or: drawing twice leaves no trace. Skipped on paper.
};

struct TPenData {
  TColor Color = clBlack;
  std::int32_t Width = 1;  ///< pixels; less than one counts as one
  TPenStyle Style = psSolid;
  TPenMode Mode = pmCopy;  ///< holds for the whole primitive, its filling included

  bool operator==(const TPenData&) const = default;
};

/// How a closed shape is filled. The hatches are lines one pixel wide, eight pixels apart, which start from the origin
/// of the picture: neighbouring shapes join.
enum TBrushStyle : std::uint8_t {
  bsSolid,
  bsClear,       ///< fills nothing
  bsHorizontal,  ///< level lines
  bsVertical,    ///< upright lines
  bsFDiagonal,   ///< lines that fall to the right
  bsBDiagonal,   ///< lines that rise to the right
  bsCross,       ///< level and upright
  bsDiagCross,   ///< both diagonals
};

struct TBrushData {
  TColor Color = clWhite;
  TBrushStyle Style = bsSolid;

  bool operator==(const TBrushData&) const = default;
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

inline constexpr std::size_t kMostFontName = 255;

struct TFontData {
  /// A family; a device without it takes its own sans-serif. A canvas looks at kMostFontName bytes.
  std::string Name = "DejaVu Sans";
  std::int32_t Height = 12;  ///< size of the letters (the em) in pixels; a line of text is somewhat higher
  TFontStyles Style = fsNone;
  TColor Color = clBlack;

  bool operator==(const TFontData&) const = default;
};

/// What becomes of the gaps of dashed lines and hatches, and of the ground behind text. The ordinals are used as such.
enum TCanvasBackMode : std::uint8_t {
  cbmNone,         ///< as cbmTransparent
  cbmTransparent,  ///< what is there stays
  cbmOpaque,       ///< filled with the canvas' back colour
};

}  // namespace vx
