// Forms as people write them, with and without mistakes; and the text form against the binary form, there and back.
#include "platform/component/StreamText.h"

#include <gtest/gtest.h>

#include <bit>
#include <filesystem>
#include <random>

#include "support/TestFolder.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

std::string MistakeIn(std::string_view text) {
  return MessageOf<EReadError>([&] { TextToBinary(text); });
}

/// Form1: TForm with one object of each kind of value, laid out.
constexpr std::string_view kForm = R"(object Form1: TForm
  Caption = 'Größe it''s'#13#10#8206#$C3'x'
  Tag = -9223372036854775808
  Ratio = -0.0
  Far = -INF
  Font.Size = 9
  Anchors = [akLeft, akTop]
  Parent = Form1.Table1
  end = end
  Rules = <
    item
      Name = ''
      item = True
    end
    item
    end>
  Icon.Data = {
    0001020304050607000102030405060700010203040506070001020304050607
    FF}
  Lines.Strings = (
    'a'
    +NAN
    ()
    (
      {}
      <>
      []
      nil))
  object object
    object Button1: end
    end
  end
end
)";

/// The same as another hand writes it.
constexpr std::string_view kHand =
    "\xEF\xBB\xBF// a form\r\nOBJECT Form1 :TForm Caption='Größe ' + // and\r\n\t'it''s'#13#10 + #8206#$c3'x'"
    "Tag=-9223372036854775808 Ratio = -0e7 Far = -inf Font.Size = $9 Anchors=[akLeft,akTop]Parent=Form1.Table1\r"
    "end = end Rules=<item Name='' item=True END Item end>Icon.Data={00010203 04050607 0001020304050607\n"
    "0001020304050607000102030405060 7f\r\nF}Lines.Strings=('a'+nan()({}<>[]nil))object object object Button1:end "
    "end end end//";

std::string StreamOfForm() {
  TStreamBytes bytes;
  const auto property = [&](const char* name) -> TStreamBytes& {
    bytes.Name(name);
    return bytes;
  };
  const auto end = [&] { bytes.Kind(skEnd); };
  bytes.Name("TForm");
  bytes.Name("Form1");
  property("Caption").Text("Größe it's\r\n\u200E\xC3x");
  property("Tag").Int(std::numeric_limits<std::int64_t>::min());
  property("Ratio").Double(-0.0);
  property("Far").Double(-test::kInfinity);
  property("Font.Size").Int(9);
  property("Anchors").Kind(skSet);
  for (const char* name : {"akLeft", "akTop", ""}) bytes.Name(name);
  property("Parent").Ident("Form1.Table1");
  property("end").Ident("end");
  property("Rules").Kind(skCollection);
  bytes.Byte(kStreamItem);
  property("Name").Text("");
  property("item").Ident("True");
  end();
  bytes.Byte(kStreamItem);
  end();
  end();
  property("Icon.Data")
      .Binary(std::string_view("\0\1\2\3\4\5\6\7\0\1\2\3\4\5\6\7\0\1\2\3\4\5\6\7\0\1\2\3\4\5\6\7\xFF", 33));
  property("Lines.Strings").Kind(skList);
  bytes.Text("a");
  bytes.Double(test::kNaN);
  bytes.Kind(skList);
  end();
  bytes.Kind(skList);
  bytes.Binary("");
  for (const TStreamKind kind : {skCollection, skEnd, skSet, skEnd}) bytes.Kind(kind);
  bytes.Ident("nil");
  for (int i = 0; i < 3; ++i) end();  // two lists, the properties
  bytes.Name("object");
  bytes.Name("");
  end();
  bytes.Name("end");
  bytes.Name("Button1");
  for (int i = 0; i < 4; ++i) end();
  return bytes.Take();
}

TEST(StreamText, EveryKindOfValueGoesBothWays) {
  const std::string stream = StreamOfForm();
  EXPECT_EQ(BinaryToText(stream), kForm);
  EXPECT_EQ(TextToBinary(kForm), stream);
  EXPECT_EQ(TextToBinary(kHand), stream);
  const std::string more = stream + "x";
  EXPECT_EQ(MessageOf<EReadError>([&] { BinaryToText(more); }),
            "byte " + std::to_string(stream.size()) + ": 1 bytes follow behind the end of the stream");
}

TEST(StreamText, MistakesAreToldWithTheirPlace) {
  const std::string tooLong = "object T\n " + std::string(256, 'x') + " = 1 end";
  const std::string xs(40, 'x');
  const struct {
    std::string_view text;
    std::string message;
  } cases[] = {
      // no form
      {"", "line 1, column 1: there is no object"},
      {"// a remark\r\n", "line 2, column 1: there is no object"},
      {"Name;Start\n1;2", "line 1, column 1: this is no form: \"object\" is expected, not \"Name\""},
      {" \x89PNG", "line 1, column 2: this is no form: \"object\" is expected, not #$89"},
      {"KFB1....", "line 1, column 1: this is a stream in the binary form"},
      {"object T\n a = 'é\xFF'", "line 2, column 8: this byte is not UTF-8; within a text it is written #$FF"},
      // objects
      {"object\n Tag = 1 end", "line 2, column 2: the name of a component or a class is expected, not \"Tag\""},
      {"object A:\nend", "line 2, column 1: the name of a class is expected, not \"end\""},
      {"object A.B end", "line 1, column 8: the name of a component or a class is expected, and has no points: A.B"},
      {"object T\r\r\n object A: U\n  B = 1\n end\n",
       "line 6, column 1: \"end\" is missing: the object T that begins at line 1, column 1 is not ended"},
      {"object T\nend\nend", "line 3, column 1: there is no object left to end"},
      {"object T end object U end",
       "line 1, column 14: nothing may follow behind the end of the object; here is \"object\""},
      {"object T\n object U end\n a = 1\nend", "line 3, column 2: properties stand before owned objects: a"},
      {"object T item end end", "line 1, column 10: an item stands in a collection only"},
      // properties
      {"object T\n\ta 'x' end", "line 2, column 4: \"=\" behind a is expected, not \"'\""},
      {"object T\n a =\n b = 1 end", "line 3, column 2: a value of a is expected, not \"b\""},
      {"object T\n a =\nend", "line 3, column 1: a value of a is expected, not \"end\""},
      {"object T a = )", "line 1, column 14: a value of a is expected, not \")\""},
      {"object T a. = 1", "line 1, column 12: a name is expected, not a blank"},
      {tooLong, "line 2, column 2: a name of 256 characters is longer than 255: " + xs + "..."},
      {"object T a = 'größe' ?", "line 1, column 22: unknown character: \"?\""},
      {"object T // é\x01", "line 1, column 14: unknown character: U+0001"},
      {{"object T end\0", 13}, "line 1, column 13: unknown character: U+0000"},
      {"object T größe = 1", "line 1, column 12: unknown character: U+00F6"},
      // texts
      {"object T\n a = 'x' +\n  'y\n'", "line 3, column 3: the quote is not closed in its line"},
      {"object T a = 'x' + 5", "line 1, column 20: a text behind \"+\" is expected, not \"5\""},
      {"object T a = #55296", "line 1, column 14: there is no character with this code: #55296"},
      {"object T a = 'x'#4294967361", "line 1, column 17: there is no character with this code: #4294967361"},
      {"object T a = #$1", "line 1, column 14: a byte has two hexadecimal digits: #$0A"},
      {"object T a = #$414", "line 1, column 18: a blank behind the code is expected, not \"4\""},
      // numbers
      {"object T a = 9223372036854775808", "line 1, column 14: a whole number beyond 64 bits: 9223372036854775808"},
      {"object T a = $FFFFFFFFFFFFFFFF", "line 1, column 14: a whole number beyond 64 bits: $FFFFFFFFFFFFFFFF"},
      {"object T a = $x", "line 1, column 15: a hexadecimal digit is expected, not \"x\""},
      {"object T a = 0.01e+311", "line 1, column 14: a number beyond the largest double: 0.01e+311"},
      {"object T a = 1e99999999999999999999",
       "line 1, column 14: a number beyond the largest double: 1e99999999999999999999"},
      {"object T a = 1.\n", "line 1, column 16: a digit behind the point is expected, not the end of the line"},
      {"object T a = 1.5.2", "line 1, column 17: a blank behind the number is expected, not \".\""},
      {"object T a = -NAN", "line 1, column 14: a number has digits, or is +INF, -INF or +NAN: -NAN"},
      // what is opened and closed
      {"object T a = {0 1 2}", "line 1, column 20: the last byte of the block lacks a digit"},
      {"object T a = {0\ng}",
       "line 2, column 1: in the block that begins at line 1, column 14 a hexadecimal digit or \"}\" is expected, not "
       "\"g\""},
      {"object T a = {01",
       "line 1, column 17: the block that begins at line 1, column 14 is not closed: \"}\" is expected, not the end of "
       "the file"},
      {"object T a = ('x'\nb = 1",
       "line 2, column 3: the list that begins at line 1, column 14 is not closed: \")\" is expected, not \"=\""},
      {"object T a = (1, 2)", "line 1, column 16: between the values of a list there are no commas"},
      {"object T a = [x\nb = 1",
       "line 2, column 1: the set that begins at line 1, column 14 is not closed: \"]\" is expected, not \"b\""},
      {"object T a = [x, ]", "line 1, column 18: a member of the set is expected, not \"]\""},
      {"object T a = <\nitem end end",
       "line 2, column 10: the collection that begins at line 1, column 14 is not closed: \">\" is expected, not "
       "\"end\""},
      {"object T a = <\nitem b = 1 > end",
       "line 2, column 12: \"end\" is missing: the item that begins at line 2, column 1 is not ended"},
      {"object T a = <item object U end end> end", "line 1, column 20: an item owns no objects"},
  };
  for (const auto& [text, message] : cases) EXPECT_EQ(MistakeIn(text), message) << text;
}

TEST(StreamText, PlacesAreThoseOfTheWords) {
  const std::string stream = TextToBinary(kForm);
  for (const std::string name : {"Form1", "TForm", "Caption", "akTop", "Lines.Strings", "nil", "Button1"}) {
    const std::size_t offset = stream.find(static_cast<char>(name.size()) + name);
    const std::size_t at = kForm.find(name, name == "nil" || name == "TForm" ? 8 : 0);
    for (const std::size_t byte : {offset, offset + name.size()})
      EXPECT_EQ(PlaceInText(kForm, byte).Offset, at) << name;
  }
  EXPECT_EQ(PlaceInText(kHand, stream.find("Far")).Text(), "line 3, column 68");
  EXPECT_EQ(PlaceInText(kHand, 0).Text(), "line 2, column 1");
  EXPECT_EQ(PlaceInText(kForm, stream.size() - 1).Offset, kForm.rfind("end"));
}

TEST(StreamText, LimitsAreThoseOfStreams) {
  const auto lists = [](std::size_t count) {
    return "object T a = " + std::string(count, '(') + std::string(count, ')') + " end";
  };
  const std::string deepest = TextToBinary(lists(kMaxStreamDepth - 1));
  EXPECT_EQ(TextToBinary(BinaryToText(deepest)), deepest);
  EXPECT_EQ(MistakeIn(lists(kMaxStreamDepth)), "line 1, column 77: nested deeper than 64 levels");

  const auto text = [](std::size_t size) { return "object T a = '" + std::string(size, 'x') + "' end"; };
  const std::string longest = TextToBinary(text(kMaxStreamText));
  EXPECT_EQ(TextToBinary(BinaryToText(longest)), longest);
  EXPECT_EQ(MistakeIn(text(kMaxStreamText + 1)), "line 1, column 14: a text is longer than 1048576 bytes");
}

TEST(StreamText, LongTextsAreBrokenWhereTheyRead) {
  const std::string text = "object T Hint = 'First line, short'#13#10#10'A line that has too many words for eighty " +
                           std::string("columns, and so is broken between two of them'#13'") + std::string(100, 'x') +
                           "' end";
  EXPECT_EQ(BinaryToText(TextToBinary(text)), R"(object T
  Hint = 'First line, short'#13#10 +
    #10 +
    'A line that has too many words for eighty columns, and so is ' +
    'broken between two of them'#13 +
    'xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx' +
    'xxxxxxxxxxxxxxxxxxxxxxxx'
end
)");
}

// -- Random values ----------------------------------------------------------------------------------------------------

class TRandomForm {
 public:
  explicit TRandomForm(std::uint32_t seed) : random_(seed) {}

  std::string Stream() {
    Object(0);
    return bytes_.Take();
  }

 private:
  std::uint32_t Below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_() % bound); }

  void Name() {
    static constexpr const char* kNames[] = {"a", "end", "Item", "OBJECT", "_9", "True", "inf"};
    bytes_.Name(kNames[Below(std::size(kNames))]);
  }

  void Text() {
    static constexpr const char* kPieces[] = {"plain words ", "'",    "\r\n",   "\n",           "\r",  "é",
                                              "\xC3",         "\xFF", "\u200F", "\xED\xA0\x80", " + ", "#1"};
    std::string text;
    for (std::uint32_t i = Below(Below(20) == 0 ? 200 : 8); i > 0; --i) text += kPieces[Below(std::size(kPieces))];
    for (std::uint32_t i = Below(3); i > 0; --i) text += static_cast<char>(Below(256));
    bytes_.Text(text);
  }

  void Value(int depth) {
    switch (Below(depth < 5 ? 9 : 6)) {
      case 0:
        return bytes_.Int(static_cast<std::int64_t>(random_() >> Below(64)));
      case 1:
        return bytes_.Double(std::bit_cast<double>(random_()));
      case 2:
        return bytes_.Double(Below(1000) / -4.0);
      case 3:
        return Text();
      case 4:
        return bytes_.Ident(Below(2) == 0 ? "end" : "Form1.item");
      case 5:
        return bytes_.Binary(std::string(Below(100), static_cast<char>(Below(256))));
      case 6:
        bytes_.Kind(skSet);
        for (std::uint32_t i = Below(4); i > 0; --i) Name();
        break;
      case 7:
        bytes_.Kind(skList);
        for (std::uint32_t i = Below(4); i > 0; --i) Value(depth + 1);
        break;
      default:
        bytes_.Kind(skCollection);
        for (std::uint32_t i = Below(4); i > 0; --i) {
          bytes_.Byte(kStreamItem);
          Properties(depth + 1);
        }
    }
    bytes_.Kind(skEnd);
  }

  void Properties(int depth) {
    for (std::uint32_t i = Below(5); i > 0; --i) {
      Name();
      Value(depth);
    }
    bytes_.Kind(skEnd);
  }

  void Object(int depth) {
    Name();
    Below(2) == 0 ? Name() : bytes_.Name("");
    Properties(depth);
    for (std::uint32_t i = depth < 4 ? Below(4) : 0; i > 0; --i) Object(depth + 1);
    bytes_.Kind(skEnd);
  }

  std::mt19937_64 random_;
  TStreamBytes bytes_;
};

TEST(StreamText, RandomFormsGoToTextAndBack) {
  for (std::uint32_t seed = 1; seed <= 500; ++seed) {
    const std::string stream = TRandomForm(seed).Stream();
    ASSERT_EQ(TextToBinary(BinaryToText(stream)), stream) << "seed " << seed << "\n" << BinaryToText(stream);
  }
}

// -- Harm to good streams ---------------------------------------------------------------------------------------------

std::vector<std::string> Seeds() {
  std::vector<std::string> seeds;
  const std::filesystem::path folder =
      std::filesystem::path(KESTRIX_TESTS_DIR).parent_path() / "fuzz/corpus/stream_text";
  for (const auto& file : std::filesystem::directory_iterator(folder))
    if (file.path().extension() == ".kform") seeds.push_back(test::ReadFile(file.path()));
  return seeds;
}

bool IsRefused(std::string_view stream) {
  return MessageOf<EReadError>([&] { BinaryToText(stream); }) != "nothing raised";
}

/// Refused, or a form as good as any.
bool IsReadOrRefused(std::string_view text) {
  try {
    const std::string stream = TextToBinary(text);
    return TextToBinary(BinaryToText(stream)) == stream;
  } catch (const EReadError& error) {
    return error.Place().Offset <= text.size();
  }
}

/// Cuts the bytes at each place, and flips each bit.
void HoldForEachHarm(std::string bytes, bool (*holds)(std::string_view)) {
  for (std::size_t size = 0; size < bytes.size(); ++size)
    EXPECT_TRUE(holds(std::string_view(bytes).substr(0, size))) << size;
  for (std::size_t at = 0; at < bytes.size(); ++at)
    for (int bit = 1; bit < 256; bit *= 2) {
      bytes[at] = static_cast<char>(bytes[at] ^ bit);
      EXPECT_TRUE(holds(bytes)) << "byte " << at << ", bit " << bit;
      bytes[at] = static_cast<char>(bytes[at] ^ bit);
    }
}

TEST(StreamText, AHarmedStreamIsRefusedOrAnother) {
  ASSERT_GE(Seeds().size(), 5u);
  for (const std::string& text : Seeds()) {
    HoldForEachHarm(text, IsReadOrRefused);
    HoldForEachHarm(TextToBinary(text), IsRefused);
  }
}

}  // namespace
}  // namespace vx
