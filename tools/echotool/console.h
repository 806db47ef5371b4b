// The terminal that echotool may be talking to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tw::echotool {

// The text, cut at a whole character so that it fits into so many columns of a terminal; what is no character
// to show is a question mark.
[[nodiscard]] std::string FitColumns(std::string_view text, size_t columns);

struct Count {
  size_t number;  // from 1
  size_t of;
};

// A bar on standard error, behind "3 of 100" and the name of what is read; drawn again when it has grown by a
// hundredth; nothing without a terminal.
class ProgressBar {
 public:
  ProgressBar(const Count& count, std::string_view name, std::string_view work, uint64_t size);
  ~ProgressBar();  // takes the bar away
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Show(uint64_t position);

 private:
  std::string label_;
  uint64_t size_;
  int shown_ = -1;
  bool console_;
};

}  // namespace tw::echotool
