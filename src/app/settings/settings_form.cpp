#include "app/settings/settings_form.h"

#include <cinttypes>
#include <cmath>
#include <cwchar>
#include <iterator>

#include "acquisition/output_mode.h"
#include "app/settings/settings_text.h"
#include "base/text_format.h"
#include "display/zoom.h"

namespace tw {
namespace {

using S = DeviceSettings;

enum class Unit : uint8_t { asStored, metresOfMillimetres, secondsOfMilliseconds, mode, text };

// Forms and families that have a field.
enum Shown : uint8_t {
  kSingle = 1,
  kDual = 2,
  kSecond = 4,   // the detail form of family 2
  kThird = 8,    // of family 0
  kPlayed = 16,  // of a record file
};
constexpr uint8_t kDetail = kSecond | kThird;
constexpr uint8_t kAll = kSingle | kDual | kDetail;
constexpr uint8_t kFirst = kSingle | kDual;
constexpr uint8_t kTold = kAll | kPlayed;

struct Row {
  SettingsField field;
  const wchar_t* label;
  FieldKind kind;
  uint8_t shown;
  Unit unit;
  WholeFields whole;  // where a whole number stands
  RealFields real;    // or a real one
  double lowest;
  double highest;  // 0: depends on the device
  int decimals;    // shown at least; none: whole numbers only
};

using enum FieldKind;
using F = SettingsField;

// clang-format off
constexpr Row kRows[kSettingsFields] = {
    {F::range, L"&Range [m]", combo, kTold, Unit::metresOfMillimetres, kRangeOf, {}, 1, 0, 0},
    {F::interval, L"Ping &interval [s]", combo, kTold, Unit::secondsOfMilliseconds, {&S::pingInterval_ms}, {}, 0, 10, 2},
    {F::outputMode, L"&Output mode", combo, kTold, Unit::mode, {&S::outputMode}, {}, 0, 0, 0},
    {F::txLength, L"Transmit &length [\u00B5s]", edit, kTold, Unit::asStored, kTxLengthOf, {}, 1, 0, 0},
    {F::txPower, L"Transmit &power [%]", edit, kFirst | kPlayed, Unit::asStored, {}, {&S::txPower}, 0, 100, 1},
    {F::gain, L"&Gain [dB]", edit, kTold, Unit::asStored, {}, kGainOf, -60, 60, 1},
    {F::tvgMode, L"TVG &mode", combo, kFirst | kSecond, Unit::asStored, {&S::tvgMode}, {}, 0, 3, 0},
    {F::tvgSpreading, L"TVG &spreading [dB/decade]", edit, kFirst | kSecond | kPlayed, Unit::asStored, {}, kTvgSpreadingOf, 0, 60, 1},
    {F::tvgAbsorption, L"TVG &absorption [dB/m]", edit, kFirst | kSecond | kPlayed, Unit::asStored, {}, kTvgAbsorptionOf, 0, 2, 2},
    {F::attenuation, L"Atte&nuation", edit, kFirst | kPlayed, Unit::asStored, kAttenuationOf, {}, 0, 100, 0},
    {F::deadZone, L"&Dead zone [mm]", edit, kTold, Unit::asStored, kDeadZoneOf, {}, 0, 0, 0},
    {F::offset, L"O&ffset [mm]", edit, kTold, Unit::asStored, kOffsetOf, {}, -10000, 10000, 0},
    {F::threshold, L"&Threshold [%]", edit, kTold, Unit::asStored, kThresholdOf, {}, 0, 100, 0},
    {F::soundSpeed, L"Speed of so&und [m/s]", edit, kTold, Unit::asStored, {}, {&S::soundSpeed_mps}, 1300, 1700, 1},
    {F::medianFilter, L"Median filt&er [pings]", edit, kFirst | kSecond, Unit::asStored, {&S::medianFilter}, {}, 1, 31, 0},
    {F::movingAverage, L"Moving a&verage [pings]", edit, kFirst | kSecond, Unit::asStored, {&S::movingAverageFilter}, {}, 1, 31, 0},
    {F::outputRate, L"Output rate [&Hz]", edit, kFirst, Unit::asStored, {}, {&S::outputRate}, 0, 100, 2},
    {F::identity, L"Identity", shown, kAll, Unit::text, {}, {}, 0, 0, 0},
    {F::firmware, L"Firmware", shown, kAll, Unit::text, {}, {}, 0, 0, 0},
    {F::interfaceType, L"Interface", shown, kAll, Unit::text, {}, {}, 0, 0, 0},
    {F::sampling, L"Sampling [Hz]", shown, kAll, Unit::text, {}, {}, 0, 0, 0},
    {F::smoothing, L"Smoothing", shown, kAll, Unit::text, {}, {}, 0, 0, 0},
};
// clang-format on

static_assert([] {
  for (size_t i = 0; i < kSettingsFields; ++i) {
    if (kRows[i].field != static_cast<SettingsField>(i)) return false;
  }
  return true;
}());

constexpr int32_t kDefaultMaxRange_mm = 200'000;
constexpr int32_t kDefaultMaxLength = 1'000;
constexpr int32_t kShortestInterval_ms = 10;
constexpr int32_t kIntervals_ms[] = {0, 10, 20, 50, 100, 200, 250, 500, 1'000, 2'000, 5'000, 10'000};
constexpr wchar_t kUnknown[] = L"unknown";  // this family tells nobody
constexpr int32_t kPresets = 10;            // numbers 0 to 9

const Row& RowOf(SettingsField field) {
  return kRows[static_cast<size_t>(field)];
}

// Shown as it is stored: 12.5 is no value of it, though 12.5 m is one of millimetres.
bool IsWholeNumber(const Row& row) {
  return row.unit == Unit::asStored && row.whole.low != nullptr;
}

int32_t MaxRange_mm(FieldChannel channel, const S& settings) {
  const int32_t reported = RangeInMillimetres(settings.*kMaxRangeOf[channel]);
  return reported <= 0 ? kDefaultMaxRange_mm : reported;
}

struct Limits {
  double lowest;
  double highest;
};

// In the unit that is shown.
Limits LimitsOf(const Row& row, FieldChannel channel, const FormFacts& facts, const S& settings) {
  switch (row.field) {
    case F::range:
      return {row.lowest, MaxRange_mm(channel, settings) / 1000.0};
    case F::interval:
      return {facts.family == DeviceFamily::first ? kShortestInterval_ms / 1000.0 : 0.0, row.highest};
    case F::txLength: {
      const int32_t reported = settings.*kMaxLengthOf[channel];
      return {row.lowest, static_cast<double>(reported <= 0 ? kDefaultMaxLength : reported)};
    }
    case F::deadZone:
      return {row.lowest, static_cast<double>(RangeInMillimetres(settings.*kRangeOf[channel]))};
    default:
      return {row.lowest, row.highest};
  }
}

void FormatShown(SettingsField field, const FormFacts& facts, const S& settings, std::span<wchar_t> text) {
  constexpr const wchar_t* kInterfaces[] = {L"RS-232", L"RS-485", L"USB"};
  switch (field) {
    case F::identity:
      if (facts.family == DeviceFamily::first) {
        FormatWide(text, "%s", settings.identity);
      } else {
        FormatWide(text, "%04" PRId32, settings.identifierWord);
      }
      return;
    case F::firmware:
      if (facts.family == DeviceFamily::third) return static_cast<void>(CopyWide(text, kUnknown));
      FormatNumber(static_cast<double>(facts.firmwareVersion), 2, text);
      return;
    case F::interfaceType:
      if (facts.family != DeviceFamily::first) return static_cast<void>(CopyWide(text, kUnknown));
      CopyWide(text, facts.interfaceType >= 0 && facts.interfaceType <= 2 ? kInterfaces[facts.interfaceType]
                                                                          : kInterfaces[0]);
      return;
    case F::sampling:
      FormatWide(text, "%" PRId32, settings.samplingFrequency_hz);
      return;
    default:
      CopyWide(text, !facts.smoothingSupported ? L"not supported" : settings.smoothing != 0 ? L"on" : L"off");
      return;
  }
}

bool IsRuledByPreset(SettingsField field) {
  return field == F::outputMode || field == F::range || field == F::interval;
}

void AddItem(FieldItems& items, const wchar_t* text) {
  if (items.count < kMaxFieldItems) CopyWide(items.items[items.count++], text);
}

// The family's modes, and at the end the device's own when it is none of them.
void AddModes(FieldItems& items, DeviceFamily family, OutputMode own) {
  for (const OutputModeRow& mode : OfferedModes(family)) AddItem(items, mode.name.data());
  if (!NameOfMode(family, own).empty()) return;
  wchar_t text[kFieldTextSize];
  FormatMode(family, own, text);
  AddItem(items, text);
}

// The values of the list up to a limit, the device's own among them in its place.
template <typename Format>
void AddValues(FieldItems& items, std::span<const int32_t> values, int32_t limit, int32_t own,
               Format format) {
  bool ownStands = false;
  const auto add = [&](int32_t value) {
    wchar_t text[kFieldTextSize];
    format(value, std::span<wchar_t>(text));
    AddItem(items, text);
    ownStands = ownStands || value == own;
  };
  for (const int32_t value : values) {
    if (!ownStands && own < value) add(own);
    if (value <= limit && value != own) add(value);
    if (value == own) add(own);
  }
  if (!ownStands) add(own);
}

void SetError(const Row& row, FieldChannel channel, const FormFacts& facts, const Limits& limits,
              std::span<wchar_t> error) {
  wchar_t name[kFieldTextSize];
  size_t size = 0;
  for (const wchar_t* c = row.label; *c != L'\0' && *c != L'['; ++c) {
    if (*c != L'&') name[size++] = *c;
  }
  while (size > 0 && name[size - 1] == L' ') --size;
  char narrow[2 * kFieldTextSize];
  NarrowText(narrow, {name, size});
  const bool ofOne = facts.dual && IsPerChannel(row.field);
  const char* const side = !ofOne ? "" : channel == FieldChannel::low ? " (low)" : " (high)";
  wchar_t low[kFieldTextSize];
  wchar_t high[kFieldTextSize];
  FormatNumber(limits.lowest, row.decimals, low);
  FormatNumber(limits.highest, row.decimals, high);
  char lowText[kFieldTextSize];
  char highText[kFieldTextSize];
  NarrowText(lowText, low);
  NarrowText(highText, high);
  const char* const kind = IsWholeNumber(row) ? "a whole number " : "";
  FormatWide(error, "Value of %s%s must be %sfrom %s to %s.", narrow, side, kind, lowText, highText);
}

// Firmware that tells ranges in metres takes them in metres.
int32_t RangeForDevice(int32_t range_mm, int32_t reported) {
  return RangeInMillimetres(reported) == reported ? range_mm : (range_mm + 500) / 1000;
}

void Store(const Row& row, FieldChannel channel, double value, S& settings) {
  if (row.whole.low == nullptr) {
    settings.*row.real[channel] = static_cast<float>(value);
    return;
  }
  // Metres and seconds are entered, thousandths stored.
  const auto whole = static_cast<int32_t>(std::lround(row.unit == Unit::asStored ? value : value * 1000.0));
  int32_t& stored = settings.*row.whole[channel];
  stored = row.unit == Unit::metresOfMillimetres ? RangeForDevice(whole, stored) : whole;
}

}  // namespace

SettingsForm FormOf(const FormFacts& facts) {
  if (facts.family != DeviceFamily::first) return SettingsForm::detail;
  return facts.dual ? SettingsForm::dual : SettingsForm::single;
}

FieldChannel ActiveChannel(const FormFacts& facts, const DeviceSettings& settings) {
  return !facts.played && UsesLowChannel(settings, facts.family) ? FieldChannel::low : FieldChannel::high;
}

bool IsShown(SettingsField field, const FormFacts& facts) {
  if (field == F::outputRate && !facts.smoothingSupported) return false;
  const uint8_t form = facts.played                           ? kPlayed
                       : facts.family == DeviceFamily::first  ? (facts.dual ? kDual : kSingle)
                       : facts.family == DeviceFamily::second ? kSecond
                                                              : kThird;
  return (RowOf(field).shown & form) != 0;
}

FieldKind KindOf(SettingsField field) {
  return RowOf(field).kind;
}

bool IsPerChannel(SettingsField field) {
  const Row& row = RowOf(field);
  return row.whole.low != row.whole.high || row.real.low != row.real.high;
}

const wchar_t* LabelOf(SettingsField field) {
  return RowOf(field).label;
}

bool IsPresetInForce(const FormFacts& facts, const DeviceSettings& settings) {
  return facts.presetCapable && settings.preset != kNoPreset;
}

const wchar_t* WhyUnusable(SettingsField field, FieldChannel channel, const FormFacts& facts,
                           const DeviceSettings& settings) {
  if (facts.played) return L"The played file was recorded with this.";
  if (IsRuledByPreset(field) && IsPresetInForce(facts, settings)) return L"The preset rules it.";
  switch (field) {
    case F::tvgMode:
      return facts.dual ? nullptr : L"A run of one frequency always starts with mode 1.";
    case F::medianFilter:
    case F::movingAverage:
      return facts.smoothingSupported && settings.smoothing != 0 ? L"The device smooths instead." : nullptr;
    case F::range:
      return facts.dual && channel == FieldChannel::low
                 ? L"A run of both frequencies takes the high range for both."
                 : nullptr;
    default:
      return nullptr;
  }
}

bool IsUsable(SettingsField field, FieldChannel channel, const FormFacts& facts,
              const DeviceSettings& settings) {
  return WhyUnusable(field, channel, facts, settings) == nullptr;
}

void FormatField(SettingsField field, FieldChannel channel, const FormFacts& facts,
                 const DeviceSettings& settings, std::span<wchar_t> text) {
  const Row& row = RowOf(field);
  switch (row.unit) {
    case Unit::text:
      return FormatShown(field, facts, settings, text);
    case Unit::mode:
      return FormatMode(facts.family, settings.outputMode, text);
    case Unit::metresOfMillimetres:
      return FormatNumber(RangeInMillimetres(settings.*row.whole[channel]) / 1000.0, row.decimals, text);
    case Unit::secondsOfMilliseconds:
      return FormatInterval(settings.*row.whole[channel], text);
    case Unit::asStored:
      break;
  }
  if (row.whole.low != nullptr) {
    FormatWide(text, "%" PRId32, settings.*row.whole[channel]);
  } else {
    FormatNumber(static_cast<double>(settings.*row.real[channel]), row.decimals, text);
  }
}

void ListItems(SettingsField field, FieldChannel channel, const FormFacts& facts,
               const DeviceSettings& settings, FieldItems& items) {
  items.count = 0;
  const Row& row = RowOf(field);
  switch (field) {
    case F::range:
      return AddValues(items, DisplayRangeSteps, MaxRange_mm(channel, settings),
                       RangeInMillimetres(settings.*row.whole[channel]),
                       [](int32_t value, std::span<wchar_t> text) { FormatNumber(value / 1000.0, 0, text); });
    case F::interval:
      return AddValues(items, kIntervals_ms, kIntervals_ms[std::size(kIntervals_ms) - 1],
                       settings.pingInterval_ms, FormatInterval);
    case F::outputMode:
      return AddModes(items, facts.family, settings.outputMode);
    case F::tvgMode: {
      constexpr int32_t kModes[] = {0, 1, 2, 3};
      return AddValues(items, kModes, 3, settings.tvgMode,
                       [](int32_t value, std::span<wchar_t> text) { FormatWide(text, "%" PRId32, value); });
    }
    default:
      return;
  }
}

bool ReadField(SettingsField field, FieldChannel channel, const FormFacts& facts, const wchar_t* text,
               DeviceSettings& settings, std::span<wchar_t> error) {
  const Row& row = RowOf(field);
  if (row.kind == shown) return true;
  wchar_t standing[kFieldTextSize];
  FormatField(field, channel, facts, settings, standing);
  // A dead zone that stands may lie beyond a range that was entered before it.
  if (field != F::deadZone && std::wcscmp(text, standing) == 0) return true;
  if (row.unit == Unit::mode) return ModeOfName(facts.family, text, settings.outputMode);
  if (row.unit == Unit::secondsOfMilliseconds && std::wcscmp(text, kAutomaticText) == 0) {
    settings.pingInterval_ms = 0;
    return true;
  }
  const Limits limits = LimitsOf(row, channel, facts, settings);
  double value = 0;
  if (!ReadNumber(text, IsWholeNumber(row), value) || value < limits.lowest || value > limits.highest) {
    SetError(row, channel, facts, limits, error);
    return false;
  }
  Store(row, channel, value, settings);
  return true;
}

bool TakeField(SettingsField field, FieldChannel channel, const FormFacts& facts, const S& shown,
               const wchar_t* text, S& settings, std::span<wchar_t> error) {
  wchar_t before[kFieldTextSize];
  FormatField(field, channel, facts, shown, before);
  if (std::wcscmp(text, before) == 0) {
    if (field != F::deadZone) return true;
    // It is held against the range all the same.
    FormatField(field, channel, facts, settings, before);
    return ReadField(field, channel, facts, before, settings, error);
  }
  if (!ReadField(field, channel, facts, text, settings, error)) return false;
  if (field == F::range && facts.dual && channel == FieldChannel::high) {
    // The range of both, so far as the low channel reaches.
    wchar_t ignored[2 * kFieldTextSize];
    static_cast<void>(ReadField(field, FieldChannel::low, facts, text, settings, ignored));
  }
  return true;
}

void ListPresets(const DeviceSettings& settings, FieldItems& items) {
  items.count = 0;
  const auto add = [&](int32_t preset) {
    wchar_t text[kFieldTextSize];
    FormatPreset(preset, text);
    AddItem(items, text);
  };
  add(kNoPreset);
  add(kAutomaticPreset);
  for (int32_t preset = 0; preset < kPresets; ++preset) add(preset);
  const bool known =
      settings.preset == kNoPreset || (settings.preset >= 0 && settings.preset <= kAutomaticPreset);
  if (!known) add(settings.preset);
}

}  // namespace tw
