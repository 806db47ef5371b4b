// The terminal that echotool may be talking to.
#pragma once

#include <cstdint>
#include <string>

namespace tw::echotool {

// True when standard error is a terminal.
[[nodiscard]] bool IsConsole();

// A bar on standard error, drawn again when it has grown by a hundredth; nothing without a terminal.
class ProgressBar {
 public:
  ProgressBar(std::string label, uint64_t size);
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
