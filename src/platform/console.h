// The console of a command-line program, and the ways in which its user asks it to stop. The main thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

namespace tw {

// True when standard error is a terminal.
[[nodiscard]] bool IsErrorTerminal();

// For the life of the object a console shows UTF-8, where it has to be told.
class Utf8Console {
 public:
  Utf8Console();
  ~Utf8Console();  // NOLINT(performance-trivially-destructible): Windows gives it work
  Utf8Console(const Utf8Console&) = delete;
  Utf8Console& operator=(const Utf8Console&) = delete;

 private:
  [[maybe_unused]] uint32_t codePage_ = 0;  // that it had; 0: there is no console
};

// Writes to standard error in one piece, so that no character comes in parts.
void WriteError(std::string_view text);

// From now on the user's key, the end of the terminal or the session, and the system's request to end set
// `stop` (which outlives the program's work) instead of ending the program, unless whoever started it had
// them ignored. A write beyond the size that files may have fails instead of ending it.
void WatchInterruption(std::atomic<bool>& stop);

}  // namespace tw
