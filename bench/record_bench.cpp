// What recording costs the acquisition thread: a ping handed to the writer against the same ping written by
// the thread itself, in batches that the queue holds, each to a file of its own. Then how long pings of
// 30,000 bytes, ten a second, take until they are with the system, flushed every two seconds.
#include <cstdio>
#include <string>

#include "acquisition/record_file.h"
#include "bench/measure.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "platform/memory.h"

namespace tw {
namespace {

constexpr wchar_t kPath[] = L"record_bench.log";
constexpr uint32_t kBatchBytes = 12'000'000;

// The median of what `put` takes for a batch; opening and closing the file are not counted.
template <typename Open, typename Put, typename Close>
double BatchMilliseconds(uint32_t count, const Open& open, const Put& put, const Close& close) {
  std::array<double, kBenchRuns> times;
  for (double& time : times) {
    open(CreateFileAnew(kPath));
    const double began_ms = WallClock_ms();
    for (uint32_t i = 0; i < count; ++i) put();
    time = WallClock_ms() - began_ms;
    close();
  }
  std::nth_element(times.begin(), times.begin() + kBenchRuns / 2, times.end());
  return times[kBenchRuns / 2];
}

double PlainWrites_ms(const std::string& ping, uint32_t count) {
  Handle file = Handle::invalid;
  uint32_t written = 0;
  return BatchMilliseconds(
      count, [&](Handle opened) { file = opened; },
      [&] {
        static_cast<void>(WriteFileBytes(file, ping.data(), static_cast<uint32_t>(ping.size()), written));
      },
      [&] { CloseFile(file); });
}

// `taken`: no ping was refused.
double HandOvers_ms(AppState& state, const std::string& ping, uint32_t count, bool& taken) {
  const PingToRecord what{.channel = RecordChannel::a, .runNumber = 0, .any = true};
  return BatchMilliseconds(
      count, [&](Handle opened) { PutRecordFile(state, RecordChannel::a, opened); },
      [&] { taken = RecordPing(state, what, ping) == Recorded::handedOver && taken; },
      [&] {
        CloseRecordFile(state, RecordChannel::a);
        taken = AwaitRecords(state, 10'000) && taken;
      });
}

bool Measure(AppState& state, uint32_t size) {
  const std::string ping(size, 'x');
  const uint32_t count = kBatchBytes / (size + 64);
  const double plain_ms = PlainWrites_ms(ping, count);
  bool taken = true;
  const double handed_ms = HandOvers_ms(state, ping, count, taken);
  std::printf("%6u bytes: written %6.2f us a ping, handed over %6.2f us, ratio %.2f\n", size,
              plain_ms * 1'000 / count, handed_ms * 1'000 / count, handed_ms / plain_ms);
  return taken;
}

bool MeasureDelay(AppState& state) {
  constexpr int kPings = 100;
  const std::string ping(30'000, 'x');
  const PingToRecord what{.channel = RecordChannel::a, .runNumber = 0, .any = true};
  StoreShared(state.recordFlushPeriod_ms, 2'000);
  PutRecordFile(state, RecordChannel::a, CreateFileAnew(kPath));
  std::array<double, kPings> delays;
  bool taken = true;
  for (double& delay : delays) {
    SleepMilliseconds(100);
    const double began_ms = WallClock_ms();
    taken = RecordPing(state, what, ping) == Recorded::handedOver && AwaitRecords(state, 10'000) && taken;
    delay = WallClock_ms() - began_ms;
  }
  CloseRecordFile(state, RecordChannel::a);
  std::sort(delays.begin(), delays.end());
  std::printf("with the system after %.2f ms, the slowest of %d after %.2f ms\n", delays[kPings / 2], kPings,
              delays.back());
  return taken;
}

}  // namespace
}  // namespace tw

int main() {
  auto* const state = static_cast<tw::AppState*>(tw::AllocateZeroed(sizeof(tw::AppState)));
  if (state == nullptr) return 1;
  tw::MakeLock(state->recordLock);
  bool taken = true;
  for (const uint32_t size : {250u, 3'000u, 30'000u, 250'000u}) taken = tw::Measure(*state, size) && taken;
  taken = tw::MeasureDelay(*state) && taken;
  tw::FreeRecordWriter(*state);
  static_cast<void>(tw::RemoveFile(tw::kPath));
  return taken ? 0 : 1;
}
