// Projection.h: where a point in depth is seen on the picture.
//
// A chart's space has x and y in pixels of the flat picture and z in pixels of depth, 0 at the front and growing away
// from the viewer. A TProjection turns such a point into a pixel; a canvas has one in force for the forms whose names
// end in 3D or WithZ. It is a plain value.
//
// Flat ignores z. Orthogonal moves a point of depth z to the right and up by fixed shares of z: rectangles stay
// rectangles. Rotated turns the space about its centre, first about the upright axis by the rotation, then about the
// level axis by the elevation, and may let what is far away shrink. With r and e for those angles, and (x, y, z)
// counted from the centre, y downwards, that is
//
//   x1 = x cos r - z sin r      z1 = x sin r + z cos r      the right side goes away
//   y2 = y cos e - z1 sin e     z2 = y sin e + z1 cos e     the back goes up
//   x' = x1 s   y' = y2 s       s = D / (D + z2 p / 100)    likeness of triangles: the eye is D before the centre
//
//   TProjection::Flat().Project(10, 20, 50);                    // 10, 20
//   TProjection::Orthogonal(1.0, 0.5).Project(10, 20, 8);       // 18, 16
//
// A number that isn't finite counts as 0, as a zoom as 100. Results are clamped to kFarthest.
#pragma once

#include <array>
#include <cstdint>

#include "platform/canvas/Geometry.h"

namespace vx {

class TProjection {
 public:
  static constexpr TProjection Flat() { return {}; }
  /// Shares of the depth by which a point moves to the right and up; each from -1 to 1 in charts.
  static TProjection Orthogonal(double right, double up);

  struct TRotation {
    TPoint Centre;           ///< the point of the picture that stays where it is
    double Depth = 0;        ///< of the whole space in pixels; half of it is the centre's z
    double Rotation = 0;     ///< degrees about the upright axis; positive turns the right side away
    double Elevation = 0;    ///< degrees about the level axis; positive lifts the back
    double Perspective = 0;  ///< percent, 0 to 100: how much what is far away shrinks; 0 is parallel
    double Distance = 1000;  ///< pixels from the viewer to the centre, for Perspective; 0 and less count as parallel
  };
  /// What comes near the viewer's eye, or behind it, is magnified at most kMostMagnified times.
  static TProjection Rotated(const TRotation& rotation);
  static constexpr double kMostMagnified = 16;

  /// The same, then magnified about `centre` by `zoom` percent (100 changes nothing; below 0 counts as 0) and moved.
  TProjection Zoomed(TPoint centre, double zoom, std::int32_t moveRight, std::int32_t moveDown) const;

  /// Rounded to the nearest pixel, a half to the right and down: what moves by a number of pixels keeps its form.
  TPoint Project(double x, double y, double z) const;
  /// True if an upright rectangle at one depth is an upright rectangle on the picture, possibly mirrored.
  bool KeepsRectangles() const;

  bool operator==(const TProjection&) const = default;

 private:
  using TVector = std::array<double, 3>;

  TVector centre_{};            ///< of the space: what is turned about
  TVector right_{1, 0, 0};      ///< how far each of x, y and z goes to the right on the picture
  TVector down_{0, 1, 0};       ///< and down
  TVector shrinking_{};         ///< by how much of itself each makes the picture shrink, per pixel
  std::array<double, 2> at_{};  ///< where the centre is seen
  double scale_ = 1;
};

}  // namespace vx
