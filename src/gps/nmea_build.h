// GGA and RMC sentences made from the fix, as they are appended to each recorded ping. Pure; any thread that
// holds gpsLock or a copy of the fix.
#pragma once

#include <cstddef>
#include <span>

#include "gps/gps_fix.h"

namespace tw {

// Write one sentence, checksum and CR LF included, with a terminating zero; 256 bytes are enough for
// what the parser fills. Returns its length without the zero; 0 and an empty text when it does not fit. With
// `gn` the talker is GN and positions have six decimals, else GP and four. kept: "%07.4f" does not pad
// degrees as NMEA does, and checksum digits are lower case; readers of record files know both.
size_t BuildGga(std::span<char> text, const GpsFix& fix, bool gn);
size_t BuildRmc(std::span<char> text, const GpsFix& fix, bool gn);

}  // namespace tw
