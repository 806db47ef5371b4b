// For runs that write more than a disk holds: new files of one folder keep nothing of what is written, a sink
// is shown it. Such a file exists, empty, and can be removed and renamed; it tells the size and position that
// it would have, and can be neither read nor cut. Set up while no such file is open.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace tw {

class FileSink {
 public:
  virtual ~FileSink() = default;
  // `bytes` have been written at this offset of the file, which is where it ended. Called by the thread that
  // writes; must not call the platform.
  virtual void Written(std::wstring_view path, uint64_t offset, std::span<const uint8_t> bytes) = 0;
};

// Files that are created from now on, and whose path begins with this one, are sunk. Null: none are.
void SinkFiles(const wchar_t* folder, FileSink* sink);

}  // namespace tw
