// The outputs on the real clock, with real sockets and a pseudo terminal. What must not come is shown by what
// comes behind it.
#include "outputs/depth_output.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/text_format.h"
#include "platform/clock.h"
#include "platform/serial_line.h"
#include "tests/outputs/output_ping.h"
#include "tests/platform/echo_terminal.h"
#include "tests/platform/network_peer.h"

namespace tw {
namespace {

OutputOptions UdpTo(const NetworkPeer& program) {
  OutputOptions options;
  options.udp = true;
  options.udpPort = program.Address().port;
  options.pingsPerSecond = kMaxPingsPerSecond;
  return options;
}

TEST(DepthOutput, SendsAPingButNoneThatIsStaleWithoutBottomOfTheOtherChannelOrTooMany) {
  const NetworkPeer program = NetworkPeer::Receiver();
  OutputOptions options = UdpTo(program);
  options.sentences = kDbt | kMtw;
  options.lowChannel = true;
  DepthOutput outputs;
  ASSERT_TRUE(outputs.Start(options));
  const uint32_t now_ms = MillisecondClock();
  outputs.Offer(OutputPing(now_ms - 60'000, 1.0f));
  outputs.Offer(OutputPing(now_ms - 1'000, 0.0f));
  PingFacts other = OutputPing(now_ms - 1'000, 2.0f);
  other.dual = true;
  outputs.Offer(other);
  outputs.Offer(OutputPing(now_ms - 1'000));
  outputs.Offer(OutputPing(now_ms - 999, 3.0f));
  outputs.Offer(OutputPing(now_ms - 980));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(program.Receive(), "$SDDBT,41.34,f,12.60,M,6.89,F*36\r\n");
    EXPECT_EQ(program.Receive(), "$SDMTW,18.2,C*0F\r\n");
  }
  EXPECT_EQ(outputs.Figures().dropped, 1u);
}

// A ping for which the rate makes room, whatever came before.
PingFacts PingNumber(uint32_t i) {
  PingFacts ping = OutputPing(MillisecondClock() - i % 2 * 1'000);
  ping.fixUpdates = i;
  return ping;
}

TEST(DepthOutput, ALineThatNobodyEmptiesCostsOnlyItself) {
  const EchoTerminal plotter;
  const NetworkPeer program = NetworkPeer::Receiver();
  OutputOptions options = UdpTo(program);
  options.serial = true;
  options.speed = kMaxOutputSpeed;
  WidenText(options.line, plotter.Path());
  DepthOutput outputs;
  ASSERT_TRUE(outputs.Start(options));
  uint32_t sent = 0;
  uint32_t since = 0;  // pings for which the line has taken nothing
  for (uint32_t i = 0; i < 1'000'000 && since < 5'000; ++i) {
    outputs.Offer(PingNumber(i));
    ASSERT_NE(program.Receive(), "") << i;
    const uint32_t before = std::exchange(sent, outputs.Figures().serial.sent);
    since = before == sent ? since + 1 : 0;
  }
  EXPECT_GT(sent, 0u);
  EXPECT_EQ(since, 5'000u);
  outputs.Stop();
  const Handle line = OpenSerialLine(options.line, "", 0);
  EXPECT_NE(line, Handle::invalid) << "its thread has not ended";
  CloseSerialLine(line);
}

TEST(DepthOutput, StartsAndStopsWhilePingsCome) {
  const NetworkPeer program = NetworkPeer::Receiver();
  OutputOptions options = UdpTo(program);
  options.serial = options.tcp = true;
  options.tcpPort = options.udpPort;
  DepthOutput outputs;
  std::atomic<bool> ends = false;
  std::thread worker([&] {
    for (uint32_t i = 0; !ends; ++i) outputs.Offer(PingNumber(i));
  });
  for (int i = 0; i < 20; ++i) {
    EXPECT_TRUE(outputs.Start(options));
    EXPECT_NE(program.Receive(), "");
    while (outputs.Figures().serial.error == 0) std::this_thread::yield();  // there is no such line
    outputs.Stop();
    EXPECT_EQ(outputs.Figures().udp.sent, 0u);
  }
  ends = true;
  worker.join();
}

TEST(TcpOutput, AClientThatDoesNotReadLosesPingsAndIsSentAwayAndTheOthersGetAll) {
  OutputOptions options;
  options.sentences = kAllSentences;
  options.tcpPort = NetworkPeer::Receiver().Address().port;
  const auto port = static_cast<uint16_t>(options.tcpPort);
  SinkCount count;
  TcpOutput output(options, count);
  output.Welcome(0);
  std::vector<NetworkPeer> clients;
  for (size_t i = 0; i < kMaxClients; ++i) clients.push_back(NetworkPeer::Client(port));
  output.Welcome(0);
  EXPECT_EQ(count.Figures().clients, kMaxClients);
  const NetworkPeer ninth = NetworkPeer::Client(port);
  output.Welcome(0);
  EXPECT_TRUE(ninth.HasEnded());

  std::set<std::string> sentences;
  std::string slow;      // what the first client reads
  uint32_t full_ms = 0;  // when it had taken nothing for good
  uint32_t now_ms = 0;
  for (; now_ms < 200'000 && count.Figures().clients == kMaxClients; now_ms += 20) {
    PingFacts ping = OutputPing();
    ping.range_m = static_cast<float>(1 + now_ms / 20) / 10.0f;
    const DepthMessage message = BuildMessage(ping, options, true);
    for (size_t i = 0; i < message.count; ++i) sentences.emplace(message.Sentence(i));
    const uint32_t dropped = count.Figures().dropped;
    output.Send(message, now_ms);
    for (size_t i = 1; i < clients.size(); ++i) {
      ASSERT_EQ(clients[i].Receive(message.Size()), std::string(message.text.data(), message.Size()));
    }
    if (count.Figures().dropped == dropped) {
      full_ms = now_ms + 20;
    } else if (slow.size() < 20'000) {
      slow += clients[0].Receive();  // makes room, so that it is sent to again
    }
  }
  EXPECT_EQ(count.Figures().clients, kMaxClients - 1);
  EXPECT_GE(now_ms - 20 - full_ms, kStale_ms);
  slow += clients[0].Receive(SIZE_MAX);
  EXPECT_GT(slow.size(), 20'000u);
  for (size_t end = 0; (end = slow.find("\r\n")) != std::string::npos; slow.erase(0, end + 2)) {
    ASSERT_EQ(sentences.count(slow.substr(0, end + 2)), 1u) << slow.substr(0, end);
  }
}

}  // namespace
}  // namespace tw
