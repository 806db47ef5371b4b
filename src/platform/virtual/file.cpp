// Files are those of the system, unless a fault stands in the way or a sink takes what is written.
#include "platform/file.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>

#include "platform/posix/last_error.h"
#include "platform/posix/open_file.h"
#include "platform/system_error.h"
#include "platform/virtual/disk_calls.h"
#include "platform/virtual/documents_folder.h"
#include "platform/virtual/fault_points.h"
#include "platform/virtual/file_sink.h"
#include "platform/virtual/virtual_clock.h"

namespace tw {
namespace {

struct VirtualFile : posix::OpenFile {
  std::wstring path;         // as it was named when it was opened
  FileSink* sink = nullptr;  // takes what is written, if that is not kept
  uint64_t sunk = 0;         // bytes that it has taken
};

struct SunkFolder {
  std::wstring path;
  FileSink* sink = nullptr;
};

SunkFolder& Sunk() {
  static auto* const folder = new SunkFolder;
  return *folder;
}

[[nodiscard]] FileSink* SinkOf(std::wstring_view path) {
  return Sunk().sink != nullptr && path.starts_with(Sunk().path) ? Sunk().sink : nullptr;
}

[[nodiscard]] Handle CreateAs(const wchar_t* path, int flag) {
  if (FaultAt(FaultPoint::createFile, path)) return Handle::invalid;
  const auto file = std::make_shared<VirtualFile>();
  file->path = path;
  file->sink = SinkOf(path);
  const Handle handle = posix::Open(file, path, O_RDWR | O_CREAT | flag, WriteSharing::denied);
  if (handle != Handle::invalid) NoteDiskCall(DiskStep::created, path);
  return handle;
}

[[nodiscard]] std::shared_ptr<VirtualFile> FindFile(Handle handle) {
  return std::static_pointer_cast<VirtualFile>(posix::FindFile(handle));
}

// The open file, unless the handle is none or the call is to fail.
[[nodiscard]] std::shared_ptr<VirtualFile> FileFor(Handle handle, FaultPoint point,
                                                   uint32_t* taken = nullptr) {
  std::shared_ptr<VirtualFile> file = FindFile(handle);
  return file == nullptr || FaultAt(point, file->path, taken) ? nullptr : file;
}

[[nodiscard]] bool WriteHeard(VirtualFile& file, const void* bytes, uint32_t size, uint32_t& written) {
  uint64_t place = 0;
  if (!AreDiskCallsHeard() || !file.Position(place)) return file.Write(bytes, size, written);
  const bool whole = file.Write(bytes, size, written);
  NoteDiskCall(DiskStep::written, file.path, place, {static_cast<const char*>(bytes), written});
  return whole;
}

[[nodiscard]] bool Write(VirtualFile& file, const void* bytes, uint32_t size, uint32_t& written) {
  if (file.sink == nullptr) return WriteHeard(file, bytes, size, written);
  file.sink->Written(file.path, file.sunk, {static_cast<const uint8_t*>(bytes), size});
  file.sunk += size;
  written = size;
  return true;
}

std::string& DocumentsSetting() {
  static auto* const path = new std::string;
  return *path;
}

}  // namespace

void SinkFiles(const wchar_t* folder, FileSink* sink) {
  Sunk() = {folder != nullptr ? folder : L"", sink};
}

void SetDocumentsFolder(const char* path) {
  DocumentsSetting() = path != nullptr ? path : "";
}

Handle CreateFileAnew(const wchar_t* path) {
  return CreateAs(path, O_TRUNC);
}

Handle CreateNewFile(const wchar_t* path) {
  return CreateAs(path, O_EXCL);
}

Handle OpenFileForAppending(const wchar_t* path) {
  if (FaultAt(FaultPoint::openFile, path)) return Handle::invalid;
  const auto file = std::make_shared<VirtualFile>();
  file->path = path;
  const Handle handle = posix::OpenForAppending(file, path);
  uint64_t size = 0;
  if (handle != Handle::invalid && file->Size(size) && size == 0) NoteDiskCall(DiskStep::created, path);
  return handle;
}

Handle OpenFileForReading(const wchar_t* path, WriteSharing sharing) {
  if (FaultAt(FaultPoint::openFile, path)) return Handle::invalid;
  const auto file = std::make_shared<VirtualFile>();
  file->path = path;
  return posix::Open(file, path, O_RDONLY, sharing);
}

bool ReadFileBytes(Handle handle, void* bytes, uint32_t size, uint32_t& got) {
  got = 0;
  const std::shared_ptr<VirtualFile> file = FileFor(handle, FaultPoint::readFile);
  return file != nullptr && file->Read(bytes, size, got);
}

bool WriteFileBytes(Handle handle, const void* bytes, uint32_t size, uint32_t& written) {
  written = 0;
  uint32_t taken = 0;
  const std::shared_ptr<VirtualFile> file = FileFor(handle, FaultPoint::writeFile, &taken);
  if (file != nullptr) {
    const uint32_t room = TakeDiskSpace(size);
    return Write(*file, bytes, room, written) && (room == size || FailWith(ENOSPC));
  }
  const uint32_t code = LastSystemError();
  const std::shared_ptr<VirtualFile> failing = taken != 0 ? FindFile(handle) : nullptr;
  if (failing != nullptr && !Write(*failing, bytes, std::min(taken, size), written)) return false;
  SetSystemError(code);
  return false;
}

bool SeekFile(Handle handle, uint64_t position) {
  const std::shared_ptr<VirtualFile> file = FileFor(handle, FaultPoint::seekFile);
  if (file == nullptr) return false;
  if (file->sink == nullptr) return file->Seek(position);
  return position == file->sunk || FailWith(EOPNOTSUPP);
}

bool FilePosition(Handle handle, uint64_t& position) {
  const std::shared_ptr<VirtualFile> file = FileFor(handle, FaultPoint::seekFile);
  if (file == nullptr) return false;
  if (file->sink == nullptr) return file->Position(position);
  position = file->sunk;
  return true;
}

bool FileSize(Handle handle, uint64_t& size) {
  const std::shared_ptr<VirtualFile> file = FileFor(handle, FaultPoint::seekFile);
  if (file == nullptr) return false;
  if (file->sink == nullptr) return file->Size(size);
  size = file->sunk;
  return true;
}

bool TruncateFile(Handle handle, uint64_t size) {
  const std::shared_ptr<VirtualFile> file = FileFor(handle, FaultPoint::truncateFile);
  if (file == nullptr) return false;
  if (file->sink != nullptr) return size == file->sunk || FailWith(EOPNOTSUPP);
  if (!file->Truncate(size)) return false;
  NoteDiskCall(DiskStep::cut, file->path, size);
  return true;
}

bool FlushFile(Handle handle) {
  const std::shared_ptr<VirtualFile> file = FileFor(handle, FaultPoint::flushFile);
  if (file == nullptr) return false;
  // A wait would take no time of this clock, but much real time.
  if (!IsClockVirtual() && !file->Flush()) return false;
  NoteDiskCall(DiskStep::flushed, file->path);
  return true;
}

bool PathOfFile(Handle handle, std::span<wchar_t> path) {
  const std::shared_ptr<VirtualFile> file = FileFor(handle, FaultPoint::pathOfFile);
  return file != nullptr && file->Path(path);
}

bool RemoveFile(const wchar_t* path) {
  if (FaultAt(FaultPoint::removeFile, path) || !posix::RemoveFile(path)) return false;
  NoteDiskCall(DiskStep::removed, path);
  return true;
}

bool RenameFile(const wchar_t* from, const wchar_t* to, Existing existing) {
  return !FaultAt(FaultPoint::renameFile, from) && posix::RenameFile(from, to, existing);
}

bool CreateFolder(const wchar_t* path) {
  return !FaultAt(FaultPoint::createFolder, path) && posix::CreateFolder(path);
}

bool ListFolder(const wchar_t* path, std::vector<FolderEntry>& entries) {
  return !FaultAt(FaultPoint::listFolder, path) && posix::ListFolder(path, entries);
}

bool FreeSpace(const wchar_t* folder, uint64_t& bytes) {
  if (FaultAt(FaultPoint::freeSpace, folder) || !posix::FreeSpace(folder, bytes)) return false;
  bytes = std::min(bytes, DiskSpaceLeft());
  return true;
}

bool DocumentsFolder(std::span<wchar_t> path) {
  if (FaultAt(FaultPoint::documents, {})) return false;
  const char* const home = std::getenv("HOME");  // NOLINT(concurrency-mt-unsafe): nobody sets it
  return posix::TellFolder(DocumentsSetting().empty() ? home : DocumentsSetting().c_str(), path);
}

}  // namespace tw
