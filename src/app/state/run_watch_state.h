// What is kept from one look at a run to the next. A plain record; all zeroes is valid. GUI thread.
#pragma once

#include <cstdint>

#include "app/state/port_entry.h"

namespace tw {

struct RunWatch {
  uint64_t recorded_ms;        // how long the present recording lasts, up to recordTick_ms
  uint32_t recordTick_ms;      // the millisecond clock
  uint32_t asked_ms;           // when the free space was last asked for, and when the rate was last taken
  uint32_t recordingNumber;    // of the recording at that time
  uint64_t rateFrom_bytes;     // recorded at that time
  uint64_t rate_Bps;           // bytes recorded a second; 0 until it is known
  int32_t rateOfOther;         // that is still the recording before
  uint32_t answers;            // of the free space, that were looked at
  int32_t faultTold;           // the recording's end by the disk has been told
  int32_t receiverTold;        // the status bar tells that the receiver is silent, in place of its port
  uint32_t receiverTold_s;     // since when
  int32_t depthAlarm;          // the depth is too small or too large
  uint32_t depthAlarm_ms;      // the millisecond clock when it sounded last
  wchar_t depthAlarmText[32];  // over the echogram; empty: none
  wchar_t diskText[64];        // in the last part of the status bar
  uint32_t portsAtStart[kMaxPorts];  // numbers of the ports that were there then; 0 behind the last
};

}  // namespace tw
