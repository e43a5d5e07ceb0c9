// RowCoverage.h: what a union of many small shapes covers of each pixel, and how it gets into an image.
//
//   coverage.Begin(area);
//   coverage.AddRect({10, 0, 11, 900});                      // whole pixels cost next to nothing
//   coverage.AddShape(std::array<TDot, 3>{{...}});           // convex, between pixels
//   coverage.Paint(target, PixelOf(clNavy));
//
// A pixel is looked at in 64 places, a bit for each: eight rows of eight, the rows shifted against each other so that
// an upright edge has 64 places of its own. Where shapes overlap the bits unite, so that overlaps are not counted
// twice; a pixel takes as much of the colour as it has bits. Pixels are made row by row with one row of bits at a time,
// which stays in the processor's nearest memory whatever the size of the image.
//
// Whole pixels are known before the first bit is looked at: add rectangles first, and parts of shapes that lie in them
// cost nothing. Each row costs its runs of whole pixels and the places of the shapes that reach it. The memory is kept
// for the next use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/cairo/PixelPainter.h"

namespace vx {

class TRowCoverage {
 public:
  static constexpr std::int32_t kPlaces = 8;  ///< along either side of a pixel
  static constexpr std::uint64_t kUpperHalf = 0x00000000FFFFFFFF;
  static constexpr std::uint64_t kLowerHalf = ~kUpperHalf;
  static constexpr std::uint64_t kLeftHalf = 0x0F0F0F0F0F0F0F0F;
  static constexpr std::uint64_t kRightHalf = ~kLeftHalf;

  /// Forgets all; nothing outside of `area` will be painted.
  void Begin(const TRect& area);

  void AddRect(TRect pixels);
  /// A bit for each place of one pixel: the lowest byte is the upper row, its lowest bit the left place.
  void AddPixel(TPoint pixel, std::uint64_t places);
  void AddPixels(const TRect& pixels, std::uint64_t places);
  /// Convex, of up to four corners.
  void AddShape(std::span<const TDot> corners);
  /// True if rectangles that were added cover all of these pixels, as far as is known without effort.
  bool IsCovered(const TRect& pixels) const;

  /// Within the target's clip.
  void Paint(const TPixelTarget& target, std::uint32_t pixel);

  /// The place of a bit of AddPixel, from the top left of its pixel.
  static TDot PlaceOf(std::int32_t bit);

 private:
  struct TRows {
    std::int32_t Top = 0;
    std::int32_t Bottom = 0;
  };
  /// Lists of what happens in a row; a list is a chain through `Next`.
  template <class T>
  struct TAgenda {
    struct TItem {
      T What;
      std::int32_t Next;
    };
    void Begin(std::size_t rows) {
      First.assign(rows, -1);
      Items.clear();
    }
    void Add(std::int32_t row, const T& what) {
      std::int32_t& first = First[static_cast<std::size_t>(row)];
      Items.push_back({what, first});
      first = static_cast<std::int32_t>(Items.size()) - 1;
    }
    template <class Take>
    void Each(std::int32_t row, Take take) const {
      for (std::int32_t i = First[static_cast<std::size_t>(row)]; i >= 0; i = Items[static_cast<std::size_t>(i)].Next)
        take(Items[static_cast<std::size_t>(i)].What);
    }
    std::vector<std::int32_t> First;
    std::vector<TItem> Items;
  };
  /// In a row that it is on the agenda of, whole pixels begin or end.
  struct TTurn {
    std::int32_t Left, Right, By;
  };
  struct TPlaces {
    std::int32_t Column;
    std::uint64_t Bits;
  };
  /// A side, in places: where it is at the height Y, and what it moves by for each further row of places.
  struct TSide {
    double At(double y) const { return X + (y - Y) * Slope; }
    double X, Y, Slope;
  };
  struct TShape {
    double Top, Bottom;
    std::int32_t LeftCount, Count;
    TSide Sides[4];  ///< the left ones first
    TRows Steady;    ///< rows of pixels that are bounded by one left and one right side, Sides[0] and Sides[LeftCount]
    std::size_t SlopeRow;  ///< of these two
  };
  struct TPart {
    std::int32_t Shape, Bottom;
  };

  TRows CoveredRows(std::int32_t left, std::int32_t right) const;
  TShape ShapeOf(std::span<const TDot> corners, double top, double bottom) const;
  static void FindSteady(TShape& shape, std::span<const TDot> corners, double areaTop);
  void AddPart(std::int32_t shape, TRows rows);
  void StartRow(std::int32_t row);
  void Turn(const TTurn& turn);
  void MarkShape(const TShape& shape, std::int32_t row);
  void MarkSteady(const TShape& shape, std::int32_t row);
  void MarkPlaces(std::int32_t row, std::int32_t from, std::int32_t to);
  void MarkTouched(std::int32_t left, std::int32_t right);
  void PaintWhole(std::uint32_t* pixels, std::int32_t left, std::int32_t right, std::uint32_t pixel) const;
  void PaintParts(std::uint32_t* pixels, std::int32_t left, std::int32_t right, std::uint32_t pixel) const;
  void EndRow(std::int32_t row);

  TRect area_;
  std::vector<TRows> tallest_;  ///< of the rectangles added, for each column
  TAgenda<TTurn> turns_;
  TAgenda<TPlaces> places_;
  TAgenda<TPart> parts_;
  std::vector<TShape> shapes_;

  // -- The present row ------------------------------------------------------------------------------------------------
  std::vector<TPart> active_;
  std::vector<std::int32_t> depth_;     ///< how many rectangles cover each column
  std::vector<std::uint64_t> whole_;    ///< a bit for each column with a depth
  std::vector<std::uint64_t> touched_;  ///< a bit for each column with bits
  std::vector<std::uint64_t> bits_;     ///< of each column
};

}  // namespace vx
