#include "acquisition/block_reader.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/acquisition/blocks_of.h"
#include "tests/acquisition/golden_block.h"

namespace tw {
namespace {

using test::BlocksOf;
using test::kGoldenBlock;
using test::kWhole;

std::vector<std::string> BlocksOf(std::string_view stream, size_t pieceSize = kWhole,
                                  size_t bufferSize = kBlockBufferSize) {
  BlockReader reader(kEchoTextMarks, bufferSize);
  return BlocksOf(reader, stream, pieceSize);
}

// The rule as it is told, one byte after the other: a mismatch counts the byte as a first match or not at
// all.
std::vector<std::string> BlocksByTheRule(std::string_view stream, size_t bufferSize) {
  std::vector<std::string> blocks;
  std::string gathered;
  size_t matched = 0;
  bool collecting = false;
  const auto advance = [&](std::string_view mark, char byte) {
    matched = byte == mark[matched] ? matched + 1 : byte == mark[0] ? 1 : 0;
    const bool whole = matched == mark.size();
    if (whole) matched = 0;
    return whole;
  };
  for (const char byte : stream) {
    if (collecting && gathered.size() + 1 == bufferSize) {
      collecting = false;
      matched = 0;
    }
    if (!collecting) {
      collecting = advance("#DeviceID ", byte);
      if (collecting) gathered = "#DeviceID ";
      continue;
    }
    gathered += byte;
    if (advance("\r\n\r\n\r\n", byte)) {
      blocks.push_back(gathered);
      collecting = false;
    }
  }
  return blocks;
}

TEST(BlockReader, FindsBlocksBetweenGarbage) {
  const std::string block = kGoldenBlock;
  const std::string half = block.substr(0, block.size() - 1);
  const struct {
    const char* what;
    std::string stream;
    std::vector<std::string> blocks;
  } cases[] = {
      {"nothing", "", {}},
      {"one block", block, {block}},
      {"two blocks without anything between", block + block, {block, block}},
      {"garbage before, between and behind",
       "\r\n> INFO#Dev" + block + "\xFF#" + block + "#DeviceI",
       {block, block}},
      {"a start mark that begins anew at its second '#'", "#Device#" + block, {block}},
      {"a start mark that breaks off at its last byte", "#DeviceID" + block, {block}},
      {"an end mark that begins anew at a CR",
       "#DeviceID \r\n\r\r\n\r\n\r\n",
       {"#DeviceID \r\n\r\r\n\r\n\r\n"}},
      {"only two line ends", "#DeviceID 1\r\n\r\n.", {}},
      {"the end mark right behind the start mark", "#DeviceID \r\n\r\n\r\n", {"#DeviceID \r\n\r\n\r\n"}},
      {"no end mark: the next start is part of the block", half + "\r" + block, {half + "\r" + block}},
      {"zero bytes inside",
       std::string("#DeviceID \0\0\r\n\r\n\r\n", 18),
       {std::string("#DeviceID \0\0\r\n\r\n\r\n", 18)}},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(BlocksOf(each.stream), each.blocks) << each.what;
    EXPECT_EQ(BlocksOf(each.stream, 1), each.blocks) << each.what << ", one byte at a time";
  }
}

TEST(BlockReader, NeedsEveryByteOfTheBlock) {
  const std::string_view block = kGoldenBlock;
  for (size_t length = 0; length < block.size(); ++length) {
    EXPECT_TRUE(BlocksOf(block.substr(0, length)).empty()) << length;
    // What is cut in two arrives whole, wherever the cut is.
    BlockReader reader(kEchoTextMarks);
    EXPECT_TRUE(BlocksOf(reader, block.substr(0, length), kWhole).empty());
    EXPECT_EQ(BlocksOf(reader, block.substr(length), kWhole), std::vector<std::string>{kGoldenBlock});
  }
}

TEST(BlockReader, AZeroFollowsTheBlock) {
  BlockReader reader(kEchoTextMarks);
  const std::string_view stream = "#DeviceID 1\r\n\r\n\r\nrest";
  std::span<const uint8_t> input(reinterpret_cast<const uint8_t*>(stream.data()), stream.size());
  ASSERT_TRUE(reader.Feed(input));
  EXPECT_EQ(reader.Block().data()[reader.Block().size()], '\0');
  EXPECT_EQ(input.size(), 4u);
}

TEST(BlockReader, ABlockThatFitsToTheByteIsReadAndOneByteMoreIsDropped) {
  const std::string fits = "#DeviceID " + std::string(kBlockBufferSize - 1 - 16, '5') + "\r\n\r\n\r\n";
  const std::string tooLong = "#DeviceID 5" + fits.substr(10);
  ASSERT_EQ(fits.size(), kBlockBufferSize - 1);
  for (const size_t piece : {size_t{1}, size_t{4096}, kWhole}) {
    BlockReader reader(kEchoTextMarks);
    EXPECT_EQ(BlocksOf(reader, fits, piece), std::vector<std::string>{fits});
    EXPECT_EQ(reader.Oversized(), 0u);
    EXPECT_EQ(BlocksOf(reader, tooLong + kGoldenBlock, piece), std::vector<std::string>{kGoldenBlock});
    EXPECT_EQ(reader.Oversized(), 1u);
  }
}

TEST(BlockReader, DoesWhatTheRuleSaysOnAnyStream) {
  // Pieces of marks in random order give nearly right starts and ends of every kind; the small buffer makes
  // blocks outgrow it now and then.
  const std::string_view parts[] = {"#",       "#DeviceID ",
                                    "#Device", "ID ",
                                    "\r",      "\n",
                                    "\r\n",    "\r\n\r\n",
                                    "\r\r\n",  "\n\r",
                                    "17",      "#Ping 4",
                                    "x",       "0123456789012345678901234567890123456789"};
  constexpr size_t kSmall = 120;
  std::minstd_rand random(42);
  for (int run = 0; run < 300; ++run) {
    std::string stream;
    while (stream.size() < 2'000) stream += parts[random() % std::size(parts)];
    const std::vector<std::string> expected = BlocksByTheRule(stream, kSmall);
    for (const size_t piece : {size_t{1}, size_t{7}, size_t{64}, size_t{2'100}}) {
      ASSERT_EQ(BlocksOf(stream, piece, kSmall), expected) << "run " << run << ", pieces of " << piece;
    }
  }
}

}  // namespace
}  // namespace tw
