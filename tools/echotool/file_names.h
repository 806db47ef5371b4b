// Names of recordings and outputs. On the command line and in messages they are bytes, as the system has
// them; the platform layer takes wide paths. One thread.
#pragma once

#include <string>

#include "tools/echotool/options.h"

namespace tw::echotool {

[[nodiscard]] std::wstring WideName(const std::string& path);
[[nodiscard]] std::string NarrowName(const std::wstring& path);

// The last component.
[[nodiscard]] std::wstring LastOfPath(const std::wstring& path);

// As text that can be shown anywhere: what is no UTF-8 in it is replaced.
[[nodiscard]] std::string ReadableText(const std::string& text);

// The last component, as text that can be shown anywhere: what is no UTF-8 in it is replaced.
[[nodiscard]] std::string ShownName(const std::string& path);

// However a file is named; empty when it is not there or cannot be opened.
[[nodiscard]] std::wstring FullPath(const std::wstring& path);

// Where the output of a recording goes: into the folder asked for or the recording's own, under its name up
// to the last point, then `part`. (The window cuts at the first one, with which "L01.1.log" and "L01.2.log"
// would meet.)
[[nodiscard]] std::wstring OutputPath(const std::string& recording, const Options& options,
                                      const std::wstring& part = L"");

// The system's text for one of its errors, without what follows the last word.
[[nodiscard]] std::string ReasonText(uint32_t error);

}  // namespace tw::echotool
