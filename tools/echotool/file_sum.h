// The SHA-256 of a whole file. One thread.
#pragma once

#include <atomic>
#include <string>

namespace tw::echotool {

// As 64 hexadecimal digits. False when the file cannot be read to its end, and when interrupted.
[[nodiscard]] bool SumOfFile(const std::wstring& path, const std::atomic<bool>& interrupted,
                             std::string& sum);

}  // namespace tw::echotool
