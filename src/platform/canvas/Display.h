// Display.h: what the screen can show.
//
// Colours that are worked out for the screen ask here: a display with few bits a pixel gets other colours than a deep
// one, and one with a palette gets no mixed colours at all. A host that knows its screen puts an IDisplay of its own in
// force; without one, it is deep and has no palette.
//
// A component that is a window, or shows itself in one, says on which display it is by IOnDisplay.
//
// The display in force belongs to the application; main thread only.
#pragma once

#include <cstdint>

namespace vx {

class IDisplay {
 public:
  virtual ~IDisplay() = default;
  virtual std::int32_t BitsPerPixel() const = 0;
  /// Entries of the palette; 0 if there is none, and where it isn't known.
  virtual std::int32_t PaletteSize() const = 0;
};

/// Of a component with a window.
class IOnDisplay {
 public:
  virtual ~IOnDisplay() = default;
  /// The display that its window (or the window it is shown in) is on; null as long as there is none.
  virtual const IDisplay* WindowDisplay() const = 0;
};

const IDisplay& Display();
/// The caller owns `display` and keeps it; null for a deep one without a palette.
void SetDisplay(const IDisplay* display);

}  // namespace vx
