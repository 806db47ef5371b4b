// The whole program but its window on the real clock. Against echosim on pseudo terminals: acquisition, GPS
// and painting at once, workers restarted every second, the run stopped and started every six. Then a pair of
// recordings, played and steered while the view paints. And runs that lose their link and go on. What the
// race detector says is the result; the rest shows that there was something to race for.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "acquisition/echo_frame.h"
#include "acquisition/echo_text_stream.h"
#include "acquisition/live_worker.h"
#include "app/run/file_run.h"
#include "app/run/worker_control.h"
#include "app/settings/family_controls.h"
#include "app/state/event_log.h"
#include "app/window/commands.h"
#include "app/window/control_ids.h"
#include "app/window/depth_outputs.h"
#include "app/window/file_commands.h"
#include "base/shared_value.h"
#include "display/marks_overlay.h"
#include "display/panel.h"
#include "platform/clock.h"
#include "platform/thread.h"
#include "platform/virtual/documents_folder.h"
#include "platform/virtual/serial_peer.h"
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
      MarkList& marks = place == PanelPlace::lower ? globals.marksB : globals.marksA;
      static_cast<void>(FindShownMarks(marks, layout, source.scale, source.ringTime));
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
  ASSERT_TRUE(HandOver(state, {.form = &kFirstTextStream,
                               .settings = state.appliedSettings,
                               .deviceFamily = FamilyInUse(),
                               .dual = LoadShared(globals.dualMode) != 0,
                               .port = LoadShared(state.devicePort),
                               .runNumber = LoadShared(state.runNumber)}));
  state.acquisitionThread = StartThread(AcquisitionWorker, &state);
  ASSERT_NE(state.acquisitionThread, Handle::null);
}

// What an operator can do to the settings with one click, whichever it is.
void ChooseAnyhow(AppState& state, int cycle) {
  constexpr int kControls[] = {ID_RANGE, ID_INTERVAL, ID_LOW_FREQUENCY, ID_DUAL_MODE, ID_RECORD};
  const int control = kControls[cycle % 5];
  if (control == ID_RANGE) Ui().Choose(control, cycle % 2 == 0 ? L"10" : L"5");
  if (control == ID_INTERVAL) Ui().Choose(control, L"Auto");
  if (control == ID_DUAL_MODE) Ui().controls[control].checked = cycle % 2 == 0;
  if (control != ID_RECORD) return TakeSettingsChoice(state, control);
  Ui().controls[control].checked = !Ui().controls[control].checked;
  ToggleRecording(state);
}

const std::vector<std::string> kInstruments = {"--samples", "400",        "--rate", "25",          "--mode",
                                               "4",         "--speed",    "921600", "--dual",      "--depth",
                                               "4",         "--gps-rate", "10",     "--gps-speed", "115200"};

TEST(Race, WorkersRestartAndChoicesAreMadeWhileTheViewPaints) {
  const TestFolder folder;
  const SimulatorProcess simulator(TW_ECHOSIM, folder, kInstruments);
  AppState& state = StartedProgram(folder, L"921600", L"115200");
  StoreShared(globals.timestampTicked, 1);
  Painter painter(state);
  int starts = 0;
  int restarts = 0;
  for (const auto end = Clock::now() + kLength; Clock::now() < end;) {
    for (void (*const command)(AppState&) : {StartRun, ApplySettings}) {
      command(state);
      ChooseAnyhow(state, starts++);
      ASSERT_NE(state.acquisitionThread, Handle::null) << "start " << starts;
    }
    const int32_t before = NewestSlot(state);
    for (int second = 1; second < 6; ++second) {
      Live(state, painter);
      for (int i = 0; i < 10; ++i) {  // the choice is made while the worker begins
        RestartWorker(state);
        ChooseAnyhow(state, restarts++);
      }
    }
    Live(state, painter);
    EXPECT_NE(NewestSlot(state), before);
    StopRun(state);
  }
  EXPECT_TRUE(Ui().boxes.empty());
  EXPECT_GE(restarts, 50);
  EXPECT_GT(painter.Frames(), 50);
  EXPECT_GT(globals.gpsUpdates, 10u);
  std::printf("%d starts, %d restarts, %d frames\n", starts, restarts, painter.Frames());
  // As in the program, where a worker may outlive its Stop, the state record stays.
  DetachSerialLines();
  SetDocumentsFolder(nullptr);
}

// Ten frames a second for two minutes.
std::wstring WriteRecording(const TestFolder& folder, int32_t frequency_hz) {
  const auto path =
      folder.Path() / ("20250314_093005_Dual_" + std::to_string(frequency_hz / 1000) + "kHz.log");
  std::ofstream file(path, std::ios::binary);
  const std::vector<uint16_t> samples(400, 1'000);
  std::vector<uint8_t> bytes(frame::kWrittenHeaderLength + 2 * samples.size());
  for (uint32_t i = 0; i < 1'200; ++i) {
    PingHeader header{};
    header.ping = i + 1;
    header.timeOfWork_s = 1'700'000'000 + i / 10;
    header.samplingFrequency_hz = 25'000;
    header.sampleCount = static_cast<uint32_t>(samples.size());
    header.txFrequency_hz = frequency_hz;
    header.altitude_m = 1.0f;
    const size_t size = LayOutEchoFrame(header, samples, bytes.data());
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(size));
  }
  return path.wstring();
}

void ChooseReplayAnyhow(AppState& state, uint64_t choice) {
  state.options.skipGaps = static_cast<int32_t>(choice % 2);
  TakeReplayOptions(state);
  if (state.options.playbackBar != 0)
    StoreShared(state.replay.pace_percent, 500 * static_cast<int32_t>(choice / 2 % 3));
}

// One thing that an operator does during a playback, whichever it is.
void SteerAnyhow(AppState& state, uint64_t choice, uint64_t place) {
  constexpr void (*kSteps[])(AppState&, uint64_t) = {
      [](AppState& s, uint64_t) { PausePlayback(s); },
      [](AppState& s, uint64_t) { ResumePlayback(s); },
      [](AppState& s, uint64_t) { StepPlaybackBack(s, kBack20); },
      [](AppState& s, uint64_t) { StepPlaybackBack(s, kBack100); },
      [](AppState& s, uint64_t) { RequestStepOn(s.replay.stepOn, 20); },
      [](AppState& s, uint64_t at) {
        RequestTime(s.replay.timeRequest, 1'700'000'000'000 + static_cast<int64_t>(at % 120'000));
      },
      ChooseReplayAnyhow,
      [](AppState& s, uint64_t at) { RequestSeek(s.seekRequest, at); },
      [](AppState& s, uint64_t at) { RequestSeek(s.seekRequest, at); },
  };
  kSteps[choice % std::size(kSteps)](state, place);
}

TEST(Race, PlaybackIsSteeredWhileTheViewPaints) {
  constexpr seconds kPlayed{20};
  constexpr milliseconds kGesture{15};
  const TestFolder folder;
  AppState& state = StartedProgram(folder, L"921600", L"4800");
  Painter painter(state);
  const std::vector<std::wstring> pair = {WriteRecording(folder, 450'000), WriteRecording(folder, 200'000)};
  const uint64_t size = std::filesystem::file_size(pair[0]);
  std::mt19937_64 random(1);
  int playbacks = 0;
  int pairs = 0;
  for (const auto end = Clock::now() + kPlayed; Clock::now() < end; ++playbacks) {
    state.options.playbackBar = playbacks % 2;
    Ui().chosenFiles = playbacks % 4 == 3 ? std::vector{pair[1]} : pair;
    PlayFiles(state);
    ASSERT_EQ(state.playbackActive, 1) << playbacks;
    for (int i = 0; i < 40; ++i) {
      painter.Paint();
      HandleTimer(state, ID_TIMER_REPAINT);
      if (i % 10 == 0) HandleTimer(state, ID_TIMER_PLAYBACK_END);
      SteerAnyhow(state, random(), random() % size);
      std::this_thread::sleep_for(kGesture);
    }
    pairs += LoadShared(globals.playedFrequencyB_hz) != 0 ? 1 : 0;
    if (playbacks % 3 == 0) StopRun(state);
    if (playbacks % 3 != 1) continue;  // the next one ends it
    Ui().chosenFiles = {pair[0]};
    playbacks % 2 == 0 ? ConvertToSegy(state) : ConvertToText(state);
    painter.Paint();
  }
  StopRun(state);
  EXPECT_TRUE(Ui().boxes.empty());
  EXPECT_GE(playbacks, 3);
  EXPECT_GT(painter.Frames(), 50);
  EXPECT_GE(pairs, 1);
  std::printf("%d playbacks, %d of pairs, %d frames\n", playbacks, pairs, painter.Frames());
  SetDocumentsFolder(nullptr);
}

enum class Loss : uint8_t {
  terminal,  // it dies, and another stands under its name; the device streams on
  stop,      // as `power`, and the operator stops the run on its way back
  silence,   // for a while
  power,     // as `terminal`, but the device begins anew and does not stream
};

// Everything about a run that is a thread of its own, a file or a step of the come-back, again and again.
class LossyRuns {
 public:
  LossyRuns() : state_(StartedProgram(folder_, L"921600", L"115200")), painter_(state_) {
    Options& options = state_.options;
    options.keepRunGoing = options.splitBySize = options.eventLog = options.sendUdp = 1;
    options.silence_s = 1;
    options.splitSize_MB = 0;  // a new file each second
    RestartOutputs(state_);
    DirectEventLog(state_);
  }
  ~LossyRuns() {
    StopOutputs(state_);
    DetachSerialLines();
    SetDocumentsFolder(nullptr);
  }

  void Run(int cycle) {
    const Loss loss{static_cast<uint8_t>(cycle % 4)};
    SwitchOn(true);
    Ui().controls[ID_RECORD].checked = true;
    StartRun(state_);
    ASSERT_NE(state_.acquisitionThread, Handle::null);
    Live(milliseconds(300));
    const uint32_t lost_ms = LoadShared(state_.linkAwaySince_ms);
    Lose(loss);
    LiveUntil([&] { return LoadShared(state_.linkAwaySince_ms) != lost_ms; });
    ASSERT_NE(LoadShared(state_.linkAwaySince_ms), lost_ms) << "the loss was not noticed";
    if (loss == Loss::silence) simulator_->Release();
    if (cycle % 8 < 4) Signal(state_.linkRetry);
    if (loss == Loss::stop) {
      Live(milliseconds(cycle * 370 % 7'000));  // somewhere in the come-back
    } else {
      ASSERT_NO_FATAL_FAILURE(GoOn(cycle));
    }
    StopRun(state_);
    ASSERT_TRUE(Ui().boxes.empty());
  }

  [[nodiscard]] size_t Files() const {
    const std::filesystem::directory_iterator files(folder_.Path() / "TIDEWRITERR57_DATA");
    return static_cast<size_t>(std::distance(begin(files), end(files)));
  }
  [[nodiscard]] int Returns() const { return returns_; }

 private:
  void SwitchOn(bool streaming) {
    std::vector<std::string> words = kInstruments;
    if (streaming) words.emplace_back("--streaming");
    simulator_.reset();
    simulator_.emplace(TW_ECHOSIM, folder_, words);
  }
  void Lose(Loss loss) { loss == Loss::silence ? simulator_->Hold() : SwitchOn(loss == Loss::terminal); }

  void GoOn(int cycle) {
    LiveUntil([&] { return LoadShared(state_.linkAway) == 0; });
    ASSERT_EQ(LoadShared(state_.linkAway), 0) << "the run did not go on";
    ++returns_;
    Live(milliseconds(200));
    ChooseAnyhow(state_, cycle);
    ApplySettings(state_);
    const int32_t before = NewestSlot(state_);
    LiveUntil([&] { return NewestSlot(state_) != before; });
    ASSERT_NE(NewestSlot(state_), before);
  }

  // The window's timer comes more often than each second, so that a split is near everything.
  void Frame() {
    painter_.Paint();
    HandleTimer(state_, ID_TIMER_REPAINT);
    HandleTimer(state_, ID_TIMER_LINK);
    std::this_thread::sleep_for(kFrame);
  }
  void Live(milliseconds length) {
    for (const auto end = Clock::now() + length; Clock::now() < end;) Frame();
  }
  template <typename Happened>
  void LiveUntil(Happened happened) {
    for (const auto end = Clock::now() + seconds(60); !happened() && Clock::now() < end;) Frame();
  }

  const TestFolder folder_;
  AppState& state_;
  Painter painter_;
  std::optional<SimulatorProcess> simulator_;
  int returns_ = 0;
};

TEST(Race, LinksAreLostAndComeBackWhileTheViewPaints) {
  const int cycles = std::getenv("TW_FULL") != nullptr ? 200 : 2;
  LossyRuns runs;
  for (int i = 0; i < cycles; ++i) {
    SCOPED_TRACE(i);
    ASSERT_NO_FATAL_FAILURE(runs.Run(i));
  }
  EXPECT_EQ(runs.Returns(), cycles - (cycles + 2) / 4) << "all but the stopped ones";
  EXPECT_GT(runs.Files(), static_cast<size_t>(cycles) * 2);
  std::printf("%d cycles, %d returns, %zu files\n", cycles, runs.Returns(), runs.Files());
}

}  // namespace
}  // namespace tw::test
