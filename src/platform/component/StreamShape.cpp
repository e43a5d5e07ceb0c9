#include "platform/component/StreamShape.h"

#include <new>

#include "platform/component/Filer.h"
#include "platform/component/NameTable.h"

namespace vx {

namespace {

TStreamRole RoleOf(const TPropInfo& info) {
  if (info.Kind == tkMethod) return TStreamRole::Event;
  if (info.Kind != tkClass) return TStreamRole::Value;
  const TClass& type = info.Class();
  if (type.InheritsFrom(TCollection::StaticClass())) return TStreamRole::Collection;
  return type.InheritsFrom(TPersistent::StaticClass()) && !type.InheritsFrom(TComponent::StaticClass())
             ? TStreamRole::Part
             : TStreamRole::Reference;
}

/// Notes the names that an object defines.
class TNameCollector final : public TFiler {
 public:
  void DefineProperty(std::string_view name, const TReadProc&, const TWriteProc&, bool) override {
    names.emplace_back(name);
  }

  std::vector<std::string> names;
};

/// Reads the one defined property of that name.
class TDefinedReader final : public TFiler {
 public:
  TDefinedReader(std::string_view name, std::string_view stream, std::size_t offset)
      : name_(name), stream_(stream), offset_(offset) {}

  void DefineProperty(std::string_view name, const TReadProc& read, const TWriteProc&, bool) override {
    if (isDone_ || !IsSameName(name, name_)) return;
    isDone_ = true;
    TReader reader(stream_, offset_);
    read(reader);
  }

 private:
  std::string_view name_;
  std::string_view stream_;
  std::size_t offset_;
  bool isDone_ = false;
};

TPersistent* PartOf(TPersistent& object, const TPropInfo& info) {
  return As<TPersistent>(std::get<TObject*>(info.Get(object)));
}

}  // namespace

void ReadDefined(TPersistent& object, std::string_view name, std::string_view stream, std::size_t offset) {
  TDefinedReader reader(name, stream, offset);
  TFiler::Define(object, reader);
}

// -- TStreamShape -----------------------------------------------------------------------------------------------------

TStreamShape::TStreamShape(TStreamShapes& shapes, const TClass& type) : shapes_(shapes), type_(type) {
  for (const TPropInfo* const info : GetPropList(type)) props_.push_back({info, RoleOf(*info)});
  parts_.resize(props_.size());
  freshEmpty_.resize(props_.size());
}

std::int32_t TStreamShape::Find(std::string_view name, std::int32_t expected) const {
  const auto count = static_cast<std::int32_t>(props_.size());
  if (expected < count && props_[static_cast<std::size_t>(expected)].Info->Name == name) return expected;
  for (std::int32_t i = 0; i < count; ++i)
    if (IsSameName(props_[static_cast<std::size_t>(i)].Info->Name, name)) return i;
  return -1;
}

TStreamShape::~TStreamShape() {
  if (TComponent* const made = component_.Component()) made->FreeAnyway();
}

TPersistent* TStreamShape::Prototype() {
  if (whole_ != nullptr) {
    TPersistent* const whole = whole_->Prototype();
    TPersistent* const part = whole == nullptr ? nullptr : PartOf(*whole, *asPart_);
    return part != nullptr && &part->ClassType() == &type_ ? part : nullptr;
  }
  if (!isTried_) {
    isTried_ = true;
    try {
      MakePrototype();
    } catch (const EAbort&) {
      throw;
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      throw EInvalidOperation("a fresh " + type_.Name() + " can't be made: " + error.what());
    }
  }
  if (!isScratch_) return root_.Component();
  return own_ != nullptr ? own_.get() : component_.Component();
}

void TStreamShape::MakePrototype() {
  if (itemClass_) {
    own_ = itemClass_.Make(nullptr);
  } else if (type_.Factory() != nullptr) {
    TOwned<TObject> made(type_.Factory()());
    if (auto* const component = As<TComponent>(made.get())) {
      component_ = TComponentLink(component);
      static_cast<void>(made.release());
    } else if (auto* const persistent = As<TPersistent>(made.get())) {
      own_.reset(persistent);
      static_cast<void>(made.release());
    }
  }
  isScratch_ = own_ != nullptr || component_.Component() != nullptr;
}

bool TStreamShape::Defines(std::string_view name) {
  if (!defined_) {
    TNameCollector collector;
    if (TPersistent* const prototype = Prototype()) TFiler::Define(*prototype, collector);
    defined_ = std::move(collector.names);
  }
  for (const std::string& each : *defined_)
    if (IsSameName(each, name)) return true;
  return false;
}

void TStreamShape::Rehearse(std::string_view name, std::string_view stream, std::size_t offset) {
  TPersistent* const prototype = Prototype();
  if (prototype == nullptr || !isScratch_) return;
  if (auto* const component = As<TComponent>(prototype); component != nullptr && loading_.Component() == nullptr)
    loading_ = TLoading(*component);
  ReadDefined(*prototype, name, stream, offset);
}

TStreamShape* TStreamShape::Part(std::int32_t prop) {
  TStreamShape*& part = parts_[static_cast<std::size_t>(prop)];
  if (part != nullptr) return part;
  TPersistent* const prototype = Prototype();
  TPersistent* const object =
      prototype == nullptr ? nullptr : PartOf(*prototype, *props_[static_cast<std::size_t>(prop)].Info);
  if (object != nullptr) part = &shapes_.OfPart(*object, *this, *props_[static_cast<std::size_t>(prop)].Info);
  return part;
}

TStreamShape* TStreamShape::Items(std::int32_t prop) {
  TStreamShape*& items = parts_[static_cast<std::size_t>(prop)];
  if (items != nullptr) return items;
  TPersistent* const prototype = Prototype();
  auto* const collection = prototype == nullptr
                               ? nullptr
                               : As<TCollection>(PartOf(*prototype, *props_[static_cast<std::size_t>(prop)].Info));
  if (collection != nullptr) items = &shapes_.OfItems(collection->ItemClass());
  return items;
}

bool TStreamShape::IsFreshEmpty(std::int32_t prop) {
  std::optional<bool>& answer = freshEmpty_[static_cast<std::size_t>(prop)];
  if (answer) return *answer;
  answer = true;
  if (TPersistent* const prototype = Prototype()) {
    const TStreamProp& asked = props_[static_cast<std::size_t>(prop)];
    const TPropValue value = asked.Info->Get(*prototype);
    if (asked.Role == TStreamRole::Collection) {
      const auto* const collection = As<TCollection>(std::get<TObject*>(value));
      answer = collection == nullptr || collection->Count() == 0;
    } else {
      answer = IsDefaultValue(*asked.Info, value);
    }
  }
  return *answer;
}

// -- TStreamShapes ----------------------------------------------------------------------------------------------------

TStreamShape& TStreamShapes::Of(const TClass& type) {
  std::unique_ptr<TStreamShape>& shape = shapes_[&type];
  if (shape == nullptr) shape = std::make_unique<TStreamShape>(*this, type);
  return *shape;
}

TStreamShape& TStreamShapes::OfRoot(TComponent& root) {
  TStreamShape& shape = Of(root.ClassType());
  shape.root_ = TComponentLink(&root);
  return shape;
}

TStreamShape& TStreamShapes::OfPart(TPersistent& part, TStreamShape& whole, const TPropInfo& asPart) {
  TStreamShape& shape = Of(part.ClassType());
  const bool isKnown =
      shape.own_ != nullptr || shape.component_.Component() != nullptr || shape.root_.Component() != nullptr;
  if (shape.whole_ == nullptr && !isKnown) {
    shape.whole_ = &whole;
    shape.asPart_ = &asPart;
    shape.isScratch_ = whole.isScratch_;
  }
  return shape;
}

TStreamShape& TStreamShapes::OfItems(const TClassOf<TCollectionItem>& itemClass) {
  TStreamShape& shape = Of(Need(itemClass.Class(), "class of a collection's items"));
  shape.itemClass_ = itemClass;
  return shape;
}

}  // namespace vx
