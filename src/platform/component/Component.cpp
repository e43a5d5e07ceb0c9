#include "platform/component/Component.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include "platform/component/NameTable.h"
#include "platform/component/Published.h"
#include "platform/component/StreamFormat.h"
#include "platform/runtime/List.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

std::string NameOf(const TComponent& component) { return component.GetNamePath(); }

}  // namespace

// -- Friends ----------------------------------------------------------------------------------------------------------

/// Two components of which each is to be told when the other goes. It stands in the lists of both: in those of friends,
/// at the front; once one has told the other that it goes, in those of the told, until either is gone.
struct TComponent::TFriendship {
  struct TEnd {
    TComponent* component;
    TFriendship* next = nullptr;
    TFriendship* before = nullptr;
  };

  TFriendship(TComponent& one, TComponent& other) : ends{{&one}, {&other}} { Link(); }
  TFriendship(const TFriendship&) = delete;
  TFriendship& operator=(const TFriendship&) = delete;
  ~TFriendship() { Unlink(); }

  /// O(1) if either has few.
  static TFriendship* Find(const TComponent& one, const TComponent& other, TFriendship* TComponent::*list);
  TEnd& EndOf(const TComponent& component) { return ends[ends[0].component == &component ? 0 : 1]; }
  const TEnd& EndOf(const TComponent& component) const { return ends[ends[0].component == &component ? 0 : 1]; }
  TComponent* OtherThan(const TComponent& component) const {
    return ends[ends[0].component == &component ? 1 : 0].component;
  }
  void MoveToTold() {
    Unlink();
    list = &TComponent::told_;
    Link();
  }

 private:
  void Link();
  void Unlink();

  TEnd ends[2];
  TFriendship* TComponent::*list = &TComponent::friends_;
};

TComponent::TFriendship* TComponent::TFriendship::Find(const TComponent& one, const TComponent& other,
                                                       TFriendship* TComponent::*list) {
  const TFriendship* a = one.*list;
  const TFriendship* b = other.*list;
  for (; a != nullptr && b != nullptr; a = a->EndOf(one).next, b = b->EndOf(other).next) {
    if (a->OtherThan(one) == &other) return const_cast<TFriendship*>(a);
    if (b->OtherThan(other) == &one) return const_cast<TFriendship*>(b);
  }
  return nullptr;
}

void TComponent::TFriendship::Link() {
  for (TEnd& end : ends) {
    TFriendship*& head = end.component->*list;
    end.before = nullptr;
    end.next = head;
    if (head != nullptr) head->EndOf(*end.component).before = this;
    head = this;
  }
}

void TComponent::TFriendship::Unlink() {
  for (TEnd& end : ends) {
    TFriendship*& before = end.before == nullptr ? end.component->*list : end.before->EndOf(*end.component).next;
    before = end.next;
    if (end.next != nullptr) end.next->EndOf(*end.component).before = end.before;
  }
}

// -- What a component owns --------------------------------------------------------------------------------------------

/// The owned components in their order, those among them that may hear a notification, and an index of their names.
///
/// Each gets a number when it enters, greater than all before, so that both lists are sorted by it and a round of
/// notifications holds its place by number, whoever comes and goes meanwhile. The listeners may include some that have
/// become deaf: a round drops them as it meets them.
class TComponent::TChildren {
 public:
  std::size_t Count() const { return items_.size() - gap_; }
  TComponent* operator[](std::size_t index) const { return items_[gap_ + index]; }
  std::size_t IndexOf(const TComponent& component) const;
  TComponent* After(std::uint64_t order) const;

  void Add(TComponent& component);
  void Remove(TComponent& component) noexcept;

  // -- Names ----------------------------------------------------------------------------------------------------------
  TComponent* Find(std::string_view name) const;
  void AddName(TComponent& component) noexcept;
  void RemoveName(TComponent& component) noexcept;

  // -- Listeners ------------------------------------------------------------------------------------------------------
  bool AnyHears() const { return !listeners_.empty(); }
  void AddListener(TComponent& component);
  void RemoveListener(TComponent& component) noexcept;

  /// A round tells those who are there when it begins.
  class TRound;

 private:
  struct TByOrder {
    using is_transparent = void;
    static std::uint64_t Of(const TComponent* component) { return component->order_; }
    static std::uint64_t Of(std::uint64_t order) { return order; }
    template <class A, class B>
    bool operator()(const A& a, const B& b) const {
      return Of(a) < Of(b);
    }
  };
  using TListeners = std::set<TComponent*, TByOrder>;

  struct TNames {
    std::uint64_t HashOf(std::string_view name) const {
      return HashOfName(reinterpret_cast<std::uintptr_t>(this) * 0xD6E8FEB86659FD93, name);
    }
    TComponent** Find(std::string_view name) {
      return first.Find(HashOf(name), [name](const TComponent* each) { return IsSameName(each->name_, name); });
    }
    TNameTable<TComponent*> first;                           // of each name
    std::unordered_map<std::uint64_t, std::size_t> further;  // ones of its hash, where the owner permits that
  };

  static constexpr std::size_t kFew = 16;  // so many are walked over to find a name

  auto Begin() const { return items_.begin() + static_cast<std::ptrdiff_t>(gap_); }
  TComponent* Walk(std::string_view name) const;
  void BuildNames();
  void PutName(TComponent& component);

  std::vector<TComponent*> items_;  // from gap_ on
  std::size_t gap_ = 0;             // left by those who went from the front
  std::uint64_t latest_ = 0;        // the greatest number given
  TListeners listeners_;
  std::uint64_t changes_ = 0;  // of listeners_
  std::unique_ptr<TNames> names_;
};

std::size_t TComponent::TChildren::IndexOf(const TComponent& component) const {
  return static_cast<std::size_t>(std::lower_bound(Begin(), items_.end(), &component, TByOrder()) - Begin());
}

TComponent* TComponent::TChildren::After(std::uint64_t order) const {
  const auto at = std::upper_bound(Begin(), items_.end(), order, TByOrder());
  return at == items_.end() ? nullptr : *at;
}

void TComponent::TChildren::Add(TComponent& component) {
  items_.push_back(&component);
  component.order_ = ++latest_;
  AddName(component);
}

void TComponent::TChildren::Remove(TComponent& component) noexcept {
  RemoveName(component);
  RemoveListener(component);
  const std::size_t index = IndexOf(component);
  const auto begin = items_.begin() + static_cast<std::ptrdiff_t>(gap_);
  const auto place = begin + static_cast<std::ptrdiff_t>(index);
  if (index >= Count() / 2) {
    items_.erase(place);
    return;
  }
  std::move_backward(begin, place, place + 1);
  if (++gap_ <= items_.size() / 2) return;
  items_.erase(items_.begin(), begin + 1);
  gap_ = 0;
}

TComponent* TComponent::TChildren::Walk(std::string_view name) const {
  const auto at =
      std::find_if(Begin(), items_.end(), [name](const TComponent* each) { return IsSameName(each->name_, name); });
  return at == items_.end() ? nullptr : *at;
}

TComponent* TComponent::TChildren::Find(std::string_view name) const {
  if (names_ == nullptr) return Walk(name);
  TComponent* const* const found = names_->Find(name);
  return found == nullptr ? nullptr : *found;
}

void TComponent::TChildren::BuildNames() {
  names_ = std::make_unique<TNames>();
  for (auto at = Begin(); at != items_.end(); ++at) PutName(**at);
}

void TComponent::TChildren::PutName(TComponent& component) {
  if (component.name_.empty()) return;
  TComponent** const there = names_->Find(component.name_);
  if (there == nullptr) return names_->first.Add(names_->HashOf(component.name_), &component);
  ++names_->further[names_->HashOf(component.name_)];
  if (TByOrder()(&component, *there)) *there = &component;
}

/// The component bears its name already. Without memory for an index names are found by a walk.
void TComponent::TChildren::AddName(TComponent& component) noexcept {
  if (names_ == nullptr && Count() <= kFew) return;
  try {
    if (names_ == nullptr)
      BuildNames();
    else
      PutName(component);
  } catch (...) {
    names_.reset();
  }
}

void TComponent::TChildren::RemoveName(TComponent& component) noexcept {
  if (names_ == nullptr || component.name_.empty()) return;
  TComponent** const there = names_->Find(component.name_);
  const auto further =
      names_->further.empty() ? names_->further.end() : names_->further.find(names_->HashOf(component.name_));
  const auto dropFurther = [&] {
    if (--further->second == 0) names_->further.erase(further);
  };
  if (*there != &component) return dropFurther();
  if (further != names_->further.end()) {
    const auto end = std::as_const(items_).end();
    const auto next = std::find_if(Begin(), end, [&component](const TComponent* each) {
      return each != &component && IsSameName(each->name_, component.name_);
    });
    if (next != end) {
      dropFurther();
      *there = *next;
      return;
    }
  }
  names_->first.Remove(there);
}

void TComponent::TChildren::AddListener(TComponent& component) {
  listeners_.insert(listeners_.end(), &component);
  component.listed_ = true;
  ++changes_;
}

void TComponent::TChildren::RemoveListener(TComponent& component) noexcept {
  if (!component.listed_) return;
  listeners_.erase(&component);
  component.listed_ = false;
  ++changes_;
}

/// One notification on its way through the owned components, in their order. Who is deaf and no friend of the sender
/// wouldn't do anything about it and is passed over.
class TComponent::TChildren::TRound {
 public:
  explicit TRound(TComponent& owner) : owner_(owner), children_(*owner.children_), last_(children_.latest_) {}

  /// Null at the end.
  TComponent* Next(const TComponent& sender, TOperation operation) {
    TComponent* next = NextListener();
    if (operation == opRemove && sender.friends_ != nullptr) next = NextFriend(sender, next);
    if (next == nullptr || next->order_ > last_) return nullptr;
    at_ = next->order_;
    return next;
  }

 private:
  TComponent* NextListener() {
    if (changes_ != children_.changes_) next_ = children_.listeners_.upper_bound(at_);
    changes_ = children_.changes_;
    while (next_ != children_.listeners_.end() && (*next_)->order_ <= at_) ++next_;
    while (next_ != children_.listeners_.end() && !(*next_)->Hears()) {
      (*next_)->listed_ = false;
      next_ = children_.listeners_.erase(next_);
      changes_ = ++children_.changes_;
    }
    return next_ == children_.listeners_.end() ? nullptr : *next_;
  }

  /// The first that is a friend of the sender or owns one, if it comes before `next`. The friends are asked where they
  /// are few, everybody where they are many.
  TComponent* NextFriend(const TComponent& sender, TComponent* next) const {
    std::size_t few = kFew / 2;
    for (const TFriendship* each = sender.friends_; each != nullptr; each = each->EndOf(sender).next) {
      if (few-- == 0) return children_.After(at_);
      TComponent* other = each->OtherThan(sender);
      while (other != nullptr && other->owner_ != &owner_) other = other->owner_;
      if (other != nullptr && other->order_ > at_ && (next == nullptr || other->order_ < next->order_)) next = other;
    }
    return next;
  }

  TComponent& owner_;
  TChildren& children_;
  std::uint64_t at_ = 0;  // the last who was told
  std::uint64_t last_;
  std::uint64_t changes_ = static_cast<std::uint64_t>(-1);  // for which next_ holds
  TListeners::iterator next_;
};

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
  while (told_ != nullptr) delete told_;
  TPersistent::TearDown();
}

void TComponent::Destroying() {
  if (Is(csDestroying)) return;
  state_.Include(csDestroying);
  for (std::int32_t i = 0; i < ComponentCount(); ++i) (*children_)[static_cast<std::size_t>(i)]->Destroying();
}

void TComponent::FreeOwned() noexcept {
  while (ComponentCount() > 0) {
    TComponent* const last = (*children_)[children_->Count() - 1];
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
  if (!name.empty() && !IsStreamIdentifier(name))
    throw EComponentError("''" + name + "'' is not a valid component name");  // both quotes doubled: kept
  if (owner_ != nullptr) owner_->ValidateRename(this, name);
  std::string taken = name;
  if (owner_ != nullptr) owner_->children_->RemoveName(*this);
  name_ = std::move(taken);
  if (owner_ != nullptr) owner_->children_->AddName(*this);
}

void TComponent::ValidateRename(const TComponent* component, const std::string& name) const {
  const TComponent* const other = FindComponent(name);
  if (other != nullptr && other != component) throw EComponentError("A component named " + name + " already exists");
}

// -- Owned components -------------------------------------------------------------------------------------------------

std::int32_t TComponent::ComponentCount() const {
  return children_ == nullptr ? 0 : static_cast<std::int32_t>(children_->Count());
}

TComponent* TComponent::Components(std::int32_t index) const {
  if (index < 0 || index >= ComponentCount()) RaiseListError(kListIndexError, index);
  return (*children_)[static_cast<std::size_t>(index)];
}

std::int32_t TComponent::ComponentIndex() const {
  return owner_ == nullptr ? -1 : static_cast<std::int32_t>(owner_->children_->IndexOf(*this));
}

TComponent* TComponent::FindComponent(std::string_view name) const {
  return name.empty() || children_ == nullptr ? nullptr : children_->Find(name);
}

void TComponent::CheckTakes(const TComponent& component) const {
  if (stage_ >= TStage::Closed) throw EComponentError(NameOf(*this) + " is being freed and can't own components");
  if (component.stage_ != TStage::Whole)
    throw EComponentError(NameOf(component) + " is being freed and can't be owned");
  // Who owns nothing can close a circle with itself alone.
  for (const TComponent* at = this; at != nullptr; at = component.ComponentCount() == 0 ? nullptr : at->owner_)
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
  if (children_ == nullptr) children_ = std::make_unique<TChildren>();
  children_->Add(component);
  component.owner_ = this;
  try {
    if (component.Hears()) component.ListAsListener();
  } catch (...) {
    Leave(component);
    throw;
  }
  if (Is(csDesigning)) component.SetDesigning(true);
  if (Is(csDestroying)) component.Destroying();
}

void TComponent::Leave(TComponent& component) noexcept {
  children_->Remove(component);
  component.owner_ = nullptr;
}

bool TComponent::Hears() const noexcept { return overrides_ || (children_ != nullptr && children_->AnyHears()); }

/// Enters this among the listeners of its owner, and so its owner, and so on.
void TComponent::ListAsListener() {
  for (TComponent* at = this; at->owner_ != nullptr && !at->listed_; at = at->owner_)
    at->owner_->children_->AddListener(*at);
}

void TComponent::NoteDeaf() noexcept {
  overrides_ = false;
  if (owner_ != nullptr && !Hears()) owner_->children_->RemoveListener(*this);
}

// -- State ------------------------------------------------------------------------------------------------------------

void TComponent::SetDesigning(bool value) {
  state_.Put(csDesigning, value);
  for (std::int32_t i = 0; i < ComponentCount(); ++i) (*children_)[static_cast<std::size_t>(i)]->SetDesigning(value);
}

void TComponent::Loaded() { state_.Exclude(csLoading); }

// -- Who wants to know ------------------------------------------------------------------------------------------------

void TComponent::FreeNotification(TComponent* other) {
  if (other == nullptr || other == this || stage_ == TStage::Gone || other->stage_ == TStage::Gone) return;
  if (TFriendship::Find(*this, *other, &TComponent::friends_) != nullptr) return;
  if (TFriendship::Find(*this, *other, &TComponent::told_) != nullptr) return;
  new TFriendship(*this, *other);  // its own: it lives in the lists of both, until either goes or they part
}

void TComponent::RemoveFreeNotification(TComponent* other) {
  if (other != nullptr) delete TFriendship::Find(*this, *other, &TComponent::friends_);
}

void TComponent::TellFriends() noexcept {
  while (friends_ != nullptr) {
    TComponent* const other = friends_->OtherThan(*this);
    friends_->MoveToTold();  // so that asking again in vain can't keep this round going
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
  // For descendants that call it on their own, not for news. Released memory has its keepers, or is on its way out.
  const TMemoryKeeper<TComponent> keepThis(released_ ? nullptr : this);
  const TMemoryKeeper<TComponent> keepOther(component->released_ ? nullptr : component);
  if (operation == opRemove) RemoveFreeNotification(component);
  if (children_ == nullptr) return;
  // Freed by the first who hears of its coming, it is past its end for the others, who have been told of that.
  const TStage stage = component->stage_;
  TChildren::TRound round(*this);
  while (component->stage_ == stage) {
    TComponent* const each = round.Next(*component, operation);
    if (each == nullptr) break;
    each->Tell(component, operation);
  }
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

void TLoading::EndReading() {
  if (TComponent* const component = link_.Component()) component->state_.Exclude(csReading);
}

void TLoading::Finish() {
  EndReading();
  TComponent* const component = link_.Component();
  if (component == nullptr) return;
  const TMemoryKeeper<TComponent> keep(component);
  component->Loaded();
  if (link_.Component() != nullptr) component->state_.Exclude(csLoading);  // also where Loaded forgot the inherited one
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

std::vector<const TClass*> RegisteredClasses() {
  std::vector<const TClass*> classes;
  for (const auto& [name, type] : Classes()) classes.push_back(type);
  return classes;
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
