// The settings dialogs: "Settings (Single)", "Settings (Dual)" and "Detail Setting". GUI thread.
#pragma once

#include "app/app_state.h"
#include "app/settings_form.h"

namespace tw {

// What a dialog shows: `settings` under `facts`, in the frame of one of the three dialogs.
struct SettingsDialog {
  int id;
  FormFacts facts;
  DeviceSettings settings;
  bool readOnly;  // a played file's
};

// Shows the dialog until it is closed. True when it ended with "OK" and was not read-only: `settings` then
// holds what was entered.
[[nodiscard]] bool ShowSettingsDialog(const AppState& state, SettingsDialog& dialog);

// "Detail Setting": the dialog that fits the device; what was entered goes to it at once.
void EditSettings(AppState& state);

}  // namespace tw
