// What the two things that a file worker can do, play and convert, have in common. File worker only.
#pragma once

#include <cstdint>
#include <memory>

#include "app/state/app_state.h"
#include "app/state/posts.h"
#include "playback/ping_source.h"

namespace tw {

// What belongs to one of the two workers.
struct WorkerSide {
  bool first;
  Handle& input;
  Handle& thread;
  PingSource*& recording;
  Event& stop;
  OwnTexts& texts;
};

class WorkerRun {
 public:
  WorkerRun(AppState& state, const WorkerSide& side)
      : state_(state), side_(side), runNumber_(LoadShared(state.runNumber)) {}
  virtual ~WorkerRun() = default;
  WorkerRun(const WorkerRun&) = delete;
  WorkerRun& operator=(const WorkerRun&) = delete;

  // As long as it takes. True when the input was exhausted.
  [[nodiscard]] virtual bool Run() = 0;

  // Another run has begun meanwhile.
  [[nodiscard]] bool Stale() const { return LoadShared(state_.runNumber) != runNumber_; }

  // The operator wants it over: nobody waits for news of it.
  [[nodiscard]] bool Stopped() const { return stopped_; }

 protected:
  // The event is auto-reset, so a poll that sees it must remember it.
  [[nodiscard]] bool StopAsked() {
    stopped_ = stopped_ || WaitForEvent(side_.stop, 0);
    return stopped_;
  }

  AppState& state_;
  const WorkerSide side_;

 private:
  const uint32_t runNumber_;
  bool stopped_ = false;
};

// A run of a side's recording. Null without memory.
[[nodiscard]] std::unique_ptr<WorkerRun> MakePlayback(AppState& state, const WorkerSide& side,
                                                      PingSource& recording);
// The output of a conversion is segyCompanionA; `conversion` is one of the two.
[[nodiscard]] std::unique_ptr<WorkerRun> MakeConversion(AppState& state, const WorkerSide& side,
                                                        PingSource& recording, Conversion conversion);

// The status bar says why a run cannot go on. One that fails leaves the program idle, which is for the GUI
// thread to do.
void TellFailure(AppState& state, PlaybackEnd failure);

}  // namespace tw
