#include "tools/echotool/console.h"

#include <cstdio>
#include <utility>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace tw::echotool {

bool IsConsole() {
#ifdef _WIN32
  return _isatty(_fileno(stderr)) != 0;
#else
  return isatty(STDERR_FILENO) != 0;
#endif
}

ProgressBar::ProgressBar(std::string label, uint64_t size)
    : label_(std::move(label)), size_(size), console_(IsConsole()) {}

ProgressBar::~ProgressBar() {
  if (shown_ >= 0) std::fprintf(stderr, "\r\033[K");
}

void ProgressBar::Show(uint64_t position) {
  if (!console_ || size_ == 0) return;
  const int percent = static_cast<int>(position >= size_ ? 100 : position / (size_ / 100 + 1));
  if (percent == shown_) return;
  shown_ = percent;
  constexpr int kWidth = 20;  // with a long name all fits into 80 columns
  const int full = percent * kWidth / 100;
  std::fprintf(stderr, "\r%.48s [%.*s%*s] %3d %%", label_.c_str(), full, "####################",
               kWidth - full, "", percent);
  std::fflush(stderr);
}

}  // namespace tw::echotool
