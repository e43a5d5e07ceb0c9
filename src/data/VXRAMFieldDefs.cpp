#include "data/VXRAMFieldDefs.h"

#include <limits>

#include "data/VXRAMTable_CMP.h"
#include "platform/component/Published.h"
#include "platform/runtime/Wrapping.h"

namespace vx {

namespace {

/// Changes of definitions are refused while the base index of the table holds rows. Rows of the main list don't count:
/// kept, since tables that are filled through cursors rely on it.
void GuardFieldDefs(const TVXRAMTable* table) {
  if (table != nullptr) table->CheckFieldDefChangesAllowed();
}

bool IsLoading(const TVXRAMTable* table) { return table != nullptr && table->Is(csLoading); }

}  // namespace

// -- TVXRAMFieldRef ---------------------------------------------------------------------------------------------------

TVXRAMFieldRef::TVXRAMFieldRef(TVXRAMFieldDef* field) {
  if (field != nullptr) self_ = field->self_;
}

// -- TVXRAMFieldDef ---------------------------------------------------------------------------------------------------

const TClass& TVXRAMFieldDef::StaticClass() {
  static const TClass info = TClassBuilder<TVXRAMFieldDef>("TVXRAMFieldDef", TCollectionItem::StaticClass())
                                 .Property("ByteSize", &TVXRAMFieldDef::Get_ByteSize, &TVXRAMFieldDef::Set_ByteSize)
                                 .Property("DataType", &TVXRAMFieldDef::Get_DataType, &TVXRAMFieldDef::Set_DataType)
                                 .Property("Name", &TVXRAMFieldDef::Get_Name, &TVXRAMFieldDef::Set_Name)
                                 .Build();
  return info;
}

TVXRAMFieldDef::TVXRAMFieldDef(TCollection* collection)
    : TCollectionItem(collection), self_(std::make_shared<TVXRAMFieldDef*>(this)) {}

std::string TVXRAMFieldDef::GetDisplayName() const { return name_.empty() ? TCollectionItem::GetDisplayName() : name_; }

TVXRAMFieldDefs* TVXRAMFieldDef::Get_Owner() const { return As<TVXRAMFieldDefs>(Collection()); }

TVXRAMTable* TVXRAMFieldDef::Get_Table() const {
  const TVXRAMFieldDefs* const owner = Get_Owner();
  return owner == nullptr ? nullptr : owner->Get_Table();
}

void TVXRAMFieldDef::StoreByteSize(std::int32_t value) {
  byteSize_ = value;
  if (TVXRAMFieldDefs* const owner = Get_Owner()) owner->LayoutChanged();
}

void TVXRAMFieldDef::TakeOver(const TVXRAMFieldDef& other) {
  dataType_ = other.dataType_;
  StoreByteSize(other.byteSize_);
  name_ = other.name_;
}

void TVXRAMFieldDef::Set_Name(const std::string& value) {
  name_ = value;
  if (TVXRAMFieldDefs* const owner = Get_Owner()) owner->LayoutChanged();
}

void TVXRAMFieldDef::Set_ByteSize(std::int32_t value) {
  GuardFieldDefs(Get_Table());
  if (dataType_ != vxrftString && !IsLoading(Get_Table()))
    throw ERTENoByteSizeChangesAllowed("Can't change the ByteSize of fields other than vxrftString.");
  StoreByteSize(value);
}

void TVXRAMFieldDef::Set_DataType(TVXRAMFieldType value) {
  if (value == dataType_) return;
  GuardFieldDefs(Get_Table());
  dataType_ = value;
  if (TVXRAMFieldDefs* const owner = Get_Owner()) owner->LayoutChanged();
  if (IsLoading(Get_Table())) return;  // the stream gave ByteSize before
  const std::int32_t size = DefaultByteSize(value);
  if (size < 0) throw ERTEInvalidFieldType("You chose an invalid field type.");
  StoreByteSize(size);
}

std::int32_t TVXRAMFieldDef::Get_StatusOffset() const {
  const TVXRAMFieldDefs* const owner = Get_Owner();
  // Kept: a collection of another item class has no layout of its own.
  if (owner == nullptr || owner->ItemClass().Class() != &StaticClass()) return kFirstFieldOffset;
  return Get_Slot().statusOffset;
}

TVXRAMFieldSlot TVXRAMFieldDef::Get_Slot() const {
  return Need(Get_Owner(), "owner of the field definition").Get_Slots().at(static_cast<std::size_t>(Index()));
}

void TVXRAMFieldDef::BeforeDestruction() {
  GuardFieldDefs(Get_Table());
  TCollectionItem::BeforeDestruction();
}

void TVXRAMFieldDef::TearDown() {
  *self_ = nullptr;
  TCollectionItem::TearDown();
}

// -- TVXRAMFieldDefs --------------------------------------------------------------------------------------------------

const TClass& TVXRAMFieldDefs::StaticClass() {
  static const TClass info("TVXRAMFieldDefs", &TCollection::StaticClass());
  return info;
}

TVXRAMFieldDefs::TVXRAMFieldDefs(TVXRAMTable* table)
    : TVXRAMFieldDefs(table, TClassOf<TCollectionItem>::Of<TVXRAMFieldDef>()) {}

TVXRAMFieldDefs::TVXRAMFieldDefs(TVXRAMTable* table, TClassOf<TCollectionItem> itemClass)
    : TCollection(itemClass), table_(table) {}

TPersistent* TVXRAMFieldDefs::GetOwner() const { return table_; }

void TVXRAMFieldDefs::Assign(const TPersistent* source) {
  GuardFieldDefs(table_);
  if (source == this) return;
  const auto* const defs = As<TVXRAMFieldDefs>(source);
  if (defs == nullptr) return TCollection::Assign(source);
  Clear();
  for (std::int32_t i = 0; i < defs->Count(); ++i) Add()->TakeOver(*defs->Get_Item(i));
}

TVXRAMFieldDef* TVXRAMFieldDefs::Add() {
  GuardFieldDefs(table_);
  return Cast<TVXRAMFieldDef>(TCollection::Add());
}

TVXRAMFieldDef* TVXRAMFieldDefs::Get_Item(std::int32_t index) const { return Cast<TVXRAMFieldDef>(Items(index)); }

void TVXRAMFieldDefs::Set_Item(std::int32_t index, const TVXRAMFieldDef* value) {
  GuardFieldDefs(table_);
  Get_Item(index)->TakeOver(Need(value, "field definition"));
}

void TVXRAMFieldDefs::LayoutChanged() {
  layoutIsKnown_ = false;
  ++layoutChanges_;
  if (table_ != nullptr) table_->RaiseChangeStamp();
}

std::int32_t TVXRAMFieldDefs::Get_RecSize() const {
  if (!layoutIsKnown_) ComputeLayout();
  return recSize_;
}

void TVXRAMFieldDefs::ComputeLayout() const {
  std::int64_t size = kFirstFieldOffset;
  layoutIsSound_ = true;
  recSize_ = kFirstFieldOffset;
  slots_.clear();
  for (std::int32_t i = 0; i < Count(); ++i) {
    const TVXRAMFieldDef& field = *Get_Item(i);
    slots_.push_back({recSize_, WrappingAdd(recSize_, 1), field.Get_ByteSize(), field.Get_DataType()});
    recSize_ = WrappingAdd(recSize_, WrappingAdd(1, field.Get_ByteSize()));
    size += 1 + std::int64_t{field.Get_ByteSize()};
    if (field.Get_ByteSize() < 0 || size > std::numeric_limits<std::int32_t>::max()) layoutIsSound_ = false;
  }
  layoutIsKnown_ = true;
}

void TVXRAMFieldDefs::CheckLayout() const {
  if (!layoutIsKnown_) ComputeLayout();
  if (layoutIsSound_) return;
  std::int64_t size = kFirstFieldOffset;
  for (std::int32_t i = 0; i < Count(); ++i) {
    const TVXRAMFieldDef& field = *Get_Item(i);
    size += 1 + std::int64_t{field.Get_ByteSize()};
    if (field.Get_ByteSize() >= 0 && size <= std::numeric_limits<std::int32_t>::max()) continue;
    throw ERAMTableError("No rows can be made: field '" + field.GetDisplayName() + "' has a ByteSize of " +
                         std::to_string(field.Get_ByteSize()) + ".");
  }
}

}  // namespace vx
