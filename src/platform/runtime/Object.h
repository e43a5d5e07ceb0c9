// Object.h: the root of all classes, and how objects are made, freed and told apart.
//
// Objects live on the heap and are not copied. Two steps make one: the C++ constructor, which only makes members, and
// the virtual AfterConstruction(), where overridables may be called. Free() ends one in three: BeforeDestruction() may
// refuse by an exception, and the object is then still whole; TearDown() runs what a class does at its end, derived to
// base; then the memory goes. C++ destructors only release memory, and never throw.
//
//   TOwned<TVXRAMTable> table = Make<TVXRAMTable>(nullptr);   // freed by the handle
//   TVXRAMTable* other = New<TVXRAMTable>(form);              // freed by its owner, the form
//   table.release()->Free();                                  // may refuse; a handle that dies never does
//
// A handle whose object refuses to be freed takes it down all the same, by TearDown() alone, which never raises.
#pragma once

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "platform/runtime/ClassInfo.h"
#include "platform/runtime/Exceptions.h"

namespace vx {

class TFiler;  // in component/Filer.h

class TObject {
 public:
  TObject() = default;
  TObject(const TObject&) = delete;
  TObject& operator=(const TObject&) = delete;

  static const TClass& StaticClass();
  virtual const TClass& ClassType() const { return StaticClass(); }
  const std::string& ClassName() const { return ClassType().Name(); }
  bool InheritsFrom(const TClass& other) const { return ClassType().InheritsFrom(other); }

  // -- Life -----------------------------------------------------------------------------------------------------------
  /// Runs once, when the whole object is constructed. If it raises, the object is taken down and never handed out.
  virtual void AfterConstruction() {}
  /// The last chance to refuse; after an exception from here the object is whole and still its owner's.
  virtual void BeforeDestruction() {}
  /// What the class does at its end. Overriders call the inherited one last. Must not raise.
  virtual void TearDown() {}
  /// BeforeDestruction, TearDown, then the memory. Passes on what BeforeDestruction raises.
  void Free();
  /// As Free(), but an object that refuses is taken down nevertheless. For owners that can't take a no.
  void FreeAnyway() noexcept;
  /// True from the moment Free() is called. Freeing again, from a notification say, is then without effect.
  bool IsBeingFreed() const { return beingFreed_; }

 protected:
  virtual ~TObject() = default;
  /// Gives the memory back. A class whose objects may be freed inside their own notifications delays it.
  virtual void ReleaseMemory() { delete this; }

 private:
  bool beingFreed_ = false;
};

/// An object whose state can be assigned to another of its kind.
class TPersistent : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  /// Names what a stream keeps of this object beside its published properties; see component/Filer.h. Overriders call
  /// the inherited one first.
  virtual void DefineProperties(TFiler& filer) { static_cast<void>(filer); }

  /// Takes over the state of `source`. The base asks the source (AssignTo); EConvertError if neither knows the other.
  /// A null source raises too.
  virtual void Assign(const TPersistent* source);
  /// The object that this one is a part of; null for none.
  virtual TPersistent* GetOwner() const { return nullptr; }
  /// The path by which a person would find the object: the owner's path, a point, the class name.
  virtual std::string GetNamePath() const;

 protected:
  virtual void AssignTo(TPersistent* dest) const;
};

/// The deleter of TOwned.
struct TFree {
  void operator()(TObject* object) const noexcept { object->FreeAnyway(); }
};

/// Sole owner of an object. `reset()` and the end of scope never raise; `handle.release()->Free()` may.
template <class T>
using TOwned = std::unique_ptr<T, TFree>;

/// Makes an object that the handle owns.
template <class T, class... Args>
TOwned<T> Make(Args&&... args) {
  TOwned<T> object(new T(std::forward<Args>(args)...));
  if constexpr (requires { object->template NoteClass<T>(); }) object->template NoteClass<T>();  // for components
  object->AfterConstruction();
  return object;
}

/// Makes an object that `owner`, the first argument of its constructor, frees. With a null owner nobody does.
template <class T, class Owner, class... Args>
T* New(Owner* owner, Args&&... args) {
  return Make<T>(owner, std::forward<Args>(args)...).release();
}

/// Raises the cast error of the platform: names both classes.
[[noreturn]] void RaiseInvalidCast(const TObject& object, const std::string& wanted);

/// `object` as a T, or null if it is null or of another class. T may be an interface without class info.
template <class T>
T* As(TObject* object) {
  return dynamic_cast<T*>(object);
}
template <class T>
const T* As(const TObject* object) {
  return dynamic_cast<const T*>(object);
}

/// `object` as a T. A null passes as null; another class raises EInvalidCast, which names `wanted` or T's class.
template <class T>
T* Cast(TObject* object, const std::string& wanted = {}) {
  T* const as = As<T>(object);
  if (object != nullptr && as == nullptr) {
    if constexpr (std::is_base_of_v<TObject, T>)
      RaiseInvalidCast(*object, wanted.empty() ? T::StaticClass().Name() : wanted);
    else
      RaiseInvalidCast(*object, wanted);
  }
  return as;
}

/// See ClassInfo.h. Unassigned until given a class; making from an unassigned one raises ENilAccess.
template <class Base, class... Args>
class TClassOf<Base, TArguments<Args...>> {
 public:
  TClassOf() = default;
  TClassOf(std::nullptr_t) {}  // NOLINT: a null class reference is written as null

  template <class Derived>
  static TClassOf Of() {
    static_assert(std::is_base_of_v<Base, Derived>);
    TClassOf answer;
    answer.class_ = &Derived::StaticClass();
    answer.make_ = [](Args... args) -> TOwned<Base> { return vx::Make<Derived>(args...); };
    return answer;
  }

  explicit operator bool() const { return make_ != nullptr; }
  bool operator==(const TClassOf& other) const { return class_ == other.class_; }
  const TClass* Class() const { return class_; }

  TOwned<Base> Make(Args... args) const {
    if (make_ == nullptr) throw ENilAccess("class reference");
    return make_(args...);
  }

 private:
  const TClass* class_ = nullptr;
  TOwned<Base> (*make_)(Args...) = nullptr;
};

}  // namespace vx
