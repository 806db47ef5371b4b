// What a chosen file is converted to; the numbers are those of AppState::conversionKind.
#pragma once

#include <cstdint>

namespace tw {

enum class Conversion : int32_t { none = 0, segy = 1, text = 2 };

}  // namespace tw
