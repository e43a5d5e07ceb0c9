#include "platform/component/PropertyEditor.h"

#include <map>
#include <utility>

#include "platform/runtime/Text.h"

namespace vx {

namespace {

using TEditors = std::map<std::pair<const TClass*, std::string>, std::shared_ptr<const TPropertyEditor>>;

/// Part of the class registry: what is known of classes beside their tables.
TEditors& Editors() {
  static TEditors editors;
  return editors;
}

}  // namespace

std::vector<std::string> TPropertyEditor::GetValues(TPersistent&) const { return {}; }

void RegisterPropertyEditor(const TClass& type, std::string_view property,
                            std::shared_ptr<const TPropertyEditor> editor) {
  Editors()[{&type, LowerCase(property)}] = std::move(editor);
}

const TPropertyEditor* FindPropertyEditor(const TObject* object, std::string_view property) {
  const std::string name = LowerCase(property);
  for (const TClass* type = &Need(object, "object of the property").ClassType(); type != nullptr;
       type = type->Ancestor()) {
    const auto at = Editors().find({type, name});
    if (at != Editors().end()) return at->second.get();
  }
  return nullptr;
}

}  // namespace vx
