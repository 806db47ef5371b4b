// The operator's marks on what passes below. GUI thread.
#pragma once

#include <optional>

#include "app/state/app_state.h"
#include "app/state/event_marks.h"

namespace tw {

// The newest ping as a mark would keep it, with the place of its line; nothing outside a run of the device,
// and before the first ping.
struct MarkedMoment {
  EventMark mark;  // without number and word
  int64_t ringTimes[2];
};
[[nodiscard]] std::optional<MarkedMoment> TakeMoment(AppState& state);

// Numbers the mark, draws its line across the echogram of both channels, and writes it into the log of
// events, whether that is on or not. Marks are numbered from 1 on for as long as the program runs. A longer
// word is cut.
void SetMark(AppState& state, MarkedMoment moment, const wchar_t* word);

}  // namespace tw
