// The streams of echo text (see echo_text.h): modes 2 and 4 of the first device family; 2, 4, 5 and 6 of the
// others. Recorded of a ping: the block as received, GGA, RMC, an empty line.
#pragma once

#include "acquisition/stream_form.h"

namespace tw {

extern const StreamForm kFirstTextStream;
extern const StreamForm kSecondTextStream;

}  // namespace tw
