// An output that appears whole or not at all: it is written under a temporary name of its own beside its
// place and takes its own name when it is complete and on the disk. What was not completed is removed. One
// thread.
#pragma once

#include <cstdint>
#include <string>

#include "platform/file.h"

namespace tw::echotool {

class WholeFile {
 public:
  WholeFile() = default;
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;
  ~WholeFile();

  // Begins the file; false when it cannot be made there.
  [[nodiscard]] bool Create(const std::wstring& path);

  [[nodiscard]] Handle File() const { return file_; }

  // Gives the file its name. False: what stood there stands there still, and nothing else does.
  [[nodiscard]] bool Complete(Existing existing);

  // The system's error of the call that failed.
  [[nodiscard]] uint32_t Error() const { return error_; }

 private:
  [[nodiscard]] bool Took(bool done);

  std::wstring path_;
  std::wstring temporary_;
  Handle file_ = Handle::invalid;
  uint32_t error_ = 0;
};

}  // namespace tw::echotool
