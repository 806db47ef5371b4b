// Names of recordings and outputs. On the command line and in messages they are bytes, as the system has
// them; the platform layer takes wide paths. One thread.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

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

// The same of a file that is not there, in a folder that may not be there either; as it is named then.
[[nodiscard]] std::wstring FullPathToBe(const std::wstring& path);

// What lies in a folder; the empty folder is the current one.
[[nodiscard]] std::wstring PathIn(const std::wstring& folder, const std::wstring& name);
// All but the last component, empty or ending in a separator.
[[nodiscard]] std::wstring FolderOfPath(const std::wstring& path);

// The name up to the last point, unless it begins with that. (The window cuts at the first one, with which
// "L01.1.log" and "L01.2.log" would meet.)
[[nodiscard]] std::wstring StemOf(const std::wstring& name);

// Where the output of a recording goes: into the folder, or the recording's own where that is empty, under
// its stem, then `part`.
[[nodiscard]] std::wstring OutputPath(const std::string& recording, const std::wstring& folder, Task task,
                                      const std::wstring& part = L"");

// What the names of a recording's outputs can have behind its stem: of one that is both channels, NetCDF has
// two. None of a task that writes none.
[[nodiscard]] std::span<const std::wstring_view> PartsOf(Task task);

// The stems of the recordings that a file of this name may have been made of, by any task.
[[nodiscard]] std::vector<std::wstring> OriginalStems(const std::wstring& name);

// True for a name that no recording has been given, but outputs have.
[[nodiscard]] bool IsNameOfOutput(const std::wstring& name);

// The system's text for one of its errors, without what follows the last word.
[[nodiscard]] std::string ReasonText(uint32_t error);

}  // namespace tw::echotool
