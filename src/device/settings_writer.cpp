#include "device/settings_writer.h"

#include <cinttypes>
#include <span>

#include "base/text_format.h"

namespace tw {
namespace {

using S = DeviceSettings;
using C = CommandId;

constexpr size_t kValueSize = 64;  // the largest float with three decimals takes 43 characters

// A command that carries one field.
struct Row {
  constexpr Row(C command, int32_t S::*field) : id(command), whole(field) {}
  constexpr Row(C command, float S::*field, int places = 3) : id(command), real(field), decimals(places) {}

  C id;
  int32_t S::*whole = nullptr;
  float S::*real = nullptr;
  int decimals = 0;
};

constexpr Row kOfFirstFamily[] = {{C::output, &S::outputMode},
                                  {C::interval, &S::pingInterval_ms},
                                  {C::rangeLow, &S::rangeLow_mm},
                                  {C::rangeHigh, &S::rangeHigh_mm},
                                  {C::thresholdLow, &S::thresholdLow_percent},
                                  {C::thresholdHigh, &S::thresholdHigh_percent},
                                  {C::offsetLow, &S::offsetLow_mm},
                                  {C::offsetHigh, &S::offsetHigh_mm},
                                  {C::deadZoneLow, &S::deadZoneLow_mm},
                                  {C::deadZoneHigh, &S::deadZoneHigh_mm},
                                  {C::txLengthLow, &S::txLengthLow},
                                  {C::txLengthHigh, &S::txLengthHigh},
                                  {C::gainLow, &S::gainLow},
                                  {C::gainHigh, &S::gainHigh},
                                  {C::tvgSpreadingLow, &S::tvgSpreadingLow},
                                  {C::tvgSpreadingHigh, &S::tvgSpreadingHigh},
                                  {C::tvgAbsorptionLow, &S::tvgAbsorptionLow},
                                  {C::tvgAbsorptionHigh, &S::tvgAbsorptionHigh},
                                  {C::txPower, &S::txPower},
                                  {C::sound, &S::soundSpeed_mps},
                                  {C::attenuationLow, &S::attenuationLow},
                                  {C::attenuationHigh, &S::attenuationHigh},
                                  {C::tvgMode, &S::tvgMode}};

// The other families have one channel, whose values stand in the high fields, and commands without a channel.
constexpr Row kOfOtherFamilies[] = {{C::output, &S::outputMode},
                                    {C::interval, &S::pingInterval_ms},
                                    {C::range, &S::rangeHigh_mm},
                                    {C::threshold, &S::thresholdHigh_percent},
                                    {C::offset, &S::offsetHigh_mm},
                                    {C::deadZone, &S::deadZoneHigh_mm},
                                    {C::txLength, &S::txLengthHigh},
                                    {C::gain, &S::gainHigh},
                                    {C::tvgSpreading, &S::tvgSpreadingHigh},
                                    {C::tvgAbsorption, &S::tvgAbsorptionHigh},
                                    {C::sound, &S::soundSpeed_mps},
                                    {C::tvgMode, &S::tvgMode}};

constexpr Row kFilters[] = {{C::medianFilter, &S::medianFilter},
                            {C::movingAverageFilter, &S::movingAverageFilter}};

constexpr Row kOutputRate[] = {{C::outputRate, &S::outputRate, 2}};

// The value as it stands on the wire; the interval goes out in seconds.
std::string_view FormatValue(std::span<char> text, const Row& row, const S& settings) {
  size_t length = 0;
  if (row.id == C::interval) {
    length = FormatText(text, "%.2f", static_cast<double>(settings.pingInterval_ms) / 1000.0);
  } else if (row.whole != nullptr) {
    length = FormatText(text, "%" PRId32, settings.*row.whole);
  } else {
    length = FormatText(text, "%.*f", row.decimals, static_cast<double>(settings.*row.real));
  }
  return {text.data(), length};
}

LinkResult WriteRows(DeviceLink& link, std::span<const Row> rows, const S& wanted, const S& applied) {
  for (const Row& row : rows) {
    char wantedText[kValueSize];
    char appliedText[kValueSize];
    const std::string_view value = FormatValue(wantedText, row, wanted);
    if (value == FormatValue(appliedText, row, applied)) continue;
    TellStep(link, LinkStep::sending);
    const LinkResult result = Exchange(link, row.id, value);
    if (result != LinkResult::success) return result;
  }
  return LinkResult::success;
}

C FrequencySelection(const S& settings) {
  if (settings.simultaneous != 0) return C::setFrequencyDual;
  return settings.frequencyInUse_hz == settings.lowFrequency_hz ? C::setFrequencyLow : C::setFrequencyHigh;
}

LinkResult WriteFrequencySelection(DeviceLink& link, const S& wanted, const S& applied) {
  const C selection = FrequencySelection(wanted);
  return selection == FrequencySelection(applied) ? LinkResult::success : Exchange(link, selection);
}

// The automatic mode shows as a preset and is switched on by a command of its own.
LinkResult WritePreset(DeviceLink& link, const S& wanted, const S& applied) {
  if (!link.facts.presetCapable || wanted.preset == applied.preset) return LinkResult::success;
  if (wanted.preset == kAutomaticPreset) return Exchange(link, C::automatic, "1");
  constexpr Row kPreset[] = {{C::preset, &S::preset}};
  return WriteRows(link, kPreset, wanted, applied);
}

}  // namespace

LinkResult WriteChangedSettings(DeviceLink& link, DeviceFamily family, const DeviceSettings& wanted,
                                const DeviceSettings& applied) {
  const bool first = family == DeviceFamily::first;
  const bool smoothingSupported = link.facts.smoothingSupported;
  LinkResult result = first ? WriteFrequencySelection(link, wanted, applied) : LinkResult::success;
  if (result == LinkResult::success) result = WritePreset(link, wanted, applied);
  if (result == LinkResult::success) {
    const std::span<const Row> rows = first ? std::span<const Row>(kOfFirstFamily) : kOfOtherFamilies;
    result = WriteRows(link, rows, wanted, applied);
  }
  if (result == LinkResult::success && !(smoothingSupported && wanted.smoothing != 0)) {
    result = WriteRows(link, kFilters, wanted, applied);
  }
  if (result == LinkResult::success && smoothingSupported) {
    result = WriteRows(link, kOutputRate, wanted, applied);
  }
  return result;
}

LinkResult SendSpeed(DeviceLink& link, int32_t speed_bps) {
  char text[16];
  FormatText(text, "%" PRId32, speed_bps);
  return SendCommand(link, CommandId::speed, text);
}

}  // namespace tw
