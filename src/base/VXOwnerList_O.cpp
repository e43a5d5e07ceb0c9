#include "base/VXOwnerList_O.h"

#include <algorithm>

namespace vx {

namespace {

void FreeObject(TObject* object) {
  if (object != nullptr) object->Free();
}

}  // namespace

const TClass& TVXOwnerList::StaticClass() {
  static const TClass info("TVXOwnerList", &TObject::StaticClass());
  return info;
}

TVXOwnerList::TVXOwnerList() : list_(Make<TList>()) {}

void TVXOwnerList::TearDown() {
  try {
    Clear();
  } catch (...) {  // an object that refuses: from here it has no choice
  }
  while (GetCount() > 0) {
    const TOwned<TObject> last(GetItem(GetCount() - 1));
    list_->Delete(GetCount() - 1);
  }
  TObject::TearDown();
}

void TVXOwnerList::SetItem(std::int32_t index, TObject* object) {
  TObject* const present = GetItem(index);
  if (present == object) return;
  FreeObject(present);
  if (index < GetCount() && GetItem(index) == present)
    list_->Put(index, object);
  else  // it took itself out
    list_->Insert(std::min(index, GetCount()), object);
}

void TVXOwnerList::Delete(std::int32_t index) {
  TObject* const object = GetItem(index);
  list_->Delete(index);
  try {
    FreeObject(object);
  } catch (...) {
    list_->Insert(std::min(index, GetCount()), object);
    throw;
  }
}

std::int32_t TVXOwnerList::Remove(TObject* object) {
  const std::int32_t at = IndexOf(object);
  if (at >= 0) Delete(at);
  return at;
}

void TVXOwnerList::Clear() {
  for (std::int32_t i = GetCount() - 1; i >= 0; --i)
    if (i < GetCount()) Delete(i);  // one object's end may have taken others along
}

}  // namespace vx
