#include "host/cairo/PngFile.h"

#include <gtest/gtest.h>

#include <random>

#include "PngKit.h"
#include "support/TestFolder.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using namespace std::string_literals;
using test::Chunk;
using test::MessageOf;
using test::Png;

/// The pixels as hexadecimal numbers, opacity first.
std::string TextOf(const TBitmap& bitmap) {
  std::string text;
  for (std::int32_t y = 0; y < bitmap.Size().Height; ++y, text += '/')
    for (const std::uint32_t pixel : bitmap.Row(y)) {
      char digits[10];
      std::snprintf(digits, sizeof digits, "%08x ", pixel);
      text += digits;
    }
  return text;
}

TEST(PngFile, GivesBackEveryPixelWithEveryOpacity) {
  std::mt19937 random(1);
  for (const TSize size : {TSize{256, 256}, {1, 1}, {1, 300}, {300, 1}, {77, 13}}) {
    TBitmap bitmap(size);
    for (std::int32_t y = 0; y < size.Height; ++y)
      for (std::int32_t x = 0; x < size.Width; ++x)
        bitmap.Row(y)[static_cast<std::size_t>(x)] =
            static_cast<std::uint32_t>(random() << 8 >> 8 | static_cast<unsigned>(y) << 24);
    const std::string png = EncodePng(bitmap);
    EXPECT_EQ(png, EncodePng(bitmap));
    EXPECT_TRUE(LoadPng(png) == bitmap);
    bitmap.Fill(clTeal);
    EXPECT_EQ(EncodePng(bitmap)[25], 2);  // no byte for an opacity that says nothing
    EXPECT_TRUE(LoadPng(EncodePng(bitmap)) == bitmap);
  }
}

TEST(PngFile, IsReadWhateverItsKind) {
  const std::string palette = Chunk("PLTE", "\x01\x02\x03\xFF\x00\x80"s);
  const struct {
    const char* name;
    std::string png;
    const char* pixels;
  } kKinds[] = {
      {"one bit of grey", Png({3, 1, 1, 0}, "\0\xA0"s), "ffffffff ff000000 ffffffff /"},
      {"two bits of grey", Png({2, 1, 2, 0}, "\0\x90"s), "ffaaaaaa ff555555 /"},
      {"four bits of grey", Png({2, 1, 4, 0}, "\0\x1F"s), "ff111111 ffffffff /"},
      {"grey", Png({2, 1, 8, 0}, "\0\x12\xFE"s), "ff121212 fffefefe /"},
      {"sixteen bits of grey", Png({2, 1, 16, 0}, "\0\x12\x34\x01\xFF"s), "ff121212 ff020202 /"},
      {"grey, one transparent", Png({2, 1, 8, 0}, "\0\x12\xFE"s, Chunk("tRNS", "\0\x12"s)), "00121212 fffefefe /"},
      {"colour", Png({1, 2, 8, 2}, "\0\x01\x02\x03\0\xFF\xFE\xFD"s), "ff010203 /fffffefd /"},
      {"colour, one transparent", Png({1, 1, 8, 2}, "\0\x01\x02\x03"s, Chunk("tRNS", "\0\x01\0\x02\0\x03"s)),
       "00010203 /"},
      {"sixteen bits of colour", Png({1, 1, 16, 2}, "\0\x01\x00\x02\x00\xFF\xFF"s), "ff0102ff /"},
      {"palette", Png({2, 1, 1, 3}, "\0\x40"s, palette), "ff010203 ffff0080 /"},
      {"palette with opacity", Png({2, 1, 8, 3}, "\0\x01\x00"s, palette + Chunk("tRNS", "\x40"s)),
       "ffff0080 40010203 /"},
      {"grey and opacity", Png({1, 1, 8, 4}, "\0\x12\x34"s), "34121212 /"},
      {"sixteen bits of both", Png({1, 1, 16, 4}, "\0\x12\x00\x34\x00"s), "34121212 /"},
      {"colour and opacity", Png({1, 1, 8, 6}, "\0\x01\x02\x03\x00"s), "00010203 /"},
      {"sixteen bits and opacity", Png({1, 1, 16, 6}, "\0\x01\0\x02\0\x03\0\x80\0"s), "80010203 /"},
      // Passes: the first pixel; the one two below; then what stands between, and the second row.
      {"interlaced", Png({3, 2, 8, 0, true}, "\0\x01\0\x03\0\x02\0\x04\x05\x06"s),
       "ff010101 ff020202 ff030303 /ff040404 ff050505 ff060606 /"},
      {"unknown chunks", Png({1, 1, 8, 0}, "\0\x07"s, Chunk("vpAg", "abc") + Chunk("tEXt", "Title\0x"s)), "ff070707 /"},
  };
  for (const auto& kind : kKinds) {
    SCOPED_TRACE(kind.name);
    EXPECT_EQ(TextOf(LoadPng(kind.png)), kind.pixels);
  }
}

TEST(PngFile, NamesTheFileAndWhatIsWrongWithIt) {
  const std::string good = Png({2, 1, 8, 0}, "\0\x12\xFE"s);
  std::string broken = good;
  broken[30] ^= 1;
  std::string headless = good;
  headless[12] = 'J';
  const struct {
    std::string png, reason;
  } kFaults[] = {
      {"", "it is cut off"},
      {"GIF89a", "it is not a PNG"},
      {good.substr(0, 20), "it is cut off"},
      {broken, "IHDR: CRC error"},
      {headless, "it is not a PNG"},
      {good.substr(0, good.size() - 1), "it is cut off"},
      {Png({0, 5, 8, 0}, ""), "A picture of 0 by 5 pixels can't be made: each side must be from 1 to 32767"},
      {Png({0, 0, 8, 0}, ""), "A picture of 0 by 0 pixels can't be made: each side must be from 1 to 32767"},
      {Png({100'000, 100'000, 8, 0}, ""),
       "A picture of 100000 by 100000 pixels can't be made: each side must be from 1 to 32767"},
      {Png({0xFFFFFFFF, 1, 8, 0}, ""),
       "A picture of 2147483647 by 1 pixels can't be made: each side must be from 1 to 32767"},
      {Png({32767, 32767, 1, 0}, ""),
       "A picture of 32767 by 32767 pixels can't be made: it would have more than "
       "134217728 pixels"},
      {Png({30'000, 4'000, 16, 6}, "\0"s), "it is cut off"},  // a gigabyte cannot come of so few bytes
      {Png({2, 2, 8, 0}, "\0\x12\xFE"s), "Not enough image data"},
      {Png({1, 1, 3, 0}, "\0\0"s), "Invalid IHDR data"},
      {Png({1, 1, 8, 3}, "\0\0"s), "IDAT: Missing PLTE before IDAT"},
  };
  for (const auto& fault : kFaults)
    EXPECT_EQ(MessageOf<EGraphicError>([&] { LoadPng(fault.png, "logo.png"); }),
              "Cannot read logo.png: " + fault.reason);
}

/// Whatever is cut off or changed, there is a picture of a bounded size or an error.
TEST(PngFile, StandsEveryCutAndEveryChangedByte) {
  const std::string good = Png({3, 2, 8, 0, true}, "\0\x01\0\x03\0\x02\0\x04\x05\x06"s, Chunk("tRNS", "\0\x12"s));
  for (std::size_t size = 0; size < good.size(); ++size)
    EXPECT_NE(MessageOf<EGraphicError>([&] { LoadPng(good.substr(0, size)); }), "nothing raised") << size;
  for (std::size_t at = 0; at < good.size(); ++at)
    for (int other = 0; other < 256; ++other) {
      std::string changed = good;
      changed[at] = static_cast<char>(other);
      MessageOf<EGraphicError>([&] { EXPECT_LE(LoadPng(changed).Size().Width, 100); });
    }
}

TEST(PngFile, OnDiskIsWrittenWholeAndReadWithItsPathInErrors) {
  const test::TTestFolder folder;
  TBitmap bitmap({2, 2});
  bitmap.SetPixel({1, 0}, clRed, 77);
  SavePngFile(folder.Path("a.png"), bitmap);
  EXPECT_TRUE(LoadPngFile(folder.Path("a.png")) == bitmap);
  EXPECT_EQ(folder.List(), "a.png");
  const auto errorOf = [](const std::string& path) { return MessageOf<EGraphicError>([&] { LoadPngFile(path); }); };
  EXPECT_EQ(errorOf(folder.Path("b.png")), "Cannot read " + folder.Path("b.png") + ": No such file or directory");
  EXPECT_EQ(errorOf(folder.Path("")), "Cannot read " + folder.Path("") + ": Is a directory");
  EXPECT_EQ(errorOf("/dev/zero"), "Cannot read /dev/zero: it is not a PNG");  // which has no end
  EXPECT_EQ(errorOf("/dev/null"), "Cannot read /dev/null: it is cut off");
  EXPECT_EQ(MessageOf<EGraphicError>([] { EncodePng(TBitmap()); }),
            "A picture of 0 by 0 pixels can't be made: each side must be from 1 to 32767");
}

}  // namespace
}  // namespace vx
