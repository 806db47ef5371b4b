#include "acquisition/frame_worker.h"

#include "acquisition/device_block.h"
#include "acquisition/echo_frame.h"

namespace tw {
namespace {

std::unique_ptr<StreamReader> MakeReader() {
  return NewReader<FrameReader>(kDeviceBlocks);
}

bool ParseBlock(std::string_view block, const LiveContext& context, LivePing& ping) {
  const std::span<uint16_t, kMaxSlotSamples> grid(ping.buffers[0], kMaxSlotSamples);
  if (!ParseDeviceBlock(block, ping.header, grid)) return false;
  ping.secondChannel = context.IsSecondChannel(ping.header.txFrequency_hz);
  ping.samples = grid.first(ping.header.sampleCount);
  ping.factor = 1;
  return true;
}

// A frame knows its position itself.
size_t LayOutRecord(std::string_view, const LivePing& ping, std::string_view,
                    std::span<char, kMaxRecordSize> record) {
  return LayOutEchoFrame(ping.header, ping.samples, reinterpret_cast<uint8_t*>(record.data()));
}

}  // namespace

static_assert(kMaxSlotSamples <= kMaxPingSamples);
static_assert(frame::kWrittenHeaderLength + 2 * kMaxSlotSamples <= kMaxRecordSize);

const LiveMode kFirstFamilyBinaryEcho{.makeReader = MakeReader,
                                      .parse = ParseBlock,
                                      .layOutRecord = LayOutRecord,
                                      .emptyRun = EmptyRun::leaveOneByte};
const LiveMode kSecondFamilyBinaryEcho{.makeReader = MakeReader,
                                       .parse = ParseBlock,
                                       .layOutRecord = LayOutRecord,
                                       .recordRule = RecordRule::oneFile,
                                       .emptyRun = EmptyRun::leaveOneByte};

void BinaryEchoWorker(void* state) {
  RunLiveWorker(*static_cast<AppState*>(state), kFirstFamilyBinaryEcho);
}

void SecondFamilyBinaryEchoWorker(void* state) {
  RunLiveWorker(*static_cast<AppState*>(state), kSecondFamilyBinaryEcho);
}

}  // namespace tw
