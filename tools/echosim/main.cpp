// echosim: a virtual echosounder and a virtual GPS receiver on serial lines, on the real clock.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <optional>

#include "base/text_format.h"
#include "tools/echosim/binding.h"
#include "tools/echosim/options.h"

namespace tw::echosim {
namespace {

constexpr int64_t kLongestWait_us = 100'000;  // a signal may come just before the wait

volatile std::sig_atomic_t stopAsked = 0;
void AskToStop(int) {
  stopAsked = 1;
}

int64_t SteadyNow_us() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

uint32_t UnixNow_s() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::seconds>(now).count());
}

// Writes a line for each ping that has left, or that a stop has cut short.
class PingLog final : public sim::PingObserver {
 public:
  explicit PingLog(LineFile& file) : file_(file) {}

  void PingMade(const sim::SentPing&, std::span<const uint16_t>) override {}
  void PingEnded(const sim::SentPing& ping) override {
    ++(ping.whole ? whole_ : cut_);
    if (!ping.intact) ++damaged_;
    char line[256];
    FormatText(line, "ping %u %lld %.3f %u %d %llu %llu %016llx %s%s%s", ping.number,
               static_cast<long long>(ping.time_us), static_cast<double>(ping.altitude_m), ping.sampleCount,
               ping.txFrequency_hz, static_cast<unsigned long long>(ping.offset),
               static_cast<unsigned long long>(ping.size), static_cast<unsigned long long>(ping.hash),
               ping.whole ? "whole" : "cut", ping.faulty ? " faulty" : "", ping.intact ? "" : " damaged");
    file_.Write(line);
  }

  [[nodiscard]] uint64_t Whole() const { return whole_; }
  [[nodiscard]] uint64_t Cut() const { return cut_; }
  [[nodiscard]] uint64_t Damaged() const { return damaged_; }

 private:
  LineFile& file_;
  uint64_t whole_ = 0;
  uint64_t cut_ = 0;
  uint64_t damaged_ = 0;
};

// The two instruments and their lines. What is not wanted stays empty.
struct Bench {
  LineFile log;
  LineFile commands;
  LineFile lineSettings;
  PingLog pings{log};
  std::optional<sim::VirtualEchosounder> sounder;
  std::optional<sim::VirtualGps> gps;
  std::optional<Binding> sounderLine;
  std::optional<Binding> gpsLine;
  int32_t speed = 0;            // of the echosounder's line
  int64_t speedChange_us = -1;  // when the line is to follow the device's new speed
};

bool OpenFile(LineFile& file, const std::string& path, const char* headline) {
  if (!file.Create(path)) {
    std::fprintf(stderr, "echosim: %s cannot be written\n", path.c_str());
    return false;
  }
  file.Write(headline);
  return true;
}

// Opens one line and says where it is.
std::unique_ptr<Terminal> Open(const char* what, const std::string& where, int32_t baud) {
  std::string error;
  auto terminal = OpenTerminal(where, baud, error);
  if (terminal == nullptr) {
    std::fprintf(stderr, "echosim: %s\n", error.c_str());
  } else {
    std::printf("%s: %s\n", what, terminal->Name().c_str());
    std::fflush(stdout);
  }
  return terminal;
}

bool SetUp(const ToolOptions& options, Bench& bench) {
  if (!OpenFile(bench.log, options.logFile,
                "# ping NUMBER TIME_US ALTITUDE_M SAMPLES FREQUENCY_HZ OFFSET BYTES HASH STATE; "
                "dropped TIME_US OFFSET BYTES") ||
      !OpenFile(bench.commands, options.commandFile, "# TIME_US BYTES") ||
      !OpenFile(bench.lineSettings, options.lineFile, "# line TIME_US BAUD FRAME FLOW DEVICE_BAUD")) {
    return false;
  }
  if (!options.device.empty()) {
    auto terminal = Open("echosounder", options.device, options.sounder.baud);
    if (terminal == nullptr) return false;
    bench.sounder.emplace(options.sounder, &bench.pings);
    bench.sounderLine.emplace(*bench.sounder, std::move(terminal),
                              Reports{&bench.commands, &bench.log, &bench.lineSettings}, options.strictLine);
    bench.speed = bench.sounder->LineSpeed();
  }
  if (!options.gpsDevice.empty()) {
    auto terminal = Open("gps receiver", options.gpsDevice, options.gps.baud);
    if (terminal == nullptr) return false;
    bench.gps.emplace(options.gps);
    bench.gpsLine.emplace(*bench.gps, std::move(terminal), Reports{}, options.strictLine);
  }
  return true;
}

// The line follows the device's speed a moment later: its last answer leaves at the old one.
void FollowSpeed(Bench& bench, int64_t now_us) {
  constexpr int64_t kAnswerLeaves_us = 50'000;
  if (!bench.sounder || bench.sounder->LineSpeed() == bench.speed) return;
  if (bench.speedChange_us < 0) bench.speedChange_us = now_us + kAnswerLeaves_us;
  if (now_us < bench.speedChange_us) return;
  bench.speed = bench.sounder->LineSpeed();
  bench.speedChange_us = -1;
  if (Terminal* line = bench.sounderLine->Line()) line->SetSpeed(bench.speed);
}

void Run(const ToolOptions& options, Bench& bench) {
  const int64_t start_us = SteadyNow_us();
  const int64_t end_us = options.seconds > 0.0 ? static_cast<int64_t>(options.seconds * 1e6) : sim::kNever;
  while (stopAsked == 0) {
    const int64_t now_us = SteadyNow_us() - start_us;
    if (now_us >= end_us) return;
    int64_t next_us = std::min(now_us + kLongestWait_us, end_us);
    Terminal* lines[2] = {};
    size_t count = 0;
    for (auto* binding : {&bench.sounderLine, &bench.gpsLine}) {
      if (!binding->has_value()) continue;
      (*binding)->Pump(now_us);
      next_us = std::min(next_us, (*binding)->Next_us(now_us));
      lines[count++] = (*binding)->Line();
    }
    FollowSpeed(bench, now_us);
    WaitForInput({lines, count}, std::max<int64_t>(0, next_us - (SteadyNow_us() - start_us)));
  }
}

void Report(const Bench& bench) {
  const auto count = [](uint64_t number) { return static_cast<unsigned long long>(number); };
  if (bench.sounder) {
    std::printf(
        "echosounder: %llu pings sent, %llu cut short, %llu damaged, %llu bytes, %llu dropped, %llu "
        "commands\n",
        count(bench.pings.Whole()), count(bench.pings.Cut()), count(bench.pings.Damaged()),
        count(bench.sounderLine->Sent()), count(bench.sounderLine->Dropped()),
        count(bench.sounder->Commands().Total()));
  }
  if (bench.gps) {
    const sim::GpsCounts& sent = bench.gps->Counts();
    std::printf(
        "gps receiver: GGA %llu, GSA %llu, GSV %llu, RMC %llu, VTG %llu, GLL %llu, left out %llu, "
        "%llu bytes, %llu dropped\n",
        count(sent.gga), count(sent.gsa), count(sent.gsv), count(sent.rmc), count(sent.vtg), count(sent.gll),
        count(sent.leftOut), count(bench.gpsLine->Sent()), count(bench.gpsLine->Dropped()));
  }
}

int Main(std::span<const char* const> arguments) {
  ToolOptions options;
  options.sounder.startTime_s = options.gps.startTime_s = UnixNow_s();
  std::string error;
  if (!ParseOptions(arguments, options, error)) {
    std::fprintf(stderr, "echosim: %s (see echosim --help)\n", error.c_str());
    return 2;
  }
  if (options.help) {
    std::fputs(HelpText().c_str(), stdout);
    return 0;
  }
  if (options.device.empty() && options.gpsDevice.empty()) {
    std::fputs("echosim: no line is given (see echosim --help)\n", stderr);
    return 2;
  }
  std::signal(SIGINT, AskToStop);
  std::signal(SIGTERM, AskToStop);
  Bench bench;
  if (!SetUp(options, bench)) return 1;
  Run(options, bench);
  Report(bench);
  return 0;
}

}  // namespace
}  // namespace tw::echosim

int main(int count, char** arguments) {
  return tw::echosim::Main({arguments + 1, static_cast<size_t>(count > 0 ? count - 1 : 0)});
}
