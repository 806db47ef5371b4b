// Open files and changes of names: what both this side and the test gear do. Files of this process keep to
// the sharing rules of Windows among themselves. Results and errors are those of platform/file.h.
#pragma once

#include <sys/stat.h>

#include <memory>

#include "platform/file.h"

namespace tw::posix {

class OpenFile {
 public:
  OpenFile() = default;
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile();

  // With flags of open(2): with O_CREAT for writing, else for reading. While that goes on nobody else opens.
  [[nodiscard]] bool Open(const char* path, int flags, bool sharesWriting);
  [[nodiscard]] bool Is(const struct stat& info) const;
  [[nodiscard]] bool Writes() const { return writes_; }
  [[nodiscard]] bool SharesWriting() const { return sharesWriting_; }

  [[nodiscard]] bool Read(void* bytes, uint32_t size, uint32_t& got);
  // Writes until all is written or the system takes no more.
  [[nodiscard]] bool Write(const void* bytes, uint32_t size, uint32_t& written);
  [[nodiscard]] bool Seek(uint64_t position);
  [[nodiscard]] bool SeekEnd();
  [[nodiscard]] bool Position(uint64_t& position) const;
  [[nodiscard]] bool Size(uint64_t& size) const;
  [[nodiscard]] bool Truncate(uint64_t size);
  [[nodiscard]] bool Flush();
  [[nodiscard]] bool Path(std::span<wchar_t> path) const;

 private:
  int descriptor_ = -1;
  dev_t device_ = 0;
  ino_t node_ = 0;
  bool writes_ = false;
  bool sharesWriting_ = false;
};

// Opens `file`, which is not open yet.
[[nodiscard]] Handle Open(const std::shared_ptr<OpenFile>& file, const wchar_t* path, int flags,
                          WriteSharing sharing);

// The same for reading and writing, created if need be, with the position at the end.
[[nodiscard]] Handle OpenForAppending(const std::shared_ptr<OpenFile>& file, const wchar_t* path);

// What the handle stands for; null, with the system error set, when that is no open file.
[[nodiscard]] std::shared_ptr<OpenFile> FindFile(Handle handle);

[[nodiscard]] bool RemoveFile(const wchar_t* path);
[[nodiscard]] bool RenameFile(const wchar_t* from, const wchar_t* to, Existing existing);
[[nodiscard]] bool CreateFolder(const wchar_t* path);
[[nodiscard]] bool ListFolder(const wchar_t* path, std::vector<FolderEntry>& entries);
[[nodiscard]] bool FreeSpace(const wchar_t* folder, uint64_t& bytes);
// Gives out a folder of the system's; null is none.
[[nodiscard]] bool TellFolder(const char* bytes, std::span<wchar_t> path);

}  // namespace tw::posix
