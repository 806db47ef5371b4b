#include "acquisition/echo_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <tuple>
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

// All values of a header, for comparison at once.
auto ValuesOf(const EchoTextHeader& header) {
  const auto& [seconds, milliseconds, count, resolution, mode, sampling, altitude, temperature, pitch, roll,
               ping, tx] = header;
  return std::tuple(seconds, milliseconds, count, resolution, mode, sampling, altitude, temperature, pitch,
                    roll, ping, tx);
}

struct Parsed {
  EchoTextHeader header = kPrevious;
  bool hasTx = false;
};

Parsed Parse(std::string_view block, EchoTextKeys keys = EchoTextKeys::firstFamily) {
  Parsed parsed;
  parsed.hasTx = ParseEchoTextHeader(keys, block, kSampling_hz, kTx_hz, parsed.header).hasTxFrequency;
  return parsed;
}

const struct Form {
  EchoTextKeys keys;
  std::string_view block;
  EchoTextHeader golden;
} kForms[] = {{EchoTextKeys::firstFamily, kGoldenBlock, kGolden},
              {EchoTextKeys::otherFamilies, kGoldenSecondBlock, kSecondGolden}};

TEST(EchoTextHeader, KeysStandInAnyOrder) {
  std::minstd_rand random(1);
  for (const Form& form : kForms) {
    std::vector<std::string> lines;
    for (std::string_view rest = form.block; !rest.empty(); rest.remove_prefix(lines.back().size())) {
      lines.emplace_back(rest.substr(0, rest.find("\r\n") + 2));
    }
    for (int run = 0; run < 20; ++run) {
      std::string block;
      for (const std::string& line : lines) block += line;
      const Parsed parsed = Parse(block, form.keys);
      EXPECT_EQ(ValuesOf(parsed.header), ValuesOf(form.golden)) << block;
      EXPECT_TRUE(parsed.hasTx) << block;
      std::shuffle(lines.begin() + 1, lines.begin() + 11, random);
    }
  }
}

TEST(EchoTextHeader, KeysOfTheOtherFamilyAreNotTaken) {
  EchoTextHeader expected = kSecondGolden;
  expected.resolution_mm = kPrevious.resolution_mm;
  expected.altitude_m = kPrevious.altitude_m;
  expected.temperature_c = kPrevious.temperature_c;
  EXPECT_EQ(ValuesOf(Parse(kGoldenBlock, EchoTextKeys::otherFamilies).header), ValuesOf(expected));
  EXPECT_EQ(ValuesOf(Parse(kGoldenSecondBlock).header), ValuesOf(expected));
}

TEST(EchoTextHeader, OneLineAlone) {
  using H = EchoTextHeader;
  const struct {
    const char* what;
    const char* line;
    void (*change)(H&);  // of what stands without the line
  } cases[] = {
      {"milliseconds are no fraction", "#TimeWork 3.250",
       [](H& h) { h.deviceSeconds = 3, h.deviceMilliseconds = 250; }},
      {"seconds without milliseconds", "#TimeWork 3", [](H& h) { h.deviceSeconds = 3; }},
      {"no samples", "#NSamples 0", [](H& h) { h.sampleCount = 0; }},
      {"the most samples", "#NSamples 50000", [](H& h) { h.sampleCount = 50'000; }},
      {"the largest ping", "#Ping 4294967295", [](H& h) { h.ping = 4'294'967'295u; }},
      {"an exponent", "#Altitude -2.5e1", [](H& h) { h.altitude_m = -25.0f; }},
      {"more blanks and a plus sign", "#Roll,deg   +4", [](H& h) { h.roll_deg = 4.0f; }},
      {"what stands behind the number", "#Pitch,deg 2.5 deg", [](H& h) { h.pitch_deg = 2.5f; }},
      {"another family's number with an f", "#Resolution,mm 3.75f", [](H& h) { h.resolution_mm = 3.75f; }},
      {"no key at all", "", [](H&) {}},
      {"one sample too many", "#NSamples 50001", [](H&) {}},
      {"a negative count", "#NSamples -1", [](H&) {}},
      {"a count beyond 32 bits", "#NSamples 4294967299", [](H&) {}},
      {"one ping more", "#Ping 4294967296", [](H&) {}},
      {"not a number", "#Altitude nan", [](H&) {}},
      {"infinity", "#Altitude inf", [](H&) {}},
      {"beyond single precision", "#Altitude 1e39", [](H&) {}},
      {"no number", "#OutputMode four", [](H&) {}},
      {"a key without its blank", "#Ping:5", [](H&) {}},
      {"a key behind the data's start", "##DataStart\r\n#Ping 99", [](H&) {}},
  };
  for (const auto& each : cases) {
    H expected = kPrevious;
    expected.samplingFrequency_hz = kSampling_hz;
    expected.txFrequency_hz = kTx_hz;
    each.change(expected);
    const bool resolution = std::string_view(each.line).starts_with("#Resolution");
    const Parsed parsed = Parse("#DeviceID X\r\n" + std::string(each.line) + "\r\n##DataStart\r\n",
                                resolution ? EchoTextKeys::otherFamilies : EchoTextKeys::firstFamily);
    EXPECT_EQ(ValuesOf(parsed.header), ValuesOf(expected)) << each.what;
    EXPECT_FALSE(parsed.hasTx) << each.what;
  }
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
               {"\xB0", -1},     {"6\r", 6},       {"-7", -1},    {"1:", 1},     {"\r8", 8},   {"\n8", 8}};
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
