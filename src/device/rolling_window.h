// The last bytes of a stream, for finding short marks in it. Pure; one thread at a time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace tw {

// The last N bytes received.
template <size_t N>
class RollingWindow {
 public:
  void Take(char byte) {
    std::copy(std::begin(bytes_) + 1, std::end(bytes_), std::begin(bytes_));
    bytes_[N - 1] = byte;
  }
  [[nodiscard]] bool Holds(std::string_view text) const { return std::string_view(bytes_, N) == text; }

 private:
  char bytes_[N] = {};
};

}  // namespace tw
