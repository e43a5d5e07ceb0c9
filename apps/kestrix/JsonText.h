// JsonText.h: texts as JSON has them.
#pragma once

#include <string>
#include <string_view>

namespace vx::kestrix {

/// In double quotes, with what must be escaped escaped. Bytes that are no UTF-8 become U+FFFD.
std::string JsonText(std::string_view text);

}  // namespace vx::kestrix
