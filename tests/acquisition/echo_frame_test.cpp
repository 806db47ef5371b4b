#include "acquisition/echo_frame.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "tests/acquisition/golden_frames.h"

namespace tw {
namespace {

using test::kGoldenFrame;
using test::kGoldenPing;
using test::ValuesOf;
using test::With;

const std::vector<uint16_t> kSamples{1, 1, 1, 1, 4011, 4011, 4011, 4011};

// On the heap and no longer than they are, so that the sanitizers see a read behind the end.
std::vector<uint16_t> Parse(const std::string& frame, PingHeader& header,
                            size_t room = kFrameBufferSize / 2) {
  const std::vector<char> bytes(frame.begin(), frame.end());
  std::vector<uint16_t> samples(room, 7777);
  samples.resize(ParseEchoFrame({bytes.data(), bytes.size()}, header, samples));
  return samples;
}

TEST(EchoFrame, TheGoldenFrame) {
  PingHeader header{};
  EXPECT_EQ(Parse(kGoldenFrame, header), kSamples);
  EXPECT_EQ(ValuesOf(header), ValuesOf(kGoldenPing));
  std::vector<uint8_t> bytes(kGoldenFrame.size() + 1, 0xEE);
  EXPECT_EQ(LayOutEchoFrame(kGoldenPing, kSamples, bytes.data()), kGoldenFrame.size());
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), kGoldenFrame + "\xEE");
}

TEST(EchoFrame, SamplesStandBehindTheHeaderHoweverLongItIs) {
  for (const uint32_t length : {91u, 4'096u}) {
    const std::string longer(length - 88, '\xEE');
    PingHeader header{};
    EXPECT_EQ(Parse(With(kGoldenFrame, 4, length).insert(88, longer), header), kSamples) << length;
    EXPECT_EQ(ValuesOf(header), ValuesOf(kGoldenPing)) << length;
  }
}

TEST(EchoFrame, WhatAShortHeaderDoesNotHoldStandsAsItWas) {
  PingHeader header{};
  header.pitch_deg = kNoAttitude;
  EXPECT_EQ(Parse(With(kGoldenFrame, 4, 36u).erase(36, 52), header), kSamples);
  PingHeader expected{};
  expected.deviceSeconds = 1'700'000'000;
  expected.deviceMilliseconds = 250;
  expected.timeOfWork_s = 1'700'000'001;
  expected.ping = 17;
  expected.samplingFrequency_hz = 100'000;
  expected.sampleCount = 8;
  expected.pitch_deg = kNoAttitude;
  EXPECT_EQ(ValuesOf(header), ValuesOf(expected));
}

TEST(EchoFrame, WhatIsNoFiniteNumberStandsAsItWas) {
  for (const float odd : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                          -std::numeric_limits<float>::infinity()}) {
    std::string frame = kGoldenFrame;
    for (const size_t offset : {36, 48, 52, 56, 60, 64, 68, 72, 80}) frame = With(frame, offset, odd);
    PingHeader header = kGoldenPing;
    header.ping = 1;
    EXPECT_EQ(Parse(frame, header), kSamples) << odd;
    EXPECT_EQ(ValuesOf(header), ValuesOf(kGoldenPing)) << odd;
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
