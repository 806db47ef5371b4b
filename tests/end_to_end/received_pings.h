// What came of a stream, as rings showed it and as record files hold it. The device samples at 25,000 Hz.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "acquisition/ping_record.h"
#include "acquisition/ping_ring.h"

namespace tw::test {

inline constexpr size_t kRepeat = 4;  // a sample on the grid

// How a mode is recorded.
enum class RecordForm : uint8_t {
  line,   // recorded as it came, behind it the position
  epoch,  // the same behind a frequency line
  text,   // recorded as it came, behind it the position and an empty line
  block,  // recorded as a frame
};

// A ping that was on view, or a frame of a file.
struct Shown {
  PingHeader header;
  std::vector<uint16_t> samples;
};

// Collects what a ring shows, as long as it is looked at more often than pings come.
class RingWatch {
 public:
  RingWatch(const PingRing& ring, RecordForm form) : ring_(ring), form_(form) {}

  void Look(int32_t index);

  std::vector<Shown> seen;

 private:
  static constexpr size_t kLooked = kSlotSamples + 400;
  const PingRing& ring_;
  const RecordForm form_;
  std::string last_ = std::string(kLooked, '\0');
};

struct RecordedFile {
  std::vector<std::string> messages;  // as they came, in the forms that are recorded so
  std::vector<Shown> frames;
  [[nodiscard]] size_t Size() const { return messages.size() + frames.size(); }
};

// Read a file behind its first line; a torn or foreign part is a fatal failure.
void ReadTexts(std::string_view file, RecordForm form, RecordedFile& out);
void ReadFrames(std::string_view file, RecordedFile& out);

}  // namespace tw::test
