#include "acquisition/echo_frame.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "tests/acquisition/golden_frames.h"

namespace tw {
namespace {

using test::kGoldenFrame;
using test::With;

const std::vector<uint16_t> kSamples{1, 1, 1, 1, 4011, 4011, 4011, 4011};

void ExpectGolden(const PingHeader& header) {
  EXPECT_EQ(header.deviceSeconds, 1'700'000'000u);
  EXPECT_EQ(header.deviceMilliseconds, 250u);
  EXPECT_EQ(header.timeOfWork_s, 1'700'000'001u);
  EXPECT_EQ(header.ping, 17u);
  EXPECT_EQ(header.samplingFrequency_hz, 100'000u);
  EXPECT_EQ(header.sampleCount, 8u);
  EXPECT_EQ(header.range_m, 12.5f);
  EXPECT_EQ(header.txFrequency_hz, 200'000);
  EXPECT_EQ(header.altitude_m, 4.25f);
  EXPECT_EQ(header.temperature_c, 11.5f);
  EXPECT_EQ(header.pitch_deg, 1.25f);
  EXPECT_EQ(header.roll_deg, -0.5f);
  EXPECT_EQ(header.gpsLatitude_rad, 0.75f);
  EXPECT_EQ(header.gpsLongitude_rad, -0.125f);
  EXPECT_EQ(header.gpsAltitude_m, 37.25f);
  EXPECT_EQ(header.gpsTime_s, 1'699'999'999u);
  EXPECT_EQ(header.gpsPdop, 2.5f);
  EXPECT_EQ(header.gpsValid, 1);
}

// On the heap and no longer than they are, so that the sanitizers see a read behind the end.
std::vector<uint16_t> Parse(const std::string& frame, PingHeader& header, size_t room = kMaxFrameSamples) {
  const std::vector<char> bytes(frame.begin(), frame.end());
  std::vector<uint16_t> samples(room, 7777);
  samples.resize(ParseEchoFrame({bytes.data(), bytes.size()}, header, samples));
  return samples;
}

TEST(EchoFrame, TheGoldenFrame) {
  PingHeader header{};
  EXPECT_EQ(Parse(kGoldenFrame, header), kSamples);
  ExpectGolden(header);
  std::vector<uint8_t> bytes(kGoldenFrame.size() + 1, 0xEE);
  EXPECT_EQ(LayOutEchoFrame(header, kSamples, bytes.data()), kGoldenFrame.size());
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), kGoldenFrame + "\xEE");
}

TEST(EchoFrame, SamplesStandBehindTheHeaderHoweverLongItIs) {
  for (const uint32_t length : {88u, 91u, 4'096u}) {
    std::string frame = With(kGoldenFrame.substr(0, 88), 4, length) + std::string(length - 88, '\xEE');
    frame += kGoldenFrame.substr(88);
    PingHeader header{};
    EXPECT_EQ(Parse(frame, header), kSamples) << length;
    ExpectGolden(header);
  }
}

TEST(EchoFrame, WhatAShortHeaderDoesNotHoldStandsAsItWas) {
  PingHeader header{};
  header.range_m = 5.0f;
  header.pitch_deg = kNoAttitude;
  EXPECT_EQ(Parse(With(kGoldenFrame.substr(0, 36), 4, 36u) + kGoldenFrame.substr(88), header), kSamples);
  EXPECT_EQ(header.ping, 17u);
  EXPECT_EQ(header.sampleCount, 8u);
  EXPECT_EQ(header.range_m, 5.0f);
  EXPECT_EQ(header.pitch_deg, kNoAttitude);
}

TEST(EchoFrame, WhatIsNoFiniteNumberStandsAsItWas) {
  for (const float odd : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                          -std::numeric_limits<float>::infinity()}) {
    std::string frame = kGoldenFrame;
    for (const size_t offset : {36, 48, 52, 56, 60, 64, 68, 72, 80}) frame = With(frame, offset, odd);
    PingHeader header{};
    static_cast<void>(Parse(kGoldenFrame, header));
    header.ping = 1;
    EXPECT_EQ(Parse(frame, header), kSamples);
    ExpectGolden(header);
  }
}

TEST(EchoFrame, CutAtEveryLength) {
  for (size_t length = 0; length < kGoldenFrame.size(); ++length) {
    PingHeader header{};
    const auto samples = Parse(kGoldenFrame.substr(0, length), header);
    EXPECT_EQ(samples.size(), length < 88 ? 0 : (length - 88) / 2) << length;
    EXPECT_EQ(header.ping, length < 88 ? 0u : 17u) << length;
  }
}

TEST(EchoFrame, SamplesBeyondTheRoomAreLeft) {
  PingHeader header{};
  EXPECT_EQ(Parse(kGoldenFrame, header, 5), (std::vector<uint16_t>{1, 1, 1, 1, 4011}));
  EXPECT_EQ(header.sampleCount, 8u);
}

}  // namespace
}  // namespace tw
