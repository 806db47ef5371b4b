#include "app/run/record_split.h"

#include "acquisition/record_file.h"
#include "app/run/record_opening.h"
#include "base/calendar.h"
#include "base/shared_value.h"
#include "platform/clock.h"

namespace tw {
namespace {

constexpr uint64_t kMegabyte = 1'000'000;

bool IsOpen(AppState& state) {
  return IsRecordFileOpen(state, RecordChannel::a) || IsRecordFileOpen(state, RecordChannel::b);
}

bool IsOffered(AppState& state, RecordChannel channel) {
  const Locked held(state.recordLock);
  return ChannelOf(state, channel).nextRecord != Handle::invalid;
}

// A clock that was set back begins no new file, and none a second time.
bool IsDueByTime(AppState& state) {
  const int64_t now = SplitPeriodNow(state);
  if (now < state.splitPeriod) state.splitPeriod = now;
  return now > state.splitPeriod;
}

bool IsDueBySize(AppState& state) {
  const auto limit = static_cast<uint64_t>(state.options.splitSize_MB) * kMegabyte;
  return state.options.splitBySize != 0 && RecordedBytes(state, LoadShared(state.recordingNumber)) >= limit;
}

}  // namespace

int64_t SplitPeriodNow(const AppState& state) {
  if (state.options.splitByTime == 0) return 0;
  return UnixSecondsFromCalendar(LocalNow()) / 60 / state.options.splitPeriod_min;
}

void SplitWhenDue(AppState& state) {
  const bool offersA = IsOffered(state, RecordChannel::a);
  const bool offersB = IsOffered(state, RecordChannel::b);
  // One of a pair that the worker has left: its file was ended by the disk.
  if (offersB && !offersA) return TakeBackOffers(state);
  if (offersA || !IsOpen(state) || !(IsDueByTime(state) || IsDueBySize(state))) return;
  if (SplitRecordFiles(state)) state.splitPeriod = SplitPeriodNow(state);
}

}  // namespace tw
