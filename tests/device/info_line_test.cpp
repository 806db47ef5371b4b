#include "device/info_line.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "app/app_state.h"
#include "platform/file.h"
#include "platform/host/faults.h"

namespace tw {
namespace {

DeviceSettings Sample() {
  DeviceSettings s{};
  s.frequencyInUse_hz = 199'000;
  s.lowFrequency_hz = 199'000;
  s.highFrequency_hz = 447'000;
  s.virtualLowFrequency_hz = 200'000;
  s.virtualHighFrequency_hz = 450'000;
  s.rangeLow_mm = 60'000;
  s.rangeHigh_mm = 30'000;
  s.pingInterval_ms = 250;
  s.txLengthLow = 40;
  s.txLengthHigh = 20;
  s.txPower = 87.25f;
  s.gainLow = 2.5f;
  s.gainHigh = -3.5f;
  s.tvgSpreadingLow = 15.f;
  s.tvgSpreadingHigh = 20.f;
  s.tvgAbsorptionLow = 0.08f;
  s.tvgAbsorptionHigh = 0.14f;
  s.attenuationLow = 1;
  s.attenuationHigh = 2;
  s.deadZoneLow_mm = 150;
  s.deadZoneHigh_mm = 100;
  s.offsetLow_mm = -10;
  s.offsetHigh_mm = 5;
  s.thresholdLow_percent = 20;
  s.thresholdHigh_percent = 25;
  s.soundSpeed_mps = 1487.65f;
  s.outputMode = 4;
  return s;
}

constexpr char kHighLine[] = "INFO:1,450000,30000,0.2,20,87.2,-4,20,0.14,2,100,25,5,1487.7,4\r\n";
constexpr char kLowLine[] = "INFO:1,200000,60000,0.2,40,87.2,2,15,0.08,1,150,20,-10,1487.7,4\r\n";

constexpr char kOlderLine[] = "INFO:450000,30000,0.5,20,0.0,0,15,0.14,0,150,20,0,1500.0,101\r\n";

std::string Lines(const DeviceSettings& settings, int32_t family, int32_t frequency_hz) {
  InfoLine lines[2];
  const int count = MakeInfoLines(settings, family, frequency_hz, lines);
  std::string text;
  for (int i = 0; i < count; ++i) {
    char line[kInfoLineSize];
    text.append(line, FormatInfoLine(line, lines[i]));
  }
  return text;
}

TEST(InfoLine, EachKindHasItsForm) {
  DeviceSettings settings = Sample();
  EXPECT_EQ(Lines(settings, 1, 450'000), kHighLine);
  EXPECT_EQ(Lines(settings, 1, 200'000), kLowLine);
  EXPECT_EQ(Lines(settings, 2, 450'000),
            "INFO:2,199000,30000,0.2,20,100.0,-4,20,0.14,2,100,25,5,1487.7,4\r\n");
  EXPECT_EQ(Lines(settings, 0, 123), "INFO:0,450000,30000,0.2,20,100.0,-4,20,0.14,2,100,25,5,1487.7,4\r\n");
  settings.pingInterval_ms = 10;
  EXPECT_NE(Lines(settings, 1, 450'000).find(",0.0,"), std::string::npos) << "10 ms writes 0.0";
}

TEST(InfoLine, TwoLinesOnlyForBothChannelsInOneFile) {
  for (const int32_t mode : {2, 4, 5, 6, 7, 8, 9, 100}) {
    for (const int32_t simultaneous : {0, 1}) {
      DeviceSettings settings = Sample();
      settings.outputMode = mode;
      settings.simultaneous = simultaneous;
      InfoLine lines[2];
      const bool two = simultaneous == 1 && mode >= 6 && mode <= 8;
      ASSERT_EQ(MakeInfoLines(settings, 1, 200'000, lines), two ? 2 : 1) << mode << " " << simultaneous;
      EXPECT_EQ(lines[0].frequency_hz, two ? 450'000 : 200'000);
      if (two) {
        EXPECT_EQ(lines[1].frequency_hz, 200'000);
      }
    }
  }
}

TEST(InfoLine, BothFormsAreReadBack) {
  InfoLine info{};
  ASSERT_TRUE(ParseInfoLine(std::string("noise\r\n") + kHighLine + "more", info));
  EXPECT_EQ(info.kind, 1);
  EXPECT_EQ(info.frequency_hz, 450'000);
  EXPECT_EQ(info.gain, -4.f);
  EXPECT_EQ(info.outputMode, 4);
  ASSERT_TRUE(ParseInfoLine(kOlderLine, info));
  EXPECT_EQ(info.kind, 1);
  EXPECT_EQ(info.frequency_hz, 450'000);
  EXPECT_EQ(info.range_mm, 30'000);
  DeviceSettings settings{};
  ApplyInfoLine(info, settings);
  EXPECT_EQ(settings.pingInterval_ms, 500);
  EXPECT_EQ(settings.outputMode, 102);
  EXPECT_EQ(settings.frequencyInUse_hz, 450'000);
  EXPECT_EQ(settings.rangeHigh_mm, 30'000);
  EXPECT_EQ(settings.rangeLow_mm, 0);
  for (const int32_t mode : {2, 99, 100, 102, 103}) {
    info.outputMode = mode;
    ApplyInfoLine(info, settings);
    EXPECT_EQ(settings.outputMode, mode == 100 ? 102 : mode);
  }
}

TEST(InfoLine, EveryTruncationIsNoLine) {
  for (const std::string_view whole : {std::string_view(kHighLine), std::string_view(kOlderLine)}) {
    const size_t lastField = whole.rfind(',') + 1;
    for (size_t length = 0; length <= lastField; ++length) {
      InfoLine info{};
      info.kind = 77;
      EXPECT_FALSE(ParseInfoLine(whole.substr(0, length), info)) << whole.substr(0, length);
      EXPECT_EQ(info.kind, 77);
    }
  }
}

TEST(InfoLine, WhatIsALineAndWhatIsNot) {
  InfoLine info{};
  for (const char* text : {"INFO:1,450000,30000,nan,20,0,0,15,0,0,150,20,0,1500.0,4\r\n",
                           "INFO:1,450000,30000,1e30,20,0,0,15,0,0,150,20,0,1500.0,4\r\n",
                           "INFO:1,99999999999,30000,1,20,0,0,15,0,0,150,20,0,1500.0,4\r\n",
                           "INFO:1,200000,10000,0.1,20,0.0,0\r,15,0.08,0,150,20,0,1500.0,4\r\n",
                           "INFO:1,200000,10000,0.1,20,0.0,0,15,0.08,0,150,20,0,1500.0,\n4\r\n",
                           "info:1,200000,10000,0.1,20,0.0,0,15,0.08,0,150,20,0,1500.0,4\r\n",
                           "INFO:1 ,200000,10000,0.1,20,0.0,0,15,0.08,0,150,20,0,1500.0,4\r\n",
                           "INFO:1;200000,10000,0.1,20,0.0,0,15,0.08,0,150,20,0,1500.0,4\r\n"}) {
    EXPECT_FALSE(ParseInfoLine(text, info)) << text;
  }
  ASSERT_TRUE(ParseInfoLine("INFO:2, 10,10000,.1,20,0,0,15,0.08,0,150,20,0,1500,4 and more", info));
  EXPECT_EQ(info.kind, 2);
  EXPECT_EQ(info.frequency_hz, 10);
  // A first number above ten is a frequency.
  ASSERT_TRUE(ParseInfoLine("INFO:10,9,8,1,20,0,0,15,0,0,150,20,0,1500,4\r\n", info));
  EXPECT_EQ(info.kind, 10);
  EXPECT_EQ(info.range_mm, 8);
  ASSERT_TRUE(ParseInfoLine("INFO:11,9,8,1,20,0,0,15,0,0,150,20,0,1500,4\r\n", info));
  EXPECT_EQ(info.kind, 1);
  EXPECT_EQ(info.frequency_hz, 11);
  EXPECT_EQ(info.range_mm, 9);
}

// Both channels of a recording: each line fills its own side, the low one changes nothing else.
TEST(InfoLine, TheLowChannelsLineFillsTheLowValues) {
  InfoLine high{};
  InfoLine low{};
  ASSERT_TRUE(ParseInfoLine("INFO:1,450000,30000,0.5,20,80,1,15,0.14,2,150,20,5,1500.0,6\r\n", high));
  ASSERT_TRUE(ParseInfoLine("INFO:1,200000,50000,0.5,40,80,-3,20,0.08,4,250,30,-7,1500.0,6\r\n", low));
  DeviceSettings settings{};
  ApplyInfoLine(high, settings);
  ApplyLowInfoLine(low, settings);
  EXPECT_EQ(settings.frequencyInUse_hz, 450'000);
  EXPECT_EQ(settings.lowFrequency_hz, 200'000);
  EXPECT_EQ(settings.rangeHigh_mm, 30'000);
  EXPECT_EQ(settings.rangeLow_mm, 50'000);
  EXPECT_EQ(settings.txLengthLow, 40);
  EXPECT_EQ(settings.gainLow, -3.0f);
  EXPECT_EQ(settings.tvgSpreadingLow, 20.0f);
  EXPECT_EQ(settings.tvgAbsorptionLow, 0.08f);
  EXPECT_EQ(settings.attenuationLow, 4);
  EXPECT_EQ(settings.deadZoneLow_mm, 250);
  EXPECT_EQ(settings.thresholdLow_percent, 30);
  EXPECT_EQ(settings.offsetLow_mm, -7);
  EXPECT_EQ(settings.offsetHigh_mm, 5);
}

class InfoLineFile : public testing::Test {
 protected:
  InfoLineFile() {
    ClearFaults();
    char name[] = "/tmp/tidewriter_info_XXXXXX";
    folder_ = mkdtemp(name);
    state_->settings = Sample();
    globals.deviceFamily = 1;
    file_ = CreateFileAnew((folder_ / "record.log").wstring().c_str());
  }
  ~InfoLineFile() override {
    CloseFile(file_);
    std::filesystem::remove_all(folder_);
    ClearFaults();
  }

  [[nodiscard]] std::string Written() const {
    std::ifstream written(folder_ / "record.log", std::ios::binary);
    return {std::istreambuf_iterator<char>(written), {}};
  }

  std::filesystem::path folder_;
  std::unique_ptr<AppState> state_ = std::make_unique<AppState>();
  Handle file_ = Handle::invalid;
};

TEST_F(InfoLineFile, BothChannelsHighFirst) {
  ASSERT_NE(file_, Handle::invalid);
  state_->settings.outputMode = 7;
  state_->settings.simultaneous = 1;
  WriteInfoLine(state_->settings, file_, 200'000);
  EXPECT_EQ(Written(),
            "INFO:1,450000,30000,0.2,20,87.2,-4,20,0.14,2,100,25,5,1487.7,7\r\n"
            "INFO:1,200000,60000,0.2,40,87.2,2,15,0.08,1,150,20,-10,1487.7,7\r\n");
  EXPECT_EQ(CallCount(FaultPoint::writeFile), 2u) << "one write each";
}

TEST_F(InfoLineFile, AFailedWriteClosesTheFile) {
  state_->settings.outputMode = 6;
  state_->settings.simultaneous = 1;
  for (uint64_t call = 1; call <= 2; ++call) {
    CloseFile(file_);
    file_ = CreateFileAnew((folder_ / "record.log").wstring().c_str());
    ASSERT_NE(file_, Handle::invalid);
    ClearFaults();
    InjectFault({.point = FaultPoint::writeFile, .call = call, .taken = 5});
    WriteInfoLine(state_->settings, file_, 200'000);
    EXPECT_EQ(file_, Handle::invalid);
    EXPECT_EQ(CallCount(FaultPoint::writeFile), call) << "nothing is written after the failure";
    EXPECT_TRUE(Written().ends_with("INFO:"));
  }
}

}  // namespace
}  // namespace tw
