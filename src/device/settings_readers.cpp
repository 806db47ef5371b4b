#include "device/settings_readers.h"

#include "app/state/app_state.h"

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
LinkResult Patiently(Handle port, Query query) {
  const LinkResult result = query();
  return result == LinkResult::noPrompt && TakeLateReply(port) ? query() : result;
}

LinkResult AskInt(Handle port, C id, int32_t& target) {
  return Patiently(port, [&] { return QueryInt(port, id, target); });
}

LinkResult AskFloat(Handle port, C id, float& target) {
  return Patiently(port, [&] { return QueryFloat(port, id, target); });
}

LinkResult AskIdentity(Handle port, std::span<char> target) {
  return Patiently(port, [&] { return QueryString(port, target); });
}

template <size_t N>
Outcome Ask(Handle port, S& settings, const IntQuery (&queries)[N]) {
  for (const IntQuery& query : queries) {
    const auto ask = query.onFailure == OnFailure::fail ? QueryInt : AskInt;
    const Outcome outcome = Judge(ask(port, query.id, settings.*query.field), query.onFailure);
    if (outcome != Outcome::goOn) return outcome;
  }
  return Outcome::goOn;
}

template <size_t N>
Outcome Ask(Handle port, S& settings, const FloatQuery (&queries)[N]) {
  for (const FloatQuery& query : queries) {
    const Outcome outcome = Judge(AskFloat(port, query.id, settings.*query.field));
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

// Automatic mode and preset; a device without "#auto" knows neither, and the reading goes on.
Outcome AskPreset(Handle port, S& settings) {
  if (AskInt(port, C::automatic, settings.automaticMode) != LinkResult::success) {
    globals.presetCapable = 0;
    return Outcome::goOn;
  }
  globals.presetCapable = 1;
  if (settings.automaticMode == 1) {
    settings.preset = kAutomaticPreset;
  } else if (AskInt(port, C::preset, settings.preset) != LinkResult::success) {
    return Outcome::end;
  }
  globals.currentPreset = settings.preset;
  return Outcome::goOn;
}

// Seconds to whole milliseconds, truncated, in single precision; bounded, since the device may say anything.
Outcome AskInterval(Handle port, S& settings) {
  float interval_s = 0.0f;
  const Outcome outcome = Judge(AskFloat(port, C::interval, interval_s));
  if (outcome != Outcome::goOn) return outcome;
  const float interval_ms = interval_s * 1000.0f;
  if (interval_ms >= 0.0f && interval_ms <= 3'600'000.0f) {
    settings.pingInterval_ms = static_cast<int32_t>(interval_ms);
  }
  return Outcome::goOn;
}

Outcome AskOutput(Handle port, S& settings, int32_t replacementOfFive) {
  const Outcome outcome = Judge(AskInt(port, C::output, settings.outputMode));
  if (outcome == Outcome::goOn && settings.outputMode == 5) settings.outputMode = replacementOfFive;
  return outcome;
}

Outcome AskSmoothing(Handle port, S& settings) {
  if (AskInt(port, C::smoothing, settings.smoothing) == LinkResult::success) {
    globals.smoothingSupported = 1;
    return Judge(AskFloat(port, C::outputRate, settings.outputRate));
  }
  globals.smoothingSupported = 0;
  settings.smoothing = 0;
  settings.outputRate = 0.0f;
  return Outcome::goOn;
}

// The filters' last resorts keep the device usable when it does not tell them.
void AskFilters(Handle port, S& settings) {
  if (settings.smoothing != 0 && globals.smoothingSupported != 0) {
    static_cast<void>(AskInt(port, C::medianFilter, settings.medianFilter));
    static_cast<void>(AskInt(port, C::movingAverageFilter, settings.movingAverageFilter));
    return;
  }
  if (AskInt(port, C::medianFilter, settings.medianFilter) != LinkResult::success) {
    if (settings.medianFilter < 3) settings.medianFilter = 2;
    return;
  }
  if (AskInt(port, C::movingAverageFilter, settings.movingAverageFilter) != LinkResult::success &&
      settings.movingAverageFilter < 2) {
    settings.movingAverageFilter = 1;
  }
}

// The part of the sequence whose order matters for what is kept when a query fails.
Outcome AskAll(Handle port, S& settings) {
  using Step = Outcome (*)(Handle, S&);
  constexpr Step kSteps[] = {
      [](Handle p, S& s) { return Ask(p, s, kFirst); },
      AskPreset,
      [](Handle p, S& s) { return Ask(p, s, kLimits); },
      [](Handle p, S&) {
        return Judge(QueryFloat(p, C::firmwareVersion, globals.firmwareVersion), OnFailure::fail);
      },
      [](Handle p, S& s) { return Ask(p, s, kRanges); },
      AskInterval,
      [](Handle p, S& s) { return AskOutput(p, s, 6); },
      [](Handle p, S& s) { return Ask(p, s, kDetection); },
      [](Handle p, S& s) { return Ask(p, s, kGains); },
      [](Handle p, S& s) { return Ask(p, s, kFrequencies); },
      [](Handle p, S& s) { return Judge(AskIdentity(p, s.identity)); },
      [](Handle p, S& s) { return Ask(p, s, kSoundAndPower); },
      [](Handle p, S& s) { return Ask(p, s, kChannels); },
  };
  for (const Step step : kSteps) {
    const Outcome outcome = step(port, settings);
    if (outcome != Outcome::goOn) return outcome;
  }
  return Outcome::goOn;
}

}  // namespace

LinkResult ReadAllSettings(Handle port, DeviceSettings& settings, bool& silent) {
  const Outcome outcome = AskAll(port, settings);
  silent = outcome == Outcome::silent;
  if (outcome == Outcome::fail || silent) return LinkResult::invalid;
  if (outcome == Outcome::end) return LinkResult::success;
  globals.highChannelActive =
      settings.simultaneous == 0 && settings.frequencyInUse_hz == settings.highFrequency_hz ? 1 : 0;
  if (AskSmoothing(port, settings) == Outcome::goOn) AskFilters(port, settings);
  return LinkResult::success;
}

LinkResult ReadSecondFamilySettings(Handle port, DeviceSettings& settings, bool& silent) {
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
  const Outcome known = Ask(port, settings, kMandatory);
  silent = known == Outcome::silent;
  if (known != Outcome::goOn) return LinkResult::invalid;
  const auto go = [](Outcome outcome) { return outcome == Outcome::goOn; };
  const bool frequencyKnown = go(AskPreset(port, settings)) && go(AskInterval(port, settings)) &&
                              go(AskOutput(port, settings, 5)) && go(Ask(port, settings, kDetectionOfTwo)) &&
                              go(Ask(port, settings, kGainOfTwo)) && go(Ask(port, settings, kTvgMode)) &&
                              go(Ask(port, settings, kTvgOfTwo)) && go(Ask(port, settings, kFrequencyOfTwo));
  if (!frequencyKnown) return LinkResult::success;
  settings.highFrequency_hz = settings.frequencyInUse_hz;
  settings.virtualHighFrequency_hz = settings.frequencyInUse_hz;
  if (go(Ask(port, settings, kFiltersOfTwo))) {
    static_cast<void>(AskFloat(port, C::firmwareVersion, globals.firmwareVersion));
  }
  return LinkResult::success;
}

}  // namespace tw
