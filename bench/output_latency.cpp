// How late a depth is that goes out: 50 pings a second for half a minute, all sentences of each, by UDP, to
// eight TCP clients of which one never reads, and on a serial line of 4800 bit/s that nobody empties. Those
// who read are another process. Told are the time from the offer of a ping to its last sentence at the
// reader, how long an offer takes, and the processor time of the process that sends. An argument says which
// sentences are sent (output_options.h) instead of all; $SDDPT always is.
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "base/text_format.h"
#include "outputs/depth_output.h"
#include "platform/clock.h"
#include "tests/outputs/output_ping.h"
#include "tests/platform/echo_terminal.h"
#include "tests/platform/network_peer.h"

namespace {

using tw::NetworkPeer;

constexpr int kPings = 1'500;
constexpr int kPingsPerSecond = 50;

// The milliseconds of one clock for both processes.
double Now_ms() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

// What both processes see.
struct Shared {
  std::array<double, kPings> offered_ms;
  uint16_t udpPort;
  bool udpReady;
  bool tcpReady;
  bool clientsReady;
};

void Await(const bool& flag) {
  while (!*const_cast<const volatile bool*>(&flag)) usleep(1'000);
}

void Tell(const char* what, std::vector<double> times_ms) {
  std::sort(times_ms.begin(), times_ms.end());
  const size_t count = times_ms.size();
  std::printf("%-44s median %7.3f ms, 99 %% %7.3f ms, longest %7.3f ms (%zu)\n", what, times_ms[count / 2],
              times_ms[count * 99 / 100], times_ms.back(), count);
}

// The number that the range of a "$SDDPT" tells; -1 in other sentences.
int NumberOf(const std::string& text) {
  const size_t at = text.rfind("$SDDPT");
  if (at == std::string::npos) return -1;
  const size_t field = text.find(',', text.find(',', at + 7) + 1) + 1;
  return static_cast<int>(std::strtod(text.c_str() + field, nullptr) * 10.0 + 0.5);
}

void ReadClient(const NetworkPeer& client, size_t& bytes) {
  for (std::string text; !(text = client.Receive()).empty();) bytes += text.size();
}

// The process of the readers.
void Read(Shared& shared) {
  const NetworkPeer program = NetworkPeer::Receiver();
  shared.udpPort = program.Address().port;
  shared.udpReady = true;
  Await(shared.tcpReady);
  std::vector<NetworkPeer> clients;
  for (size_t i = 0; i < tw::kMaxClients; ++i) clients.push_back(NetworkPeer::Client(shared.udpPort));
  std::vector<size_t> bytes(clients.size());
  std::vector<std::thread> readers;
  for (size_t i = 1; i < clients.size(); ++i) {
    readers.emplace_back([&, i] { ReadClient(clients[i], bytes[i]); });
  }
  shared.clientsReady = true;
  std::vector<double> late_ms;
  for (std::string text; !(text = program.Receive()).empty();) {
    const int number = NumberOf(text);
    if (number >= 0) late_ms.push_back(Now_ms() - shared.offered_ms[static_cast<size_t>(number)]);
    if (number == kPings - 1) break;
  }
  for (std::thread& reader : readers) reader.join();
  Tell("UDP sentence behind its ping", late_ms);
  std::printf("TCP clients that read got %zu to %zu bytes\n",
              *std::min_element(bytes.begin() + 1, bytes.end()),
              *std::max_element(bytes.begin() + 1, bytes.end()));
}

double ProcessorTime_ms() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto milliseconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  };
  return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

// Offers the pings in time; returns how long each offer took.
std::vector<double> OfferPings(tw::DepthOutput& outputs, Shared& shared) {
  std::vector<double> took_ms;
  auto next = std::chrono::steady_clock::now();
  for (size_t i = 0; i < kPings; ++i) {
    tw::PingFacts ping = tw::OutputPing(tw::MillisecondClock());
    ping.fixUpdates = static_cast<uint32_t>(i);
    ping.range_m = static_cast<float>(i) / 10.0f;
    const double begin_ms = shared.offered_ms[i] = Now_ms();
    outputs.Offer(ping);
    took_ms.push_back(Now_ms() - begin_ms);
    std::this_thread::sleep_until(next += std::chrono::microseconds(1'000'000 / kPingsPerSecond));
  }
  return took_ms;
}

void TellSink(const char* what, const tw::SinkFigures& figures) {
  std::printf("%-8s sent %6u, dropped %6u\n", what, figures.sent, figures.dropped);
}

void Send(Shared& shared, uint32_t sentences) {
  const tw::EchoTerminal plotter;
  tw::OutputOptions options;
  options.serial = options.udp = options.tcp = true;
  options.sentences = sentences | tw::kDpt;
  options.pingsPerSecond = kPingsPerSecond;
  options.udpPort = options.tcpPort = shared.udpPort;
  tw::WidenText(options.line, plotter.Path());
  tw::DepthOutput outputs;
  if (!outputs.Start(options)) std::abort();
  usleep(300'000);
  shared.tcpReady = true;
  Await(shared.clientsReady);
  usleep(1'500'000);  // until they are let in
  const double begin_ms = Now_ms();
  const double used_ms = ProcessorTime_ms();
  Tell("an offer takes", OfferPings(outputs, shared));
  std::printf("processor time: %.2f %% of a core\n",
              100.0 * (ProcessorTime_ms() - used_ms) / (Now_ms() - begin_ms));
  const tw::OutputFigures figures = outputs.Figures();
  std::printf("pings dropped: %u; TCP clients left: %u\n", figures.dropped, figures.tcp.clients);
  TellSink("serial", figures.serial);
  TellSink("UDP", figures.udp);
  TellSink("TCP", figures.tcp);
}

}  // namespace

int main(int argc, char** argv) {
  void* const block =
      mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (block == MAP_FAILED) return 1;
  Shared& shared = *static_cast<Shared*>(block);
  std::fflush(stdout);
  const pid_t readers = fork();
  if (readers < 0) return 1;
  if (readers == 0) {
    Read(shared);
    return 0;
  }
  Await(shared.udpReady);
  const uint32_t sentences =
      argc > 1 ? static_cast<uint32_t>(std::strtoul(argv[1], nullptr, 10)) : tw::kAllSentences;
  Send(shared, sentences & tw::kAllSentences);
  std::fflush(stdout);
  int status = 0;
  return waitpid(readers, &status, 0) == readers && status == 0 ? 0 : 1;
}
