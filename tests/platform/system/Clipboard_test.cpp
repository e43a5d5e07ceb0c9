#include "platform/system/Clipboard.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/runtime/Exceptions.h"
#include "platform/system/InForce.h"
#include "support/TestKit.h"

namespace vx {
namespace {

/// Notes what other programs would see, as "name=bytes;" for each format.
class TSharedClipboard : public TMemoryClipboard {
 public:
  void Put(TClipboardContents contents) override {
    for (const auto& [name, bytes] : contents) seen += name + "=" + bytes + ";";
    seen += "\n";
    TMemoryClipboard::Put(std::move(contents));
  }

  std::string seen;
};

class ClipboardTest : public testing::Test {
 protected:
  TSharedClipboard store_;
  TInForce<IClipboardStore*>::TScope scope_{&store_};
};

TEST_F(ClipboardTest, SharesEachWriteAtOnceAndAGroupAtItsEnd) {
  Clipboard().SetAsText("one");
  {
    const TClipboardSession outer;
    EXPECT_EQ(Clipboard().AsText(), "one") << "nothing is written yet";
    Clipboard().SetAsText("two");
    {
      const TClipboardSession inner;
      Clipboard().SetAsBytes(cfPicture, std::string("\0P", 2));
    }
    EXPECT_EQ(Clipboard().GetAsBytes(cfPicture).size(), 2u);
  }
  EXPECT_TRUE(Clipboard().HasText());
  Clipboard().SetAsBytes(cfPicture, "P");
  EXPECT_FALSE(Clipboard().HasText()) << "the text belonged to what was there before";
  Clipboard().Clear();
  Clipboard().Close();  // it isn't open
  Clipboard().Open();
  Clipboard().Close();  // nothing was written
  EXPECT_EQ(Clipboard().AsText(), "");
  using namespace std::string_literals;
  EXPECT_EQ(store_.seen, "text/plain=one;\nimage/png=\0P;text/plain=two;\nimage/png=P;\n\n"s);
}

TEST_F(ClipboardTest, ClearsWithinAGroup) {
  Clipboard().SetAsText("before");
  const TClipboardSession session;
  Clipboard().Clear();
  EXPECT_FALSE(Clipboard().HasText());
  EXPECT_EQ(Clipboard().AsText(), "");
  EXPECT_EQ(store_.Get("text/plain"), "before");
}

TEST_F(ClipboardTest, KnowsFormatsByName) {
  const TClipboardFormat periods = RegisterClipboardFormat("kestrix/periods");
  EXPECT_EQ(RegisterClipboardFormat("Kestrix/Periods"), periods);
  EXPECT_EQ(RegisterClipboardFormat("IMAGE/PNG"), cfPicture);
  Clipboard().SetAsBytes(periods, "p");
  EXPECT_EQ(store_.seen, "kestrix/periods=p;\n");
  for (const TClipboardFormat none : {0, -1, periods + 1000})
    EXPECT_EQ(test::MessageOf<EInvalidOperation>([none] { Clipboard().HasFormat(none); }),
              "No clipboard format has the number " + std::to_string(none));
  EXPECT_THROW(RegisterClipboardFormat(""), EInvalidOperation);
}

}  // namespace
}  // namespace vx
