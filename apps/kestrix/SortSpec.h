// SortSpec.h: --sort in the user's words as a sort specification of the engine.
//
// The engine skips names that it doesn't know and takes any letter but "D" for ascending. A user who mistypes wants to
// know, so here both are errors, and only then the engine gets field names in its own spelling:
//
//   "Order No..D;profit"   ->  "Order No_.D;Profit.A"        // headings "Order No." and "Profit"
#pragma once

#include <string>
#include <string_view>

#include "ColumnPlan.h"

namespace vx::kestrix {

/// Raises EUserError for an unknown column or order letter.
std::string SortSpecification(std::string_view text, const TColumnPlan& plan);

}  // namespace vx::kestrix
