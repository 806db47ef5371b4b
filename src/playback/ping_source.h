// A recording as a sequence of pings, whatever its kind: what playback, the conversions and echotool have in
// common. One thread.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "acquisition/ping_record.h"
#include "app/state/event_marks.h"
#include "platform/file.h"
#include "playback/detection.h"

namespace tw {

struct RecordedPing {
  PingHeader header;
  std::span<const uint16_t> samples;  // as they stand in the recording, none in altimeter modes; until Next
  uint16_t factor;                    // that brings them onto the 12-bit scale of the display
  int32_t channel;                    // 0: the only or the high frequency, 1: the low one
  bool bothChannels;                  // the low channel's altitude stands in the same line
  float altitudeLow_m;
  bool hasPosition;     // never for 0 N 0 E at a height of 0: so a receiver without a fix is told
  double latitude_rad;  // as exact as the recording tells them; 0 without a position
  double longitude_rad;
  int32_t gpsQuality;  // as a GGA sentence tells it, 0 without a position; 1 where a recording tells no more
  bool hasTime;        // the recording tells when the ping was
  int64_t time_ms;
  bool hasMilliseconds;  // it tells `time_ms`, be it that of the ping before, finer than in seconds
  uint64_t begin;        // place of its first byte in the file
  uint64_t recordBegin;  // the same of what was recorded with it: a line of its own may stand ahead of it
};

// What the recording's start tells. Texts are constants.
struct RecordingKind {
  const char* name;  // "echo text", "binary frames", …
  DeviceFamily family;
  int32_t outputMode;
  int32_t channels;
  bool hasSamples;
  bool isText;           // lines and blocks; else binary frames
  bool hasInfo;          // it begins with its settings
  float soundSpeed_mps;  // of the settings that the recording begins with, else 1500
};

// What a recording of echo text does not tell, if neither a block of it nor what a sample covers and the
// speed of sound do.
inline constexpr int32_t kUsualSampling_hz = 25'000;

// Asked between two reads of the file, so that garbage without end holds nobody up: once it says true, Next
// returns false although the recording goes on.
struct Interruption {
  bool (*isAsked)(void* subject);
  void* subject;
};

// The first ping of a recording begins within this many bytes; a file without one there is none.
inline constexpr uint64_t kFirstPingReach = uint64_t{64} * 1024 * 1024;

class PingSource {
 public:
  virtual ~PingSource() = default;

  [[nodiscard]] virtual const RecordingKind& Kind() const = 0;

  // As what it is read, and the settings lines that it begins with.
  [[nodiscard]] virtual const Detected& Told() const = 0;

  // The next ping; false at the end of the recording, when interrupted, and when it cannot be read any
  // further. Damage is skipped.
  [[nodiscard]] virtual bool Next(RecordedPing& ping) = 0;

  // True when the system refused to read on: the recording has not been read to its end.
  [[nodiscard]] virtual bool Failed() const = 0;

  // Whom Next asks from now on. What it refers to outlives the last call of Next.
  virtual void SetInterruption(const Interruption& interruption) = 0;

  // Back to the beginning, as if nothing had been read; the file may have grown meanwhile. False when it
  // cannot be positioned.
  [[nodiscard]] virtual bool Rewind() = 0;

  // Goes on with the first ping that begins at or behind this place of the file. False when the file cannot
  // be positioned.
  [[nodiscard]] virtual bool Seek(uint64_t position) = 0;

  // Pings without a number of their own are counted on from this one.
  virtual void CountFrom(uint32_t number) = 0;

  // True once a ping got the sampling frequency that the caller gave, because the recording tells none.
  [[nodiscard]] virtual bool IsSamplingAssumed() const = 0;

  // Bytes of the recording: behind the last ping, in all, and those that belonged to no ping and no settings
  // so far: damage. Sentences and line ends that were recorded with a ping belong to it.
  [[nodiscard]] virtual uint64_t Position() const = 0;
  [[nodiscard]] virtual uint64_t Size() const = 0;
  [[nodiscard]] virtual uint64_t Skipped() const = 0;

  // How many bytes of the file are read at once, 4,096 or more: few for who takes a ping here and there.
  virtual void SetReadSize(uint32_t bytes) = 0;

  // Size is told anew: the file may have grown since.
  virtual void Measure() = 0;

  // The operator's marks in order of time, its own and others; none until they are set.
  void SetMarks(std::vector<EventMark> marks) { marks_ = std::move(marks); }
  [[nodiscard]] std::span<const EventMark> Marks() const { return marks_; }

 private:
  std::vector<EventMark> marks_;
};

enum class RecordingFault : uint8_t {
  none,
  notOpened,  // the system's error says why
  unknown,    // no kind of recording that this program knows
  noPing,     // a known kind, but not one ping in it
  unread,     // the system refused to read it
  noMemory,
};

// Opens a recording for reading, nobody else writing to it unless that is allowed, and finds out what it is.
// Null with the fault set. A file of two channels gives the pings of both in the order in which they stand.
[[nodiscard]] std::unique_ptr<PingSource> OpenRecording(const wchar_t* path, RecordingFault& fault,
                                                        int32_t sampling_hz = kUsualSampling_hz,
                                                        WriteSharing sharing = WriteSharing::denied);

// The same for a file that is open, of which its start says what it can be; it stays its opener's. Null with
// the fault set.
[[nodiscard]] std::unique_ptr<PingSource> MakeRecording(Handle file, const Candidates& candidates,
                                                        RecordingFault& fault,
                                                        int32_t sampling_hz = kUsualSampling_hz);

}  // namespace tw
