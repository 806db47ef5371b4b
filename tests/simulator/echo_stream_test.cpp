// What the device streams: the picture in its samples, start and stop, pace.
#include <gtest/gtest.h>

#include <algorithm>
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

TEST(EchoStream, StrongestSampleStandsAtTheAltitude) {
  const struct {
    int32_t mode;
    bool low;
    int least, most;  // of the loudest sample
  } rows[] = {
      {2, false, 901, 1'023}, {2, true, 901, 1'023}, {4, false, 3'601, 4'095}, {4, true, 3'601, 4'095}};
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << "mode " << row.mode << ", low " << row.low);
    const RecordedStream sent(Fast({.outputMode = row.mode, .pingsPerSecond = 50.0, .lowFrequency = row.low}),
                              20'000'000);
    double shallowest = 1e9;
    double deepest = 0;
    int loudest = 0;
    for (size_t i = 0; i < sent.size(); ++i) {
      const auto& samples = sent.Samples(i);
      const auto strongest = std::max_element(samples.begin(), samples.end());
      ASSERT_EQ(std::count(samples.begin(), samples.end(), *strongest), 1);
      ASSERT_EQ(sent.Ping(i).bottomIndex, strongest - samples.begin());
      const double depth_m = static_cast<double>(strongest - samples.begin()) * 1'500.0 / 50'000.0;
      ASSERT_NEAR(static_cast<double>(sent.Ping(i).altitude_m), depth_m, 0.0006);
      shallowest = std::min(shallowest, depth_m);
      deepest = std::max(deepest, depth_m);
      loudest = std::max(loudest, int{*strongest});
    }
    EXPECT_GT(deepest - shallowest, 0.5) << "a sea bed that slopes";
    EXPECT_GT(shallowest, 9.0);
    EXPECT_LT(deepest, 15.0);
    EXPECT_GE(loudest, row.least);
    EXPECT_LE(loudest, row.most);
  }
}

TEST(EchoStream, SecondMultipleIsHeardAtTwiceTheDepth) {
  const RecordedStream sent(Fast({}), 3'000'000);
  for (size_t i = 0; i < sent.size(); ++i) {
    const auto loudest = [&](int32_t from, int32_t to) {
      const auto begin = sent.Samples(i).begin();
      return *std::max_element(begin + from, begin + to);
    };
    const int32_t bottom = sent.Ping(i).bottomIndex;
    EXPECT_GT(loudest(2 * bottom - 2, 2 * bottom + 6), 4 * loudest(2 * bottom - 60, 2 * bottom - 20));
  }
}

TEST(EchoStream, BottomOutOfRangeIsNoBottom) {
  const RecordedStream sent(Fast({.depth_m = 60.0}), 500'000);
  EXPECT_NE(sent.Text(0).find("#Altitude 0.000\r\n"), std::string::npos);
  EXPECT_EQ(sent.Ping(0).bottomIndex, -1);
  EXPECT_LT(*std::max_element(sent.Samples(0).begin(), sent.Samples(0).end()), 900);
}

TEST(EchoStream, SampleCountFollowsTheRangeWithinItsBounds) {
  const struct {
    int32_t range_mm, asked;
    uint32_t count;
  } rows[] = {
      {1'000, 0, 100}, {10'000, 0, 333}, {200'000, 0, 6'666}, {30'000, 100, 100}, {30'000, 12'000, 12'000}};
  for (const auto& row : rows) {
    test::SentAccount account;
    Sounder end({.baud = 3'000'000, .sampleCount = row.asked}, &account);
    (void)end.Ask("#rangeh " + std::to_string(row.range_mm));
    (void)end.Ask("#go", 10);
    EXPECT_EQ(account.messages.at(0).samples.size(), row.count);
    EXPECT_EQ(account.messages[0].sent.sampleCount, row.count);
  }
}

TEST(EchoStream, SameSeedSameBytesOtherSeedOtherBytes) {
  const auto stream = [](uint64_t seed, int64_t delivery_us) {
    SounderOptions options = Fast({.seed = seed});
    options.delivery_us = delivery_us;
    return RecordedStream(options, 300'000).bytes;
  };
  EXPECT_EQ(stream(7, 1'000), stream(7, 1'000));
  EXPECT_EQ(stream(7, 1'000), stream(7, 50'000)) << "how the bytes are fetched does not change them";
  EXPECT_NE(stream(7, 1'000), stream(8, 1'000));
}

TEST(EchoStream, StopLetsTheLineEndThenEndMarkAndPrompt) {
  test::SentAccount account;
  Sounder end({.baud = 115'200}, &account);
  std::string text = end.Ask("#go", 0);
  for (const int64_t runs_us : {150'000, 150'087, 150'174, 150'260, 150'347}) {
    text += end.ReadUntil(end.Now_us() + runs_us);
    end.Write("#default\rx ");
    const std::string tail = end.ReadFor_ms(100);
    const size_t mark = tail.find("DataEnd\r\n\r\n>");
    ASSERT_NE(mark, tail.npos);
    EXPECT_LE(mark, 6u) << "at most the rest of one sample line";
    EXPECT_EQ(tail.size(), mark + 12);
    text += tail;
    EXPECT_TRUE(text.ends_with("\r\nDataEnd\r\n\r\n>"));
    EXPECT_FALSE(end.device.Streaming());
    text += end.Ask("#go", 0);
  }
  const SentPing& cut = account.messages[0].sent;
  EXPECT_FALSE(cut.whole);
  EXPECT_EQ(cut.offset, std::string_view("#go\r\n").size());
  EXPECT_EQ(text.substr(cut.offset + cut.size, 7), "DataEnd");
  EXPECT_EQ(end.device.Commands().Total(), 6u) << "what came while it streamed is no command";
}

TEST(EchoStream, ResetZeroesThePingNumber) {
  test::SentAccount account;
  Sounder end(Fast({}), &account);
  (void)end.ReadFor_ms(450);
  (void)end.Ask(" ");
  (void)end.Ask("#go", 50);
  EXPECT_EQ(account.messages.back().sent.number, 6u) << "a stop alone does not";
  (void)end.Ask(" ");
  (void)end.Ask("#reset");
  (void)end.Ask("#go", 50);
  EXPECT_EQ(account.messages.back().sent.number, 1u);
}

TEST(EchoStream, DeviceTimeIsTheTimeItWasGiven) {
  Sounder end({.baud = 3'000'000});
  (void)end.ReadUntil(10'250'000);
  (void)end.Ask("#time 1800000000", 40);
  const std::string stream = end.Ask("#go", 300);
  EXPECT_EQ(Count(stream, "#TimeWork 1800000000.40\r\n"), 1u) << stream.substr(0, 60);
  EXPECT_EQ(Count(stream, "#TimeWork 1800000000.140\r\n"), 1u);
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

TEST(Pace, SlowLineDelaysPingsAndDropsNothing) {
  const RecordedStream sent({.baud = 115'200, .streaming = true}, 10'000'000);
  ASSERT_GT(sent.size(), 10u);
  EXPECT_LT(sent.size(), 40u) << "4,000 bytes a block do not fit ten times a second";
  for (size_t i = 1; i < sent.size(); ++i) {
    EXPECT_EQ(sent.Ping(i).number, i + 1);
    EXPECT_EQ(sent.Ping(i).offset, sent.Ping(i - 1).offset + sent.Ping(i - 1).size);
    EXPECT_GE(sent.Ping(i).time_us - sent.Ping(i - 1).time_us, 100'000);
  }
}

TEST(Pace, IntervalsFromOneToFiftyASecond) {
  const struct {
    std::string_view command;
    size_t pings;
  } rows[] = {
      {"#interval 1.00", 10}, {"#interval 0.02", 500}, {"#interval 0.01", 500}, {"#interval 0.00", 100}};
  for (const auto& row : rows) {
    Sounder end({.baud = 3'000'000, .delivery_us = 1'000, .sampleCount = 100});
    (void)end.Ask(row.command);
    EXPECT_EQ(Count(end.Ask("#go", 9'990), "#Ping "), row.pings) << row.command;
  }
}

TEST(Pace, DeliveryInBurstsKeepsTheOrderAndTheRate) {
  Sounder end({.delivery_us = 16'000, .streaming = true});
  EXPECT_EQ(end.device.NextSend_us(0), 16'000);
  EXPECT_EQ(end.ReadUntil(15'999), "");
  EXPECT_EQ(end.ReadUntil(16'000).size(), 184u) << "16 ms of 11,520 bytes a second";
}

TEST(Pace, HoldsBackWhenNobodyTakesTheBytes) {
  VirtualEchosounder device({.baud = 3'000'000, .streaming = true});
  const size_t waiting = device.Waiting(3'600'000'000);
  EXPECT_GT(waiting, size_t{8} << 20);
  EXPECT_LT(waiting, (size_t{8} << 20) + 100'000);
}

TEST(Pace, IdleDeviceHasNothingToSend) {
  VirtualEchosounder device({});
  EXPECT_EQ(device.NextSend_us(0), kNever);
  EXPECT_EQ(device.Waiting(1'000'000'000), 0u);
}

}  // namespace
}  // namespace tw::sim
