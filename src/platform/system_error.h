// The calling thread's last system error. Whoever wants it takes it right after the failing call, before any
// other call of the platform layer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tw {

[[nodiscard]] uint32_t LastSystemError();

// The disk has no room left, or this user may not take more of it.
[[nodiscard]] bool MeansFullDisk(uint32_t code);

// The system's own text for the code, in its default language, with a terminating zero; cut to fit. Always
// some text, also for codes that the system does not know. Returns the units stored.
size_t SystemErrorText(uint32_t code, std::span<wchar_t> out);

}  // namespace tw
