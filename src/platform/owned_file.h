// A file that closes itself. One thread at a time.
#pragma once

#include <utility>

#include "platform/file.h"

namespace tw {

class OwnedFile {
 public:
  explicit OwnedFile(Handle file = Handle::invalid) : file_(file) {}
  OwnedFile(OwnedFile&& other) noexcept : file_(other.Take()) {}
  OwnedFile& operator=(OwnedFile&& other) noexcept {
    CloseFile(std::exchange(file_, other.Take()));
    return *this;
  }
  ~OwnedFile() { CloseFile(file_); }

  // Handle::invalid when there is none.
  [[nodiscard]] Handle Get() const { return file_; }

  // From now on the caller closes it.
  [[nodiscard]] Handle Take() { return std::exchange(file_, Handle::invalid); }

 private:
  Handle file_;
};

}  // namespace tw
