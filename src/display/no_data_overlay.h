// "NO DATA 12 s" or an alarm over the newest columns of a panel's image, so that a picture that stands is not
// taken for a live one. Pure; any thread.
#pragma once

#include <cstdint>

#include "display/layout.h"

namespace tw {

struct NoDataSign {
  Rect board;  // black, behind the text; empty where the image has no room for it
  Label label;
};

[[nodiscard]] NoDataSign LayOutNoData(const PanelLayout& layout, uint32_t noData_s);

// "SHALLOW 1.85m" below it.
[[nodiscard]] NoDataSign LayOutAlarm(const PanelLayout& layout, const wchar_t* text);

}  // namespace tw
