#include "acquisition/block_reader.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/acquisition/blocks_of.h"

namespace tw {
namespace {

struct Found {
  std::vector<std::string> blocks;
  uint64_t oversized = 0;
};

// The rule as it is told, one byte after the other: a mismatch counts the byte as a first match or not at
// all.
Found ByTheRule(std::string_view stream, size_t bufferSize) {
  Found found;
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
      ++found.oversized;
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
      found.blocks.push_back(gathered);
      collecting = false;
    }
  }
  return found;
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
    const Found expected = ByTheRule(stream, kSmall);
    for (const size_t piece : {size_t{1}, size_t{7}, size_t{64}, test::kWhole}) {
      BlockReader reader(kEchoTextMarks, kSmall);
      ASSERT_EQ(test::BlocksOf(reader, stream, piece), expected.blocks) << run << ", pieces of " << piece;
      ASSERT_EQ(reader.Oversized(), expected.oversized) << run << ", pieces of " << piece;
    }
  }
}

}  // namespace
}  // namespace tw
