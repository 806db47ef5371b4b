#include "app/window/display_options.h"

#include "app/run/file_run.h"
#include "app/settings/family_controls.h"
#include "app/settings/stored_options.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "display/palette.h"

namespace tw {
namespace {

void TakeColours(AppState& state) {
  const Options& options = state.options;
  const PaletteChoice choice{ColourScheme{options.colours}, options.contrastLower_percent,
                             options.contrastUpper_percent};
  if (!IsBuiltFrom(state.palette, choice)) BuildPalette(state.palette, choice);
}

}  // namespace

void PutDisplayOptionsInForce(AppState& state) {
  StoreShared(state.gapsBlack, state.options.gapsBlack);
  TakeColours(state);
  TakeDepthUnit(state);
  if (state.initialised == 0) return;  // the first paint finds them
  TakeReplayOptions(state);
  ArrangeViews(state);
  InvalidateEchogram(state);
}

void TryDisplayOptions(AppState& state, const Options& shown) {
  for (const OptionRow& row : OptionRows()) {
    if (row.page == OptionPage::display || row.page == OptionPage::playback)
      state.options.*row.value = shown.*row.value;
  }
  PutDisplayOptionsInForce(state);
}

}  // namespace tw
