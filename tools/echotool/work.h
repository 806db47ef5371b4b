// What echotool does with one recording.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "tools/echotool/options.h"

namespace tw::echotool {

struct Result {
  bool done = false;
  std::string text;          // for the user: a report, or what went wrong
  std::string warning = {};  // what was done all the same
};

// The outputs made so far, by their full paths: none replaces another, nor the recording that it is made of.
using Outputs = std::vector<std::wstring>;

// Does the task of the options with one recording. Ends early, leaving no output, once `interrupted` is set.
[[nodiscard]] Result WorkOn(const std::string& file, const Options& options,
                            const std::atomic<bool>& interrupted, Outputs& outputs);

}  // namespace tw::echotool
