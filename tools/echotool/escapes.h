// Foreign text (names of files, identities, words of marks) on its way into a format that gives some of its
// characters a meaning. What is no character to show becomes a blank. Pure; any thread.
#pragma once

#include <string>
#include <string_view>

namespace tw::echotool {

// For HTML, SVG and other XML, between tags and within quoted attributes.
[[nodiscard]] std::string MarkupText(std::string_view text);

// With its quotes.
[[nodiscard]] std::string QuotedJson(std::string_view text);

// A cell of a comma-separated table, in quotes where it needs them. Behind an apostrophe where a spreadsheet
// would take it for a formula.
[[nodiscard]] std::string CsvCell(std::string_view text);

// The name of a file, or its way from here with slashes, as a relative link, for an attribute.
[[nodiscard]] std::string LinkText(std::string_view name);

}  // namespace tw::echotool
