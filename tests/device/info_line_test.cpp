#include "device/info_line.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <tuple>

#include "platform/file.h"
#include "platform/virtual/faults.h"
#include "tests/app/test_folder.h"

namespace tw {
namespace {

// Every value another one.
DeviceSettings SampleSettings() {
  DeviceSettings s{};
  s.frequencyInUse_hz = s.lowFrequency_hz = 199'000;
  s.highFrequency_hz = 447'000;
  s.virtualLowFrequency_hz = 200'000;
  s.virtualHighFrequency_hz = 450'000;
  s.outputMode = 4;
  s.pingInterval_ms = 250;
  s.rangeLow_mm = 60'000;
  s.rangeHigh_mm = 30'000;
  s.thresholdLow_percent = 21;
  s.thresholdHigh_percent = 22;
  s.offsetLow_mm = -11;
  s.offsetHigh_mm = 12;
  s.deadZoneLow_mm = 151;
  s.deadZoneHigh_mm = 152;
  s.txLengthLow = 41;
  s.txLengthHigh = 42;
  s.gainLow = 2.5f;
  s.gainHigh = -3.5f;
  s.tvgSpreadingLow = 15.f;
  s.tvgSpreadingHigh = 20.f;
  s.tvgAbsorptionLow = 0.08f;
  s.tvgAbsorptionHigh = 0.14f;
  s.txPower = 87.25f;
  s.soundSpeed_mps = 1487.65f;
  s.attenuationLow = 1;
  s.attenuationHigh = 2;
  return s;
}

constexpr char kHighLine[] = "INFO:1,450000,30000,0.2,42,87.2,-4,20,0.14,2,152,22,12,1487.7,4\r\n";
constexpr char kLowLine[] = "INFO:1,200000,60000,0.2,41,87.2,2,15,0.08,1,151,21,-11,1487.7,4\r\n";
constexpr char kOlderLine[] = "INFO:450000,30000,0.5,20,0.0,0,15,0.14,0,150,20,0,1500.0,101\r\n";

// All values of a line, for comparison at once.
auto ValuesOf(const InfoLine& info) {
  const auto& [kind, frequency, range, interval, length, power, gain, spreading, absorption, attenuation,
               deadZone, threshold, offset, sound, mode] = info;
  return std::tuple(kind, frequency, range, interval, length, power, gain, spreading, absorption, attenuation,
                    deadZone, threshold, offset, sound, mode);
}

TEST(InfoLine, EachKindHasItsForm) {
  const struct {
    const char* what;
    int32_t family, frequency_hz, mode;
    bool bothChannels;
    std::string text;
  } rows[] = {
      {"high channel", 1, 450'000, 4, false, kHighLine},
      {"low channel", 1, 200'000, 4, false, kLowLine},
      {"both channels in one file", 1, 200'000, 6, true,
       "INFO:1,450000,30000,0.2,42,87.2,-4,20,0.14,2,152,22,12,1487.7,6\r\n"
       "INFO:1,200000,60000,0.2,41,87.2,2,15,0.08,1,151,21,-11,1487.7,6\r\n"},
      {"second family", 2, 450'000, 4, false,
       "INFO:2,199000,30000,0.2,42,100.0,-4,20,0.14,2,152,22,12,1487.7,4\r\n"},
      {"third family", 0, 123, 4, false,
       "INFO:0,450000,30000,0.2,42,100.0,-4,20,0.14,2,152,22,12,1487.7,4\r\n"},
  };
  for (const auto& row : rows) {
    DeviceSettings settings = SampleSettings();
    settings.outputMode = row.mode;
    InfoLine lines[2];
    const int count =
        MakeInfoLines(settings, DeviceFamily{row.family}, row.frequency_hz, row.bothChannels, lines);
    std::string text;
    for (int i = 0; i < count; ++i) {
      char line[kInfoLineSize];
      text.append(line, FormatInfoLine(line, lines[i]));
    }
    EXPECT_EQ(text, row.text) << row.what;
  }
}

TEST(InfoLine, IsReadInBothForms) {
  const struct {
    const char* what;
    std::string text;
    InfoLine info;
  } rows[] = {
      {"among others",
       std::string("noise\r\n") + kHighLine + kLowLine,
       {1, 450'000, 30'000, 0.2f, 42, 87.2f, -4, 20, 0.14f, 2, 152, 22, 12, 1487.7f, 4}},
      {"older", kOlderLine, {1, 450'000, 30'000, 0.5f, 20, 0, 0, 15, 0.14f, 0, 150, 20, 0, 1500, 101}},
      {"no line end",
       "INFO:2, 10,10000,.1,20,0,0,15,0.08,0,150,20,0,1500,4 and more",
       {2, 10, 10'000, 0.1f, 20, 0, 0, 15, 0.08f, 0, 150, 20, 0, 1500, 4}},
      {"ten is a kind",
       "INFO:10,9,8,1,20,0,0,15,0,0,150,20,0,1500,4\r\n",
       {10, 9, 8, 1, 20, 0, 0, 15, 0, 0, 150, 20, 0, 1500, 4}},
      {"a first number above ten is a frequency",
       "INFO:11,9,1,20,0,0,15,0,0,150,20,0,1500,4\r\n",
       {1, 11, 9, 1, 20, 0, 0, 15, 0, 0, 150, 20, 0, 1500, 4}},
  };
  for (const auto& row : rows) {
    InfoLine info{};
    EXPECT_TRUE(ParseInfoLine(row.text, info)) << row.what;
    EXPECT_EQ(ValuesOf(info), ValuesOf(row.info)) << row.what;
  }
}

TEST(InfoLine, WhatIsNoLineChangesNothing) {
  std::vector<std::string> texts = {"INFO:1,450000,30000,nan,20,0,0,15,0,0,150,20,0,1500.0,4\r\n",
                                    "INFO:1,450000,30000,1e30,20,0,0,15,0,0,150,20,0,1500.0,4\r\n",
                                    "INFO:1,99999999999,30000,1,20,0,0,15,0,0,150,20,0,1500.0,4\r\n",
                                    "INFO:1,200000,10000,0.1,20,0.0,0\r,15,0.08,0,150,20,0,1500.0,4\r\n",
                                    "INFO:1,200000,10000,0.1,20,0.0,0,15,0.08,0,150,20,0,1500.0,\n4\r\n",
                                    "info:1,200000,10000,0.1,20,0.0,0,15,0.08,0,150,20,0,1500.0,4\r\n",
                                    "INFO:1 ,200000,10000,0.1,20,0.0,0,15,0.08,0,150,20,0,1500.0,4\r\n",
                                    "INFO:1;200000,10000,0.1,20,0.0,0,15,0.08,0,150,20,0,1500.0,4\r\n"};
  for (const std::string whole : {kHighLine, kOlderLine}) {  // cut anywhere up to the last field
    for (size_t length = 0; length <= whole.rfind(',') + 1; ++length)
      texts.push_back(whole.substr(0, length));
  }
  for (const std::string& text : texts) {
    InfoLine info{};
    info.kind = 77;
    EXPECT_FALSE(ParseInfoLine(text, info)) << text;
    EXPECT_EQ(info.kind, 77) << text;
  }
}

// Both channels of a recording: each line fills its own side, the low one changes nothing else.
TEST(InfoLine, FillsTheSettingsOfItsChannel) {
  DeviceSettings settings{};
  ApplyInfoLine({1, 450'000, 30'000, 0.25f, 42, 87.25f, -3.5f, 20, 0.14f, 2, 152, 22, 12, 1487.65f, 4},
                FieldChannel::high, settings);
  ApplyInfoLine({1, 200'000, 60'000, 9, 41, 9, 2.5f, 15, 0.08f, 1, 151, 21, -11, 9, 9}, FieldChannel::low,
                settings);
  DeviceSettings expected = SampleSettings();  // without what no line tells
  expected.frequencyInUse_hz = 450'000;
  expected.outputMode = 0;
  expected.lowFrequency_hz = 200'000;
  expected.highFrequency_hz = expected.virtualLowFrequency_hz = expected.virtualHighFrequency_hz = 0;
  EXPECT_EQ(std::memcmp(&settings, &expected, sizeof settings), 0);
}

TEST(InfoLine, AFailedWriteClosesTheFile) {
  const test::TestFolder folder;
  const std::filesystem::path path = folder.Path() / "record.log";
  DeviceSettings settings = SampleSettings();
  settings.outputMode = 6;
  settings.simultaneous = 1;
  const char* const written[] = {"INFO:",
                                 "INFO:1,450000,30000,0.2,42,87.2,-4,20,0.14,2,152,22,12,1487.7,6\r\nINFO:"};
  for (uint64_t call = 1; call <= 2; ++call) {
    Handle file = CreateFileAnew(path.wstring().c_str());
    ClearFaults();
    InjectFault({.point = FaultPoint::writeFile, .call = call, .taken = 5});
    WriteInfoLine(settings, DeviceFamily::first, file, 200'000, true);
    EXPECT_EQ(file, Handle::invalid);
    EXPECT_EQ(CallCount(FaultPoint::writeFile), call) << "nothing is written after the failure";
    std::ifstream content(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(content), {}), written[call - 1]);
  }
  ClearFaults();
}

}  // namespace
}  // namespace tw
