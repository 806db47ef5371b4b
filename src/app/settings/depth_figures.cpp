#include "app/settings/depth_figures.h"

#include <cmath>

#include "app/state/depth_text.h"
#include "base/text_format.h"

namespace tw {
namespace {

constexpr const char* kNoAlarm = nullptr;

const char* AlarmOf(const DepthFacts& facts, float altitude_m) {
  if (facts.source != DepthSource::device) return kNoAlarm;
  if (facts.shallow_m > 0 && altitude_m < facts.shallow_m) return "SHALLOW";
  if (facts.deep_m > 0 && altitude_m > facts.deep_m) return "DEEP";
  return kNoAlarm;
}

DepthLook LookOf(const DepthFacts& facts, const ChannelDepth& channel) {
  if (facts.source == DepthSource::nothing) return DepthLook::nothing;
  if (!std::isfinite(channel.altitude_m) || channel.altitude_m <= 0) return DepthLook::nothing;
  if (facts.source == DepthSource::recording) return DepthLook::alive;
  if (channel.age_ms >= kLostDepth_ms) return DepthLook::nothing;
  if (channel.age_ms >= kStaleDepth_ms) return DepthLook::stale;
  return AlarmOf(facts, channel.altitude_m) != kNoAlarm ? DepthLook::alarm : DepthLook::alive;
}

void DescribeNote(const DepthFacts& facts, const ChannelDepth& channel, const char* name,
                  DepthFigure& figure) {
  char last[24] = "";
  if (figure.look == DepthLook::stale) {
    FormatText(last, ", %u s ago", channel.age_ms / 1'000);
  } else if (figure.look == DepthLook::alarm) {
    FormatText(last, ", %s", AlarmOf(facts, channel.altitude_m));
  } else if (facts.source == DepthSource::recording) {
    FormatText(last, ", playback");
  }
  FormatWide(figure.note, "%s%s%s", NameOfUnit(facts.unit), name, last);
}

DepthFigure Describe(const DepthFacts& facts, const ChannelDepth& channel, const char* name) {
  DepthFigure figure{};
  figure.look = LookOf(facts, channel);
  if (figure.look == DepthLook::nothing) {
    CopyWide(figure.depth, L"--.--");
  } else {
    const double depth = InUnit(static_cast<double>(channel.altitude_m), facts.unit);
    FormatWide(figure.depth, depth < 1'000 ? "%.2f" : "%.0f", depth);
  }
  DescribeNote(facts, channel, name, figure);
  return figure;
}

}  // namespace

DepthFigures DescribeDepths(const DepthFacts& facts) {
  constexpr const char* kNames[] = {", high", ", low"};
  DepthFigures shown{};
  shown.count = facts.dual ? 2 : 1;
  for (int32_t i = 0; i < shown.count; ++i) {
    const ChannelDepth& channel = facts.channels[i];
    shown.figures[i] = Describe(facts, channel, facts.dual ? kNames[i] : "");
    if (shown.figures[i].look != DepthLook::alarm || shown.alarm[0] != L'\0') continue;
    char depth[24];
    FormatDepth(depth, static_cast<double>(channel.altitude_m), facts.unit, 2);
    FormatWide(shown.alarm, "%s %s", AlarmOf(facts, channel.altitude_m), depth);
  }
  return shown;
}

}  // namespace tw
