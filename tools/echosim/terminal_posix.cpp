#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <pty.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

#include "tools/echosim/terminal.h"

namespace tw::echosim {
namespace {

struct Speed {
  int32_t baud;
  speed_t code;
};
constexpr Speed kSpeeds[] = {{4'800, B4800},     {9'600, B9600},       {19'200, B19200},   {38'400, B38400},
                             {57'600, B57600},   {115'200, B115200},   {230'400, B230400}, {460'800, B460800},
                             {921'600, B921600}, {3'000'000, B3000000}};

int32_t BaudOf(speed_t code) {
  for (const Speed& speed : kSpeeds) {
    if (speed.code == code) return speed.baud;
  }
  return 0;
}

int32_t DataBitsOf(tcflag_t flags) {
  switch (flags & CSIZE) {
    case CS5:
      return 5;
    case CS6:
      return 6;
    case CS7:
      return 7;
    default:
      return 8;
  }
}

std::string SystemText(const std::string& what) {
  return what + ": " + std::strerror(errno);  // NOLINT(concurrency-mt-unsafe): one thread
}

std::string TargetOf(const std::string& link) {
  char target[PATH_MAX];
  const ssize_t length = readlink(link.c_str(), target, sizeof target);
  return length > 0 ? std::string(target, static_cast<size_t>(length)) : std::string();
}

bool IsLink(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

// The slave's side stays open here, so that the terminal outlives the programs that come and go on it.
class PseudoTerminal final : public Terminal {
 public:
  PseudoTerminal(int master, int slave, std::string link, std::string target)
      : master_(master), slave_(slave), link_(std::move(link)), target_(std::move(target)) {}
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;
  ~PseudoTerminal() override {
    if (TargetOf(link_) == target_) unlink(link_.c_str());
    close(slave_);
    close(master_);
  }

  [[nodiscard]] int Descriptor() const { return master_; }

  [[nodiscard]] std::string Name() const override { return link_ + " -> " + target_; }

  [[nodiscard]] size_t Read(std::span<uint8_t> out) override {
    const ssize_t got = read(master_, out.data(), out.size());
    return got > 0 ? static_cast<size_t>(got) : 0;
  }

  [[nodiscard]] size_t Write(std::span<const uint8_t> bytes) override {
    size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t count = write(master_, bytes.data() + done, bytes.size() - done);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) break;
      done += static_cast<size_t>(count);
    }
    return done;
  }

  void SetSpeed(int32_t) override {}

  [[nodiscard]] bool OtherEnd(LineSettings& settings) const override {
    termios state{};
    if (tcgetattr(slave_, &state) != 0) return false;
    const tcflag_t flags = state.c_cflag;
    const char parity = (flags & PARODD) != 0 ? 'O' : 'E';
    settings = {.baud = BaudOf(cfgetospeed(&state)),
                .dataBits = DataBitsOf(flags),
                .parity = (flags & PARENB) != 0 ? parity : 'N',
                .stopBits = (flags & CSTOPB) != 0 ? 2 : 1,
                .hardwareFlow = (flags & CRTSCTS) != 0};
    return true;
  }

 private:
  int master_;
  int slave_;
  std::string link_;
  std::string target_;
};

}  // namespace

std::unique_ptr<Terminal> OpenTerminal(const std::string& where, int32_t baud, std::string& error) {
  termios raw{};
  cfmakeraw(&raw);
  raw.c_cflag |= CREAD | CLOCAL;
  for (const Speed& speed : kSpeeds) {
    if (speed.baud == baud) cfsetspeed(&raw, speed.code);
  }
  int master = -1;
  int slave = -1;
  if (openpty(&master, &slave, nullptr, &raw, nullptr) != 0) {
    error = SystemText("no pseudo terminal");
    return nullptr;
  }
  char target[PATH_MAX];
  const bool named = ttyname_r(slave, target, sizeof target) == 0;
  // A link of an earlier run is replaced; anything else that stands there is not ours.
  if (named && IsLink(where)) unlink(where.c_str());
  if (!named || fcntl(master, F_SETFL, O_NONBLOCK) != 0 || symlink(target, where.c_str()) != 0) {
    error = SystemText(where);
    close(slave);
    close(master);
    return nullptr;
  }
  return std::make_unique<PseudoTerminal>(master, slave, where, target);
}

void WaitForInput(std::span<Terminal* const> terminals, int64_t timeout_us) {
  std::vector<pollfd> waits;
  for (Terminal* terminal : terminals) {
    if (terminal == nullptr) continue;
    waits.push_back({static_cast<PseudoTerminal*>(terminal)->Descriptor(), POLLIN, 0});
  }
  timespec timeout{};
  timeout.tv_sec = timeout_us / 1'000'000;
  timeout.tv_nsec = timeout_us % 1'000'000 * 1'000;
  (void)ppoll(waits.data(), waits.size(), &timeout, nullptr);
}

}  // namespace tw::echosim
