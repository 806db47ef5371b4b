// What echotool does with one recording of a call. What a call has for all of its jobs does not change while
// they run, or has its own lock, so that they can run side by side; what a job tells is its own. Any thread.
#pragma once

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tools/echotool/claims.h"
#include "tools/echotool/folders.h"
#include "tools/echotool/info_output.h"
#include "tools/echotool/options.h"
#include "tools/echotool/progress.h"
#include "tools/echotool/report_output.h"

namespace tw::echotool {

struct Call {
  const Options& options;
  const std::vector<Input>& inputs;
  const std::atomic<bool>& interrupted;
  Claims& claims;
  Progress& progress;
};

struct Result {
  bool done = false;
  bool sound = true;  // check: the recording has no fault
  size_t others = 0;  // files found in folders that are no recordings: of them nothing else is told
  std::string text;   // for the user: a report, or what went wrong
  std::vector<std::string> notes;  // for the user too, of what was done: damage, what was cut or replaced

  std::string alike;  // its name, if it may hold the same as another recording of the call

  // For what is told or made of all recordings together.
  std::optional<RecordingTold> told;  // info
  std::string row;                    // info: for programs
  std::optional<ReportPage> page;     // report: of what has been made
};

// Does the task of the call with one of its recordings, `join` with all of them. Ends early, leaving no
// output, once the call is interrupted.
[[nodiscard]] Result WorkOn(const Call& call, const Input& input);

}  // namespace tw::echotool
