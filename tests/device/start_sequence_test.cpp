#include "device/start_sequence.h"

#include <gtest/gtest.h>

#include "tests/device/line_script.h"

namespace tw {
namespace {

class StartSequence : public test::ScriptedLineTest {};

// All that is sent, in a dual run too, is shown by the sequences of the run control.
TEST_F(StartSequence, APresetInForceDecidesTheOutput) {
  for (const int32_t preset : {3, kNoPreset}) {
    device_.received.clear();
    device_.replies.assign(20, {"\r\n>"});
    link_.facts = {.presetCapable = true, .currentPreset = preset};
    DeviceSettings settings{};
    DeviceSettings applied{};
    settings.outputMode = 4;
    StartDevice(link_, DeviceFamily::first, false, settings, applied);
    EXPECT_TRUE(device_.received.starts_with("#time 1700000000\r")) << device_.received;
    EXPECT_EQ(device_.received.ends_with("#nmeaxdr 1\r#output 4\r#go\r"), preset == kNoPreset);
    EXPECT_EQ(device_.received.ends_with("#nmeaxdr 1\r#go\r"), preset != kNoPreset);
    EXPECT_EQ(applied.outputMode, preset == kNoPreset ? 4 : 0);
  }
}

}  // namespace
}  // namespace tw
