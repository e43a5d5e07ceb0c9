// "kestrix draw": drawings as text become files of every kind.
#include <gtest/gtest.h>

#include "apps/kestrix/RunProgram.h"

namespace vx::kestrix {
namespace {

constexpr const char* kDrawing =
    "# a remark\nsize 60,40\n\npen ff0000\nline 0,0 59,39\nbrush 0000ff diagcross\nrectangle 10,10 30,30\n"
    "font 000000 12\ntext 5,20 \"Drill\"\n";

TEST(DrawCommand, DrawsEveryKindOfFile) {
  const TTestFolder folder;
  folder.Write("a.txt", kDrawing);
  const auto draw = [&](const std::string& output, const std::vector<std::string>& more = {}) {
    std::vector<std::string> words{"draw", folder.Path("a.txt"), "-o", folder.Path(output)};
    words.insert(words.end(), more.begin(), more.end());
    const TRun run = RunProgram(words);
    EXPECT_EQ(run.err, "");
    return folder.Read(output);
  };
  const std::string text = draw("b.txt");
  EXPECT_EQ(text,
            "size 60,40\npen ff0000\nline 0,0 59,39\nbrush 0000ff diagcross\nrectangle 10,10 30,30\nfont 000000 12\n"
            "text 5,20 \"Drill\"\n");
  EXPECT_EQ(RunProgram({"draw", "-", "-o", folder.Path("c.txt")}, text).code, kSuccess);
  EXPECT_EQ(folder.Read("c.txt"), text);
  if (KESTRIX_WITH_CAIRO == 0) return;
  const std::string png = draw("b.png");
  EXPECT_EQ(png.substr(16, 8), std::string("\0\0\0\x3C\0\0\0\x28", 8)) << "60 by 40 pixels";
  EXPECT_EQ(draw("c.png", {"--scale", "2"}).substr(16, 8), std::string("\0\0\0\x78\0\0\0\x50", 8));
  EXPECT_NE(draw("d.png", {"--pixels"}), png);
  const std::string svg = draw("b.svg");
  EXPECT_NE(svg.find("viewBox=\"0 0 45 30\""), std::string::npos) << svg;
  EXPECT_EQ(draw("c.svg"), svg) << "the same drawing, the same bytes";
  EXPECT_EQ(draw("b.pdf").substr(0, 5), "%PDF-");
  EXPECT_EQ(draw("c.pdf", {folder.Path("c.txt")}), draw("d.pdf", {folder.Path("c.txt")})) << "two pages";
}

TEST(DrawCommand, TellsMistakesAtTheirPlaceAndWritesNothing) {
  const TTestFolder folder;
  folder.Write("a.txt", "pen ff0000\nline 0,0 59;39\n");
  folder.Write("b.txt", "size 0,40\n");
  folder.Write("c.txt", kDrawing);
  struct TCase {
    std::vector<std::string> files;
    const char* output;
    const char* message;  // its end
  };
  const TCase kCases[] = {
      {{"a.txt"}, "x.txt", "a.txt:2:10: \"59;39\" where a point (x,y) was expected"},
      {{"b.txt"}, "x.txt", "b.txt:1:6: \"0,40\" where a size from 1,1 to 32767,32767 was expected"},
      {{"c.txt", "c.txt"}, "x.txt", "only a PDF has several pages; 2 drawings were given"},
      {{"c.txt"},
       "x.gif",
       "x.gif: a picture's name ends in .png, .svg or .pdf, or in .txt for the drawing commands as text"},
      {{"c.txt"}, "c.txt", "c.txt: is also the input; nothing was written"},
      {{"no.txt"}, "x.txt", "no.txt: cannot be read: No such file or directory"},
  };
  for (const TCase& each : kCases) {
    std::vector<std::string> words{"draw", "-o", folder.Path(each.output)};
    for (const std::string& file : each.files) words.push_back(folder.Path(file));
    const TRun run = RunProgram(words);
    EXPECT_EQ(run.code, kUserError);
    EXPECT_TRUE(run.err.ends_with(each.message + std::string("\n"))) << run.err;
  }
  EXPECT_EQ(folder.List(), "a.txt b.txt c.txt");
}

}  // namespace
}  // namespace vx::kestrix
