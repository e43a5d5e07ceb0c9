// ColumnNames.h: the names of columns: as a file gives them, as a table takes them, as a user asks for them.
//
// A heading is what the user sees and types: the file's text without blanks around it, made unique ("Total", "Total
// (2)"). A field name is the heading with the two characters replaced that mean something in a sort specification, a
// dot and a semicolon:
//
//   " Order No. "  ->  heading "Order No."  ->  field "Order No_"
//
// Names are found exactly, else without regard to letter case; two headings never differ by case alone.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vx::kestrix {

/// Trims, names the nameless "Column 3", and numbers those that were there already.
std::vector<std::string> HeadingsOf(const std::vector<std::string_view>& cells);
/// "Column 1" to "Column n".
std::vector<std::string> NumberedHeadings(std::size_t count);
/// One field name a heading, unique as well.
std::vector<std::string> FieldNamesOf(const std::vector<std::string>& headings);

/// Position of the heading that the user means, if there is one.
std::optional<std::size_t> FindHeading(const std::vector<std::string>& headings, std::string_view name);
/// The same; raises EUserError with the nearest name if there is none, or with the first few if none is near.
std::size_t NeedHeading(const std::vector<std::string>& headings, std::string_view name);
/// "Order Year, Order Month": positions of all headings named, between them one of the separators. A heading that holds
/// a separator itself is found too. Raises EUserError for an unknown or empty name.
std::vector<std::size_t> NeedHeadings(const std::vector<std::string>& headings, std::string_view names, char separator);

/// "Product Name=Nike*" taken apart: the column, and the text behind the sign without blanks around it. At the first
/// "=" with a heading before it, since headings may hold one. Raises EUserError, which calls the text what `option`
/// says.
std::pair<std::size_t, std::string_view> NeedHeadingAndValue(const std::vector<std::string>& headings,
                                                             const char* option, std::string_view text);

}  // namespace vx::kestrix
