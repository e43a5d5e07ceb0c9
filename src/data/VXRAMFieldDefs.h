// VXRAMFieldDefs.h: the fields of a table, and where each lies in a row.
//
// A table owns one TVXRAMFieldDefs, which owns its definitions. The layout follows from the definitions alone, in their
// order: five bytes of head, then for each field one status byte and ByteSize value bytes, without gaps. It is computed
// once for each change.
//
//   auto* task = table->Get_FieldDefs()->Add();
//   task->Set_Name("Task");
//   task->Set_DataType(vxrftString);              // ByteSize is now 0: a text field is unusable until it has one
//   task->Set_ByteSize(20);                       // 19 bytes of text and the closing zero
//
// Errors. While the base index of the table holds rows (Get_RecCount above 0), every change of a type or size, and
// adding, assigning or freeing a definition, raises ERTENoFieldDefChangesAllowed and changes nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "data/VXRAMTypes.h"
#include "platform/component/Collection.h"

namespace vx {

class TVXRAMFieldDef;
class TVXRAMFieldDefs;
class TVXRAMTable;

/// A reference to a field definition that becomes null when the definition is freed. A value; O(1).
class TVXRAMFieldRef {
 public:
  TVXRAMFieldRef() = default;
  TVXRAMFieldRef(TVXRAMFieldDef* field);  // NOLINT: stands wherever a pointer stood
  TVXRAMFieldDef* Get() const { return self_ == nullptr ? nullptr : *self_; }
  /// There was a definition, and it was freed.
  bool IsLost() const { return self_ != nullptr && *self_ == nullptr; }

 private:
  std::shared_ptr<TVXRAMFieldDef*> self_;
};

class TVXRAMFieldDef : public TCollectionItem {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  /// Boolean, 1 byte, no name.
  explicit TVXRAMFieldDef(TCollection* collection);

  /// The name, or the default display name if it is empty.
  std::string GetDisplayName() const override;

  // -- Published, in this order ---------------------------------------------------------------------------------------
  std::int32_t Get_ByteSize() const { return byteSize_; }
  /// For text: any value is stored, none is checked before rows are made. For other types raises
  /// ERTENoByteSizeChangesAllowed, unless the table is being loaded.
  void Set_ByteSize(std::int32_t value);
  TVXRAMFieldType Get_DataType() const { return dataType_; }
  /// Sets ByteSize too (text: 0), unless the table is being loaded: streams bring the size first. A value that is no
  /// type raises ERTEInvalidFieldType, after it was stored.
  void Set_DataType(TVXRAMFieldType value);
  const std::string& Get_Name() const { return name_; }
  void Set_Name(const std::string& value);

  // -- Layout, in bytes from the row's beginning ----------------------------------------------------------------------
  std::int32_t Get_StatusOffset() const;
  std::int32_t Get_ValueOffset() const { return Get_StatusOffset() + 1; }
  TVXRAMFieldSlot Get_Slot() const;

  TVXRAMFieldDefs* Get_Owner() const;
  /// The table of the owner; null outside of one.
  TVXRAMTable* Get_Table() const;

  /// Order of the latest sort that named the field. Scratch of the sorts.
  TVXRAMCursorOrder Get_SortOrder() const { return sortOrder_; }
  void Set_SortOrder(TVXRAMCursorOrder value) { sortOrder_ = value; }

  void BeforeDestruction() override;
  void TearDown() override;

 private:
  friend class TVXRAMFieldDefs;
  friend class TVXRAMFieldRef;

  void StoreByteSize(std::int32_t value);
  /// Type, size and name as they are, without any check.
  void TakeOver(const TVXRAMFieldDef& other);

  std::int32_t byteSize_ = 1;
  TVXRAMFieldType dataType_ = vxrftBoolean;
  std::string name_;
  TVXRAMCursorOrder sortOrder_ = vxrcoAscending;
  std::shared_ptr<TVXRAMFieldDef*> self_;
};

class TVXRAMFieldDefs : public TCollection {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TVXRAMFieldDefs(TVXRAMTable* table);
  /// For collections of another item class.
  TVXRAMFieldDefs(TVXRAMTable* table, TClassOf<TCollectionItem> itemClass);

  /// Copies size, type and name of each definition of another TVXRAMFieldDefs; anything else raises.
  void Assign(const TPersistent* source) override;
  TPersistent* GetOwner() const override;

  TVXRAMFieldDef* Add();
  TVXRAMFieldDef* Get_Item(std::int32_t index) const;
  void Set_Item(std::int32_t index, const TVXRAMFieldDef* value);

  TVXRAMTable* Get_Table() const { return table_; }

  // -- Layout ---------------------------------------------------------------------------------------------------------
  /// One slot a field, in order. O(1) between changes.
  const std::vector<TVXRAMFieldSlot>& Get_Slots() const {
    if (!layoutIsKnown_) ComputeLayout();
    return slots_;
  }
  /// Bytes of a row.
  std::int32_t Get_RecSize() const;
  /// Raises ERAMTableError that names the field if a size is negative or the row would be longer than 2^31 - 1 bytes.
  void CheckLayout() const;
  void LayoutChanged();
  /// Raised by every change of the definitions: who keeps slots looks here whether they still hold.
  std::uint64_t Get_LayoutChanges() const { return layoutChanges_; }

 protected:
  void ItemsMoved() override { LayoutChanged(); }

 private:
  void ComputeLayout() const;

  TVXRAMTable* table_;
  std::uint64_t layoutChanges_ = 0;
  mutable bool layoutIsKnown_ = false;
  mutable bool layoutIsSound_ = false;
  mutable std::int32_t recSize_ = kFirstFieldOffset;
  mutable std::vector<TVXRAMFieldSlot> slots_;
};

}  // namespace vx
