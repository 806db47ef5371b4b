// Paths: both kinds of separator are understood, and paths that are given out have the backslash, so that
// code which takes names apart sees the same everywhere. Files of this process keep to the sharing rules of
// Windows among themselves.
#include "platform/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>

#include "base/text_format.h"
#include "platform/host/documents_folder.h"
#include "platform/host/fault_points.h"
#include "platform/host/file_sink.h"
#include "platform/host/handle_table.h"
#include "platform/host/last_error.h"
#include "platform/system_error.h"

namespace tw {
namespace {

struct OpenFile {
  int descriptor = -1;
  dev_t device = 0;
  ino_t node = 0;
  bool writes = false;
  bool sharesWriting = false;
  std::wstring path;         // as it was named when it was opened
  FileSink* sink = nullptr;  // takes what is written, if that is not kept
  uint64_t sunk = 0;         // bytes that it has taken

  OpenFile() = default;
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (descriptor >= 0) close(descriptor);
  }
};

HandleTable<OpenFile>& Files() {
  static auto* const table = new HandleTable<OpenFile>(HandleKind::file);
  return *table;
}

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

// Held from the look at who has a file open to the open itself.
std::mutex& OpenMutex() {
  static std::mutex* const mutex = new std::mutex;
  return *mutex;
}

class HostPath {
 public:
  explicit HostPath(const wchar_t* path) {
    NarrowText(bytes_, path);
    std::replace(std::begin(bytes_), std::end(bytes_), '\\', '/');
  }
  [[nodiscard]] const char* Get() const { return bytes_; }

 private:
  char bytes_[PATH_MAX];
};

[[nodiscard]] bool FailWith(int code) {
  SetSystemError(static_cast<uint32_t>(code));
  return false;
}

[[nodiscard]] bool IsShared(const char* path, bool writes, bool sharesWriting) {
  struct stat info {};
  if (stat(path, &info) != 0) return true;
  const auto clashes = [&](const OpenFile& open) {
    if (open.device != info.st_dev || open.node != info.st_ino) return false;
    return (writes && !open.sharesWriting) || (open.writes && !sharesWriting);
  };
  return Files().FindIf(clashes) == nullptr || FailWith(EBUSY);
}

// No open file lets itself be removed or replaced.
[[nodiscard]] bool IsFree(const char* path) {
  struct stat info {};
  if (stat(path, &info) != 0) return true;
  const auto same = [&](const OpenFile& open) {
    return open.device == info.st_dev && open.node == info.st_ino;
  };
  return Files().FindIf(same) == nullptr || FailWith(EBUSY);
}

[[nodiscard]] Handle OpenAs(const wchar_t* path, int flags, bool writes, bool sharesWriting) {
  const HostPath host(path);
  const std::lock_guard held(OpenMutex());
  if (!IsShared(host.Get(), writes, sharesWriting)) return Handle::invalid;
  const auto file = std::make_shared<OpenFile>();
  file->descriptor = open(host.Get(), flags | O_CLOEXEC, 0666);
  struct stat info {};
  if (file->descriptor < 0 || fstat(file->descriptor, &info) != 0) {
    FailWithErrno();
    return Handle::invalid;
  }
  if (S_ISDIR(info.st_mode)) {
    SetSystemError(EISDIR);
    return Handle::invalid;
  }
  file->device = info.st_dev;
  file->node = info.st_ino;
  file->writes = writes;
  file->sharesWriting = sharesWriting;
  file->path = path;
  return Files().Add(file);
}

// The open file, unless the handle is none or the call is to fail.
[[nodiscard]] std::shared_ptr<OpenFile> FileFor(Handle handle, FaultPoint point, uint32_t* taken = nullptr) {
  std::shared_ptr<OpenFile> file = Files().Find(handle);
  if (file == nullptr) {
    SetSystemError(EBADF);
    return nullptr;
  }
  return FaultAt(point, file->path, taken) ? nullptr : file;
}

void Sink(OpenFile& file, std::span<const uint8_t> bytes) {
  file.sink->Written(file.path, file.sunk, bytes);
  file.sunk += bytes.size();
}

// Writes until all is written or the system takes no more; `written` says how much.
[[nodiscard]] bool WriteAll(OpenFile& file, const uint8_t* bytes, uint32_t size, uint32_t& written) {
  if (file.sink != nullptr) {
    Sink(file, {bytes, size});
    written = size;
    return true;
  }
  while (written < size) {
    const ssize_t put = ::write(file.descriptor, bytes + written, size - written);
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return put < 0 ? FailWithErrno() : FailWith(ENOSPC);
    written += static_cast<uint32_t>(put);
  }
  return true;
}

std::string& DocumentsSetting() {
  static auto* const path = new std::string;
  return *path;
}

}  // namespace

Handle CreateFileAnew(const wchar_t* path) {
  if (FaultAt(FaultPoint::createFile, path)) return Handle::invalid;
  const Handle handle = OpenAs(path, O_RDWR | O_CREAT | O_TRUNC, true, false);
  if (handle != Handle::invalid) Files().Find(handle)->sink = SinkOf(path);
  return handle;
}

Handle OpenFileForReading(const wchar_t* path, WriteSharing sharing) {
  if (FaultAt(FaultPoint::openFile, path)) return Handle::invalid;
  return OpenAs(path, O_RDONLY, false, sharing == WriteSharing::allowed);
}

bool ReadFileBytes(Handle handle, void* bytes, uint32_t size, uint32_t& got) {
  got = 0;
  const std::shared_ptr<OpenFile> file = FileFor(handle, FaultPoint::readFile);
  if (file == nullptr) return false;
  ssize_t count = 0;
  do {
    count = ::read(file->descriptor, bytes, size);
  } while (count < 0 && errno == EINTR);
  if (count < 0) return FailWithErrno();
  got = static_cast<uint32_t>(count);
  return true;
}

bool WriteFileBytes(Handle handle, const void* bytes, uint32_t size, uint32_t& written) {
  written = 0;
  uint32_t taken = 0;
  const auto* const from = static_cast<const uint8_t*>(bytes);
  const std::shared_ptr<OpenFile> file = FileFor(handle, FaultPoint::writeFile, &taken);
  if (file != nullptr) {
    const uint32_t room = TakeDiskSpace(size);
    return WriteAll(*file, from, room, written) && (room == size || FailWith(ENOSPC));
  }
  const uint32_t code = LastSystemError();
  const std::shared_ptr<OpenFile> failing = taken != 0 ? Files().Find(handle) : nullptr;
  if (failing != nullptr && !WriteAll(*failing, from, std::min(taken, size), written)) return false;
  SetSystemError(code);
  return false;
}

bool SeekFile(Handle handle, uint64_t position) {
  const std::shared_ptr<OpenFile> file = FileFor(handle, FaultPoint::seekFile);
  if (file == nullptr) return false;
  if (position > INT64_MAX) return FailWith(EINVAL);
  if (file->sink != nullptr) return position == file->sunk || FailWith(EOPNOTSUPP);
  return lseek(file->descriptor, static_cast<off_t>(position), SEEK_SET) >= 0 || FailWithErrno();
}

bool FilePosition(Handle handle, uint64_t& position) {
  const std::shared_ptr<OpenFile> file = FileFor(handle, FaultPoint::seekFile);
  if (file == nullptr) return false;
  if (file->sink != nullptr) {
    position = file->sunk;
    return true;
  }
  const off_t at = lseek(file->descriptor, 0, SEEK_CUR);
  if (at < 0) return FailWithErrno();
  position = static_cast<uint64_t>(at);
  return true;
}

bool FileSize(Handle handle, uint64_t& size) {
  const std::shared_ptr<OpenFile> file = FileFor(handle, FaultPoint::seekFile);
  if (file == nullptr) return false;
  if (file->sink != nullptr) {
    size = file->sunk;
    return true;
  }
  struct stat info {};
  if (fstat(file->descriptor, &info) != 0) return FailWithErrno();
  size = static_cast<uint64_t>(info.st_size);
  return true;
}

bool TruncateFile(Handle handle, uint64_t size) {
  const std::shared_ptr<OpenFile> file = FileFor(handle, FaultPoint::truncateFile);
  if (file == nullptr) return false;
  if (size > INT64_MAX) return FailWith(EINVAL);
  if (file->sink != nullptr) return size == file->sunk || FailWith(EOPNOTSUPP);
  const auto end = static_cast<off_t>(size);
  if (ftruncate(file->descriptor, end) != 0) return FailWithErrno();
  return lseek(file->descriptor, end, SEEK_SET) >= 0 || FailWithErrno();
}

bool FlushFile(Handle handle) {
  const std::shared_ptr<OpenFile> file = FileFor(handle, FaultPoint::flushFile);
  if (file == nullptr) return false;
  return fsync(file->descriptor) == 0 || FailWithErrno();
}

bool PathOfFile(Handle handle, std::span<wchar_t> path) {
  const std::shared_ptr<OpenFile> file = FileFor(handle, FaultPoint::pathOfFile);
  if (file == nullptr) return false;
  char link[64];
  FormatText(link, "/proc/self/fd/%d", file->descriptor);
  char target[PATH_MAX];
  const ssize_t length = readlink(link, target, sizeof(target));
  if (length < 0) return FailWithErrno();
  wchar_t full[PATH_MAX];
  const size_t units = WidenText(full, {target, static_cast<size_t>(length)});
  if (units >= path.size()) return FailWith(ENAMETOOLONG);
  std::replace(full, full + units, L'/', L'\\');
  CopyWide(path, {full, units});
  return true;
}

void CloseFile(Handle handle) {
  Files().Remove(handle);
}

bool RemoveFile(const wchar_t* path) {
  if (FaultAt(FaultPoint::removeFile, path)) return false;
  const HostPath host(path);
  const std::lock_guard held(OpenMutex());
  return IsFree(host.Get()) && (unlink(host.Get()) == 0 || FailWithErrno());
}

bool RenameFile(const wchar_t* from, const wchar_t* to) {
  if (FaultAt(FaultPoint::renameFile, from)) return false;
  const HostPath hostFrom(from);
  const HostPath hostTo(to);
  const std::lock_guard held(OpenMutex());
  if (!IsFree(hostFrom.Get()) || !IsFree(hostTo.Get())) return false;
  return rename(hostFrom.Get(), hostTo.Get()) == 0 || FailWithErrno();
}

void SinkFiles(const wchar_t* folder, FileSink* sink) {
  Sunk() = {folder != nullptr ? folder : L"", sink};
}

bool IsFolder(const wchar_t* path) {
  struct stat info {};
  return stat(HostPath(path).Get(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool CreateFolder(const wchar_t* path) {
  if (FaultAt(FaultPoint::createFolder, path)) return false;
  return mkdir(HostPath(path).Get(), 0777) == 0 || FailWithErrno();
}

void SetDocumentsFolder(const char* path) {
  DocumentsSetting() = path != nullptr ? path : "";
}

bool DocumentsFolder(std::span<wchar_t> path) {
  if (FaultAt(FaultPoint::documents, {})) return false;
  const char* const home = getenv("HOME");
  const char* const folder = DocumentsSetting().empty() ? home : DocumentsSetting().c_str();
  if (folder == nullptr) return FailWith(ENOENT);
  wchar_t full[PATH_MAX];
  const size_t units = WidenText(full, folder);
  if (units >= path.size()) return FailWith(ENAMETOOLONG);
  CopyWide(path, {full, units});
  return true;
}

}  // namespace tw
