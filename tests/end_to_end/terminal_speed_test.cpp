// The program on a real pseudo terminal and the real clock: the speed goes to the fast one and back, and
// echosim looks at how the terminal is set up each time. The line is strict: while the two ends differ, each
// hears noise.
#include <fstream>

#include "app/settings/control_states.h"
#include "app/window/commands.h"
#include "tests/app/run_control_fixture.h"
#include "tests/end_to_end/simulator_process.h"

namespace tw::test {
namespace {

class TerminalSpeed : public RunControlTest {
 protected:
  // Terminals take real time.
  TerminalSpeed() { StopVirtualClock(); }
  ~TerminalSpeed() override {
    StopRun(*state_);
    StartVirtualClock(0);
  }

  // Pings come.
  void ExpectPings(const char* what) {
    const int32_t before = NewestSlot();
    Run(1);
    EXPECT_GT(NewestSlot(), before) << what;
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::running) << what;
    EXPECT_TRUE(Ui().boxes.empty() && Ui().systemErrors.empty()) << what;
  }
};

TEST_F(TerminalSpeed, ToTheFastOneAndBack) {
  const std::string log = folder_ / "settings";
  {
    const SimulatorProcess simulator(TW_ECHOSIM, testFolder_,
                                     {"--samples", "200", "--depth", "4", "--speed", "921600", "--streaming",
                                      "--strict-line", "--line-log", log});
    AttachTerminal(kDeviceLine, (folder_ / "sounder").c_str());
    StartRun(*state_);
    ExpectPings("as it was");
    ChangeSpeed(*state_, 3'000'000);
    ExpectPings("fast");
    ChangeSpeed(*state_, 115'200);
    ExpectPings("back");
    StopRun(*state_);
    ExpectIdle();
  }
  // Without the times; the device's speed stands last. It changes with the answer to a reset, the terminal's
  // when the program opens it anew.
  std::vector<std::string> settings;
  std::ifstream lines(log);
  std::string word, time, rest;
  std::getline(lines, rest);  // what the columns are
  while (lines >> word >> time && std::getline(lines >> std::ws, rest)) settings.push_back(rest);
  EXPECT_EQ(settings, (std::vector<std::string>{"921600 8N1 none 921600", "921600 8N1 none 3000000",
                                                "3000000 8N1 rtscts 3000000", "3000000 8N1 rtscts 115200",
                                                "115200 8N1 none 115200"}));
}

}  // namespace
}  // namespace tw::test
