#include "app/run/run_watch.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <utility>

#include "app/run/record_opening.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "gps/receiver_watch.h"
#include "platform/file.h"
#include "platform/thread.h"

namespace tw {
namespace {

constexpr uint32_t kAskPeriod_ms = 10'000;
constexpr uint64_t kRoomToGoOn_bytes = uint64_t{8} * 1024 * 1024;
constexpr uint32_t kShortestSilence_ms = 3'000;
constexpr uint32_t kIntervalsWithoutPing = 3;
constexpr double kLongestInterval_ms = 10'000;  // of one that is measured: a gap is none

struct SpaceQuestion {
  AppState& state;
  wchar_t folder[kWorkingFolderSize];
};

// Thread body.
void AnswerSpace(void* argument) {
  const std::unique_ptr<SpaceQuestion> question(static_cast<SpaceQuestion*>(argument));
  AppState& state = question->state;
  uint64_t bytes = 0;
  const bool known = FreeSpace(question->folder, bytes);
  StoreShared(state.freeSpace_bytes, known ? bytes : kUnknownSpace);
  StoreShared(state.spaceAnswers, LoadShared(state.spaceAnswers) + 1);
  StoreShared(state.spaceAsked, 0);
}

// Without a thread or memory for it nothing is told this time.
void AskSpace(AppState& state) {
  if (ExchangeShared(state.spaceAsked, 1) != 0) return;
  std::unique_ptr<SpaceQuestion> question(new (std::nothrow) SpaceQuestion{.state = state, .folder = {}});
  if (question != nullptr) {
    CopyWide(question->folder, state.workingFolder);
    const Handle thread = StartThread(AnswerSpace, question.get());
    if (thread != Handle::null) {
      static_cast<void>(question.release());  // the thread's
      return CloseThread(thread);
    }
  }
  StoreShared(state.spaceAsked, 0);
}

// From one question to the next; the first one of a recording only begins. The mean of a few, so that
// changing depths do not show.
void TakeRate(AppState& state, uint32_t elapsed_ms) {
  RunWatch& watch = state.watch;
  const uint64_t now_bytes = LoadShared(state.recordedBytes);
  const uint32_t number = LoadShared(state.recordingNumber);
  const bool goesOn = std::exchange(watch.recordingNumber, number) == number;
  const uint64_t from_bytes = std::exchange(watch.rateFrom_bytes, now_bytes);
  if (!goesOn) watch.rateOfOther = 1;
  if (!goesOn || now_bytes <= from_bytes || elapsed_ms == 0) return;
  const uint64_t rate_Bps = (now_bytes - from_bytes) * 1000 / elapsed_ms;
  const bool first = watch.rate_Bps == 0 || std::exchange(watch.rateOfOther, 0) != 0;
  watch.rate_Bps = first ? rate_Bps : (3 * watch.rate_Bps + rate_Bps) / 4;
}

void AskWhenDue(AppState& state, uint32_t now_ms) {
  RunWatch& watch = state.watch;
  const uint32_t elapsed_ms = now_ms - watch.asked_ms;
  const bool first = watch.answers == 0 && LoadShared(state.spaceAnswers) == 0;
  if (elapsed_ms < kAskPeriod_ms && !first) return;
  watch.asked_ms = now_ms;
  TakeRate(state, elapsed_ms);
  AskSpace(state);
}

// A full disk may have room again.
void GoOnRecording(AppState& state) {
  const uint64_t free_bytes = LoadShared(state.freeSpace_bytes);
  if (state.options.recordAgain == 0 || FaultOfRecording(state) != RecordFault::diskFull) return;
  if (free_bytes == kUnknownSpace || free_bytes < kRoomToGoOn_bytes) return;
  OpenRecordFiles(state, NamingMoment::recordSwitchedOn);
}

// True at the first look at a fault. An answer that was asked for before it says nothing about the time
// after.
bool IsFreshFault(AppState& state, uint32_t now_ms) {
  RunWatch& watch = state.watch;
  const bool fault = FaultOfRecording(state) != RecordFault::none;
  const bool fresh = fault && std::exchange(watch.faultTold, 1) == 0;
  if (!fault) watch.faultTold = 0;
  if (fresh) {
    watch.asked_ms = now_ms;
    watch.answers = LoadShared(state.spaceAnswers);
  }
  return fresh;
}

void KeepRecordedTime(AppState& state, uint32_t now_ms) {
  state.watch.recorded_ms = Recorded_ms(state, now_ms);
  state.watch.recordTick_ms = now_ms;
}

double LongestInterval_ms(double set_ms, double measured_ms) {
  if (set_ms > 0) return set_ms;
  return std::isfinite(measured_ms) ? std::clamp(measured_ms, 0.0, kLongestInterval_ms) : 0.0;
}

}  // namespace

bool WantsRecording(AppState& state) {
  return state.acquisitionThread != Handle::null && WaitForEvent(state.recordingEvent, 0);
}

uint64_t Recorded_ms(const AppState& state, uint32_t now_ms) {
  return state.watch.recorded_ms + Elapsed_ms(state.watch.recordTick_ms, now_ms);
}

RecordFault FaultOfRecording(const AppState& state) {
  return RecordFault{LoadShared(state.recordFault)};
}

uint32_t SecondsWithoutPing(const AppState& state, uint32_t now_ms) {
  if (state.acquisitionThread == Handle::null) return 0;
  const uint32_t silent_ms = Elapsed_ms(LoadShared(state.lastPing_ms), now_ms);
  const double interval_ms =
      LongestInterval_ms(static_cast<double>(LoadShared(globals.pingInterval_ms)),
                         static_cast<double>(LoadShared(globals.measuredPingInterval_ms)));
  const bool worthTelling =
      silent_ms >= kShortestSilence_ms && silent_ms >= kIntervalsWithoutPing * interval_ms;
  return worthTelling ? silent_ms / 1000 : 0;
}

bool WatchRun(AppState& state, uint32_t now_ms) {
  const Options& options = state.options;
  const int32_t drop_s = options.dropSilentPosition != 0 ? options.receiverSilence_s : 0;
  StoreShared(state.dropPositionAfter_ms, static_cast<uint32_t>(drop_s) * 1000);
  KeepRecordedTime(state, now_ms);
  if (!WantsRecording(state)) return false;
  const bool fresh = IsFreshFault(state, now_ms);
  AskWhenDue(state, now_ms);
  const uint32_t answers = LoadShared(state.spaceAnswers);
  if (std::exchange(state.watch.answers, answers) != answers) GoOnRecording(state);
  return fresh;
}

}  // namespace tw
