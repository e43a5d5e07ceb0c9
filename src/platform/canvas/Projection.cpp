#include "platform/canvas/Projection.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vx {
namespace {

double Finite(double value, double otherwise = 0) { return std::isfinite(value) ? value : otherwise; }

struct TTurn {
  double Sine = 0;
  double Cosine = 1;
};

/// Exact at quarters of a turn, so that these keep rectangles.
TTurn TurnBy(double degrees) {
  constexpr TTurn kQuarters[] = {{0, 1}, {1, 0}, {0, -1}, {-1, 0}};
  const double within = std::fmod(Finite(degrees), 360.0);
  const double quarters = (within < 0 ? within + 360.0 : within) / 90.0;
  if (quarters == std::floor(quarters)) return kQuarters[static_cast<std::size_t>(quarters) % 4];
  const double radians = within / 180.0 * std::numbers::pi;
  return {std::sin(radians), std::cos(radians)};
}

std::int32_t Pixel(double value) {
  return static_cast<std::int32_t>(std::clamp<double>(std::floor(Finite(value) + 0.5), -kFarthest, kFarthest));
}

}  // namespace

TProjection TProjection::Orthogonal(double right, double up) {
  TProjection result;
  result.right_[2] = Finite(right);
  result.down_[2] = -Finite(up);
  return result;
}

TProjection TProjection::Rotated(const TRotation& rotation) {
  const TTurn r = TurnBy(rotation.Rotation), e = TurnBy(rotation.Elevation);
  const double x = rotation.Centre.X, y = rotation.Centre.Y;
  TProjection result;
  result.centre_ = {x, y, Finite(rotation.Depth) / 2};
  result.at_ = {x, y};
  result.right_ = {r.Cosine, 0, -r.Sine};
  result.down_ = {-r.Sine * e.Sine, e.Cosine, -r.Cosine * e.Sine};
  const double perspective = std::clamp(Finite(rotation.Perspective), 0.0, 100.0) / 100;
  const double distance = Finite(rotation.Distance);
  const double share = distance > 0 ? Finite(perspective / distance) : 0;
  result.shrinking_ = {share * r.Sine * e.Cosine, share * e.Sine, share * r.Cosine * e.Cosine};
  return result;
}

TProjection TProjection::Zoomed(TPoint centre, double zoom, std::int32_t moveRight, std::int32_t moveDown) const {
  const double factor = std::max(Finite(zoom, 100), 0.0) / 100;
  TProjection result = *this;
  result.scale_ = Finite(scale_ * factor);
  result.at_ = {Finite(centre.X + (at_[0] - centre.X) * factor + moveRight),
                Finite(centre.Y + (at_[1] - centre.Y) * factor + moveDown)};
  return result;
}

TPoint TProjection::Project(double x, double y, double z) const {
  const TVector p{Finite(x) - centre_[0], Finite(y) - centre_[1], Finite(z) - centre_[2]};
  const auto along = [&p](const TVector& v) { return v[0] * p[0] + v[1] * p[1] + v[2] * p[2]; };
  const double size = scale_ / std::max(1 + along(shrinking_), 1 / kMostMagnified);
  return {Pixel(at_[0] + along(right_) * size), Pixel(at_[1] + along(down_) * size)};
}

bool TProjection::KeepsRectangles() const {
  return right_[1] == 0 && down_[0] == 0 && shrinking_[0] == 0 && shrinking_[1] == 0;
}

}  // namespace vx
