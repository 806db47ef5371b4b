// The terminal that echotool may be talking to.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tw::echotool {

// The text, cut at a whole character so that it fits into so many columns of a terminal; what is no character
// to show is a question mark.
[[nodiscard]] std::string FitColumns(std::string_view text, size_t columns);

}  // namespace tw::echotool
