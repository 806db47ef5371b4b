// The fix as GGA and RMC sentences for programs and instruments of others. The ones in record files
// (gps/nmea_build.h) are laid out differently and can be longer than a sentence may be. Results and texts as
// in depth_sentences.h; pure, any thread.
#pragma once

#include "app/state/gps_fix.h"
#include "outputs/depth_sentences.h"

namespace tw {

// No sentence without a quality above 0, a place on earth and a time of day, and unless the receiver has sent
// such a sentence itself, and a GGA in any case: until then a fix has a quality that nobody measured. Places
// have four decimals of a minute, with the talker GN six; fewer (at least two) where the sentence would get
// too long. Other values that cannot be are empty fields. The RMC tells the mode of the quality where the
// fix's own mode is none.
size_t BuildOutputGga(SentenceText text, const GpsFix& fix, bool gn);
size_t BuildOutputRmc(SentenceText text, const GpsFix& fix, bool gn);

}  // namespace tw
