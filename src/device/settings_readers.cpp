#include "device/settings_readers.h"

#include <iterator>

namespace tw {
namespace {

// What a failing query does to the reading.
enum class OnFailure : uint8_t { fail, end };

struct IntQuery {
  CommandId id;
  int32_t DeviceSettings::*field;
  OnFailure onFailure = OnFailure::end;
};

struct FloatQuery {
  CommandId id;
  float DeviceSettings::*field;
};

using S = DeviceSettings;
using C = CommandId;

enum class Outcome : uint8_t {
  goOn,
  fail,
  silent,  // fails for want of a reply
  end,
};

Outcome Judge(LinkResult result, OnFailure onFailure = OnFailure::end) {
  if (result == LinkResult::success) return Outcome::goOn;
  if (onFailure == OnFailure::end) return Outcome::end;
  return result == LinkResult::noPrompt ? Outcome::silent : Outcome::fail;
}

// What a device need not know is asked so: a reply that comes late would be taken for that of the next
// command; it is taken away, and the query repeated.
template <typename Query>
LinkResult Patiently(DeviceLink& link, Query query) {
  TellNextStep(link);
  const LinkResult result = query();
  return result == LinkResult::noPrompt && TakeLateReply(link) ? query() : result;
}

LinkResult AskInt(DeviceLink& link, C id, int32_t& target) {
  return Patiently(link, [&] { return QueryInt(link, id, target); });
}

LinkResult AskFloat(DeviceLink& link, C id, float& target) {
  return Patiently(link, [&] { return QueryFloat(link, id, target); });
}

LinkResult AskIdentity(DeviceLink& link, std::span<char> target) {
  return Patiently(link, [&] { return QueryString(link, target); });
}

LinkResult AskIntOnce(DeviceLink& link, C id, int32_t& target) {
  TellNextStep(link);
  return QueryInt(link, id, target);
}

LinkResult AskFirmware(DeviceLink& link) {
  TellNextStep(link);
  return QueryFloat(link, C::firmwareVersion, link.facts.firmwareVersion);
}

template <size_t N>
Outcome Ask(DeviceLink& link, S& settings, const IntQuery (&queries)[N]) {
  for (const IntQuery& query : queries) {
    const auto ask = query.onFailure == OnFailure::fail ? AskIntOnce : AskInt;
    const Outcome outcome = Judge(ask(link, query.id, settings.*query.field), query.onFailure);
    if (outcome != Outcome::goOn) return outcome;
  }
  return Outcome::goOn;
}

template <size_t N>
Outcome Ask(DeviceLink& link, S& settings, const FloatQuery (&queries)[N]) {
  for (const FloatQuery& query : queries) {
    const Outcome outcome = Judge(AskFloat(link, query.id, settings.*query.field));
    if (outcome != Outcome::goOn) return outcome;
  }
  return Outcome::goOn;
}

// The sequence's groups; "#rangeh" is asked twice, because the first asking only tells the families apart.
constexpr IntQuery kFirst[] = {{C::maxRangeLow, &S::maxRangeLow_mm, OnFailure::fail},
                               {C::rangeHigh, &S::rangeHigh_mm, OnFailure::fail}};
constexpr IntQuery kLimits[] = {{C::maxRangeHigh, &S::maxRangeHigh_mm},
                                {C::maxLengthHigh, &S::maxLengthHigh},
                                {C::maxLengthLow, &S::maxLengthLow}};
constexpr IntQuery kRanges[] = {{C::frequencyInUse, &S::frequencyInUse_hz, OnFailure::fail},
                                {C::rangeLow, &S::rangeLow_mm, OnFailure::fail},
                                {C::rangeHigh, &S::rangeHigh_mm, OnFailure::fail}};
constexpr IntQuery kDetection[] = {{C::thresholdLow, &S::thresholdLow_percent},
                                   {C::thresholdHigh, &S::thresholdHigh_percent},
                                   {C::offsetLow, &S::offsetLow_mm},
                                   {C::offsetHigh, &S::offsetHigh_mm},
                                   {C::deadZoneLow, &S::deadZoneLow_mm},
                                   {C::deadZoneHigh, &S::deadZoneHigh_mm},
                                   {C::txLengthLow, &S::txLengthLow},
                                   {C::txLengthHigh, &S::txLengthHigh}};
constexpr FloatQuery kGains[] = {{C::gainLow, &S::gainLow},
                                 {C::gainHigh, &S::gainHigh},
                                 {C::tvgSpreadingLow, &S::tvgSpreadingLow},
                                 {C::tvgSpreadingHigh, &S::tvgSpreadingHigh},
                                 {C::tvgAbsorptionLow, &S::tvgAbsorptionLow},
                                 {C::tvgAbsorptionHigh, &S::tvgAbsorptionHigh}};
constexpr IntQuery kFrequencies[] = {{C::frequencyLow, &S::lowFrequency_hz},
                                     {C::frequencyHigh, &S::highFrequency_hz},
                                     {C::tvgMode, &S::tvgMode}};
constexpr FloatQuery kSoundAndPower[] = {{C::sound, &S::soundSpeed_mps}, {C::txPower, &S::txPower}};
constexpr IntQuery kChannels[] = {{C::samplingFrequency, &S::samplingFrequency_hz},
                                  {C::attenuationLow, &S::attenuationLow},
                                  {C::attenuationHigh, &S::attenuationHigh},
                                  {C::virtualFrequencyLow, &S::virtualLowFrequency_hz},
                                  {C::virtualFrequencyHigh, &S::virtualHighFrequency_hz},
                                  {C::simultaneous, &S::simultaneous}};
// Beside the tables: "#auto", "#preset", "#swversion", "#interval", "#output", "#iden", "#smooth", "#outrate"
// and the filters.
constexpr int32_t kQueries =
    static_cast<int32_t>(std::size(kFirst) + std::size(kLimits) + std::size(kRanges) + std::size(kDetection) +
                         std::size(kGains) + std::size(kFrequencies) + std::size(kSoundAndPower) +
                         std::size(kChannels)) +
    10;
constexpr int32_t kQueriesOfTwo = 20;

// Automatic mode and preset; a device without "#auto" knows neither, and the reading goes on.
Outcome AskPreset(DeviceLink& link, S& settings) {
  if (AskInt(link, C::automatic, settings.automaticMode) != LinkResult::success) {
    ++link.counted.number;  // the preset is not asked for
    link.facts.presetCapable = false;
    return Outcome::goOn;
  }
  link.facts.presetCapable = true;
  if (settings.automaticMode == 1) {
    ++link.counted.number;  // not asked for
    settings.preset = kAutomaticPreset;
  } else if (AskInt(link, C::preset, settings.preset) != LinkResult::success) {
    return Outcome::end;
  }
  link.facts.currentPreset = settings.preset;
  return Outcome::goOn;
}

// Seconds to whole milliseconds, truncated, in single precision; bounded, since the device may say anything.
Outcome AskInterval(DeviceLink& link, S& settings) {
  float interval_s = 0.0f;
  const Outcome outcome = Judge(AskFloat(link, C::interval, interval_s));
  if (outcome != Outcome::goOn) return outcome;
  const float interval_ms = interval_s * 1000.0f;
  if (interval_ms >= 0.0f && interval_ms <= 3'600'000.0f) {
    settings.pingInterval_ms = static_cast<int32_t>(interval_ms);
  }
  return Outcome::goOn;
}

Outcome AskOutput(DeviceLink& link, S& settings, int32_t replacementOfFive) {
  const Outcome outcome = Judge(AskInt(link, C::output, settings.outputMode));
  if (outcome == Outcome::goOn && settings.outputMode == 5) settings.outputMode = replacementOfFive;
  return outcome;
}

Outcome AskSmoothing(DeviceLink& link, S& settings) {
  if (AskInt(link, C::smoothing, settings.smoothing) == LinkResult::success) {
    link.facts.smoothingSupported = true;
    return Judge(AskFloat(link, C::outputRate, settings.outputRate));
  }
  ++link.counted.number;  // the output rate is not asked for
  link.facts.smoothingSupported = false;
  settings.smoothing = 0;
  settings.outputRate = 0.0f;
  return Outcome::goOn;
}

// The filters' last resorts keep the device usable when it does not tell them.
void AskFilters(DeviceLink& link, S& settings) {
  if (settings.smoothing != 0 && link.facts.smoothingSupported) {
    static_cast<void>(AskInt(link, C::medianFilter, settings.medianFilter));
    static_cast<void>(AskInt(link, C::movingAverageFilter, settings.movingAverageFilter));
    return;
  }
  if (AskInt(link, C::medianFilter, settings.medianFilter) != LinkResult::success) {
    if (settings.medianFilter < 3) settings.medianFilter = 2;
    return;
  }
  if (AskInt(link, C::movingAverageFilter, settings.movingAverageFilter) != LinkResult::success &&
      settings.movingAverageFilter < 2) {
    settings.movingAverageFilter = 1;
  }
}

// The part of the sequence whose order matters for what is kept when a query fails.
Outcome AskAll(DeviceLink& link, S& settings) {
  using Step = Outcome (*)(DeviceLink&, S&);
  constexpr Step kSteps[] = {
      [](DeviceLink& l, S& s) { return Ask(l, s, kFirst); },
      AskPreset,
      [](DeviceLink& l, S& s) { return Ask(l, s, kLimits); },
      [](DeviceLink& l, S&) { return Judge(AskFirmware(l), OnFailure::fail); },
      [](DeviceLink& l, S& s) { return Ask(l, s, kRanges); },
      AskInterval,
      [](DeviceLink& l, S& s) { return AskOutput(l, s, 6); },
      [](DeviceLink& l, S& s) { return Ask(l, s, kDetection); },
      [](DeviceLink& l, S& s) { return Ask(l, s, kGains); },
      [](DeviceLink& l, S& s) { return Ask(l, s, kFrequencies); },
      [](DeviceLink& l, S& s) { return Judge(AskIdentity(l, s.identity)); },
      [](DeviceLink& l, S& s) { return Ask(l, s, kSoundAndPower); },
      [](DeviceLink& l, S& s) { return Ask(l, s, kChannels); },
  };
  for (const Step step : kSteps) {
    const Outcome outcome = step(link, settings);
    if (outcome != Outcome::goOn) return outcome;
  }
  return Outcome::goOn;
}

}  // namespace

LinkResult ReadAllSettings(DeviceLink& link, DeviceSettings& settings, bool& silent) {
  CountSteps(link, LinkStep::asking, kQueries);
  const Outcome outcome = AskAll(link, settings);
  silent = outcome == Outcome::silent;
  if (outcome == Outcome::fail || silent) return LinkResult::invalid;
  if (outcome == Outcome::end) return LinkResult::success;
  link.facts.highChannelActive =
      settings.simultaneous == 0 && settings.frequencyInUse_hz == settings.highFrequency_hz;
  if (AskSmoothing(link, settings) == Outcome::goOn) AskFilters(link, settings);
  return LinkResult::success;
}

LinkResult ReadSecondFamilySettings(DeviceLink& link, DeviceSettings& settings, bool& silent) {
  constexpr IntQuery kMandatory[] = {{C::identity, &S::identifierWord, OnFailure::fail},
                                     {C::range, &S::rangeHigh_mm, OnFailure::fail}};
  constexpr IntQuery kDetectionOfTwo[] = {{C::threshold, &S::thresholdHigh_percent},
                                          {C::offset, &S::offsetHigh_mm},
                                          {C::deadZone, &S::deadZoneHigh_mm},
                                          {C::txLength, &S::txLengthHigh}};
  constexpr FloatQuery kGainOfTwo[] = {{C::gain, &S::gainHigh}};
  constexpr IntQuery kTvgMode[] = {{C::tvgMode, &S::tvgMode}};
  constexpr FloatQuery kTvgOfTwo[] = {{C::tvgSpreading, &S::tvgSpreadingHigh},
                                      {C::tvgAbsorption, &S::tvgAbsorptionHigh},
                                      {C::sound, &S::soundSpeed_mps}};
  constexpr IntQuery kFrequencyOfTwo[] = {{C::frequencyInUse, &S::frequencyInUse_hz}};
  constexpr IntQuery kFiltersOfTwo[] = {{C::samplingFrequency, &S::samplingFrequency_hz},
                                        {C::medianFilter, &S::medianFilter},
                                        {C::movingAverageFilter, &S::movingAverageFilter}};
  CountSteps(link, LinkStep::asking, kQueriesOfTwo);
  const Outcome known = Ask(link, settings, kMandatory);
  silent = known == Outcome::silent;
  if (known != Outcome::goOn) return LinkResult::invalid;
  const auto go = [](Outcome outcome) { return outcome == Outcome::goOn; };
  const bool frequencyKnown = go(AskPreset(link, settings)) && go(AskInterval(link, settings)) &&
                              go(AskOutput(link, settings, 5)) && go(Ask(link, settings, kDetectionOfTwo)) &&
                              go(Ask(link, settings, kGainOfTwo)) && go(Ask(link, settings, kTvgMode)) &&
                              go(Ask(link, settings, kTvgOfTwo)) && go(Ask(link, settings, kFrequencyOfTwo));
  if (!frequencyKnown) return LinkResult::success;
  settings.highFrequency_hz = settings.frequencyInUse_hz;
  settings.virtualHighFrequency_hz = settings.frequencyInUse_hz;
  if (go(Ask(link, settings, kFiltersOfTwo))) {
    static_cast<void>(AskFloat(link, C::firmwareVersion, link.facts.firmwareVersion));
  }
  return LinkResult::success;
}

}  // namespace tw
