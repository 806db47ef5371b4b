// What the device streams, and its account of it.
#include <gtest/gtest.h>

#include <cstdio>

#include "tests/simulator/recorded_stream.h"

namespace tw::sim {
namespace {

TEST(EchoStream, ObserverAndLogSayWhatIsInTheStream) {
  test::SentAccount account;
  Sounder end(Fast({}), &account);
  const std::string stream = end.ReadUntil(2'050'000);
  const auto& log = end.device.Pings().Entries();
  ASSERT_EQ(log.size(), 21u) << "ten a second, the first at once";
  ASSERT_EQ(account.messages.size(), log.size());
  for (size_t i = 0; i < log.size(); ++i) {
    const SentPing& ping = account.messages[i].sent;
    EXPECT_TRUE(ping.whole);
    EXPECT_EQ(log[i].hash, ping.hash);
    EXPECT_EQ(ping.number, i + 1);
    EXPECT_EQ(ping.sampleCount, 1'000u) << "30 m, 25,000 Hz, 1,500 m/s";
    char header[400];
    std::snprintf(header, sizeof header,
                  "#DeviceID VIRTUAL-0001\r\n#TimeWork %u.%u\r\n#NSamples 1000\r\n#OutputMode 2\r\n"
                  "#Sampling_Frequency,Hz 25000\r\n#Altitude %.3f\r\n#Temperature %.2f\r\n"
                  "#Pitch,deg %.2f\r\n#Roll,deg %.2f\r\n#Ping %zu\r\n#Tx_Frequency,Hz 450000\r\n"
                  "##DataStart\r\n",
                  ping.deviceTime_s, ping.deviceTime_ms, static_cast<double>(ping.altitude_m),
                  static_cast<double>(ping.temperature_c), static_cast<double>(ping.pitch_deg),
                  static_cast<double>(ping.roll_deg), i + 1);
    std::string samples;
    for (const uint16_t sample : account.messages[i].samples) samples += std::to_string(sample) + "\r\n";
    EXPECT_EQ(stream.substr(log[i].offset, log[i].size), header + samples + "\r\n\r\n");
  }
}

TEST(Pace, NeverFasterThanTheLine) {
  Sounder end({.baud = 9'600, .sampleCount = 100, .streaming = true});
  EXPECT_EQ(end.device.NextSend_us(0), 1'042) << "ten bits of 1/9600 s, rounded up";
  size_t sent = 0;
  for (int64_t at_us = 1; at_us < 5'000'000; at_us += 3'333) {
    sent += end.ReadUntil(at_us).size();
    ASSERT_LE(sent, static_cast<size_t>(at_us * 960 / 1'000'000));
    ASSERT_GE(sent + 2, static_cast<size_t>(at_us * 960 / 1'000'000)) << "nor slower while pings wait for it";
  }
}

}  // namespace
}  // namespace tw::sim
