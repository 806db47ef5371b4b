// Text values of a registry: what both this side and the test gear give out.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace tw::posix {

// As ReadRegistryText() does when the value is there.
[[nodiscard]] bool GiveRegistryText(std::wstring_view text, std::span<wchar_t> out, uint32_t size_bytes);

}  // namespace tw::posix
