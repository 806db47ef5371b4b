// The three families of devices, with the numbers that stand for them in records and on INFO lines. What an
// output mode, a settings query or an INFO line means depends on them.
#pragma once

#include <cstdint>

namespace tw {

enum class DeviceFamily : int32_t { third = 0, first = 1, second = 2 };

}  // namespace tw
