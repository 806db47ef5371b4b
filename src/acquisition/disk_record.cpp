#include "acquisition/disk_record.h"

#include <utility>

#include "platform/debug_output.h"
#include "platform/file.h"
#include "platform/system_error.h"

namespace tw {
namespace {

constexpr size_t kPathSize = 1'024;

void CutBack(Handle file, uint32_t written) {
  uint64_t position = 0;
  if (written != 0 && FilePosition(file, position) && position >= written) {
    // When even this fails the file ends in a part of a ping; there is nothing more to be done about it.
    static_cast<void>(TruncateFile(file, position - written));
  }
}

}  // namespace

bool DiskRecord::Write(std::span<const char> ping) {
  uint32_t written = 0;
  const bool whole = WriteFileBytes(file_, ping.data(), static_cast<uint32_t>(ping.size()), written);
  if (!whole) {
    full_ = MeansFullDisk(LastSystemError()) || written != 0;
    CutBack(file_, written);
  }
  dirty_ = dirty_ || whole;
  pings_ += whole ? 1 : 0;
  return whole;
}

void DiskRecord::Flush() {
  if (std::exchange(dirty_, false) && !FlushFile(file_)) WriteDebugText(L"Record file not flushed\n");
}

void DiskRecord::Close() {
  dirty_ = false;
  CloseFile(std::exchange(file_, Handle::invalid));
}

bool DiskRecord::CloseWithOneByte() {
  // The CR goes over the first byte, which takes no room on the disk.
  uint32_t written = 0;
  const bool left = SeekFile(file_, 0) && WriteFileBytes(file_, "\r", 1, written) && TruncateFile(file_, 1);
  CloseAndDelete(!left);
  return left;
}

void DiskRecord::Remove() {
  uint32_t written = 0;
  CloseAndDelete(WriteFileBytes(file_, "\r", 1, written));
}

void DiskRecord::CloseAndDelete(bool remove) {
  wchar_t path[kPathSize];
  const bool named = remove && PathOfFile(file_, path);
  Close();
  if (named) static_cast<void>(RemoveFile(path));  // an undeletable file stays as it is
}

}  // namespace tw
