// Every output mode of every family from the running device: the same sea in each, in the messages that its
// channels need.
#include <gtest/gtest.h>

#include <map>

#include "base/bytes.h"
#include "tests/simulator/recorded_stream.h"

namespace tw::sim {
namespace {

constexpr DeviceFamily kFirst = DeviceFamily::first;

// Samples of 30 m in each mode that the family can stream.
const std::map<int, uint32_t> kOfTheFirst = {{1, 0}, {2, 1'000}, {3, 0}, {4, 1'000},   {6, 0},
                                             {7, 0}, {8, 0},     {9, 0}, {100, 1'000}, {101, 1'000}};
const std::map<int, uint32_t> kOfTheOthers = {{1, 0},   {2, 1'000}, {3, 0},       {4, 200},
                                              {5, 500}, {6, 1'000}, {7, 0},       {8, 0},
                                              {9, 0},   {10, 0},    {100, 1'000}, {101, 1'000}};
const struct {
  DeviceFamily family;
  const char* name;
  const std::map<int, uint32_t>& samples;
} kFamilies[] = {{kFirst, "first family", kOfTheFirst},
                 {DeviceFamily::second, "second family", kOfTheOthers},
                 {DeviceFamily::third, "third family", kOfTheOthers}};

TEST(OutputModes, AreThoseThatTheFamilyCanBeToldToStream) {
  for (const auto& family : kFamilies) {
    Sounder end({.family = family.family, .dual = true});
    for (int mode = 0; mode <= 110; ++mode) {
      const std::string line = "#output " + std::to_string(mode);
      EXPECT_EQ(end.Ask(line, 100), family.samples.contains(mode) ? Accepted(line) : Refused(line))
          << family.name;
    }
  }
}

TEST(OutputModes, EachTellsTheSameSea) {
  std::map<uint32_t, float> depths;  // by ping
  for (const auto& family : kFamilies) {
    for (const auto& [mode, samples] : family.samples) {
      SCOPED_TRACE(testing::Message() << family.name << ", mode " << mode);
      const RecordedStream sent(Fast({.family = family.family, .outputMode = mode}), 3'050'000);
      ASSERT_EQ(sent.size(), 31u);
      uint64_t offset = 0;
      for (size_t i = 0; i < sent.size(); ++i) {
        const SentPing& ping = sent.Ping(i);
        ASSERT_EQ(ping.offset, offset);
        offset += ping.size;
        EXPECT_EQ(ping.number, i + 1);
        EXPECT_EQ(ping.outputMode, mode);
        EXPECT_EQ(ping.sampleCount, samples);
        EXPECT_EQ(sent.Samples(i).size(), samples);
        EXPECT_TRUE(ping.intact);
        EXPECT_EQ(depths.emplace(ping.number, ping.altitude_m).first->second, ping.altitude_m);
      }
      EXPECT_EQ(offset, sent.bytes.size());
    }
  }
}

TEST(OutputModes, BothFrequenciesOfTheFirstFamily) {
  for (const auto& [mode, samples] : kOfTheFirst) {
    SCOPED_TRACE(mode);
    const RecordedStream sent(Fast({.outputMode = mode, .dual = true}), 950'000);
    const bool joint = mode >= 7 && mode <= 9;
    ASSERT_EQ(sent.size(), joint ? 10u : 20u);
    for (size_t i = 0; i < sent.size(); ++i) {
      const SentPing& ping = sent.Ping(i);
      const bool low = !joint && i % 2 == 1;
      EXPECT_EQ(ping.txFrequency_hz, low ? 200'000 : 450'000);
      EXPECT_EQ(ping.number, joint ? i + 1 : i / 2 + 1);
      EXPECT_EQ(ping.sampleCount, samples);
      EXPECT_EQ(ping.altitudeLow_m != 0, joint);
      if (low || joint) {
        const float high_m = sent.Ping(joint ? i : i - 1).altitude_m;
        EXPECT_GT((joint ? ping.altitudeLow_m : ping.altitude_m) - high_m, 0.05f)
            << "the low frequency looks into the sediment";
      }
    }
  }
}

TEST(OutputModes, BinarySamplesAreThoseOfTheText) {
  const RecordedStream text(Fast({.outputMode = 4}), 550'000);
  const RecordedStream words(Fast({.outputMode = 100}), 550'000);
  const RecordedStream companded(Fast({.outputMode = 101}), 550'000);
  for (size_t i = 0; i < text.size(); ++i) {
    EXPECT_EQ(words.Samples(i), text.Samples(i));
    for (size_t j = 0; j < text.Samples(i).size(); ++j) {
      const int meant = text.Samples(i)[j];
      ASSERT_LE(companded.Samples(i)[j], meant);
      ASSERT_GE(companded.Samples(i)[j], meant - meant / 32) << "a code covers a 32nd";
    }
  }
}

TEST(OutputModes, FramesInsteadOfBlocks) {
  const struct {
    BinaryForm form;
    bool dual;
    size_t frames;
    const char* magic;
    uint32_t channels;  // in one frame
  } rows[] = {{BinaryForm::frame, false, 10, "TR57", 1},
              {BinaryForm::frame, true, 10, "TR57", 2},
              {BinaryForm::dualFrame, false, 10, "DUAL", 1},
              {BinaryForm::dualFrame, true, 20, "DUAL", 1}};
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.magic << ", dual " << row.dual);
    const RecordedStream sent(Fast({.outputMode = 100, .dual = row.dual, .binaryForm = row.form}), 950'000);
    ASSERT_EQ(sent.size(), row.frames);
    for (size_t i = 0; i < sent.size(); ++i) {
      const std::string frame = sent.Text(i);
      const auto* bytes = reinterpret_cast<const uint8_t*>(frame.data());
      ASSERT_EQ(frame.size(), 88 + 2'000 * row.channels);
      EXPECT_EQ(frame.substr(0, 4), row.magic);
      EXPECT_EQ(LoadLe<uint32_t>(bytes + 32), 1'000u) << "of one channel";
      EXPECT_EQ(LoadLeFloat(bytes + 48), sent.Ping(i).altitude_m);
      EXPECT_EQ(sent.Ping(i).sampleCount, 1'000 * row.channels);
    }
  }
}

}  // namespace
}  // namespace tw::sim
