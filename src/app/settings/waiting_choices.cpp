#include "app/settings/waiting_choices.h"

#include <iterator>

#include "app/settings/control_states.h"
#include "app/window/control_ids.h"
#include "app/window/ui.h"

namespace tw {
namespace {

using S = DeviceSettings;

struct Choice {
  int dot;
  bool (*waits)(const S& chosen, const S& inForce);
};

template <int32_t S::*field>
bool Differs(const S& chosen, const S& inForce) {
  return chosen.*field != inForce.*field;
}

constexpr Choice kChoices[] = {
    {ID_WAITS_FREQUENCY, Differs<&S::frequencyInUse_hz>},
    {ID_WAITS_DUAL, Differs<&S::simultaneous>},
    {ID_WAITS_OUTPUT, Differs<&S::outputMode>},
    {ID_WAITS_RANGE,
     [](const S& chosen, const S& inForce) {
       return chosen.rangeLow_mm != inForce.rangeLow_mm || chosen.rangeHigh_mm != inForce.rangeHigh_mm;
     }},
    {ID_WAITS_INTERVAL, Differs<&S::pingInterval_ms>},
    {ID_WAITS_PRESET, Differs<&S::preset>},
};

uint32_t WaitingChoices(const AppState& state) {
  uint32_t waiting = 0;
  if (StateOfProgram(state) != ProgramState::running) return waiting;
  for (size_t i = 0; i < std::size(kChoices); ++i) {
    if (kChoices[i].waits(state.settings, state.appliedSettings)) waiting |= 1u << i;
  }
  return waiting;
}

}  // namespace

void ShowWaitingChoices(AppState& state) {
  const uint32_t waiting = WaitingChoices(state);
  const uint32_t before = state.waitingShown;
  if (waiting == before) return;
  state.waitingShown = waiting;
  for (size_t i = 0; i < std::size(kChoices); ++i) {
    if (((waiting ^ before) >> i & 1u) == 0) continue;
    SetBold(state, kChoices[i].dot, true);
    ShowControl(state, kChoices[i].dot, (waiting >> i & 1u) != 0);
  }
  if ((waiting == 0) != (before == 0)) SetBold(state, ID_APPLY, waiting != 0);
}

}  // namespace tw
