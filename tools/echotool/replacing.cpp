#include "tools/echotool/replacing.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/owned_file.h"
#include "platform/system_error.h"
#include "playback/ping_source.h"
#include "tools/echotool/file_names.h"

namespace tw::echotool {
namespace {

bool Contains(const std::vector<std::wstring>& paths, const std::wstring& path) {
  return std::find(paths.begin(), paths.end(), path) != paths.end();
}

bool MakesRecording(Task task) {
  return task == Task::text || task == Task::repair || task == Task::cut || task == Task::join;
}

enum class Found : uint8_t { recording, anotherFile, unreadable };

Found LookInside(const std::wstring& path) {
  RecordingFault fault = RecordingFault::none;
  if (OpenRecording(path.c_str(), fault) != nullptr) return Found::recording;
  const bool read = fault == RecordingFault::unknown || fault == RecordingFault::noPing;
  return read ? Found::anotherFile : Found::unreadable;
}

// Whether an older file may be replaced by a file that is not known yet.
bool LookAtFile(Place& place, const Options& options, std::string& error) {
  if (options.force) return true;
  switch (LookInside(place.path)) {
    case Found::anotherFile:
      return true;
    case Found::unreadable:
      error = NarrowName(place.path) +
              " cannot be read, and may be a recording: " + ReasonText(LastSystemError());
      return false;
    case Found::recording:
      place.mustHold = true;
      if (!MakesRecording(options.task)) error = IsRecordingText(place);
      return error.empty();
  }
  return false;
}

}  // namespace

bool LookAt(Place& place, const std::string& recording, const Options& options, const Batch& batch,
            std::string& error) {
  const PathKind kind = KindOfPath(place.path.c_str());
  place.taken = kind != PathKind::nothing;
  if (!place.taken) return true;
  const std::wstring full = FullPath(place.path);
  const std::string name = NarrowName(place.path);
  if (kind == PathKind::folder) {
    error = name + " is a folder";
  } else if (kind == PathKind::other) {
    error = name + " is no file";
  } else if (!full.empty() && full == FullPath(WideName(recording))) {
    error = "the output would replace it";
  } else if (!full.empty() && Contains(batch.inputs, full)) {
    error = "the output would replace " + name + ", which is to be read";
  } else if (!full.empty() && Contains(batch.outputs, full)) {
    error = name + " has just been made of another recording";
  } else if (options.noClobber) {
    error = name + " is there already";
  }
  return error.empty() && LookAtFile(place, options, error);
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
