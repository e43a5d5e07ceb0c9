// NaiveTypes.h: the small words of the naive model of the data engine.
//
// The model is the engine told once more, as plainly as can be: vectors of rows, walks instead of look-ups, every rule
// a few lines. It shares no code with the engine, so that a mistake has to be made twice, by two people, to stay
// unseen. Slow on purpose.
//
// Rows never die here: a released row is only marked, so the model may always look at it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace vx::naive {

/// Field types; the order is that of the engine's enumeration.
enum class TType : std::uint8_t { Boolean, Currency, DateTime, Duration, Float, Integer, Smallint, String, Word };
enum class TOrder : std::uint8_t { Ascending, Descending };
enum class TBucketType : std::uint8_t { Cumulate, Average, Min, Max, First, Last };
enum class TGroupMode : std::uint8_t { Day, Week, Month, Year, Century };

using TBytes = std::vector<std::uint8_t>;

/// An error as the engine would raise it: class and text.
struct ENaive : std::runtime_error {
  ENaive(std::string raisedClass, const std::string& text)
      : std::runtime_error(text), className(std::move(raisedClass)) {}
  std::string className;
};

/// The range error of every list.
[[noreturn]] inline void RaiseRange(std::int64_t position) {
  throw ENaive("EListError", "List index out of bounds (" + std::to_string(position) + ")");
}
[[noreturn]] inline void RaiseNil() { throw ENaive("ENilAccess", ""); }

struct TField {
  bool assigned = false;
  TBytes bytes;
};

struct TRow {
  std::int32_t id = 0;
  std::vector<TField> fields;
  bool released = false;
};
using TRows = std::vector<TRow*>;

struct TFieldDef {
  std::string name;
  TType type = TType::Boolean;
  std::int32_t size = 1;
  TOrder sortOrder = TOrder::Ascending;  ///< scratch of the sort
};

/// One element of a record structure: what a caller hands over for one field.
struct TElement {
  bool isNull = true;
  TType type = TType::Boolean;
  TBytes bytes;
};
using TStruct = std::vector<TElement>;

struct TNull {};
struct TDate {
  double days = 0;
};
/// Unassigned, Null, Boolean, integer, double, date, text.
using TValue = std::variant<std::monostate, TNull, bool, std::int32_t, double, TDate, std::string>;

}  // namespace vx::naive
