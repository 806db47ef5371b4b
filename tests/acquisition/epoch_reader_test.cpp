#include "acquisition/epoch_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/acquisition/blocks_of.h"
#include "tests/acquisition/golden_epochs.h"

namespace tw {
namespace {

using test::kFirstEpoch;
using test::kReportingEpoch;
using test::kSecondEpoch;
using Blocks = std::vector<std::string>;

Blocks EpochsOf(const EpochForm& form, std::string_view stream, size_t pieceSize = test::kWhole) {
  EpochReader reader(form);
  return test::BlocksOf(reader, stream, pieceSize);
}

struct Sample {
  const char* what;
  const EpochForm& form;
  std::string epoch;
};

const Sample kSamples[] = {
    {"first family", kFirstFamilyEpoch, kFirstEpoch},
    {"first family with frequency", kFirstFamilyEpoch, kReportingEpoch},
    {"second family", kSecondFamilyEpoch, kSecondEpoch},
};

TEST(EpochReader, FindsEpochsBetweenGarbage) {
  for (const Sample& each : kSamples) {
    const Blocks two{each.epoch, each.epoch};
    const std::string stream = "$SD#\r\n$GPDB" + each.epoch + "\xFF$GPZDA," + each.epoch + "$SDZ";
    EXPECT_EQ(EpochsOf(each.form, stream), two) << each.what;
    EXPECT_EQ(EpochsOf(each.form, stream, 1), two) << each.what << ", one byte at a time";
    EXPECT_EQ(EpochsOf(each.form, each.epoch + each.epoch, 7), two) << each.what;
  }
}

TEST(EpochReader, NeedsEveryByteOfTheEpoch) {
  for (const Sample& each : kSamples) {
    const std::string_view epoch(each.epoch);
    for (size_t length = 0; length < epoch.size(); ++length) {
      EpochReader reader(each.form);
      EXPECT_EQ(test::BlocksOf(reader, epoch.substr(0, length)), Blocks{}) << each.what << ' ' << length;
      EXPECT_EQ(test::BlocksOf(reader, epoch.substr(length)), Blocks{each.epoch}) << each.what;
    }
  }
}

TEST(EpochReader, DamageCostsItsPingAndAtMostTheNext) {
  for (const Sample& each : kSamples) {
    for (size_t at = 0; at < each.epoch.size(); ++at) {
      std::string flipped = each.epoch;
      flipped[at] = static_cast<char>(flipped[at] ^ 0x20);
      std::string shorter = each.epoch;
      shorter.erase(at, 1);
      std::string doubled = each.epoch;
      doubled.insert(at, 1, doubled[at]);
      for (const std::string& damaged : {flipped, shorter, doubled, each.epoch.substr(0, at)}) {
        const Blocks epochs =
            EpochsOf(each.form, each.epoch + damaged + each.epoch + each.epoch + each.epoch);
        ASSERT_GE(epochs.size(), 3u) << each.what << ", damaged at " << at;
        EXPECT_EQ(epochs.front(), each.epoch);
        EXPECT_EQ(epochs.back(), each.epoch);
        EXPECT_EQ(epochs[epochs.size() - 2], each.epoch);
      }
    }
  }
}

TEST(EpochReader, AnEpochThatFitsToTheByteIsReadAndOneByteMoreIsDropped) {
  for (const Sample& each : kSamples) {
    const size_t room = 4'095 - each.epoch.size();
    std::string fits = each.epoch;
    fits.insert(10, room, 'x');
    std::string tooLong = each.epoch;
    tooLong.insert(10, room + 1, 'x');
    for (const size_t piece : {size_t{1}, size_t{100}, test::kWhole}) {
      EXPECT_EQ(EpochsOf(each.form, fits + each.epoch, piece), (Blocks{fits, each.epoch})) << each.what;
      EXPECT_EQ(EpochsOf(each.form, tooLong + each.epoch, piece), Blocks{each.epoch}) << each.what;
    }
  }
}

TEST(EpochReader, AZeroFollowsTheEpoch) {
  EpochReader reader(kSecondFamilyEpoch);
  const std::string stream = kSecondEpoch;
  std::span<const uint8_t> input(reinterpret_cast<const uint8_t*>(stream.data()), stream.size());
  ASSERT_TRUE(reader.Feed(input));
  EXPECT_EQ(reader.Block().data()[reader.Block().size()], '\0');
}

}  // namespace
}  // namespace tw
