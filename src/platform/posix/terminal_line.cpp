#include "platform/posix/terminal_line.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "base/text_scan.h"
#include "platform/posix/last_error.h"
#include "platform/posix/monitor.h"

namespace tw {
namespace {

struct Speed {
  uint32_t baud;
  speed_t code;
};
constexpr Speed kSpeeds[] = {{1200, B1200},     {2400, B2400},     {4800, B4800},     {9600, B9600},
                             {19200, B19200},   {38400, B38400},   {57600, B57600},   {115200, B115200},
                             {230400, B230400}, {460800, B460800}, {921600, B921600}, {3000000, B3000000}};

// The number behind "baud="; a speed that terminals do not know leaves the speed as it is.
void SetSpeed(termios& settings, std::string_view mode) {
  constexpr std::string_view kKey = "baud=";
  const size_t at = mode.find(kKey);
  if (at == std::string_view::npos) return;
  std::string_view rest = mode.substr(at + kKey.size());
  uint32_t baud = 0;
  if (!ScanUint(rest, baud)) return;
  for (const Speed& speed : kSpeeds) {
    if (speed.baud == baud) cfsetspeed(&settings, speed.code);
  }
}

// As with a port, what the terminal makes of it does not matter.
void SetLine(int terminal, std::string_view mode) {
  termios settings{};
  if (tcgetattr(terminal, &settings) != 0) return;
  cfmakeraw(&settings);
  settings.c_cflag |= CLOCAL | CREAD;
  settings.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS | CSTOPB);
  if (mode.find("octs=on") != std::string_view::npos) settings.c_cflag |= CRTSCTS;
  settings.c_cc[VMIN] = 0;
  settings.c_cc[VTIME] = 0;
  SetSpeed(settings, mode);
  tcsetattr(terminal, TCSANOW, &settings);
}

[[nodiscard]] bool HasHungUp(int terminal) {
  pollfd state{terminal, 0, 0};
  return ::poll(&state, 1, 0) > 0 && (state.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

[[nodiscard]] int PollTimeout_ms(int64_t deadline_us) {
  const int64_t left_us = std::clamp<int64_t>(deadline_us - Now_us(), 0, int64_t{3'600'000'000});
  return static_cast<int>((left_us + 999) / 1000);
}

}  // namespace

std::shared_ptr<TerminalLine> TerminalLine::Open(const std::wstring& name, const char* path, const char* mode,
                                                 uint32_t readConstant_ms) {
  const int terminal = open(path, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (terminal < 0) {
    FailWithErrno();
    return nullptr;
  }
  const int wakeUp = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  if (wakeUp < 0) {
    FailWithErrno();
    close(terminal);
    return nullptr;
  }
  ioctl(terminal, TIOCEXCL);
  SetLine(terminal, mode);
  tcflush(terminal, TCIOFLUSH);
  return std::make_shared<TerminalLine>(name, readConstant_ms, terminal, wakeUp);
}

TerminalLine::~TerminalLine() {
  ioctl(terminal_, TIOCNXCL);
  close(terminal_);
  close(wakeUp_);
}

int64_t TerminalLine::Take(std::span<uint8_t> out) {
  const ssize_t got = ::read(terminal_, out.data(), out.size());
  if (got > 0) return got;
  if (got < 0 && errno != EAGAIN && errno != EINTR) {
    FailWithErrno();
    return -1;
  }
  if (HasHungUp(terminal_)) {
    SetSystemError(EIO);
    return -1;
  }
  return 0;
}

bool TerminalLine::Put(std::span<const uint8_t> bytes) {
  uint32_t put = 0;
  return PutUntil(bytes, kNever, put);
}

bool TerminalLine::PutUntil(std::span<const uint8_t> bytes, int64_t deadline_us, uint32_t& put) {
  for (put = 0; put < bytes.size();) {
    const ssize_t count = ::write(terminal_, bytes.data() + put, bytes.size() - put);
    if (count > 0) {
      put += static_cast<uint32_t>(count);
      continue;
    }
    if (count < 0 && errno != EAGAIN && errno != EINTR) return FailWithErrno();
    if (Closed() || HasHungUp(terminal_)) {
      SetSystemError(EIO);
      return false;
    }
    if (deadline_us != kNever && Now_us() >= deadline_us) return true;
    WaitFor(POLLOUT, deadline_us == kNever ? -1 : PollTimeout_ms(deadline_us));
  }
  return true;
}

uint32_t TerminalLine::Waiting() {
  int waiting = 0;
  return ioctl(terminal_, FIONREAD, &waiting) == 0 && waiting > 0 ? static_cast<uint32_t>(waiting) : 0;
}

void TerminalLine::Await(int64_t deadline_us) {
  WaitFor(POLLIN, PollTimeout_ms(deadline_us));
}

void TerminalLine::WaitFor(short events, int timeout_ms) {
  pollfd ends[] = {{terminal_, events, 0}, {wakeUp_, POLLIN, 0}};
  ::poll(ends, 2, timeout_ms);
  const bool woken = (ends[1].revents & POLLIN) != 0;
  uint64_t count = 0;
  // A closed line stays awake for good.
  if (woken && !Closed() && ::read(wakeUp_, &count, sizeof(count)) < 0) return;
}

void TerminalLine::Wake() {
  const uint64_t one = 1;
  if (::write(wakeUp_, &one, sizeof(one)) < 0) return;  // full: it is awake already
}

}  // namespace tw
