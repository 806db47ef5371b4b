// Reading numbers and literals off the front of a text, with the rules of the C library's formatted scan:
// numbers skip leading white space, a scan stops at the first mismatch. Locale-free, never past the end of
// the text, and out of range is no value instead of undefined. Any thread.
//
// Each function takes what it read off the front of `text` and returns true; on a mismatch it returns false
// and leaves both `text` and the target as they were.
#pragma once

#include <cstdint>
#include <string_view>

namespace tw {

// "%d" and "%u": optional sign, decimal digits. "%u" refuses a minus sign.
[[nodiscard]] bool ScanInt(std::string_view& text, int32_t& value);
[[nodiscard]] bool ScanUint(std::string_view& text, uint32_t& value);

// "%Nd": at most `width` characters, the sign counted.
[[nodiscard]] bool ScanIntWidth(std::string_view& text, size_t width, int32_t& value);

// "%f": optional sign, digits with at most one point, optional exponent. Infinity and NaN, as words or as
// the result of an overflow, are no value; what is too small for a float is 0.
[[nodiscard]] bool ScanFloat(std::string_view& text, float& value);
// The same in double precision.
[[nodiscard]] bool ScanDouble(std::string_view& text, double& value);

// "%2X" and the like: at most `width` hexadecimal digits, no prefix.
[[nodiscard]] bool ScanHex(std::string_view& text, size_t width, uint32_t& value);

// Exactly these characters.
[[nodiscard]] bool ScanLiteral(std::string_view& text, std::string_view literal);

// Blanks, tabs, CR, LF, vertical tabs and form feeds off the front, any number of them.
void SkipWhiteSpace(std::string_view& text);

}  // namespace tw
