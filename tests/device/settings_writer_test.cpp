#include "device/settings_writer.h"

#include <gtest/gtest.h>

#include <string>

#include "app/app_state.h"
#include "tests/device/line_script.h"
#include "tests/device/sample_settings.h"

namespace tw {
namespace {

using S = DeviceSettings;
using test::SampleSettings;

S Changed(S settings, void (*change)(S&)) {
  change(settings);
  return settings;
}

// What the device has: nothing but its frequencies.
S Applied() {
  S settings{};
  settings.lowFrequency_hz = 199'000;
  settings.highFrequency_hz = settings.frequencyInUse_hz = 447'000;
  settings.preset = kNoPreset;
  return settings;
}

constexpr char kWholeFirstFamily[] =
    "#setfreqlow\r#preset 3\r#output 4\r#interval 0.25\r#rangel 60000\r#rangeh 30000\r#thresholdl 21\r"
    "#thresholdh 22\r#offsetl -11\r#offseth 12\r#deadzonel 151\r#deadzoneh 152\r#txlengthl 41\r"
    "#txlengthh 42\r#gainlow 2.500\r#gainhigh -3.500\r#tvgsprdl 15.000\r#tvgsprdh 20.000\r"
    "#tvgabslow 0.080\r#tvgabshigh 0.140\r#txpower 87.250\r#sound 1487.650\r#attnl 1\r#attnh 2\r#tvgmode 3\r"
    "#medianflt 5\r#movavgflt 4\r#outrate 7.50\r";
constexpr char kWholeSecondFamily[] =
    "#preset 3\r#output 4\r#interval 0.25\r#range 30000\r#threshold 22\r#offset 12\r#deadzone 152\r"
    "#txlength 42\r#gain -3.500\r#tvgsprd 20.000\r#tvgabs 0.140\r#sound 1487.650\r#tvgmode 3\r#medianflt 5\r"
    "#movavgflt 4\r#outrate 7.50\r";

class SettingsWriterTest : public test::ScriptedLineTest {
 protected:
  SettingsWriterTest() {
    globals = Globals{};
    globals.presetCapable = 1;
    globals.smoothingSupported = 1;
  }

  // What goes out to a device that answers this many commands.
  std::string Write(int32_t family, const S& wanted, const S& applied, size_t answers = 40) {
    device_.received.clear();
    device_.replies.assign(answers, {"#x\r\n\r\n>"});
    result_ = WriteChangedSettings(port_, family, wanted, applied);
    return device_.received;
  }

  LinkResult result_ = LinkResult::success;
};

TEST_F(SettingsWriterTest, WhatTheDeviceHasNotIsSentInItsOrder) {
  const S all = SampleSettings();
  const S high = Applied();
  const S low = Changed(high, [](S& s) { s.frequencyInUse_hz = s.lowFrequency_hz; });
  const S dual = Changed(high, [](S& s) { s.simultaneous = 1; });
  const S dualLow = Changed(low, [](S& s) { s.simultaneous = 1; });
  const S automatic = Changed(high, [](S& s) { s.preset = kAutomaticPreset; });
  const struct {
    const char* what;
    int32_t family;
    S wanted, applied;
    std::string sent;
  } rows[] = {
      {"all", 1, all, high, kWholeFirstFamily},
      {"all of a device with one channel", 2, all, high, kWholeSecondFamily},
      {"nothing", 1, all, all, ""},
      {"low instead of high", 1, low, high, "#setfreqlow\r"},
      {"high instead of low", 1, high, low, "#setfreqhigh\r"},
      {"both", 1, dual, low, "#setfreqdual\r"},
      {"low instead of both", 1, low, dual, "#setfreqlow\r"},
      {"both are in use already", 1, dualLow, dual, ""},
      {"one frequency only", 2, low, high, ""},
      {"automatic mode", 1, automatic, high, "#auto 1\r"},
      {"no preset any more", 1, high, automatic, "#preset 255\r"},
      {"the same text on the wire", 1,
       Changed(all,
               [](S& s) {
                 s.gainLow = 2.4996f;         // 2.500
                 s.pingInterval_ms = 252;     // 0.25
                 s.outputRate = 7.501f;       // 7.50
                 s.samplingFrequency_hz = 1;  // told by the device alone
               }),
       all, ""},
      {"just another text", 1,
       Changed(all,
               [](S& s) {
                 s.gainLow = 2.501f;
                 s.pingInterval_ms = 0;
               }),
       all, "#interval 0.00\r#gainlow 2.501\r"},
      {"the largest values", 1,
       Changed(high,
               [](S& s) {
                 s.gainLow = -3.4028234e38f;
                 s.offsetLow_mm = INT32_MIN;
               }),
       high, "#offsetl -2147483648\r#gainlow -340282346638528859811704183484516925440.000\r"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Write(row.family, row.wanted, row.applied), row.sent) << row.what;
    EXPECT_EQ(result_, LinkResult::success) << row.what;
  }
  globals.presetCapable = 0;
  EXPECT_EQ(Write(1, automatic, high), "");
}

TEST_F(SettingsWriterTest, FiltersAndOutputRateGoByTheSmoothing) {
  S wanted = Applied();
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
    EXPECT_EQ(Write(1, SampleSettings(), Applied(), answered), whole.substr(0, end + 1)) << answered;
    EXPECT_EQ(result_, LinkResult::noPrompt);
  }
  InjectFault({.point = FaultPoint::writeLine, .call = 3});
  EXPECT_EQ(Write(1, SampleSettings(), Applied()), "#setfreqlow\r");
  EXPECT_EQ(result_, LinkResult::portFailed);
}

}  // namespace
}  // namespace tw
