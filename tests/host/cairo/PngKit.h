// PngKit.h: PNG files put together byte by byte, right ones and wrong ones.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vx::test {

/// Four bytes, the highest first.
inline std::string Number(std::uint32_t value) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xFF);
  return bytes;
}

inline std::string Chunk(std::string_view name, std::string_view data) {
  const std::string body = std::string(name) + std::string(data);
  std::uint32_t crc = 0xFFFFFFFF;
  for (const char c : body) {
    crc ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
  }
  return Number(static_cast<std::uint32_t>(data.size())) + body + Number(~crc);
}

/// Packed without being made smaller; at most 65,535 bytes.
inline std::string Stored(std::string_view data) {
  std::uint32_t a = 1;
  std::uint32_t b = 0;
  for (const char c : data) {
    a = (a + static_cast<unsigned char>(c)) % 65521;
    b = (b + a) % 65521;
  }
  const auto size = static_cast<std::uint32_t>(data.size());
  std::string length;
  for (const std::uint32_t half : {size, ~size})
    length.append({static_cast<char>(half & 0xFF), static_cast<char>(half >> 8 & 0xFF)});
  return "\x78\x01\x01" + length + std::string(data) + Number(b << 16 | a);
}

struct TPngHeader {
  std::uint32_t Width, Height;
  int Depth, Type;  ///< bits of a sample; 0 grey, 2 colour, 3 palette, 4 grey and opacity, 6 colour and opacity
  bool IsInterlaced = false;
};

inline std::string PngStart(const TPngHeader& header) {
  const char rest[] = {static_cast<char>(header.Depth), static_cast<char>(header.Type), 0, 0, header.IsInterlaced};
  return "\x89PNG\r\n\x1A\n" +
         Chunk("IHDR", Number(header.Width) + Number(header.Height) + std::string(rest, sizeof rest));
}

/// `rows` with the filter's byte before each; `chunks` stand before the pixels.
inline std::string Png(const TPngHeader& header, std::string_view rows, const std::string& chunks = {}) {
  return PngStart(header) + chunks + Chunk("IDAT", Stored(rows)) + Chunk("IEND", "");
}

}  // namespace vx::test
