#include "app/settings/control_states.h"

#include "base/shared_value.h"
#include "device/device_link.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {
namespace {

class ControlStates : public RunControlTest {
 protected:
  // The record as it stands in a state; put back at the end of the test.
  void Enter(ProgramState program) {
    StoreShared(state_->devicePort, program == ProgramState::running ? Handle{1'000'000} : Handle::invalid);
    StoreShared(state_->conversionKind, program == ProgramState::converting ? 1 : 0);
    state_->playbackActive = program == ProgramState::playing || program == ProgramState::paused ? 1 : 0;
    state_->playbackPaused = program == ProgramState::paused ? 1 : 0;
    RefreshControlStates(*state_);
  }
  void TearDown() override { Enter(ProgramState::idle); }

  void ExpectUse(const std::vector<int>& controls, bool use, const std::string& where) {
    for (const int id : controls) {
      EXPECT_EQ(Of(id).enabled, use) << where << ", " << id;
      EXPECT_EQ(WhyDisabled(*state_, id) == nullptr, use) << where << ", " << id;
    }
  }
};

constexpr ProgramState kStates[] = {ProgramState::idle, ProgramState::running, ProgramState::playing,
                                    ProgramState::paused, ProgramState::converting};

TEST_F(ControlStates, WhatCanBeUsedWhen) {
  StoreShared(globals.deviceFamily, 1);
  state_->link->facts.presetCapable = true;
  state_->settings.preset = kNoPreset;
  const struct {
    std::vector<int> controls;
    const char* use;  // a letter a state, in the order above: x can be used
  } rows[] = {
      {{ID_DEVICE_PORT, ID_DEVICE_SPEED, ID_GPS_PORT, ID_GPS_SPEED, ID_START}, "x-xxx"},
      {{ID_STOP}, "-xxxx"},
      {{ID_APPLY, ID_DEFAULT, ID_LOW_FREQUENCY, ID_HIGH_FREQUENCY, ID_DUAL_MODE, ID_RANGE, ID_OUTPUT,
        ID_INTERVAL, ID_PRESET},
       "-x---"},
      {{ID_DETAIL}, "-xxx-"},
      {{ID_SHOW_SETTINGS, ID_PLAYBACK, ID_SEGY_CONVERT, ID_MENU_SEGY, ID_MENU_BIN_TO_TXT}, "xxxx-"},
      {{ID_MENU_BAUD}, "xx---"},
      {{ID_MENU_FIND}, "x----"},
      {{ID_RESUME}, "---x-"},
      {{ID_PAUSE}, "--x--"},
      {{ID_BACK, ID_FAST_BACK}, "--xx-"},
      {{ID_RECORD, ID_TIMESTAMP, ID_AUTO_CAPTURE, ID_MENU_FOLDER, ID_MENU_EXIT}, "xxxxx"},
  };
  for (size_t state = 0; state < std::size(kStates); ++state) {
    Enter(kStates[state]);
    EXPECT_EQ(StateOfProgram(*state_), kStates[state]);
    for (const auto& row : rows)
      ExpectUse(row.controls, row.use[state] == 'x', "state " + std::to_string(state));
  }
}

TEST_F(ControlStates, WhatTheDeviceAllows) {
  const struct {
    const char* what;
    int32_t family;
    bool presets;
    int32_t preset;
    std::vector<bool> use;  // of the frequencies, the preset, and the values: output, range, interval
  } rows[] = {
      {"first family, no preset in force", 1, true, kNoPreset, {true, true, true}},
      {"first family, a preset in force", 1, true, 3, {true, true, false}},
      {"first family, automatic mode", 1, true, kAutomaticPreset, {true, true, false}},
      {"first family without presets", 1, false, 3, {true, false, true}},
      {"second family", 2, true, kNoPreset, {false, true, true}},
      {"third family", 0, false, 0, {false, false, true}},
  };
  const std::vector<int> groups[] = {
      {ID_LOW_FREQUENCY, ID_HIGH_FREQUENCY, ID_DUAL_MODE}, {ID_PRESET}, {ID_OUTPUT, ID_RANGE, ID_INTERVAL}};
  for (const auto& row : rows) {
    StoreShared(globals.deviceFamily, row.family);
    state_->link->facts.presetCapable = row.presets;
    state_->settings.preset = row.preset;
    Enter(ProgramState::running);
    for (size_t group = 0; group < std::size(groups); ++group)
      ExpectUse(groups[group], row.use[group], row.what);
  }
}

}  // namespace
}  // namespace tw::test
