#include "playback/converter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "platform/file.h"
#include "playback/segy_format.h"
#include "playback/text_block.h"

namespace tw {
namespace {

struct Ping {
  PingHeader header;
  std::vector<uint16_t> samples;
};

std::string Golden(const char* name) {
  std::ifstream file(std::string(TW_TEST_DATA "/") + name, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

// The frames of the golden recording, read without the program's own reader.
std::vector<Ping> GoldenPings() {
  const std::string bytes = Golden("three_pings.log");
  const auto* at = reinterpret_cast<const uint8_t*>(bytes.data());
  std::vector<Ping> pings;
  for (const auto* end = at + bytes.size(); at < end;) {
    Ping ping{LoadPingHeader(at), {}};
    at += 88;
    for (uint32_t i = 0; i < ping.header.sampleCount; ++i, at += 2) {
      ping.samples.push_back(LoadLe<uint16_t>(at));
    }
    pings.push_back(std::move(ping));
  }
  return pings;
}

// What a converter makes of pings, written to a file and read back.
class Conversion : public testing::Test {
 protected:
  void SetUp() override {
    path_ = std::wstring(L"converter_test_") +
            std::to_wstring(::testing::UnitTest::GetInstance()->random_seed()) + L"_" +
            std::to_wstring(reinterpret_cast<uintptr_t>(this)) + L".out";
    file_ = CreateFileAnew(path_.c_str());
    ASSERT_NE(file_, Handle::invalid);
  }
  void TearDown() override {
    CloseFile(file_);
    EXPECT_TRUE(RemoveFile(path_.c_str()));
  }
  std::string Written() {
    uint64_t size = 0;
    EXPECT_TRUE(SeekFile(file_, 0) && FileSize(file_, size));
    std::string bytes(size, '\0');
    uint32_t got = 0;
    EXPECT_TRUE(ReadFileBytes(file_, bytes.data(), static_cast<uint32_t>(size), got));
    EXPECT_EQ(got, size);
    return bytes;
  }
  std::string Segy(const std::vector<Ping>& pings, const SegyOptions& options = {}) {
    OutputFile output(file_);
    BuildSegyTextHeader(textHeader_);
    SegyConverter converter(output, textHeader_, 1500.9f, options);
    for (const Ping& ping : pings) EXPECT_TRUE(converter.Append(ping.header, ping.samples));
    EXPECT_TRUE(output.Flush());
    return Written();
  }

  Handle file_ = Handle::invalid;

 private:
  std::wstring path_;
  uint8_t textHeader_[kSegyTextHeaderSize];
};

using SegyConversion = Conversion;
using TextConversion = Conversion;

int16_t Word(const std::string& bytes, size_t at) {
  return LoadBe<int16_t>(reinterpret_cast<const uint8_t*>(bytes.data()) + at);
}
int32_t Long(const std::string& bytes, size_t at) {
  return LoadBe<int32_t>(reinterpret_cast<const uint8_t*>(bytes.data()) + at);
}

constexpr size_t kFirstTrace = 3600;
constexpr size_t TraceByte(size_t byte) {
  return kFirstTrace + byte - 1;
}

TEST_F(SegyConversion, ThreePingsByteForByte) {
  EXPECT_EQ(Segy(GoldenPings()), Golden("three_pings.sgy"));
}

TEST_F(TextConversion, ThreePingsByteForByte) {
  OutputFile output(file_);
  TextConverter converter(output);
  for (const Ping& ping : GoldenPings()) EXPECT_TRUE(converter.Append(ping.header, ping.samples));
  EXPECT_TRUE(output.Flush());
  EXPECT_EQ(Written(), Golden("three_pings_txt.log"));
}

// The longest trace has six samples: all traces get them, and nothing but those fields and the numbers
// change.
TEST_F(SegyConversion, PaddedAndNumbered) {
  const std::string bytes = Segy(GoldenPings(), {.paddedLength = 6, .numbered = true});
  ASSERT_EQ(bytes.size(), 3600u + 3 * (240 + 12));
  EXPECT_EQ(Word(bytes, 3503 - 1), 1) << "fixed-length flag";
  for (size_t trace = 0; trace < 3; ++trace) {
    const size_t at = trace * 252;
    EXPECT_EQ(Word(bytes, at + TraceByte(115)), 6);
    EXPECT_EQ(Long(bytes, at + TraceByte(189)), 1);
    EXPECT_EQ(Long(bytes, at + TraceByte(193)), static_cast<int32_t>(trace) + 1);
  }
  EXPECT_EQ(bytes.substr(kFirstTrace + 252 + 240, 12), std::string("\0\x0A\0\xC8\x0B\xB8\0\0\0\0\0\0", 12));
}

TEST_F(SegyConversion, FieldsAtTheirBounds) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const struct {
    const char* what;
    void (*set)(PingHeader& ping);
    size_t byte;
    int32_t value;  // of the 32-bit field at `byte`
  } rows[] = {
      {"a position that is no number", [](PingHeader& ping) { ping.gpsLongitude_rad = std::nanf(""); }, 73,
       0},
      {"an infinite one", [](PingHeader& ping) { ping.gpsLatitude_rad = -kInfinity; }, 77, 0},
      {"beyond the field, east", [](PingHeader& ping) { ping.gpsLongitude_rad = 1e30f; }, 181, 2147483647},
      {"beyond the field, west", [](PingHeader& ping) { ping.gpsLongitude_rad = -1e30f; }, 81,
       -2147483647 - 1},
      {"the highest ping number", [](PingHeader& ping) { ping.ping = 0xFFFFFFFF; }, 1, -1},
      {"an interval beyond 16 bits, no samples", [](PingHeader&) {}, 115, 32767},
      {"an interval below 1 us", [](PingHeader& ping) { ping.samplingFrequency_hz = 2'000'000; }, 115, 0},
      {"the last second of 32 bits, 2106", [](PingHeader& ping) { ping.timeOfWork_s = 0xFFFFFFFF; }, 157,
       2106 << 16 | 38},
  };
  for (const auto& row : rows) {
    PingHeader ping{};
    ping.samplingFrequency_hz = 1;
    row.set(ping);
    uint8_t bytes[kSegyTraceHeaderSize];
    BuildSegyTraceHeader(bytes, ping, {1, 0, 1500.0f, false});
    EXPECT_EQ(LoadBe<int32_t>(bytes + row.byte - 1), row.value) << row.what;
  }
}

TEST_F(SegyConversion, SoundSpeedsThatAreNone) {
  const struct {
    float speed;
    int16_t field;
  } rows[] = {{1499.99f, 1499}, {0.0f, 0}, {-5.0f, 0}, {1e9f, 32767}, {std::nanf(""), 0}};
  PingHeader ping{};
  ping.samplingFrequency_hz = 1;
  for (const auto& row : rows) {
    uint8_t bytes[kSegyTraceHeaderSize];
    BuildSegyTraceHeader(bytes, ping, {1, 0, row.speed, false});
    EXPECT_EQ(LoadBe<int16_t>(bytes + 90), row.field) << row.speed;
  }
}

TEST_F(SegyConversion, WithoutSamplingFrequencyNoTrace) {
  std::vector<Ping> pings = GoldenPings();
  pings[0].header.samplingFrequency_hz = 0;
  const std::string bytes = Segy(pings);
  ASSERT_EQ(bytes.size(), 3600u + 2 * 240 + 2 * (3 + 4));
  EXPECT_EQ(Word(bytes, 3221 - 1), 3) << "the first trace is the second ping";
  EXPECT_EQ(Long(bytes, TraceByte(5)), 1);
}

// Readers take a trace's length from its header, so the samples end where the field does.
TEST_F(SegyConversion, LongerThanTheLengthField) {
  std::vector<Ping> pings = GoldenPings();
  pings[0].samples.assign(50'000, 7);
  const std::string bytes = Segy(pings);
  EXPECT_EQ(bytes.size(), 3600u + 3 * 240 + 2 * (32'767 + 3 + 4));
  EXPECT_EQ(Long(bytes, TraceByte(240 + 2 * 32'767 + 5)), 2);
}

TEST_F(TextConversion, PositionLines) {
  const struct {
    const char* what;
    float latitude_rad;
    int32_t valid;
    const char* line;
  } rows[] = {
      {"valid at 0, 0", 0.0f, 1, "$GPGLL,0.0000000,N,0.0000000,E,000000.00,A,A*59\r\n\r\n\r\n"},
      {"not valid, north", 0.5f, 0, "$GPGLL,2838.8733854,N,0.0000000,E,000000.00,V,A*79\r\n\r\n\r\n"},
      {"not valid, south", -0.5f, 0, "\r\n\r\n"},
      {"no number", std::nanf(""), 1, "\r\n\r\n"},
  };
  for (const auto& row : rows) {
    PingHeader ping{};
    ping.gpsLatitude_rad = row.latitude_rad;
    ping.gpsValid = row.valid;
    static char block[kTextBlockSize];
    const std::string text(block, LayOutTextBlock(ping, {}, block));
    const size_t at = text.find("##DataEnd\r\n");
    ASSERT_NE(at, std::string::npos) << row.what;
    EXPECT_EQ(text.substr(at + 11), row.line) << row.what;
  }
}

// The widest numbers and the longest ping leave room for the lines behind the samples.
TEST_F(TextConversion, WidestBlockFits) {
  constexpr float kWidest = -std::numeric_limits<float>::max();
  PingHeader header{};
  header.samplingFrequency_hz = 100'000;
  for (float* value :
       {&header.range_m, &header.altitude_m, &header.temperature_c, &header.pitch_deg, &header.roll_deg,
        &header.gpsLatitude_rad, &header.gpsLongitude_rad, &header.gpsAltitude_m, &header.gpsPdop}) {
    *value = kWidest;
  }
  header.gpsValid = 1;
  const std::vector<uint16_t> samples(100'000, 65'535);
  static char block[kTextBlockSize];
  const std::string text(block, LayOutTextBlock(header, samples, block));
  EXPECT_EQ(text.substr(text.size() - 6), "\r\n\r\n\r\n");
  EXPECT_NE(text.find("\r\n65535\r\n##DataEnd\r\n$GPGLL,"), std::string::npos);
}

}  // namespace
}  // namespace tw
