#include "playback/time_search.h"

namespace tw {
namespace {

constexpr uint64_t kNear = uint64_t{64} * 1024;  // bytes that are read on rather than halved once more
constexpr int kPingsWithoutTime = 64;  // a receiver tells the time once a second, a device pings more often

// The first ping behind a place that tells its time.
bool FindTimedPing(PingSource& recording, uint64_t position, RecordedPing& ping) {
  if (!recording.Seek(position)) return false;
  for (int i = 0; i < kPingsWithoutTime && recording.Next(ping); ++i) {
    if (ping.hasTime) return true;
  }
  return false;
}

// The places of the pings from one on, as far as they are ahead of another, the newest `kMostBefore` of them.
struct PlacesAhead {
  uint64_t places[kMostBefore];
  size_t count = 0;      // in all
  bool reached = false;  // the other one has been come to

  PlacesAhead(PingSource& recording, uint64_t from, uint64_t to) {
    RecordedPing ping{};
    if (!recording.Seek(from)) return;
    while (recording.Next(ping)) {
      reached = ping.begin >= to;
      if (reached) return;
      places[count++ % kMostBefore] = ping.begin;
    }
  }
};

}  // namespace

bool SeekToTime(PingSource& recording, int64_t time_ms) {
  uint64_t early = 0;
  uint64_t late = recording.Size();
  RecordedPing ping{};
  bool hasTimes = FindTimedPing(recording, 0, ping);
  if (hasTimes && ping.time_ms >= time_ms) return recording.Seek(0);
  while (late > early && late - early > kNear) {
    const uint64_t middle = early + (late - early) / 2;
    if (!FindTimedPing(recording, middle, ping)) {
      late = middle;
      continue;
    }
    hasTimes = true;
    if (ping.time_ms >= time_ms) {
      late = middle;
    } else {
      early = ping.begin > middle && ping.begin < late ? ping.begin : middle;
    }
  }
  return hasTimes && recording.Seek(early);
}

std::optional<uint64_t> PlaceBefore(PingSource& recording, uint64_t position, size_t count) {
  constexpr uint64_t kFarthest = uint64_t{64} * 1024 * 1024;
  for (uint64_t reach = kNear; reach <= kFarthest; reach *= 4) {
    const uint64_t from = position > reach ? position - reach : 0;
    const PlacesAhead ahead(recording, from, position);
    if (!ahead.reached) return position;
    if (ahead.count >= count) return ahead.places[(ahead.count - count) % kMostBefore];
    if (from == 0) break;
  }
  return std::nullopt;
}

}  // namespace tw
