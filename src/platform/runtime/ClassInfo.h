// ClassInfo.h: what a class tells of itself while the program runs.
//
// Each class has one TClass, built at its first use and never freed: name, ancestor, factory, and (given by the floor
// above) its published properties. A class answers it twice: StaticClass() of the class, ClassType() of an object.
//
//   const TClass& TRule::StaticClass() {
//     static const TClass info("TRule", &TPersistent::StaticClass());
//     return info;
//   }
//
// TClassOf<Base> is a value that stands for "Base or a class derived from it" and makes objects of it; it is what other
// systems call a class reference. Base says which arguments its constructors take:
//
//   class TShape : public TObject { public: using TClassArguments = TArguments<TBoard*, int>; … };
//   TClassOf<TShape> wanted = TClassOf<TShape>::Of<TCircle>();
//   TOwned<TShape> shape = wanted.Make(board, 7);       // a TCircle
#pragma once

#include <memory>
#include <string>
#include <utility>

namespace vx {

class TObject;
class TPropertyTable;  // in component/Published.h

class TClass {
 public:
  using TFactory = TObject* (*)();

  /// `ancestor` is null for the root alone; `create` is null for a class that can't be made without arguments.
  TClass(std::string name, const TClass* ancestor, TFactory create = nullptr,
         std::shared_ptr<const TPropertyTable> properties = nullptr)
      : name_(std::move(name)), ancestor_(ancestor), create_(create), properties_(std::move(properties)) {}
  TClass(const TClass&) = delete;
  TClass& operator=(const TClass&) = delete;

  const std::string& Name() const { return name_; }
  const TClass* Ancestor() const { return ancestor_; }
  /// True for the class itself and all that derive from it. O(depth).
  bool InheritsFrom(const TClass& other) const {
    const TClass* at = this;
    while (at != nullptr && at != &other) at = at->ancestor_;
    return at != nullptr;
  }
  /// Makes an object without arguments and without an owner; null for a class that has no such factory.
  TFactory Factory() const { return create_; }
  /// The properties that this class itself publishes, not those of its ancestors; null for none.
  const TPropertyTable* Properties() const { return properties_.get(); }

 private:
  std::string name_;
  const TClass* ancestor_;
  TFactory create_;
  std::shared_ptr<const TPropertyTable> properties_;
};

/// The argument types of a family's constructors; see TClassOf.
template <class... Args>
struct TArguments {};

template <class Base, class Arguments = typename Base::TClassArguments>
class TClassOf;

}  // namespace vx
