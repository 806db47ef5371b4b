// Every output mode of every family from the running device, read back with the C library: each tells the
// same sea.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>

#include "simulator/virtual_echosounder.h"
#include "tests/simulator/far_end.h"

namespace tw::sim {
namespace {

struct Sent final : PingObserver {
  std::vector<SentPing> pings;
  std::vector<std::vector<uint16_t>> samples;
  void PingMade(const SentPing& ping, std::span<const uint16_t> made) override {
    EXPECT_EQ(ping.sampleCount, made.size());
    pings.push_back(ping);
    samples.emplace_back(made.begin(), made.end());
  }
  void PingEnded(const SentPing&) override {}
};

SounderOptions Fast(DeviceFamily family, int32_t mode) {
  return {.family = family, .baud = 12'000'000, .delivery_us = 1'000, .outputMode = mode, .streaming = true};
}

struct Values {
  float altitude = -1, altitudeLow = -1, temperature = -1, pitch = -1, roll = -1;
  unsigned number = 0, time_s = 0;
};

template <typename T>
T Load(const std::string& text, size_t at) {
  T value{};
  EXPECT_LE(at + sizeof value, text.size());
  if (at + sizeof value > text.size()) return value;
  std::memcpy(&value, text.data() + at, sizeof value);  // both are little-endian here
  return value;
}

// Scans `form` behind the first `key` in the text.
template <typename... Targets>
bool Scan(const std::string& text, const char* key, const char* form, Targets*... targets) {
  const size_t at = text.find(key);
  return at != std::string::npos &&
         std::sscanf(text.c_str() + at, form, targets...) == static_cast<int>(sizeof...(targets));
}

void ReadFirstText(const std::string& text, Values& to) {
  unsigned ms = 0;
  EXPECT_TRUE(Scan(text, "#TimeWork ", "#TimeWork %u.%u", &to.time_s, &ms));
  EXPECT_TRUE(Scan(text, "#Altitude ", "#Altitude %f", &to.altitude));
  EXPECT_TRUE(Scan(text, "#Temperature ", "#Temperature %f", &to.temperature));
  EXPECT_TRUE(Scan(text, "#Pitch,deg ", "#Pitch,deg %f", &to.pitch));
  EXPECT_TRUE(Scan(text, "#Roll,deg ", "#Roll,deg %f", &to.roll));
  EXPECT_TRUE(Scan(text, "#Ping ", "#Ping %u", &to.number));
}
void ReadSecondText(const std::string& text, Values& to) {
  unsigned ms = 0;
  EXPECT_TRUE(Scan(text, "#TimeWork ", "#TimeWork %u.%u", &to.time_s, &ms));
  EXPECT_TRUE(Scan(text, "#Altitude,m ", "#Altitude,m %f", &to.altitude));
  EXPECT_TRUE(Scan(text, "#Temperature,\xB0",
                   "#Temperature,\xB0"
                   "C %f",
                   &to.temperature));
  EXPECT_TRUE(Scan(text, "#Pitch,deg ", "#Pitch,deg %f", &to.pitch));
  EXPECT_TRUE(Scan(text, "#Roll,deg ", "#Roll,deg %f", &to.roll));
  EXPECT_TRUE(Scan(text, "#Ping ", "#Ping %u", &to.number));
  EXPECT_EQ(text.find("Sampling_Frequency"), std::string::npos);
}
void ReadFirstEpoch(const std::string& text, Values& to) {
  float feet = 0, fathoms = 0;
  EXPECT_TRUE(Scan(text, "$SDDBT", "$SDDBT,%f,f,%f,M,%f,F*", &feet, &to.altitude, &fathoms));
  EXPECT_NEAR(feet * 0.3048f, to.altitude, 0.002f);
  EXPECT_NEAR(fathoms * 1.8288f, to.altitude, 0.01f);
  EXPECT_TRUE(Scan(text, "$SDXDR", "$SDXDR,A,%f,D,PTCH,A,%f,D,ROLL*", &to.pitch, &to.roll));
  EXPECT_TRUE(Scan(text, "$SDMTW", "$SDMTW,%f,*", &to.temperature));
}
void ReadSecondEpoch(const std::string& text, Values& to) {
  float feet = 0;
  EXPECT_TRUE(Scan(text, "$GPDBT", "$GPDBT,%f,f,%f,M,,*", &feet, &to.altitude));
  EXPECT_TRUE(Scan(text, "$YXXDR", "$YXXDR,A,%f,D,PTCH,A,%f,D,ROLL*", &to.pitch, &to.roll));
  EXPECT_TRUE(Scan(text, "$GPMTW", "$GPMTW,%f,*", &to.temperature));
}
void ReadBlock(const std::string& text, Values& to) {
  EXPECT_EQ(text.substr(0, 10), "TIDEWRITEC");
  EXPECT_EQ(Load<uint32_t>(text, 10), text.size());
  to = {Load<float>(text, 26),   -1,
        Load<float>(text, 30),   Load<float>(text, 34),
        Load<float>(text, 38),   Load<uint32_t>(text, 22),
        Load<uint32_t>(text, 14)};
}
void ReadSimple(const std::string& text, Values& to) {
  EXPECT_TRUE(Scan(text, "Alt", "Alt : %f\r\n", &to.altitude));
}
void ReadDeso(const std::string& text, Values& to) {
  EXPECT_TRUE(Scan(text, "D", to.number == 0 ? "DA%f m*" : "DB%f m*", &to.altitude));
}
void ReadDual(const std::string& text, Values& to) {
  int number = 0;
  EXPECT_TRUE(Scan(text, "Dual ", "Dual : %d, %f, %f, %f\r\n", &number, &to.altitude, &to.altitudeLow,
                   &to.temperature));
  to.number = static_cast<unsigned>(number);
}
void ReadDfx(const std::string& text, Values& to) {
  float zero = 0, battery = 0;
  int quality = 0;
  EXPECT_TRUE(
      Scan(text, "1 ", "1 %f %f %f %f %d\r\n", &to.altitude, &to.altitudeLow, &zero, &battery, &quality));
}
void ReadOld(const std::string& text, Values& to) {
  float battery = 0;
  int quality = 0, number = 0;
  EXPECT_TRUE(Scan(text, "1 ", "1 %f 0 0 0 %f %d %d\r\n", &to.altitude, &battery, &quality, &number));
}
void ReadPsa(const std::string& text, Values& to) {
  EXPECT_TRUE(Scan(text, "R", "R%f\r\n", &to.altitude));
}
void ReadPlusTemp(const std::string& text, Values& to) {
  EXPECT_TRUE(Scan(text, "", "%f,   %f", &to.altitude, &to.temperature));
}

struct ModeRow {
  int32_t mode;
  void (*read)(const std::string&, Values&);
  uint32_t samples = 0;
};
constexpr ModeRow kFirst[] = {{1, ReadSimple},
                              {2, ReadFirstText, 1'000},
                              {3, ReadFirstEpoch},
                              {4, ReadFirstText, 1'000},
                              {6, ReadDeso},
                              {7, ReadDual},
                              {8, ReadDfx},
                              {9, ReadOld},
                              {100, ReadBlock, 1'000},
                              {101, ReadBlock, 1'000}};
constexpr ModeRow kSecond[] = {{1, ReadSimple},
                               {2, ReadSecondText, 1'000},
                               {3, ReadSecondEpoch},
                               {4, ReadSecondText, 200},
                               {5, ReadSecondText, 500},
                               {6, ReadSecondText, 1'000},
                               {7, ReadPsa},
                               {8, ReadPlusTemp},
                               {9, ReadDfx},
                               {10, ReadOld},
                               {100, ReadBlock, 1'000},
                               {101, ReadBlock, 1'000}};

std::span<const ModeRow> RowsOf(DeviceFamily family) {
  return family == DeviceFamily::first ? std::span<const ModeRow>(kFirst) : kSecond;
}

constexpr DeviceFamily kFamilies[] = {DeviceFamily::first, DeviceFamily::second, DeviceFamily::third};

void ExpectTold(const Values& values, const SentPing& ping) {
  EXPECT_EQ(values.altitude, ping.altitude_m);
  if (values.altitudeLow >= 0) {
    EXPECT_EQ(values.altitudeLow, ping.altitudeLow_m);
  }
  if (values.temperature >= 0) {
    EXPECT_EQ(values.temperature, ping.temperature_c);
  }
  if (values.pitch != -1) {
    EXPECT_EQ(values.pitch, ping.pitch_deg);
  }
  if (values.roll != -1) {
    EXPECT_EQ(values.roll, ping.roll_deg);
  }
  if (values.number != 0) {
    EXPECT_EQ(values.number, ping.number);
  }
  if (values.time_s != 0) {
    EXPECT_EQ(values.time_s, ping.deviceTime_s);
  }
}

TEST(OutputModes, EachTellsTheSameSea) {
  std::map<uint32_t, float> depths;  // by ping
  for (const DeviceFamily family : kFamilies) {
    for (const ModeRow& row : RowsOf(family)) {
      SCOPED_TRACE(testing::Message() << "family " << static_cast<int>(family) << " mode " << row.mode);
      Sent sent;
      VirtualEchosounder device(Fast(family, row.mode), &sent);
      const std::string stream = FarEnd(device).ReadUntil(3'050'000);
      ASSERT_EQ(sent.pings.size(), 31u);
      uint64_t offset = 0;
      for (const SentPing& ping : sent.pings) {
        ASSERT_EQ(ping.offset, offset);
        offset += ping.size;
        Values values;
        row.read(stream.substr(ping.offset, ping.size), values);
        ExpectTold(values, ping);
        EXPECT_EQ(ping.outputMode, row.mode);
        EXPECT_EQ(ping.sampleCount, row.samples);
        EXPECT_TRUE(ping.intact);
        EXPECT_EQ(depths.emplace(ping.number, ping.altitude_m).first->second, ping.altitude_m);
      }
      EXPECT_EQ(offset, stream.size());
    }
  }
}

TEST(OutputModes, BothFrequenciesOfTheFirstFamily) {
  for (const ModeRow& row : kFirst) {
    SCOPED_TRACE(row.mode);
    SounderOptions options = Fast(DeviceFamily::first, row.mode);
    options.dual = true;
    Sent sent;
    VirtualEchosounder device(options, &sent);
    const std::string stream = FarEnd(device).ReadUntil(950'000);
    const bool joint = row.mode >= 7 && row.mode <= 9;
    ASSERT_EQ(sent.pings.size(), joint ? 10u : 20u);
    for (size_t i = 0; i < sent.pings.size(); ++i) {
      const SentPing& ping = sent.pings[i];
      const bool low = !joint && i % 2 == 1;
      const std::string text = stream.substr(ping.offset, ping.size);
      Values values;
      values.number = row.mode == 6 && low ? ping.number : 0;  // which line to expect
      row.read(text, values);
      ExpectTold(values, ping);
      EXPECT_EQ(ping.txFrequency_hz, low ? 200'000 : 450'000);
      const float below =
          low ? ping.altitude_m - sent.pings[i - 1].altitude_m : ping.altitudeLow_m - ping.altitude_m;
      if (low || joint) {
        EXPECT_GT(below, 0.05f) << "the low frequency looks into the sediment";
      }
      if (row.mode == 1) {
        EXPECT_EQ(text.find(low ? "Hz\r\n 200000.0\r\n" : "Hz\r\n 450000.0\r\n"), 0u);
      }
      if (row.mode == 3) {
        EXPECT_EQ(text.find(low ? "#F 200000 Hz\r\n" : "#F 450000 Hz\r\n"), 0u);
      }
      if (row.samples != 0) {
        EXPECT_EQ(ping.sampleCount, row.samples);
      }
    }
  }
}

TEST(OutputModes, SecondFamilyNeverUsesBothFrequencies) {
  SounderOptions options = Fast(DeviceFamily::second, 2);
  options.dual = true;
  Sent sent;
  VirtualEchosounder device(options, &sent);
  (void)FarEnd(device).ReadUntil(950'000);
  EXPECT_EQ(sent.pings.size(), 10u);
}

TEST(OutputModes, BinarySamplesAreThoseOfTheText) {
  const auto samples = [](int32_t mode) {
    Sent sent;
    VirtualEchosounder device(Fast(DeviceFamily::first, mode), &sent);
    const std::string stream = FarEnd(device).ReadUntil(550'000);
    if (mode == 100) {
      const size_t at = sent.pings.back().offset + 62;
      for (size_t i = 0; i < 1'000; ++i) {
        EXPECT_EQ(Load<uint16_t>(stream, at + 2 * i), sent.samples.back()[i]);
      }
    }
    return sent.samples;
  };
  const auto text = samples(4);
  EXPECT_EQ(samples(100), text);
  const auto companded = samples(101);
  ASSERT_EQ(companded.size(), text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    for (size_t j = 0; j < text[i].size(); ++j) {
      ASSERT_LE(companded[i][j], text[i][j]);
      ASSERT_LE(text[i][j] - companded[i][j], text[i][j] / 32) << "a code covers a 32nd";
    }
  }
}

TEST(OutputModes, FramesInsteadOfBlocks) {
  for (const BinaryForm form : {BinaryForm::frame, BinaryForm::dualFrame}) {
    for (const bool dual : {false, true}) {
      SounderOptions options = Fast(DeviceFamily::first, 100);
      options.binaryForm = form;
      options.dual = dual;
      Sent sent;
      VirtualEchosounder device(options, &sent);
      const std::string stream = FarEnd(device).ReadUntil(950'000);
      const bool joint = form == BinaryForm::frame;
      ASSERT_EQ(sent.pings.size(), dual && !joint ? 20u : 10u);
      const uint32_t channels = dual && joint ? 2 : 1;
      for (const SentPing& ping : sent.pings) {
        EXPECT_EQ(stream.substr(ping.offset, 4), joint ? "TR57" : "DUAL");
        EXPECT_EQ(Load<uint32_t>(stream, ping.offset + 32), 1'000u) << "of one channel";
        EXPECT_EQ(ping.size, 88 + 2'000 * channels);
        EXPECT_EQ(ping.sampleCount, 1'000 * channels);
        EXPECT_EQ(Load<float>(stream, ping.offset + 48), ping.altitude_m);
      }
    }
  }
}

}  // namespace
}  // namespace tw::sim
