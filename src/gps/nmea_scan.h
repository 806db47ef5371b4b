// The program's own formatted reader of NMEA 0183 sentences (IEC 61162-1). Pure; any thread.
//
// A format is literals, blanks (any number of blanks, none too) and conversions. "%d" and "%f" read a number,
// "%2d" one of at most two characters,
// "%C" one character, "%s" the field up to the next comma. A field ends before ',' or '*'. An empty field
// counts as one conversion and gives 0, a NUL or an empty text; two-character numbers that follow each other
// share one field, so an empty date counts as its three. The scan stops at the first mismatch: a literal that
// is not there (a field that is missing because the sentence ended), a field that is no number, or the end of
// the text. Surplus fields behind the format's end are not looked at.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

namespace tw {

using ScanTarget = std::variant<int32_t*, double*, char*, std::string_view*>;

// Returns the number of conversions made; the targets behind that are unchanged. A target whose type does not
// fit its conversion ends the scan.
[[nodiscard]] int ScanSentence(std::string_view sentence, std::string_view format,
                               std::span<const ScanTarget> targets);

}  // namespace tw
