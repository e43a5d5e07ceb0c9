// PropertyEditor.h: what a property list offers a person for a property: the values to choose from, and how the present
// one is shown.
//
//   RegisterPropertyEditor<TFieldNameProperty>(TVXMemoryDataset::StaticClass(), "DetailField");
//   const TPropertyEditor* editor = FindPropertyEditor(orders, "DetailField");
//   editor->GetValues(*orders);                     // "Product Name", "Quantity", …
//
// Nothing here needs a designer: a command line completes names by it, a property list fills its boxes.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Object.h"

namespace vx {

/// Without state: one editor serves all objects of a class.
class TPropertyEditor {
 public:
  virtual ~TPropertyEditor() = default;
  /// What the property of `object` may be set to, in the order in which it is shown. The base knows none.
  virtual std::vector<std::string> GetValues(TPersistent& object) const;
  /// What is shown for a value of the property. The base shows it as it is.
  virtual std::string GetVisualValue(const std::string& value) const { return value; }
};

/// For the property of a class and of those that derive from it. A later editor takes the place of an earlier one.
void RegisterPropertyEditor(const TClass& type, std::string_view property,
                            std::shared_ptr<const TPropertyEditor> editor);
template <class Editor>
void RegisterPropertyEditor(const TClass& type, std::string_view property) {
  RegisterPropertyEditor(type, property, std::make_shared<const Editor>());
}
/// The editor of the nearest class that has one for it, letter case ignored; null if there is none. ENilAccess for a
/// null object.
const TPropertyEditor* FindPropertyEditor(const TObject* object, std::string_view property);

}  // namespace vx
