// The two channels of a run, and one accessor for what the state record and the process-wide values hold of
// each. Of both frequencies a is the high one and b the low one; a run of one frequency, whichever it is, has
// a alone. Threads and locks are those of the fields.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"

namespace tw {

enum class RecordChannel : uint8_t { a, b };

// What a channel has of its own; owns nothing.
struct ChannelView {
  PingRing*& ring;
  int32_t& ringIndex;
  int64_t& ringTime;
  Lock& ringLock;
  uint16_t (&slotReach)[kSlotsOfRing];
  MarkList& marks;
  TimeLineList& lines;
  Handle& recordFile;
  Handle& nextRecord;
  Handle& inputFile;
  Event& stopEvent;  // of the file worker; a's ends the acquisition worker too
  int32_t& playedFrequency_hz;
  float& latestAltitude_m;
  uint32_t& latestPing_ms;
  int32_t& displayRange_mm;
  int32_t& timeScale_s;
};

// clang-format off
[[nodiscard]] inline ChannelView ChannelOf(AppState& s, RecordChannel channel) {
  Globals& g = globals;
  if (channel == RecordChannel::a) {
    return {s.ringA, s.ringIndexA, s.ringTimeA, s.ringLockA, g.slotReachA, g.marksA, g.linesA,
            s.recordFileA, s.nextRecordA, s.inputFileA, s.stopEvent,
            g.playedFrequencyA_hz, g.latestAltitudeHigh_m, g.latestPingHigh_ms, s.displayRangeUpper, s.timeScaleUpper};
  }
  return {s.ringB, s.ringIndexB, s.ringTimeB, s.ringLockB, g.slotReachB, g.marksB, g.linesB,
          s.recordFileB, s.nextRecordB, s.inputFileB, s.stopEventB,
          g.playedFrequencyB_hz, g.latestAltitudeLow_m, g.latestPingLow_ms, s.displayRangeLower, s.timeScaleLower};
}
// clang-format on

// Which settings rule a channel. The families 2 and 0 have the high ones alone.
[[nodiscard]] constexpr FieldChannel FieldsOf(RecordChannel channel, bool dual,
                                              const DeviceSettings& settings, DeviceFamily family) {
  const bool low = dual ? channel == RecordChannel::b : UsesLowChannel(settings, family);
  return low ? FieldChannel::low : FieldChannel::high;
}

}  // namespace tw
