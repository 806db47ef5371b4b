// Files and folders, named by wide text. One thread uses a file at a time. Functions that can fail return
// false or Handle::invalid, and LastSystemError() tells why.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/handle.h"

namespace tw {

// Between the components of a path.
#ifdef _WIN32
inline constexpr wchar_t kPathSeparator = L'\\';
#else
inline constexpr wchar_t kPathSeparator = L'/';
#endif

// Creates the file anew (an existing one loses its content) for reading and writing; others may read it
// meanwhile, not write it.
[[nodiscard]] Handle CreateFileAnew(const wchar_t* path);

// The same for a file that is not there yet: fails when anything has that name, be it a link to nowhere, and
// follows none.
[[nodiscard]] Handle CreateNewFile(const wchar_t* path);

// Opens a file, or creates one, to go on at its end: there its position is, and what it holds stays. For
// reading and writing; others may read it meanwhile, not write it.
[[nodiscard]] Handle OpenFileForAppending(const wchar_t* path);

enum class WriteSharing : uint8_t { denied, allowed };

// Opens an existing file for reading. With `denied` the open fails while somebody has it open for writing.
// What is no file (a folder, a pipe, a device) is refused at once.
[[nodiscard]] Handle OpenFileForReading(const wchar_t* path, WriteSharing sharing);

// Reads up to `size` bytes at the file's position; `got` 0 is the end of the file.
[[nodiscard]] bool ReadFileBytes(Handle file, void* bytes, uint32_t size, uint32_t& got);

// Writes at the file's position. `written` says how many bytes the system took, also on failure; true only
// when that is all of them.
[[nodiscard]] bool WriteFileBytes(Handle file, const void* bytes, uint32_t size, uint32_t& written);

[[nodiscard]] bool SeekFile(Handle file, uint64_t position);
[[nodiscard]] bool FilePosition(Handle file, uint64_t& position);
[[nodiscard]] bool FileSize(Handle file, uint64_t& size);

// Cuts or extends the file to `size` bytes and puts the position there.
[[nodiscard]] bool TruncateFile(Handle file, uint64_t size);

// Flushes the system's buffers of the file to the disk.
[[nodiscard]] bool FlushFile(Handle file);

// The full path of an open file, with a terminating zero. False when the system cannot tell or it does not
// fit.
[[nodiscard]] bool PathOfFile(Handle file, std::span<wchar_t> path);

// Closes the file; Handle::null and Handle::invalid are ignored.
void CloseFile(Handle file);

[[nodiscard]] bool RemoveFile(const wchar_t* path);
// Gives a file another name in one step. An existing file of that name is replaced, or kept: then it fails.
enum class Existing : uint8_t { replaced, kept };
[[nodiscard]] bool RenameFile(const wchar_t* from, const wchar_t* to, Existing existing = Existing::replaced);

// What a path leads to.
enum class PathKind : uint8_t {
  nothing,  // nothing at all, or nothing that one may look at
  file,
  folder,
  other,  // a pipe, a device, a link to nowhere
};
[[nodiscard]] PathKind KindOfPath(const wchar_t* path);

[[nodiscard]] bool IsFolder(const wchar_t* path);

// How many bytes this user can still write below the folder. False: `bytes` is unchanged. A folder on the
// network may take its time.
[[nodiscard]] bool FreeSpace(const wchar_t* folder, uint64_t& bytes);

// Creates one folder; its parent must exist.
[[nodiscard]] bool CreateFolder(const wchar_t* path);

// What lies in a folder.
struct FolderEntry {
  std::wstring name;  // of its own, without the folder
  PathKind kind;      // of what it leads to
  bool isLink;        // it leads elsewhere: a symbolic link, or a junction
  bool isHidden;      // its name begins with a point, or its attributes say so
};

// Puts all that lies in a folder, itself and its parent left out, behind what stands in `entries`, in no
// order. False when the system refuses, be it midway: then not all of it may stand there.
[[nodiscard]] bool ListFolder(const wchar_t* path, std::vector<FolderEntry>& entries);

// The full path of a folder, as PathOfFile tells that of a file in it: however it is named, it is the same.
[[nodiscard]] bool PathOfFolder(const wchar_t* path, std::span<wchar_t> full);

// Paths as command lines and terminals have them, to wide text and back, each with a terminating zero, cut to
// fit. On Windows that is UTF-8. On other systems names are bytes: all of them come back, those that are no
// UTF-8 and the backslash (which in wide paths separates) too. Return the units stored, the zero not counted.
size_t WidenPath(std::span<wchar_t> out, std::string_view path);
size_t NarrowPath(std::span<char> out, std::wstring_view path);

// The user's documents folder, with a terminating zero.
[[nodiscard]] bool DocumentsFolder(std::span<wchar_t> path);

}  // namespace tw
