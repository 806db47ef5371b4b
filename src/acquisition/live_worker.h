// The live acquisition worker: one loop for every output mode, from the bytes of the device port to rings,
// record files, time marks and status texts. It is the only writer of rings and record files while it runs.
//
// A mode is a row of type LiveMode: which reader cuts its stream into blocks, how a block becomes a ping of
// which channel, and what is recorded of it. The loop itself knows no format.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "acquisition/ping_record.h"
#include "acquisition/stream_reader.h"
#include "app/state/app_state.h"

namespace tw {

// Everything that a worker has from the GUI thread, which goes on with choices of its own.
struct LiveStart {
  DeviceSettings settings;  // as the device has them
  int32_t deviceFamily;
  bool dual;
  Handle port;
  uint32_t runNumber;
};

// Lays the values out for the worker that is started next, which takes them as its first step. What an
// earlier worker did not come to take is freed. False without memory. GUI thread.
[[nodiscard]] bool HandOver(AppState& state, const LiveStart& start);

// What a mode's parser has to know of the device, taken from the settings when the run starts.
struct LiveContext {
  bool dual;
  int32_t outputMode;
  int32_t configuredSampling_hz;
  int32_t configuredTx_hz;
  int32_t lowFrequency_hz;
  int32_t virtualLowFrequency_hz;
  int32_t highFrequency_hz;
  bool blocksTellMode = false;  // the output mode that an echo text block tells goes before outputMode

  // Which channel of a dual run a ping belongs to.
  [[nodiscard]] bool IsSecondChannel(int32_t tx_hz) const {
    return dual && (tx_hz == lowFrequency_hz || tx_hz == virtualLowFrequency_hz);
  }

  // The transmit frequency that was set for a ping's channel.
  [[nodiscard]] int32_t ChannelFrequency_hz(bool secondChannel) const {
    if (!dual) return configuredTx_hz;
    return secondChannel ? lowFrequency_hz : highFrequency_hz;
  }
};

inline constexpr size_t kMaxPingSamples = 50'000;

// One ping on its way from a block to ring and file. A parser keeps its values from block to block: what a
// block does not say stands as it was.
struct LivePing {
  PingHeader header;
  bool secondChannel;
  std::span<const uint16_t> samples;
  uint16_t factor;    // onto the 12-bit scale
  bool bothChannels;  // the block reports the second channel as well, with this altitude
  float altitudeLow_m;
  int32_t channelFrequency_hz;  // that was set for the ping's channel
  bool hasDeviceTime;           // the block tells the device's own time; playback goes by it
  uint32_t deviceSeconds;       // since 1970
  uint32_t deviceMilliseconds;
  int32_t outputMode;   // of echo text: as the block tells it
  float resolution_mm;  // of echo text: as the latest block that tells it; 0: none did
  bool hasSampling;     // the echo text block tells its sampling frequency
  uint16_t buffers[2][kMaxPingSamples];
};

// What a mode's pings show in the echogram.
enum class EchoSource : uint8_t {
  samples,
  pulse,  // none are sent: a pulse is drawn at the altitude, and pings take the program's running number
};

// Where the second channel of a dual run is recorded.
enum class RecordRule : uint8_t { fileOfChannel, oneFile };

inline constexpr size_t kMaxRecordSize = 257'000;  // the longest text block, two sentences and line ends

// What becomes of the record files of a run that recorded nothing.
enum class EmptyRun : uint8_t { deleteFiles, leaveOneByte };

struct LiveMode {
  std::unique_ptr<StreamReader> (*makeReader)();

  // False: the block is dropped. Touches nothing but `ping`.
  bool (*parse)(std::string_view block, const LiveContext& context, LivePing& ping);

  // Lays out what is recorded of a ping, `sentences` being its GGA and RMC; returns the length.
  size_t (*layOutRecord)(std::string_view block, const LivePing& ping, std::string_view sentences,
                         std::span<char, kMaxRecordSize> record);

  EchoSource echo = EchoSource::samples;
  RecordRule recordRule = RecordRule::fileOfChannel;
  EmptyRun emptyRun = EmptyRun::deleteFiles;
};

// The body of an acquisition thread. Runs until stopEvent is signalled, the device port fails, or the run
// number has become stale; in the first two cases it closes the record files at its end. A worker for which
// nothing was laid out, and one that hung in a call of the system until its number was stale, touches nothing
// and posts nothing any more.
void RunLiveWorker(AppState& state, const LiveMode& mode);

}  // namespace tw
