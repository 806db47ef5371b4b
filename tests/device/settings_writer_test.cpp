#include "device/settings_writer.h"

#include <gtest/gtest.h>

#include <string>

#include "app/app_state.h"
#include "tests/device/line_script.h"

namespace tw {
namespace {

DeviceSettings Applied() {
  DeviceSettings s{};
  s.lowFrequency_hz = 200'000;
  s.highFrequency_hz = 450'000;
  s.frequencyInUse_hz = 450'000;
  s.preset = kNoPreset;
  return s;
}

// Every field that is ever sent, changed.
DeviceSettings Changed() {
  DeviceSettings s = Applied();
  s.frequencyInUse_hz = 200'000;
  s.preset = 3;
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
  s.gainLow = -1.5f;
  s.gainHigh = 2.0625f;
  s.tvgSpreadingLow = 15.5f;
  s.tvgSpreadingHigh = 20.f;
  s.tvgAbsorptionLow = 0.06f;
  s.tvgAbsorptionHigh = 0.14f;
  s.txPower = 87.5f;
  s.soundSpeed_mps = 1487.7f;
  s.attenuationLow = 1;
  s.attenuationHigh = 2;
  s.tvgMode = 3;
  s.medianFilter = 5;
  s.movingAverageFilter = 4;
  s.outputRate = 7.5f;
  return s;
}

constexpr char kWholeFirstFamily[] =
    "#setfreqlow\r#preset 3\r#output 4\r#interval 0.25\r#rangel 60000\r#rangeh 30000\r#thresholdl 21\r"
    "#thresholdh 22\r#offsetl -11\r#offseth 12\r#deadzonel 151\r#deadzoneh 152\r#txlengthl 41\r#txlengthh "
    "42\r"
    "#gainlow -1.500\r#gainhigh 2.062\r#tvgsprdl 15.500\r#tvgsprdh 20.000\r#tvgabslow 0.060\r"
    "#tvgabshigh 0.140\r#txpower 87.500\r#sound 1487.700\r#attnl 1\r#attnh 2\r#tvgmode 3\r#medianflt 5\r"
    "#movavgflt 4\r#outrate 7.50\r";

class SettingsWriterTest : public test::ScriptedLineTest {
 protected:
  SettingsWriterTest() {
    globals = Globals{};
    globals.presetCapable = 1;
    globals.smoothingSupported = 1;
  }

  // What goes out to a device that answers this many commands.
  std::string Write(int32_t family, const DeviceSettings& wanted, const DeviceSettings& applied,
                    size_t answers = 40) {
    device_.received.clear();
    device_.replies.assign(answers, {"#x\r\n\r\n>"});
    result_ = WriteChangedSettings(port_, family, wanted, applied);
    return device_.received;
  }

  LinkResult result_ = LinkResult::success;
};

TEST_F(SettingsWriterTest, AllThatIsEverSentInItsOrder) {
  EXPECT_EQ(Write(1, Changed(), Applied()), kWholeFirstFamily);
  EXPECT_EQ(result_, LinkResult::success);
  EXPECT_TRUE(Write(2, Changed(), Applied()).starts_with("#preset 3\r#output 4\r"));
}

TEST_F(SettingsWriterTest, WhatTheDeviceHasIsNotSentAgain) {
  EXPECT_EQ(Write(1, Changed(), Changed()), "");
  DeviceSettings wanted = Changed();
  wanted.gainHigh = 2.0624f;        // 2.062 either way
  wanted.pingInterval_ms = 252;     // 0.25
  wanted.outputRate = 7.501f;       // 7.50
  wanted.samplingFrequency_hz = 1;  // told by the device alone
  wanted.smoothing = 0;
  EXPECT_EQ(Write(1, wanted, Changed()), "");
  wanted.gainHigh = 2.063f;
  wanted.pingInterval_ms = 0;
  EXPECT_EQ(Write(1, wanted, Changed()), "#interval 0.00\r#gainhigh 2.063\r");
}

TEST_F(SettingsWriterTest, TheFrequencySelection) {
  DeviceSettings low = Applied();
  low.frequencyInUse_hz = low.lowFrequency_hz;
  DeviceSettings dual = Applied();
  dual.simultaneous = 1;
  const DeviceSettings high = Applied();
  EXPECT_EQ(Write(1, low, high), "#setfreqlow\r");
  EXPECT_EQ(Write(1, high, low), "#setfreqhigh\r");
  EXPECT_EQ(Write(1, dual, low), "#setfreqdual\r");
  EXPECT_EQ(Write(1, low, dual), "#setfreqlow\r");
  dual.frequencyInUse_hz = dual.lowFrequency_hz;
  DeviceSettings other = dual;
  other.frequencyInUse_hz = other.highFrequency_hz;
  EXPECT_EQ(Write(1, dual, other), "") << "both are in use";
  EXPECT_EQ(Write(2, low, high), "") << "one frequency only";
}

TEST_F(SettingsWriterTest, Presets) {
  DeviceSettings wanted = Applied();
  wanted.preset = kAutomaticPreset;
  EXPECT_EQ(Write(1, wanted, Applied()), "#auto 1\r");
  EXPECT_EQ(Write(1, Applied(), wanted), "#preset 255\r");
  globals.presetCapable = 0;
  EXPECT_EQ(Write(1, wanted, Applied()), "");
}

TEST_F(SettingsWriterTest, FiltersAndOutputRateGoByTheSmoothing) {
  DeviceSettings wanted = Applied();
  wanted.medianFilter = 5;
  wanted.outputRate = 2.f;
  EXPECT_EQ(Write(1, wanted, Applied()), "#medianflt 5\r#outrate 2.00\r");
  wanted.smoothing = 1;
  EXPECT_EQ(Write(1, wanted, Applied()), "#outrate 2.00\r");
  globals.smoothingSupported = 0;
  EXPECT_EQ(Write(1, wanted, Applied()), "#medianflt 5\r");
}

TEST_F(SettingsWriterTest, TheFirstCommandWithoutAPromptIsTheLast) {
  const std::string whole(kWholeFirstFamily);
  size_t end = 0;
  for (size_t answered = 0; end + 1 < whole.size(); ++answered) {
    end = whole.find('\r', end + 1);
    EXPECT_EQ(Write(1, Changed(), Applied(), answered), whole.substr(0, end + 1)) << answered;
    EXPECT_EQ(result_, LinkResult::noPrompt);
  }
  InjectFault({.point = FaultPoint::writeLine, .call = 3});
  EXPECT_EQ(Write(1, Changed(), Applied()), "#setfreqlow\r");
  EXPECT_EQ(result_, LinkResult::portFailed);
}

TEST_F(SettingsWriterTest, TheLargestValuesFitTheirText) {
  DeviceSettings wanted = Applied();
  wanted.gainLow = -3.4028234e38f;
  wanted.offsetLow_mm = INT32_MIN;
  EXPECT_EQ(Write(1, wanted, Applied()),
            "#offsetl -2147483648\r#gainlow -340282346638528859811704183484516925440.000\r");
}

}  // namespace
}  // namespace tw
