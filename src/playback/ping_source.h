// A recording as a sequence of pings, whatever its kind: what playback, the conversions and echotool have in
// common. One thread.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "acquisition/ping_record.h"

namespace tw {

struct RecordedPing {
  PingHeader header;
  std::span<const uint16_t> samples;  // as they stand in the recording, none in altimeter modes; until Next
  int32_t channel;                    // 0: the only or the high frequency, 1: the low one
  bool hasPosition;
  double latitude_rad;  // as exact as the recording tells them; 0 without a position
  double longitude_rad;
};

// What the recording's start tells. Texts are constants.
struct RecordingKind {
  const char* name;  // "echo text", "binary frames", …
  int32_t family;    // 1, 2 or 0
  int32_t outputMode;
  int32_t channels;
  bool hasSamples;
  bool isText;           // lines and blocks; else binary frames
  float soundSpeed_mps;  // of the settings that the recording begins with, else 1500
};

class PingSource {
 public:
  virtual ~PingSource() = default;

  [[nodiscard]] virtual const RecordingKind& Kind() const = 0;

  // The next ping; false at the end of the recording. Damage is skipped.
  [[nodiscard]] virtual bool Next(RecordedPing& ping) = 0;

  // Bytes of the recording: behind the last ping, in all, and those that belonged to no ping so far.
  [[nodiscard]] virtual uint64_t Position() const = 0;
  [[nodiscard]] virtual uint64_t Size() const = 0;
  [[nodiscard]] virtual uint64_t Skipped() const = 0;
};

enum class RecordingFault : uint8_t {
  none,
  notOpened,  // the system's error says why
  unknown,    // no kind of recording that this program knows
  noPing,     // a known kind, but not one ping in it
};

// Opens a recording for reading, nobody else writing to it, and finds out what it is. Null with the fault
// set. A file of two channels gives the pings of both in the order in which they stand.
[[nodiscard]] std::unique_ptr<PingSource> OpenRecording(const wchar_t* path, RecordingFault& fault);

}  // namespace tw
