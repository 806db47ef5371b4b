// The two files of a dual recording, one a channel, by their names:
//
//   20250314_093005_Dual_450kHz_id_KT-1042_txt12.log
//   20250314_093005_Dual_200kHz_id_KT-1042_txt12.log
//
// Pure; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tw {

// The number ahead of the first "kHz" of a file's name; nothing when there is none.
[[nodiscard]] std::optional<int32_t> KHzOfName(std::wstring_view path);

// True when the names are equal except for that number.
[[nodiscard]] bool BelongTogether(std::wstring_view pathA, std::wstring_view pathB);

}  // namespace tw
