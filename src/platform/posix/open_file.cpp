#include "platform/posix/open_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <mutex>

#include "base/text_format.h"
#include "platform/posix/handle_table.h"
#include "platform/posix/last_error.h"
#include "platform/posix/paths.h"

namespace tw {
namespace posix {
namespace {

HandleTable<OpenFile>& Files() {
  static auto* const table = new HandleTable<OpenFile>(HandleKind::file);
  return *table;
}

// Held from the look at who has a file open to the open itself.
std::mutex& OpenMutex() {
  static std::mutex* const mutex = new std::mutex;
  return *mutex;
}

[[nodiscard]] bool IsShared(const char* path, bool writes, bool sharesWriting) {
  struct stat info {};
  if (stat(path, &info) != 0) return true;
  const auto clashes = [&](const OpenFile& open) {
    return open.Is(info) && ((writes && !open.SharesWriting()) || (open.Writes() && !sharesWriting));
  };
  return Files().FindIf(clashes) == nullptr || FailWith(EBUSY);
}

// No open file lets itself be removed or replaced.
[[nodiscard]] bool IsFree(const char* path) {
  struct stat info {};
  if (stat(path, &info) != 0) return true;
  return Files().FindIf([&](const OpenFile& open) { return open.Is(info); }) == nullptr || FailWith(EBUSY);
}

// Where a file system cannot rename without replacing, it is looked at beforehand.
[[nodiscard]] bool RenameToFreeName(const char* from, const char* to) {
  if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return FailWithErrno();
  struct stat info {};
  if (lstat(to, &info) == 0) return FailWith(EEXIST);
  return rename(from, to) == 0 || FailWithErrno();
}

}  // namespace

OpenFile::~OpenFile() {
  if (descriptor_ >= 0) close(descriptor_);
}

bool OpenFile::Is(const struct stat& info) const {
  return device_ == info.st_dev && node_ == info.st_ino;
}

bool OpenFile::Open(const char* path, int flags, bool sharesWriting) {
  writes_ = (flags & O_CREAT) != 0;
  sharesWriting_ = sharesWriting;
  if (!IsShared(path, writes_, sharesWriting_)) return false;
  // A pipe that nobody writes to would hold the open up.
  descriptor_ = open(path, flags | O_CLOEXEC | (writes_ ? 0 : O_NONBLOCK), 0666);
  struct stat info {};
  if (descriptor_ < 0 || fstat(descriptor_, &info) != 0) return FailWithErrno();
  if (S_ISDIR(info.st_mode)) return FailWith(EISDIR);
  if (!writes_ && !S_ISREG(info.st_mode)) return FailWith(ESPIPE);
  device_ = info.st_dev;
  node_ = info.st_ino;
  return true;
}

bool OpenFile::Read(void* bytes, uint32_t size, uint32_t& got) {
  ssize_t count = 0;
  do {
    count = ::read(descriptor_, bytes, size);
  } while (count < 0 && errno == EINTR);
  if (count < 0) return FailWithErrno();
  got = static_cast<uint32_t>(count);
  return true;
}

bool OpenFile::Write(const void* bytes, uint32_t size, uint32_t& written) {
  const auto* const from = static_cast<const uint8_t*>(bytes);
  while (written < size) {
    const ssize_t put = ::write(descriptor_, from + written, size - written);
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return put < 0 ? FailWithErrno() : FailWith(ENOSPC);
    written += static_cast<uint32_t>(put);
  }
  return true;
}

bool OpenFile::Seek(uint64_t position) {
  if (position > INT64_MAX) return FailWith(EINVAL);
  return lseek(descriptor_, static_cast<off_t>(position), SEEK_SET) >= 0 || FailWithErrno();
}

bool OpenFile::SeekEnd() {
  return lseek(descriptor_, 0, SEEK_END) >= 0 || FailWithErrno();
}

bool OpenFile::Position(uint64_t& position) const {
  const off_t at = lseek(descriptor_, 0, SEEK_CUR);
  if (at < 0) return FailWithErrno();
  position = static_cast<uint64_t>(at);
  return true;
}

bool OpenFile::Size(uint64_t& size) const {
  struct stat info {};
  if (fstat(descriptor_, &info) != 0) return FailWithErrno();
  size = static_cast<uint64_t>(info.st_size);
  return true;
}

bool OpenFile::Truncate(uint64_t size) {
  if (size > INT64_MAX) return FailWith(EINVAL);
  const auto end = static_cast<off_t>(size);
  if (ftruncate(descriptor_, end) != 0) return FailWithErrno();
  return lseek(descriptor_, end, SEEK_SET) >= 0 || FailWithErrno();
}

bool OpenFile::Flush() {
  return fsync(descriptor_) == 0 || FailWithErrno();
}

bool OpenFile::Path(std::span<wchar_t> path) const {
  char link[64];
  FormatText(link, "/proc/self/fd/%d", descriptor_);
  char target[PATH_MAX];
  const ssize_t length = readlink(link, target, sizeof(target));
  if (length < 0) return FailWithErrno();
  return TellFullPath({target, static_cast<size_t>(length)}, path);
}

Handle Open(const std::shared_ptr<OpenFile>& file, const wchar_t* path, int flags, WriteSharing sharing) {
  const NarrowedPath bytes(path);
  const std::lock_guard held(OpenMutex());
  const bool sharesWriting = sharing == WriteSharing::allowed;
  return file->Open(bytes.Get(), flags, sharesWriting) ? Files().Add(file) : Handle::invalid;
}

Handle OpenForAppending(const std::shared_ptr<OpenFile>& file, const wchar_t* path) {
  const Handle handle = Open(file, path, O_RDWR | O_CREAT, WriteSharing::denied);
  if (handle == Handle::invalid || file->SeekEnd()) return handle;
  Files().Remove(handle);
  return Handle::invalid;
}

std::shared_ptr<OpenFile> FindFile(Handle handle) {
  std::shared_ptr<OpenFile> file = Files().Find(handle);
  if (file == nullptr) SetSystemError(EBADF);
  return file;
}

bool RemoveFile(const wchar_t* path) {
  const NarrowedPath bytes(path);
  const std::lock_guard held(OpenMutex());
  return IsFree(bytes.Get()) && (unlink(bytes.Get()) == 0 || FailWithErrno());
}

bool RenameFile(const wchar_t* from, const wchar_t* to, Existing existing) {
  const NarrowedPath old(from);
  const NarrowedPath fresh(to);
  const std::lock_guard held(OpenMutex());
  if (!IsFree(old.Get()) || !IsFree(fresh.Get())) return false;
  if (existing == Existing::kept) return RenameToFreeName(old.Get(), fresh.Get());
  return rename(old.Get(), fresh.Get()) == 0 || FailWithErrno();
}

bool CreateFolder(const wchar_t* path) {
  return mkdir(NarrowedPath(path).Get(), 0777) == 0 || FailWithErrno();
}

bool FreeSpace(const wchar_t* folder, uint64_t& bytes) {
  struct statvfs disk {};
  if (statvfs(NarrowedPath(folder).Get(), &disk) != 0) return FailWithErrno();
  bytes = uint64_t{disk.f_bavail} * disk.f_frsize;
  return true;
}

bool TellFolder(const char* bytes, std::span<wchar_t> path) {
  if (bytes == nullptr) return FailWith(ENOENT);
  wchar_t full[PATH_MAX];
  const size_t units = WidenText(full, bytes);
  if (units >= path.size()) return FailWith(ENAMETOOLONG);
  CopyWide(path, {full, units});
  return true;
}

}  // namespace posix

void CloseFile(Handle handle) {
  posix::Files().Remove(handle);
}

}  // namespace tw
