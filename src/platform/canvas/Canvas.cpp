#include "platform/canvas/Canvas.h"

#include <array>
#include <utility>

#include "platform/runtime/Exceptions.h"

namespace vx {

void TCanvas::SetBrushColor(TColor color) {
  state_.Brush.Color = color;
  if (state_.Brush.Style == bsClear) state_.Brush.Style = bsSolid;
}

void TCanvas::Save() {
  saved_.push_back(state_);
  device_.SaveClip();
}

void TCanvas::Restore() {
  if (saved_.empty()) throw EInvalidOperation("Restore of a canvas without a Save");
  device_.RestoreClip();
  state_ = std::move(saved_.back());
  saved_.pop_back();
}

void TCanvas::LineTo(TPoint point) {
  Line(state_.Position, point);
  state_.Position = point;
}

void TCanvas::Line(TPoint from, TPoint to) { Polyline(std::array{from, to}); }

void TCanvas::Polyline(std::span<const TPoint> points) {
  if (!points.empty()) device_.Polyline(points, state_.Pen);
}

}  // namespace vx
