// What the golden files do not show of both conversions.
#include "playback/converter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "platform/file.h"
#include "playback/segy_format.h"
#include "playback/text_block.h"
#include "tests/app/test_files.h"
#include "tests/app/test_folder.h"

namespace tw {
namespace {

template <typename Number>
Number BigEndian(const uint8_t* bytes) {
  uint32_t value = 0;
  for (size_t i = 0; i < sizeof(Number); ++i) value = value << 8 | bytes[i];
  return static_cast<Number>(value);
}

TEST(SegyTrace, FieldsAtTheirBounds) {
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
      {"1 March of a leap year", [](PingHeader& ping) { ping.timeOfWork_s = 951'868'800; }, 157,
       2000 << 16 | 61},
      {"of a century that is none", [](PingHeader& ping) { ping.timeOfWork_s = 4'107'542'400; }, 157,
       2100 << 16 | 60},
      {"the last second of 32 bits, 2106", [](PingHeader& ping) { ping.timeOfWork_s = 0xFFFFFFFF; }, 157,
       2106 << 16 | 38},
  };
  for (const auto& row : rows) {
    PingHeader ping{};
    ping.samplingFrequency_hz = 1;
    row.set(ping);
    uint8_t bytes[kSegyTraceHeaderSize];
    BuildSegyTraceHeader(bytes, ping, {1, 0, 1500.0f, false});
    EXPECT_EQ(BigEndian<int32_t>(bytes + row.byte - 1), row.value) << row.what;
  }
}

TEST(SegyTrace, SoundSpeedsThatAreNone) {
  const struct {
    float speed;
    int16_t field;
  } rows[] = {{1499.99f, 1499}, {0.0f, 0}, {-5.0f, 0}, {1e9f, 32767}, {std::nanf(""), 0}};
  PingHeader ping{};
  ping.samplingFrequency_hz = 1;
  for (const auto& row : rows) {
    uint8_t bytes[kSegyTraceHeaderSize];
    BuildSegyTraceHeader(bytes, ping, {1, 0, row.speed, false});
    EXPECT_EQ(BigEndian<int16_t>(bytes + 90), row.field) << row.speed;
  }
}

struct Ping {
  uint32_t sampling_hz;
  size_t samples;
};

std::string SegyOf(const std::vector<Ping>& pings) {
  const test::TestFolder folder;
  const auto path = folder.Path() / "out.sgy";
  const Handle file = CreateFileAnew(path.wstring().c_str());
  OutputFile output(file);
  uint8_t textHeader[kSegyTextHeaderSize];
  BuildSegyTextHeader(textHeader);
  SegyConverter converter(output, textHeader, 1500.9f, {});
  for (const Ping& ping : pings) {
    const std::vector<uint16_t> samples(ping.samples, 7);
    RecordedPing recorded{};
    recorded.header.samplingFrequency_hz = ping.sampling_hz;
    recorded.samples = samples;
    EXPECT_TRUE(converter.Append(recorded));
  }
  EXPECT_TRUE(output.Flush());
  CloseFile(file);
  return test::ReadWhole(path);
}

// The big-endian number that begins at a byte of the file, or of a header there; the standard counts from 1.
template <typename Number>
Number At(const std::string& segy, size_t byte, size_t header = 0) {
  return BigEndian<Number>(reinterpret_cast<const uint8_t*>(segy.data()) + header + byte - 1);
}
constexpr size_t kFirstTrace = 3600;

TEST(SegyConversion, WithoutSamplingFrequencyNoTrace) {
  const std::string segy = SegyOf({{0, 6}, {100'000, 3}, {30'000, 4}});
  ASSERT_EQ(segy.size(), kFirstTrace + 2 * 240 + 2 * (3 + 4));
  EXPECT_EQ(At<int16_t>(segy, 3221), 3) << "the first trace is the second ping";
  EXPECT_EQ(At<int32_t>(segy, 5, kFirstTrace), 1);
}

// Readers take a trace's length from its header, so the samples end where the field does.
TEST(SegyConversion, LongerThanTheLengthField) {
  const std::string segy = SegyOf({{100'000, 50'000}, {100'000, 3}});
  EXPECT_EQ(segy.size(), kFirstTrace + 2 * 240 + 2 * (32'767 + 3));
  EXPECT_EQ(At<int32_t>(segy, 5, kFirstTrace + 240 + 2 * 32'767), 2);
}

TEST(TextBlock, PositionLines) {
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
TEST(TextBlock, WidestBlockFits) {
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
