// Listening to what happens to files, call by call, so that a test can tell what a disk would hold had the
// machine stopped at any of them. Changes of names by RenameFile are not heard.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tw {

enum class DiskStep : uint8_t {
  created,  // is there, and empty
  written,  // these bytes stand at this place
  cut,      // ends at this place, or was extended to it
  flushed,  // the disk has all of it
  removed,
};

struct DiskCall {
  DiskStep step;
  std::wstring path;  // as it was named by whoever created or removed it
  int64_t time_us;    // since the start of the virtual clock
  uint64_t place;
  std::string bytes;
};

// Collects what any thread's calls do from now on, when they have done it.
void StartDiskCalls();
// The calls so far, in order; nothing is collected any more.
[[nodiscard]] std::vector<DiskCall> TakeDiskCalls();

// For the file layer.
[[nodiscard]] bool AreDiskCallsHeard();
void NoteDiskCall(DiskStep step, std::wstring_view path, uint64_t place = 0,
                  std::span<const char> bytes = {});

}  // namespace tw
