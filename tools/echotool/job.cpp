#include "tools/echotool/job.h"

#include "platform/file.h"
#include "platform/system_error.h"

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

}  // namespace tw::echotool
