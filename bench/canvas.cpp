// A chart's drawing on a picture of 1600 by 900 that is used again and again, beside the plain way to do the same.
//
//   text         10,000 labels, each another: a plain loop over Pango, the device's first look at them, and its second
//   line         two points for each column of pixels, up and down, as a series of millions becomes: noise over the
//                whole height and a walk; Cairo's own stroke, and the device. 3 milliseconds are the most it may take.
//   rectangles   100,000 small ones
//   recording    a million primitives, written as text, and 100,000 of them read back and drawn on a picture
//
//   ./dev bench canvas
#include <pango/pangocairo.h>

#include <algorithm>
#include <memory>
#include <random>

#include "Timing.h"
#include "host/cairo/CairoDevice.h"
#include "platform/canvas/DrawScript.h"
#include "platform/canvas/RecordingDevice.h"

namespace {

using namespace vx;
using namespace bench;

constexpr TSize kPicture{1600, 900};

std::shared_ptr<TCairoDevice> Picture() { return std::make_shared<TCairoDevice>(kPicture); }

// -- The yardstick ---------------------------------------------------------------------------------------------------

/// Pango and Cairo without us.
struct TPlain {
  TPlain()
      : Surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, kPicture.Width, kPicture.Height)),
        Context(cairo_create(Surface)),
        Layout(pango_cairo_create_layout(Context)) {
    PangoFontDescription* const font = pango_font_description_from_string("DejaVu Sans 12px");
    pango_layout_set_font_description(Layout, font);
    pango_font_description_free(font);
    cairo_set_source_rgb(Context, 0, 0, 0.5);
  }
  ~TPlain() {
    g_object_unref(Layout);
    cairo_destroy(Context);
    cairo_surface_destroy(Surface);
  }
  TPlain(const TPlain&) = delete;
  TPlain& operator=(const TPlain&) = delete;

  cairo_surface_t* Surface;
  cairo_t* Context;
  PangoLayout* Layout;
};

// -- Text ------------------------------------------------------------------------------------------------------------

std::vector<std::string> Labels() {
  std::vector<std::string> labels;
  for (int i = 0; i < 10'000; ++i) labels.push_back("Order " + std::to_string(i * 7919 % 10'007));
  return labels;
}

TWork PlainText() {
  const auto plain = std::make_shared<TPlain>();
  return {.body = [plain, labels = Labels()] {
    int width = 0;
    int height = 0;
    for (const std::string& label : labels) {
      pango_layout_set_text(plain->Layout, label.data(), static_cast<int>(label.size()));
      pango_layout_get_size(plain->Layout, &width, &height);
    }
  }};
}

/// The font has been used before, as that of the plain way has.
TWork DeviceText(bool again) {
  const auto device = std::make_shared<std::shared_ptr<TCairoDevice>>(Picture());
  const auto measure = [device](const std::vector<std::string>& labels) {
    for (const std::string& label : labels) benchmark::DoNotOptimize((*device)->MeasureText(label, TFontData{}));
  };
  return {.before =
              [=] {
                if (!again) *device = Picture();
                measure({"x"});
              },
          .body = [=, labels = Labels()] { measure(labels); }};
}

// -- Lines -----------------------------------------------------------------------------------------------------------

std::vector<TPoint> Noise() {
  std::mt19937 random(1);
  std::vector<TPoint> points;
  const auto margin = [&] { return static_cast<std::int32_t>(random() % 30); };
  for (std::int32_t x = 0; x < kPicture.Width; ++x) {
    points.push_back({x, margin()});
    points.push_back({x, kPicture.Height - 1 - margin()});
  }
  return points;
}

std::vector<TPoint> Walk() {
  std::mt19937 random(2);
  std::vector<TPoint> points;
  std::int32_t y = kPicture.Height / 2;
  for (std::int32_t x = 0; x < kPicture.Width; ++x) {
    TPoint high{x, y};
    TPoint low{x, y};
    for (int step = 0; step < 30; ++step) {
      y = std::clamp(y + static_cast<std::int32_t>(random() % 21) - 10, 0, kPicture.Height - 1);
      high.Y = std::min(high.Y, y);
      low.Y = std::max(low.Y, y);
    }
    points.insert(points.end(), {high, low});
  }
  return points;
}

TWork PlainLine(const std::vector<TPoint>& points, std::int32_t width) {
  const auto plain = std::make_shared<TPlain>();
  cairo_set_line_width(plain->Context, width);
  cairo_set_line_join(plain->Context, width == 1 ? CAIRO_LINE_JOIN_MITER : CAIRO_LINE_JOIN_ROUND);
  return {.body = [=] {
    const double middle = width % 2 == 1 ? 0.5 : 0;
    for (const TPoint& point : points) cairo_line_to(plain->Context, point.X + middle, point.Y + middle);
    cairo_stroke(plain->Context);
  }};
}

TWork DeviceLine(const std::vector<TPoint>& points, std::int32_t width) {
  const auto device = Picture();
  return {.body = [=] { device->Polyline(points, {{clNavy, width}, {}}); }};
}

void RegisterLines() {
  const std::pair<const char*, std::vector<TPoint>> lines[] = {{"noise", Noise()}, {"walk", Walk()}};
  for (const auto& [name, points] : lines)
    for (const std::int32_t width : {1, 2}) {
      const std::string which = std::string(name) + "/width:" + std::to_string(width);
      Register("canvas/line/plain/" + which, [=, points = points] { return PlainLine(points, width); });
      Register("canvas/line/device/" + which, [=, points = points] { return DeviceLine(points, width); });
    }
}

// -- Rectangles ------------------------------------------------------------------------------------------------------

TRect Small(std::int32_t i) {
  return TRect::At({i * 37 % kPicture.Width, i * 101 % kPicture.Height}, {5 + i % 11, 3 + i % 7});
}
constexpr std::int32_t kSmall = 100'000;

TWork PlainRectangles() {
  const auto plain = std::make_shared<TPlain>();
  return {.body = [=] {
    for (std::int32_t i = 0; i < kSmall; ++i) {
      const TRect rect = Small(i);
      cairo_rectangle(plain->Context, rect.Left, rect.Top, rect.Width(), rect.Height());
      cairo_fill(plain->Context);
    }
  }};
}

TWork DeviceRectangles() {
  const auto device = Picture();
  return {.body = [=] {
    for (std::int32_t i = 0; i < kSmall; ++i) device->FillRect(Small(i), {{}, {clNavy, bsSolid}});
  }};
}

// -- Recording -------------------------------------------------------------------------------------------------------

/// Half of them rectangles, half lines, and a new colour now and then.
void DrawMany(TCanvas& canvas, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) {
    if (i % 16 == 0) canvas.SetBrushColor(TColor{i & 0xFFFFFF});
    const TRect rect = Small(i);
    if (i % 2 == 0)
      canvas.FillRect(rect);
    else
      canvas.Line(rect.TopLeft(), {rect.Right, rect.Top});
  }
}

TWork Record() {
  const auto device = std::make_shared<std::unique_ptr<TRecordingDevice>>();
  return {.before = [=] { *device = std::make_unique<TRecordingDevice>(kPicture); },
          .body =
              [=] {
                TCanvas canvas(**device);
                DrawMany(canvas, 1'000'000);
              }};
}

TWork Play() {
  TRecordingDevice recorder(kPicture);
  TCanvas recorded(recorder);
  DrawMany(recorded, 100'000);
  return {.body = [device = Picture(), text = recorder.Text()] {
    TCanvas canvas(*device);
    PlayDrawing(text, canvas);
  }};
}

void RegisterAll() {
  Register("canvas/text/plain", PlainText);
  Register("canvas/text/device/first", [] { return DeviceText(false); });
  Register("canvas/text/device/again", [] { return DeviceText(true); });
  RegisterLines();
  Register("canvas/rectangles/plain", PlainRectangles);
  Register("canvas/rectangles/device", DeviceRectangles);
  Register("canvas/recording/write:1000000", Record);
  Register("canvas/recording/play:100000", Play);
}

}  // namespace

int main(int argc, char** argv) {
  RegisterAll();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
