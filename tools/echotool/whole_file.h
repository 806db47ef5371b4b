// An output that appears whole or not at all: it is written under a temporary name beside its place and takes
// its own name when it is complete. What was not completed is removed. One thread.
#pragma once

#include <string>

#include "platform/handle.h"

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

  // Gives the file its name, replacing an older one of that name. False: neither is there then but the older.
  [[nodiscard]] bool Complete();

 private:
  std::wstring path_;
  std::wstring temporary_;
  Handle file_ = Handle::invalid;
};

}  // namespace tw::echotool
