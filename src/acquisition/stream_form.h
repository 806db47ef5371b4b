// The forms that a stream of pings can have, on the line and in a recording. A form is a StreamForm, which
// stands beside its parser: altimeter_lines.h, device_block.h, echo_frame.h, echo_text_stream.h,
// nmea_depth.h. Live worker, playback and conversion know no format; they go by the form. Which output mode
// of which family has which form says output_mode.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "acquisition/ping_record.h"
#include "acquisition/stream_reader.h"

namespace tw {

// What a parser has to know of the device, taken from the settings when the run starts.
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

// What a stream's pings show in the echogram.
enum class EchoSource : uint8_t {
  samples,
  pulse,  // none are sent: a pulse is drawn at the altitude, and pings take the program's running number
};

// Where the second channel of a dual run is recorded.
enum class RecordRule : uint8_t { fileOfChannel, oneFile };

inline constexpr size_t kMaxRecordSize = 257'000;  // the longest text block, two sentences and line ends

// What becomes of the record files of a run that recorded nothing.
enum class EmptyRun : uint8_t { deleteFiles, leaveOneByte };

struct StreamForm {
  const char* name;  // of such a recording

  std::unique_ptr<StreamReader> (*makeReader)();

  // False: the block is dropped. Touches nothing but `ping`.
  bool (*parse)(std::string_view block, const LiveContext& context, LivePing& ping);

  // Lays out what is recorded of a ping, `sentences` being its GGA and RMC; returns the length.
  size_t (*layOutRecord)(std::string_view block, const LivePing& ping, std::string_view sentences,
                         std::span<char, kMaxRecordSize> record);

  bool isText = true;  // lines and blocks; else binary
  EchoSource echo = EchoSource::samples;
  bool dualAttitude = false;  // a dual run sends attitude
  RecordRule recordRule = RecordRule::fileOfChannel;
  EmptyRun emptyRun = EmptyRun::deleteFiles;

  [[nodiscard]] constexpr bool HasSamples() const { return echo == EchoSource::samples; }
  [[nodiscard]] constexpr bool SharesFile() const { return recordRule == RecordRule::oneFile; }
};

}  // namespace tw
