// What writes the output of a task, ping by ping. One thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/handle.h"
#include "playback/output_file.h"
#include "tools/echotool/job.h"
#include "tools/echotool/netcdf_output.h"
#include "tools/echotool/report_output.h"
#include "tools/echotool/track_output.h"

namespace tw::echotool {

// The first pass of an output that has to know its form beforehand. False when interrupted, and with the
// reason in `error` when the recording cannot be read.
[[nodiscard]] bool Survey(const Job& job, RecordingSurvey& survey, std::string& error);

// The same of what NetCDF files are laid out by: of a recording of one channel its first pings.
[[nodiscard]] bool SurveyLayout(const Job& job, RecordingSurvey& survey, std::string& error);

// The writer of the job's task into `output`, which is written to `file`; all that is referred to outlives
// it. Null with the reason in `error`, when interrupted, and for a task that writes nothing.
[[nodiscard]] std::unique_ptr<PingWriter> MakeWriter(const Job& job, const PingSource& recording,
                                                     int32_t channel, const RecordingSurvey& survey,
                                                     Handle file, OutputFile& output, ReportPage& page,
                                                     std::string& error);

}  // namespace tw::echotool
