#include "platform/posix/paths.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>

#include "base/text_format.h"
#include "platform/file.h"
#include "platform/posix/last_error.h"

namespace tw {
namespace {

constexpr uint32_t kBytesFrom = 0xDC00;

// How many bytes of `text` are its first character, which goes to `wide`; 0 when they are none.
size_t TakeCharacter(std::string_view text, wchar_t& wide) {
  for (size_t size = 1; size <= std::min(posix::kLongestCharacter, text.size()); ++size) {
    wchar_t units[3];
    char again[posix::kLongestCharacter + 1];
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

}  // namespace

posix::NarrowedPath::NarrowedPath(std::wstring_view path)
    : bytes_(kLongestCharacter * path.size() + 1, '\0') {
  NarrowPath(bytes_, path);
}

bool posix::TellFullPath(std::string_view bytes, std::span<wchar_t> path) {
  wchar_t full[PATH_MAX];
  const size_t units = WidenPath(full, bytes);
  if (units >= path.size()) return FailWith(ENAMETOOLONG);
  std::replace(full, full + units, L'/', L'\\');
  CopyWide(path, {full, units});
  return true;
}

PathKind KindOfPath(const wchar_t* path) {
  const posix::NarrowedPath bytes(path);
  struct stat info {};
  if (stat(bytes.Get(), &info) != 0)
    return lstat(bytes.Get(), &info) == 0 ? PathKind::other : PathKind::nothing;
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
    char bytes[posix::kLongestCharacter + 1] = {static_cast<char>(unit)};
    const bool isByte = IsByte(static_cast<uint32_t>(unit));
    const size_t size = isByte ? 1 : NarrowText(bytes, {unit == L'\\' ? L"/" : &unit, 1});
    if (used + size >= out.size()) break;
    used = static_cast<size_t>(std::copy_n(bytes, size, out.begin() + static_cast<ptrdiff_t>(used)) -
                               out.begin());
  }
  out[used] = '\0';
  return used;
}

}  // namespace tw
