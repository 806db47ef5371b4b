#include "playback/overview_maker.h"

#include <algorithm>
#include <cmath>

#include "acquisition/ping_ring.h"
#include "app/state/display_palette.h"
#include "app/state/replay_state.h"

namespace tw {
namespace {

constexpr uint32_t kReadSize = 16 * 1024;
constexpr uint64_t kLongestPing = 256'000;  // bytes
constexpr int kReadsOfColumn = 64;          // more than the longest ping and the rest of the one before
constexpr int kReadsOfEnd = 8'192;
constexpr size_t kCoarsest = 64;  // columns at a time
constexpr int kPingsWithoutTime = 64;

// How many samples of the ping stand for a length of water.
double SamplesIn(const RecordedPing& ping, double length_m, float soundSpeed_mps) {
  if (!(soundSpeed_mps > 0.0f)) return 0.0;
  return 2.0 * length_m / static_cast<double>(soundSpeed_mps) * ping.header.samplingFrequency_hz;
}

// Of 12 bits the upper ones.
uint8_t StrongestOf(std::span<const uint16_t> samples, uint16_t factor) {
  if (samples.empty()) return 0;
  const uint32_t strongest = uint32_t{*std::max_element(samples.begin(), samples.end())} * factor;
  return static_cast<uint8_t>(std::min<uint32_t>(strongest, kPaletteEntries - 1) >> 4);
}

void TakeEchoes(const RecordedPing& ping, double samplesInReach, uint8_t (&echoes)[kOverviewRows]) {
  const auto count = static_cast<double>(ping.samples.size());
  const auto place = [&](size_t row) {
    const double at = samplesInReach * static_cast<double>(row) / static_cast<double>(kOverviewRows);
    return static_cast<size_t>(std::clamp(at, 0.0, count));
  };
  for (size_t row = 0; row < kOverviewRows; ++row) {
    const size_t from = place(row);
    echoes[row] = StrongestOf(ping.samples.subspan(from, place(row + 1) - from), ping.factor);
  }
}

float DepthOf(const RecordedPing& ping) {
  const float altitude_m = ping.header.altitude_m;
  return std::isfinite(altitude_m) && altitude_m > 0.0f ? altitude_m : 0.0f;
}

uint64_t PlaceOf(size_t column, uint64_t size) {
  return size / kOverviewColumns * column + size % kOverviewColumns * column / kOverviewColumns;
}

}  // namespace

OverviewMaker::OverviewMaker(Overview& overview, PingSource& recording, const Interruption& asked)
    : overview_(overview), recording_(recording), asked_(asked) {
  recording_.SetReadSize(kReadSize);
  recording_.SetInterruption(
      {[](void* maker) { return static_cast<OverviewMaker*>(maker)->IsEnough(); }, this});
}

// Garbage is not read on for good.
bool OverviewMaker::IsEnough() {
  return IsAsked() || ++reads_ > mostReads_;
}

bool OverviewMaker::Find(uint64_t position, RecordedPing& ping) {
  reads_ = 0;
  mostReads_ = kReadsOfColumn;
  return recording_.Seek(position) && recording_.Next(ping);
}

bool OverviewMaker::Make() {
  recording_.Measure();
  size_ = recording_.Size();
  LookForBegin();
  LookForEnd();
  for (size_t stride = kCoarsest; stride > 0; stride /= 2) {
    for (size_t i = 0; i < kOverviewColumns; i += stride) {
      const bool known = stride != kCoarsest && i % (2 * stride) == 0;
      if (known) continue;
      const OverviewColumn column = Look(i);
      if (IsAsked()) return false;
      Put(i, stride, column);
    }
  }
  return !IsAsked();
}

bool OverviewMaker::HasGrown(bool& much) {
  recording_.Measure();
  const uint64_t now = recording_.Size();
  if (now == endSize_) return false;
  LookForEnd();
  much = now < size_ || now - size_ > now / kOverviewColumns;
  return true;
}

// The first ping tells how far down the echoes reach.
void OverviewMaker::LookForBegin() {
  RecordedPing ping{};
  bool found = Find(0, ping);
  const double perMetre = found ? SamplesIn(ping, 1.0, recording_.Kind().soundSpeed_mps) : 0.0;
  reach_m_ = perMetre > 0.0 ? static_cast<double>(ping.samples.size()) / perMetre : 0.0;
  for (int i = 0; found && !ping.hasTime && i < kPingsWithoutTime; ++i) found = recording_.Next(ping);
  const Locked held(overview_.lock);
  overview_.reach_m = static_cast<float>(reach_m_);
  overview_.begin_ms = found && ping.hasTime ? ping.time_ms : kNoRecordedTime;
  ++overview_.changes;
}

// The last ping that tells a time, looked for in a longer and longer last part of the file.
void OverviewMaker::LookForEnd() {
  constexpr uint64_t kShortest = uint64_t{64} * 1024;
  constexpr uint64_t kLongest = uint64_t{16} * 1024 * 1024;
  int64_t end_ms = kNoRecordedTime;
  endSize_ = recording_.Size();
  for (uint64_t part = kShortest; end_ms == kNoRecordedTime && part <= kLongest && !IsAsked(); part *= 4) {
    RecordedPing ping{};
    bool found = Find(endSize_ - std::min(part, endSize_), ping);
    mostReads_ = kReadsOfEnd;
    for (; found; found = recording_.Next(ping)) {
      if (ping.hasTime) end_ms = ping.time_ms;
    }
    if (part >= endSize_) break;
  }
  const Locked held(overview_.lock);
  overview_.end_ms = end_ms;
  ++overview_.changes;
}

// Where the first ping stands beyond the column there is none in it, unless the columns are shorter than
// pings.
OverviewColumn OverviewMaker::Look(size_t column) {
  const uint64_t begin = PlaceOf(column, size_);
  const uint64_t end = PlaceOf(column + 1, size_);
  RecordedPing ping{};
  if (!Find(begin, ping)) {
    const bool last = column > 0 && size_ - begin < kLongestPing;
    return last ? overview_.columns[column - 1] : OverviewColumn{};  // this thread alone writes them
  }
  if (ping.begin >= std::max(end, begin + kLongestPing)) return {};
  OverviewColumn looked{true, {}, DepthOf(ping)};
  TakeEchoes(ping, SamplesIn(ping, reach_m_, recording_.Kind().soundSpeed_mps), looked.echoes);
  return looked;
}

void OverviewMaker::Put(size_t first, size_t count, const OverviewColumn& column) {
  const Locked held(overview_.lock);
  std::fill_n(overview_.columns + first, count, column);
  overview_.fileSize = size_;
  ++overview_.changes;
}

}  // namespace tw
