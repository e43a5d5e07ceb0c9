// The quicker ways against the plain ones, on random rows: sorting with packed keys, filtering without Variants,
// building all buckets at once. What is promised is the order itself, that of equal rows included.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>

#include "../datetime/WeekScope.h"
#include "TableKit.h"
#include "data/VXRAMSort.h"
#include "platform/runtime/Locale.h"

namespace vx {
namespace {

constexpr std::int32_t kTextSize = 24;

/// Rows with one field of each type, and texts of three kinds, full of values that are hard to order.
struct TRandomRows {
  explicit TRandomRows(std::uint32_t seed)
      : dice(seed),
        table({{"Boolean", vxrftBoolean},
               {"Currency", vxrftCurrency},
               {"DateTime", vxrftDateTime},
               {"Duration", vxrftDuration},
               {"Float", vxrftFloat},
               {"Integer", vxrftInteger},
               {"Smallint", vxrftSmallint},
               {"String", vxrftString, kTextSize},
               {"Word", vxrftWord},
               {"Short", vxrftString, 2}}),
        alphabet(static_cast<std::uint32_t>(Below(3))) {}

  std::int32_t Below(std::int32_t limit) {
    return static_cast<std::int32_t>(dice() % static_cast<std::uint32_t>(limit));
  }
  bool OneIn(std::int32_t times) { return Below(times) == 0; }
  TVXRAMFieldSlot Slot(std::int32_t field) { return table->Get_FieldDefs()->Get_Item(field)->Get_Slot(); }

  double Double() {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN(), kInf = std::numeric_limits<double>::infinity();
    constexpr double kHard[] = {0, -0.0, kNaN, -kNaN, kInf, -kInf, 1e308, -1e308, 5e-324, -5e-324, 1, -1, 0.1, 0x1p53};
    return OneIn(2) ? kHard[Below(14)] : Below(7) - 3.5;
  }
  double Date() {
    constexpr double kFractions[] = {0, 0, 0.25, 0.5, 0.999, 0.9999995, 0.9999999999};
    return 45292 - 400 + Below(800) + kFractions[Below(7)];
  }
  std::int32_t Integer() {
    constexpr std::int32_t kHard[] = {0, 1, -1, 2147483647, -2147483647 - 1, 256, 65536, -256};
    return OneIn(2) ? kHard[Below(8)] : Below(5) - 2;
  }
  /// Plain letters, letters whose folding changes lengths, or any bytes at all; often with a common beginning.
  std::string Text(std::int32_t size) {
    static const std::vector<std::string> kPieces[] = {
        {"a", "A", "b", "B", " ", "~", "aaaaaaaa", "AAAAAAAA"},
        {"a", "A", "é", "É", "ß", "ss", "İ", "\xE2\x84\xAA", "k", "\xF0\x90\x90\x80", "\xF0\x90\x90\xA8"},
        {"a", "\xFF", "\xC3", "\x80", "\xFE\xFF", "\xF4\x8F\xBF\xBF", "\xED\xA0\x80", "\x7F", "\x01",
         "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"}};
    const std::vector<std::string>& pieces = kPieces[alphabet];
    std::string text;
    for (std::int32_t i = Below(7); i > 0; --i)
      text += pieces[static_cast<std::size_t>(Below(static_cast<std::int32_t>(pieces.size())))];
    const std::int32_t room = OneIn(8) ? size : size - 1;  // some fill their slot to the brim
    return text.substr(0, static_cast<std::size_t>(room));
  }

  /// Bytes of a value of the field's type; a null may hold some too.
  void Write(TVXRAMRow* row, std::int32_t field) {
    const TVXRAMFieldSlot slot = Slot(field);
    std::string bytes;
    const auto put = [&bytes](auto value) { bytes.assign(reinterpret_cast<const char*>(&value), sizeof value); };
    if (slot.type == vxrftString)
      bytes = Text(slot.size);
    else if (slot.size == 8)
      put(datesAreReal && slot.type == vxrftDateTime ? Date() : Double());
    else  // the low bytes of an integer are a smaller one
      put(slot.type == vxrftBoolean ? Below(3) : Integer());
    const auto size = std::min(bytes.size(), static_cast<std::size_t>(slot.size));
    std::memcpy(RowBytes(row) + slot.valueOffset, bytes.data(), size);
    RowBytes(row)[slot.statusOffset] = OneIn(6) ? vxfsNull : vxfsAssigned;
  }
  std::vector<void*> Rows(std::int32_t count) {
    std::vector<void*> rows;
    for (; count > 0; --count) {
      table.Add({});
      rows.push_back(table.MainList().Last());
      for (std::int32_t field = 0; field < table->Get_FieldDefs()->Count(); ++field)
        Write(static_cast<TVXRAMRow*>(rows.back()), field);
    }
    return rows;
  }
  Variant Value() {
    const Variant values[] = {Variant(),
                              Variant::Null(),
                              OneIn(2),
                              static_cast<std::uint8_t>(Below(3)),
                              static_cast<std::int16_t>(Integer()),
                              Integer(),
                              std::int64_t{9007199254740991} + Below(4),
                              std::int64_t{Integer()},
                              Variant::Date(Double()),
                              OneIn(2) ? std::to_string(Below(3) - 1) : Text(OneIn(2) ? 2 : kTextSize),
                              Double()};
    return values[Below(11)];
  }

  std::mt19937 dice;
  TTestTable table;
  bool datesAreReal = false;
  std::uint32_t alphabet;
};

/// The fixed moves over the pointers themselves, each compare following them.
void PlainSortRows(std::vector<void*>& rows, const std::vector<TSortColumn>& columns) {
  const auto compare = [&columns](void* a, void* b) {
    for (const TSortColumn& column : columns) {
      const std::int32_t order = CompareRows(static_cast<TVXRAMRow*>(a), static_cast<TVXRAMRow*>(b), column.slot);
      if (order != 0) return column.descending ? -order : order;
    }
    return 0;
  };
  QuickSort(TPlainItems<void*>{rows.data()}, static_cast<std::int32_t>(rows.size()), compare);
}

void ExpectPlainOrder(const std::vector<void*>& rows, const std::vector<TSortColumn>& columns) {
  std::vector<void*> plain = rows, packed = rows;
  PlainSortRows(plain, columns);
  SortRows(packed.data(), static_cast<std::int32_t>(packed.size()), columns);
  ASSERT_EQ(packed, plain);
}

TEST(VXRAMSort, PackedKeysOrderRowsAsPlainComparesDo) {
  for (std::uint32_t seed = 1; seed <= 600; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    TRandomRows random(seed);
    const std::vector<void*> rows = random.Rows(random.Below(seed % 40 == 0 ? 4000 : 60));
    for (std::int32_t run = 0; run < 4; ++run) {
      std::vector<TSortColumn> columns;
      for (std::int32_t i = random.Below(4); i >= 0; --i) {
        const std::int32_t field = random.OneIn(3) ? 7 : random.Below(10);  // texts more often
        columns.push_back({random.Slot(field), random.OneIn(2)});
      }
      ExpectPlainOrder(rows, columns);
    }
  }
}

// A double of all sorts fills a key, so that the many rows of each are sorted anew by what follows.
TEST(VXRAMSort, ManyRowsOfEqualKeysAreOrderedByWhatFollows) {
  TRandomRows random(3);
  const std::vector<void*> rows = random.Rows(40'000);
  ExpectPlainOrder(rows, {{random.Slot(4), true}, {random.Slot(7), false}});
  ExpectPlainOrder(rows, {{random.Slot(4), false}, {random.Slot(1), true}, {random.Slot(5), false}});
}

TEST(VXRAMSort, ComparesAreAnOrderForEveryType) {
  TRandomRows random(11);
  const std::vector<void*> rows = random.Rows(25);
  const auto row = [&rows](std::size_t i) { return static_cast<const TVXRAMRow*>(rows[i]); };
  for (std::int32_t field = 0; field < 10; ++field) {
    const TVXRAMFieldSlot slot = random.Slot(field);
    for (std::size_t a = 0; a < rows.size(); ++a)
      for (std::size_t b = 0; b < rows.size(); ++b) {
        const std::int32_t ab = CompareRows(row(a), row(b), slot);
        ASSERT_TRUE(ab >= -1 && ab <= 1);
        ASSERT_EQ(ab, -CompareRows(row(b), row(a), slot)) << field;
        for (std::size_t c = 0; c < rows.size(); ++c) {
          const bool rises = ab <= 0 && CompareRows(row(b), row(c), slot) <= 0;
          ASSERT_TRUE(!rises || CompareRows(row(a), row(c), slot) <= 0) << field;
        }
      }
  }
}

TEST(VXRAMFilterMatch, QuickAnswersAreThoseOfVariants) {
  const TLocaleScope locale(ClassicLocale());
  std::int32_t matches = 0, errors = 0;
  for (std::uint32_t seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    TRandomRows random(seed);
    const std::vector<void*> rows = random.Rows(40);
    for (std::int32_t run = 0; run < 60; ++run) {
      const std::int32_t field = random.Below(10);
      const Variant value = random.Value();
      const TVXRAMFilterMatch match(random.Slot(field), value);
      for (void* const item : rows) {
        const auto* const row = static_cast<const TVXRAMRow*>(item);
        bool quick = false, plain = false;
        const std::string quickError = Raised([&] { quick = match(row); });
        const std::string plainError = Raised([&] { plain = match.Plainly(row); });
        ASSERT_EQ(quickError, plainError);
        ASSERT_EQ(quick, plain) << "field " << field << ", a " << VariantKindName(value.Kind());
        matches += plain ? 1 : 0;
        errors += plainError == "nothing" ? 0 : 1;
      }
    }
  }
  EXPECT_GT(matches, 1000);  // the values are chosen so that many meet
  EXPECT_GT(errors, 100);
}

std::string Describe(const TVXRAMCursorBucketer& cursor) {
  std::string text;
  for (std::int32_t i = 0; i < cursor.Get_BucketList()->Count(); ++i) {
    const TVXRAMBucketInfo& bucket = *cursor.Get_BucketList()->Get_Bucket(i);
    const TVXRAMRow* const row = bucket.Get_BucketRecord();
    text += bucket.Get_Key() + "=" + Ids(*bucket.Get_Records()) + " ";
    text.append(reinterpret_cast<const char*>(RowBytes(row)), static_cast<std::size_t>(TVXRAMRowPool::SizeOf(row)));
  }
  return text;
}

TEST(VXRAMBucketList, BuildingAtOnceEqualsInsertingOneByOne) {
  const TLocaleScope locale(ClassicLocale());
  const TWeekScope week(2);
  const char* const fields[] = {
      "DateTime",       "Short;DateTime",       "Float", "Duration;DateTime", "String;Boolean",
      "DateTime;Float", "Boolean;Smallint;Word"};
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    TRandomRows random(seed);
    random.datesAreReal = true;
    const std::vector<void*> rows = random.Rows(80);
    TTestBuckets wish{
        fields[random.Below(7)], static_cast<TVXGroupMode>(random.Below(5)), {}, vxgrOneDay, random.OneIn(2)};
    for (const char* name : {"Float", "Integer", "Currency"})
      wish.folds.emplace_back(name, static_cast<TVXBucketType>(random.Below(6)));
    TVXRAMCursorBucketer& atOnce = random.table.OpenBuckets(wish);
    TVXRAMCursorBucketer& oneByOne = random.table.OpenBuckets(wish);
    oneByOne.ClearRecordList();
    for (void* const row : rows) oneByOne.Get_BucketList()->InsertRecord(static_cast<TVXRAMRow*>(row), true);
    EXPECT_EQ(Describe(atOnce), Describe(oneByOne)) << wish.fields << " " << +wish.mode;
    // What is looked up by hash is what a walk over the buckets meets.
    for (std::int32_t i = 0; i < atOnce.Get_BucketList()->Count(); ++i) {
      TVXRAMBucketInfo* const bucket = atOnce.Get_BucketList()->Get_Bucket(i);
      EXPECT_EQ(atOnce.FindBucketInfoByBucketRecord(bucket->Get_BucketRecord()), bucket);
      EXPECT_EQ(atOnce.FindBucketInfoByRecordPointer(static_cast<TVXRAMRow*>(bucket->Get_Records()->Last())), bucket);
    }
  }
}

}  // namespace
}  // namespace vx
