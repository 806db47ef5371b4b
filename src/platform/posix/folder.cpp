#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "platform/posix/last_error.h"
#include "platform/posix/open_file.h"
#include "platform/posix/paths.h"

namespace tw {
namespace {

struct Closer {
  void operator()(DIR* folder) const { closedir(folder); }
};

PathKind KindOf(const struct stat& info) {
  if (S_ISDIR(info.st_mode)) return PathKind::folder;
  return S_ISREG(info.st_mode) ? PathKind::file : PathKind::other;
}

FolderEntry Describe(int folder, const char* bytes) {
  const std::string_view name = bytes;
  FolderEntry entry{.name = std::wstring(name.size() + 1, L'\0'),
                    .kind = PathKind::nothing,
                    .isLink = false,
                    .isHidden = name.starts_with('.')};
  entry.name.resize(WidenPath(entry.name, name));
  struct stat info {};
  if (fstatat(folder, bytes, &info, AT_SYMLINK_NOFOLLOW) != 0) return entry;
  entry.isLink = S_ISLNK(info.st_mode);
  const bool leadsSomewhere = !entry.isLink || fstatat(folder, bytes, &info, 0) == 0;
  entry.kind = leadsSomewhere ? KindOf(info) : PathKind::other;
  return entry;
}

}  // namespace

bool posix::ListFolder(const wchar_t* path, std::vector<FolderEntry>& entries) {
  const std::unique_ptr<DIR, Closer> folder(opendir(NarrowedPath(path).Get()));
  if (folder == nullptr) return FailWithErrno();
  for (;;) {
    errno = 0;
    const dirent* const found = readdir(folder.get());  // NOLINT(concurrency-mt-unsafe): nobody else has it
    if (found == nullptr) return errno == 0 || FailWithErrno();
    const std::string_view name = found->d_name;
    if (name != "." && name != "..") entries.push_back(Describe(dirfd(folder.get()), found->d_name));
  }
}

bool PathOfFolder(const wchar_t* path, std::span<wchar_t> full) {
  char target[PATH_MAX];
  struct stat info {};
  if (realpath(posix::NarrowedPath(path).Get(), target) == nullptr || stat(target, &info) != 0)
    return FailWithErrno();
  return S_ISDIR(info.st_mode) ? posix::TellFullPath(target, full) : FailWith(ENOTDIR);
}

}  // namespace tw
