// DrawScript.h: draws what a recording device has written.
//
// The text is that of RecordingDevice.h, line by line; blank lines and lines that begin with "#" are passed over, and
// before all others a line "size 640,480" tells the size of the picture that the drawing is meant for. Words stand
// apart by blanks; a line may end in CR LF.
//
//   TRecordingCanvas canvas;
//   const TCanvasStateSaver saved(canvas);
//   PlayDrawing("pen ff0000\nline 0,0 10,10\n", canvas);
//
// A drawing that was recorded from a canvas, played on the canvas of a new recording device and recorded again is the
// same text. So PlayDrawing adds nothing of its own: pen, brush, font and back colour start as in a recording, and the
// canvas is left with what the text leaves it, unfinished saves included. A TCanvasStateSaver around it takes all of
// that back. The clip and what was saved before can't be reached by the text.
//
// Errors. EDrawScriptError names line and column, what stands there and what was expected; the whole text is checked
// before anything is drawn. Limits: numbers of 32 bits, names of fonts of kMostFontName bytes, kMostSaves nested saves,
// kMostScriptPixels in all bitmaps of a text together. Rectangles of a region stand in its own order, from top to
// bottom in bands, else they could be many more than are written. Cost: reads the text twice and keeps the bitmaps.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/canvas/Canvas.h"
#include "platform/runtime/Exceptions.h"

namespace vx {

inline constexpr std::size_t kMostSaves = 10'000;
inline constexpr std::int64_t kMostScriptPixels = std::int64_t{1}
                                                  << 23;  ///< a picture of the largest usual screen; 32 MB

/// "Line 3, column 12: "purple" where a colour (rrggbb) was expected". Both count from 1, columns in code points.
class EDrawScriptError : public TNamedException<EDrawScriptError> {
 public:
  static constexpr const char* kName = "EDrawScriptError";
  EDrawScriptError(std::size_t line, std::size_t column, const std::string& what)
      : TNamedException("Line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + what),
        reason_(what),
        line_(line),
        column_(column) {}
  std::size_t Line() const { return line_; }
  std::size_t Column() const { return column_; }
  /// The message without its place.
  const std::string& Reason() const { return reason_; }

 private:
  std::string reason_;
  std::size_t line_;
  std::size_t column_;
};

/// Checks the whole text, then draws it.
void PlayDrawing(std::string_view text, TCanvas& canvas);
/// The size that the text asks for, if it does; EDrawScriptError if that line is broken. Looks at no line behind it.
std::optional<TSize> DrawingSize(std::string_view text);

}  // namespace vx
