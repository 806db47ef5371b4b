// The program on a real pseudo terminal and the real clock: the speed goes to the fast one and back, and the
// virtual device looks at how the terminal is set up each time. The line is strict: while the two ends
// differ, each hears noise.
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <thread>

#include "app/settings/control_states.h"
#include "app/window/commands.h"
#include "base/shared_value.h"
#include "tests/app/run_control_fixture.h"
#include "tools/echosim/binding.h"

namespace tw::test {
namespace {

using echosim::Binding;
using echosim::LineFile;

// A device that streams at the other end of a terminal, in a thread of its own.
class TerminalDevice {
 public:
  explicit TerminalDevice(const std::string& link, const std::string& log) {
    EXPECT_TRUE(log_.Create(log));
    std::string error;
    binding_ = std::make_unique<Binding>(sounder_, echosim::OpenTerminal(link, kSpeed_bps, error),
                                         echosim::Reports{.line = &log_}, true);
    EXPECT_NE(binding_->Line(), nullptr) << error;
    thread_ = std::thread([this] { Serve(); });
  }
  ~TerminalDevice() {
    ended_ = true;
    thread_.join();
  }

 private:
  static constexpr int32_t kSpeed_bps = 921'600;

  static sim::SounderOptions Options() {
    sim::SounderOptions options = QuickSounder();
    options.baud = kSpeed_bps;
    options.streaming = true;
    return options;
  }

  void Serve() {
    const auto begin = std::chrono::steady_clock::now();
    while (!ended_) {
      const auto passed = std::chrono::steady_clock::now() - begin;
      binding_->Pump(std::chrono::duration_cast<std::chrono::microseconds>(passed).count());
      echosim::Terminal* const lines[] = {binding_->Line()};
      echosim::WaitForInput(lines, 1'000);
    }
  }

  sim::VirtualEchosounder sounder_{Options()};
  LineFile log_;
  std::unique_ptr<Binding> binding_;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

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
  const std::string link = folder_ / "line";
  const std::string log = folder_ / "settings";
  {
    TerminalDevice device(link, log);
    AttachTerminal(kDeviceLine, link.c_str());
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
  for (std::string word, time, rest; lines >> word >> time && std::getline(lines >> std::ws, rest);) {
    settings.push_back(rest);
  }
  EXPECT_EQ(settings, (std::vector<std::string>{"921600 8N1 none 921600", "921600 8N1 none 3000000",
                                                "3000000 8N1 rtscts 3000000", "3000000 8N1 rtscts 115200",
                                                "115200 8N1 none 115200"}));
}

}  // namespace
}  // namespace tw::test
