// The whole program but its window on the real clock, against echosim on pseudo terminals: acquisition, GPS
// and painting at once, workers restarted every second, the run stopped and started every six. What the race
// detector says is the result; the rest shows that there was something to race for.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "acquisition/echo_text_worker.h"
#include "acquisition/time_marks.h"
#include "app/control_ids.h"
#include "app/run_control.h"
#include "app/worker_control.h"
#include "base/shared_value.h"
#include "display/panel.h"
#include "platform/clock.h"
#include "platform/host/documents_folder.h"
#include "platform/host/serial_peer.h"
#include "platform/thread.h"
#include "tests/end_to_end/simulator_process.h"

namespace tw::test {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds kLength{60};
constexpr milliseconds kFrame{50};

// What the view does: both panels, the status line and the marks, from what the workers leave.
class Painter {
 public:
  explicit Painter(AppState& state) : state_(state), pixels_(kWidth * kHeight) {}

  void Paint() {
    const Canvas canvas{pixels_.data(), kWidth, kHeight, kWidth};
    for (const PanelPlace place : {PanelPlace::upper, PanelPlace::lower}) {
      const int32_t top = place == PanelPlace::upper ? 0 : kHeight / 2;
      const PanelLayout layout = LayOutPanel(top, kWidth, kHeight / 2, 96);
      const PanelSource source = DescribePanel(state_, place);
      DrawPanel(source, layout, *scratch_, canvas);
      static_cast<void>(CollectLabels(source, layout));
      if (place == PanelPlace::lower) static_cast<void>(CollectStatus(state_, source, layout, true));
      char text[kMarkTextSize];
      static_cast<void>(CopyMark(globals.marksA, 0, text));
    }
    ++frames_;
  }
  [[nodiscard]] int Frames() const { return frames_; }

 private:
  static constexpr int32_t kWidth = 640;
  static constexpr int32_t kHeight = 480;

  AppState& state_;
  std::vector<Pixel> pixels_;
  std::unique_ptr<PanelScratch> scratch_ = std::make_unique<PanelScratch>();
  int frames_ = 0;
};

// A second of the window's life: frames and the timers that come with them.
void Live(AppState& state, Painter& painter) {
  for (const auto end = Clock::now() + seconds(1); Clock::now() < end;) {
    painter.Paint();
    HandleTimer(state, ID_TIMER_REPAINT);
    std::this_thread::sleep_for(kFrame);
  }
  HandleTimer(state, ID_TIMER_LINK);
}

int32_t NewestSlot(AppState& state) {
  Locked held(state.ringLockA);
  return state.ringIndexA;
}

// As Apply does with the worker, without a word to the device, which streams on.
void RestartWorker(AppState& state) {
  EndAcquisition(state, kWaitForever);
  Reset(state.stopEvent);
  state.acquisitionThread = StartThread(EchoTextWorker, &state);
  ASSERT_NE(state.acquisitionThread, Handle::null);
}

TEST(Race, WorkersRestartWhileTheViewPaints) {
  const TestFolder folder;
  const SimulatorProcess simulator(TW_ECHOSIM, folder,
                                   {"--samples", "400", "--rate", "25", "--mode", "4", "--speed", "921600",
                                    "--dual", "--gps-rate", "10", "--gps-speed", "115200"});
  AppState& state = StartedProgram(folder, L"921600", L"115200");
  StoreShared(globals.timestampTicked, 1);
  Painter painter(state);
  int starts = 0;
  int restarts = 0;
  for (const auto end = Clock::now() + kLength; Clock::now() < end;) {
    StartRun(state);
    ASSERT_NE(state.acquisitionThread, Handle::null) << "start " << starts;
    ++starts;
    const int32_t before = NewestSlot(state);
    for (int i = 0; i < 6; ++i) {
      Live(state, painter);
      if (i == 5) break;
      RestartWorker(state);
      ToggleRecording(state);
      ++restarts;
    }
    EXPECT_NE(NewestSlot(state), before);
    StopRun(state);
  }
  EXPECT_TRUE(Ui().boxes.empty());
  EXPECT_GE(restarts, 5);
  EXPECT_GT(painter.Frames(), 50);
  EXPECT_GT(globals.gpsUpdates, 10u);
  std::printf("%d starts, %d restarts, %d frames\n", starts, restarts, painter.Frames());
  // As in the program, where a worker may outlive its Stop, the state record stays.
  DetachSerialLines();
  SetDocumentsFolder(nullptr);
}

}  // namespace
}  // namespace tw::test
