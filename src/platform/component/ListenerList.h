// ListenerList.h: a list that may change while it is being told something.
//
// Listeners are told in the order in which they stand. During a round a listener may leave, make another leave, join,
// or end the list itself: nobody is called twice, nobody after leaving, who joins is first called in the next round,
// and the end of the list ends the round. Rounds may be nested.
//
//   TListenerList<TCursor> cursors;
//   cursors.ForEach([&](TCursor& each) { each.RowInserted(row); });
//
// The list owns nothing. Cost: Add O(1), a step of a round O(1), IndexOf and Remove O(n). The search begins at both
// ends, so that taking down last to first is O(1) each, and first to last the moving of the pointers behind.
#pragma once

#include <cstddef>
#include <vector>

namespace vx {

template <class T>
class TListenerList {
 public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  TListenerList() = default;
  TListenerList(const TListenerList&) = delete;
  TListenerList& operator=(const TListenerList&) = delete;
  ~TListenerList() {
    for (TRound* const round : rounds_) round->list = nullptr;
  }

  // -- Reading -------------------------------------------------------------------------------------------------------
  std::size_t Count() const { return items_.size(); }
  bool Empty() const { return items_.empty(); }
  T* operator[](std::size_t index) const { return items_[index]; }
  T* Last() const { return items_.back(); }
  std::size_t IndexOf(const T* item) const {
    for (std::size_t front = 0, back = items_.size(); front < back; ++front) {
      if (items_[--back] == item) return back;
      if (items_[front] == item) return front;
    }
    return kNone;
  }
  bool Contains(const T* item) const { return IndexOf(item) != kNone; }

  // -- Changing ------------------------------------------------------------------------------------------------------
  void Add(T* item) { items_.push_back(item); }
  /// Answers false if it wasn't there.
  bool Remove(const T* item) {
    const std::size_t at = IndexOf(item);
    if (at == kNone) return false;
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
    for (TRound* const round : rounds_) {
      if (at < round->next) --round->next;
      if (at < round->end) --round->end;
    }
    return true;
  }

  // -- Telling -------------------------------------------------------------------------------------------------------
  /// Calls `tell` with each listener. What it raises ends the round and passes on.
  template <class F>
  void ForEach(F&& tell) const {
    TRound round(this);
    while (round.list != nullptr && round.next < round.end) tell(*items_[round.next++]);
  }

 private:
  struct TRound {
    explicit TRound(const TListenerList* host) : list(host), end(host->items_.size()) { list->rounds_.push_back(this); }
    TRound(const TRound&) = delete;
    TRound& operator=(const TRound&) = delete;
    ~TRound() {
      if (list != nullptr) list->rounds_.pop_back();  // rounds end in the reverse order of their beginning
    }
    const TListenerList* list;  // null once the list has ended
    std::size_t next = 0;
    std::size_t end;
  };

  std::vector<T*> items_;
  mutable std::vector<TRound*> rounds_;  // those under way
};

}  // namespace vx
