// The settings controls of the main window: which of them a device family has, what they show, and what
// becomes of a choice. They edit `settings`; nothing is sent to the device here. GUI thread.
#pragma once

#include "app/settings/settings_form.h"
#include "app/state/app_state.h"

namespace tw {

// Shows and hides what the connected family has and has not.
void ShowFamilyControls(AppState& state);

// Shows the values of `settings`.
void RefreshSettingsControls(AppState& state);

// Takes the choice of one of these controls over into `settings`. Range and output go to a running device by
// themselves a second later, the others with "Apply".
void TakeSettingsChoice(AppState& state, int control);

// The text of a selector's choice as the form reads it: a range in metres, whatever is shown. Empty when
// nothing is chosen.
void GetChosenText(AppState& state, int combo, std::span<wchar_t> text);

// Puts the unit of the options in force, for all depths that are shown, and shows ranges in it.
void TakeDepthUnit(AppState& state);

// What the forms depend on: of the played file, else of the device that was connected last.
[[nodiscard]] FormFacts CurrentFormFacts(const AppState& state);

}  // namespace tw
