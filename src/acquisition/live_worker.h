// The live acquisition worker: one loop for every output mode, from the bytes of the device port to rings,
// record files, time marks and status texts. It is the only writer of rings and record files while it runs.
//
// A mode is a LiveMode: which blocks its stream consists of, how a block becomes a ping, and what is recorded
// of it. The loop itself knows no format.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "acquisition/block_reader.h"
#include "acquisition/ping_record.h"
#include "app/app_state.h"

namespace tw {

// What a mode's parser has to know of the device, taken from the settings when the run starts.
struct LiveContext {
  bool dual;
  int32_t outputMode;
  int32_t configuredSampling_hz;
  int32_t configuredTx_hz;
  int32_t lowFrequency_hz;  // a block with one of these two belongs to the second channel
  int32_t virtualLowFrequency_hz;
};

inline constexpr size_t kMaxPingSamples = 50'000;

// One ping on its way from a block to ring and file. A parser keeps its values from block to block: what a
// block does not say stands as it was.
struct LivePing {
  PingHeader header;
  bool secondChannel;
  std::span<const uint16_t> samples;
  uint16_t factor;  // onto the 12-bit scale
  uint16_t buffers[2][kMaxPingSamples];
};

struct LiveMode {
  BlockMarks marks;
  // False: the block is dropped. Touches nothing but `ping`.
  bool (*parse)(std::string_view block, const LiveContext& context, LivePing& ping);
};

// The body of an acquisition thread. Runs until stopEvent is signalled, the device port fails, or the run
// number has become stale; in the first two cases it closes the record files at its end.
void RunLiveWorker(AppState& state, const LiveMode& mode);

}  // namespace tw
