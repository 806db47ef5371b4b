// Timing lines in the debugger's output: seconds since Start was pressed. GUI thread.
#pragma once

#include <cstdint>

namespace tw {

class ElapsedLog {
 public:
  // Writes the first line.
  ElapsedLog();

  // Writes `label`, the seconds and a line feed.
  void Write(const char* label) const;

 private:
  uint32_t begin_ms_;
};

}  // namespace tw
