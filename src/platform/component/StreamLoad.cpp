#include "platform/component/StreamLoad.h"

#include <new>

#include "platform/component/Filer.h"

namespace vx {

TStreamLoad::TStreamLoad(TStreamPlan& plan, TComponent* root) : plan_(plan), cursor_(plan.Begin()), root_(root) {}

void TStreamLoad::Run() {
  try {
    Object();
    References();
    for (const std::uint32_t each : ended_) {
      at_ = {each, plan_.Objects()[each].Properties, "Loaded"};
      plan_.Objects()[each].Loading.Finish();
    }
  } catch (const EAbort&) {
    Undo();
    throw;
  } catch (const std::bad_alloc&) {
    Undo();
    throw;
  } catch (const std::exception& error) {
    Undo();
    const auto [offset, reason] = PlacedReason(error, at_.Offset, cursor_.Offset());
    throw EReadError(TStreamPlace{offset}, Where() + reason + Before());
  } catch (...) {
    Undo();
    throw;
  }
}

// -- Failures ---------------------------------------------------------------------------------------------------------

std::string TStreamLoad::Where() const {
  const std::string path = plan_.PathOf(at_.Object);
  return (at_.Property.empty() ? path : path + "." + std::string(at_.Property)) + ": ";
}

std::string TStreamLoad::Before() const {
  const std::string made = made_ == 0   ? ""
                           : made_ == 1 ? "1 component that had been made is freed again"
                                        : std::to_string(made_) + " components that had been made are freed again";
  const std::string set =
      rootSet_ == 0 || root_ == nullptr ? ""
      : rootSet_ == 1                   ? "1 property of " + plan_.PathOf(0) + " had been set and stays"
                      : std::to_string(rootSet_) + " properties of " + plan_.PathOf(0) + " had been set and stay";
  if (made.empty() && set.empty()) return {};
  return " (" + made + (made.empty() || set.empty() ? "" : "; ") + set + ")";
}

void TStreamLoad::Undo() noexcept {
  std::vector<TStreamObject>& objects = plan_.Objects();
  for (std::size_t i = objects.size(); i > (root_ == nullptr ? 0u : 1u); --i)
    if (TComponent* const component = objects[i - 1].Loading.Component()) component->FreeAnyway();
}

// -- Objects ----------------------------------------------------------------------------------------------------------

void TStreamLoad::Object() {
  const std::uint32_t index = next_++;
  TStreamObject& object = plan_.Objects()[index];
  at_ = {index, cursor_.Offset(), {}};
  cursor_.Identifier(false);
  const std::string_view name = cursor_.Identifier(true);
  TOwned<TComponent> made;
  if (index > 0 || root_ == nullptr) {
    made = plan_.MakeComponent(index);
    ++made_;
  }
  object.Loading = TLoading(made == nullptr ? *root_ : *made);
  TComponent* const component = made.release();
  if (index > 0) {
    if (TComponent* const owner = Alive(object.Owner))  // the constructor may have freed it
      owner->InsertComponent(component);
    else
      component->FreeAnyway();
  }
  if (TComponent* const alive = object.Loading.Component();
      alive != nullptr && !name.empty() && alive->Name() != name) {
    alive->SetName(std::string(name));
    CountSet();
  }
  Properties(object.Loading.Component(), *object.Shape, TPass::Values);
  while (!cursor_.TakeEnd()) {
    if (Alive(index) != nullptr)
      Object();
    else
      SkipOwned();
  }
  object.Loading.EndReading();
  ended_.push_back(index);
}

/// The owner is gone: what it would own isn't made.
void TStreamLoad::SkipOwned() {
  ++next_;
  cursor_.Identifier(false);
  cursor_.Identifier(true);
  cursor_.SkipProperties();
  while (!cursor_.TakeEnd()) SkipOwned();
}

void TStreamLoad::References() {
  for (const std::uint32_t each : plan_.Referring()) {
    cursor_.Seek(plan_.Objects()[each].Properties);
    at_ = {each, cursor_.Offset(), {}};
    Properties(Alive(each), *plan_.Objects()[each].Shape, TPass::References);
  }
}

// -- Properties -------------------------------------------------------------------------------------------------------

TComponent* TStreamLoad::Alive(std::uint32_t object) const { return plan_.Objects()[object].Loading.Component(); }

void TStreamLoad::Properties(TComponent* component, TStreamShape& shape, TPass pass) {
  const TMemoryKeeper<TComponent> keep(component);  // a setter may free it
  PropertiesWhile([this] { return Alive(at_.Object) != nullptr; }, component, shape, pass);
}

/// A null holder, and one that goes, has its properties passed over.
template <class IsThere>
void TStreamLoad::PropertiesWhile(IsThere&& isThere, TPersistent* holder, TStreamShape& shape, TPass pass) {
  std::int32_t expected = 0;
  for (;;) {
    const std::size_t begin = cursor_.Offset();
    const std::string_view path = cursor_.Path(true);
    if (path.empty()) return;
    if (holder == nullptr || !isThere()) {
      holder = nullptr;
      cursor_.SkipValue();
      continue;
    }
    at_.Offset = begin;
    at_.Property = path;
    expected = Property(*holder, shape, path, expected, pass);
  }
}

std::int32_t TStreamLoad::Property(TPersistent& holder, TStreamShape& shape, std::string_view path,
                                   std::int32_t expected, TPass pass) {
  const std::size_t point = path.find('.');
  const std::int32_t prop = shape.Find(path.substr(0, point), expected);
  if (prop < 0) {
    const std::size_t begin = cursor_.Offset();
    cursor_.SkipValue();
    if (pass == TPass::References) return expected;
    ReadDefined(holder, path, plan_.Stream(), begin);
    CountSet();
    return expected;
  }
  const TStreamProp& known = shape.Props()[static_cast<std::size_t>(prop)];
  if (point != std::string_view::npos) {
    auto* const part = As<TPersistent>(std::get<TObject*>(known.Info->Get(holder)));
    TStreamShape* const partShape = shape.Part(prop);
    if (part == nullptr || partShape == nullptr)
      throw EInvalidOperation("the object " + known.Info->Name + " is missing");
    Property(*part, *partShape, path.substr(point + 1), 0, pass);
    return prop;
  }
  const bool isReference = known.Role == TStreamRole::Reference;
  if (known.Role == TStreamRole::Collection)
    Items(holder, shape, prop, pass);
  else if (isReference != (pass == TPass::References))
    cursor_.SkipValue();
  else
    Set(holder, *known.Info, isReference ? ReferenceTo() : Value(*known.Info));
  return prop + 1;
}

void TStreamLoad::Set(TPersistent& holder, const TPropInfo& info, const TPropValue& value) {
  info.Set(holder, value);
  CountSet();
}

void TStreamLoad::CountSet() {
  if (at_.Object == 0) ++rootSet_;
}

void TStreamLoad::Items(TPersistent& holder, TStreamShape& shape, std::int32_t prop, TPass pass) {
  const TPropInfo& info = *shape.Props()[static_cast<std::size_t>(prop)].Info;
  auto* const collection = As<TCollection>(std::get<TObject*>(info.Get(holder)));
  TStreamShape* const items = shape.Items(prop);
  if (collection == nullptr || items == nullptr) throw EInvalidOperation("the collection is missing");
  const TMemoryKeeper<TCollection> keep(collection);  // whatever a setter of an item does
  cursor_.TakeKind();
  if (pass == TPass::References) {
    for (std::int32_t i = 0; cursor_.TakeItem(); ++i)
      Item(*collection, i < collection->Count() ? collection->Items(i) : nullptr, i, *items, pass);
    return;
  }
  collection->BeginUpdate();
  try {
    collection->Clear();
    while (cursor_.TakeItem()) {
      TCollectionItem* const item = Alive(at_.Object) == nullptr ? nullptr : collection->Add();
      Item(*collection, item, collection->Count() - 1, *items, pass);
    }
  } catch (...) {
    collection->EndUpdate();
    throw;
  }
  collection->EndUpdate();
  CountSet();
}

/// A setter may free the item, or make it another's: then it isn't touched any more.
void TStreamLoad::Item(TCollection& collection, TCollectionItem* item, std::int32_t index, TStreamShape& shape,
                       TPass pass) {
  const auto isThere = [&collection, item, index, this] {
    if (Alive(at_.Object) == nullptr) return false;
    if (index < collection.Count() && collection.Items(index) == item) return true;
    for (std::int32_t i = collection.Count() - 1; i >= 0; --i)
      if (collection.Items(i) == item) return true;
    return false;
  };
  PropertiesWhile(isThere, item, shape, pass);
}

// -- Values -----------------------------------------------------------------------------------------------------------

TPropValue TStreamLoad::ReferenceTo() {
  const std::size_t begin = cursor_.Offset();
  const std::string_view path = cursor_.Ident();
  if (IsSameName(path, "nil")) return static_cast<TObject*>(nullptr);
  const TStreamTarget& target = plan_.TargetAt(begin);
  TComponent* const component =
      target.Object >= 0 ? Alive(static_cast<std::uint32_t>(target.Object)) : target.Live.Component();
  if (component == nullptr) throw EInvalidOperation("the component " + std::string(path) + " is gone");
  return static_cast<TObject*>(component);
}

TPropValue TStreamLoad::Value(const TPropInfo& info) {
  const TStreamKind kind = cursor_.Peek();
  switch (info.Kind) {
    case tkInteger:
      if (kind == skIdent) return info.Names->ValueOf(cursor_.Ident()).value();
      return cursor_.Int();
    case tkChar:
      if (kind == skShortText) return static_cast<std::int64_t>(cursor_.Text().front());
      return cursor_.Int();
    case tkEnumeration:
      return static_cast<std::int64_t>(GetEnumValue(*info.Enum, cursor_.Ident()));
    case tkSet: {
      std::uint64_t bits = 0;
      cursor_.TakeKind();
      for (std::string_view each = cursor_.Identifier(true); !each.empty(); each = cursor_.Identifier(true))
        bits |= std::uint64_t{1} << static_cast<unsigned>(GetEnumValue(*info.Enum, each));
      return static_cast<std::int64_t>(bits);
    }
    case tkFloat:
      return kind == skDouble ? cursor_.Double() : static_cast<double>(cursor_.Int());
    case tkString:
      return std::string(cursor_.Text());
    case tkMethod: {
      const std::string_view name = cursor_.Ident();
      if (IsSameName(name, "nil")) return TAnyEvent();
      return MethodAddress(&Need(plan_.Objects()[0].Loading.Component(), "root of the handler"), name);
    }
    case tkVariant: {
      const std::size_t begin = cursor_.Offset();
      cursor_.SkipValue();
      return TReader(plan_.Stream(), begin).ReadVariant();
    }
    default:
      return cursor_.Int();
  }
}

}  // namespace vx
