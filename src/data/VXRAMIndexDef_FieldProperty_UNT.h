// VXRAMIndexDef_FieldProperty_UNT.h: the field names that a person may choose from for an index.
#pragma once

#include <string>
#include <vector>

#include "platform/component/PropertyEditor.h"

namespace vx {

/// TVXRAMIndexDef.FieldName: the field names of the table; an empty one is shown as "(Unassigned)".
class TVXRAMIndexDefFieldProperty : public TPropertyEditor {
 public:
  std::vector<std::string> GetValues(TPersistent& object) const override;
  std::string GetVisualValue(const std::string& value) const override { return value.empty() ? "(Unassigned)" : value; }
};

namespace VXRAMIndexDef_FieldProperty_UNT {
/// Registers the editor.
void Register();
}  // namespace VXRAMIndexDef_FieldProperty_UNT

}  // namespace vx
