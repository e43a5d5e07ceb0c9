// DataSetBuffers.cpp: the buffers around the active record, and moving among the records.
//
// buffers_ holds recordCount_ records in the order of the set, then buffers without one; there is always at least one
// of these, the spare, into which the next record is read. Only when that has succeeded does the spare take its place
// among the records, and the record that falls off at the other end becomes the spare.
#include <algorithm>

#include "platform/dataset/DataLink.h"
#include "platform/dataset/DataSet.h"
#include "platform/dataset/DataSetWork.h"

namespace vx {

namespace {

constexpr std::int32_t kLeastBuffers = 2;

}  // namespace

// -- Buffers ----------------------------------------------------------------------------------------------------------

/// All of them, or as many as before.
void TDataSet::AllocateBuffers(std::int32_t count) {
  const std::size_t former = buffers_.size(), wished = static_cast<std::size_t>(count) + 1;
  buffers_.reserve(wished);
  orphans_.reserve(orphans_.size() + wished);  // FreeBuffers can't fail
  try {
    while (buffers_.size() < wished) buffers_.push_back(AllocRecordBuffer());
  } catch (...) {
    FreeBuffers(former);
    throw;
  }
  bufferCount_ = count;
}

/// All but the first `kept` ones. An operation that is under way may still be looking at them: then they go at its end.
void TDataSet::FreeBuffers(std::size_t kept) noexcept {
  while (buffers_.size() > kept) {
    orphans_.push_back(buffers_.back());
    buffers_.pop_back();
  }
  bufferCount_ = std::max(static_cast<std::int32_t>(kept) - 1, 0);
  if (depth_ == 0) FreeOrphans();
}

void TDataSet::FreeOrphans() noexcept {
  TFirstError dropped;
  for (; !orphans_.empty(); orphans_.pop_back()) dropped.Run([&] { FreeRecordBuffer(orphans_.back()); });
}

char* TDataSet::ActiveBuffer() const {
  if (buffers_.empty()) RaiseError("Not possible while the data set is closed");
  return buffers_[static_cast<std::size_t>(activeRecord_)];
}

void TDataSet::ClearBuffers() {
  recordCount_ = 0;
  activeRecord_ = 0;
  currentRecord_ = -1;
  bof_ = eof_ = true;
}

/// The first buffer holds the only record.
void TDataSet::ActivateBuffers() {
  recordCount_ = 1;
  activeRecord_ = 0;
  currentRecord_ = 0;
  bof_ = eof_ = false;
}

/// Takes a buffer out and puts it in at `to`; those between make room.
void TDataSet::MoveBuffer(std::int32_t from, std::int32_t to) {
  const auto at = buffers_.begin();
  if (from < to)
    std::rotate(at + from, at + from + 1, at + to + 1);
  else if (from > to)
    std::rotate(at + to, at + from, at + from + 1);
}

/// Makes the cursor stand where the record of that buffer is; of a new one, where it would come to be.
void TDataSet::SetCurrentRecord(std::int32_t index) {
  char* const buffer = buffers_[static_cast<std::size_t>(index)];
  const TBookmarkFlag flag = GetBookmarkFlag(buffer);
  if (currentRecord_ == index && (flag != bfCurrent || IsCursorOn(buffer))) return;
  currentRecord_ = -1;
  switch (flag) {
    case bfCurrent:
      InternalSetToRecord(buffer);
      break;
    case bfBOF:
      InternalFirst();
      break;
    case bfEOF:
      InternalLast();
      break;
    case bfInserted:
      if (index + 1 < recordCount_) InternalSetToRecord(buffers_[static_cast<std::size_t>(index) + 1]);
      break;
  }
  currentRecord_ = index;
}

void TDataSet::UpdateCursorPos() {
  if (recordCount_ > 0) SetCurrentRecord(activeRecord_);
}

/// Into the spare buffer. Whoever calculates fields may close or free the set: then there is no buffer any more. One
/// that is open again has others, and what the caller knows of them isn't so.
bool TDataSet::Read(TGetMode mode, bool check) {
  if (buffers_.empty()) return false;
  const std::uint32_t epoch = epoch_;
  const TGetResult result = GetRecord(buffers_[static_cast<std::size_t>(recordCount_)], mode, check);
  if (epoch == epoch_) return result == grOK;
  if (GetActive()) RaiseError("The data set was opened anew while a record was read");
  return false;
}

bool TDataSet::GetNextRecord() {
  if (recordCount_ > 0) SetCurrentRecord(recordCount_ - 1);
  currentRecord_ = -1;
  if (!Read(gmNext, true)) return false;
  if (recordCount_ == 0)
    ActivateBuffers();
  else if (recordCount_ < bufferCount_)
    ++recordCount_;
  else
    MoveBuffer(0, recordCount_);
  currentRecord_ = recordCount_ - 1;
  return true;
}

bool TDataSet::GetPriorRecord() {
  if (recordCount_ > 0) SetCurrentRecord(0);
  currentRecord_ = -1;
  if (!Read(gmPrior, true)) return false;
  if (recordCount_ == 0) {
    ActivateBuffers();
  } else {
    MoveBuffer(recordCount_, 0);
    if (recordCount_ < bufferCount_) {
      ++recordCount_;
      ++activeRecord_;
    }
  }
  currentRecord_ = 0;
  return true;
}

std::int32_t TDataSet::GetNextRecords() {
  std::int32_t count = 0;
  while (recordCount_ < bufferCount_ && GetNextRecord()) ++count;
  return count;
}

std::int32_t TDataSet::GetPriorRecords() {
  std::int32_t count = 0;
  while (recordCount_ < bufferCount_ && GetPriorRecord()) ++count;
  return count;
}

// -- Their number -----------------------------------------------------------------------------------------------------

std::int32_t TDataSet::WishedBufferCount() const {
  std::int32_t count = kLeastBuffers;
  sources_.ForEach([&](const TDataSource& source) { count = std::max(count, source.WishedBufferCount()); });
  return count;
}

/// One link wishes for another number of buffers, 0 standing for one that came or went. The wishes of all are gone
/// through only where this one may have decided, or decides now.
void TDataSet::WishChanged(std::int32_t former, std::int32_t now) {
  const bool mayHaveDecided = former >= bufferCount_ && former > kLeastBuffers;
  if (now > bufferCount_ || mayHaveDecided) UpdateBufferCount();
}

void TDataSet::UpdateBufferCount() {
  if (!GetActive() || buffers_.empty()) return;
  if (state_ > dsSetKey) {  // in a handler that is asked while a record is read: the buffers stay as they are
    countWaits_ = refreshWaits_ = true;
    return;
  }
  const std::int32_t count = WishedBufferCount();
  if (count == bufferCount_) return;
  const TCall work(*this);
  const TWindows before = Windows();
  TFirstError error;
  error.Run([&] { count < bufferCount_ ? ShrinkBuffers(count) : GrowBuffers(count); });
  if (work.IsOpen()) error.Run([&] { TellChangedWindows(before, work); });
  error.Raise();
}

/// The first record that each link shows, and how many it shows.
TDataSet::TWindows TDataSet::Windows() const {
  TWindows windows;
  sources_.ForEach([&](TDataSource& source) {
    source.links_.ForEach([&](TDataLink& link) { windows.emplace(&link, WindowOf(link)); });
  });
  return windows;
}

TDataSet::TWindow TDataSet::WindowOf(const TDataLink& link) const {
  const std::int32_t shown = link.RecordCount();
  return {shown > 0 ? buffers_[static_cast<std::size_t>(link.firstRecord_)] : nullptr, shown};
}

/// Tells the links whose windows show other records than before: telling all would post what a detail edits.
void TDataSet::TellChangedWindows(const TWindows& before, const TWork& work) {
  TFirstError error;
  sources_.ForEach([&](TDataSource& source) {
    source.links_.ForEach([&](TDataLink& link) {
      if (!work.IsOpen()) return;
      link.UpdateRange();
      const auto at = before.find(&link);
      if (at != before.end() && at->second != WindowOf(link) && disableCount_ == 0)
        error.Run([&] { link.DataEvent(deDataSetChange, {}); });
    });
  });
  error.Raise();
}

void TDataSet::GrowBuffers(std::int32_t count) {
  const TWork work(*this);
  AllocateBuffers(count);
  // Else they are filled when it browses again.
  if ((state_ != dsBrowse && state_ != dsEdit) || recordCount_ == 0 || refreshWaits_) return;
  const bool wasBof = bof_, wasEof = eof_;
  const std::int32_t active = activeRecord_;
  TFirstError error;
  error.Run([&] {
    GetNextRecords();
    GetPriorRecords();
  });
  if (work.IsOpen()) {
    ShiftLinks(activeRecord_ - active);
    bof_ = wasBof;
    eof_ = wasEof;
  }
  error.Raise();
}

void TDataSet::ShrinkBuffers(std::int32_t count) {
  // The active record stays, and so does the one before which a new one is being inserted.
  const bool needsNext = activeRecord_ + 1 < recordCount_ && GetBookmarkFlag(ActiveBuffer()) == bfInserted;
  const std::int32_t dropped = std::max(activeRecord_ + (needsNext ? 1 : 0) - count + 1, 0);
  std::rotate(buffers_.begin(), buffers_.begin() + dropped, buffers_.end());
  activeRecord_ -= dropped;
  currentRecord_ = -1;
  recordCount_ = std::min(recordCount_ - dropped, count);
  ShiftLinks(-dropped);
  FreeBuffers(static_cast<std::size_t>(count) + 1);
}

/// The records of the buffers have other places: the windows of the links go with them.
void TDataSet::ShiftLinks(std::int32_t distance) {
  if (distance == 0) return;
  sources_.ForEach([&](TDataSource& source) {
    source.links_.ForEach([&](TDataLink& link) { link.firstRecord_ = std::max(link.firstRecord_ + distance, 0); });
  });
}

// -- Fetching anew ----------------------------------------------------------------------------------------------------

/// Reads the record on which the cursor stands, or one beside it, into the spare buffer.
bool TDataSet::FetchCurrent(bool exact) {
  currentRecord_ = -1;
  if (Read(gmCurrent, false)) return true;
  if (exact && GetActive()) RaiseError("Record not found");
  return Read(gmNext, false) || Read(gmPrior, false);
}

void TDataSet::CheckCanFetch() const {
  CheckActive();
  if (state_ > dsSetKey || buffers_.empty()) RaiseError("No record can be fetched in the state " + EnumText(state_));
}

void TDataSet::Refetch(TResyncMode mode) {
  const TWork work(*this);
  CheckCanFetch();
  if (!FetchCurrent(mode.Has(rmExact))) {
    ClearBuffers();
    return;
  }
  std::int32_t before = mode.Has(rmCenter) ? (bufferCount_ - 1) / 2 : std::min(activeRecord_, bufferCount_ - 1);
  MoveBuffer(recordCount_, 0);
  ActivateBuffers();
  while (before > 0 && GetPriorRecord()) --before;
  GetNextRecords();
  GetPriorRecords();
}

void TDataSet::Resync(TResyncMode mode) {
  const TCall work(*this);
  Refetch(mode);
  DataEvent(deDataSetChange);
}

/// The cursor comes to stand on the active record; where that is gone, on the nearest that is still there of those that
/// the buffers know.
void TDataSet::StandNear() {
  const auto stands = [this](std::int32_t index) {
    char* const buffer = buffers_[static_cast<std::size_t>(index)];
    if (GetBookmarkFlag(buffer) != bfCurrent) return false;
    InternalSetToRecord(buffer);
    return Read(gmCurrent, false);
  };
  currentRecord_ = -1;
  if (recordCount_ == 0) return InternalFirst();
  for (std::int32_t i = activeRecord_; i < recordCount_; ++i)
    if (stands(i)) return;
  for (std::int32_t i = activeRecord_ - 1; i >= 0 && i < recordCount_; --i) {
    if (!stands(i)) continue;
    Read(gmNext, false);  // what came behind the one that is gone
    return;
  }
}

// -- Moving -----------------------------------------------------------------------------------------------------------

/// A move is done, perhaps not to its end: those who show it hear of it all the same.
void TDataSet::FinishMove(TFirstError& error, TDataEvent event, std::int32_t distance) {
  const TWork work(*this);
  if (!sources_.Empty()) error.Run([&] { DataEvent(event, distance); });
  if (work.IsOpen()) error.Run([&] { DoAfterScroll(); });
  error.Raise();
}

void TDataSet::First() { GoToEnd(false); }
void TDataSet::Last() { GoToEnd(true); }

void TDataSet::GoToEnd(bool last) {
  const TCall work(*this);
  CheckBrowseMode();
  DoBeforeScroll();
  TFirstError error;
  error.Run([&] {
    last ? InternalLast() : InternalFirst();
    ClearBuffers();
    last ? GetPriorRecord() : GetNextRecord();
    last ? GetPriorRecords() : GetNextRecords();
    (last ? eof_ : bof_) = true;
  });
  if (work.IsOpen()) return FinishMove(error, deDataSetChange, 0);
  error.Raise();
}

std::int32_t TDataSet::MoveBy(std::int32_t distance) {
  const TCall work(*this);
  CheckBrowseMode();
  if (distance == 0 || (distance > 0 ? eof_ : bof_)) return 0;
  DoBeforeScroll();
  if (recordCount_ == 0) return 0;
  bof_ = eof_ = false;
  const std::int32_t count = recordCount_;
  std::int32_t moved = 0, shift = 0;
  TFirstError error;
  error.Run([&] { moved = distance > 0 ? StepForward(distance, shift) : StepBack(distance, shift); });
  if (work.IsOpen())
    FinishMove(error, count == recordCount_ ? deDataSetScroll : deDataSetChange, shift);
  else
    error.Raise();
  return moved;
}

/// `shift` is how far the records have moved in the buffers.
std::int32_t TDataSet::StepForward(std::int32_t distance, std::int32_t& shift) {
  std::int32_t moved = 0;
  for (; moved < distance; ++moved) {
    if (activeRecord_ < recordCount_ - 1) {
      ++activeRecord_;
      continue;
    }
    const bool full = recordCount_ == bufferCount_;
    if (!GetNextRecord()) {
      eof_ = true;
      break;
    }
    activeRecord_ = recordCount_ - 1;
    if (full) --shift;
  }
  return moved;
}

std::int32_t TDataSet::StepBack(std::int32_t distance, std::int32_t& shift) {
  std::int32_t moved = 0;
  for (; moved > distance; --moved) {
    if (activeRecord_ > 0) {
      --activeRecord_;
      continue;
    }
    if (!GetPriorRecord()) {
      bof_ = true;
      break;
    }
    activeRecord_ = 0;
    ++shift;
  }
  return moved;
}

// -- Bookmarks --------------------------------------------------------------------------------------------------------

TBookmark TDataSet::GetBookmark() {
  char* const buffer = state_ == dsCalcFields && calcBuffer_ != nullptr ? calcBuffer_ : ActiveBuffer();
  if ((buffer != calcBuffer_ && recordCount_ == 0) || bookmarkSize_ <= 0 || GetBookmarkFlag(buffer) != bfCurrent)
    return TBookmark();
  std::string bytes(static_cast<std::size_t>(bookmarkSize_), '\0');
  GetBookmarkData(buffer, bytes.data());
  return TBookmark(std::move(bytes));
}

void TDataSet::GotoBookmark(const TBookmark& bookmark) {
  if (bookmark.IsNull()) return;
  const TCall work(*this);
  const std::string bytes = bookmark.Bytes();  // a handler may change the caller's
  CheckBrowseMode();
  if (std::ssize(bytes) != bookmarkSize_) RaiseError("The bookmark isn't one of this data set");
  if (!BookmarkValid(TBookmark(bytes))) RaiseError("Record not found");
  DoBeforeScroll();
  currentRecord_ = -1;
  InternalGotoBookmark(bytes.data());
  Refetch({rmExact, rmCenter});
  TFirstError error;
  if (work.IsOpen()) FinishMove(error, deDataSetChange, 0);
}

std::string TDataSet::GetBookmarkStr() { return GetBookmark().Bytes(); }

void TDataSet::SetBookmarkStr(const std::string& bookmark) {
  if (!bookmark.empty()) GotoBookmark(TBookmark(bookmark));
}

bool TDataSet::BookmarkValid(const TBookmark& bookmark) { return !bookmark.IsNull(); }

std::int32_t TDataSet::CompareBookmarks(const TBookmark& a, const TBookmark& b) {
  const int order = a.Bytes().compare(b.Bytes());
  return (order > 0) - (order < 0);
}

}  // namespace vx
