// The outputs of a recording: each is chosen its place, made and given its name. Any thread, each job its
// own.
#pragma once

#include "tools/echotool/job.h"
#include "tools/echotool/replacing.h"
#include "tools/echotool/whole_file.h"

namespace tw::echotool {

// Writes the outputs of the job's recording, or tells what would be written. False with the reason in
// `result`: then no output is there that was not there before.
[[nodiscard]] bool WriteOutputs(const Job& job, Result& result);

// Gives an output its name, if it may have it; what it replaces is noted.
[[nodiscard]] bool Complete(WholeFile& file, const Place& place, Result& result);

// What would be done with the place of an output.
[[nodiscard]] std::string ForeseenText(const Place& place);

}  // namespace tw::echotool
