#include "tools/echotool/replacing.h"

#include <cstring>
#include <vector>

#include "platform/owned_file.h"
#include "platform/system_error.h"
#include "playback/ping_source.h"
#include "tools/echotool/file_names.h"
#include "tools/echotool/job.h"
#include "tools/echotool/ping_copy.h"

namespace tw::echotool {
namespace {

bool MakesRecording(Task task) {
  return task == Task::text || task == Task::repair || task == Task::cut || task == Task::join;
}

enum class Found : uint8_t { recording, anotherFile, unreadable };

// What can be a recording by chance alone is read to its end: pictures are full of what begins like a line.
// One of a ping or two is kept as well: it may have been all that there was.
Found LookInside(const std::wstring& path, const std::atomic<bool>& interrupted) {
  RecordingFault fault = RecordingFault::none;
  const auto recording = OpenRecording(path.c_str(), fault);
  if (recording != nullptr) {
    recording->SetInterruption(InterruptionBy(interrupted));
    if (!IsDoubtful(recording->Kind())) return Found::recording;
    for (RecordedPing ping{}; !interrupted.load() && recording->Next(ping);) {
    }
    if (recording->Failed() || interrupted.load()) return Found::unreadable;
    return IsMostlyUnknown(*recording) ? Found::anotherFile : Found::recording;
  }
  const bool read = fault == RecordingFault::unknown || fault == RecordingFault::noPing;
  return read ? Found::anotherFile : Found::unreadable;
}

// Whether an older file may be replaced by a file that is not known yet.
bool LookAtFile(Place& place, const Call& call, std::string& error) {
  if (call.options.force) return true;
  switch (LookInside(place.path, call.interrupted)) {
    case Found::anotherFile:
      return true;
    case Found::unreadable:
      error = NarrowName(place.path) +
              " cannot be read, and may be a recording: " + ReasonText(LastSystemError());
      return false;
    case Found::recording:
      place.mustHold = true;
      if (!MakesRecording(call.options.task)) error = IsRecordingText(place);
      return error.empty();
  }
  return false;
}

// What was found in a folder, only if it is a recording.
bool IsToBeRead(const std::wstring& full, const Place& place, const Call& call) {
  const Input* const input = call.claims.InputAt(full);
  return input != nullptr &&
         (!input->isFound || LookInside(place.path, call.interrupted) != Found::anotherFile);
}

}  // namespace

bool LookAt(Place& place, const Input& input, const Call& call, std::string& error) {
  const PathKind kind = KindOfPath(place.path.c_str());
  place.taken = kind != PathKind::nothing;
  const std::string name = NarrowName(place.path);
  if (call.options.dryRun && call.claims.IsMade(FullPathToBe(place.path))) {
    error = name + " would have been made of another recording";
    return false;
  }
  if (!place.taken) return true;
  const std::wstring full = FullPath(place.path);
  if (kind == PathKind::folder) {
    error = name + " is a folder";
  } else if (kind == PathKind::other) {
    error = name + " is no file";
  } else if (!full.empty() && full == input.full) {
    error = "the output would replace it";
  } else if (!full.empty() && IsToBeRead(full, place, call)) {
    error = "the output would replace " + name + ", which is to be read";
  } else if (!full.empty() && call.claims.IsMade(full)) {
    error = name + " has just been made of another recording";
  } else if (call.options.noClobber) {
    error = name + " is there already";
  }
  return error.empty() && LookAtFile(place, call, error);
}

bool MayReplace(const Place& place, Handle output) {
  if (!place.mustHold) return true;
  const OwnedFile older(OpenFileForReading(place.path.c_str(), WriteSharing::denied));
  bool holds = older.Get() != Handle::invalid && SeekFile(output, 0);
  constexpr uint32_t kPiece = 64 * 1024;
  std::vector<uint8_t> theirs(kPiece);
  std::vector<uint8_t> ours(kPiece);
  uint32_t count = 0;
  while (holds && (holds = ReadFileBytes(older.Get(), theirs.data(), kPiece, count)) && count != 0) {
    uint32_t own = 0;
    holds = ReadFileBytes(output, ours.data(), count, own) && own == count &&
            std::memcmp(ours.data(), theirs.data(), count) == 0;
  }
  return holds;
}

std::string IsRecordingText(const Place& place) {
  return NarrowName(place.path) + " is itself a recording; --force replaces it";
}

}  // namespace tw::echotool
