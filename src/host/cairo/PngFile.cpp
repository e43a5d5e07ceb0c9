#include "host/cairo/PngFile.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstring>
#include <limits>
#include <vector>

#include "host/cairo/PictureFile.h"

namespace vx {

namespace {

constexpr std::string_view kSignature("\x89PNG\r\n\x1A\n", 8);
constexpr std::string_view kNotPng = "it is not a PNG";
constexpr std::string_view kCut = "it is cut off";
constexpr std::size_t kHeaderEnd = 33;  // signature, and a chunk of 13 bytes
constexpr std::size_t kLongestFile = (std::size_t{1} << 30) + (std::size_t{1} << 24);  // the largest picture, 16 bits
constexpr png_alloc_size_t kLargestChunk = png_alloc_size_t{1} << 20;  // unpacked; none that we need is as long
constexpr std::uint64_t kTightest = 1032;                              // times that Deflate makes bytes fewer, at most

/// What the library tells of by a long jump, and reads from. The functions that jump hold nothing that must be freed.
struct TPngWork {
  std::string_view Rest{};
  std::string* Written = nullptr;
  bool IsOutOfMemory = false;
  std::array<char, 128> Reason{};
};

[[noreturn]] void Jump(png_structp png, png_const_charp reason) {
  auto* const work = static_cast<TPngWork*>(png_get_error_ptr(png));
  std::strncpy(work->Reason.data(), reason, work->Reason.size() - 1);
  png_longjmp(png, 1);
}

void Ignore(png_structp /*png*/, png_const_charp /*reason*/) {}

void ReadBytes(png_structp png, png_bytep to, png_size_t count) {
  auto* const work = static_cast<TPngWork*>(png_get_io_ptr(png));
  if (count > work->Rest.size()) png_error(png, kCut.data());
  std::memcpy(to, work->Rest.data(), count);
  work->Rest.remove_prefix(count);
}

void WriteBytes(png_structp png, png_bytep bytes, png_size_t count) {
  auto* const work = static_cast<TPngWork*>(png_get_io_ptr(png));
  try {
    work->Written->append(reinterpret_cast<const char*>(bytes), count);
    return;
  } catch (const std::bad_alloc&) {
    work->IsOutOfMemory = true;
  }
  png_error(png, "out of memory");
}

void Flush(png_structp /*png*/) {}

// -- Reading ----------------------------------------------------------------------------------------------------------

class TPngReader {
 public:
  explicit TPngReader(std::string_view bytes) : work_{.Rest = bytes} {
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &work_, Jump, Ignore);
    if (png_ == nullptr) throw std::bad_alloc();
    info_ = png_create_info_struct(png_);
    if (info_ == nullptr) {
      png_destroy_read_struct(&png_, nullptr, nullptr);
      throw std::bad_alloc();
    }
    png_set_read_fn(png_, &work_, ReadBytes);
    png_set_user_limits(png_, TBitmap::kMaxSide, TBitmap::kMaxSide);
    png_set_chunk_malloc_max(png_, kLargestChunk);
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);  // texts, profiles: nothing that we need
  }
  ~TPngReader() { png_destroy_read_struct(&png_, &info_, nullptr); }
  TPngReader(const TPngReader&) = delete;
  TPngReader& operator=(const TPngReader&) = delete;

  /// Up to the first of the pixels.
  bool ReadHeader() {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_read_info(png_, info_);
    return true;
  }
  TSize Size() const {
    return {static_cast<std::int32_t>(png_get_image_width(png_, info_)),
            static_cast<std::int32_t>(png_get_image_height(png_, info_))};
  }
  /// Bytes of all rows before they were packed, at least.
  std::uint64_t RawSize() const {
    return std::uint64_t{png_get_rowbytes(png_, info_)} * png_get_image_height(png_, info_);
  }
  /// All to four bytes a pixel: red, green, blue, opacity.
  bool ReadPixels(png_bytepp rows) {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_set_expand(png_);
    png_set_scale_16(png_);
    png_set_gray_to_rgb(png_);
    png_set_add_alpha(png_, 0xFF, PNG_FILLER_AFTER);
    png_set_interlace_handling(png_);
    png_read_update_info(png_, info_);
    png_read_image(png_, rows);
    png_read_end(png_, nullptr);
    return true;
  }
  std::string_view Reason() const { return work_.Reason.data(); }

 private:
  TPngWork work_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
};

std::uint32_t NumberAt(std::string_view bytes, std::size_t at) {
  std::uint32_t number = 0;
  for (const char c : bytes.substr(at, 4)) number = number << 8 | static_cast<unsigned char>(c);
  return number;
}

/// The library would say less about a size that no picture can have.
void CheckSizeInHeader(std::string_view bytes) {
  constexpr std::uint32_t kMost = std::numeric_limits<std::int32_t>::max();
  CheckPictureSize({static_cast<std::int32_t>(std::min(NumberAt(bytes, 16), kMost)),
                    static_cast<std::int32_t>(std::min(NumberAt(bytes, 20), kMost))},
                   1);
}

/// From four bytes to one number.
void PackRow(std::span<std::uint32_t> row) {
  for (std::uint32_t& pixel : row) {
    std::array<std::uint8_t, 4> bytes{};
    std::memcpy(bytes.data(), &pixel, 4);
    pixel = std::uint32_t{bytes[3]} << 24 | std::uint32_t{bytes[0]} << 16 | std::uint32_t{bytes[1]} << 8 | bytes[2];
  }
}

TBitmap Decode(std::string_view bytes) {
  if (!kSignature.starts_with(bytes.substr(0, kSignature.size()))) throw EGraphicError(std::string(kNotPng));
  if (bytes.size() < kHeaderEnd) throw EGraphicError(std::string(kCut));
  if (bytes.substr(12, 4) != "IHDR") throw EGraphicError(std::string(kNotPng));
  CheckSizeInHeader(bytes);
  TPngReader reader(bytes);
  if (!reader.ReadHeader()) throw EGraphicError(std::string(reader.Reason()));
  if (reader.RawSize() / kTightest > bytes.size()) throw EGraphicError(std::string(kCut));
  TBitmap bitmap(reader.Size());
  std::vector<png_bytep> rows;
  for (std::int32_t y = 0; y < bitmap.Size().Height; ++y)
    rows.push_back(reinterpret_cast<png_bytep>(bitmap.Row(y).data()));
  if (!reader.ReadPixels(rows.data())) throw EGraphicError(std::string(reader.Reason()));
  for (std::int32_t y = 0; y < bitmap.Size().Height; ++y) PackRow(bitmap.Row(y));
  return bitmap;
}

// -- Writing ----------------------------------------------------------------------------------------------------------

class TPngWriter {
 public:
  TPngWriter(std::string& to, TSize size, bool hasAlpha)
      : work_{.Written = &to}, size_(size), bytesPerPixel_(hasAlpha ? 4 : 3) {
    row_.resize(static_cast<std::size_t>(size.Width) * bytesPerPixel_);
    png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &work_, Jump, Ignore);
    if (png_ == nullptr) throw std::bad_alloc();
    info_ = png_create_info_struct(png_);
    png_set_write_fn(png_, &work_, WriteBytes, Flush);
  }
  ~TPngWriter() { png_destroy_write_struct(&png_, &info_); }
  TPngWriter(const TPngWriter&) = delete;
  TPngWriter& operator=(const TPngWriter&) = delete;

  void Begin() { Check(WriteHeader()); }
  void Write(std::span<const std::uint32_t> pixels) {
    std::uint8_t* to = row_.data();
    for (const std::uint32_t pixel : pixels) {
      *to++ = static_cast<std::uint8_t>(pixel >> 16);
      *to++ = static_cast<std::uint8_t>(pixel >> 8);
      *to++ = static_cast<std::uint8_t>(pixel);
      if (bytesPerPixel_ == 4) *to++ = static_cast<std::uint8_t>(pixel >> 24);
    }
    Check(WriteRow());
  }
  void End() { Check(WriteEnd()); }

 private:
  bool WriteHeader() {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_set_IHDR(png_, info_, static_cast<png_uint_32>(size_.Width), static_cast<png_uint_32>(size_.Height), 8,
                 bytesPerPixel_ == 4 ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png_, info_);
    return true;
  }
  bool WriteRow() {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_write_row(png_, row_.data());
    return true;
  }
  bool WriteEnd() {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_write_end(png_, info_);
    return true;
  }
  void Check(bool succeeded) const {
    if (work_.IsOutOfMemory) throw std::bad_alloc();
    if (!succeeded) throw EGraphicError("A picture can't be written: " + std::string(work_.Reason.data()));
  }

  TPngWork work_;
  TSize size_;
  std::size_t bytesPerPixel_;
  std::vector<std::uint8_t> row_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
};

bool IsOpaque(const TBitmap& bitmap) {
  for (std::int32_t y = 0; y < bitmap.Size().Height; ++y)
    if (!std::ranges::all_of(bitmap.Row(y), [](std::uint32_t pixel) { return pixel >> 24 == 0xFF; })) return false;
  return true;
}

}  // namespace

TBitmap LoadPng(std::string_view bytes, std::string_view name) try {
  return Decode(bytes);
} catch (const EGraphicError& error) {
  throw EGraphicError("Cannot read " + std::string(name) + ": " + error.Message());
}

TBitmap LoadPngFile(const std::string& path) {
  return LoadPng(ReadPictureFile(path, kSignature, kNotPng, kLongestFile), path);
}

std::string EncodePng(TSize size, bool hasAlpha, const TRowSource& rowAt) {
  CheckPictureSize(size, 1);
  std::string bytes;
  TPngWriter writer(bytes, size, hasAlpha);
  writer.Begin();
  for (std::int32_t y = 0; y < size.Height; ++y) writer.Write(rowAt(y));
  writer.End();
  return bytes;
}

std::string EncodePng(const TBitmap& bitmap) {
  return EncodePng(bitmap.Size(), !IsOpaque(bitmap), [&bitmap](std::int32_t y) { return bitmap.Row(y); });
}

void SavePngFile(const std::string& path, const TBitmap& bitmap) { WritePictureFile(path, EncodePng(bitmap)); }

}  // namespace vx
