// The acquisition workers of "Altimeter NMEA" (mode 3 of every family): a ping is one epoch of NMEA sentences
// (see epoch_reader.h and nmea_depth.h). Recorded of a ping: "#F %d Hz" with the frequency that was set for
// its channel, the epoch as received, GGA, RMC.
#pragma once

#include "acquisition/live_worker.h"

namespace tw {

extern const LiveMode kFirstFamilyNmeaMode;
extern const LiveMode kSecondFamilyNmeaMode;

// Thread bodies; `state` is the state record.
void FirstFamilyNmeaWorker(void* state);
void SecondFamilyNmeaWorker(void* state);

}  // namespace tw
