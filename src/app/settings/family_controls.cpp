#include "app/settings/family_controls.h"

#include <cwchar>

#include "app/settings/settings_text.h"
#include "app/state/depth_text.h"
#include "app/window/commands.h"
#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "device/device_link.h"

namespace tw {
namespace {

constexpr int kRangeDecimals = 1;
static_assert(kMaxFieldItems <= kMostListedRanges);

void FillCombo(AppState& state, int combo, const FieldItems& items, int selected) {
  ClearCombo(state, combo);
  for (size_t i = 0; i < items.count; ++i) AddComboItem(state, combo, items.items[i]);
  SelectComboItem(state, combo, selected);
}

// The last one of that text; -1 without one.
int ItemOf(const FieldItems& items, const wchar_t* text) {
  int item = -1;
  for (size_t i = 0; i < items.count; ++i) {
    if (std::wcscmp(items.items[i], text) == 0) item = static_cast<int>(i);
  }
  return item;
}

// What the list of ranges shows for one of them. Feet are rounded, so it is the item that tells which it is.
void FormatRange(const wchar_t* metres, std::span<wchar_t> text) {
  double range_m = 0;
  if (DepthUnitInUse() == kMetres || !ReadNumber(metres, false, range_m)) {
    CopyWide(text, metres);
  } else {
    FormatDepthFigure(text, range_m, DepthUnitInUse(), kRangeDecimals);
  }
}

void FillRanges(AppState& state, const FieldItems& items, int selected) {
  FieldItems shown{};
  for (; shown.count < items.count; ++shown.count) {
    CopyWide(state.listedRanges[shown.count], items.items[shown.count]);
    FormatRange(items.items[shown.count], shown.items[shown.count]);
  }
  state.listedRangeCount = static_cast<int32_t>(items.count);
  FillCombo(state, ID_RANGE, shown, selected);
}

struct Selector {
  int combo;
  SettingsField field;
};

constexpr Selector kRangeSelector{ID_RANGE, SettingsField::range};
constexpr Selector kSelectors[] = {
    {ID_OUTPUT, SettingsField::outputMode},
    kRangeSelector,
    {ID_INTERVAL, SettingsField::interval},
};

// Both frequencies are chosen, whether the device has been told or not; or stand in the played file.
bool IsBothChosen(const FormFacts& facts, const DeviceSettings& settings) {
  return facts.family == DeviceFamily::first && (facts.played ? facts.dual : settings.simultaneous != 0);
}

// The channel whose range the main window shows: of both the high one.
FieldChannel ShownChannel(const FormFacts& facts, const DeviceSettings& settings) {
  return IsBothChosen(facts, settings) ? FieldChannel::high : ActiveChannel(facts, settings);
}

void ShowSelector(AppState& state, const Selector& selector, const FormFacts& facts) {
  const FieldChannel channel = ShownChannel(facts, state.settings);
  wchar_t text[kFieldTextSize];
  FormatField(selector.field, channel, facts, state.settings, text);
  FieldItems items;
  ListItems(selector.field, channel, facts, state.settings, items);
  const int selected = ItemOf(items, text);
  if (selector.field == SettingsField::range) return FillRanges(state, items, selected);
  FillCombo(state, selector.combo, items, selected);
}

// Empty without a device that has presets.
void ShowPresets(AppState& state) {
  FieldItems items{};
  if (state.link->facts.presetCapable) ListPresets(state.settings, items);
  wchar_t text[kFieldTextSize];
  FormatPreset(state.settings.preset, text);
  FillCombo(state, ID_PRESET, items, ItemOf(items, text));
}

// Items are valid by their making; what is not is left out.
void TakeSelection(AppState& state, const Selector& selector, const FormFacts& facts) {
  wchar_t text[kFieldTextSize];
  wchar_t error[2 * kFieldTextSize];
  GetChosenText(state, selector.combo, text);
  DeviceSettings& settings = state.settings;
  static_cast<void>(ReadField(selector.field, ShownChannel(facts, settings), facts, text, settings, error));
  if (selector.field == SettingsField::range && IsBothChosen(facts, settings)) {
    static_cast<void>(ReadField(selector.field, FieldChannel::low, facts, text, settings, error));
  }
  if (selector.field != SettingsField::interval) NoteChoice(state);
}

void TakePreset(AppState& state) {
  wchar_t text[kFieldTextSize];
  GetControlText(state, ID_PRESET, text);
  if (!ReadPreset(text, state.settings.preset)) return;
  state.settings.automaticMode = state.settings.preset == kAutomaticPreset ? 1 : 0;
}

// Low, high and both are one choice, although both has a box of its own.
void ShowFrequencies(AppState& state) {
  const DeviceSettings& settings = state.settings;
  const FormFacts facts = CurrentFormFacts(state);
  const bool both = IsBothChosen(facts, settings);
  const bool low = UsesLowChannel(settings, facts.family);
  SetChecked(state, ID_DUAL_MODE, both);
  SetChecked(state, ID_LOW_FREQUENCY, !both && low);
  SetChecked(state, ID_HIGH_FREQUENCY, !both && !low);
}

void TakeFrequency(AppState& state, int32_t frequency_hz) {
  state.settings.frequencyInUse_hz = frequency_hz;
  state.settings.simultaneous = 0;
  ShowFrequencies(state);
  ShowSelector(state, kRangeSelector, CurrentFormFacts(state));
}

void TakeDualMode(AppState& state) {
  state.settings.simultaneous = IsChecked(state, ID_DUAL_MODE) ? 1 : 0;
  ShowFrequencies(state);
  ShowSelector(state, kRangeSelector, CurrentFormFacts(state));
}

}  // namespace

FormFacts CurrentFormFacts(const AppState& state) {
  const DeviceFacts& device = state.link->facts;
  return {.family = FamilyInUse(),
          .dual = LoadShared(globals.dualMode) != 0,
          .smoothingSupported = device.smoothingSupported,
          .presetCapable = device.presetCapable,
          .interfaceType = device.interfaceType,
          .firmwareVersion = device.firmwareVersion,
          .played = state.playbackActive != 0};
}

void ShowFamilyControls(AppState& state) {
  const DeviceFamily family = FamilyInUse();
  ShowControl(state, ID_HIGH_FREQUENCY, true);
  ShowControl(state, ID_LOW_FREQUENCY, family == DeviceFamily::first);
  ShowControl(state, ID_DUAL_MODE, family == DeviceFamily::first);
  ShowControl(state, ID_PRESET_LABEL, family != DeviceFamily::third);
  ShowControl(state, ID_PRESET, family != DeviceFamily::third);
}

void RefreshSettingsControls(AppState& state) {
  ShowFrequencies(state);
  const FormFacts facts = CurrentFormFacts(state);
  for (const Selector& selector : kSelectors) ShowSelector(state, selector, facts);
  ShowPresets(state);
}

void GetChosenText(AppState& state, int combo, std::span<wchar_t> text) {
  GetControlText(state, combo, text);
  if (combo != ID_RANGE || DepthUnitInUse() == kMetres) return;
  const int item = SelectedComboItem(state, combo);
  CopyWide(text, item >= 0 && item < state.listedRangeCount ? state.listedRanges[item] : L"");
}

void TakeDepthUnit(AppState& state) {
  const DepthUnit unit{state.options.depthUnit};
  if (unit == DepthUnitInUse()) return;
  StoreShared(globals.depthUnit, int32_t{unit});
  wchar_t name[8];
  WidenText(name, NameOfUnit(unit));
  SetControlText(state, ID_RANGE_UNIT, name);
  if (state.listedRangeCount > 0) ShowSelector(state, kRangeSelector, CurrentFormFacts(state));
}

void TakeSettingsChoice(AppState& state, int control) {
  switch (control) {
    case ID_LOW_FREQUENCY:
      return TakeFrequency(state, state.settings.lowFrequency_hz);
    case ID_HIGH_FREQUENCY:
      return TakeFrequency(state, state.settings.highFrequency_hz);
    case ID_DUAL_MODE:
      return TakeDualMode(state);
    case ID_PRESET:
      return TakePreset(state);
    default:
      break;
  }
  for (const Selector& selector : kSelectors) {
    if (selector.combo == control) TakeSelection(state, selector, CurrentFormFacts(state));
  }
}

}  // namespace tw
