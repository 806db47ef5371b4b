#include "app/family_controls.h"

#include "acquisition/output_mode.h"
#include "app/control_ids.h"
#include "app/ui.h"
#include "base/shared_value.h"
#include "base/text_format.h"

namespace tw {
namespace {

void ShowOnlyItem(AppState& state, int combo, const wchar_t* text) {
  ClearCombo(state, combo);
  AddComboItem(state, combo, text);
  SelectComboItem(state, combo, 0);
}

void ShowOutput(AppState& state) {
  wchar_t text[64];
  CopyWide(text, NameOfMode(LoadShared(globals.deviceFamily), state.settings.outputMode));
  ShowOnlyItem(state, ID_OUTPUT, text);
}

void ShowRange(AppState& state) {
  wchar_t text[32];
  FormatWide(text, "%g", state.displayRangeUpper / 1000.0);
  ShowOnlyItem(state, ID_RANGE, text);
}

void ShowInterval(AppState& state) {
  wchar_t text[32];
  FormatWide(text, "%.2f", state.settings.pingInterval_ms / 1000.0);
  ShowOnlyItem(state, ID_INTERVAL, state.settings.pingInterval_ms == 0 ? L"Auto" : text);
}

}  // namespace

void ShowFamilyControls(AppState& state) {
  const int32_t family = LoadShared(globals.deviceFamily);
  ShowControl(state, ID_HIGH_FREQUENCY, true);
  ShowControl(state, ID_LOW_FREQUENCY, family == 1);
  ShowControl(state, ID_DUAL_MODE, family == 1);
  ShowControl(state, ID_PRESET_LABEL, family != 0);
  ShowControl(state, ID_PRESET, family != 0);
}

void RefreshSettingsControls(AppState& state) {
  const DeviceSettings& settings = state.settings;
  const bool dual = LoadShared(globals.dualMode) != 0;
  const bool low = settings.frequencyInUse_hz == settings.lowFrequency_hz;
  SetChecked(state, ID_DUAL_MODE, dual);
  SetChecked(state, ID_LOW_FREQUENCY, !dual && low);
  SetChecked(state, ID_HIGH_FREQUENCY, !dual && !low);
  ShowOutput(state);
  ShowRange(state);
  ShowInterval(state);
}

}  // namespace tw
