// The look of the pages that `echotool report` writes: light and dark, from telephone to A4.
#pragma once

#include <string_view>

namespace tw::echotool {

// Between <style> and its end.
[[nodiscard]] std::string_view ReportStyle();

}  // namespace tw::echotool
