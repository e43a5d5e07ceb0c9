// CanvasDevice.h: what a canvas needs of the thing it draws on.
//
// A device is small and has no state of its own but the clip: each primitive comes with all that it is drawn with.
// The rich side, with current pen and position, is TCanvas. Tests draw on a TRecordingDevice; hosts bring devices for
// images, pages and windows.
//
// A canvas also keeps away what is absurd. From it a device meets plain colours (clNone as TInk::Back and
// TTextInk::Back only), finite angles of at most 360 degrees either way, coordinates up to kFarthest, pens of 1 to
// kWidestPen pixels, and no primitive that shows nothing: no empty rectangle, no list without points. Whoever calls a
// device directly does the same.
//
// Pixels. A line covers both of its end pixels. The outline of a closed shape lies within its rectangle; FillRect,
// which has no outline, covers the rectangle. Text is drawn over what is there, from the top left of its line box.
// Text is UTF-8; broken bytes are shown, never an error. Coordinates far outside of the picture are fine.
#pragma once

#include <span>
#include <string_view>

#include "platform/canvas/Bitmap.h"
#include "platform/canvas/Geometry.h"
#include "platform/canvas/Graphics.h"
#include "platform/canvas/Region.h"

namespace vx {

/// Of one line of text, in pixels.
struct TFontMetrics {
  std::int32_t Ascent = 0;   ///< from the top of the line box to the baseline
  std::int32_t Descent = 0;  ///< from the baseline to the bottom
  std::int32_t AverageWidth = 0;

  std::int32_t Height() const { return Ascent + Descent; }
  bool operator==(const TFontMetrics&) const = default;
};

/// Measures text as the device that is going to draw it will. Layout asks for nothing more than this.
class ITextMeter {
 public:
  virtual ~ITextMeter() = default;
  /// Width and line height of `text` on one line, in pixels, rounded up.
  virtual TSize MeasureText(std::string_view text, const TFontData& font) const = 0;
  virtual TFontMetrics MeasureFont(const TFontData& font) const = 0;
};

inline constexpr std::int32_t kWidestPen = 32767;

/// What a shape is drawn with.
struct TInk {
  TPenData Pen;
  TBrushData Brush;
  TColor Back = clNone;  ///< fills the gaps of dashes and hatches; clNone leaves them alone

  bool operator==(const TInk&) const = default;
};

/// What a text is drawn with; for the time of one call, since the font is the canvas' own and not copied.
struct TTextInk {
  const TFontData& Font;  ///< its colour is a plain one
  TColor Back = clNone;   ///< fills the line box behind the text; clNone for nothing
  double Angle = 0;       ///< degrees anticlockwise, turned about the top left of the line box; -360 to 360
};

/// Part of the ellipse in a rectangle, in degrees anticlockwise from three o'clock, as charts count.
struct TArc {
  double Start = 0;
  double Sweep = 360;  ///< negative runs clockwise; beyond 360 counts as the whole

  bool operator==(const TArc&) const = default;
};

enum TArcShape : std::uint8_t {
  asArc,    ///< the line alone
  asChord,  ///< closed by a straight line
  asPie,    ///< closed through the centre
};

/// Order as in the settings that keep the ordinal.
enum TGradientDirection : std::uint8_t {
  gdTopBottom,  ///< starts at the top
  gdBottomTop,
  gdLeftRight,
  gdRightLeft,
  gdFromCenter,
  gdFromTopLeft,
  gdFromBottomLeft,
};

struct TGradient {
  TColor StartColor = clWhite;
  TColor EndColor = clYellow;
  TGradientDirection Direction = gdTopBottom;

  bool operator==(const TGradient&) const = default;
};

class ICanvasDevice : public ITextMeter {
 public:
  virtual TSize Size() const = 0;
  /// True where nothing that was drawn can be taken back: what is drawn with pmXor is skipped.
  virtual bool IsPaper() const { return false; }
  /// Shows what has been drawn so far, where that isn't so anyhow: between the steps of an animation.
  virtual void Present() {}

  // -- Clip ---------------------------------------------------------------------------------------------------------
  /// Keeps the clip until the matching RestoreClip. Pairs nest.
  virtual void SaveClip() = 0;
  virtual void RestoreClip() = 0;
  /// From here on only what also lies within `rect` (or `region`) is drawn.
  virtual void IntersectClip(const TRect& rect) = 0;
  virtual void IntersectClip(const TRegion& region) = 0;

  // -- Shapes -------------------------------------------------------------------------------------------------------
  virtual void FillRect(const TRect& rect, const TInk& ink) = 0;
  virtual void Rectangle(const TRect& rect, const TInk& ink) = 0;
  /// `corner` is width and height of the ellipse whose quarters round the corners off.
  virtual void RoundRect(const TRect& rect, TSize corner, const TInk& ink) = 0;
  virtual void Ellipse(const TRect& rect, const TInk& ink) = 0;
  virtual void Arc(const TRect& rect, TArc arc, TArcShape shape, const TInk& ink) = 0;
  /// Closed; an overlap of the shape with itself is filled.
  virtual void Polygon(std::span<const TPoint> points, const TInk& ink) = 0;
  /// Open. One point alone is a dot as wide as the pen.
  virtual void Polyline(std::span<const TPoint> points, const TInk& ink) = 0;

  // -- Pictures -----------------------------------------------------------------------------------------------------
  virtual void Gradient(const TRect& rect, const TGradient& gradient) = 0;
  /// The part `source` of the bitmap, stretched to `target`. Enlarged, pixels stay sharp squares; reduced, they are
  /// averaged.
  virtual void Draw(const TBitmap& bitmap, const TRect& source, const TRect& target) = 0;

  // -- Text ---------------------------------------------------------------------------------------------------------
  virtual void TextOut(TPoint topLeft, std::string_view text, const TTextInk& ink) = 0;
};

}  // namespace vx
