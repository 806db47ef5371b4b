// What the dialogue with the device is about, and what came instead of a device, in words. Pure.
#pragma once

#include <span>

#include "app/run/device_search.h"
#include "device/device_link.h"

namespace tw {

// "Asking for settings 14 of 43", "Waiting for the prompt, attempt 3"; with a terminating zero, cut to fit.
void FormatProgress(const LinkProgress& progress, std::span<wchar_t> text);

// For the status bar behind a Start that has failed; lives as long as the process.
[[nodiscard]] const wchar_t* HeardText(Heard heard);

// What a search tells of a port: "VIRTUAL-0001", "noise (wrong speed?)"; with a terminating zero, cut to fit.
void FormatNews(const SearchNews& news, std::span<wchar_t> text);

}  // namespace tw
