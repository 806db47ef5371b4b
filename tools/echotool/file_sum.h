// The SHA-256 of a whole file. One thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

namespace tw::echotool {

struct FileSum {
  std::string digits;  // 64, hexadecimal
  uint64_t size = 0;   // of what was summed, in bytes
};

// Nothing when the file cannot be read to its end, and when interrupted.
[[nodiscard]] std::optional<FileSum> SumOfFile(const std::wstring& path,
                                               const std::atomic<bool>& interrupted);

}  // namespace tw::echotool
