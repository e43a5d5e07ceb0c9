#include "Picture.h"

#include "InputFile.h"
#include "PictureCairo.h"
#include "TextTypes.h"
#include "UserError.h"
#include "platform/canvas/RecordingDevice.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr std::int32_t kLongestSide = 32767;

std::string DrawingTextOf(TSize size, const TPicturePainter& paint) {
  TRecordingDevice device(size);
  TCanvas canvas(device);
  paint(canvas);
  return "size " + std::to_string(size.Width) + "," + std::to_string(size.Height) + "\n" + device.Text();
}

std::string DrawnPicture(TPictureKind kind, const TPictureLook& look, const std::vector<TPicturePainter>& pages) {
  if constexpr (KESTRIX_WITH_CAIRO != 0) {
    if (kind != TPictureKind::kText) return CairoPictureOf(kind, look, pages);
  }
  return DrawingTextOf(look.Size, pages.front());
}

std::optional<TPictureKind> KindOfName(const std::string& output) {
  const std::string lower = LowerCase(output);
  if (lower.ends_with(".txt")) return TPictureKind::kText;
  if (lower.ends_with(".svg")) return TPictureKind::kSvg;
  if (lower.ends_with(".pdf")) return TPictureKind::kPdf;
  return lower.ends_with(".png") || output == kStandardInput ? std::optional(TPictureKind::kPng) : std::nullopt;
}

}  // namespace

TPictureKind KindOfPicture(const std::string& output) {
  const std::optional<TPictureKind> kind = KindOfName(output);
  if (!kind)
    throw EUserError({output, 0, {}},
                     "a picture's name ends in .png, .svg or .pdf, or in .txt for the drawing commands as text");
  if (KESTRIX_WITH_CAIRO == 0 && *kind != TPictureKind::kText)
    throw EUserError("this program was built without Cairo and draws no pictures, only .txt");
  return *kind;
}

std::string PictureOf(TPictureKind kind, const TPictureLook& look, const std::vector<TPicturePainter>& pages) {
  if (pages.size() > 1 && kind != TPictureKind::kPdf)
    throw EUserError("only a PDF has several pages; " + std::to_string(pages.size()) + " drawings were given");
  return DrawnPicture(kind, look, pages);
}

std::optional<TSize> SizeOfText(std::string_view text) {
  const std::size_t cross = text.find('x');
  if (cross == std::string_view::npos) return std::nullopt;
  const auto width = ReadInteger(text.substr(0, cross));
  const auto height = ReadInteger(text.substr(cross + 1));
  const auto isSide = [](const auto& side) { return side && *side >= 1 && *side <= kLongestSide; };
  return isSide(width) && isSide(height) ? std::optional(TSize{*width, *height}) : std::nullopt;
}

TSize NeedSize(const std::string& text) {
  const auto size = SizeOfText(text);
  if (!size) throw EUserError("--size " + Quoted(text) + " should be WIDTHxHEIGHT, in pixels of 1 to 32767");
  return *size;
}

}  // namespace vx::kestrix
