#include "device/start_sequence.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/device/line_script.h"

namespace tw {
namespace {

class StartSequence : public test::ScriptedLineTest {};

TEST_F(StartSequence, GoesByModeAndPreset) {
  const std::string single =
      "#tvgmode 1\r#pingonce 0\r#nmeadpzero 1\r#nmeadbt 1\r#nmeadpt 0\r#nmeamtw 1\r#nmeaema 1\r#nmeazda 1\r"
      "#nmeaxdr 1\r";
  const struct {
    const char* what;
    bool dual;
    bool presetCapable;
    int32_t preset, mode;
    std::string sent;
    int32_t started;  // the mode that is remembered as sent; 0: none was
  } rows[] = {
      {"single", false, false, 3, 4, single + "#output 4\r#go\r", 4},
      {"dual: the high range for both", true, false, 3, 4,
       "#nmeadpt 1\r#nmeaema 1\r#output 4\r#range 30000\r#go\r", 4},
      {"a preset in force decides the output", false, true, 3, 4, single + "#go\r", 0},
      {"preset 255 is none", false, true, kNoPreset, 4, single + "#output 4\r#go\r", 4},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    device_.received.clear();
    device_.replies.assign(20, {"\r\n>"});
    link_.facts = {.presetCapable = row.presetCapable, .currentPreset = row.preset};
    DeviceSettings settings{};
    DeviceSettings applied{};
    settings.outputMode = row.mode;
    settings.rangeLow_mm = 10'000;
    settings.rangeHigh_mm = 30'000;
    StartDevice(link_, DeviceFamily::first, row.dual, settings, applied);
    EXPECT_EQ(device_.received, "#time 1700000000\r" + row.sent);
    EXPECT_EQ(applied.outputMode, row.started);
    EXPECT_EQ(settings.tvgMode, row.dual ? 0 : 1);
    EXPECT_EQ(settings.rangeLow_mm, row.dual ? 30'000 : 10'000);
    EXPECT_EQ(applied.rangeLow_mm, row.dual ? 30'000 : 0);
  }
}

}  // namespace
}  // namespace tw
