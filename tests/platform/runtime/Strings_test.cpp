// Texts in and out, sorted lists, names and values, and the brackets around changes.
#include "platform/runtime/Strings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "platform/runtime/List.h"
#include "platform/runtime/Text.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

using namespace std::string_literals;
using TTexts = std::vector<std::string>;
using TPairs = std::pair<std::string, std::string>[];  // a text, and its pieces with "|" behind each

TTexts TextsOf(const TStrings& list) {
  TTexts answer;
  for (std::int32_t at = 0; at < list.GetCount(); ++at) answer.push_back(list.Get(at));
  return answer;
}

std::string Joined(const TStrings& list) {
  std::string answer;
  for (const std::string& text : TextsOf(list)) answer += text + "|";
  return answer;
}

TOwned<TStringList> ListOf(const TTexts& texts) {
  auto list = Make<TStringList>();
  for (const std::string& text : texts) list->Add(text);
  return list;
}

/// Tells of its changes; may refuse one at its end.
class TTold : public TStringList {
 public:
  std::string Log;
  bool Raises = false;

 protected:
  void Changing() override { Log += "<"; }
  void Changed() override {
    Log += ">";
    if (Raises) throw EAbort("told");
  }
};

TEST(Strings, TextIsSplitAtEveryKindOfLineEnd) {
  const TPairs cases = {{"a", "a|"},        {"\n", "|"},         {"a\n", "a|"},   {"a\rb", "a|b|"},
                        {"a\r\nb", "a|b|"}, {"a\n\rb", "a||b|"}, {"x\r\r", "x||"}};
  for (const auto& [text, lines] : cases) {
    const auto list = ListOf({"old"}), again = Make<TStringList>();
    list->SetText(text);
    EXPECT_EQ(Joined(*list), lines) << testing::PrintToString(text);
    again->SetText(list->GetText());
    EXPECT_TRUE(again->Equals(*list)) << testing::PrintToString(text);
  }
  EXPECT_EQ(ListOf({"a", ""})->GetText(), "a\r\n\r\n");
  const auto list = ListOf({"old"});
  list->SetText("a\0b"s);
  EXPECT_EQ(Joined(*list), "a\0b|"s);
  list->SetText("");
  EXPECT_EQ(list->GetCount(), 0);
}

/// With double quotes for single ones, which are easier to read in a table.
std::string WithQuotes(std::string text) {
  std::replace(text.begin(), text.end(), '\'', '"');
  return text;
}

TEST(Strings, CommaTextReadsWhatPeopleType) {
  const TPairs cases = {{"  ", ""},        {"a,b", "a|b|"}, {"a , b ", "a|b|"},    {"a b", "a|b|"},
                        {",", "||"},       {"a,", "a||"},   {"a,,b", "a||b|"},     {"'' ", "|"},
                        {"'a'b", "a|b|"},  {"a'b", "a'b|"}, {"'a b',c", "a b|c|"}, {"'''a'", "'a|"},
                        {"'a, b", "a, b|"}};
  for (const auto& [text, items] : cases) {
    const auto list = Make<TStringList>();
    list->SetCommaText(WithQuotes(text));
    EXPECT_EQ(Joined(*list), WithQuotes(items)) << text;
  }
}

TEST(Strings, CommaTextOfAnyListReadsBackTheSame) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 3000; ++round) {
    const auto list = Make<TStringList>();
    for (auto left = random() % 5; left > 0; --left) {
      std::string text;
      for (auto length = random() % 4; length > 0; --length) text.push_back("ab,\" \t\n\xC3"[random() % 8]);
      list->Add(text);
    }
    const auto again = Make<TStringList>();
    again->SetCommaText(list->GetCommaText());
    ASSERT_EQ(TextsOf(*again), TextsOf(*list)) << list->GetCommaText();
  }
}

TEST(Strings, NamesAndValues) {
  const auto list = ListOf({"no pair", "Höhe=1=2", "=none", "höhe=second"});
  EXPECT_EQ(list->GetName(0) + "|" + list->GetName(1), "|Höhe");
  EXPECT_EQ(list->GetValue("HÖHE") + "|" + list->GetValue("") + "|" + list->GetValue("no pair"), "1=2|none|");
  EXPECT_EQ(list->IndexOfName("missing"), -1);
  for (const auto& [name, value] : {std::pair{"höhe", "3"}, {"new", "4"}, {"", ""}, {"missing", ""}})
    list->SetValue(name, value);
  EXPECT_EQ(TextsOf(*list), (TTexts{"no pair", "höhe=3", "höhe=second", "new=4"}));
}

TEST(StringList, KeepsItsOrderWhileSorted) {
  TObject* const first = reinterpret_cast<TObject*>(8);
  TObject* const second = reinterpret_cast<TObject*>(16);
  const auto list = ListOf({"pear", "Apple", "éclair"});
  list->SetSorted(true);
  EXPECT_EQ(TextsOf(*list), (TTexts{"Apple", "pear", "éclair"}));
  EXPECT_EQ(list->AddObject("Fig", first), 1);
  EXPECT_EQ(list->AddObject("FIG", second), 1);  // dupIgnore: what is there stays
  EXPECT_EQ(list->GetObject(1), first);
  list->SetDuplicates(dupError);
  EXPECT_EQ(MessageOf<EStringListError>([&] { list->Add("ÉCLAIR"); }),
            "String list does not allow duplicates: 'ÉCLAIR'");
  list->SetDuplicates(dupAccept);
  EXPECT_EQ(list->AddObject("FIG", second), 1);
  EXPECT_EQ(TextsOf(*list), (TTexts{"Apple", "FIG", "Fig", "pear", "éclair"}));
  std::int32_t index = -1;
  EXPECT_FALSE(list->Find("grape", index));
  EXPECT_EQ(index, 3);
  EXPECT_EQ(list->IndexOf("PEAR"), 3);

  list->SetCaseSensitive(true);  // sorts anew, by bytes
  EXPECT_EQ(TextsOf(*list), (TTexts{"Apple", "FIG", "Fig", "pear", "éclair"}));
  EXPECT_EQ(list->IndexOf("PEAR"), -1);

  for (const auto& forbidden : std::vector<std::function<void()>>{
           [&] { list->Insert(0, "x"); }, [&] { list->Put(0, "x"); }, [&] { list->Move(0, 1); },
           [&] { list->Exchange(0, 1); }, [&] { list->SortBy(std::less<std::string>()); }})
    EXPECT_EQ(MessageOf<EStringListError>(forbidden), "Operation not allowed on sorted string list");
  EXPECT_EQ(list->GetCount(), 5);
}

TEST(StringList, SortsAsTheCompareSaysAndKeepsEquals) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto sorted = Make<TStringList>();
  sorted->SetSorted(true);
  sorted->SetDuplicates(dupAccept);
  const auto plain = Make<TStringList>();
  for (int count = 0; count < 400; ++count) {
    const std::string text(1 + random() % 2, "aAbBéÉ\xFF"[random() % 9]);
    sorted->Add(text);
    plain->Add(text);
  }
  plain->Sort();
  for (std::int32_t at = 0; at < 400; ++at) ASSERT_EQ(AnsiCompareText(sorted->At(at), plain->At(at)), 0) << at;
}

TEST(StringList, PositionsOutsideRaiseAndChangeNothing) {
  const auto list = ListOf({"a", "b"});
  for (const std::int32_t bad : {-1, 2, INT32_MAX, -INT32_MAX}) {
    const std::function<void()> calls[] = {[&] { list->Get(bad); },       [&] { list->Put(bad, "x"); },
                                           [&] { list->GetObject(bad); }, [&] { list->PutObject(bad, nullptr); },
                                           [&] { list->Delete(bad); },    [&] { list->Exchange(0, bad); },
                                           [&] { list->Move(bad, 0); },   [&] { list->Move(0, bad); },
                                           [&] { list->GetName(bad); }};
    for (const auto& call : calls)
      EXPECT_EQ(MessageOf<EListError>(call), "List index out of bounds (" + std::to_string(bad) + ")");
  }
  for (const std::int32_t bad : {-1, 3}) EXPECT_THROW(list->Insert(bad, "x"), EListError) << bad;
  EXPECT_EQ(TextsOf(*list), (TTexts{"a", "b"}));
}

TEST(StringList, OwnTextsMayBeTheirOwnArguments) {
  const auto list = ListOf({"a", "b", "c"});
  for (int round = 0; round < 50; ++round) list->Insert(0, list->At(list->GetCount() - 1));
  EXPECT_EQ(list->Get(0), "c");
  list->AddStrings(*list);
  EXPECT_EQ(list->GetCount(), 106);
  list->Assign(list.get());
  EXPECT_EQ(list->GetCount(), 106);
  list->SetText(list->At(1));
  EXPECT_EQ(TextsOf(*list), (TTexts{"c"}));
  EXPECT_EQ(MessageOf<EConvertError>([&] { list->Assign(nullptr); }), "Cannot assign a nil to a TStringList");
}

TEST(StringList, TellsOnceForEachChangeOrBracket) {
  TOwned<TTold> list = Make<TTold>();
  list->Add("a");
  list->AddObject("b", nullptr);
  list->Move(0, 1);
  list->Clear();
  list->Clear();  // nothing to change
  EXPECT_EQ(list->Log, "<><><><>");
  list->Log.clear();
  {
    const TStringsUpdate update(*list);
    list->SetCommaText("x,y,z");
    list->SetSorted(true);
  }
  list->EndUpdate();  // one too many
  list->Add("w");
  EXPECT_EQ(list->Log, "<><>");
}

TEST(StringList, ARaisingListenerLeavesTheBracketClosed) {
  TOwned<TTold> list = Make<TTold>();
  list->Raises = true;
  EXPECT_THROW(list->Add("a"), EAbort);
  EXPECT_FALSE(list->IsUpdating());
  EXPECT_EQ(list->GetCount(), 1);
  const auto failInside = [&] {
    const TStringsUpdate update(*list);
    list->Delete(7);
  };
  EXPECT_THROW(failInside(), EListError);  // the first error, not the listener's
  EXPECT_FALSE(list->IsUpdating());
}

}  // namespace
}  // namespace vx
