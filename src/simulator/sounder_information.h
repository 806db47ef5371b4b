// What a device says of itself when it is asked for information, by family. Pure; any thread.
//
//   first     lines of text, one of which names its interface
//   second    lines of text
//   third     B64INFO[base64 of its values]
//             Tx Frequency      450000 Hz
#pragma once

#include <string>

#include "simulator/sounder_options.h"
#include "simulator/sounder_settings.h"

namespace tw::sim {

// The answer's lines, without the end of the last. The options are within their bounds.
[[nodiscard]] std::string Information(const SounderOptions& options, const SounderSettings& settings);

}  // namespace tw::sim
