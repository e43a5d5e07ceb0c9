// The lookup data sets: texts from resources and from a collection, by key and by text.

#include "data/VXLookupDataSet_CMP.h"

#include <gtest/gtest.h>

#include <random>

#include "data/VXRscStringDataSet_CMP.h"
#include "platform/component/ComponentStream.h"
#include "platform/runtime/StringResources.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace {

/// All records, "1=Day 2=Week"; the set walked as a control walks it.
std::string Records(TVXCustomStringLookupDataSet& set) {
  std::string all;
  for (set.First(); !set.Eof(); set.Next())
    all += (all.empty() ? "" : " ") + set.GetKeyField()->GetAsString() + "=" + set.GetTextField()->GetAsString();
  return all;
}

/// A value as a test can read it.
std::string Text(const Variant& value) { return value.IsEmpty() ? "empty" : value.AsString(); }

struct TResources {
  TResources() {
    SetResourceStrings({{1001, "Day"}, {1002, "Week"}, {1003, "day"}, {1004, "_EOF_"}, {2001, "Jan"}, {2002, "Feb"}});
  }
  ~TResources() { ResetResourceStrings(); }
};

TEST(VXRscStringDataSet, CountsAndFindsTheStringsOfARun) {
  const TResources resources;
  const auto set = Make<TVXRscStringDataSet>(nullptr);
  EXPECT_TRUE(set->GetActive());
  EXPECT_EQ(set->RecordCount(), -1);
  set->SetBaseRscID(1000);
  EXPECT_EQ(Records(*set), "1=Day 2=Week 3=day");
  set->SetBaseRscID(2000);
  EXPECT_EQ(set->RecordCount(), 0) << "no end mark";
  EXPECT_TRUE(set->IsEmpty() && set->Bof() && set->Eof());
  set->SetStringCount(2);
  EXPECT_EQ(Records(*set), "1=Jan 2=Feb");
}

TEST(VXRscStringDataSet, LooksUpBothWays) {
  const TResources resources;
  const auto set = Make<TVXRscStringDataSet>(nullptr);
  set->SetBaseRscID(1000);
  const struct {
    const char* keyField;
    Variant key;
    const char* resultField;
    const char* expected;
  } cases[] = {
      {"ID", 2, "String", "Week"},
      {"ID", std::int16_t{3}, "String", "day"},
      {"ID", 4, "String", "empty"},
      {"ID", 2.0, "String", "empty"},  // a number, but no such kind
      {"ID", "2", "String", "empty"},  //
      {"ID", Variant::Null(), "String", "empty"},
      {"ID", Variant(), "String", "empty"},
      {"ID", 2, "ID", "empty"},      // a field isn't looked up by itself
      {"id", 2, "String", "empty"},  // names are exact
      {"String", "DAY", "ID", "1"},  // texts aren't; the first one counts
      {"String", "Day ", "ID", "empty"},
      {"String", 1, "ID", "empty"},
  };
  for (const auto& [keyField, key, resultField, expected] : cases) {
    SCOPED_TRACE(std::string(keyField) + " " + VariantKindName(key.Kind()) + " " + resultField);
    EXPECT_EQ(Text(set->Lookup(keyField, key, resultField)), expected);
    if (std::string(resultField) == keyField) continue;
    set->First();
    EXPECT_EQ(set->Locate(keyField, key, {}), std::string(expected) != "empty");
  }
  EXPECT_EQ(set->LookupKey(1) + "|" + set->LookupKey(9), "Day|");
}

TEST(VXLookupDataSet, PutsValuesWhereTheSortOrderSays) {
  const struct {
    TVXLookupSortOrder order;
    const char* expected;
  } cases[] = {{vxlsoKey, "1=b 1=A 2=a 3=B"}, {vxlsoText, "2=a 1=A 3=B 1=b"}, {vxlsoNone, "3=B 1=b 2=a 1=A"}};
  for (const auto& [order, expected] : cases) {
    const auto set = Make<TVXLookupDataSet>(nullptr);
    set->SetSortOrder(order);
    set->AddLookupValue(3, "B");
    set->AddLookupValue(1, "b");
    set->AddLookupValue(2, "a");
    set->AddLookupValue(1, "A");
    set->SetSortOrder(vxlsoKey);  // moves nothing
    set->Open();
    EXPECT_EQ(Records(*set), expected);
  }
}

TEST(VXLookupDataSet, FindsTheSamePlaceHoweverValuesCame) {
  std::mt19937 die(7);
  const auto roll = [&](std::int32_t count) { return static_cast<std::int32_t>(die() % static_cast<unsigned>(count)); };
  const auto set = Make<TVXLookupDataSet>(nullptr);
  TVXLookupValues& values = *set->GetLookupValues();
  for (int step = 0; step < 3000; ++step) {
    const std::int32_t count = values.Count();
    const std::int32_t deed = count == 0 ? 0 : roll(30);
    if (deed == 1) values.GetItem(roll(count))->SetKey(roll(9));
    if (deed == 2) values.GetItem(roll(count))->SetText(std::string(1, static_cast<char>('a' + roll(9))));
    if (deed == 3) values.SetSortOrder(static_cast<TVXLookupSortOrder>(roll(3)));
    if (deed == 4) values.GetItem(roll(count))->SetIndex(roll(count));
    if (deed == 5) step % 4 == 0 ? values.Clear() : values.Delete(roll(count));
    const std::int32_t key = roll(9);
    const std::string text(1, static_cast<char>((roll(2) == 0 ? 'a' : 'A') + roll(9)));
    std::int32_t place = 0;
    const auto greater = [&](const TVXLookupValue& value) {
      if (values.GetSortOrder() == vxlsoKey) return value.GetKey() > key;
      return values.GetSortOrder() == vxlsoText && CompareText(value.GetText(), text) > 0;
    };
    while (place < values.Count() && !greater(*values.GetItem(place))) ++place;
    ASSERT_EQ(values.AddLookupValue(key, text)->Index(), place) << step;
  }
}

TEST(VXLookupDataSet, MovesByNumberAndBookmarkAndShowsLongTextsCut) {
  const auto set = Make<TVXLookupDataSet>(nullptr);
  std::int32_t changes = 0;
  set->OnLookupValuesChange = [&](TObject*) { ++changes; };
  std::string longText(239, 'x');
  set->AddLookupValue(1, "one");
  set->AddLookupValue(2, longText + "é");
  set->AddLookupValue(3, "three");
  set->Open();
  set->Last();
  const TBookmark third = set->GetBookmark();
  set->SetRecNo(2);
  EXPECT_EQ(set->RecNo(), 2);
  EXPECT_EQ(set->GetTextField()->GetAsString(), longText);
  set->GotoBookmark(third);
  EXPECT_EQ(set->GetKeyField()->GetAsInteger(), 3);
  EXPECT_THROW(set->Edit(), EDatabaseError) << "it only reads";
  set->GetLookupValues()->Delete(2);
  EXPECT_FALSE(set->BookmarkValid(third));
  set->Refresh();
  EXPECT_EQ(set->GetKeyField()->GetAsInteger(), 2) << "the last that is left";
  set->ClearLookupValues();
  set->Refresh();
  EXPECT_TRUE(set->IsEmpty());
  set->Close();
  EXPECT_EQ(changes, 2);
}

TEST(VXLookupDataSet, IsOpenOnceAStreamHasReadIt) {
  const auto set = Make<TVXLookupDataSet>(nullptr);
  set->AddLookupValue(7, "seven");
  EXPECT_EQ(set->GetLookupValues()->Items(0)->DisplayName(), "[7, 'seven']");
  const auto copy = Make<TVXLookupDataSet>(nullptr);
  TextIntoComponent(ComponentToText(*set), *copy);
  EXPECT_EQ(Records(*copy), "7=seven");
}

}  // namespace
}  // namespace vx
