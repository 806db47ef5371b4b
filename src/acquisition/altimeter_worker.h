// The acquisition workers of the modes whose pings are lines of text: simple and dual altimeter, DESO-25(M),
// both Sonarmites, PSA-916, AltiPlusTemp. (see altimeter_lines.h). Recorded of a ping: the line as received,
// GGA, RMC.
#pragma once

#include "acquisition/live_worker.h"

namespace tw {

extern const LiveMode kSimpleAltimeter;
extern const LiveMode kReportingAltimeter;  // simple, of a device that reports its frequency
extern const LiveMode kDeso25;
extern const LiveMode kDualAltimeter;
extern const LiveMode kSonarmiteDfx;
extern const LiveMode kSonarmiteOld;
extern const LiveMode kPsa916;
extern const LiveMode kAltiPlusTemp;

// Thread bodies; `state` is the state record.
void SimpleWorker(void* state);
void ReportingSimpleWorker(void* state);
void Deso25Worker(void* state);
void DualTextWorker(void* state);
void SonarmiteDfxWorker(void* state);
void SonarmiteOldWorker(void* state);
void Psa916Worker(void* state);
void AltiPlusTempWorker(void* state);

}  // namespace tw
