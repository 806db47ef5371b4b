// How long the window is without an answer while a command is carried out: what the time limits and the
// retries of the device link come to, whatever the device does. Boxes take no time here.
#include "app/window/commands.h"
#include "platform/clock.h"
#include "platform/virtual/faults.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {
namespace {

struct WaitingCase {
  const char* name;
  bool dead;              // the line is: for Start from the beginning, else in the run
  int32_t replyDelay_ms;  // of a device that answers just in time
  uint32_t most_ms[5];    // by command
};

class Waiting : public RunControlTest, public testing::WithParamInterface<WaitingCase> {};

constexpr struct {
  const char* name;
  void (*carryOut)(AppState& state);
} kCommands[] = {{"Start", StartRun},
                 {"Apply",
                  [](AppState& state) {
                    state.settings.soundSpeed_mps = 1'480.0f;
                    ApplySettings(state);
                  }},
                 {"Default Setting", RestoreDefaults},
                 {"speed", [](AppState& state) { ChangeSpeed(state, 460'800); }},
                 {"Stop", StopRun}};

TEST_P(Waiting, EndsForEachCommandAndFamily) {
  using enum sim::DeviceFamily;
  const WaitingCase& row = GetParam();
  for (size_t i = 0; i < std::size(kCommands); ++i) {
    uint32_t longest_ms = 0;
    for (const sim::DeviceFamily family : {first, second, third}) {
      sim::SounderOptions options = QuickSounder();
      options.family = family;
      if (family == second) options.identity = "42";
      options.faults.replyDelay_ms = row.replyDelay_ms;
      ConnectSounder(options);
      if (i != 0) StartRun(*state_);
      Run(2);
      if (row.dead) SilenceLine(kDeviceLine);
      const uint32_t began_ms = MillisecondClock();
      kCommands[i].carryOut(*state_);
      longest_ms = std::max(longest_ms, MillisecondClock() - began_ms);
      StopRun(*state_);
      RestoreLine(kDeviceLine);
      DetachSerialLines();
    }
    EXPECT_LE(longest_ms, row.most_ms[i]) << kCommands[i].name;
  }
}

INSTANTIATE_TEST_SUITE_P(Devices, Waiting,
                         testing::Values(WaitingCase{"healthy", false, 0, {8'200, 2'100, 2'100, 300, 20}},
                                         WaitingCase{"dead", true, 0, {25'200, 25'200, 25'200, 25'200, 20}},
                                         WaitingCase{
                                             "late", false, 1'900, {103'100, 106'500, 106'500, 15'400, 20}}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace tw::test
