// What echotool does with one recording of a call.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "tools/echotool/info_output.h"
#include "tools/echotool/options.h"
#include "tools/echotool/report_output.h"

namespace tw::echotool {

struct Result {
  bool done = false;
  bool sound = true;               // check: the recording has no fault
  std::string text;                // for the user: a report, or what went wrong
  std::vector<std::string> notes;  // for the user too, of what was done: damage, what was cut or replaced
};

// A call as far as it has come. Files by their full paths.
struct Batch {
  std::vector<std::wstring> inputs;   // all recordings of the call
  std::vector<std::wstring> outputs;  // made so far
  size_t number = 0;                  // of the recording that is worked on, from 1
  std::vector<std::string> told;      // info: of each recording, for programs
  InfoTotals totals;                  // info
  std::vector<ReportPage> pages;      // report: made so far
};

[[nodiscard]] Batch BeginBatch(const Options& options);

// Does the task of the options with the next recording of the batch. Ends early, leaving no output, once
// `interrupted` is set.
[[nodiscard]] Result WorkOn(const std::string& file, const Options& options,
                            const std::atomic<bool>& interrupted, Batch& batch);

// Behind the last recording: what is told or made of all of them together. Not when interrupted.
[[nodiscard]] Result EndBatch(const Options& options, Batch& batch);

}  // namespace tw::echotool
