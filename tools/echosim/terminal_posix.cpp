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

std::string SystemText(const std::string& what) {
  return what + ": " + std::strerror(errno);
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

 private:
  int master_;
  int slave_;
  std::string link_;
  std::string target_;
};

}  // namespace

std::unique_ptr<Terminal> OpenTerminal(const std::string& where, int32_t, std::string& error) {
  termios raw{};
  cfmakeraw(&raw);
  raw.c_cflag |= CREAD | CLOCAL;
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
