// MemoryKeeper.h: keeps an object's memory while one of its members is at work.
//
// A notification may free the very object that it is sent to. Free() then tears the object down at once, as it must,
// but the member that is still running needs the memory below it until it returns. A keeper on the stack of that member
// delays the last step.
//
//   void TList::Clear() {
//     const TMemoryKeeper<TList> keep(this);
//     …                                             // calls out; whoever is called may free this list
//   }
//
//   void TList::ReleaseMemory() {                   // override of TObject
//     if (!TMemoryKeeper<TList>::Delays(*this)) TObject::ReleaseMemory();
//   }
//
// The host has members `std::int32_t keepers_ = 0; bool released_ = false;` and the keeper as its friend.
#pragma once

namespace vx {

template <class Host>
class TMemoryKeeper {
 public:
  /// A null host needs no keeping.
  explicit TMemoryKeeper(Host* host) : host_(host) {
    if (host_ != nullptr) ++host_->keepers_;
  }
  TMemoryKeeper(const TMemoryKeeper&) = delete;
  TMemoryKeeper& operator=(const TMemoryKeeper&) = delete;
  ~TMemoryKeeper() {
    if (host_ == nullptr || --host_->keepers_ > 0) return;
    if (host_->released_) host_->ReleaseMemory();
  }

  /// True if the memory is still kept; the last keeper then asks for the release again.
  static bool Delays(Host& host) {
    host.released_ = true;
    return host.keepers_ > 0;
  }

 private:
  Host* host_;
};

}  // namespace vx
