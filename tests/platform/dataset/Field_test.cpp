#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

#include "platform/component/ComponentStream.h"
#include "platform/component/Published.h"
#include "platform/dataset/DataSet.h"
#include "platform/dataset/Fields.h"
#include "platform/dataset/FloatMask.h"
#include "platform/runtime/Locale.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

/// Records in a vector, each field a byte that says whether it has a value, then its native form.
class TSmallSet : public TDataSet {
 public:
  using TDataSet::TDataSet;
  /// Columns as "name:type ordinal", the strings 8 bytes long.
  std::vector<std::pair<std::string, TFieldType>> Columns;
  std::int32_t Lookups = 0;

  bool GetFieldData(const TField& field, void* buffer) override {
    const char* const place = Place(field);
    if (*place == 0) return false;
    if (buffer != nullptr) std::memcpy(buffer, place + 1, static_cast<std::size_t>(field.DataSize()));
    return true;
  }
  void SetFieldData(TField& field, const void* buffer) override {
    if (State() == dsBrowse) DatabaseError("Not in EDIT MODES");
    char* const place = Place(field);
    *place = buffer != nullptr;
    if (buffer != nullptr) std::memcpy(place + 1, buffer, static_cast<std::size_t>(field.DataSize()));
    if (State() != dsCalcFields) DataEvent(deFieldChange, &field);
  }
  Variant Lookup(const std::string& keys, const Variant& values, const std::string& results) override {
    ++Lookups;
    for (First(); !Eof(); Next())
      if (GetFieldValue(keys) == values) return GetFieldValue(results);
    return Variant::Null();
  }

 protected:
  void ClearCalcFields(char* buffer) override { std::fill_n(buffer + kSize, CalcFieldsSize(), '\0'); }
  char* AllocRecordBuffer() override { return new char[kSize + 512](); }
  void FreeRecordBuffer(char*& buffer) override { delete[] std::exchange(buffer, nullptr); }
  void GetBookmarkData(char* buffer, void* data) override { std::memcpy(data, buffer + kSize - 4, 4); }
  void SetBookmarkData(char* buffer, const void* data) override { std::memcpy(buffer + kSize - 4, data, 4); }
  TBookmarkFlag GetBookmarkFlag(char* buffer) override { return static_cast<TBookmarkFlag>(buffer[kSize - 5]); }
  void SetBookmarkFlag(char* buffer, TBookmarkFlag flag) override { buffer[kSize - 5] = static_cast<char>(flag); }
  TGetResult GetRecord(char* buffer, TGetMode mode, bool) override {
    const auto count = static_cast<std::int32_t>(rows_.size());
    if (mode == gmNext && at_ >= count - 1) return grEOF;
    if (mode == gmPrior && at_ <= 0) return grBOF;
    at_ += mode == gmNext ? 1 : mode == gmPrior ? -1 : 0;
    if (at_ < 0 || at_ >= count) return grError;
    std::memcpy(buffer, rows_[static_cast<std::size_t>(at_)].data(), kSize);
    std::memcpy(buffer + kSize - 4, &at_, 4);
    SetBookmarkFlag(buffer, bfCurrent);
    GetCalcFields(buffer);
    return grOK;
  }
  std::uint16_t GetRecordSize() override { return kSize; }
  void InternalAddRecord(const char* buffer, bool) override { rows_.emplace_back(buffer, kSize); }
  void InternalClose() override {
    BindFields(false);
    if (DefaultFields()) DestroyFields();
    isOpen_ = false;
  }
  void InternalDelete() override { rows_.erase(rows_.begin() + at_); }
  void InternalFirst() override { at_ = -1; }
  void InternalLast() override { at_ = static_cast<std::int32_t>(rows_.size()); }
  void InternalGotoBookmark(const void* bookmark) override { std::memcpy(&at_, bookmark, 4); }
  void InternalSetToRecord(char* buffer) override { std::memcpy(&at_, buffer + kSize - 4, 4); }
  void InternalInitFieldDefs() override {
    FieldDefs().Clear();
    for (const auto& [name, type] : Columns) FieldDefs().Add(name, type, 8);
  }
  void InternalInitRecord(char* buffer) override { std::fill_n(buffer, kSize, '\0'); }
  void InternalOpen() override {
    SetBookmarkSize(4);
    InternalInitFieldDefs();
    if (DefaultFields()) CreateFields();
    BindFields(true);
    isOpen_ = true;
    at_ = -1;
  }
  void InternalPost() override {
    if (State() == dsEdit) return static_cast<void>(rows_[static_cast<std::size_t>(at_)].assign(ActiveBuffer(), kSize));
    rows_.emplace_back(ActiveBuffer(), kSize);
    at_ = static_cast<std::int32_t>(rows_.size()) - 1;
  }
  bool IsCursorOpen() override { return isOpen_; }

 private:
  static constexpr std::int32_t kSize = 256;  // 16 bytes a field, at the end flag and number of the record
  char* Place(const TField& field) {
    char* const buffer = State() == dsCalcFields ? CalcBuffer() : ActiveBuffer();
    return field.FieldNo() > 0 ? buffer + 16 * (field.FieldNo() - 1) : buffer + kSize + field.Offset();
  }
  std::vector<std::string> rows_;
  std::int32_t at_ = -1;
  bool isOpen_ = false;
};

/// One column of each type, named as its type; a new record is being made.
class FieldTest : public testing::Test {
 protected:
  FieldTest() : set_(Make<TSmallSet>(nullptr)) {
    for (const TFieldType type :
         {ftString, ftSmallint, ftInteger, ftWord, ftBoolean, ftFloat, ftCurrency, ftDate, ftTime, ftDateTime})
      set_->Columns.emplace_back(EnumShortText(type), type);
    set_->Open();
    set_->Insert();
  }
  TField& Field(std::string_view name) { return *set_->FieldByName(name); }
  template <class T>
  T& FieldAs(std::string_view name) {
    return *Cast<T>(&Field(name));
  }

  TLocaleScope locale_{ClassicLocale()};
  TOwned<TSmallSet> set_;
};

TEST_F(FieldTest, ReadsTextsOfItsTypeAndRefusesOthers) {
  struct {
    const char *field, *text, *expected;  // AsString afterwards, or the message
  } const cases[] = {
      {"String", "1234567\xC3\xA9", "1234567"},  // no half code point
      {"String", " a ", " a "},
      {"String", "", ""},
      {"Smallint", " 32767 ", "32767"},
      {"Smallint", "-32768", "-32768"},
      {"Smallint", "40000", "'40000' is not between -32768 and 32767, the range of field 'Smallint'"},
      {"Word", "65535", "65535"},
      {"Word", "-1", "'-1' is not between 0 and 65535, the range of field 'Word'"},
      {"Integer", "-2147483648", "-2147483648"},
      {"Integer", "abc", "'abc' is not a valid integer value for field 'Integer'"},
      {"Integer", "2147483648", "'2147483648' is not a valid integer value for field 'Integer'"},
      {"Integer", "  ", ""},
      {"Boolean", "t", "True"},
      {"Boolean", "FALSE", "False"},
      {"Boolean", "maybe", "'maybe' is not a valid Boolean value for field 'Boolean'"},
      {"Float", "1.5e3", "1500"},
      {"Float", "1,5", "'1,5' is not a valid floating point value for field 'Float'"},
      {"Float", "1e999", "'1e999' is not a valid floating point value for field 'Float'"},
      {"Date", "2/29/2024", "2/29/2024"},
      {"Date", "2/30/2024", "'2/30/2024' is not a valid date for field 'Date'"},
      {"Time", "18:05", "6:05:00 PM"},
      {"Time", "25:00", "'25:00' is not a valid time for field 'Time'"},
      {"DateTime", "2/29/2024 6:05:00 PM", "2/29/2024 6:05:00 PM"},
      {"DateTime", "12/29/1899 06:00", "12/29/1899 6:00:00 AM"},
      {"DateTime", "12", "'12' is not a valid date and time for field 'DateTime'"},
  };
  for (const auto& [name, text, expected] : cases) {
    SCOPED_TRACE(std::string(name) + " = " + text);
    std::string result = MessageOf<EDatabaseError>([&, name = name, text = text] { Field(name).SetText(text); });
    EXPECT_EQ(result == "nothing raised" ? Field(name).Text() : result, expected);
  }
  EXPECT_TRUE(Field("Integer").IsNull());
  EXPECT_FALSE(Field("String").IsNull());
}

TEST_F(FieldTest, TakesVariantsAndAnswersTheKindOfItsType) {
  struct {
    const char* field;
    Variant value;
    TVariantKind kind;  // unassigned: the message is `expected`
    const char* expected;
  } const cases[] = {
      {"String", 12, vkString, "12"},
      {"String", true, vkString, "True"},
      {"Integer", "12", vkInteger, "12"},
      {"Integer", 2.5, vkInteger, "2"},
      {"Smallint", 40000, vkUnassigned, "'40000' is not between -32768 and 32767, the range of field 'Smallint'"},
      {"Integer", 3e9, vkUnassigned, "Field 'Integer': "},
      {"Word", Variant::Array({1}), vkUnassigned, "Field 'Word': "},
      {"Boolean", "false", vkBoolean, "False"},
      {"Boolean", 7, vkBoolean, "True"},
      {"Currency", 12, vkDouble, "12"},
      {"Float", test::kNaN, vkUnassigned, "'NAN' is not a finite number for field 'Float'"},
      {"Date", Variant::Date(45351.75), vkDate, "2/29/2024"},
      {"Time", Variant::Date(-1.25), vkDate, "6:00:00 AM"},
      {"DateTime", 45351.75, vkDate, "2/29/2024 6:00:00 PM"},
      {"DateTime", 1e300, vkUnassigned, "'1E300' is not a valid date for field 'DateTime'"},
      {"Float", Variant::Null(), vkNull, ""},
  };
  for (const auto& [name, value, kind, expected] : cases) {
    SCOPED_TRACE(name);
    const std::string message = MessageOf<EDatabaseError>([&, n = name, v = value] { Field(n).SetValue(v); });
    if (kind == vkUnassigned) {
      EXPECT_TRUE(message.starts_with(expected)) << message;
      continue;
    }
    EXPECT_EQ(Field(name).Value().Kind(), kind) << message;
    EXPECT_EQ(Field(name).GetAsString(), expected);
  }
  FieldAs<TIntegerField>("Integer").SetMaxValue(10);
  EXPECT_THROW(Field("Integer").SetAsInteger(11), EDatabaseError);
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { Field("Date").GetAsBoolean(); }),
            "Field 'Date' is of type Date and not to be had as a Boolean");
}

TEST_F(FieldTest, ShowsByItsFormatAndEditsWhatItCanRead) {
  FieldAs<TFloatField>("Float").SetDisplayFormat("#,##0.0;(0)");
  FieldAs<TDateTimeField>("Date").SetDisplayFormat("mmm yyyy");
  FieldAs<TBooleanField>("Boolean").SetDisplayValues("Done;Open");
  for (const auto& [name, text] :
       {std::pair{"Float", "1234.5"}, {"Date", "2/29/2024"}, {"Boolean", "d"}, {"Currency", "-2.5"}})
    Field(name).SetText(text);
  const auto both = [&](const char* name) { return Field(name).DisplayText() + " | " + Field(name).Text(); };
  EXPECT_EQ(both("Float"), "1,234.5 | 1234.5");
  EXPECT_EQ(both("Date"), "Feb 2024 | 2/29/2024");
  EXPECT_EQ(both("Boolean"), "Done | Done");
  EXPECT_EQ(both("Currency"), "($2.50) | -2.5");
  Field("Float").OnGetText = [](TField* sender, std::string& text, bool display) {
    text = "<" + (display ? sender->DisplayText() : sender->Text()) + ">";  // without the event
  };
  Field("Float").OnSetText = [](TField* sender, const std::string& text) { sender->SetText(text + "0"); };
  Field("Float").SetText("-7");
  EXPECT_EQ(both("Float"), "<(70)> | <-70>");
}

TEST(FormatFloat, PrintsByItsMask) {
  const TLocaleScope locale(ClassicLocale());
  struct {
    const char* mask;
    double value;
    const char* expected;
  } const cases[] = {
      {"#,##0.00", 1234567.891, "1,234,567.89"},
      {"#,##0.00", -0.001, "0.00"},  // no sign before what is zero
      {"0.##", 2, "2"},
      {"#.##", 0.5, ".5"},
      {"#.##", 0, ""},
      {"0.0;(0.0);none", -3.25, "(3.3)"},
      {"0.0;(0.0);none", 0.04, "none"},
      {"0.0;;z", -3, "-3.0"},
      {"000-000", 7, "000-007"},
      {"00", 1234, "1234"},
      {".00", 12.5, "12.50"},
      {"\"a;b\"0' %'", 3, "a;b3 %"},
      {"0.00E+00", 12345, "1.23E+04"},
      {"0.0e-0", 0.00012, "1.2e-4"},
      {"", 1.5, "1.5"},
      {"0.00", 1e20, "1E20"},
      {"0.00", test::kNaN, "NAN"},
      {"'unclosed", 3, "unclosed"},
  };
  for (const auto& [mask, value, expected] : cases)
    EXPECT_EQ(FormatFloat(mask, value), expected) << mask << " " << value;
}

TEST(NativeDates, AreWhatTheCalendarTells) {
  EXPECT_EQ(DateTimeToNative(kFirstDate), 86'400'000.0);
  EXPECT_EQ(DateTimeToNative(-1.25), DateTimeToNative(-1) + 21'600'000.0);
  EXPECT_EQ(DateToNative(test::kInfinity), 2'147'483'647);
  EXPECT_TRUE(std::isnan(NativeToDateTime(DateTimeToNative(test::kNaN))));
  for (std::uint32_t seed = 1; seed <= 20'000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    // Every third of them just before or behind midnight.
    std::uniform_real_distribution<double> part01(0, 1);
    const double fraction = seed % 3 == 0 ? (part01(random) - 0.5) * 2e-8 : part01(random);
    const double date = std::trunc(std::uniform_real_distribution(kFirstDate + 2, kLastDate - 2)(random)) + fraction;
    std::uint16_t part[4];
    DecodeDate(date, part[0], part[1], part[2]);
    const TDateTime day = EncodeDate(part[0], part[1], part[2]);
    DecodeTime(date, part[0], part[1], part[2], part[3]);
    const TDateTime time = EncodeTime(part[0], part[1], part[2], part[3]);
    ASSERT_EQ(NativeToDateTime(DateTimeToNative(date)), day < 0 ? day - time : day + time);
    ASSERT_EQ(NativeToDate(DateToNative(date)), day);
    ASSERT_EQ(NativeToTime(TimeToNative(date)), time);
  }
}

TEST_F(FieldTest, HandlersMayRefuseWriteAgainAndCloseTheSet) {
  TField& field = Field("Integer");
  std::string heard;
  field.OnValidate = [&](TField* sender) {
    heard += "v" + sender->GetAsString();
    if (sender->GetAsInteger() > 100) throw EDatabaseError("too many");
    if (sender->GetAsInteger() == 50) sender->SetAsInteger(51);
  };
  field.OnChange = [&](TField* sender) {
    heard += "c" + sender->GetAsString() + " ";
    if (sender->GetAsInteger() < 5) sender->SetAsInteger(sender->GetAsInteger() + 1);
  };
  field.SetAsInteger(1);
  EXPECT_EQ(heard, "v1c1 v2");
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { field.SetAsInteger(101); }), "too many");
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { field.SetAsInteger(50); }),
            "Field 'Integer' can't be written while it is validated");
  EXPECT_EQ(field.GetAsInteger(), 2);
  for (const bool validates : {true, false}) {
    TField& closing = Field("Float");
    (validates ? closing.OnValidate : closing.OnChange) = [&](TField*) { set_->Close(); };
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { closing.SetAsFloat(1); }),
              validates ? "Field 'Float' belongs to no data set" : "nothing raised");
    set_->Open();  // its fields are new ones
    set_->Insert();
  }
  Field("Float").OnGetText = [&](TField*, std::string&, bool) { set_->Close(); };
  EXPECT_EQ(Field("Float").Text(), "");
}

TEST_F(FieldTest, LooksUpInAnotherSet) {
  const auto colours = Make<TSmallSet>(nullptr);
  colours->Columns = {{"Id", ftInteger}, {"Word", ftString}};
  colours->Open();
  for (const std::string word : {"red", "green", "blue"})
    colours->AppendRecord({static_cast<std::int32_t>(word.size()), word});
  for (const bool cached : {false, true}) {
    SCOPED_TRACE(cached);
    const auto set = Make<TSmallSet>(nullptr);
    set->Columns = {{"Length", ftInteger}};
    const auto field = Make<TStringField>(nullptr);
    const auto length = Make<TIntegerField>(nullptr);
    length->SetFieldName("Length");
    length->SetDataSet(set.get());
    field->SetFieldName("Colour");
    field->SetFieldKind(fkLookup);
    field->SetDataSet(set.get());
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { set->Open(); }), "Lookup field 'Colour' has no LookupDataSet");
    field->SetLookupDataSet(colours.get());
    field->SetKeyFields("Length");
    field->SetLookupKeyFields("Id");
    field->SetLookupResultField("Word");
    field->SetLookupCache(cached);
    colours->Lookups = 0;
    set->Open();
    for (const std::int32_t key : {5, 4, 7}) set->AppendRecord({key});
    std::string seen;
    for (set->First(); !set->Eof(); set->Next()) seen += field->DisplayText() + ",";
    EXPECT_EQ(seen, "green,blue,,");
    EXPECT_EQ(colours->Lookups > 0, !cached);
    EXPECT_FALSE(field->CanModify());
  }
}

TEST(PersistentFields, AreStreamedWithTheirSet) {
  RegisterFields();
  const auto set = Make<TSmallSet>(nullptr);
  auto* const price = New<TCurrencyField>(set.get());
  price->SetFieldName("Price");
  price->SetDisplayFormat("0.00");
  price->SetCurrency(false);
  price->SetDataSet(set.get());
  auto* const name = New<TStringField>(set.get());
  name->SetFieldName("Name");
  name->SetSize(8);
  name->SetDisplayLabel("Who");
  name->SetDataSet(set.get());
  const std::string text = ComponentToText(*set);
  const auto copy = Make<TSmallSet>(nullptr);
  TextIntoComponent(text, *copy);
  EXPECT_EQ(ComponentToText(*copy), text);
  ASSERT_EQ(copy->FieldCount(), 2);
  copy->Columns = {{"Name", ftString}, {"Price", ftCurrency}};
  copy->Open();
  copy->AppendRecord({2.5, "Ann"});
  EXPECT_EQ(copy->FieldByName("name")->DisplayLabel() + copy->FieldByName("PRICE")->DisplayText(), "Who2.50");
  name->Free();
  EXPECT_EQ(set->FieldCount(), 1);
}

}  // namespace
}  // namespace vx
