#include "platform/component/Component.h"

#include <algorithm>
#include <map>

#include "platform/component/Published.h"
#include "platform/runtime/List.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsValidName(std::string_view name) {
  return !name.empty() && IsLetter(name[0]) &&
         std::all_of(name.begin(), name.end(), [](char c) { return IsLetter(c) || IsDigit(c); });
}

std::string NameOf(const TComponent& component) { return component.GetNamePath(); }

}  // namespace

const TClass& TComponent::StaticClass() {
  static const TClass info = TClassBuilder<TComponent>("TComponent", TPersistent::StaticClass())
                                 .Property("Name", &TComponent::Name, &TComponent::SetName)
                                 .Stored(false)  // a stream writes it with the class name, not among the properties
                                 .Property("Tag", &TComponent::Tag, &TComponent::SetTag)
                                 .Default(0)
                                 .Build();
  return info;
}

// -- Life -------------------------------------------------------------------------------------------------------------

TComponent::TComponent(TComponent* owner) {
  if (owner == nullptr) return;
  owner->CheckTakes(*this);
  owner->Enter(*this);
}

TComponent::~TComponent() { TComponent::TearDown(); }

void TComponent::AfterConstruction() {
  TPersistent::AfterConstruction();
  if (owner_ != nullptr) owner_->Tell(this, opInsert);
}

void TComponent::TearDown() {
  if (stage_ != TStage::Whole) return;
  stage_ = TStage::Going;
  Destroying();
  TellFriends();
  if (alive_ != nullptr) *alive_ = false;
  FreeOwned();
  stage_ = TStage::Closed;
  if (TComponent* const owner = owner_) {
    owner->Leave(*this);
    owner->TellGoing(this);
  }
  TellFriends();  // those who asked since
  stage_ = TStage::Gone;
  TPersistent::TearDown();
}

void TComponent::Destroying() {
  if (Is(csDestroying)) return;
  state_.Include(csDestroying);
  for (std::size_t i = 0; i < components_.Count(); ++i) components_[i]->Destroying();
}

void TComponent::FreeOwned() noexcept {
  while (!components_.Empty()) {
    TComponent* const last = components_.Last();
    if (last->IsBeingFreed())
      Leave(*last);  // its own Free() is at work further up the stack and will end it
    else
      last->FreeAnyway();
  }
}

void TComponent::ReleaseMemory() {
  if (!TMemoryKeeper<TComponent>::Delays(*this)) TPersistent::ReleaseMemory();
}

// -- Owner and name ---------------------------------------------------------------------------------------------------

std::string TComponent::GetNamePath() const { return name_.empty() ? ClassName() : name_; }

void TComponent::SetName(const std::string& name) {
  if (name == name_) return;
  if (!name.empty() && !IsValidName(name))
    throw EComponentError("''" + name + "'' is not a valid component name");  // both quotes doubled: kept
  if (owner_ != nullptr) owner_->ValidateRename(this, name);
  name_ = name;
}

void TComponent::ValidateRename(const TComponent* component, const std::string& name) const {
  const TComponent* const other = FindComponent(name);
  if (other != nullptr && other != component) throw EComponentError("A component named " + name + " already exists");
}

// -- Owned components -------------------------------------------------------------------------------------------------

TComponent* TComponent::Components(std::int32_t index) const {
  if (index < 0 || index >= ComponentCount()) RaiseListError(kListIndexError, index);
  return components_[static_cast<std::size_t>(index)];
}

std::int32_t TComponent::ComponentIndex() const {
  return owner_ == nullptr ? -1 : static_cast<std::int32_t>(owner_->components_.IndexOf(this));
}

TComponent* TComponent::FindComponent(std::string_view name) const {
  if (name.empty()) return nullptr;
  for (std::size_t i = 0; i < components_.Count(); ++i)
    if (const std::string& each = components_[i]->name_; each.size() == name.size() && CompareText(each, name) == 0)
      return components_[i];
  return nullptr;
}

void TComponent::CheckTakes(const TComponent& component) const {
  if (stage_ >= TStage::Closed) throw EComponentError(NameOf(*this) + " is being freed and can't own components");
  if (component.stage_ != TStage::Whole)
    throw EComponentError(NameOf(component) + " is being freed and can't be owned");
  for (const TComponent* at = this; at != nullptr; at = at->owner_)
    if (at == &component)
      throw EComponentError(NameOf(*this) + " can't own " + NameOf(component) + ", which is itself or its owner");
  ValidateRename(&component, component.name_);
}

void TComponent::InsertComponent(TComponent* component) {
  TComponent& wanted = Need(component, "component to insert");
  if (wanted.owner_ == this) return;
  CheckTakes(wanted);
  if (wanted.owner_ != nullptr) {
    const TComponentLink self(this), other(component);
    wanted.owner_->RemoveComponent(component);
    if (self.Component() == nullptr || other.Component() == nullptr) return;  // whoever was told has freed one of us
    CheckTakes(wanted);
    if (wanted.owner_ != nullptr) wanted.owner_->Leave(wanted);
  }
  Enter(wanted);
  Tell(component, opInsert);
}

void TComponent::RemoveComponent(TComponent* component) {
  if (component == nullptr || component->owner_ != this) return;
  Leave(*component);
  Tell(component, opRemove);
}

void TComponent::Enter(TComponent& component) {
  components_.Add(&component);
  component.owner_ = this;
  if (Is(csDesigning)) component.SetDesigning(true);
  if (Is(csDestroying)) component.Destroying();
}

void TComponent::Leave(TComponent& component) noexcept {
  components_.Remove(&component);
  component.owner_ = nullptr;
}

// -- State ------------------------------------------------------------------------------------------------------------

void TComponent::SetDesigning(bool value) {
  state_.Put(csDesigning, value);
  for (std::size_t i = 0; i < components_.Count(); ++i) components_[i]->SetDesigning(value);
}

void TComponent::Loaded() { state_.Exclude(csLoading); }

// -- Who wants to know ------------------------------------------------------------------------------------------------

bool TComponent::Knows(const TComponent* other) const {
  return std::find(friends_.rbegin(), friends_.rend(), other) != friends_.rend();
}

bool TComponent::WasTold(const TComponent* other) const {
  return stage_ == TStage::Gone || std::find(told_.begin(), told_.end(), other) != told_.end();
}

void TComponent::FreeNotification(TComponent* other) {
  if (other == nullptr || other == this || Knows(other)) return;
  if (WasTold(other) || other->WasTold(this)) return;
  friends_.push_back(other);
  other->friends_.push_back(this);
}

void TComponent::RemoveFreeNotification(TComponent* other) {
  if (other == nullptr) return;
  Forget(other);
  other->Forget(this);
}

void TComponent::Forget(const TComponent* other) noexcept {
  const auto at = std::find(friends_.rbegin(), friends_.rend(), other);
  if (at != friends_.rend()) friends_.erase(std::next(at).base());
}

void TComponent::TellFriends() noexcept {
  while (!friends_.empty()) {
    TComponent* const other = friends_.back();
    friends_.pop_back();
    other->Forget(this);
    told_.push_back(other);  // so that asking again in vain can't keep this round going
    other->TellGoing(this);
  }
}

/// All notifications go through here: while one runs, whoever is told and whom it is about may both be freed.
void TComponent::Tell(TComponent* component, TOperation operation) {
  const TMemoryKeeper<TComponent> keepThis(this), keepOther(component);
  Notification(component, operation);
}

void TComponent::TellGoing(TComponent* component) noexcept {
  try {
    Tell(component, opRemove);
  } catch (...) {
    // The end of a component can't be stopped by whoever hears of it.
  }
}

void TComponent::Notification(TComponent* component, TOperation operation) {
  if (component == nullptr) return;
  if (operation == opRemove) RemoveFreeNotification(component);
  // Freed by the first who hears of its coming, it is past its end for the others, who have been told of that.
  const TStage stage = component->stage_;
  components_.ForEach([&](TComponent& each) {
    if (component->stage_ == stage) each.Tell(component, operation);
  });
}

// -- Weak references and loading --------------------------------------------------------------------------------------

TComponentLink::TComponentLink(TComponent* component) : component_(component) {
  if (component == nullptr) return;
  if (component->alive_ == nullptr)
    component->alive_ = std::make_shared<bool>(component->stage_ == TComponent::TStage::Whole);
  alive_ = component->alive_;
}

TLoading::TLoading(TComponent& component) : link_(&component) {
  component.state_ = component.state_ + TComponentState{csLoading, csReading};
}

TLoading::~TLoading() {
  if (TComponent* const component = link_.Component())
    component->state_ = component->state_ - TComponentState{csLoading, csReading};
}

void TLoading::Finish() {
  TComponent* const component = link_.Component();
  if (component == nullptr) return;
  component->state_.Exclude(csReading);
  component->Loaded();
}

// -- The class registry -----------------------------------------------------------------------------------------------

namespace {

std::map<std::string, const TClass*, std::less<>>& Classes() {
  static std::map<std::string, const TClass*, std::less<>> classes;  // by name in lower case
  return classes;
}

std::vector<TPalettePage>& Pages() {
  static std::vector<TPalettePage> pages;
  return pages;
}

void TakeOffPalette(const TClass* type) {
  for (TPalettePage& page : Pages()) std::erase(page.Classes, type);
}

TPalettePage& PageNamed(const std::string& name) {
  for (TPalettePage& page : Pages())
    if (page.Name == name) return page;
  return Pages().emplace_back(TPalettePage{name, {}});
}

}  // namespace

void RegisterClass(const TClass& type) {
  const auto [at, fresh] = Classes().emplace(LowerCase(type.Name()), &type);
  if (!fresh && at->second != &type) throw EComponentError("A class named " + type.Name() + " already exists");
}

void UnregisterClass(const TClass& type) {
  if (GetClass(type.Name()) == &type) Classes().erase(LowerCase(type.Name()));
}

const TClass* GetClass(std::string_view name) {
  const auto at = Classes().find(LowerCase(name));
  return at == Classes().end() ? nullptr : at->second;
}

void RegisterComponents(const std::string& page, std::initializer_list<const TClass*> classes) {
  for (const TClass* const type : classes) {
    RegisterClass(Need(type, "class to register"));
    std::vector<const TClass*>& there = PageNamed(page).Classes;
    if (std::find(there.begin(), there.end(), type) != there.end()) continue;
    TakeOffPalette(type);
    there.push_back(type);
  }
}

void UnregisterComponents(std::initializer_list<const TClass*> classes) {
  for (const TClass* const type : classes) {
    UnregisterClass(Need(type, "class to unregister"));
    TakeOffPalette(type);
  }
  std::erase_if(Pages(), [](const TPalettePage& page) { return page.Classes.empty(); });
}

const std::vector<TPalettePage>& Palette() { return Pages(); }

}  // namespace vx
