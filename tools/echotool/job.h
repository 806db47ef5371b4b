// One recording of a call, as its task goes through it. One thread.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "playback/ping_source.h"
#include "tools/echotool/file_names.h"
#include "tools/echotool/work.h"

namespace tw::echotool {

struct Job {
  const Call& call;
  const Input& input;
  FileProgress& progress;
  const std::string& file = input.file;
  const Options& options = call.options;
  const std::atomic<bool>& interrupted = call.interrupted;
  std::vector<std::wstring> following = {};  // join: what comes behind the file
};

// Why a recording cannot be opened or read, as the end of a sentence that begins with its name.
[[nodiscard]] std::string FaultText(RecordingFault fault);

// Null with the reason in `error`.
[[nodiscard]] std::unique_ptr<PingSource> OpenInput(const std::string& file, std::string& error);

// True when nothing says that the file is a recording: what is found in folders, and so is no mistake of
// anybody. One that begins with its settings is, though it may hold no ping.
[[nodiscard]] bool IsAnotherFile(const std::string& file);

// What has neither settings nor a binary mark may be something else, in which a few bytes look like a line;
// it is, if hardly a ping was found when it had been read to its end.
[[nodiscard]] bool IsDoubtful(const RecordingKind& kind);
[[nodiscard]] bool IsMostlyUnknown(const PingSource& recording);
[[nodiscard]] bool IsBelievable(const PingSource& recording, uint64_t pings);

// The same of the job's recording; false with the reason in `result`.
[[nodiscard]] bool IsRecording(const Job& job, const PingSource& recording, uint64_t pings, Result& result);

// Once, however many outputs are made of the recording.
void Note(const std::string& note, Result& result);
void NoteDamage(const PingSource& recording, Result& result);
void NoteSampling(const PingSource& recording, Result& result);

// Hands each ping to `take` until it declines. False when interrupted, be it in the middle of garbage.
template <typename Take>
bool ForEachPing(const Job& job, PingSource& recording, const char* label, Take take) {
  const auto isInterrupted = [](void* watched) {
    return static_cast<const Job*>(watched)->interrupted.load();
  };
  Job watched = job;
  recording.SetInterruption({isInterrupted, &watched});
  job.progress.BeginPass(ShownName(job.file), label, recording.Size());
  RecordedPing ping{};
  while (!job.interrupted.load(std::memory_order_relaxed) && recording.Next(ping)) {
    job.progress.Show(recording.Position());
    if (!take(ping)) break;
  }
  recording.SetInterruption({});
  return !job.interrupted.load();
}

}  // namespace tw::echotool
