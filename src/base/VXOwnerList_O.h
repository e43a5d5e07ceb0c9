// VXOwnerList_O.h: a list that owns its objects and frees them.
//
//   const auto shapes = Make<TVXOwnerList>();
//   shapes->Add(Make<TShape>().release());      // 0; the list's from here on
//   shapes->Delete(0);                          // freed
//
// Errors. A position outside raises EListError and changes nothing. An object that refuses to be freed stays in the
// list, where it stood, and what it raises is passed on. Only the end of the list takes it down nevertheless.
//
// An object may take itself out of the list while it is freed. A null is an entry like any other; freeing it does
// nothing. An object must not stand in a list twice.
#pragma once

#include <cstdint>

#include "platform/runtime/List.h"
#include "platform/runtime/Object.h"

namespace vx {

class TVXOwnerList : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TVXOwnerList();
  void TearDown() override;

  std::int32_t GetCount() const { return list_->Count(); }
  TObject* GetItem(std::int32_t index) const { return static_cast<TObject*>(list_->Items(index)); }
  std::int32_t IndexOf(const TObject* object) const { return list_->IndexOf(object); }

  /// Takes the object over and answers its position.
  std::int32_t Add(TObject* object) { return list_->Add(object); }
  /// Frees the present object and puts the new one in its place. With the one that is there already, nothing happens.
  void SetItem(std::int32_t index, TObject* object);
  /// Takes the object out and frees it.
  virtual void Delete(std::int32_t index);
  /// Takes the object out, frees it and answers where it stood; -1 if it wasn't there.
  std::int32_t Remove(TObject* object);
  /// Deletes from last to first, each by Delete.
  void Clear();

 private:
  TOwned<TList> list_;
};

}  // namespace vx
