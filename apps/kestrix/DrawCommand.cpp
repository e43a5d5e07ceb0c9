#include "DrawCommand.h"

#include <memory>
#include <ostream>

#include "CommandOptions.h"
#include "InputFile.h"
#include "Interrupt.h"
#include "Picture.h"
#include "UserError.h"
#include "platform/canvas/DrawScript.h"

namespace vx::kestrix {

namespace {

/// Bytes of a text: a chart of a million points has a tenth of it.
constexpr std::size_t kMostScript = std::size_t{1} << 28;

constexpr const char* kHelp =
    R"(A drawing is a text, one command a line, as "kestrix chart … -o chart.txt" writes it:

  size 300,120                            first of all; --size holds if it isn't there
  pen 1f5a8c 2 dash                       colour (red, green, blue), width, style, xor
  brush ffcc00 diagcross                  or: brush clear
  line 10,10 290,10                       polyline, polygon
  rectangle 10,20 90,60                   fill, ellipse, roundrect … 8,8, arc, chord, pie … START SWEEP
  gradient 100,20 190,60 ffffff 0000ff leftright
  font 000000 14 bold
  text 10,90 "Drill, week 12" 15          an angle last, if any
  clip 0,0 150,120                        between save and restore

Several drawings make the pages of a PDF. Examples:
  kestrix draw sketch.txt -o sketch.png --scale 2
  kestrix draw first.txt second.txt -o both.pdf
  kestrix draw icon.txt --size 64x64 --pixels -o icon.png)";

struct TDrawOptions {
  std::vector<std::string> files;
  std::string output;
  std::string size = "640x480";
  TPictureLook look{};
  bool isPixelated = false;
};

/// "bars.txt:7:12: …".
EUserError ErrorAt(const std::string& path, const EDrawScriptError& error) {
  return EUserError(OneLine(InputName(path)) + ":" + std::to_string(error.Line()) + ":" +
                    std::to_string(error.Column()) + ": " + OneLine(error.Reason()));
}

struct TDrawing {
  std::string path;
  std::string text;

  std::optional<TSize> Size() const try { return DrawingSize(text); } catch (const EDrawScriptError& error) {
    throw ErrorAt(path, error);
  }
  void Draw(TCanvas& canvas) const try { PlayDrawing(text, canvas); } catch (const EDrawScriptError& error) {
    throw ErrorAt(path, error);
  }
};

std::vector<TDrawing> ReadDrawings(const std::vector<std::string>& files, const TStreams& streams) {
  std::vector<TDrawing> drawings;
  for (const std::string& file : files) drawings.push_back({file, ReadInput(file, streams.in, kMostScript)});
  return drawings;
}

int RunDraw(TDrawOptions options, const TStreams& streams) {
  const TPictureKind kind = KindOfPicture(options.output);
  TResult result(options.output, options.files, streams);
  const std::vector<TDrawing> drawings = ReadDrawings(options.files, streams);
  options.look.Size = drawings.front().Size().value_or(NeedSize(options.size));
  options.look.IsSmooth = !options.isPixelated;
  std::vector<TPicturePainter> pages;
  for (const TDrawing& drawing : drawings) pages.push_back([&](TCanvas& canvas) { drawing.Draw(canvas); });
  const std::string picture = PictureOf(kind, options.look, pages);
  CheckInterrupt();
  result.Out() << picture;
  result.Finish();
  return kSuccess;
}

}  // namespace

TRunCommand AddDraw(CLI::App& app) {
  const auto options = std::make_shared<TDrawOptions>();
  CLI::App* const command = app.add_subcommand("draw", "Draws a text of drawing commands as PNG, SVG or PDF");
  command->add_option("FILE", options->files, "The drawing; - for standard input")->required();
  command->add_option("-o,--output", options->output, "What to write: NAME.png, .svg, .pdf, or .txt")->required();
  command->add_option("--size", options->size, "Width and height in pixels, where the drawing tells none")
      ->capture_default_str();
  command->add_option("--scale", options->look.Scale, "Image pixels for each pixel of the drawing, in a PNG")
      ->capture_default_str()
      ->check(CLI::Range(0.1, 20.0));
  command->add_option("--ppi", options->look.PixelsPerInch, "Pixels to the inch, on paper")
      ->capture_default_str()
      ->check(CLI::Range(36.0, 4800.0));
  command->add_flag("--pixels", options->isPixelated, "Draws without smoothing, in a PNG");
  command->footer(kHelp);
  return [options](const TStreams& streams) { return RunDraw(*options, streams); };
}

}  // namespace vx::kestrix
