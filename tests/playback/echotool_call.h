// echotool in the test's own process: recordings one by one, as those of a call that goes on.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "tools/echotool/file_names.h"
#include "tools/echotool/gathering.h"
#include "tools/echotool/work.h"

namespace tw::echotool {

// A call as far as it has come. Files by their full paths.
struct Batch {
  std::vector<std::wstring> inputs;   // named beside the one that is worked on
  std::vector<std::wstring> outputs;  // made so far
  Gathering gathering;
};

inline Result WorkOn(const std::string& file, const Options& options, const std::atomic<bool>& interrupted,
                     Batch& batch) {
  Options asked = options;
  if (asked.task != Task::join) asked.files = {file};
  Inputs inputs = FindInputs(asked, interrupted);
  for (const std::wstring& full : batch.inputs)
    inputs.list.push_back({.file = NarrowName(full), .full = full});
  Claims claims(inputs.list);
  for (const std::wstring& full : batch.outputs) claims.NoteMade(full);
  Progress progress(1, 0, true);
  Result result = WorkOn(Call{asked, inputs.list, interrupted, claims, progress}, inputs.list.front());
  for (const std::wstring_view part : PartsOf(asked.task)) {
    const Input& input = inputs.list.front();
    const std::wstring made = FullPath(OutputPath(input.file, input.folder, asked.task, std::wstring(part)));
    if (result.done && !made.empty()) batch.outputs.push_back(made);
  }
  batch.gathering.Add(result);
  return result;
}

inline Result EndBatch(const Options& options, Batch& batch) {
  const std::atomic<bool> interrupted = false;
  const Inputs none;
  Claims claims(none.list);
  Progress progress(1, 0, true);
  return batch.gathering.End(Call{options, none.list, interrupted, claims, progress}, none);
}

}  // namespace tw::echotool
