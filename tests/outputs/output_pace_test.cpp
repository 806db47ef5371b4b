// A line's pace under the virtual clock. Sockets are real.
#include <gtest/gtest.h>

#include <string>

#include "base/text_format.h"
#include "outputs/depth_output.h"
#include "platform/clock.h"
#include "platform/virtual/serial_peer.h"
#include "tests/outputs/output_ping.h"
#include "tests/platform/network_peer.h"

namespace tw {
namespace {

// The instrument at the end of the line.
struct Plotter final : SerialPeer {
  bool Open(const char* mode) override { return std::string(mode) == "baud=4800 parity=N data=8 stop=1"; }
  void Receive(std::span<const uint8_t> bytes, int64_t) override {
    const std::string text(bytes.begin(), bytes.end());
    size += text.size();
    if (text.find(newest) == std::string::npos) ++stale;
  }
  size_t Send(std::span<uint8_t>, int64_t) override { return 0; }
  int64_t NextSend_us(int64_t) override { return kNever; }
  size_t Waiting(int64_t) override { return 0; }

  std::string newest;
  size_t size = 0;
  int stale = 0;
};

TEST(OutputPace, ALineThatCannotCarryItGetsTheNewestPingsAndCostsNobodyAnything) {
  Plotter plotter;
  AttachPeer(L"\\\\.\\COM9", &plotter);
  const NetworkPeer program = NetworkPeer::Receiver();
  OutputOptions options;
  options.serial = options.udp = true;
  options.pingsPerSecond = kMaxPingsPerSecond;
  options.sentences = kDpt;
  options.udpPort = program.Address().port;
  CopyWide(options.line, L"\\\\.\\COM9");
  {
    const VirtualClock clock(1'750'000'000'000);
    DepthOutput outputs;
    ASSERT_TRUE(outputs.Start(options));
    for (int i = 1; i <= 1'000; ++i) {
      PingFacts ping = OutputPing(MillisecondClock());
      ping.range_m = static_cast<float>(i) / 10.0f;
      plotter.newest = ',' + std::to_string(i / 10) + '.' + std::to_string(i % 10) + '*';
      outputs.Offer(ping);
      SleepMilliseconds(20);
      ASSERT_NE(program.Receive().find(plotter.newest), std::string::npos) << i;
    }
    const OutputFigures figures = outputs.Figures();
    EXPECT_EQ(figures.dropped, 0u);
    EXPECT_EQ(figures.serial.sent + figures.serial.dropped, 1'000u);
  }
  DetachSerialLines();
  EXPECT_EQ(plotter.stale, 0);
  EXPECT_NEAR(static_cast<double>(plotter.size), 20 * 480, 500);
}

}  // namespace
}  // namespace tw
