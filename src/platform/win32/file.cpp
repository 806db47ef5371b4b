#include "platform/file.h"

#include <shlobj.h>

#include <array>
#include <string_view>

#include "base/text_format.h"
#include "platform/win32/handle_win32.h"

namespace tw {
namespace {

constexpr size_t kPathUnits = 32'768;  // the longest path that the system knows

[[nodiscard]] Handle Open(const wchar_t* path, DWORD access, DWORD sharing, DWORD disposition) {
  return FromSystem(CreateFileW(path, access, sharing, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

[[nodiscard]] bool MoveTo(Handle file, int64_t distance, DWORD from, int64_t& position) {
  LARGE_INTEGER by;
  LARGE_INTEGER at;
  by.QuadPart = distance;
  if (!SetFilePointerEx(ToSystem(file), by, &at, from)) return false;
  position = at.QuadPart;
  return true;
}

// The system's own spelling without its prefix: "\\?\C:\a" is "C:\a", "\\?\UNC\server\a" is "\\server\a".
[[nodiscard]] bool CopyWithoutPrefix(std::wstring_view full, std::span<wchar_t> path) {
  constexpr std::wstring_view kNetwork = L"\\\\?\\UNC\\";
  constexpr std::wstring_view kLocal = L"\\\\?\\";
  const bool network = full.starts_with(kNetwork);
  const std::wstring_view start = network ? L"\\\\" : L"";
  if (network) {
    full.remove_prefix(kNetwork.size());
  } else if (full.starts_with(kLocal)) {
    full.remove_prefix(kLocal.size());
  }
  if (start.size() + full.size() >= path.size()) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return false;
  }
  const size_t units = CopyWide(path, start);
  CopyWide(path.subspan(units), full);
  return true;
}

// Refuses what cannot be read again from its beginning.
[[nodiscard]] Handle OnlyFile(Handle handle) {
  if (handle == Handle::invalid || GetFileType(ToSystem(handle)) == FILE_TYPE_DISK) return handle;
  CloseIfOpen(handle);
  SetLastError(ERROR_SEEK_ON_DEVICE);
  return Handle::invalid;
}

// Files that a service keeps elsewhere until they are wanted have a mark as links have, but lie here.
[[nodiscard]] FolderEntry Described(const WIN32_FIND_DATAW& found) {
  const DWORD attributes = found.dwFileAttributes;
  const bool marked = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  return {.name = found.cFileName,
          .kind = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? PathKind::folder : PathKind::file,
          .isLink = marked && (found.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
                               found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT),
          .isHidden = (attributes & FILE_ATTRIBUTE_HIDDEN) != 0 || found.cFileName[0] == L'.'};
}

}  // namespace

Handle CreateFileAnew(const wchar_t* path) {
  return Open(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS);
}

// Opened as a link, so that the name of one is taken.
Handle CreateNewFile(const wchar_t* path) {
  constexpr DWORD kAttributes = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT;
  return FromSystem(CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                                kAttributes, nullptr));
}

Handle OpenFileForAppending(const wchar_t* path) {
  const Handle file = OnlyFile(Open(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_ALWAYS));
  int64_t end = 0;
  if (file == Handle::invalid || MoveTo(file, 0, FILE_END, end)) return file;
  CloseIfOpen(file);
  return Handle::invalid;
}

Handle OpenFileForReading(const wchar_t* path, WriteSharing sharing) {
  const DWORD others =
      sharing == WriteSharing::allowed ? FILE_SHARE_READ | FILE_SHARE_WRITE : FILE_SHARE_READ;
  return OnlyFile(Open(path, GENERIC_READ, others, OPEN_EXISTING));
}

bool ReadFileBytes(Handle file, void* bytes, uint32_t size, uint32_t& got) {
  DWORD count = 0;
  const bool read = ReadFile(ToSystem(file), bytes, size, &count, nullptr) != 0;
  got = read ? count : 0;
  return read;
}

bool WriteFileBytes(Handle file, const void* bytes, uint32_t size, uint32_t& written) {
  DWORD count = 0;
  const bool wrote = WriteFile(ToSystem(file), bytes, size, &count, nullptr) != 0;
  written = count;
  return wrote && count == size;
}

bool SeekFile(Handle file, uint64_t position) {
  if (position > INT64_MAX) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
  }
  int64_t at = 0;
  return MoveTo(file, static_cast<int64_t>(position), FILE_BEGIN, at);
}

bool FilePosition(Handle file, uint64_t& position) {
  int64_t at = 0;
  if (!MoveTo(file, 0, FILE_CURRENT, at)) return false;
  position = static_cast<uint64_t>(at);
  return true;
}

bool FileSize(Handle file, uint64_t& size) {
  LARGE_INTEGER value;
  if (!GetFileSizeEx(ToSystem(file), &value)) return false;
  size = static_cast<uint64_t>(value.QuadPart);
  return true;
}

bool TruncateFile(Handle file, uint64_t size) {
  return SeekFile(file, size) && SetEndOfFile(ToSystem(file)) != 0;
}

bool FlushFile(Handle file) {
  return FlushFileBuffers(ToSystem(file)) != 0;
}

bool PathOfFile(Handle file, std::span<wchar_t> path) {
  std::array<wchar_t, kPathUnits> full;
  const DWORD length =
      GetFinalPathNameByHandleW(ToSystem(file), full.data(), kPathUnits, FILE_NAME_NORMALIZED);
  return length > 0 && length < kPathUnits && CopyWithoutPrefix({full.data(), length}, path);
}

void CloseFile(Handle file) {
  CloseIfOpen(file);
}

bool RemoveFile(const wchar_t* path) {
  return DeleteFileW(path) != 0;
}

bool RenameFile(const wchar_t* from, const wchar_t* to, Existing existing) {
  return MoveFileExW(from, to, existing == Existing::replaced ? MOVEFILE_REPLACE_EXISTING : 0) != 0;
}

PathKind KindOfPath(const wchar_t* path) {
  const DWORD attributes = GetFileAttributesW(path);
  if (attributes == INVALID_FILE_ATTRIBUTES) return PathKind::nothing;
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return PathKind::folder;
  // Devices have attributes as well.
  constexpr DWORD kAnySharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE handle = CreateFileW(path, 0, kAnySharing, nullptr, OPEN_EXISTING, 0, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return PathKind::file;
  const DWORD type = GetFileType(handle);
  CloseHandle(handle);
  return type == FILE_TYPE_DISK ? PathKind::file : PathKind::other;
}

bool IsFolder(const wchar_t* path) {
  return KindOfPath(path) == PathKind::folder;
}

bool FreeSpace(const wchar_t* folder, uint64_t& bytes) {
  ULARGE_INTEGER available;
  if (GetDiskFreeSpaceExW(folder, &available, nullptr, nullptr) == FALSE) return false;
  bytes = available.QuadPart;
  return true;
}

size_t WidenPath(std::span<wchar_t> out, std::string_view path) {
  return WidenText(out, path);
}

size_t NarrowPath(std::span<char> out, std::wstring_view path) {
  return NarrowText(out, path);
}

bool CreateFolder(const wchar_t* path) {
  return CreateDirectoryW(path, nullptr) != 0;
}

bool ListFolder(const wchar_t* path, std::vector<FolderEntry>& entries) {
  WIN32_FIND_DATAW found;
  const std::wstring pattern = std::wstring(path) + L"\\*";
  const HANDLE search = FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &found, FindExSearchNameMatch,
                                         nullptr, FIND_FIRST_EX_LARGE_FETCH);
  // The root of a disk has no entry for itself.
  if (search == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND && IsFolder(path);
  do {
    const std::wstring_view name = found.cFileName;
    if (name != L"." && name != L"..") entries.push_back(Described(found));
  } while (FindNextFileW(search, &found) != FALSE);
  const DWORD error = GetLastError();
  FindClose(search);
  SetLastError(error);
  return error == ERROR_NO_MORE_FILES;
}

bool PathOfFolder(const wchar_t* path, std::span<wchar_t> full) {
  if (!IsFolder(path)) {
    SetLastError(ERROR_DIRECTORY);
    return false;
  }
  constexpr DWORD kAnySharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const Handle folder = FromSystem(
      CreateFileW(path, 0, kAnySharing, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (folder == Handle::invalid) return false;
  const bool told = PathOfFile(folder, full);
  const DWORD error = GetLastError();
  CloseIfOpen(folder);
  SetLastError(error);
  return told;
}

bool DocumentsFolder(std::span<wchar_t> path) {
  wchar_t folder[MAX_PATH] = {};
  const HRESULT result = SHGetFolderPathW(nullptr, CSIDL_PERSONAL, nullptr, SHGFP_TYPE_CURRENT, folder);
  if (FAILED(result)) {
    SetLastError(static_cast<DWORD>(HRESULT_CODE(result)));
    return false;
  }
  return CopyWithoutPrefix(folder, path);
}

}  // namespace tw
