// DataSetWork.h: what keeps a data set whole while handlers do as they like. For data sets, not for their users.
#pragma once

#include <exception>
#include <utility>

#include "platform/component/MemoryKeeper.h"
#include "platform/dataset/DataSet.h"

namespace vx {

/// Runs steps that must all be done, and raises the first error of them at the end.
class TFirstError {
 public:
  template <class F>
  void Run(F&& step) noexcept {
    try {
      step();
    } catch (...) {
      if (first_ == nullptr) first_ = std::current_exception();
    }
  }
  bool Any() const { return first_ != nullptr; }
  void Raise() {
    if (first_ != nullptr) std::rethrow_exception(std::exchange(first_, nullptr));
  }

 private:
  std::exception_ptr first_;
};

/// Held by whatever calls out: keeps the set's memory and the buffers that are being looked at, and knows whether the
/// set was closed meanwhile.
class TDataSet::TWork {
 public:
  explicit TWork(TDataSet& set) : keep_(&set), set_(set), epoch_(set.epoch_) { ++set.depth_; }
  TWork(const TWork&) = delete;
  TWork& operator=(const TWork&) = delete;
  ~TWork() {
    if (--set_.depth_ == 0 && !set_.orphans_.empty()) set_.FreeOrphans();
  }
  /// Neither closed nor freed since this was made.
  bool IsOpen() const { return set_.epoch_ == epoch_ && set_.GetActive(); }
  /// The operation opens or closes the set itself.
  void NoteEpoch() { epoch_ = set_.epoch_; }

 protected:
  const TMemoryKeeper<TComponent> keep_;
  TDataSet& set_;

 private:
  std::uint32_t epoch_;
};

/// Held by each operation that somebody may call: an error if such calls are nested too deep. From then on until all of
/// them have ended every further one is refused, since each of a hundred levels may have more handlers to call.
class TDataSet::TCall : public TWork {
 public:
  explicit TCall(TDataSet& set) : TWork(set) {
    if (set.tooDeep_ || set.calls_ >= kMaxDepth) {
      set.tooDeep_ = true;
      set.RaiseError("Handlers and operations of the data set call each other without end");
    }
    ++set.calls_;
  }
  TCall(const TCall&) = delete;
  TCall& operator=(const TCall&) = delete;
  ~TCall() {
    if (--set_.calls_ == 0) set_.tooDeep_ = false;
  }
};

/// A switch of the set that is on until the scope is left.
class TSwitched {
 public:
  explicit TSwitched(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
  TSwitched(const TSwitched&) = delete;
  TSwitched& operator=(const TSwitched&) = delete;
  ~TSwitched() { flag_ = before_; }

 private:
  bool& flag_;
  bool before_;
};

}  // namespace vx
