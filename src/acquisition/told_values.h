// What a block itself tells of its ping. A parser keeps in the ping what a block does not tell, and the
// echogram shows that; whoever passes values on must not take an old depth for a new one. Acquisition worker
// only.
#pragma once

#include <string_view>

#include "acquisition/stream_form.h"
#include "app/state/ping_facts.h"

namespace tw {

// Not a number: the block did not tell it.
struct ToldValues {
  float altitude_m;
  float temperature_c;
  float pitch_deg;
  float roll_deg;
};

// The form's own parse, with the same result in `ping`; `told` is what came from this block.
[[nodiscard]] bool ParseTelling(const StreamForm& form, std::string_view block, const LiveContext& context,
                                LivePing& ping, ToldValues& told);

// The facts of a ping, but for what the run and the receiver tell.
[[nodiscard]] PingFacts FactsOf(const PingHeader& header, const ToldValues& told, uint32_t now_ms);

}  // namespace tw
