// What live acquisition with recording and GPS costs of a core, and whether a ping is lost: the program but
// its window against echosim, a process of its own, on pseudo terminals. Once with echo text that fills a
// line of 3 Mbaud, once with 50 pings a second of a line mode. What was recorded is compared with what was
// sent.
//
//   live_share [SECONDS]
#include <sys/resource.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <span>
#include <sstream>

#include "app/window/commands.h"
#include "platform/clock.h"
#include "simulator/sent_ping.h"
#include "tests/end_to_end/simulator_process.h"

namespace tw::test {
namespace {

std::string WholeFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

double Processor_s() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct Compared {
  uint64_t pings = 0;
  uint64_t bytes = 0;  // of the device's own
  bool same = false;   // the recording is what was sent, from the first ping on, without a gap
};

// Takes what is recorded behind a message: both sentences and, in echo text, the empty line.
bool TakeSentences(std::string_view& file) {
  const size_t rmc = file.find("RMC,");
  const size_t end = file.find("\r\n", rmc);
  if (rmc == file.npos || end == file.npos) return false;
  file.remove_prefix(end + 2);
  if (file.starts_with("\r\n\r\n")) file.remove_prefix(4);
  return true;
}

// The log has a line a ping: its number, time, altitude, samples, frequency, offset, size, hash.
Compared Compare(std::string_view file, std::istream& log) {
  Compared compared;
  while (file.starts_with("INFO:")) file.remove_prefix(file.find("\r\n") + 2);
  for (std::string line; !file.empty() && std::getline(log, line);) {
    std::istringstream words(line);
    std::string word;
    uint64_t size = 0;
    words >> word;
    if (word != "ping") continue;
    for (int i = 0; i < 6; ++i) words >> word;
    words >> size >> word;
    const std::string_view message = file.substr(0, size);
    char hash[17];
    std::snprintf(hash, sizeof hash, "%016" PRIx64,
                  sim::HashOf({reinterpret_cast<const uint8_t*>(message.data()), message.size()}));
    if (word != hash) return compared;
    file.remove_prefix(message.size());
    if (!TakeSentences(file)) return compared;
    ++compared.pings;
    compared.bytes += size;
  }
  compared.same = file.empty() && compared.pings > 0;
  return compared;
}

bool Measure(const char* name, int32_t duration_s, std::vector<std::string> words) {
  const TestFolder folder;
  const std::filesystem::path log = folder.Path() / "pings.txt";
  words.insert(words.end(), {"--log", log, "--gps-speed", "115200", "--speed", "3000000"});
  AppState* state = nullptr;
  double share = 0;
  {
    const SimulatorProcess simulator(TW_ECHOSIM, folder, std::move(words));
    state = &StartedProgram(folder, L"3000000", L"115200");
    StartRun(*state);
    const double before_s = Processor_s();
    SleepMilliseconds(static_cast<uint32_t>(duration_s) * 1'000);
    share = (Processor_s() - before_s) / duration_s;
    StopRun(*state);
  }
  Compared compared;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Path())) {
    if (entry.path().extension() != ".log") continue;
    std::ifstream lines(log);
    compared = Compare(WholeFile(entry.path()), lines);
  }
  std::printf("%s: %.2f %% of a core; %" PRIu64 " pings, %.0f bytes a second, %s\n", name, 100 * share,
              compared.pings, static_cast<double>(compared.bytes) / duration_s,
              compared.same ? "none lost" : "THEN ONE IS MISSING");
  DetachSerialLines();
  SetDocumentsFolder(nullptr);
  return compared.same;
}

}  // namespace
}  // namespace tw::test

int main(int argc, char** argv) {
  const int32_t duration_s = argc > 1 ? std::max(std::atoi(argv[1]), 1) : 20;
  const bool echoes = tw::test::Measure("echo text at 3 Mbaud", duration_s,
                                        {"--mode", "4", "--rate", "25", "--samples", "2400"});
  const bool lines =
      tw::test::Measure("Sonarmite OLD, 50 a second", duration_s, {"--mode", "9", "--rate", "50"});
  return echoes && lines ? 0 : 1;
}
