// How a playback is paced and where it is: what the playback bar and the worker of the first file tell each
// other. Zero-filled it asks for nothing: a ping each 16 ms, gaps as they come. Shared, unless said
// otherwise.
#pragma once

#include <cstdint>

#include "base/shared_value.h"

namespace tw {

struct Overview;

// In the place of a recorded time.
inline constexpr int64_t kNoRecordedTime = INT64_MAX;
inline constexpr int64_t kNoPingYet = INT64_MIN;

// One of ReplayState::pace_percent.
inline constexpr int32_t kPaceAsGiven = 0;

struct ReplayState {
  int32_t bar;           // there is one: a growing file is followed, each ping can be stepped back to, a held
                         // second file keeps up with the first
  int32_t pace_percent;  // of the recorded time; kPaceAsGiven: AppState::playbackPace between two pings
  int32_t skipGaps;      // of more than five seconds
  int32_t stepOn;        // pings that are to be shown at once: the GUI adds, the worker takes all
  int64_t timeRequest;   // see RequestTime
  int64_t time_ms;       // recorded time of the newest ping that tells one; kNoPingYet: of none
  uint64_t position;     // bytes from the file's start; where the playback is
  uint64_t fileSize;     // bytes, as it was known then
  Overview* overview;    // made with the first playback that has a bar, for the life of the process
};

// `request` is ReplayState::timeRequest: where the operator wants to be, a recorded time of 0 or more. 0 is
// none, so that a zero-filled record asks for nothing; else one more than the time.
inline void RequestTime(int64_t& request, int64_t time_ms) {
  StoreShared(request, time_ms + 1);
}

// Adds to ReplayState::stepOn, never beyond what one second of keys can ask for.
inline void RequestStepOn(int32_t& stepOn, int32_t pings) {
  constexpr int32_t kMost = 10'000;
  int32_t before = LoadShared(stepOn);
  while (before <= kMost - pings && !CompareExchangeShared(stepOn, before, before + pings)) {
    before = LoadShared(stepOn);
  }
}

}  // namespace tw
