#include "tools/echotool/whole_file.h"

#include "platform/system_error.h"

namespace tw::echotool {
namespace {

constexpr int kMostNames = 100;

}  // namespace

bool WholeFile::Took(bool done) {
  if (!done) error_ = LastSystemError();
  return done;
}

// A name may be taken by another process, or left behind by one that was killed. Whether that is why the file
// cannot be made the systems tell in different ways; the few tries cost nothing.
bool WholeFile::Create(const std::wstring& path) {
  path_ = path;
  for (int i = 0; i < kMostNames && file_ == Handle::invalid; ++i) {
    temporary_ = path + (i == 0 ? L"" : L"." + std::to_wstring(i)) + L".part";
    file_ = CreateNewFile(temporary_.c_str());
  }
  return Took(file_ != Handle::invalid);
}

bool WholeFile::Complete(Existing existing) {
  const bool flushed = Took(FlushFile(file_));
  CloseFile(file_);
  file_ = Handle::invalid;
  if (flushed && Took(RenameFile(temporary_.c_str(), path_.c_str(), existing))) return true;
  static_cast<void>(RemoveFile(temporary_.c_str()));
  return false;
}

WholeFile::~WholeFile() {
  if (file_ == Handle::invalid) return;
  CloseFile(file_);
  static_cast<void>(RemoveFile(temporary_.c_str()));
}

}  // namespace tw::echotool
