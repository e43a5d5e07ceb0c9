// Reading PNG: any bytes as a file, and as the packed rows of one.
//
// What is read is within the limits, and written and read again it is the same picture; all else is an EGraphicError
// that names the picture.
#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "Property.h"
#include "host/cairo/PngFile.h"

namespace {

using namespace vx;
using vx::fuzz::Hold;

/// Pictures that may be made, but are too large to be made a million times, are left to the tests.
constexpr std::uint64_t kMostPixels = std::uint64_t{1} << 20;

std::uint64_t NumberAt(std::string_view bytes, std::size_t at) {
  std::uint64_t number = 0;
  for (const char c : bytes.substr(at, 4)) number = number << 8 | static_cast<unsigned char>(c);
  return number;
}

bool IsTooLarge(std::string_view png) {
  if (png.size() < 24) return false;
  const std::uint64_t width = NumberAt(png, 16);
  const std::uint64_t height = NumberAt(png, 20);
  return width <= TBitmap::kMaxSide && height <= TBitmap::kMaxSide && width * height > kMostPixels;
}

void HoldPng(std::string_view png, std::string_view input) {
  if (IsTooLarge(png)) return;
  TBitmap bitmap;
  std::string message;
  const bool isRead = vx::fuzz::Runs<EGraphicError>(
      [&] {
        try {
          bitmap = LoadPng(png, "it");
        } catch (const EGraphicError& error) {
          message = error.Message();
          throw;
        }
      },
      "only EGraphicError comes out of reading", input);
  Hold(isRead != message.starts_with("Cannot read it: "), "there is a picture or an error that names it", input);
  if (isRead) Hold(LoadPng(EncodePng(bitmap)) == bitmap, "a picture is written and read without a loss", input);
}

std::string Number(std::size_t value) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xFF);
  return bytes;
}

/// Name and data, between their length and their check sum.
std::string Chunk(const std::string& body) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (const char c : body) {
    crc ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
  }
  return Number(body.size() - 4) + body + Number(~crc);
}

/// A file with right check sums: the first bytes choose its kind and size, the others are its packed rows.
std::string PngOf(std::string_view input) {
  constexpr std::array<std::string_view, 13> kKinds{{{"\1\0", 2},
                                                     {"\2\0", 2},
                                                     {"\4\0", 2},
                                                     {"\10\0", 2},
                                                     {"\20\0", 2},
                                                     {"\10\2", 2},
                                                     {"\20\2", 2},
                                                     {"\1\3", 2},
                                                     {"\10\3", 2},
                                                     {"\10\4", 2},
                                                     {"\20\4", 2},
                                                     {"\10\6", 2},
                                                     {"\20\6", 2}}};  // bits, colours
  const auto byte = [input](std::size_t at) {
    return at < input.size() ? static_cast<unsigned char>(input[at]) : std::size_t{0};
  };
  std::string header = "IHDR" + Number(byte(1) % 32) + Number(byte(2) % 32);
  header.append(kKinds[byte(0) % kKinds.size()]).append("\0\0", 2) += static_cast<char>(byte(3) % 2);
  const std::string rows(input.substr(std::min<std::size_t>(input.size(), 4)));
  return "\x89PNG\r\n\x1A\n" + Chunk(header) + Chunk("PLTE\1\2\3\4\5\6") + Chunk("IDAT" + rows) + Chunk("IEND");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = vx::fuzz::TextOf(data, size);
  HoldPng(input, input);
  HoldPng(PngOf(input), input);
  return 0;
}
