// Makes a device's messages out of the sea bed and the settings, with the faults that hit them. The caller
// knows when a ping is due and puts the bytes on the line. One thread at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "simulator/echo_stream.h"
#include "simulator/sea_bed.h"
#include "simulator/sent_ping.h"
#include "simulator/sounder_settings.h"
#include "simulator/stream_faults.h"
#include "simulator/stream_message.h"

namespace tw::sim {

enum class ChannelUse : uint8_t {
  high,
  low,
  highOfTwo,  // both are in use, a message each
  lowOfTwo,
  both,  // in one message
};

// When and where a ping is made.
struct PingMoment {
  uint32_t number;     // since power-on or the last reset
  uint64_t pingIndex;  // since power-on
  double sailed_s;
  int64_t clock_ms;  // of the device, milliseconds since 1970
};

class PingMaker {
 public:
  // The options are within their bounds.
  explicit PingMaker(const SounderOptions& options);

  // How the channels are used by the settings; with highOfTwo, a message of lowOfTwo follows.
  [[nodiscard]] ChannelUse UseOf(const SounderSettings& settings) const;

  // Makes the next message. What the functions below tell holds until the next call.
  void Make(const PingMoment& moment, ChannelUse use, const SounderSettings& settings);

  [[nodiscard]] std::span<const uint8_t> Bytes() const { return message_.bytes; }
  [[nodiscard]] std::span<const uint16_t> Samples() const { return samples_; }
  // Its account; time and offset are for the caller to fill in.
  [[nodiscard]] const SentPing& Account() const { return account_; }

 private:
  struct Sounding;
  struct Soundings;
  [[nodiscard]] const StreamMode* ModeOf(const SounderSettings& settings) const;
  [[nodiscard]] const StreamMode& AnotherMode(const StreamMode& mode, Dice& dice) const;
  [[nodiscard]] Sounding Sound(double depth_m, bool low, const SounderSettings& settings) const;
  [[nodiscard]] size_t CountInRange(bool low, const SounderSettings& settings) const;
  [[nodiscard]] Soundings SoundAll(const PingMoment& moment, ChannelUse use,
                                   const SounderSettings& settings) const;
  void Paint(const PingMoment& moment, const Sounding& sounding, bool low, const StreamMode& mode,
             const SounderSettings& settings);
  [[nodiscard]] PingReport ReportOf(const PingMoment& moment, const Soundings& found, const StreamMode& mode,
                                    const SounderSettings& settings) const;
  [[nodiscard]] BlockShape ShapeOf(const StreamMode& mode) const;
  void Damage(StreamFault fault, Dice& dice);

  const SounderOptions options_;
  SeaBed seaBed_;
  uint64_t messageIndex_ = 0;
  std::vector<uint16_t> samples_;
  StreamMessage message_;
  SentPing account_{};
};

}  // namespace tw::sim
