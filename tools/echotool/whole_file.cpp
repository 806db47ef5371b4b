#include "tools/echotool/whole_file.h"

#include "platform/file.h"

namespace tw::echotool {

bool WholeFile::Create(const std::wstring& path) {
  path_ = path;
  temporary_ = path + L".part";
  file_ = CreateFileAnew(temporary_.c_str());
  return file_ != Handle::invalid;
}

bool WholeFile::Complete() {
  CloseFile(file_);
  file_ = Handle::invalid;
  if (RenameFile(temporary_.c_str(), path_.c_str())) return true;
  static_cast<void>(RemoveFile(temporary_.c_str()));
  return false;
}

WholeFile::~WholeFile() {
  if (file_ == Handle::invalid) return;
  CloseFile(file_);
  static_cast<void>(RemoveFile(temporary_.c_str()));
}

}  // namespace tw::echotool
