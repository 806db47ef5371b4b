// The sampling frequency of echo text that tells none: the blocks of the families 2 and 0 tell how much water
// a sample covers instead, and the settings line of their recording tells the speed of sound. Pure; any
// thread.
#pragma once

#include <cstdint>

namespace tw {

// In Hz, from 1 to 100,000: the whole part of 100,000 / k with a whole k where speed and resolution are
// within 2 % of that, else the nearest whole number. Nothing but a factor of the 100 kHz grid comes of the
// first: both figures are rounded in a file, and one Hz too much would repeat each sample once less. 0 when
// either is not told, that is, no finite number above 0, or when they are beyond all sense.
[[nodiscard]] int32_t SamplingOfResolution(float soundSpeed_mps, float resolution_mm);

}  // namespace tw
