#include "device/start_sequence.h"

#include <gtest/gtest.h>

#include <memory>
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
    int32_t presetCapable, preset, mode;
    std::string sent;
    int32_t started;  // the mode that is remembered as sent; 0: none was
  } rows[] = {
      {"single", false, 0, 3, 4, single + "#output 4\r#go\r", 4},
      {"dual: the high range for both", true, 0, 3, 4,
       "#nmeadpt 1\r#nmeaema 1\r#output 4\r#range 30000\r#go\r", 4},
      {"a preset in force decides the output", false, 1, 3, 4, single + "#go\r", 0},
      {"preset 255 is none", false, 1, kNoPreset, 4, single + "#output 4\r#go\r", 4},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    device_.received.clear();
    device_.replies.assign(20, {"\r\n>"});
    globals = Globals{};
    globals.deviceFamily = 1;
    globals.dualMode = row.dual ? 1 : 0;
    globals.presetCapable = row.presetCapable;
    globals.currentPreset = row.preset;
    const auto state = std::make_unique<AppState>();
    state->devicePort = port_;
    state->settings.outputMode = row.mode;
    state->settings.rangeLow_mm = 10'000;
    state->settings.rangeHigh_mm = 30'000;
    StartDevice(*state);
    EXPECT_EQ(device_.received, "#time 1700000000\r" + row.sent);
    EXPECT_EQ(state->appliedSettings.outputMode, row.started);
    EXPECT_EQ(state->settings.tvgMode, row.dual ? 0 : 1);
    EXPECT_EQ(state->settings.rangeLow_mm, row.dual ? 30'000 : 10'000);
    EXPECT_EQ(state->appliedSettings.rangeLow_mm, row.dual ? 30'000 : 0);
  }
}

}  // namespace
}  // namespace tw
