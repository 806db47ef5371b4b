#include "app/view_choices.h"

#include "app/control_ids.h"
#include "app/ui.h"
#include "base/shared_value.h"

namespace tw {

void ToggleTimestamp(AppState& state) {
  constexpr int32_t kTimeScale_s = 150;  // the one that the marks' places are made for
  const bool ticked = IsChecked(state, ID_TIMESTAMP);
  StoreShared(globals.timestampTicked, ticked ? 1 : 0);
  if (ticked) state.timeScaleUpper = state.timeScaleLower = kTimeScale_s;
}

}  // namespace tw
