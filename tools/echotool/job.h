// One recording of a call, as its task goes through it. One thread.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "playback/ping_source.h"
#include "tools/echotool/console.h"
#include "tools/echotool/file_names.h"
#include "tools/echotool/work.h"

namespace tw::echotool {

struct Job {
  const std::string& file;
  const Options& options;
  const std::atomic<bool>& interrupted;
  Batch& batch;
  std::vector<std::wstring> following = {};  // join: what comes behind the file
};

// Why a recording cannot be opened or read, as the end of a sentence that begins with its name.
[[nodiscard]] std::string FaultText(RecordingFault fault);

// Null with the reason in `error`.
[[nodiscard]] std::unique_ptr<PingSource> OpenInput(const std::string& file, std::string& error);

// Hands each ping to `take` until it declines. False when interrupted, be it in the middle of garbage.
template <typename Take>
bool ForEachPing(const Job& job, PingSource& recording, const char* label, Take take) {
  const auto isInterrupted = [](void* watched) {
    return static_cast<const Job*>(watched)->interrupted.load();
  };
  Job watched = job;
  recording.SetInterruption({isInterrupted, &watched});
  ProgressBar bar({job.batch.number, job.options.files.size()}, ShownName(job.file), label, recording.Size());
  RecordedPing ping{};
  while (!job.interrupted.load(std::memory_order_relaxed) && recording.Next(ping)) {
    bar.Show(recording.Position());
    if (!take(ping)) break;
  }
  recording.SetInterruption({});
  return !job.interrupted.load();
}

}  // namespace tw::echotool
