// Base64 (RFC 4648). Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace tw {

// Decodes groups of four characters to three bytes each, '=' as zero bits, as far as the text goes: it ends
// at the first group that is incomplete or holds another character, or that does not fit. Returns the bytes
// written, padding included.
size_t DecodeBase64(std::string_view text, std::span<uint8_t> out);

}  // namespace tw
