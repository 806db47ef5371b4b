// Texts as other formats want them. Pure; any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tw::echotool {

// UTF-8 as the content of an XML element or of an attribute in double quotes.
[[nodiscard]] std::string EscapedXml(std::string_view text);

// UTF-8 as a JSON string, with its quotes.
[[nodiscard]] std::string JsonText(std::string_view text);

// "2026-05-01T09:30:00Z", with milliseconds where there are any; UTC, from milliseconds since 1970.
[[nodiscard]] std::string IsoTime(int64_t time_ms);

}  // namespace tw::echotool
