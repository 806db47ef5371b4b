// What the device streams: the picture in its samples, start and stop, pace.
#include "simulator/echo_stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "simulator/virtual_echosounder.h"
#include "tests/simulator/far_end.h"

namespace tw::sim {
namespace {

constexpr std::string_view kEndMark = "\r\n\r\n\r\n";

struct Block {
  std::string text;
  std::vector<int> samples;

  [[nodiscard]] double Number(const std::string& key) const {
    const size_t at = text.find(key + " ");
    if (at == std::string::npos) return -1e9;
    return std::strtod(text.c_str() + at + key.size() + 1, nullptr);
  }
};

// Cuts a stream into its blocks; what stands behind the last end mark is left out.
std::vector<Block> BlocksOf(const std::string& stream) {
  std::vector<Block> blocks;
  size_t begin = 0;
  while ((begin = stream.find("#DeviceID ", begin)) != std::string::npos) {
    const size_t end = stream.find(kEndMark, begin);
    if (end == std::string::npos) break;
    Block block{stream.substr(begin, end + kEndMark.size() - begin), {}};
    const char* at = block.text.c_str() + block.text.find("##DataStart\r\n") + 13;
    for (int value = 0; std::from_chars(at, at + 8, value).ec == std::errc{};
         at = std::strchr(at, '\n') + 1) {
      block.samples.push_back(value);
    }
    blocks.push_back(std::move(block));
    begin = end;
  }
  return blocks;
}

// A line so fast that it never holds a ping back.
SounderOptions Fast(double pingsPerSecond = 10.0) {
  return {.baud = 12'000'000, .delivery_us = 1'000, .pingsPerSecond = pingsPerSecond, .streaming = true};
}

struct Watcher final : PingObserver {
  std::vector<std::vector<uint16_t>> samples;
  std::vector<SentPing> ended;
  void PingMade(const SentPing& ping, std::span<const uint16_t> made) override {
    EXPECT_EQ(ping.sampleCount, made.size());
    samples.emplace_back(made.begin(), made.end());
  }
  void PingEnded(const SentPing& ping) override { ended.push_back(ping); }
};

TEST(EchoStream, ObserverAndLogSayWhatIsInTheStream) {
  Watcher watcher;
  VirtualEchosounder device(Fast(), &watcher);
  const std::string stream = FarEnd(device).ReadUntil(2'050'000);
  const auto blocks = BlocksOf(stream);
  ASSERT_EQ(blocks.size(), 21u) << "ten a second, the first at once";
  ASSERT_EQ(device.Pings().Entries().size(), blocks.size());
  ASSERT_EQ(watcher.ended.size(), blocks.size());
  for (size_t i = 0; i < blocks.size(); ++i) {
    const SentPing& ping = device.Pings().Entries()[i];
    EXPECT_EQ(blocks[i].text, stream.substr(ping.offset, ping.size));
    EXPECT_TRUE(ping.whole);
    EXPECT_EQ(ping.number, i + 1);
    EXPECT_EQ(blocks[i].Number("#Ping"), static_cast<double>(i + 1));
    EXPECT_EQ(ping.altitude_m, static_cast<float>(blocks[i].Number("#Altitude")));
    EXPECT_EQ(ping.temperature_c, static_cast<float>(blocks[i].Number("#Temperature")));
    EXPECT_EQ(ping.pitch_deg, static_cast<float>(blocks[i].Number("#Pitch,deg")));
    EXPECT_EQ(ping.roll_deg, static_cast<float>(blocks[i].Number("#Roll,deg")));
    EXPECT_EQ(std::vector<int>(watcher.samples[i].begin(), watcher.samples[i].end()), blocks[i].samples);
    EXPECT_EQ(ping.sampleCount, 1'000u) << "30 m, 25,000 Hz, 1,500 m/s";
  }
}

TEST(EchoStream, StrongestSampleStandsAtTheAltitude) {
  for (const int32_t mode : {2, 4}) {
    for (const bool low : {false, true}) {
      SounderOptions options = Fast(50.0);
      options.outputMode = mode;
      options.lowFrequency = low;
      VirtualEchosounder device(options);
      double shallowest = 1e9;
      double deepest = 0;
      int loudest = 0;
      for (const Block& block : BlocksOf(FarEnd(device).ReadUntil(20'000'000))) {
        const auto strongest = std::max_element(block.samples.begin(), block.samples.end());
        ASSERT_EQ(std::count(block.samples.begin(), block.samples.end(), *strongest), 1);
        const double depth_m = static_cast<double>(strongest - block.samples.begin()) * 1'500.0 / 50'000.0;
        ASSERT_NEAR(block.Number("#Altitude"), depth_m, 0.0006);
        shallowest = std::min(shallowest, depth_m);
        deepest = std::max(deepest, depth_m);
        loudest = std::max(loudest, *strongest);
      }
      EXPECT_GT(deepest - shallowest, 0.5) << "a sea bed that slopes";
      EXPECT_GT(shallowest, 9.0);
      EXPECT_LT(deepest, 15.0);
      EXPECT_LE(loudest, mode == 2 ? 1'023 : 4'095);
      EXPECT_GT(loudest, mode == 2 ? 900 : 3'600);
    }
  }
}

TEST(EchoStream, SecondMultipleIsHeardAtTwiceTheDepth) {
  VirtualEchosounder device(Fast());
  for (const Block& block : BlocksOf(FarEnd(device).ReadUntil(3'000'000))) {
    const auto bottom = static_cast<size_t>(std::lround(block.Number("#Altitude") / 0.03));
    const auto loudest = [&](size_t from, size_t to) {
      return *std::max_element(block.samples.begin() + static_cast<ptrdiff_t>(from),
                               block.samples.begin() + static_cast<ptrdiff_t>(to));
    };
    EXPECT_GT(loudest(2 * bottom - 2, 2 * bottom + 6), 4 * loudest(2 * bottom - 60, 2 * bottom - 20));
  }
}

TEST(EchoStream, BottomOutOfRangeIsNoBottom) {
  SounderOptions options = Fast();
  options.depth_m = 60.0;
  VirtualEchosounder device(options);
  const auto blocks = BlocksOf(FarEnd(device).ReadUntil(500'000));
  ASSERT_FALSE(blocks.empty());
  EXPECT_NE(blocks[0].text.find("#Altitude 0.000\r\n"), std::string::npos);
  EXPECT_LT(*std::max_element(blocks[0].samples.begin(), blocks[0].samples.end()), 900);
}

TEST(EchoStream, SampleCountFollowsTheRangeWithinItsBounds) {
  const struct {
    std::string_view range;
    double count;
  } rows[] = {{"#rangeh 1000", 100}, {"#rangeh 10000", 333}, {"#rangeh 200000", 6'666}};
  for (const auto& row : rows) {
    SounderOptions options = Fast();
    options.streaming = false;
    VirtualEchosounder device(options);
    FarEnd end(device);
    (void)end.Ask(row.range);
    const auto blocks = BlocksOf(end.Ask("#go"));
    ASSERT_FALSE(blocks.empty());
    EXPECT_EQ(blocks[0].Number("#NSamples"), row.count) << row.range;
    EXPECT_EQ(static_cast<double>(blocks[0].samples.size()), row.count);
  }
  for (const int32_t count : {100, 12'000}) {
    SounderOptions options = Fast();
    options.sampleCount = count;
    VirtualEchosounder device(options);
    const auto blocks = BlocksOf(FarEnd(device).ReadUntil(500'000));
    ASSERT_FALSE(blocks.empty());
    EXPECT_EQ(blocks[0].samples.size(), static_cast<size_t>(count));
  }
}

TEST(EchoStream, SameSeedSameBytesOtherSeedOtherBytes) {
  const auto stream = [](uint64_t seed, int64_t delivery_us) {
    SounderOptions options = Fast();
    options.seed = seed;
    options.delivery_us = delivery_us;
    VirtualEchosounder device(options);
    return FarEnd(device).ReadUntil(300'000);
  };
  EXPECT_EQ(stream(7, 1'000), stream(7, 1'000));
  EXPECT_EQ(stream(7, 1'000), stream(7, 50'000)) << "how the bytes are fetched does not change them";
  EXPECT_NE(stream(7, 1'000), stream(8, 1'000));
}

TEST(EchoStream, StopLetsTheLineEndThenEndMarkAndPrompt) {
  Watcher watcher;
  VirtualEchosounder device({.baud = 115'200}, &watcher);
  FarEnd end(device);
  std::string text = end.Ask("#go", 0);
  for (int64_t stopAt_us : {150'000, 150'087, 150'174, 150'260, 150'347}) {
    text += end.ReadUntil(end.Now_us() + stopAt_us);
    end.Write("#default\rx ");
    const size_t before = text.size();
    text += end.ReadFor_ms(100);
    const std::string_view tail = std::string_view(text).substr(before);
    const size_t mark = tail.find("DataEnd\r\n\r\n>");
    ASSERT_NE(mark, std::string_view::npos);
    EXPECT_LE(mark, 6u) << "at most the rest of one sample line";
    EXPECT_EQ(tail.size(), mark + 12);
    EXPECT_EQ(text.substr(before + mark - 2, 2), "\r\n");
    EXPECT_FALSE(device.Streaming());
    text += end.Ask("#go", 0);
  }
  ASSERT_EQ(watcher.ended.size(), 5u);
  const SentPing& cut = watcher.ended[0];
  EXPECT_FALSE(cut.whole);
  EXPECT_EQ(cut.offset, std::string_view("#go\r\n").size());
  EXPECT_EQ(text.substr(cut.offset + cut.size, 7), "DataEnd");
  end.Write("#rangel\r");
  EXPECT_EQ(device.Commands().Total(), 6u) << "what came while it streamed is no command";
}

TEST(EchoStream, ResetZeroesThePingNumber) {
  VirtualEchosounder device(Fast());
  FarEnd end(device);
  (void)end.ReadFor_ms(450);
  end.Write(" ");
  (void)end.ReadFor_ms(50);
  EXPECT_EQ(BlocksOf(end.Ask("#go", 50))[0].Number("#Ping"), 6.0) << "a stop alone does not";
  end.Write(" ");
  (void)end.ReadFor_ms(50);
  (void)end.Ask("#reset");
  EXPECT_EQ(BlocksOf(end.Ask("#go", 50))[0].Number("#Ping"), 1.0);
}

TEST(EchoStream, DeviceTimeIsTheTimeItWasGiven) {
  VirtualEchosounder device({.baud = 3'000'000});
  FarEnd end(device);
  (void)end.ReadUntil(10'250'000);
  (void)end.Ask("#time 1800000000", 40);
  const auto blocks = BlocksOf(end.Ask("#go", 300));
  ASSERT_GE(blocks.size(), 2u);
  EXPECT_NE(blocks[0].text.find("#TimeWork 1800000000.40\r\n"), std::string::npos)
      << blocks[0].text.substr(0, 60);
  EXPECT_NE(blocks[1].text.find("#TimeWork 1800000000.140\r\n"), std::string::npos);
}

TEST(Pace, NeverFasterThanTheLine) {
  VirtualEchosounder device({.baud = 9'600, .sampleCount = 100, .streaming = true});
  FarEnd end(device);
  EXPECT_EQ(device.NextSend_us(0), 1'042) << "ten bits of 1/9600 s, rounded up";
  size_t sent = 0;
  for (int64_t at_us = 1; at_us < 5'000'000; at_us += 3'333) {
    sent += end.ReadUntil(at_us).size();
    ASSERT_LE(sent, static_cast<size_t>(at_us * 960 / 1'000'000));
    ASSERT_GE(sent + 2, static_cast<size_t>(at_us * 960 / 1'000'000)) << "nor slower while pings wait for it";
  }
}

TEST(Pace, SlowLineDelaysPingsAndDropsNothing) {
  VirtualEchosounder device({.baud = 115'200, .streaming = true});
  const std::string stream = FarEnd(device).ReadUntil(10'000'000);
  const auto blocks = BlocksOf(stream);
  ASSERT_GT(blocks.size(), 10u);
  EXPECT_LT(blocks.size(), 40u) << "4,000 bytes a block do not fit ten times a second";
  for (size_t i = 0; i < blocks.size(); ++i) EXPECT_EQ(blocks[i].Number("#Ping"), static_cast<double>(i + 1));
  const auto& pings = device.Pings().Entries();
  for (size_t i = 1; i < pings.size(); ++i) {
    EXPECT_EQ(pings[i].offset, pings[i - 1].offset + pings[i - 1].size);
    EXPECT_GE(pings[i].time_us - pings[i - 1].time_us, 100'000);
  }
}

TEST(Pace, IntervalsFromOneToFiftyASecond) {
  const struct {
    std::string_view command;
    size_t pings;
  } rows[] = {
      {"#interval 1.00", 10}, {"#interval 0.02", 500}, {"#interval 0.01", 500}, {"#interval 0.00", 100}};
  for (const auto& row : rows) {
    VirtualEchosounder device({.baud = 3'000'000, .delivery_us = 1'000, .sampleCount = 100});
    FarEnd end(device);
    (void)end.Ask(row.command);
    const auto blocks = BlocksOf(end.Ask("#go", 9'999));
    EXPECT_NEAR(static_cast<double>(blocks.size()), static_cast<double>(row.pings), 1.0) << row.command;
  }
}

TEST(Pace, DeliveryInBurstsKeepsTheOrderAndTheRate) {
  VirtualEchosounder device({.delivery_us = 16'000, .streaming = true});
  FarEnd end(device);
  EXPECT_EQ(device.NextSend_us(0), 16'000);
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
