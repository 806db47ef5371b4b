#include "app/window/event_mark.h"

#include <cmath>
#include <iterator>
#include <numbers>

#include "acquisition/ping_record.h"
#include "acquisition/time_lines.h"
#include "app/run/run_control.h"
#include "app/state/event_log.h"
#include "app/state/record_channel.h"
#include "base/text_format.h"
#include "display/ring_view.h"
#include "platform/sync.h"

namespace tw {
namespace {

constexpr double kDegreesPerRadian = 180 / std::numbers::pi;
constexpr RecordChannel kChannels[] = {RecordChannel::a, RecordChannel::b};

EventMark MarkOf(const PingHeader& header) {
  EventMark mark{};
  mark.time_ms = int64_t{header.timeOfWork_s} * 1'000;
  mark.ping = header.ping;
  mark.hasDepth = header.altitude_m > 0 && static_cast<double>(header.altitude_m) <= kDeepest_m;
  mark.depth_m = mark.hasDepth ? static_cast<double>(header.altitude_m) : 0;
  mark.latitude_deg = static_cast<double>(header.gpsLatitude_rad) * kDegreesPerRadian;
  mark.longitude_deg = static_cast<double>(header.gpsLongitude_rad) * kDegreesPerRadian;
  mark.hasPosition =
      header.gpsValid == 1 && std::abs(mark.latitude_deg) <= 90 && std::abs(mark.longitude_deg) <= 180;
  return mark;
}

}  // namespace

std::optional<MarkedMoment> TakeMoment(AppState& state) {
  if (!HoldsRun(state) || state.ringA == nullptr) return std::nullopt;
  MarkedMoment moment{};
  int32_t newest = 0;
  for (size_t i = 0; i < std::size(kChannels); ++i) {
    const ChannelView channel = ChannelOf(state, kChannels[i]);
    const Locked held(channel.ringLock);
    moment.ringTimes[i] = channel.ringTime;
    if (i == 0) newest = channel.ringIndex;
  }
  const uint8_t* const slot = SlotAt(*state.ringA, newest);
  if (!HoldsPing(slot)) return std::nullopt;
  moment.mark = MarkOf(ReadHeader(slot));
  return moment;
}

void SetMark(AppState& state, MarkedMoment moment, const wchar_t* word) {
  EventMark& mark = moment.mark;
  mark.number = ++state.marksSet;
  CopyWide(mark.word, word);
  for (size_t i = 0; i < std::size(kChannels); ++i) {
    TimeLine line{moment.ringTimes[i], static_cast<uint32_t>(mark.time_ms / 1'000), mark.number, L""};
    CopyWide(line.word, mark.word);
    AddTimeLine(ChannelOf(state, kChannels[i]).lines, line);
  }
  char detail[512];
  const size_t length = FormatMark(detail, mark);
  LogMark(state, mark.time_ms, {detail, length});
}

}  // namespace tw
