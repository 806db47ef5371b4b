// Formatting into fixed buffers, one formatter for the whole program: the C library's snprintf on narrow
// UTF-8 text, widened afterwards. Its ties round the same way on every system, and "%s" always means narrow
// text. The locale is never set, so the decimal separator is a point. Any thread.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#if defined(__MINGW32__)
#define TW_PRINTF(format_index, first_argument) \
  __attribute__((format(gnu_printf, format_index, first_argument)))
#else
#define TW_PRINTF(format_index, first_argument) __attribute__((format(printf, format_index, first_argument)))
#endif

namespace tw {

// Writes the text and a terminating zero. What does not fit is cut. Returns the characters stored, the zero
// not counted; 0 for an empty buffer.
size_t FormatText(std::span<char> out, const char* format, ...) TW_PRINTF(2, 3);

// The value as "%.*f" gives it, ties and all, several times as fast; without a terminating zero; "nan" and
// "inf" for what is not finite. Returns the characters stored; 0 when they do not fit.
size_t FormatFixed(std::span<char> out, double value, int decimals);

// The same into wide text (UTF-16 or UTF-32, as wchar_t is here). At most 1,023 bytes of UTF-8 are formatted.
size_t FormatWide(std::span<wchar_t> out, const char* format, ...) TW_PRINTF(2, 3);

// UTF-8 to wide text and back, each with a terminating zero, cut at a whole character. Invalid input becomes
// U+FFFD. Returns the units stored, the zero not counted.
size_t WidenText(std::span<wchar_t> out, std::string_view text);
size_t NarrowText(std::span<char> out, std::wstring_view text);

// Copies wide text with a terminating zero, cut to fit. Returns the units stored, the zero not counted.
size_t CopyWide(std::span<wchar_t> out, std::wstring_view text);

}  // namespace tw
