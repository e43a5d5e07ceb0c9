#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

#include "platform/dataset/Field.h"
#include "platform/dataset/Fields.h"
#include "platform/runtime/List.h"
#include "platform/runtime/Text.h"

namespace vx {

// -- Errors -----------------------------------------------------------------------------------------------------------

void DatabaseError(const std::string& message, const TComponent* component) {
  if (component == nullptr || component->Name().empty()) throw EDatabaseError(message);
  throw EDatabaseError(component->Name() + ": " + message);
}

void DatabaseErrorFmt(std::string_view format, std::initializer_list<TFormatArg> args, const TComponent* component) {
  DatabaseError(Format(format, args), component);
}

// -- Dates and times in native form -----------------------------------------------------------------------------------

namespace {

/// 1899-12-30 in days since 0001-01-01, that day being 1.
constexpr std::int32_t kDayZero = 693'594;
static_assert(kDayZero + kFirstDate == 1);

struct TTimeStamp {
  double Day;
  std::int32_t Time;
};

/// Of a finite date. As DateTime.h takes dates apart.
TTimeStamp StampOf(TDateTime date) {
  const double day = std::trunc(date);
  const auto time = static_cast<std::int32_t>(std::abs(date - day) * kMillisecondsPerDay + 0.5);
  return time == kMillisecondsPerDay ? TTimeStamp{day + 1, 0} : TTimeStamp{day, time};
}

}  // namespace

double DateTimeToNative(TDateTime date) {
  if (!std::isfinite(date)) return date;
  const TTimeStamp stamp = StampOf(date);
  return (stamp.Day + kDayZero) * kMillisecondsPerDay + stamp.Time;
}

TDateTime NativeToDateTime(double native) {
  if (!std::isfinite(native)) return native;
  const double days = std::floor(native / kMillisecondsPerDay);
  const double time = (native - days * kMillisecondsPerDay) / kMillisecondsPerDay;
  const double day = days - kDayZero;
  return day < 0 ? day - time : day + time;
}

std::int32_t DateToNative(TDateTime date) {
  using TLimits = std::numeric_limits<std::int32_t>;
  if (std::isnan(date)) return 0;
  const double day = (std::isfinite(date) ? StampOf(date).Day : date) + kDayZero;
  if (day <= TLimits::min()) return TLimits::min();
  return day >= TLimits::max() ? TLimits::max() : static_cast<std::int32_t>(day);
}

TDateTime NativeToDate(std::int32_t native) { return static_cast<double>(native) - kDayZero; }

std::int32_t TimeToNative(TDateTime date) { return std::isfinite(date) ? StampOf(date).Time : 0; }

TDateTime NativeToTime(std::int32_t native) { return static_cast<double>(native) / kMillisecondsPerDay; }

// -- TFieldDef --------------------------------------------------------------------------------------------------------

namespace {

template <class T>
TOwned<TField> MakeField(TComponent* owner) {
  return Make<T>(owner);
}

using TFieldMaker = TOwned<TField> (*)(TComponent* owner);

/// In the order of TFieldType.
constexpr TFieldMaker kMakers[] = {nullptr,
                                   &MakeField<TStringField>,
                                   &MakeField<TSmallintField>,
                                   &MakeField<TIntegerField>,
                                   &MakeField<TWordField>,
                                   &MakeField<TBooleanField>,
                                   &MakeField<TFloatField>,
                                   &MakeField<TCurrencyField>,
                                   &MakeField<TDateField>,
                                   &MakeField<TTimeField>,
                                   &MakeField<TDateTimeField>};
static_assert(std::size(kMakers) == ftDateTime + 1);

}  // namespace

TFieldDef::TFieldDef(TFieldDefs* owner, std::string name, TFieldType type, std::int32_t size, bool required,
                     std::int32_t fieldNo)
    : owner_(owner),
      name_(std::move(name)),
      type_(type),
      size_(type == ftString ? size : 0),
      required_(required),
      fieldNo_(fieldNo) {}

const TClass& TFieldDef::StaticClass() {
  static const TClass info("TFieldDef", &TObject::StaticClass());
  return info;
}

TField* TFieldDef::CreateField(TComponent* owner) const {
  const TFieldMaker maker = type_ < std::size(kMakers) ? kMakers[type_] : nullptr;
  if (maker == nullptr) DatabaseError("Field '" + name_ + "' is of an unknown type");
  TOwned<TField> field = maker(owner);
  field->SetFieldName(name_);
  field->Required = required_;
  if (type_ == ftString) field->SetSize(size_);
  return field.release();
}

// -- TFieldDefs -------------------------------------------------------------------------------------------------------

TFieldDefs::TFieldDefs(TDataSet* dataSet) : dataSet_(dataSet) {}

const TClass& TFieldDefs::StaticClass() {
  static const TClass info("TFieldDefs", &TObject::StaticClass());
  return info;
}

TFieldDef* TFieldDefs::Items(std::int32_t index) const {
  if (index < 0 || index >= Count()) RaiseListError(kListIndexError, index);
  return items_[static_cast<std::size_t>(index)].get();
}

std::int32_t TFieldDefs::IndexOf(std::string_view name) const {
  const auto found = byName_.find(FoldCase(name));
  return found == byName_.end() ? -1 : found->second;
}

TFieldDef* TFieldDefs::Find(std::string_view name) const {
  const std::int32_t index = IndexOf(name);
  return index < 0 ? nullptr : Items(index);
}

void TFieldDefs::Add(TOwned<TFieldDef> def) {
  const std::string& name = Need(def.get(), "field definition").Name();
  if (name.empty()) DatabaseError("A field needs a name");
  items_.reserve(items_.size() + 1);
  if (!byName_.emplace(FoldCase(name), Count()).second) DatabaseError("There are two fields named '" + name + "'");
  items_.push_back(std::move(def));
}

TFieldDef* TFieldDefs::Add(std::string name, TFieldType type, std::int32_t size, bool required) {
  auto def = Make<TFieldDef>(this, std::move(name), type, size, required, Count() + 1);
  TFieldDef* const added = def.get();
  Add(std::move(def));
  return added;
}

void TFieldDefs::Clear() {
  items_.clear();
  byName_.clear();
}

}  // namespace vx
