#include "tools/echotool/job.h"

#include <algorithm>

#include "platform/owned_file.h"
#include "platform/system_error.h"
#include "tools/echotool/summary.h"

namespace tw::echotool {

std::string FaultText(RecordingFault fault) {
  switch (fault) {
    case RecordingFault::none:
      return "";
    case RecordingFault::notOpened:
      return "cannot be opened: " + ReasonText(LastSystemError());
    case RecordingFault::unknown:
      return "is no recording of a known kind";
    case RecordingFault::noPing:
      return "holds no ping";
    case RecordingFault::unread:
      return "cannot be read";
    case RecordingFault::noMemory:
      return "needs more memory than there is";
  }
  return "";
}

std::unique_ptr<PingSource> OpenInput(const std::string& file, std::string& error) {
  const std::wstring path = WideName(file);
  RecordingFault fault = RecordingFault::none;
  auto recording = OpenRecording(path.c_str(), fault);
  if (recording != nullptr) return recording;
  error = FaultText(fault);
  const PathKind kind = KindOfPath(path.c_str());
  if (kind == PathKind::folder) error = "is a folder";
  if (kind == PathKind::other)
    error = "is no file that can be read twice, but a pipe, a device or a broken link";
  return nullptr;
}

bool IsAnotherFile(const std::string& file) {
  const std::wstring path = WideName(file);
  RecordingFault fault = RecordingFault::none;
  if (OpenRecording(path.c_str(), fault) != nullptr) return false;
  if (fault != RecordingFault::unknown && fault != RecordingFault::noPing) return false;
  const OwnedFile opened(OpenFileForReading(path.c_str(), WriteSharing::allowed));
  if (opened.Get() == Handle::invalid) return false;
  constexpr int kRetries = 0;
  const Candidates candidates = CandidatesOf(opened.Get(), kRetries);
  return candidates.count == 0 || !candidates.ways[0].info;
}

bool IsDoubtful(const RecordingKind& kind) {
  return kind.isText && !kind.hasInfo;
}

bool IsMostlyUnknown(const PingSource& recording) {
  constexpr uint64_t kLargestPart = 100;  // at least a hundredth of the bytes of a recording is known
  const uint64_t known = recording.Size() - recording.Skipped();
  return known * kLargestPart < recording.Size();
}

bool IsBelievable(const PingSource& recording, uint64_t pings) {
  constexpr uint64_t kFewestPings = 3;
  return !IsDoubtful(recording.Kind()) || (pings >= kFewestPings && !IsMostlyUnknown(recording));
}

bool IsRecording(const Job& job, const PingSource& recording, uint64_t pings, Result& result) {
  if (IsBelievable(recording, pings)) return true;
  if (job.input.isFound) ++result.others;
  result.text = "is no recording: " + std::to_string(pings) + " pings in " +
                std::to_string(recording.Size()) + " bytes";
  return false;
}

void Note(const std::string& note, Result& result) {
  if (std::find(result.notes.begin(), result.notes.end(), note) == result.notes.end())
    result.notes.push_back(note);
}

void NoteDamage(const PingSource& recording, Result& result) {
  if (recording.Skipped() != 0) Note("damaged: " + DamageText(recording), result);
}

void NoteSampling(const PingSource& recording, Result& result) {
  if (recording.IsSamplingAssumed())
    Note("warning: tells no sampling frequency, " + std::to_string(kUsualSampling_hz) + " Hz is assumed",
         result);
}

}  // namespace tw::echotool
