// Values of one key of the current user's registry. Each call opens the key (creating it when missing) and
// closes it again. GUI thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tw {

[[nodiscard]] bool ReadRegistryNumber(const wchar_t* key, const wchar_t* name, uint32_t& value);
[[nodiscard]] bool WriteRegistryNumber(const wchar_t* key, const wchar_t* name, uint32_t value);

// Reads a text value into at most `size_bytes` bytes of `out`, its terminating zero included; false (and
// `out` unchanged) when it is missing, is no text or does not fit. The bytes are those of UTF-16, whatever
// wchar_t is here: 261 bytes hold 129 characters.
[[nodiscard]] bool ReadRegistryText(const wchar_t* key, const wchar_t* name, std::span<wchar_t> out,
                                    uint32_t size_bytes);
// Writes the text with its terminating zero.
[[nodiscard]] bool WriteRegistryText(const wchar_t* key, const wchar_t* name, const wchar_t* text);

[[nodiscard]] bool WriteRegistryBytes(const wchar_t* key, const wchar_t* name,
                                      std::span<const uint8_t> bytes);

}  // namespace tw
