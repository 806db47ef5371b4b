// A conversion: each ping of a recording goes through a converter into its output, to the recording's end. No
// window, no posts, no state record: the window's file worker and echotool run the same one. One thread.
#pragma once

#include <cstdint>

#include "playback/converter.h"
#include "playback/ping_source.h"

namespace tw {

// Whoever wants to know how far a conversion is, and can end it.
class ConversionWatch {
 public:
  virtual ~ConversionWatch() = default;

  // True: it is to end. Asked ahead of each ping, and between two reads of the file.
  [[nodiscard]] virtual bool IsStopped() = 0;

  // The output takes nothing any more. True: the rest of the recording is read without it.
  [[nodiscard]] virtual bool GoesOnWithoutOutput() = 0;

  // The ping has been converted, unless there is no output any more.
  virtual void NotePing(const RecordedPing& ping) = 0;
};

enum class ConversionEnd : uint8_t {
  exhausted,  // all of the recording was read
  stopped,
  unread,     // the recording cannot be read any further
  unwritten,  // the output takes nothing any more
};

// Converts what has not been read yet. The file of the output stays its opener's.
[[nodiscard]] ConversionEnd RunConversion(PingSource& recording, PingConverter& converter,
                                          ConversionWatch& watch);

}  // namespace tw
