#include "device/settings_writer.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/device/line_script.h"

namespace tw {
namespace {

using S = DeviceSettings;

S Changed(S settings, void (*change)(S&)) {
  change(settings);
  return settings;
}

// What the device has.
S Applied() {
  S settings{};
  settings.lowFrequency_hz = 199'000;
  settings.highFrequency_hz = settings.frequencyInUse_hz = 447'000;
  settings.preset = kNoPreset;
  settings.pingInterval_ms = 250;
  settings.gainHigh = 2.0625f;
  settings.outputRate = 7.5f;
  return settings;
}

class SettingsWriterTest : public test::ScriptedLineTest {
 protected:
  SettingsWriterTest() { link_.facts.presetCapable = link_.facts.smoothingSupported = true; }

  // What goes out to a device that answers this many commands.
  std::string Write(int32_t family, const S& wanted, const S& applied, size_t answers = 40) {
    device_.received.clear();
    device_.replies.assign(answers, {"#x\r\n\r\n>"});
    result_ = WriteChangedSettings(link_, DeviceFamily{family}, wanted, applied);
    return device_.received;
  }

  LinkResult result_ = LinkResult::success;
};

// The whole list in its order is shown by the sequences of the run control.
TEST_F(SettingsWriterTest, OnlyWhatTheDeviceHasNotIsSent) {
  const S high = Applied();
  const S low = Changed(high, [](S& s) { s.frequencyInUse_hz = s.lowFrequency_hz; });
  const S dual = Changed(high, [](S& s) { s.simultaneous = 1; });
  const S dualLow = Changed(low, [](S& s) { s.simultaneous = 1; });
  const S automatic = Changed(high, [](S& s) { s.preset = kAutomaticPreset; });
  const S sameText = Changed(high, [](S& s) {
    s.gainHigh = 2.0624f;        // 2.062
    s.pingInterval_ms = 252;     // 0.25
    s.outputRate = 7.501f;       // 7.50
    s.samplingFrequency_hz = 1;  // told by the device alone
  });
  const S otherText = Changed(high, [](S& s) {
    s.gainHigh = 2.063f;
    s.pingInterval_ms = 0;
  });
  const S extreme = Changed(high, [](S& s) {
    s.gainLow = -3.4028234e38f;
    s.offsetLow_mm = INT32_MIN;
  });
  const struct {
    const char* what;
    int32_t family;
    S wanted, applied;
    std::string sent;
  } rows[] = {
      {"nothing", 1, high, high, ""},
      {"low instead of high", 1, low, high, "#setfreqlow\r"},
      {"high instead of low", 1, high, low, "#setfreqhigh\r"},
      {"both", 1, dual, low, "#setfreqdual\r"},
      {"low instead of both", 1, low, dual, "#setfreqlow\r"},
      {"both are in use already", 1, dualLow, dual, ""},
      {"one frequency only", 2, low, high, ""},
      {"automatic mode", 1, automatic, high, "#auto 1\r"},
      {"no preset any more", 1, high, automatic, "#preset 255\r"},
      {"the same text on the wire", 1, sameText, high, ""},
      {"just another text", 1, otherText, high, "#interval 0.00\r#gainhigh 2.063\r"},
      {"the largest values", 1, extreme, high,
       "#offsetl -2147483648\r#gainlow -340282346638528859811704183484516925440.000\r"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Write(row.family, row.wanted, row.applied), row.sent) << row.what;
    EXPECT_EQ(result_, LinkResult::success) << row.what;
  }
  link_.facts.presetCapable = false;
  EXPECT_EQ(Write(1, automatic, high), "");
}

TEST_F(SettingsWriterTest, FiltersAndOutputRateGoByTheSmoothing) {
  S wanted = Applied();
  wanted.medianFilter = 5;
  wanted.outputRate = 2.f;
  EXPECT_EQ(Write(1, wanted, Applied()), "#medianflt 5\r#outrate 2.00\r");
  wanted.smoothing = 1;
  EXPECT_EQ(Write(1, wanted, Applied()), "#outrate 2.00\r");
  link_.facts.smoothingSupported = false;
  EXPECT_EQ(Write(1, wanted, Applied()), "#medianflt 5\r");
}

TEST_F(SettingsWriterTest, TheFirstCommandThatFailsIsTheLast) {
  const std::string whole =
      "#setfreqlow\r#preset 3\r#output 4\r#gainlow 2.500\r#medianflt 5\r#outrate 2.00\r";
  const S wanted = Changed(Applied(), [](S& s) {
    s.frequencyInUse_hz = s.lowFrequency_hz;
    s.preset = 3;
    s.outputMode = 4;
    s.gainLow = 2.5f;
    s.medianFilter = 5;
    s.outputRate = 2.f;
  });
  size_t end = 0;
  for (size_t answered = 0; end + 1 < whole.size(); ++answered) {
    end = whole.find('\r', end + 1);
    EXPECT_EQ(Write(1, wanted, Applied(), answered), whole.substr(0, end + 1)) << answered;
    EXPECT_EQ(result_, LinkResult::noPrompt);
  }
  InjectFault({.point = FaultPoint::writeLine, .call = 3});
  EXPECT_EQ(Write(1, wanted, Applied()), "#setfreqlow\r");
  EXPECT_EQ(result_, LinkResult::portFailed);
}

}  // namespace
}  // namespace tw
