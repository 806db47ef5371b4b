// The echo of the modes that send no samples: a short pulse drawn at the depth that the device reports, so
// that the echogram shows a bottom line. Pure; the thread that owns the image.
#pragma once

#include "acquisition/store_ping.h"

namespace tw {

// Draws the pulse into an image whose frame holds no samples of its own: twelve samples on the 100 kHz grid,
// the first non-zero one at trunc((altitude * 2 / sound speed) / 0.00001), one zero before it. What lies
// outside the slot is cut. No pulse for an altitude that is negative or not finite, for a sound speed of 0 or
// less or not a number, and when the first non-zero sample lies beyond the slot.
void DrawPulse(SlotImage& image, double altitude_m, double soundSpeed_mps);

}  // namespace tw
