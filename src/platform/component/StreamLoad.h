// StreamLoad.h: makes the components of a checked stream, and sets their properties. Not for users.
//
// Application code runs in between: setters, overridden Notification and Loaded. So components are held by weak
// references, and what such code has freed is passed over; parts and collections are asked for anew each time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/component/StreamPlan.h"

namespace vx {

class TStreamLoad {
 public:
  /// Makes the root too, if `root` is null; it stands with the other objects of the plan then.
  TStreamLoad(TStreamPlan& plan, TComponent* root);
  /// Once. Raises EReadError; see ComponentStream.h for what is left then.
  void Run();

 private:
  enum class TPass : std::uint8_t { Values, References };
  struct TPoint {
    std::uint32_t Object = 0;
    std::size_t Offset = 0;
    std::string_view Property;
  };

  std::string Where() const;
  std::string Before() const;
  void Undo() noexcept;
  void Object();
  void SkipOwned();
  void References();
  TComponent* Alive(std::uint32_t object) const;
  void Properties(TComponent* component, TStreamShape& shape, TPass pass);
  template <class IsThere>
  void PropertiesWhile(IsThere&& isThere, TPersistent* holder, TStreamShape& shape, TPass pass);
  void Item(TCollection& collection, TCollectionItem* item, std::int32_t index, TStreamShape& shape, TPass pass);
  std::int32_t Property(TPersistent& holder, TStreamShape& shape, std::string_view path, std::int32_t expected,
                        TPass pass);
  void Set(TPersistent& holder, const TPropInfo& info, const TPropValue& value);
  void CountSet();
  void Items(TPersistent& holder, TStreamShape& shape, std::int32_t prop, TPass pass);
  TPropValue ReferenceTo();
  TPropValue Value(const TPropInfo& info);

  TStreamPlan& plan_;
  TStreamCursor cursor_;
  TComponent* root_;                  // used to begin with only: a setter may free it
  std::uint32_t next_ = 0;            // position of the next object
  std::vector<std::uint32_t> ended_;  // objects in the order of their ends
  TPoint at_;                         // what is being worked at, for messages
  std::size_t made_ = 0;
  std::size_t rootSet_ = 0;
};

}  // namespace vx
