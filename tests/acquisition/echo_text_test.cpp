#include "acquisition/echo_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/acquisition/golden_block.h"

namespace tw {
namespace {

using test::kGoldenBlock;
using test::kGoldenSecondBlock;

constexpr int32_t kSampling_hz = 10'000;  // configured
constexpr int32_t kTx_hz = 450'000;

// What stood there before the block: each value differs from the golden block's.
constexpr EchoTextHeader kPrevious = {.deviceSeconds = 1,
                                      .deviceMilliseconds = 2,
                                      .sampleCount = 3,
                                      .resolution_mm = 12.5f,
                                      .outputMode = 9,
                                      .samplingFrequency_hz = 5,
                                      .altitude_m = 6.5f,
                                      .temperature_c = 7.5f,
                                      .pitch_deg = 8.5f,
                                      .roll_deg = 9.5f,
                                      .ping = 10,
                                      .txFrequency_hz = 11};
constexpr EchoTextHeader kGolden = {.deviceSeconds = 12,
                                    .deviceMilliseconds = 5,
                                    .sampleCount = 4,
                                    .resolution_mm = 12.5f,
                                    .outputMode = 4,
                                    .samplingFrequency_hz = 25'000,
                                    .altitude_m = 4.25f,
                                    .temperature_c = 11.4f,
                                    .pitch_deg = 1.2f,
                                    .roll_deg = -0.35f,
                                    .ping = 17,
                                    .txFrequency_hz = 200'000};

// The other families' block has a resolution, and its sampling frequency is the configured one.
constexpr EchoTextHeader kSecondGolden = [] {
  EchoTextHeader header = kGolden;
  header.resolution_mm = 7.5f;
  header.samplingFrequency_hz = kSampling_hz;
  return header;
}();

EchoTextHeader Parse(std::string_view block, bool* hasTx = nullptr,
                     EchoTextKeys keys = EchoTextKeys::firstFamily) {
  EchoTextHeader header = kPrevious;
  const ParsedEchoText parsed = ParseEchoTextHeader(keys, block, kSampling_hz, kTx_hz, header);
  if (hasTx != nullptr) *hasTx = parsed.hasTxFrequency;
  return header;
}

void ExpectSame(const EchoTextHeader& header, const EchoTextHeader& expected, const std::string& what) {
  EXPECT_EQ(header.deviceSeconds, expected.deviceSeconds) << what;
  EXPECT_EQ(header.deviceMilliseconds, expected.deviceMilliseconds) << what;
  EXPECT_EQ(header.sampleCount, expected.sampleCount) << what;
  EXPECT_EQ(header.resolution_mm, expected.resolution_mm) << what;
  EXPECT_EQ(header.outputMode, expected.outputMode) << what;
  EXPECT_EQ(header.samplingFrequency_hz, expected.samplingFrequency_hz) << what;
  EXPECT_EQ(header.altitude_m, expected.altitude_m) << what;
  EXPECT_EQ(header.temperature_c, expected.temperature_c) << what;
  EXPECT_EQ(header.pitch_deg, expected.pitch_deg) << what;
  EXPECT_EQ(header.roll_deg, expected.roll_deg) << what;
  EXPECT_EQ(header.ping, expected.ping) << what;
  EXPECT_EQ(header.txFrequency_hz, expected.txFrequency_hz) << what;
}

std::vector<std::string> LinesOf(std::string_view block) {
  std::vector<std::string> lines;
  while (!block.empty()) {
    const size_t end = block.find("\r\n") + 2;
    lines.emplace_back(block.substr(0, end));
    block.remove_prefix(end);
  }
  return lines;
}

// What a block without one of its lines leaves standing, line by line from the second on.
using Previous = void (*)(EchoTextHeader&);

struct Form {
  EchoTextKeys keys;
  std::string_view block;
  EchoTextHeader golden;
  std::vector<Previous> without;
};

void KeepTime(EchoTextHeader& h) {
  h.deviceSeconds = kPrevious.deviceSeconds;
  h.deviceMilliseconds = kPrevious.deviceMilliseconds;
}
template <auto member>
void Keep(EchoTextHeader& h) {
  h.*member = kPrevious.*member;
}
void ConfiguredSampling(EchoTextHeader& h) {
  h.samplingFrequency_hz = kSampling_hz;
}
void ConfiguredTx(EchoTextHeader& h) {
  h.txFrequency_hz = kTx_hz;
}

const Form kForms[] = {
    {EchoTextKeys::firstFamily,
     kGoldenBlock,
     kGolden,
     {KeepTime, Keep<&EchoTextHeader::sampleCount>, Keep<&EchoTextHeader::outputMode>, ConfiguredSampling,
      Keep<&EchoTextHeader::altitude_m>, Keep<&EchoTextHeader::temperature_c>,
      Keep<&EchoTextHeader::pitch_deg>, Keep<&EchoTextHeader::roll_deg>, Keep<&EchoTextHeader::ping>,
      ConfiguredTx}},
    {EchoTextKeys::otherFamilies,
     kGoldenSecondBlock,
     kSecondGolden,
     {KeepTime, Keep<&EchoTextHeader::sampleCount>, Keep<&EchoTextHeader::resolution_mm>,
      Keep<&EchoTextHeader::outputMode>, Keep<&EchoTextHeader::altitude_m>,
      Keep<&EchoTextHeader::temperature_c>, Keep<&EchoTextHeader::pitch_deg>, Keep<&EchoTextHeader::roll_deg>,
      Keep<&EchoTextHeader::ping>, ConfiguredTx}},
};

TEST(EchoTextHeader, TheGoldenBlocks) {
  for (const Form& form : kForms) {
    bool hasTx = false;
    ExpectSame(Parse(form.block, &hasTx, form.keys), form.golden, std::string(form.block));
    EXPECT_TRUE(hasTx);
  }
}

TEST(EchoTextHeader, KeysStandInAnyOrder) {
  std::minstd_rand random(1);
  for (const Form& form : kForms) {
    std::vector<std::string> lines = LinesOf(form.block);
    for (int run = 0; run < 20; ++run) {
      std::shuffle(lines.begin() + 1, lines.begin() + 11, random);
      std::string block;
      for (const std::string& line : lines) block += line;
      ExpectSame(Parse(block, nullptr, form.keys), form.golden, block);
    }
  }
}

TEST(EchoTextHeader, AMissingKeyKeepsThePreviousValueOrTakesTheConfiguredOne) {
  for (const Form& form : kForms) {
    const std::vector<std::string> lines = LinesOf(form.block);
    for (size_t left = 0; left < form.without.size(); ++left) {
      std::string block;
      for (size_t i = 0; i < lines.size(); ++i) {
        if (i != left + 1) block += lines[i];
      }
      EchoTextHeader expected = form.golden;
      form.without[left](expected);
      bool hasTx = false;
      ExpectSame(Parse(block, &hasTx, form.keys), expected, "without " + lines[left + 1]);
      EXPECT_EQ(hasTx, form.without[left] != ConfiguredTx);
    }
  }
}

TEST(EchoTextHeader, KeysOfTheOtherFamilyAreNotTaken) {
  EchoTextHeader expected = kSecondGolden;  // of a first-family block, read with the other families' keys
  expected.resolution_mm = kPrevious.resolution_mm;
  expected.altitude_m = kPrevious.altitude_m;
  expected.temperature_c = kPrevious.temperature_c;
  ExpectSame(Parse(kGoldenBlock, nullptr, EchoTextKeys::otherFamilies), expected, "first family's block");
  ExpectSame(Parse(kGoldenSecondBlock), expected, "second family's block");
}

TEST(EchoTextHeader, AResolutionMayEndInAnF) {
  for (const char* line : {"#Resolution,mm 3.75f\r\n", "#Resolution,mm 3.75\r\n"}) {
    EXPECT_EQ(Parse(line, nullptr, EchoTextKeys::otherFamilies).resolution_mm, 3.75f) << line;
  }
}

TEST(EchoTextHeader, ValuesAtTheirBounds) {
  const struct {
    const char* what;
    const char* line;
    EchoTextHeader (*expected)(EchoTextHeader);
  } cases[] = {
      {"milliseconds are no fraction", "#TimeWork 3.250\r\n",
       [](EchoTextHeader h) { return h.deviceSeconds = 3, h.deviceMilliseconds = 250, h; }},
      {"seconds without milliseconds", "#TimeWork 3\r\n",
       [](EchoTextHeader h) { return h.deviceSeconds = 3, h; }},
      {"no samples", "#NSamples 0\r\n", [](EchoTextHeader h) { return h.sampleCount = 0, h; }},
      {"the most samples", "#NSamples 50000\r\n", [](EchoTextHeader h) { return h.sampleCount = 50'000, h; }},
      {"one sample too many", "#NSamples 50001\r\n", [](EchoTextHeader h) { return h; }},
      {"a negative count", "#NSamples -1\r\n", [](EchoTextHeader h) { return h; }},
      {"a count beyond 32 bits", "#NSamples 4294967299\r\n", [](EchoTextHeader h) { return h; }},
      {"the largest ping", "#Ping 4294967295\r\n",
       [](EchoTextHeader h) { return h.ping = 4'294'967'295u, h; }},
      {"one ping more", "#Ping 4294967296\r\n", [](EchoTextHeader h) { return h; }},
      {"not a number", "#Altitude nan\r\n", [](EchoTextHeader h) { return h; }},
      {"infinity", "#Altitude inf\r\n", [](EchoTextHeader h) { return h; }},
      {"beyond single precision", "#Altitude 1e39\r\n", [](EchoTextHeader h) { return h; }},
      {"an exponent", "#Altitude -2.5e1\r\n", [](EchoTextHeader h) { return h.altitude_m = -25.0f, h; }},
      {"more blanks and a plus sign", "#Roll,deg   +4\r\n",
       [](EchoTextHeader h) { return h.roll_deg = 4.0f, h; }},
      {"what stands behind the number", "#Pitch,deg 2.5 deg\r\n",
       [](EchoTextHeader h) { return h.pitch_deg = 2.5f, h; }},
      {"no number", "#OutputMode four\r\n", [](EchoTextHeader h) { return h; }},
      {"a key without its blank", "#Ping:5\r\n", [](EchoTextHeader h) { return h; }},
  };
  for (const auto& each : cases) {
    EchoTextHeader base = kPrevious;
    base.samplingFrequency_hz = kSampling_hz;
    base.txFrequency_hz = kTx_hz;
    ExpectSame(Parse(std::string("#DeviceID X\r\n") + each.line + "##DataStart\r\n"), each.expected(base),
               each.what);
  }
}

TEST(EchoTextHeader, KeysBehindTheDataStartAreData) {
  ExpectSame(Parse(std::string(kGoldenBlock) + "#Ping 99\r\n"), kGolden, "key behind the samples");
}

TEST(EchoTextHeader, EveryTruncationReadsNoByteBehindItsEnd) {
  const std::string_view block = kGoldenBlock;
  for (size_t length = 0; length <= block.size(); ++length) {
    // On the heap and without a terminating zero, so that the sanitizers see a read behind the end.
    const std::vector<char> cut(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(length));
    EchoTextHeader header = kPrevious;
    const ParsedEchoText parsed = ParseEchoTextHeader(EchoTextKeys::firstFamily, {cut.data(), cut.size()},
                                                      kSampling_hz, kTx_hz, header);
    std::vector<uint16_t> samples(4, 0xAAAA);
    EXPECT_LE(ReadSampleLines(parsed.dataLines, samples), 5u) << length;
  }
}

std::vector<uint16_t> Samples(std::string_view lines, size_t count, size_t* taken = nullptr) {
  const std::vector<char> exact(lines.begin(), lines.end());
  std::vector<uint16_t> samples(count, 7777);
  const size_t read = ReadSampleLines({exact.data(), exact.size()}, samples);
  if (taken != nullptr) *taken = read;
  return samples;
}

TEST(SampleLines, LineByLine) {
  const struct {
    const char* what;
    std::string lines;
    std::vector<uint16_t> samples;  // 7777: as it was
    size_t taken;
  } cases[] = {
      {"no data at all", "", {7777}, 0},
      {"a start without line end", "12", {7777}, 0},
      {"nothing behind the line end", "\r\n", {7777}, 0},
      {"one line", "\r\n12\r\n", {12}, 1},
      {"a line without line end", "\r\n12", {12}, 1},
      {"one to five digits", "\r\n1\r\n22\r\n333\r\n4444\r\n55555\r\n", {1, 22, 333, 4444, 55555}, 5},
      {"both ends of a sample's range", "\r\n0\r\n65535\r\n", {0, 65535}, 2},
      {"beyond the range", "\r\n65536\r\n99999\r\n-1\r\n5\r\n", {7777, 7777, 7777, 5}, 4},
      {"beyond 32 bits", "\r\n99999999999999999999\r\n5\r\n", {7777, 5}, 2},
      {"leading zeroes", "\r\n00012\r\n0000000013\r\n14\r\n", {12, 13, 14}, 3},
      {"blanks and signs", "\r\n 12\r\n+13\r\n\t14 \r\n", {12, 13, 14}, 3},
      {"a damaged line does not shift the others", "\r\n1\r\nx\r\n3\r\n", {1, 7777, 3}, 3},
      {"an empty line too", "\r\n1\r\n\r\n3\r\n", {1, 7777, 3}, 3},
      {"numbers end at the first other character", "\r\n12.5\r\n3x4\r\n", {12, 3}, 2},
      {"a lone CR or LF ends no line", "\r\n1\r2\r\n3\n4\r\n5\n\r6\r\n", {1, 3, 5}, 3},
      {"more lines than samples", "\r\n1\r\n2\r\n3\r\n", {1, 2}, 2},
      {"fewer lines than samples", "\r\n1\r\n\r\n\r\n", {1, 7777, 7777, 7777}, 3},
      {"what stands behind the start", " and more\r\n5\r\n", {5}, 1},
  };
  for (const auto& each : cases) {
    size_t taken = 0;
    EXPECT_EQ(Samples(each.lines, each.samples.size(), &taken), each.samples) << each.what;
    EXPECT_EQ(taken, each.taken) << each.what;
  }
}

TEST(SampleLines, AnyMixtureOfLinesReadsAsEachLineAlone) {
  const struct {
    const char* line;
    int32_t value;  // -1: none
  } kinds[] = {{"0", 0},         {"9", 9},         {"10", 10},    {"99", 99},    {"100", 100}, {"4095", 4095},
               {"10000", 10000}, {"65535", 65535}, {"65536", -1}, {"000004", 4}, {" 5", 5},    {"", -1},
               {"\xB0", -1},     {"6\r", 6},       {"-7", -1},    {"1:", 1},     {"\r8", 8}};
  std::minstd_rand random(7);
  for (int run = 0; run < 400; ++run) {
    // From nothing but plain lines to nothing but odd ones.
    const auto odd = static_cast<unsigned>(run % 5) * 2;
    std::string lines = "\r\n";
    std::vector<uint16_t> expected;
    for (int i = 0; i < 150; ++i) {
      const auto& kind = kinds[random() % 10 < odd ? random() % std::size(kinds) : random() % 8];
      lines += std::string(kind.line) + "\r\n";
      expected.push_back(kind.value < 0 ? uint16_t{7777} : static_cast<uint16_t>(kind.value));
    }
    ASSERT_EQ(Samples(lines, expected.size()), expected) << "run " << run << ": " << lines;
  }
}

}  // namespace
}  // namespace tw
