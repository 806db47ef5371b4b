// Paths: both kinds of separator are understood, and paths that are given out have the backslash, so that
// code which takes names apart sees the same everywhere. A byte of a name that is no UTF-8 stands in wide
// paths as U+DC00 + byte, and so does a backslash that is part of a name: no character has such a code. Files
// of this process keep to the sharing rules of Windows among themselves.
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
#include "platform/posix/handle_table.h"
#include "platform/posix/last_error.h"
#include "platform/system_error.h"
#include "platform/virtual/documents_folder.h"
#include "platform/virtual/fault_points.h"
#include "platform/virtual/file_sink.h"

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

constexpr size_t kLongestCharacter = 4;  // in UTF-8
constexpr uint32_t kBytesFrom = 0xDC00;

// How many bytes of `text` are its first character, which goes to `wide`; 0 when they are none.
size_t TakeCharacter(std::string_view text, wchar_t& wide) {
  for (size_t size = 1; size <= std::min(kLongestCharacter, text.size()); ++size) {
    wchar_t units[3];
    char again[kLongestCharacter + 1];
    const std::string_view bytes = text.substr(0, size);
    if (WidenText(units, bytes) != 1 || bytes != std::string_view(again, NarrowText(again, {units, 1})))
      continue;
    wide = units[0];
    return size;
  }
  return 0;
}

// True for a unit that stands for a byte.
[[nodiscard]] bool IsByte(uint32_t unit) {
  return unit == (kBytesFrom | '\\') || (unit >= (kBytesFrom | 0x80) && unit <= (kBytesFrom | 0xFF));
}

class HostPath {
 public:
  explicit HostPath(std::wstring_view path) : bytes_(kLongestCharacter * path.size() + 1, '\0') {
    NarrowPath(bytes_, path);
  }
  [[nodiscard]] const char* Get() const { return bytes_.c_str(); }

 private:
  std::string bytes_;
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
  // A pipe that nobody writes to would hold the open up.
  file->descriptor = open(host.Get(), flags | O_CLOEXEC | (writes ? 0 : O_NONBLOCK), 0666);
  struct stat info {};
  if (file->descriptor < 0 || fstat(file->descriptor, &info) != 0) {
    FailWithErrno();
    return Handle::invalid;
  }
  if (S_ISDIR(info.st_mode)) {
    SetSystemError(EISDIR);
    return Handle::invalid;
  }
  if (!writes && !S_ISREG(info.st_mode)) {
    SetSystemError(ESPIPE);
    return Handle::invalid;
  }
  file->device = info.st_dev;
  file->node = info.st_ino;
  file->writes = writes;
  file->sharesWriting = sharesWriting;
  file->path = path;
  return Files().Add(file);
}

[[nodiscard]] Handle CreateAs(const wchar_t* path, int flag) {
  if (FaultAt(FaultPoint::createFile, path)) return Handle::invalid;
  const Handle handle = OpenAs(path, O_RDWR | O_CREAT | flag, true, false);
  if (handle != Handle::invalid) Files().Find(handle)->sink = SinkOf(path);
  return handle;
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

// Where a file system cannot rename without replacing, it is looked at beforehand.
[[nodiscard]] bool RenameToFreeName(const char* from, const char* to) {
  if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return FailWithErrno();
  struct stat info {};
  if (lstat(to, &info) == 0) return FailWith(EEXIST);
  return rename(from, to) == 0 || FailWithErrno();
}

std::string& DocumentsSetting() {
  static auto* const path = new std::string;
  return *path;
}

}  // namespace

Handle CreateFileAnew(const wchar_t* path) {
  return CreateAs(path, O_TRUNC);
}

Handle CreateNewFile(const wchar_t* path) {
  return CreateAs(path, O_EXCL);
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
  const size_t units = WidenPath(full, {target, static_cast<size_t>(length)});
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

bool RenameFile(const wchar_t* from, const wchar_t* to, Existing existing) {
  if (FaultAt(FaultPoint::renameFile, from)) return false;
  const HostPath hostFrom(from);
  const HostPath hostTo(to);
  const std::lock_guard held(OpenMutex());
  if (!IsFree(hostFrom.Get()) || !IsFree(hostTo.Get())) return false;
  if (existing == Existing::kept) return RenameToFreeName(hostFrom.Get(), hostTo.Get());
  return rename(hostFrom.Get(), hostTo.Get()) == 0 || FailWithErrno();
}

void SinkFiles(const wchar_t* folder, FileSink* sink) {
  Sunk() = {folder != nullptr ? folder : L"", sink};
}

PathKind KindOfPath(const wchar_t* path) {
  const HostPath host(path);
  struct stat info {};
  if (stat(host.Get(), &info) != 0)
    return lstat(host.Get(), &info) == 0 ? PathKind::other : PathKind::nothing;
  if (S_ISDIR(info.st_mode)) return PathKind::folder;
  return S_ISREG(info.st_mode) ? PathKind::file : PathKind::other;
}

bool IsFolder(const wchar_t* path) {
  return KindOfPath(path) == PathKind::folder;
}

size_t WidenPath(std::span<wchar_t> out, std::string_view path) {
  if (out.empty()) return 0;
  size_t used = 0;
  while (!path.empty() && used + 1 < out.size()) {
    wchar_t unit = 0;
    const size_t size = path[0] == '\\' ? 0 : TakeCharacter(path, unit);
    out[used++] = size != 0 ? unit : static_cast<wchar_t>(kBytesFrom | static_cast<uint8_t>(path[0]));
    path.remove_prefix(std::max<size_t>(size, 1));
  }
  out[used] = L'\0';
  return used;
}

size_t NarrowPath(std::span<char> out, std::wstring_view path) {
  if (out.empty()) return 0;
  size_t used = 0;
  for (const wchar_t unit : path) {
    char bytes[kLongestCharacter + 1] = {static_cast<char>(unit)};
    const bool isByte = IsByte(static_cast<uint32_t>(unit));
    const size_t size = isByte ? 1 : NarrowText(bytes, {unit == L'\\' ? L"/" : &unit, 1});
    if (used + size >= out.size()) break;
    used = static_cast<size_t>(std::copy_n(bytes, size, out.begin() + static_cast<ptrdiff_t>(used)) -
                               out.begin());
  }
  out[used] = '\0';
  return used;
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
