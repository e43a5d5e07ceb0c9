// EngineSide.h: the real engine, dressed for the comparison: cursors and owners that log what they hear, values turned
// into its own.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "NaiveBucketer.h"
#include "NaiveValues.h"
#include "data/VXRAMCursorBucketer_CMP.h"
#include "data/VXRAMTable_CMP.h"

namespace vx::naive {

/// What the logging cursors and owners share: the log itself, and the name that the next cursor gets.
struct TEngineLog {
  static std::vector<std::string>& Lines();
  static std::string& NextName();
};

struct TNamed {
  virtual ~TNamed() = default;
  const std::string name = TEngineLog::NextName();
  void Log(const std::string& what) const { TEngineLog::Lines().push_back(name + " " + what); }
};

/// A cursor of the engine that writes down each notification before it reacts.
template <class Base>
class TLogging : public Base, public TNamed {
 public:
  using Base::Base;

  void FilterChange(TObject* sender) override {
    Log("filter change");
    Base::FilterChange(sender);
  }
  void StartUpdating() override {
    Log("start updating");
    Base::StartUpdating();
  }
  void EndUpdating() override {
    Log("end updating");
    Base::EndUpdating();
  }
  void RecordInsertionNotification(TVXRAMRow* row) override {
    Log("hears of new " + IdText(row));
    Base::RecordInsertionNotification(row);
  }
  void RecordDeletionNotification(TVXRAMCursor* origin, TVXRAMRow* row) override {
    const auto* named = dynamic_cast<const TNamed*>(origin);
    Log("hears of deleted " + IdText(row) + " from " + (named != nullptr ? named->name : "nobody"));
    Base::RecordDeletionNotification(origin, row);
  }
  void RecordEditionNotification(TVXRAMRow* row) override {
    Log("hears of edited " + (row != nullptr ? IdText(row) : "nothing"));
    Base::RecordEditionNotification(row);
  }

 private:
  std::string IdText(const TVXRAMRow* row) const { return std::to_string(this->Table().InternalGetRecordID(row)); }
};

/// Stands behind a record callback: the model's salt as an object.
struct TRecordFilterObject {
  TVXRAMTable* table = nullptr;
  std::string cursor;
  std::int32_t salt = 0;
  bool First(TVXRAMRow* row, std::int32_t position) { return Ask(row, position, 1); }
  bool Second(TVXRAMRow* row, std::int32_t position) { return Ask(row, position, 2); }

 private:
  bool Ask(TVXRAMRow* row, std::int32_t position, std::int32_t code) const;
};

/// An owner that writes down that it was told of a deletion.
class TLoggingOwner : public TComponent, public IRecordOwner {
 public:
  TLoggingOwner() : TComponent(nullptr) {}
  void Refresh() override { TEngineLog::Lines().push_back("owner of " + name + " refreshes"); }
  const std::string name = TEngineLog::NextName();
};

Variant ToVariant(const TValue& value);
/// A record structure of the table with these elements, their types and their bytes as they are.
void Fill(TVXRecordStruct& record, const TStruct& values);

/// "EListError: List index out of bounds (0)"; classes whose texts are the engine's own choice stand alone.
std::string ErrorText(const std::string& className, const std::string& text);

inline std::string ToText(bool value) { return value ? "true" : "false"; }
inline std::string ToText(std::int32_t value) { return std::to_string(value); }
inline std::string ToText(std::string value) { return value; }

/// What a call answers, or raises, as text.
template <class F>
std::string Outcome(F&& call) {
  try {
    if constexpr (std::is_void_v<decltype(call())>) {
      call();
      return "done";
    } else {
      return ToText(call());
    }
  } catch (const ENaive& error) {
    return ErrorText(error.className, error.what());
  } catch (const Exception& error) {
    return ErrorText(error.ClassName(), error.Message());
  }
}

}  // namespace vx::naive
