#include "acquisition/frame_reader.h"

#include <gtest/gtest.h>

#include <random>
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
  const char* name;
  const FrameFormat& format;
  std::string golden;
};

const Format kFormats[] = {{"TR57", kEchoFrames, kGoldenFrame},
                           {"DUAL", kDualEchoFrames, "DUAL" + kGoldenFrame.substr(4)},
                           {"TIDEWRITEC", kDeviceBlocks, kGoldenDeviceBlock}};

// A frame whose lengths were replaced, padded to as long as they say.
struct Lengths {
  const char* what;
  size_t format;
  std::vector<std::pair<size_t, uint32_t>> fields;  // offset, value
  int32_t channels;
  size_t size;  // 0: no frame
};

const Lengths kLengths[] = {
    {"no header", 0, {{4, 0}}, 1, 0},
    {"a header shorter than its first fields", 0, {{4, 7}}, 1, 0},
    {"a header without the sample count", 0, {{4, 35}}, 1, 0},
    {"the shortest header", 0, {{4, 36}}, 1, 36 + 16},
    {"the shortest frame", 0, {{4, 36}, {32, 0}}, 1, 36},
    {"the longest header", 0, {{4, 4'096}}, 1, 4'096 + 16},
    {"a longer header", 0, {{4, 4'097}}, 1, 0},
    {"a huge header", 0, {{4, 0xFFFFFFFF}}, 1, 0},
    {"the most samples", 0, {{32, 127'636}}, 1, 88 + 255'272},
    {"one sample more", 0, {{32, 127'637}}, 1, 0},
    {"the most samples of two channels", 0, {{32, 63'818}}, 2, 88 + 255'272},
    {"one more of each", 0, {{32, 63'819}}, 2, 0},
    {"a count whose bytes go beyond 32 bits", 0, {{32, 0x80000001}}, 1, 0},
    {"a count whose channels go beyond 32 bits", 0, {{32, 0x40000004}}, 2, 0},
    {"a huge count", 0, {{32, 0xFFFFFFFF}}, 2, 0},
    {"two channels", 0, {}, 2, 88 + 32},
    {"one channel, although there are two", 1, {}, 2, 88 + 16},
    {"no length", 2, {{10, 0}}, 1, 0},
    {"a block shorter than its fields", 2, {{10, 61}}, 1, 0},
    {"the shortest block", 2, {{10, 62}, {46, 0}}, 1, 62},
    {"the longest block", 2, {{10, 256'000}}, 1, 256'000},
    {"a longer block", 2, {{10, 256'001}}, 1, 0},
    {"a huge block", 2, {{10, 0xFFFFFFFF}}, 1, 0},
    {"as many samples as the block holds", 2, {{46, 4}}, 1, 66},
    {"one more", 2, {{46, 5}}, 1, 0},
    {"as many words as the block holds", 2, {{42, 0}, {46, 2}}, 1, 66},
    {"one word more", 2, {{42, 0}, {46, 3}}, 1, 0},
    {"words beyond 32 bits", 2, {{42, 0}, {46, 0x7FFFFFFF}}, 1, 0},
    {"fewer samples than the block holds", 2, {{46, 1}}, 1, 66},
    {"a negative count", 2, {{46, 0xFFFFFFFF}}, 1, 0},
    {"the most negative count", 2, {{46, 0x80000000}}, 1, 0},
    {"an unknown sample format", 2, {{42, 2}}, 1, 0},
    {"a negative sample format", 2, {{42, 0xFFFFFFFF}}, 1, 0},
};

TEST(FrameReader, LengthsAtTheirBounds) {
  for (const Lengths& each : kLengths) {
    const Format& format = kFormats[each.format];
    std::string frame = format.golden;
    for (const auto& [offset, value] : each.fields) frame = With(frame, offset, value);
    // What is refused must not cost the frame right behind it.
    std::vector<std::string> expected;
    if (each.size != 0) {
      frame.resize(each.size);
      expected.push_back(frame);
    }
    if (each.channels == 1) {
      frame += format.golden;
      expected.push_back(format.golden);
    }
    EXPECT_EQ(FramesOf(format.format, frame, kWhole, each.channels), expected) << each.what;
    EXPECT_EQ(FramesOf(format.format, frame, 1, each.channels), expected) << each.what;
  }
}

TEST(FrameReader, DamagedStreamsAreCutTheSameWayInAnyPieces) {
  std::minstd_rand random(11);
  for (const Format& each : kFormats) {
    for (int run = 0; run < 50; ++run) {
      std::string stream;
      for (int i = 0; i < 20; ++i) stream += each.golden;
      for (int damage = 0; damage < 20; ++damage) {
        const size_t at = random() % stream.size();
        if (random() % 2 == 0) stream.erase(at, 1);
        if (random() % 2 == 0) stream[at % stream.size()] = static_cast<char>(random());
      }
      const auto whole = FramesOf(each.format, stream);
      for (const size_t piece : {size_t{1}, size_t{3}, size_t{50}}) {
        ASSERT_EQ(FramesOf(each.format, stream, piece), whole) << each.name << " run " << run;
      }
    }
  }
}

}  // namespace
}  // namespace tw
