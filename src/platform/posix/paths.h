// Wide paths as the system has them. Both kinds of separator are understood, and paths that are given out
// have the backslash, so that code which takes names apart sees the same everywhere. A byte of a name that is
// no UTF-8 stands in wide paths as U+DC00 + byte, and so does a backslash that is part of a name: no
// character has such a code.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace tw::posix {

inline constexpr size_t kLongestCharacter = 4;  // in UTF-8

// Gives out a full path, with backslashes and a terminating zero. False when it does not fit.
[[nodiscard]] bool TellFullPath(std::string_view bytes, std::span<wchar_t> path);

class NarrowedPath {
 public:
  explicit NarrowedPath(std::wstring_view path);
  [[nodiscard]] const char* Get() const { return bytes_.c_str(); }

 private:
  std::string bytes_;
};

}  // namespace tw::posix
