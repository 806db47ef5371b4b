// How long the overview of a recording takes, and how much more memory.
//
//   overview RECORDING
#include <sys/resource.h>

#include <cstdio>
#include <memory>
#include <string>

#include "app/state/overview.h"
#include "base/text_format.h"
#include "bench/measure.h"
#include "platform/file.h"
#include "playback/overview_maker.h"

namespace tw {
namespace {

constexpr double kGibibyte = 1'073'741'824.0;

double Peak_MiB() {
  rusage used{};
  getrusage(RUSAGE_SELF, &used);
  return static_cast<double>(used.ru_maxrss) / 1024.0;
}

int Measure(const wchar_t* path) {
  const auto overview = std::make_unique<Overview>();
  MakeLock(overview->lock);
  const double before_MiB = Peak_MiB();
  RecordingFault fault{};
  const double start_ms = WallClock_ms();
  const auto recording = OpenRecording(path, fault, kUsualSampling_hz, WriteSharing::allowed);
  if (recording == nullptr) return 1;
  OverviewMaker maker(*overview, *recording, {[](void*) { return false; }, nullptr});
  const bool made = maker.Make();
  const double time_ms = WallClock_ms() - start_ms;
  const double size_GiB = static_cast<double>(recording->Size()) / kGibibyte;
  std::printf("overview of %.2f GiB (%s): %.0f ms, that is %.0f ms a GiB, asked below %d; %.1f MiB more\n",
              size_GiB, recording->Kind().name, time_ms, time_ms / size_GiB,
              recording->Kind().isText ? 4'000 : 2'000, Peak_MiB() - before_MiB);
  return made ? 0 : 1;
}

}  // namespace
}  // namespace tw

int main(int count, char** words) {
  if (count != 2) return 2;
  std::wstring path(4096, L'\0');
  path.resize(tw::WidenText(path, words[1]));
  return tw::Measure(path.c_str());
}
