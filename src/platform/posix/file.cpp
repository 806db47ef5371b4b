#include "platform/file.h"

#include <fcntl.h>

#include <cstdlib>

#include "platform/posix/open_file.h"

namespace tw {

using posix::OpenFile;

Handle CreateFileAnew(const wchar_t* path) {
  return posix::Open(std::make_shared<OpenFile>(), path, O_RDWR | O_CREAT | O_TRUNC, WriteSharing::denied);
}

Handle CreateNewFile(const wchar_t* path) {
  return posix::Open(std::make_shared<OpenFile>(), path, O_RDWR | O_CREAT | O_EXCL, WriteSharing::denied);
}

Handle OpenFileForAppending(const wchar_t* path) {
  return posix::OpenForAppending(std::make_shared<OpenFile>(), path);
}

Handle OpenFileForReading(const wchar_t* path, WriteSharing sharing) {
  return posix::Open(std::make_shared<OpenFile>(), path, O_RDONLY, sharing);
}

bool ReadFileBytes(Handle handle, void* bytes, uint32_t size, uint32_t& got) {
  got = 0;
  const std::shared_ptr<OpenFile> file = posix::FindFile(handle);
  return file != nullptr && file->Read(bytes, size, got);
}

bool WriteFileBytes(Handle handle, const void* bytes, uint32_t size, uint32_t& written) {
  written = 0;
  const std::shared_ptr<OpenFile> file = posix::FindFile(handle);
  return file != nullptr && file->Write(bytes, size, written);
}

bool SeekFile(Handle handle, uint64_t position) {
  const std::shared_ptr<OpenFile> file = posix::FindFile(handle);
  return file != nullptr && file->Seek(position);
}

bool FilePosition(Handle handle, uint64_t& position) {
  const std::shared_ptr<OpenFile> file = posix::FindFile(handle);
  return file != nullptr && file->Position(position);
}

bool FileSize(Handle handle, uint64_t& size) {
  const std::shared_ptr<OpenFile> file = posix::FindFile(handle);
  return file != nullptr && file->Size(size);
}

bool TruncateFile(Handle handle, uint64_t size) {
  const std::shared_ptr<OpenFile> file = posix::FindFile(handle);
  return file != nullptr && file->Truncate(size);
}

bool FlushFile(Handle handle) {
  const std::shared_ptr<OpenFile> file = posix::FindFile(handle);
  return file != nullptr && file->Flush();
}

bool PathOfFile(Handle handle, std::span<wchar_t> path) {
  const std::shared_ptr<OpenFile> file = posix::FindFile(handle);
  return file != nullptr && file->Path(path);
}

bool RemoveFile(const wchar_t* path) {
  return posix::RemoveFile(path);
}

bool RenameFile(const wchar_t* from, const wchar_t* to, Existing existing) {
  return posix::RenameFile(from, to, existing);
}

bool CreateFolder(const wchar_t* path) {
  return posix::CreateFolder(path);
}

bool ListFolder(const wchar_t* path, std::vector<FolderEntry>& entries) {
  return posix::ListFolder(path, entries);
}

bool FreeSpace(const wchar_t* folder, uint64_t& bytes) {
  return posix::FreeSpace(folder, bytes);
}

bool DocumentsFolder(std::span<wchar_t> path) {
  return posix::TellFolder(std::getenv("HOME"), path);  // NOLINT(concurrency-mt-unsafe): nobody sets it
}

}  // namespace tw
