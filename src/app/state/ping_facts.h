// What a live worker tells of each ping to whoever passes it on: a depth with its attitude and temperature,
// and the fix as it stood then. A plain record.
#pragma once

#include <cstdint>

#include "app/state/gps_fix.h"

namespace tw {

struct PingFacts {
  uint32_t clock_ms;    // the millisecond clock when the ping was whole
  float altitude_m;     // below the transducer; 0 and what is not finite: no bottom
  float range_m;        // that was listened to
  float temperature_c;  // not finite: none was measured
  float pitch_deg;      // likewise
  float roll_deg;
  bool dual;            // of a dual run, then
  bool secondChannel;   // of its low channel
  bool talkerGn;        // the fix came with the talker GN, else GP
  uint32_t fixUpdates;  // so many sentences had been applied to the fix in all
  GpsFix fix;           // quality 0: no receiver
};

// Takes a ping without ever waiting for anybody. Any thread.
class PingSink {
 public:
  virtual void Offer(const PingFacts& ping) = 0;

 protected:
  ~PingSink() = default;
};

}  // namespace tw
