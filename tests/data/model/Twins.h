// Twins.h: one table of the model and one of the engine, which get the same calls and must agree after each of them.
//
//   TTwins twins("Orders");
//   twins.Do("first", [&] { pair.naive->GoToFirstRec(); }, [&] { pair.real->GoToFirstRec(); });
//   twins.Difference()   // empty, or what differs
#pragma once

#include <deque>
#include <list>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "EngineSide.h"
#include "NaiveBucketer.h"

namespace vx::naive {

/// The same cursor on both sides. The bucketers are null for a plain cursor.
struct TCursorPair {
  std::string name;
  TCursor* naive = nullptr;
  TVXRAMCursor* real = nullptr;
  TBucketer* naiveBucketer = nullptr;
  TVXRAMCursorBucketer* realBucketer = nullptr;
};

class TTwins {
 public:
  explicit TTwins(const std::string& tableName);
  ~TTwins();

  /// Runs a call on both sides. What they answer or raise is compared at once; the first difference stays.
  template <class Naive, class Real>
  void Do(const std::string& text, Naive&& naiveCall, Real&& realCall) {
    history_.push_back(text);
    const std::string expected = Outcome(naiveCall);
    const std::string got = Outcome(realCall);
    history_.back() += "  -> " + expected;
    if (expected != got && difference_.empty()) difference_ = "answers: model " + expected + ", engine " + got;
  }

  /// Opens the cursor on both sides; nothing is listed when both raise.
  void OpenPlain(TCursorDesc desc);
  void OpenBucketer(TBucketerDesc desc);
  void Close(TCursorPair& pair);
  TRecordFilterObject& NewFilterObject(const TCursorPair& pair, std::int32_t salt);

  /// Compares everything that can be seen; empty if both sides agree. The logs are emptied.
  std::string Difference();
  /// The latest calls, and the state of both sides.
  std::string Report() const;

  TTable naive;
  TOwned<TVXRAMTable> real;
  std::list<TCursorPair> cursors;

 private:
  using TRowPairs = std::unordered_map<const TVXRAMRow*, const TRow*>;

  template <class Naive, class Real>
  void Open(const TCursorDesc& desc, Naive&& openNaive, Real&& openReal);
  TComponent* NewOwner(TOwnerKind kind);
  std::string CompareLogs();
  std::string CompareTable(TRowPairs& known);
  std::string CompareCursor(const TCursorPair& pair, TRowPairs& known);
  std::string CompareBuckets(const TCursorPair& pair, TRowPairs& known);
  std::string CompareLists(const std::string& what, const TRows& expected, const TVXList& got, TRowPairs& known);
  std::string CompareRow(const TRow& expected, const TVXRAMRow* got, TRowPairs& known);
  std::string RealRowText(const TVXRAMRow* row) const;

  std::string difference_;
  std::vector<std::string> history_;
  std::deque<TRecordFilterObject> filterObjects_;
  std::vector<TOwned<TComponent>> owners_;
  std::vector<std::uint8_t> buffer_;
};

}  // namespace vx::naive
