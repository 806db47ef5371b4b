#include "simulator/sounder_settings.h"

#include <algorithm>
#include <cmath>

#include "base/text_format.h"

namespace tw::sim {
namespace {

struct SettingRow {
  Setting setting;
  int decimals;
  int64_t initial, least, most;  // thousandths
};

constexpr SettingRow Whole(Setting setting, int64_t initial, int64_t least, int64_t most) {
  return {setting, 0, initial * kThousand, least * kThousand, most * kThousand};
}
constexpr SettingRow Fact(Setting setting, int64_t value) {
  return Whole(setting, value, value, value);
}
constexpr SettingRow Switch(Setting setting, int64_t initial) {
  return Whole(setting, initial, 0, 1);
}

// In the order of the enumeration.
constexpr SettingRow kRows[] = {
    Whole(Setting::rangeLow, 30'000, 1'000, 200'000),
    Whole(Setting::rangeHigh, 30'000, 1'000, 200'000),
    Whole(Setting::thresholdLow, 10, 0, 100),
    Whole(Setting::thresholdHigh, 10, 0, 100),
    Whole(Setting::offsetLow, 0, -10'000, 10'000),
    Whole(Setting::offsetHigh, 0, -10'000, 10'000),
    Whole(Setting::deadZoneLow, 500, 0, 200'000),
    Whole(Setting::deadZoneHigh, 500, 0, 200'000),
    Whole(Setting::txLengthLow, 100, 1, 1'000),
    Whole(Setting::txLengthHigh, 50, 1, 1'000),
    {Setting::gainLow, 3, 0, -60'000, 60'000},
    {Setting::gainHigh, 3, 0, -60'000, 60'000},
    {Setting::tvgSpreadingLow, 3, 15'000, 0, 60'000},
    {Setting::tvgSpreadingHigh, 3, 15'000, 0, 60'000},
    {Setting::tvgAbsorptionLow, 3, 60, 0, 10'000},
    {Setting::tvgAbsorptionHigh, 3, 140, 0, 10'000},
    Whole(Setting::attenuationLow, 0, 0, 100),
    Whole(Setting::attenuationHigh, 0, 0, 100),
    {Setting::interval, 2, 0, 0, 60'000},
    Whole(Setting::output, 2, 1, 101),
    Whole(Setting::tvgMode, 1, 0, 4),
    {Setting::sound, 3, 1'500'000, 1'300'000, 1'800'000},
    {Setting::txPower, 3, 100'000, 0, 100'000},
    Whole(Setting::medianFilter, 1, 1, 31),
    Whole(Setting::movingAverageFilter, 1, 1, 31),
    Switch(Setting::smooth, 0),
    {Setting::outputRate, 2, 0, 0, 100'000},
    Switch(Setting::automatic, 0),
    Whole(Setting::preset, 255, 0, 255),
    Switch(Setting::pingOnce, 0),
    Switch(Setting::nmeaDbt, 1),
    Switch(Setting::nmeaDpt, 0),
    Switch(Setting::nmeaMtw, 1),
    Switch(Setting::nmeaXdr, 1),
    Switch(Setting::nmeaEma, 1),
    Switch(Setting::nmeaZda, 1),
    Switch(Setting::nmeaDepthZero, 1),
    Whole(Setting::speed, 115'200, 300, 12'000'000),
    Whole(Setting::frequencyInUse, 450'000, 200'000, 450'000),
    Switch(Setting::simultaneous, 0),
    Fact(Setting::frequencyLow, 200'000),
    Fact(Setting::frequencyHigh, 450'000),
    Fact(Setting::virtualFrequencyLow, 200'000),
    Fact(Setting::virtualFrequencyHigh, 450'000),
    Whole(Setting::samplingFrequency, 25'000, 1'000, 100'000),
    {Setting::firmware, 2, 2'100, 10, 99'990},
    Fact(Setting::maxRangeLow, 200'000),
    Fact(Setting::maxRangeHigh, 200'000),
    Fact(Setting::maxLengthLow, 1'000),
    Fact(Setting::maxLengthHigh, 1'000),
};
static_assert(std::size(kRows) == static_cast<size_t>(Setting::count));
static_assert([] {
  for (size_t i = 0; i < std::size(kRows); ++i) {
    const SettingRow& row = kRows[i];
    if (static_cast<size_t>(row.setting) != i || row.initial < row.least || row.initial > row.most)
      return false;
  }
  return true;
}());

// What the third family can tell of a length: the most that a signed 16-bit number holds.
constexpr int64_t kMostIn16Bits = 32'767 * kThousand;

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

SounderSettings::SounderSettings(const SounderOptions& options)
    : toldIn16Bits_(options.family == DeviceFamily::third),
      twoChannels_(options.family == DeviceFamily::first) {
  for (size_t i = 0; i < values_.size(); ++i) initial_[i] = kRows[i].initial;
  const auto put = [&](Setting setting, int64_t value) {
    initial_[static_cast<size_t>(setting)] = value * kThousand;
  };
  put(Setting::rangeLow, options.range_mm);
  put(Setting::rangeHigh, options.range_mm);
  put(Setting::output, options.outputMode);
  put(Setting::samplingFrequency, options.samplingFrequency_hz);
  put(Setting::speed, options.baud);
  put(Setting::simultaneous, options.dual ? 1 : 0);
  put(Setting::frequencyHigh, options.frequency_hz);
  put(Setting::frequencyInUse, options.lowFrequency ? 200'000 : options.frequency_hz);
  put(Setting::smooth, options.smoothing == Smoothing::on ? 1 : 0);
  const bool automatic = options.automatic || options.preset == kAutomaticPreset;
  put(Setting::automatic, automatic ? 1 : 0);
  put(Setting::preset, automatic ? kAutomaticPreset : options.preset);
  initial_[static_cast<size_t>(Setting::firmware)] = int64_t{options.firmware_hundredths} * 10;
  if (options.pingsPerSecond > 0.0) {
    initial_[static_cast<size_t>(Setting::interval)] = std::llround(1'000.0 / options.pingsPerSecond);
  }
  values_ = initial_;
}

bool SounderSettings::Set(Setting setting, int64_t thousandths) {
  const auto i = static_cast<size_t>(setting);
  if (thousandths < kRows[i].least || thousandths > kRows[i].most) return false;
  if (toldIn16Bits_ && setting == Setting::deadZoneHigh && thousandths > kMostIn16Bits) return false;
  if (kRows[i].decimals == 0 && thousandths % kThousand != 0) return false;
  values_[i] = thousandths;
  return true;
}

bool SounderSettings::SetAutomatic(int64_t thousandths) {
  if (!Set(Setting::automatic, thousandths)) return false;
  return Set(Setting::preset, (thousandths != 0 ? kAutomaticPreset : kNoPreset) * kThousand);
}

bool SounderSettings::SetPreset(int64_t thousandths) {
  if (!Set(Setting::preset, thousandths)) return false;
  return Set(Setting::automatic, thousandths == kAutomaticPreset * kThousand ? kThousand : 0);
}

bool SounderSettings::LowInUse() const {
  return twoChannels_ && Whole(Setting::simultaneous) == 0 &&
         Thousandths(Setting::frequencyInUse) == Thousandths(Setting::frequencyLow);
}

void SounderSettings::Restore() {
  const int64_t speed = Thousandths(Setting::speed);
  values_ = initial_;
  values_[static_cast<size_t>(Setting::speed)] = speed;
}

std::string SounderSettings::Text(Setting setting) const {
  const int64_t value = Thousandths(setting);
  const int decimals = kRows[static_cast<size_t>(setting)].decimals;
  char text[40];
  const size_t length = FormatText(text, "%.*f", decimals, static_cast<double>(value) / kThousand);
  return {text, length};
}

bool ReadThousandths(std::string_view text, int64_t& thousandths) {
  constexpr size_t kMostDigits = 10;
  constexpr size_t kMostDecimals = 6;
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const size_t point = std::min(text.find('.'), text.size());
  const std::string_view digits = text.substr(0, point);
  const std::string_view decimals = point < text.size() ? text.substr(point + 1) : std::string_view();
  if (digits.size() + decimals.size() == 0) return false;
  if (digits.size() > kMostDigits || decimals.size() > kMostDecimals) return false;
  if (!std::all_of(digits.begin(), digits.end(), IsDigit)) return false;
  if (!std::all_of(decimals.begin(), decimals.end(), IsDigit)) return false;
  int64_t value = 0;
  for (const char c : digits) value = value * 10 + (c - '0');
  for (size_t i = 0; i < 3; ++i) value = value * 10 + (i < decimals.size() ? decimals[i] - '0' : 0);
  thousandths = negative ? -value : value;
  return true;
}

}  // namespace tw::sim
