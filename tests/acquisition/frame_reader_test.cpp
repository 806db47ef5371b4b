#include "acquisition/frame_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "acquisition/device_block.h"
#include "acquisition/echo_frame.h"
#include "tests/acquisition/blocks_of.h"
#include "tests/acquisition/golden_frames.h"

namespace tw {
namespace {

using test::kGoldenDeviceBlock;
using test::kGoldenFrame;
using test::kWhole;
using test::With;

std::vector<std::string> FramesOf(const FrameFormat& format, std::string_view stream,
                                  size_t pieceSize = kWhole, int32_t channels = 1) {
  FrameReader reader(format, channels);
  return test::BlocksOf(reader, stream, pieceSize);
}

struct Format {
  const FrameFormat& format;
  std::string golden;
};
const Format kFrame = {kEchoFrames, kGoldenFrame};
const Format kDual = {kDualEchoFrames, "DUAL" + kGoldenFrame.substr(4)};
const Format kBlock = {kDeviceBlocks, kGoldenDeviceBlock};

// Frames whose lengths were replaced, padded to as long as they say.
TEST(FrameReader, LengthsAtTheirBounds) {
  const struct {
    const char* what;
    const Format& format;
    std::vector<std::pair<size_t, uint32_t>> fields;  // offset, value
    int32_t channels;
    size_t size;  // 0: no frame
  } cases[] = {
      {"no header", kFrame, {{4, 0}}, 1, 0},
      {"a header shorter than its first fields", kFrame, {{4, 7}}, 1, 0},
      {"a header without the sample count", kFrame, {{4, 35}}, 1, 0},
      {"the shortest header", kFrame, {{4, 36}}, 1, 36 + 16},
      {"the shortest frame", kFrame, {{4, 36}, {32, 0}}, 1, 36},
      {"the longest header", kFrame, {{4, 4'096}}, 1, 4'096 + 16},
      {"a longer header", kFrame, {{4, 4'097}}, 1, 0},
      {"a huge header", kFrame, {{4, 0xFFFFFFFF}}, 1, 0},
      {"the most samples", kFrame, {{32, 127'636}}, 1, 88 + 255'272},
      {"one sample more", kFrame, {{32, 127'637}}, 1, 0},
      {"the most samples of two channels", kFrame, {{32, 63'818}}, 2, 88 + 255'272},
      {"one more of each", kFrame, {{32, 63'819}}, 2, 0},
      {"a count whose bytes go beyond 32 bits", kFrame, {{32, 0x80000001}}, 1, 0},
      {"a count whose channels go beyond 32 bits", kFrame, {{32, 0x40000004}}, 2, 0},
      {"a huge count", kFrame, {{32, 0xFFFFFFFF}}, 2, 0},
      {"two channels", kFrame, {}, 2, 88 + 32},
      {"one channel, although there are two", kDual, {}, 2, 88 + 16},
      {"no length", kBlock, {{10, 0}}, 1, 0},
      {"a block shorter than its fields", kBlock, {{10, 61}}, 1, 0},
      {"the shortest block", kBlock, {{10, 62}, {46, 0}}, 1, 62},
      {"the longest block", kBlock, {{10, 256'000}}, 1, 256'000},
      {"a longer block", kBlock, {{10, 256'001}}, 1, 0},
      {"a huge block", kBlock, {{10, 0xFFFFFFFF}}, 1, 0},
      {"as many samples as the block holds", kBlock, {{46, 4}}, 1, 66},
      {"one more", kBlock, {{46, 5}}, 1, 0},
      {"as many words as the block holds", kBlock, {{42, 0}, {46, 2}}, 1, 66},
      {"one word more", kBlock, {{42, 0}, {46, 3}}, 1, 0},
      {"words beyond 32 bits", kBlock, {{42, 0}, {46, 0x7FFFFFFF}}, 1, 0},
      {"fewer samples than the block holds", kBlock, {{46, 1}}, 1, 66},
      {"a negative count", kBlock, {{46, 0xFFFFFFFF}}, 1, 0},
      {"the most negative count", kBlock, {{46, 0x80000000}}, 1, 0},
      {"an unknown sample format", kBlock, {{42, 2}}, 1, 0},
      {"a negative sample format", kBlock, {{42, 0xFFFFFFFF}}, 1, 0},
  };
  for (const auto& each : cases) {
    std::string frame = each.format.golden;
    for (const auto& [offset, value] : each.fields) frame = With(frame, offset, value);
    // What is refused must not cost the frame right behind it.
    std::vector<std::string> expected;
    if (each.size != 0) {
      frame.resize(each.size);
      expected.push_back(frame);
    }
    if (each.channels == 1) {
      frame += each.format.golden;
      expected.push_back(each.format.golden);
    }
    EXPECT_EQ(FramesOf(each.format.format, frame, kWhole, each.channels), expected) << each.what;
    EXPECT_EQ(FramesOf(each.format.format, frame, 1, each.channels), expected) << each.what;
  }
}

}  // namespace
}  // namespace tw
