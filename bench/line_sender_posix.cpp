// Sends echo text blocks down a pseudo terminal at a steady number of bytes a second, as a device on a fast
// line does, and notes when the last byte of each block was handed over. The other half of the measurement
// is live_reading_win32.cpp; bench/live_reading.sh joins the two.
//
//   line_sender LINK BYTES_PER_SECOND SECONDS TIMES_FILE
//
// LINK becomes a link to the terminal. Sending begins when the reader has sent one byte. What does not fit
// the terminal's buffer is dropped and counted, as on a real line. TIMES_FILE gets one line a block: its
// number and the wall clock in microseconds.
#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

int64_t WallClock_us() {
  return std::chrono::duration_cast<microseconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

// About 3,000 bytes, so 100 blocks a second at 300,000 bytes a second.
std::string Block(uint32_t number) {
  constexpr int kSamples = 560;
  char head[256];
  std::snprintf(head, sizeof head,
                "#DeviceID BENCH\r\n#TimeWork 0.0\r\n#NSamples %d\r\n#OutputMode 4\r\n"
                "#Sampling_Frequency,Hz 25000\r\n#Altitude 5.0\r\n#Temperature 10.0\r\n#Ping %u\r\n"
                "#Tx_Frequency,Hz 200000\r\n##DataStart\r\n",
                kSamples, number);
  std::string block = head;
  for (int i = 0; i < kSamples; ++i)
    block += std::to_string(100 + (number * 7 + static_cast<unsigned>(i)) % 900) + "\r\n";
  return block + "\r\n\r\n";
}

int OpenTerminal(const char* link) {
  int master = -1;
  int slave = -1;
  if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0) return -1;
  termios settings{};
  tcgetattr(slave, &settings);
  cfmakeraw(&settings);
  tcsetattr(slave, TCSANOW, &settings);
  unlink(link);
  if (symlink(ttyname(slave), link) != 0) return -1;
  return master;  // the slave stays open, so that the terminal lives while nobody reads
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fprintf(stderr, "usage: line_sender LINK BYTES_PER_SECOND SECONDS TIMES_FILE\n");
    return 2;
  }
  const int64_t rate = std::atoll(argv[2]);
  const int64_t duration_us = std::atoll(argv[3]) * 1'000'000;
  const int terminal = OpenTerminal(argv[1]);
  std::FILE* times = std::fopen(argv[4], "w");
  if (terminal < 0 || times == nullptr) {
    std::perror("line_sender");
    return 1;
  }
  char go = 0;
  if (read(terminal, &go, 1) != 1) return 1;
  fcntl(terminal, F_SETFL, fcntl(terminal, F_GETFL) | O_NONBLOCK);

  const auto begin = steady_clock::now();
  int64_t sent = 0;
  int64_t dropped = 0;
  uint32_t number = 0;
  std::string block;
  size_t next = 0;
  for (;;) {
    const int64_t elapsed_us = std::chrono::duration_cast<microseconds>(steady_clock::now() - begin).count();
    const bool over = elapsed_us >= duration_us;
    int64_t due = over ? 0 : elapsed_us * rate / 1'000'000 - sent - dropped;
    if (over && next >= block.size()) break;
    if (over) due = static_cast<int64_t>(block.size() - next);  // finish the last block
    while (due > 0) {
      if (next >= block.size()) {
        block = Block(number++);
        next = 0;
      }
      const size_t count = std::min(static_cast<size_t>(due), block.size() - next);
      const ssize_t took = write(terminal, block.data() + next, count);
      const size_t accepted = took > 0 ? static_cast<size_t>(took) : 0;
      sent += static_cast<int64_t>(accepted);
      dropped += static_cast<int64_t>(count - accepted);
      due -= static_cast<int64_t>(count);
      next += count;
      if (next >= block.size())
        std::fprintf(times, "%u %lld\n", number - 1, static_cast<long long>(WallClock_us()));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  std::fclose(times);
  std::printf("sent %lld bytes, dropped %lld, blocks %u\n", static_cast<long long>(sent),
              static_cast<long long>(dropped), number);
  std::this_thread::sleep_for(std::chrono::seconds(1));
  unlink(argv[1]);
  return 0;
}
