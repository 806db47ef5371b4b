#include "tools/echotool/checking.h"

#include <algorithm>
#include <cinttypes>

#include "base/text_format.h"
#include "tools/echotool/summary.h"

namespace tw::echotool {
namespace {

constexpr double kFastest_mps = 100.0;
constexpr double kShortest_s = 1.0;  // so that no step below 100 m is a jump: times may be whole seconds

template <typename... Values>
void Line(std::string& out, const std::string& name, const char* format, Values... values) {
  char text[256];
  out += name + ": ";
  out.append(text, FormatText(text, format, values...));
  out += '\n';
}

}  // namespace

void Finding::Note(uint32_t number, double howMuch) {
  if (times++ != 0) return;
  ping = number;
  amount = howMuch;
}

void NumberCheck::Add(uint32_t number) {
  const auto difference = latest_ ? static_cast<int32_t>(number - *latest_) : 0;
  latest_ = number;
  if (difference <= 0) return;
  allEven_ = allEven_ && difference % 2 == 0;
  seconds_ += difference == 2 ? 1 : 0;
  for (int32_t step = 1; step <= 2; ++step) {
    if (difference <= step) continue;
    const auto i = static_cast<size_t>(step - 1);
    const auto count = static_cast<uint64_t>((difference - 1) / step);
    missing_[i] += count;
    gaps_[i].Note(number, static_cast<double>(count));
  }
}

size_t NumberCheck::Step() const {
  constexpr uint64_t kFewest = 2;  // one alone is rather a ping that is missing
  return allEven_ && seconds_ >= kFewest ? 2 : 1;
}

void Check::AddPosition(const RecordedPing& ping, std::optional<int64_t> time_ms) {
  const auto place = PlaceOf(ping);
  if (!place) return;
  if (place_ && place_ms_ && time_ms) {
    const double seconds = static_cast<double>(*time_ms - *place_ms_) / 1'000.0;
    const double way_m = Distance_m(*place_, *place);
    if (way_m > kFastest_mps * std::max(seconds, kShortest_s)) jumps_.Note(ping.header.ping, way_m);
  }
  place_ = place;
  place_ms_ = time_ms;
}

void Check::Add(const RecordedPing& ping, bool isNumbered) {
  Channel& channel = channels_[ping.channel == 0 ? 0 : 1];
  if (isNumbered) channel.numbers.Add(ping.header.ping);
  const auto time_ms = clock_.TimeOf(ping);
  if (time_ms) {
    if (channel.time_ms && *time_ms < *channel.time_ms)
      back_.Note(ping.header.ping, static_cast<double>(*channel.time_ms - *time_ms) / 1'000.0);
    channel.time_ms = time_ms;
  }
  AddPosition(ping, time_ms);
}

std::string Check::Text(const std::string& name, const PingSource& recording) const {
  std::string out;
  if (recording.Skipped() != 0) Line(out, name, "damaged: %s", DamageText(recording).c_str());
  for (size_t i = 0; i < channels_.size(); ++i) {
    const NumberCheck& numbers = channels_[i].numbers;
    if (numbers.Gaps().times != 0)
      Line(out, name,
           "missing: %" PRIu64 " pings of channel %d in %" PRIu64 " gaps, first ahead of ping %" PRIu32,
           numbers.Missing(), static_cast<int>(i) + 1, numbers.Gaps().times, numbers.Gaps().ping);
  }
  if (back_.times != 0)
    Line(out, name, "time: goes back %" PRIu64 " times, first by %.3f s at ping %" PRIu32, back_.times,
         back_.amount, back_.ping);
  if (jumps_.times != 0)
    Line(out, name, "position: jumps %" PRIu64 " times, first by %.0f m at ping %" PRIu32, jumps_.times,
         jumps_.amount, jumps_.ping);
  return out;
}

}  // namespace tw::echotool
