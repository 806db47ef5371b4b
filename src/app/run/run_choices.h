// What the operator has chosen for a run, as values.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"

namespace tw {

struct PortChoice {
  wchar_t name[kPortNameSize];  // as the system lists it ("COM7"); empty: none
  int32_t speed_bps;
};

struct RunChoices {
  PortChoice device;
  PortChoice receiver;  // none: a run without positions
  bool record;
  bool dual;  // both frequencies; sent to the device with the changed settings
};

}  // namespace tw
