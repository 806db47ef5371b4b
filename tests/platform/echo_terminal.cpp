#include "tests/platform/echo_terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

namespace tw {

EchoTerminal::EchoTerminal() {
  far_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  char path[128];
  if (far_ < 0 || grantpt(far_) != 0 || unlockpt(far_) != 0 || ptsname_r(far_, path, sizeof(path)) != 0)
    return;
  near_ = open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (near_ < 0) return;
  termios settings{};
  tcgetattr(near_, &settings);
  cfmakeraw(&settings);
  tcsetattr(near_, TCSANOW, &settings);
  path_ = path;
}

EchoTerminal::~EchoTerminal() {
  HangUp();
}

bool EchoTerminal::Echo(int timeout_ms) {
  pollfd state{far_, POLLIN, 0};
  if (poll(&state, 1, timeout_ms) <= 0) return true;
  char bytes[4096];
  const ssize_t got = read(far_, bytes, sizeof(bytes));
  return got > 0 && write(far_, bytes, static_cast<size_t>(got)) == got;
}

void EchoTerminal::HangUp() {
  if (near_ >= 0) close(near_);
  if (far_ >= 0) close(far_);
  near_ = far_ = -1;
}

}  // namespace tw
