// The quicker ways against the plain ones, on random rows: sorting with packed keys, and filtering without Variants. What is promised
// is the order itself, that of equal rows included.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "TableKit.h"
#include "data/VXRAMSort.h"
#include "platform/runtime/Locale.h"

namespace vx {
namespace {

constexpr std::int32_t kTextSize = 24;

/// Rows with one field of each type, and texts of three kinds, full of values that are hard to order.
class TRandomRows {
 public:
  explicit TRandomRows(std::uint32_t seed)
      : dice_(seed),
        table_({{"Boolean", vxrftBoolean},
                {"Currency", vxrftCurrency},
                {"DateTime", vxrftDateTime},
                {"Duration", vxrftDuration},
                {"Float", vxrftFloat},
                {"Integer", vxrftInteger},
                {"Smallint", vxrftSmallint},
                {"String", vxrftString, kTextSize},
                {"Word", vxrftWord},
                {"Short", vxrftString, 2}}),
        alphabet_(static_cast<std::uint32_t>(Below(3))) {}

  std::int32_t Below(std::int32_t limit) {
    return static_cast<std::int32_t>(dice_() % static_cast<std::uint32_t>(limit));
  }
  bool OneIn(std::int32_t times) { return Below(times) == 0; }
  TVXRAMTable& Table() { return *table_; }
  TVXRAMFieldSlot Slot(std::int32_t field) {
    return table_->Get_FieldDefs()->Get_Slots()[static_cast<std::size_t>(field)];
  }

  double Double() {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN(), kInf = std::numeric_limits<double>::infinity();
    constexpr double kHard[] = {0,      -0.0,   kNaN,    -kNaN, kInf, -kInf, 1e308,
                                -1e308, 5e-324, -5e-324, 1,     -1,   0.1,   9007199254740993.0};
    return OneIn(2) ? kHard[Below(14)] : Below(7) - 3.5;
  }
  std::int32_t Integer() {
    constexpr std::int32_t kHard[] = {0, 1, -1, 2147483647, -2147483647 - 1, 256, 65536, -256};
    return OneIn(2) ? kHard[Below(8)] : Below(5) - 2;
  }
  /// Plain letters, letters whose folding changes lengths, or any bytes at all; often with a common beginning.
  std::string Text(std::int32_t size) {
    static const std::vector<std::string> kPieces[] = {
        {"a", "A", "b", "B", " ", "~", "aaaaaaaa", "AAAAAAAA"},
        {"a", "A", "\xC3\xA9", "\xC3\x89", "\xC3\x9F", "ss", "\xC4\xB0", "\xE2\x84\xAA", "k", "\xF0\x90\x90\x80",
         "\xF0\x90\x90\xA8"},
        {"a", "\xFF", "\xC3", "\x80", "\xFE\xFF", "\xF4\x8F\xBF\xBF", "\xED\xA0\x80", "\x7F", "\x01",
         "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"}};
    const std::vector<std::string>& pieces = kPieces[alphabet_];
    std::string text;
    for (std::int32_t i = Below(7); i > 0; --i)
      text += pieces[static_cast<std::size_t>(Below(static_cast<std::int32_t>(pieces.size())))];
    text.resize(std::min(text.size(),
                         static_cast<std::size_t>(OneIn(8) ? size : size - 1)));  // some fill their slot to the brim
    return text;
  }

  /// Bytes of a value of the field's type; a null may hold some too.
  void Write(TVXRAMRow* row, std::int32_t field) {
    const TVXRAMFieldSlot slot = Slot(field);
    std::uint8_t* const bytes = RowBytes(row) + slot.valueOffset;
    const auto put = [bytes](auto value) { std::memcpy(bytes, &value, sizeof value); };
    switch (slot.type) {
      case vxrftBoolean:
        put(static_cast<std::uint8_t>(Below(3)));
        break;
      case vxrftCurrency:
      case vxrftDateTime:
      case vxrftFloat:
        put(Double());
        break;
      case vxrftDuration:
      case vxrftInteger:
        put(Integer());
        break;
      case vxrftSmallint:
        put(static_cast<std::int16_t>(Integer()));
        break;
      case vxrftString: {
        const std::string text = Text(slot.size);
        std::copy(text.begin(), text.end(), bytes);
        break;
      }
      case vxrftWord:
        put(static_cast<std::uint16_t>(Integer()));
        break;
    }
    RowBytes(row)[slot.statusOffset] = OneIn(6) ? vxfsNull : vxfsAssigned;
  }
  std::vector<void*> Rows(std::int32_t count) {
    std::vector<void*> rows;
    for (; count > 0; --count) {
      TVXRAMRow* const row = table_->InternalAllocRecordBuffer();
      table_->InternalInitRecord(row);
      for (std::int32_t field = 0; field < table_->Get_FieldDefs()->Count(); ++field) Write(row, field);
      rows.push_back(row);
    }
    return rows;
  }
  Variant Value() {
    switch (Below(11)) {
      case 0:
        return Variant();
      case 1:
        return Variant::Null();
      case 2:
        return Variant(OneIn(2));
      case 3:
        return Variant(static_cast<std::uint8_t>(Below(3)));
      case 4:
        return Variant(static_cast<std::int16_t>(Integer()));
      case 5:
        return Variant(Integer());
      case 6:
        return Variant(std::int64_t{9007199254740991} + Below(4));
      case 7:
        return Variant(std::int64_t{Integer()});
      case 8:
        return Variant::Date(Double());
      case 9:
        return OneIn(2) ? Variant(std::to_string(Below(3) - 1)) : Variant(Text(OneIn(2) ? 2 : kTextSize));
      default:
        return Variant(Double());
    }
  }

 private:
  std::mt19937 dice_;
  TTestTable table_;
  std::uint32_t alphabet_;
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

std::string Names(const std::vector<TSortColumn>& columns) {
  std::string text;
  for (const TSortColumn& column : columns)
    text += std::to_string(column.slot.type) + (column.descending ? "D " : "A ");
  return text;
}

TEST(VXRAMSort, PackedKeysOrderRowsAsPlainComparesDo) {
  for (std::uint32_t seed = 1; seed <= 600; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    TRandomRows random(seed);
    const std::vector<void*> rows = random.Rows(random.Below(seed % 20 == 0 ? 600 : 60));
    for (std::int32_t run = 0; run < 4; ++run) {
      std::vector<TSortColumn> columns;
      for (std::int32_t i = random.Below(4); i >= 0; --i) {
        const std::int32_t field = random.OneIn(3) ? 7 : random.Below(10);  // texts more often
        columns.push_back({random.Slot(field), random.OneIn(2)});
      }
      std::vector<void*> plain = rows, packed = rows;
      PlainSortRows(plain, columns);
      SortRows(packed.data(), static_cast<std::int32_t>(packed.size()), columns);
      ASSERT_EQ(packed, plain) << Names(columns);
    }
  }
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

// -- Filters -----------------------------------------------------------------------------------------------------------

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

}  // namespace
}  // namespace vx
