// A whole recording in one row: a column for each equal part of its file, with what one ping of that part
// tells. A thread of its own fills it while the playback bar shows it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/sync.h"
#include "platform/thread.h"

namespace tw {

inline constexpr size_t kOverviewColumns = 2'048;
inline constexpr size_t kOverviewRows = 32;

struct OverviewColumn {
  bool hasPing;
  uint8_t
      echoes[kOverviewRows];  // the strongest one of each part of the reach, from above; 255 is full scale
  float depth_m;              // altitude; 0: none
};

struct Overview {
  wchar_t path[1'024];  // of the recording; GUI thread, while nobody makes it
  Handle thread;        // that makes it; GUI thread
  Event stop;           // manual reset: asks that thread to end
  Lock lock;            // what follows
  OverviewColumn columns[kOverviewColumns];
  float reach_m;      // of the rows together; 0: the recording has no echoes
  uint64_t fileSize;  // bytes that the columns stand for; 0: there are none yet
  int64_t begin_ms;   // recorded time of the first ping that tells one; kNoRecordedTime: none does
  int64_t end_ms;     // of the last one
  uint32_t changes;   // how many times anything of this has changed
};

}  // namespace tw
