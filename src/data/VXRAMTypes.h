// VXRAMTypes.h: the vocabulary of the tables in memory: field types, states, the row, the record structure, the errors.
//
// A row is one packed block: record id (4 bytes), record status (1), then for each field in definition order one status
// byte and the value's bytes. Only pointers to rows go about (TVXRAMRow is never complete); their bytes are read and
// written through the table or a cursor. A row remembers its own size, so that a row which is older than a change of
// the definitions is never read beyond its end.
//
// A TVXRecordStruct carries a whole row's values in typed form, so that a caller needn't know the layout:
//
//   auto record = table->NewRecord();                            // every field null
//   record->Field(0).AssignText("Drill the frame");              // vxrftString
//   record->Field(1).AssignValue<double>(EncodeDate(2026, 3, 2));  // vxrftDateTime
//   cursor->InsertRecWithValues(*record, /*append=*/true);
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "platform/component/EnumInfo.h"
#include "platform/runtime/Exceptions.h"

namespace vx {

/// How the values of a field are stored in a row. The order is the ordinal and is streamed.
enum TVXRAMFieldType : std::uint8_t {
  vxrftBoolean,   ///< 1 byte, 0 is false
  vxrftCurrency,  ///< 8 bytes, IEEE double; compared and filtered as a double
  vxrftDateTime,  ///< 8 bytes, IEEE double, days since 1899-12-30
  vxrftDuration,  ///< 4 bytes, signed, seconds
  vxrftFloat,     ///< 8 bytes, IEEE double
  vxrftInteger,   ///< 4 bytes, signed
  vxrftSmallint,  ///< 2 bytes, signed
  vxrftString,    ///< a fixed slot of the field's choice; text ended by a zero byte
  vxrftWord,      ///< 2 bytes, unsigned
};
inline constexpr std::int32_t kLastFieldType = vxrftWord;

template <>
struct TEnumInfo<TVXRAMFieldType> {
  static constexpr std::string_view kTypeName = "TVXRAMFieldType";
  static constexpr std::string_view kPrefix = "vxrft";
  static constexpr std::string_view kNames[] = {"vxrftBoolean",  "vxrftCurrency", "vxrftDateTime",
                                                "vxrftDuration", "vxrftFloat",    "vxrftInteger",
                                                "vxrftSmallint", "vxrftString",   "vxrftWord"};
};

/// Bytes that a field of this type takes when its DataType is set; 0 for text, -1 for a type that isn't one.
std::int32_t DefaultByteSize(TVXRAMFieldType type);

/// Kept for its place in the row: deletion is physical, so that vxrsDeleted is never written.
enum TVXRecordStatus : std::uint8_t { vxrsActive, vxrsDeleted };
enum TVXFieldStatus : std::uint8_t { vxfsNull, vxfsAssigned };
enum TVXRAMCursorOrder : std::uint8_t { vxrcoAscending, vxrcoDescending };

template <>
struct TEnumInfo<TVXRAMCursorOrder> {
  static constexpr std::string_view kTypeName = "TVXRAMCursorOrder";
  static constexpr std::string_view kPrefix = "vxrco";
  static constexpr std::string_view kNames[] = {"vxrcoAscending", "vxrcoDescending"};
};

// -- Rows -------------------------------------------------------------------------------------------------------------

/// One row. Pointers to it come from a table; there is nothing to see in it from outside.
struct TVXRAMRow;

inline constexpr std::int32_t kRecordIdSize = 4;  ///< bytes 0 to 3
inline constexpr std::int32_t kRecordStatusOffset = 4;
inline constexpr std::int32_t kFirstFieldOffset = 5;  ///< where the first field's status byte stands
inline constexpr std::int32_t kNoRecordId = -1;

/// Where a field lies in a row, in bytes. A status offset of -1 means that there is no status byte: never null.
struct TVXRAMFieldSlot {
  std::int32_t statusOffset = -1;
  std::int32_t valueOffset = 0;
  std::int32_t size = 0;
  TVXRAMFieldType type = vxrftInteger;

  bool operator==(const TVXRAMFieldSlot&) const = default;
};

// -- Record structure -------------------------------------------------------------------------------------------------

/// One field's value on its way into a table.
struct TVXFieldStruct {
  bool IsNull = true;
  TVXRAMFieldType FieldType = vxrftBoolean;
  std::uint8_t Value[8] = {};  ///< every type but vxrftString, encoded as in the row
  char* StringPtr = nullptr;   ///< vxrftString: a zero-filled buffer of StringSize bytes, owned by the record structure
  std::int32_t StringSize = 0;

  /// Stores a value in its row encoding (std::uint8_t, std::int16_t, std::uint16_t, std::int32_t or double) and clears
  /// IsNull.
  template <class T>
  void AssignValue(T value) {
    static_assert(sizeof(T) <= sizeof Value);
    std::memcpy(Value, &value, sizeof value);
    IsNull = false;
  }
  /// Stores text, cut at a code point so that it ends by a zero byte within the buffer, and clears IsNull. False if it
  /// was cut.
  bool AssignText(std::string_view text);
};

/// Made by a table, for its definitions at that moment.
struct TVXRecordStruct {
  std::int32_t FieldCount = 0;               ///< what the tables check; may be written
  TVXFieldStruct** FieldArrayPtr = nullptr;  ///< `ElementCount` pointers to elements
  std::int32_t ElementCount = 0;             ///< how many elements there are; not to be written

  /// The element of a field; outside 0 to ElementCount - 1 raises ENilAccess.
  TVXFieldStruct& Field(std::int32_t index) const {
    if (index < 0 || index >= ElementCount || FieldArrayPtr == nullptr || FieldArrayPtr[index] == nullptr)
      RaiseNoField(index);
    return *FieldArrayPtr[index];
  }

 private:
  [[noreturn]] static void RaiseNoField(std::int32_t index);
};

/// Releases a record structure with all its elements and buffers.
struct TFreeRecordStruct {
  void operator()(TVXRecordStruct* record) const noexcept;
};
using TOwnedRecordStruct = std::unique_ptr<TVXRecordStruct, TFreeRecordStruct>;

// -- Errors -----------------------------------------------------------------------------------------------------------

class ERAMTableError : public TNamedException<ERAMTableError> {
 public:
  static constexpr const char* kName = "ERAMTableError";
  using TNamedException::TNamedException;
};

/// A change of the field definitions while the base index holds rows.
class ERTENoFieldDefChangesAllowed : public TNamedException<ERTENoFieldDefChangesAllowed, ERAMTableError> {
 public:
  static constexpr const char* kName = "ERTENoFieldDefChangesAllowed";
  using TNamedException::TNamedException;
};

/// A change of the index definitions while the base index holds rows.
class ERTENoIndexDefChangesAllowed : public TNamedException<ERTENoIndexDefChangesAllowed, ERAMTableError> {
 public:
  static constexpr const char* kName = "ERTENoIndexDefChangesAllowed";
  using TNamedException::TNamedException;
};

/// A ByteSize for a field whose type tells it.
class ERTENoByteSizeChangesAllowed : public TNamedException<ERTENoByteSizeChangesAllowed, ERAMTableError> {
 public:
  static constexpr const char* kName = "ERTENoByteSizeChangesAllowed";
  using TNamedException::TNamedException;
};

/// A field type that isn't one, or can't be sorted on.
class ERTEInvalidFieldType : public TNamedException<ERTEInvalidFieldType, ERAMTableError> {
 public:
  static constexpr const char* kName = "ERTEInvalidFieldType";
  using TNamedException::TNamedException;
};

/// An index number that no definition has.
class ERTENoSuchIndex : public TNamedException<ERTENoSuchIndex, ERAMTableError> {
 public:
  static constexpr const char* kName = "ERTENoSuchIndex";
  using TNamedException::TNamedException;
};

/// A field name that no definition has.
class ERTEFieldDoesNotExist : public TNamedException<ERTEFieldDoesNotExist, ERAMTableError> {
 public:
  static constexpr const char* kName = "ERTEFieldDoesNotExist";
  using TNamedException::TNamedException;
};

/// A buffer that can't take the field's value; the size variable holds the size that is needed.
class ERTEBufferTooSmall : public TNamedException<ERTEBufferTooSmall, ERAMTableError> {
 public:
  static constexpr const char* kName = "ERTEBufferTooSmall";
  using TNamedException::TNamedException;
};

}  // namespace vx
