#include "playback/file_worker.h"

#include <utility>

#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "platform/thread.h"
#include "playback/worker_run.h"

namespace tw {
namespace {

constexpr uint32_t kTellAgain_ms = 10;
constexpr uint32_t kThreadFieldWait_ms = 1;

struct WorkerEnd {
  bool exhausted;  // all of the input was read
  bool stopped;    // the operator wanted it
};

// Again and again while the message queue is full. Whoever waits for this worker's end meanwhile need not be
// told.
void TellConversionEnd(AppState& state, const WorkerSide& side, WorkerEnd end) {
  while (!PostConversionEnd(state, end.exhausted)) {
    if (end.stopped || WaitForEvent(side.stop, kTellAgain_ms)) return;
  }
}

// The thread field goes last: whoever finds it empty may use the other fields anew. The GUI thread fills it
// once the thread has started, which a short run may precede.
void Finish(AppState& state, const WorkerSide& side, WorkerEnd end) {
  const Handle input = ExchangeShared(side.input, Handle::invalid);
  static_cast<void>(SeekFile(input, 0));
  CloseFile(input);
  if (ConversionUnderWay(state) != Conversion::none) {
    CloseFile(ExchangeShared(state.segyCompanionA, Handle::invalid));
    SetConversion(state, Conversion::none);
    TellConversionEnd(state, side, end);
  }
  Handle thread = ExchangeShared(side.thread, Handle::null);
  while (thread == Handle::null) {
    SleepMilliseconds(kThreadFieldWait_ms);
    thread = ExchangeShared(side.thread, Handle::null);
  }
  CloseThread(thread);
}

std::unique_ptr<WorkerRun> MakeRun(AppState& state, const WorkerSide& side, PingSource& recording) {
  const Conversion conversion = ConversionUnderWay(state);
  return conversion == Conversion::none ? MakePlayback(state, side, recording)
                                        : MakeConversion(state, side, recording, conversion);
}

void RunFileWorker(AppState& state, const WorkerSide& side) {
  std::unique_ptr<PingSource> recording(ExchangeShared(side.recording, nullptr));
  auto run = recording == nullptr ? nullptr : MakeRun(state, side, *recording);
  if (run == nullptr) {
    TellFailure(state, kPlaybackWithoutMemory);
    recording.reset();
    return Finish(state, side, {});
  }
  const bool exhausted = run->Run();
  const WorkerEnd end{exhausted, run->Stopped()};
  const bool stale = run->Stale();
  run.reset();
  recording.reset();
  if (!stale) Finish(state, side, end);
}

}  // namespace

void TellFailure(AppState& state, PlaybackEnd failure) {
  PostStatusText(state, StatusPart::position, PlaybackFailureText(failure));
  if (ConversionUnderWay(state) == Conversion::none) StoreShared(globals.playbackEnded, failure);
}

const wchar_t* PlaybackFailureText(PlaybackEnd end) {
  return end == kPlaybackWithoutMemory ? kWithoutMemoryText : L"The file cannot be read!";
}

void HandOver(PingSource*& place, std::unique_ptr<PingSource> recording) {
  delete ExchangeShared(place, recording.release());
}

void FileWorkerA(void* argument) {
  static constinit OwnTexts texts{};
  AppState& state = *static_cast<AppState*>(argument);
  RunFileWorker(state, {true, state.inputFileA, state.fileWorkerA, state.recordingA, state.stopEvent, texts});
}

void FileWorkerB(void* argument) {
  static constinit OwnTexts texts{};
  AppState& state = *static_cast<AppState*>(argument);
  RunFileWorker(state,
                {false, state.inputFileB, state.fileWorkerB, state.recordingB, state.stopEventB, texts});
}

}  // namespace tw
